// SPDX-License-Identifier: MIT
#include "studio/window/windowactions.h"

#include "editor/workspace.h"
#include "studio/host.h"
#include "studio/window/clipboardcommands.h"
#include "studio/window/filecommands.h"
#include "studio/window/filetabs.h"
#include "studio/window/fileview.h"
#include "studio/window/mainwindow.h"
#include "studio/window/soundview.h"
#include "studio/window/soundwaveform.h"

#include <QApplication>

namespace Studio {

namespace {

using Command = void (ProjectCommands::*)();

/// Runs a command of the project.
std::function<void(MainWindow &)> project(Command command)
{
    return [command](MainWindow &window) { (window.commands().*command)(); };
}

/// Runs a command on a single file.
std::function<void(MainWindow &)> file(void (FileCommands::*command)())
{
    return [command](MainWindow &window) { (window.fileCommands().*command)(); };
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

/// Runs a command of the sound that is shown.
std::function<void(MainWindow &)> sound(void (SoundView::*command)())
{
    return [command](MainWindow &window) { (window.view().soundView()->*command)(); };
}

/// Runs a command of the workspace or of the sound that is shown.
std::function<void(MainWindow &)> zoom(void (Vela::Workspace::*command)(),
                                       void (SoundWaveform::*ofSound)())
{
    return [command, ofSound](MainWindow &window) {
        if (const SoundView *view = window.view().soundView())
            (view->waveform()->*ofSound)();
        else
            (window.host().currentWorkspace()->*command)();
    };
}

const WindowAction separator(const char *menu)
{
    return {nullptr, menu, nullptr, {}, WindowAction::Nothing, WindowAction::MenuOnly, {}};
}

} // namespace

const QVector<WindowMenu> &WindowMenu::table()
{
    static const QVector<WindowMenu> menus = {
        {"file", QT_TRANSLATE_NOOP("Studio::WindowAction", "&File")},
        {"edit", QT_TRANSLATE_NOOP("Studio::WindowAction", "&Edit")},
        {"project", QT_TRANSLATE_NOOP("Studio::WindowAction", "&Project")},
        {"view", QT_TRANSLATE_NOOP("Studio::WindowAction", "&View")},
        {"help", QT_TRANSLATE_NOOP("Studio::WindowAction", "&Help")},
    };
    return menus;
}

// clang-format off
const QVector<WindowAction> &WindowAction::table()
{
    static const QVector<WindowAction> actions = {
        {"new", "file", QT_TRANSLATE_NOOP("Studio::WindowAction", "&New Project..."),
         QKeySequence::New, Nothing, OnToolBar, project(&ProjectCommands::createNew)},
        {"open", "file", QT_TRANSLATE_NOOP("Studio::WindowAction", "&Open Project..."),
         QKeySequence::Open, Nothing, OnToolBar, project(&ProjectCommands::chooseAndOpen)},
        separator("file"),
        {"new_file", "file", QT_TRANSLATE_NOOP("Studio::WindowAction", "New F&ile..."),
         Qt::CTRL + Qt::ALT + Qt::Key_N, AProject, MenuOnly, file(&FileCommands::createFile)},
        {"add_file", "file", QT_TRANSLATE_NOOP("Studio::WindowAction", "A&dd Existing File..."),
         {}, AProject, MenuOnly, file(&FileCommands::addFile)},
        separator("file"),
        {"save", "file", QT_TRANSLATE_NOOP("Studio::WindowAction", "&Save"),
         QKeySequence::Save, AProject, OnToolBar,
         project(&ProjectCommands::saveInBackground)},
        {"save_as", "file", QT_TRANSLATE_NOOP("Studio::WindowAction", "Save &As..."),
         Qt::CTRL + Qt::SHIFT + Qt::Key_S, AProject, MenuOnly, project(&ProjectCommands::saveAs)},
        {"save_file_as", "file", QT_TRANSLATE_NOOP("Studio::WindowAction", "Save Fi&le As..."),
         {}, AFile, MenuOnly, file(&FileCommands::saveFileAs)},
        {"save_as_utf8", "file", QT_TRANSLATE_NOOP("Studio::WindowAction", "Save as &UTF-8"),
         {}, AnEditableText, MenuOnly, file(&FileCommands::saveAsUtf8)},
        separator("file"),
        {"settings", "file", QT_TRANSLATE_NOOP("Studio::WindowAction", "Se&ttings..."),
         Qt::CTRL + Qt::Key_Comma, Nothing, MenuOnly, &MainWindow::showSettings},
        separator("file"),
        {"close_file", "file", QT_TRANSLATE_NOOP("Studio::WindowAction", "Close &File"),
         Qt::CTRL + Qt::Key_F4, AProject, MenuOnly,
         [](MainWindow &window) { window.tabs().closeCurrent(); }},
        {"close", "file", QT_TRANSLATE_NOOP("Studio::WindowAction", "&Close Project"),
         Qt::CTRL + Qt::Key_W, AProject, MenuOnly,
         [](MainWindow &window) { window.commands().close(); }},
        {"quit", "file", QT_TRANSLATE_NOOP("Studio::WindowAction", "&Quit"),
         Qt::CTRL + Qt::Key_Q, Nothing, MenuOnly, [](MainWindow &window) { window.close(); }},

        {"undo", "edit", QT_TRANSLATE_NOOP("Studio::WindowAction", "&Undo"),
         Qt::CTRL + Qt::Key_Z, ToUndo, OnToolBar, &MainWindow::undo},
        {"redo", "edit", QT_TRANSLATE_NOOP("Studio::WindowAction", "&Redo"),
         Qt::CTRL + Qt::SHIFT + Qt::Key_Z, ToRedo, OnToolBar, &MainWindow::redo},
        separator("edit"),
        {"cut", "edit", QT_TRANSLATE_NOOP("Studio::WindowAction", "Cu&t"),
         Qt::CTRL + Qt::Key_X, ToCut, MenuOnly, clipboard(&ClipboardCommands::cut)},
        {"copy", "edit", QT_TRANSLATE_NOOP("Studio::WindowAction", "&Copy"),
         Qt::CTRL + Qt::Key_C, ToCopy, MenuOnly, clipboard(&ClipboardCommands::copy)},
        {"paste", "edit", QT_TRANSLATE_NOOP("Studio::WindowAction", "&Paste"),
         Qt::CTRL + Qt::Key_V, ToPaste, MenuOnly, clipboard(&ClipboardCommands::paste)},
        {"select_all", "edit", QT_TRANSLATE_NOOP("Studio::WindowAction", "Select &All"),
         Qt::CTRL + Qt::Key_A, ToSelect, MenuOnly, clipboard(&ClipboardCommands::selectAll)},
        separator("edit"),
        {"find", "edit", QT_TRANSLATE_NOOP("Studio::WindowAction", "&Find..."),
         Qt::CTRL + Qt::Key_F, AText, OnToolBar, find(&FileView::openFindBar, false)},
        {"find_next", "edit", QT_TRANSLATE_NOOP("Studio::WindowAction", "Find &Next"),
         Qt::Key_F3, AText, MenuOnly, find(&FileView::findNext, false)},
        {"find_previous", "edit", QT_TRANSLATE_NOOP("Studio::WindowAction", "Find Pre&vious"),
         Qt::SHIFT + Qt::Key_F3, AText, MenuOnly, find(&FileView::findNext, true)},
        {"find_in_files", "edit", QT_TRANSLATE_NOOP("Studio::WindowAction", "Find in F&iles..."),
         Qt::CTRL + Qt::SHIFT + Qt::Key_F, AProject, MenuOnly, &MainWindow::findInFiles},
        {"replace", "edit", QT_TRANSLATE_NOOP("Studio::WindowAction", "Rep&lace..."),
         Qt::CTRL + Qt::Key_H, AnEditableText, MenuOnly, find(&FileView::openFindBar, true)},
        separator("edit"),
        {"go_to_file", "edit", QT_TRANSLATE_NOOP("Studio::WindowAction", "Go to Fi&le..."),
         Qt::CTRL + Qt::Key_P, AProject, MenuOnly, &MainWindow::goToFile},
        {"go_to_symbol", "edit", QT_TRANSLATE_NOOP("Studio::WindowAction", "Go to S&ymbol..."),
         Qt::CTRL + Qt::Key_T, AProject, MenuOnly, &MainWindow::goToSymbol},
        {"fold_block", "edit", QT_TRANSLATE_NOOP("Studio::WindowAction", "Fold or Unfold &Block"),
         Qt::CTRL + Qt::ALT + Qt::Key_F, AText, MenuOnly, &MainWindow::toggleFold},
        {"insert_snippet", "edit", QT_TRANSLATE_NOOP("Studio::WindowAction", "Insert S&nippet..."),
         Qt::CTRL + Qt::SHIFT + Qt::Key_J, AnEditableText, MenuOnly, &MainWindow::insertSnippet},
        {"next_message", "edit", QT_TRANSLATE_NOOP("Studio::WindowAction", "Ne&xt Message"),
         Qt::Key_F8, AProject, MenuOnly, &MainWindow::nextMessage},
        {"previous_message", "edit",
         QT_TRANSLATE_NOOP("Studio::WindowAction", "Previous &Message"),
         Qt::SHIFT + Qt::Key_F8, AProject, MenuOnly, &MainWindow::previousMessage},

        {"backup", "project", QT_TRANSLATE_NOOP("Studio::WindowAction", "&Back Up..."),
         Qt::CTRL + Qt::Key_B, AProject, OnToolBar, project(&ProjectCommands::backup)},
        {"restore", "project", QT_TRANSLATE_NOOP("Studio::WindowAction", "&Restore Backup..."),
         {}, AProject, MenuOnly, project(&ProjectCommands::restore)},
        separator("project"),
        {"reload", "project", QT_TRANSLATE_NOOP("Studio::WindowAction", "Re&load"),
         Qt::Key_F5, AProject, OnToolBar, project(&ProjectCommands::reload)},

        {"zoom_in", "view", QT_TRANSLATE_NOOP("Studio::WindowAction", "Zoom &In"),
         QKeySequence::ZoomIn, AZoomedView, MenuOnly,
         zoom(&Vela::Workspace::zoomIn, &SoundWaveform::zoomIn)},
        {"zoom_out", "view", QT_TRANSLATE_NOOP("Studio::WindowAction", "Zoom &Out"),
         QKeySequence::ZoomOut, AZoomedView, MenuOnly,
         zoom(&Vela::Workspace::zoomOut, &SoundWaveform::zoomOut)},
        {"zoom_actual", "view", QT_TRANSLATE_NOOP("Studio::WindowAction", "Actual &Size"),
         Qt::CTRL + Qt::Key_0, AZoomedView, MenuOnly,
         zoom(&Vela::Workspace::zoomActual, &SoundWaveform::zoomActual)},
        {"zoom_fit", "view", QT_TRANSLATE_NOOP("Studio::WindowAction", "&Fit"),
         Qt::CTRL + Qt::Key_9, AZoomedView, MenuOnly,
         zoom(&Vela::Workspace::zoomFit, &SoundWaveform::zoomFit)},
        separator("view"),
        {"play", "view", QT_TRANSLATE_NOOP("Studio::WindowAction", "Play or Stop So&und"),
         Qt::CTRL + Qt::ALT + Qt::Key_P, ASound, MenuOnly, sound(&SoundView::playOrStop)},
        {"loop", "view", QT_TRANSLATE_NOOP("Studio::WindowAction", "Play Sound in a &Loop or Once"),
         {}, ASound, MenuOnly, sound(&SoundView::changeLoop)},
        separator("view"),
        {"next_file", "view", QT_TRANSLATE_NOOP("Studio::WindowAction", "&Next File"),
         Qt::CTRL + Qt::Key_Tab, AProject, MenuOnly,
         [](MainWindow &window) { window.tabs().goOn(1); }},
        {"previous_file", "view", QT_TRANSLATE_NOOP("Studio::WindowAction", "&Previous File"),
         Qt::CTRL + Qt::SHIFT + Qt::Key_Tab, AProject, MenuOnly,
         [](MainWindow &window) { window.tabs().goOn(-1); }},
        separator("view"),
        {"next_pane", "view", QT_TRANSLATE_NOOP("Studio::WindowAction", "Next Pa&ne"),
         Qt::Key_F6, Nothing, MenuOnly, [](MainWindow &window) { window.goToPane(1); }},
        {"previous_pane", "view", QT_TRANSLATE_NOOP("Studio::WindowAction", "Previous Pan&e"),
         Qt::SHIFT + Qt::Key_F6, Nothing, MenuOnly,
         [](MainWindow &window) { window.goToPane(-1); }},
        separator("view"),
        {"palette", "view", QT_TRANSLATE_NOOP("Studio::WindowAction", "&Command Palette..."),
         Qt::CTRL + Qt::SHIFT + Qt::Key_P, Nothing, MenuOnly, &MainWindow::showPalette},
        {"reset_layout", "view", QT_TRANSLATE_NOOP("Studio::WindowAction", "&Reset Layout"),
         {}, Nothing, MenuOnly, &MainWindow::resetLayout},
        separator("view"),

        {"about", "help", QT_TRANSLATE_NOOP("Studio::WindowAction", "&About Vela Studio"),
         {}, Nothing, MenuOnly, &MainWindow::showAbout},
    };
    return actions;
}
// clang-format on

} // namespace Studio
