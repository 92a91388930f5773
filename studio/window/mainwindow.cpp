// SPDX-License-Identifier: MIT
#include "studio/window/mainwindow.h"

#include "editor/codefileeditor.h"
#include "editor/codeworkspace.h"
#include "engine/engine.h"
#include "frame/menu.h"
#include "project/filesaver.h"
#include "project/parentproject.h"
#include "project/project.h"
#include "project/projectfile.h"
#include "studio/host.h"
#include "studio/session/documents.h"
#include "studio/session/engineloader.h"
#include "studio/window/clipboardcommands.h"
#include "studio/window/editors.h"
#include "studio/window/filecommands.h"
#include "studio/window/filesavedialog.h"
#include "studio/window/filetabs.h"
#include "studio/window/fileview.h"
#include "studio/window/lastsession.h"
#include "studio/window/messagesdock.h"
#include "studio/window/projectdock.h"
#include "studio/window/propertiesdock.h"
#include "studio/window/searchdock.h"
#include "studio/window/sidepanel.h"
#include "studio/window/structuredock.h"
#include "studio/window/welcomepage.h"

#include <QCloseEvent>
#include <QDir>
#include <QFileInfo>
#include <QMimeData>
#include <QProgressBar>
#include <QStackedWidget>
#include <QStatusBar>
#include <QToolButton>

