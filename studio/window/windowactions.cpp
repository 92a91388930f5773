// SPDX-License-Identifier: MIT
#include "studio/window/windowactions.h"

#include "studio/window/clipboardcommands.h"
#include "studio/window/fileview.h"
#include "studio/window/mainwindow.h"

#include <QApplication>

namespace Studio {

namespace {

using Command = void (ProjectCommands::*)();

/// Runs a command of the project.
std::function<void(MainWindow &)> project(Command command)
{
    return [command](MainWindow &window) { (window.commands().*command)(); };
}

/// Runs a command on the text that has the focus.
std::function<void(MainWindow &)> clipboard(void (ClipboardCommands::*command)())
{
    return [command](MainWindow &window) { (window.clipboard().*command)(); };
}

/// Runs a search in the current file.
std::function<void(MainWindow &)> find(void (FileView::*search)(bool), bool how)
{
    return [search, how](MainWindow &window) { (window.view().*search)(how); };
}

const WindowAction separator(const char *menu)
{
    return {nullptr, menu, nullptr, {}, WindowAction::Nothing, WindowAction::MenuOnly, {}};
}

} // namespace

const QVector<WindowMenu> &WindowMenu::table()
{
    static const QVector<WindowMenu> menus = {
        {"menu_file", QT_TRANSLATE_NOOP("Studio::WindowAction", "&File")},
        {"menu_edit", QT_TRANSLATE_NOOP("Studio::WindowAction", "&Edit")},
        {"menu_project", QT_TRANSLATE_NOOP("Studio::WindowAction", "&Project")},
        {"menu_view", QT_TRANSLATE_NOOP("Studio::WindowAction", "&View")},
        {"menu_help", QT_TRANSLATE_NOOP("Studio::WindowAction", "&Help")},
    };
    return menus;
}

// clang-format off
const QVector<WindowAction> &WindowAction::table()
{
    static const QVector<WindowAction> actions = {
        {"new", "menu_file", QT_TRANSLATE_NOOP("Studio::WindowAction", "&New Project..."),
         QKeySequence::New, Nothing, OnToolBar, project(&ProjectCommands::createNew)},
        {"open", "menu_file", QT_TRANSLATE_NOOP("Studio::WindowAction", "&Open Project..."),
         QKeySequence::Open, Nothing, OnToolBar, project(&ProjectCommands::chooseAndOpen)},
        separator("menu_file"),
        {"save", "menu_file", QT_TRANSLATE_NOOP("Studio::WindowAction", "&Save"),
         QKeySequence::Save, AProject, OnToolBar,
         project(&ProjectCommands::saveInBackground)},
        {"save_as", "menu_file", QT_TRANSLATE_NOOP("Studio::WindowAction", "Save &As..."),
         Qt::CTRL + Qt::SHIFT + Qt::Key_S, AProject, MenuOnly, project(&ProjectCommands::saveAs)},
        separator("menu_file"),
        {"close", "menu_file", QT_TRANSLATE_NOOP("Studio::WindowAction", "&Close Project"),
         Qt::CTRL + Qt::Key_W, AProject, MenuOnly,
         [](MainWindow &window) { window.commands().close(); }},
        {"quit", "menu_file", QT_TRANSLATE_NOOP("Studio::WindowAction", "&Quit"),
         Qt::CTRL + Qt::Key_Q, Nothing, MenuOnly, [](MainWindow &window) { window.close(); }},

        {"undo", "menu_edit", QT_TRANSLATE_NOOP("Studio::WindowAction", "&Undo"),
         Qt::CTRL + Qt::Key_Z, ToUndo, OnToolBar, &MainWindow::undo},
        {"redo", "menu_edit", QT_TRANSLATE_NOOP("Studio::WindowAction", "&Redo"),
         Qt::CTRL + Qt::SHIFT + Qt::Key_Z, ToRedo, OnToolBar, &MainWindow::redo},
        separator("menu_edit"),
        {"cut", "menu_edit", QT_TRANSLATE_NOOP("Studio::WindowAction", "Cu&t"),
         Qt::CTRL + Qt::Key_X, ToCut, MenuOnly, clipboard(&ClipboardCommands::cut)},
        {"copy", "menu_edit", QT_TRANSLATE_NOOP("Studio::WindowAction", "&Copy"),
         Qt::CTRL + Qt::Key_C, ToCopy, MenuOnly, clipboard(&ClipboardCommands::copy)},
        {"paste", "menu_edit", QT_TRANSLATE_NOOP("Studio::WindowAction", "&Paste"),
         Qt::CTRL + Qt::Key_V, ToPaste, MenuOnly, clipboard(&ClipboardCommands::paste)},
        {"select_all", "menu_edit", QT_TRANSLATE_NOOP("Studio::WindowAction", "Select &All"),
         Qt::CTRL + Qt::Key_A, ToSelect, MenuOnly, clipboard(&ClipboardCommands::selectAll)},
        separator("menu_edit"),
        {"find", "menu_edit", QT_TRANSLATE_NOOP("Studio::WindowAction", "&Find..."),
         Qt::CTRL + Qt::Key_F, AText, OnToolBar, find(&FileView::openFindBar, false)},
        {"find_next", "menu_edit", QT_TRANSLATE_NOOP("Studio::WindowAction", "Find &Next"),
         Qt::Key_F3, AText, MenuOnly, find(&FileView::findNext, false)},
        {"find_previous", "menu_edit", QT_TRANSLATE_NOOP("Studio::WindowAction", "Find Pre&vious"),
         Qt::SHIFT + Qt::Key_F3, AText, MenuOnly, find(&FileView::findNext, true)},
        {"replace", "menu_edit", QT_TRANSLATE_NOOP("Studio::WindowAction", "Rep&lace..."),
         Qt::CTRL + Qt::Key_H, AnEditableText, MenuOnly, find(&FileView::openFindBar, true)},
        separator("menu_edit"),
        {"go_to_line", "menu_edit", QT_TRANSLATE_NOOP("Studio::WindowAction", "&Go to Line..."),
         Qt::CTRL + Qt::Key_G, AText, MenuOnly, &MainWindow::goToLine},
        {"next_message", "menu_edit", QT_TRANSLATE_NOOP("Studio::WindowAction", "Ne&xt Message"),
         Qt::Key_F8, AProject, MenuOnly, &MainWindow::nextMessage},
        {"previous_message", "menu_edit",
         QT_TRANSLATE_NOOP("Studio::WindowAction", "Previous &Message"),
         Qt::SHIFT + Qt::Key_F8, AProject, MenuOnly, &MainWindow::previousMessage},
        separator("menu_edit"),
        {"settings", "menu_edit", QT_TRANSLATE_NOOP("Studio::WindowAction", "&Settings..."),
         Qt::CTRL + Qt::Key_Comma, Nothing, MenuOnly, &MainWindow::showSettings},

        {"backup", "menu_project", QT_TRANSLATE_NOOP("Studio::WindowAction", "&Back Up..."),
         Qt::CTRL + Qt::Key_B, AProject, OnToolBar, project(&ProjectCommands::backup)},
        {"restore", "menu_project", QT_TRANSLATE_NOOP("Studio::WindowAction", "&Restore Backup..."),
         {}, AProject, MenuOnly, project(&ProjectCommands::restore)},
        separator("menu_project"),
        {"reload", "menu_project", QT_TRANSLATE_NOOP("Studio::WindowAction", "Re&load"),
         Qt::Key_F5, AProject, OnToolBar, project(&ProjectCommands::reload)},

        {"palette", "menu_view", QT_TRANSLATE_NOOP("Studio::WindowAction", "&Command Palette..."),
         Qt::CTRL + Qt::SHIFT + Qt::Key_P, Nothing, MenuOnly, &MainWindow::showPalette},
        {"reset_layout", "menu_view", QT_TRANSLATE_NOOP("Studio::WindowAction", "&Reset Layout"),
         {}, Nothing, MenuOnly, &MainWindow::resetLayout},
        separator("menu_view"),

        {"about", "menu_help", QT_TRANSLATE_NOOP("Studio::WindowAction", "&About Vela Studio"),
         {}, Nothing, MenuOnly, &MainWindow::showAbout},
    };
    return actions;
}
// clang-format on

} // namespace Studio
