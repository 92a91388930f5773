// SPDX-License-Identifier: MIT
#include "studio/window/windowactions.h"

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
         [](MainWindow &window) { window.commands().save(); }},
        {"save_as", "menu_file", QT_TRANSLATE_NOOP("Studio::WindowAction", "Save &As..."),
         Qt::CTRL + Qt::SHIFT + Qt::Key_S, AProject, MenuOnly, project(&ProjectCommands::saveAs)},
        separator("menu_file"),
        {"close", "menu_file", QT_TRANSLATE_NOOP("Studio::WindowAction", "&Close Project"),
         Qt::CTRL + Qt::Key_W, AProject, MenuOnly,
         [](MainWindow &window) { window.commands().close(); }},
        {"quit", "menu_file", QT_TRANSLATE_NOOP("Studio::WindowAction", "&Quit"),
         Qt::CTRL + Qt::Key_Q, Nothing, MenuOnly, [](MainWindow &window) { window.close(); }},

        {"undo", "menu_edit", QT_TRANSLATE_NOOP("Studio::WindowAction", "&Undo"),
         Qt::CTRL + Qt::Key_Z, AFile, OnToolBar, &MainWindow::undo},
        {"redo", "menu_edit", QT_TRANSLATE_NOOP("Studio::WindowAction", "&Redo"),
         Qt::CTRL + Qt::SHIFT + Qt::Key_Z, AFile, OnToolBar, &MainWindow::redo},
        separator("menu_edit"),
        {"go_to_line", "menu_edit", QT_TRANSLATE_NOOP("Studio::WindowAction", "&Go to Line..."),
         Qt::CTRL + Qt::Key_G, AText, MenuOnly, &MainWindow::goToLine},
        {"next_message", "menu_edit", QT_TRANSLATE_NOOP("Studio::WindowAction", "Ne&xt Message"),
         Qt::Key_F8, AProject, MenuOnly, &MainWindow::nextMessage},
        {"previous_message", "menu_edit",
         QT_TRANSLATE_NOOP("Studio::WindowAction", "&Previous Message"),
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
