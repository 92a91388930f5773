// SPDX-License-Identifier: MIT
#pragma once

#include "studio/window/backgroundreader.h"
#include "studio/window/openfiles.h"
#include "studio/window/projectcommands.h"
#include "studio/window/recentprojects.h"

#include <QMainWindow>
#include <QTimer>
#include <memory>
#include <vector>

class QMenu;
class QPlainTextEdit;
class QProgressBar;
class QStackedWidget;
class QToolButton;

namespace Vela {
class FileSaver;
}

namespace Studio {

class ClipboardCommands;
class Editors;
class FileCommands;
class FileTabs;
class FileView;
class Host;
class MessagesDock;
class ProjectDock;
class PropertiesDock;
class SearchDock;
class SidePanel;
class StatusFields;
class StructureDock;
class WelcomePage;
struct WindowAction;

/// The main window: the project tree, the current file, its properties, the messages, and the
/// commands on them. The host and the engines must outlive it.
class MainWindow : public QMainWindow
{
    Q_OBJECT

public:
    explicit MainWindow(Host &host, QWidget *parent = nullptr);
    ~MainWindow() override;

    Host &host() const;
    ProjectCommands &commands();
    const OpenFiles &files() const;
    RecentProjects &recentProjects();
    ClipboardCommands &clipboard();
    FileCommands &fileCommands();
    Editors &editors();
    FileView &view();
    FileTabs &tabs();

    /// Opens a project; see ProjectCommands::open().
    bool openProject(const QString &path);
    /// Opens what was open when the program ended, if the user wants that.
    void reopenLastProject();
    /// Makes the file of a path relative to the root current; an empty path stands for none.
    void setCurrentFile(const QString &path);
    QString currentPath() const;
    /// Makes a file current and goes to a place in it, from 0.
    void goToPlace(const QString &path, unsigned int line, unsigned int column);
    /// Moves the focus to the pane so many places further: the text, then the docks that are seen.
    void goToPane(int steps);
    /// Looks at the files' states and at the current file's content anew.
    void refresh();

protected:
    void closeEvent(QCloseEvent *event) override;
    void changeEvent(QEvent *event) override;
    void dragEnterEvent(QDragEnterEvent *event) override;
    void dropEvent(QDropEvent *event) override;

private:
    friend struct WindowAction;

    static constexpr int MessageTime = 6000; ///< ms that a note stays in the status bar

    void makeCentre();
    QWidget *makeEditorPage();
    void makeDocks();
    void makeStatusBar();
    void makeActions();
    void makeMenus();
    void addDockActions();
    void makeToolBar();
    void connectEditors();
    void connectProject();
    void connectDocks();
    void connectText();
    void connectFileCommands();

    // Commands of the table of actions that are not the project's.
    void undo();
    void redo();
    void nextMessage();
    void previousMessage();
    void showSettings();
    void showPalette();
    void goToFile();
    void goToSymbol();
    void toggleFold();
    void insertSnippet();
    void findInFiles();
    bool focusPane(QWidget &pane);
    void resetLayout();
    void showAbout();

    void onOpened(Vela::ParentProject *parent);
    void onAboutToClose();
    void onEdited();
    void onEditorChosen(int fileType);
    void onFilesChanged();
    void onFileGone(Vela::ProjectFile *file);
    void onReadProgress(int done, int total);
    void onSettingsNotWritten(const QString &fileName);
    void onStatusField(int field);
    void showEngine();
    QString encodingName() const;
    void fillRecentMenu();
    void showInFolder(const QString &path);
    void copyPath(const QString &path);

    void updateAll();
    void updateActions();
    void updateTitle();
    void updateStatus();
    void updateContent();
    void storeSession();
    void restoreLayout();

    Host &m_host;
    RecentProjects m_recent;
    OpenFiles m_files;
    BackgroundReader m_reader;
    ProjectCommands *m_commands;
    ClipboardCommands *m_clipboard;
    std::vector<std::unique_ptr<Vela::FileSaver>> m_savers;

    QStackedWidget *m_centre = nullptr;
    WelcomePage *m_welcome = nullptr;
    Editors *m_editors = nullptr;
    FileView *m_view = nullptr;
    FileTabs *m_tabs = nullptr;
    FileCommands *m_fileCommands = nullptr;
    ProjectDock *m_projectDock = nullptr;
    StructureDock *m_structureDock = nullptr;
    PropertiesDock *m_propertiesDock = nullptr;
    SidePanel *m_sidePanel = nullptr;
    MessagesDock *m_messagesDock = nullptr;
    SearchDock *m_searchDock = nullptr;
    QPlainTextEdit *m_output = nullptr;
    StatusFields *m_fields = nullptr;
    QProgressBar *m_readProgress = nullptr;
    QToolButton *m_stopReading = nullptr;
    QMenu *m_recentMenu = nullptr;
    QTimer m_contentTimer;
    QString m_current;
    QByteArray m_defaultLayout;
};

} // namespace Studio