namespace Studio {

namespace {

const QString geometryKey = QStringLiteral("window/geometry");
const QString layoutKey = QStringLiteral("window/layout");
constexpr int LayoutVersion = 3;
constexpr int EditDelay = 150; // ms from a key to what only shows the text, such as the properties

/// Returns the one local file or folder that is dragged, or an empty path.
QString draggedPath(const QMimeData &data)
{
    const QList<QUrl> urls = data.urls();
    return urls.size() == 1 ? urls.first().toLocalFile() : QString();
}

/// Returns the main file that stands highest in the tree, the first one by name.
QString firstMainFile(const Vela::ParentProject &parent, const OpenFiles &files)
{
    const auto depth = [](const QString &path) { return path.count(QLatin1Char('/')); };
    QString first;
    const QList<Vela::Project *> projects = parent.openedProjects();
    for (const Vela::Project *project : projects) {
        const QString path = files.path(project->mainFile());
        if (first.isEmpty() || qMakePair(depth(path), path) < qMakePair(depth(first), first))
            first = path;
    }
    return first;
}

} // namespace

MainWindow::MainWindow(Host &host, QWidget *parent)
    : QMainWindow(parent)
    , m_host(host)
    , m_recent(host)
    , m_commands(new ProjectCommands(host, m_recent, this))
    , m_clipboard(new ClipboardCommands(this))
{
    setObjectName(QStringLiteral("mainWindow"));
    setWindowIcon(QIcon(QStringLiteral(":/studio/icons/vela-128.png")));
    setAcceptDrops(true);
    setDockNestingEnabled(true);
    m_host.setMainWindow(this);
    for (int type = -1; type <= Vela::Project::Scripts; ++type) {
        m_savers.push_back(std::make_unique<FileSaveDialog>(host, type));
        m_host.registerFileSaver(type, m_savers.back().get());
    }
    m_contentTimer.setSingleShot(true);
    connect(&m_contentTimer, &QTimer::timeout, this, &MainWindow::updateContent);

    connectEditors();
    makeActions();
    makeMenus();
    makeToolBar();
    makeCentre();
    makeDocks();
    addDockActions();
    makeStatusBar();
    connectProject();
    connectDocks();
    connectText();
    connectFileCommands();
    restoreLayout();
    updateAll();
}

MainWindow::~MainWindow()
{
    m_reader.stop();
    onAboutToClose();
    // What loses the focus from here on enables no action any more.
    delete m_clipboard;
    delete m_commands;
    // The editors need the host as it is; the centre and the docks show widgets of theirs.
    m_editors->leave();
    delete m_sidePanel;
    delete takeCentralWidget();
    delete m_editors;
    for (int type = -1; type <= Vela::Project::Scripts; ++type)
        m_host.registerFileSaver(type, nullptr);
    m_host.disconnect(this);
    m_host.actions().disconnect(this);
    m_host.setMainWindow(nullptr);
}

Host &MainWindow::host() const
{
    return m_host;
}

ProjectCommands &MainWindow::commands()
{
    return *m_commands;
}

const OpenFiles &MainWindow::files() const
{
    return m_files;
}

RecentProjects &MainWindow::recentProjects()
{
    return m_recent;
}

ClipboardCommands &MainWindow::clipboard()
{
    return *m_clipboard;
}

FileCommands &MainWindow::fileCommands()
{
    return *m_fileCommands;
}

Editors &MainWindow::editors()
{
    return *m_editors;
}

FileView &MainWindow::view()
{
    return *m_view;
}

FileTabs &MainWindow::tabs()
{
    return *m_tabs;
}

bool MainWindow::openProject(const QString &path)
{
    return m_commands->open(path);
}

void MainWindow::reopenLastProject()
{
    const LastSession last = LastSession::stored(m_host);
    if (last.project.isEmpty()
        || !m_host.option(QStringLiteral("reopen_last_project"), true).toBool())
        return;
    // A project that ends the program while it opens must not do so at each start.
    LastSession::forget(m_host);
    QString error;
    if (!m_commands->open(last.project, &error)) {
        m_welcome->setNote(tr("The last project could not be opened again. %1").arg(error));
        return;
    }
    m_projectDock->setExpanded(last.expanded);
    QStringList shown = last.shown;
    shown.erase(std::remove_if(shown.begin(), shown.end(),
                               [this](const QString &path) { return !m_files.file(path); }),
                shown.end());
    m_tabs->restore(shown);
    if (m_files.file(last.file))
        setCurrentFile(last.file);
    m_tabs->show(m_current);
    storeSession();
}

void MainWindow::storeSession()
{
    const ProjectSession *session = m_commands->session();
    if (session)
        LastSession{session->path(), m_current, m_projectDock->expanded(), m_tabs->paths()}.store(
            m_host);
    else
        LastSession::forget(m_host);
}

void MainWindow::onOpened(Vela::ParentProject *parent)
{
    m_files.setParentProject(parent);
    m_projectDock->setParentProject(parent);
    m_messagesDock->model()->setParentProject(parent);
    m_centre->setCurrentIndex(1);
    m_reader.start(*parent);
    m_welcome->setNote(QString());
    setCurrentFile(firstMainFile(*parent, m_files));
    updateAll();
    storeSession();
}

void MainWindow::onAboutToClose()
{
    m_reader.stop();
    onReadProgress(0, 0);
    m_contentTimer.stop();
    setCurrentFile(QString());
    m_projectDock->setParentProject(nullptr);
    m_messagesDock->model()->setParentProject(nullptr);
    m_files.setParentProject(nullptr);
    m_view->forgetPlaces();
    m_tabs->clear();
    m_searchDock->clear();
    m_centre->setCurrentWidget(m_welcome);
}

// The text itself says at once what it holds; what is worked out from it may come a little later.
void MainWindow::onEdited()
{
    if (!m_contentTimer.isActive())
        m_contentTimer.start(EditDelay);
}

// A file that is gone leaves its place to the next tab; one with another name takes its own along.
void MainWindow::onFilesChanged()
{
    const QString path = m_files.path(m_view->file());
    if (!path.isEmpty() && path != m_current) {
        m_current = path;
        m_view->setFile(m_view->file(), path);
        m_tabs->show(path);
        m_projectDock->select(path);
    }
    const QStringList shown = m_tabs->paths();
    for (const QString &each : shown) {
        if (!m_files.file(each))
            m_tabs->removeFile(each);
    }
    m_messagesDock->model()->followProjects();
    setCurrentFile(m_current.isEmpty() ? m_tabs->currentPath() : m_current);
}

// An editor shows the file that it had last, or else the first of its kind.
void MainWindow::onEditorChosen(int fileType)
{
    const Vela::Project *project = m_host.currentProject();
    const QList<Vela::ProjectFile *> files =
        project ? project->filesByType(fileType) : QList<Vela::ProjectFile *>();
    QStringList paths;
    for (const Vela::ProjectFile *file : files)
        paths.append(m_files.path(file));
    const QStringList used = m_tabs->lastUsed();
    const auto last = std::find_if(used.begin(), used.end(),
                                   [&paths](const QString &path) { return paths.contains(path); });
    const QString path = last == used.end() ? paths.value(0) : *last;
    if (path.isEmpty())
        return statusBar()->showMessage(tr("The project has no file for this editor."),
                                        MessageTime);
    setCurrentFile(path);
    m_view->focusText();
}

void MainWindow::onFileGone(Vela::ProjectFile *file)
{
    m_reader.forget(file);
    if (m_view->file() == file || (m_view->document() && m_view->document() == documentOf(file)))
        setCurrentFile(QString());
}

void MainWindow::onReadProgress(int done, int total)
{
    const bool running = done < total;
    m_readProgress->setMaximum(qMax(1, total));
    m_readProgress->setValue(done);
    m_readProgress->setVisible(running);
    m_stopReading->setVisible(running);
}

void MainWindow::onSettingsNotWritten(const QString &fileName)
{
    const QString text = tr("The settings cannot be written to %1. They last until Studio ends.")
                             .arg(QDir::toNativeSeparators(fileName));
    m_host.log(text);
    statusBar()->showMessage(text);
}

void MainWindow::setCurrentFile(const QString &path)
{
    Vela::ProjectFile *file = path.isEmpty() ? nullptr : m_files.file(path);
    m_current = file ? path : QString();
    if (file == m_view->file())
        return;
    m_view->setFile(file, m_current);
    m_tabs->show(m_current);
    m_structureDock->setFile(file, qobject_cast<Vela::CodeFileEditor *>(m_host.currentEditor()));
    m_propertiesDock->setItem(m_view->propertyItem());
    if (file)
        m_projectDock->select(path);
    if (file && file->project())
        m_host.setCurrentProject(file->project());
    updateActions();
    updateStatus();
}

QString MainWindow::currentPath() const
{
    return m_current;
}

void MainWindow::goToPlace(const QString &path, unsigned int line, unsigned int column)
{
    if (!m_files.file(path))
        return;
    setCurrentFile(path);
    m_view->goTo(int(line), int(column));
    m_view->focusText();
}

void MainWindow::refresh()
{
    m_files.refresh();
    m_messagesDock->model()->followProjects();
    m_contentTimer.start(0);
    updateTitle();
}

void MainWindow::updateContent()
{
    m_files.refresh();
    m_view->refresh();
    m_view->setModifiedMark(m_files.isModified(m_current));
    if (m_view->document())
        m_editors->code().showEncoding();
    m_propertiesDock->model()->refresh();
    updateStatus();
}

void MainWindow::updateAll()
{
    updateTitle();
    updateActions();
    updateStatus();
}

void MainWindow::updateTitle()
{
    const ProjectSession *session = m_commands->session();
    const QString name = session ? QFileInfo(rootPath(*session->parent())).fileName() : QString();
    const QString program = QStringLiteral("Vela Studio");
    setWindowTitle(name.isEmpty() ? program
                                  : QString(name + QStringLiteral("[*] \u2013 ") + program));
    setWindowModified(!m_files.modified().isEmpty());
    m_view->setModifiedMark(m_files.isModified(m_current));
    m_tabs->setModified(m_files.modified());
}

void MainWindow::closeEvent(QCloseEvent *event)
{
    if (m_commands->isBusy() || !m_commands->mayLeave()) {
        event->ignore();
        return;
    }
    m_host.setOption(geometryKey, saveGeometry());
    m_host.setOption(layoutKey, saveState(LayoutVersion));
    storeSession();
    event->accept();
}

void MainWindow::changeEvent(QEvent *event)
{
    QMainWindow::changeEvent(event);
    if (event->type() == QEvent::ActivationChange && isActiveWindow())
        m_files.refresh();
}

void MainWindow::dragEnterEvent(QDragEnterEvent *event)
{
    const QString path = draggedPath(*event->mimeData());
    if (!path.isEmpty() && !m_commands->isBusy() && EngineLoader::engineFor(path))
        event->acceptProposedAction();
}

void MainWindow::dropEvent(QDropEvent *event)
{
    const QString path = draggedPath(*event->mimeData());
    if (path.isEmpty())
        return;
    event->acceptProposedAction();
    // The program that the folder comes from waits until this returns: questions come later.
    QTimer::singleShot(0, this, [this, path] { openProject(path); });
}

void MainWindow::restoreLayout()
{
    m_defaultLayout = saveState(LayoutVersion);
    if (!restoreGeometry(m_host.option(geometryKey, QByteArray()).toByteArray()))
        resize(m_host.scaleToDPI(1280), m_host.scaleToDPI(800));
    restoreState(m_host.option(layoutKey, QByteArray()).toByteArray(), LayoutVersion);
}

void MainWindow::resetLayout()
{
    restoreState(m_defaultLayout, LayoutVersion);
}

} // namespace Studio
