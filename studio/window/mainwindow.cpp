// SPDX-License-Identifier: MIT
#include "studio/window/mainwindow.h"

#include "code/codedocument.h"
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
#include "studio/toolbararea.h"
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
#include "studio/window/saveindicator.h"
#include "studio/window/searchdock.h"
#include "studio/window/sidepanel.h"
#include "studio/window/statusfields.h"
#include "studio/window/structuredock.h"
#include "studio/window/welcomepage.h"
#include "studio/window/windowactions.h"

#include <QActionGroup>
#include <QCloseEvent>
#include <QDir>
#include <QFileInfo>
#include <QHBoxLayout>
#include <QMimeData>
#include <QPlainTextEdit>
#include <QProgressBar>
#include <QStackedWidget>
#include <QStatusBar>
#include <QToolBar>
#include <QToolButton>
#include <QVBoxLayout>

namespace Studio {

namespace {

const QString geometryKey = QStringLiteral("window/geometry");
const QString layoutKey = QStringLiteral("window/layout");
constexpr int LayoutVersion = 3;
constexpr int MessageTime = 6000; // ms that a note stays in the status bar
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

void MainWindow::makeCentre()
{
    const QList<QAction *> steps{m_host.action("new"), m_host.action("open")};
    m_welcome = new WelcomePage(m_recent, steps);
    m_editors = new Editors(m_host, this);
    m_centre = new QStackedWidget;
    m_centre->addWidget(m_welcome);
    m_centre->addWidget(makeEditorPage());
    setCentralWidget(m_centre);
    // An open project whose folder is gone can still be dropped from the list: opening says why.
    connect(m_welcome, &WelcomePage::projectWanted, this, &MainWindow::openProject);
}

// The bars of editors and of files stand above what they choose from.
QWidget *MainWindow::makeEditorPage()
{
    auto *bar = new QToolBar(tr("Editors"));
    bar->setObjectName(QStringLiteral("editorsBar"));
    bar->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    bar->addActions(m_host.actions().editorActions()->actions());
    m_tabs = new FileTabs;
    m_view = new FileView(*m_editors, m_host.colors());
    m_fileCommands = new FileCommands(m_host, *m_editors, m_files, *m_view, *m_commands, this);
    auto *page = new QWidget;
    auto *bars = new QHBoxLayout;
    bars->setSpacing(0);
    bars->addWidget(bar);
    bars->addWidget(m_tabs, 1, Qt::AlignBottom);
    auto *layout = new QVBoxLayout(page);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addLayout(bars);
    layout->addWidget(m_view);
    connect(m_tabs, &FileTabs::fileChosen, this, &MainWindow::setCurrentFile);
    connect(m_editors, &Editors::fileWanted, this, &MainWindow::onEditorChosen);
    return page;
}

void MainWindow::makeDocks()
{
    m_projectDock = new ProjectDock(m_files);
    m_structureDock = new StructureDock;
    m_propertiesDock = new PropertiesDock;
    m_sidePanel = new SidePanel;
    m_messagesDock = new MessagesDock(m_host);
    m_searchDock = new SearchDock(m_files);
    m_output = new QPlainTextEdit;
    m_output->setObjectName(QStringLiteral("output"));
    m_output->setAccessibleName(tr("Output"));
    m_output->setReadOnly(true);
    m_output->setFrameShape(QFrame::NoFrame);
    m_output->setMaximumBlockCount(5000);
    auto *outputDock = new QDockWidget(tr("Output"));
    outputDock->setObjectName(QStringLiteral("outputDock"));
    outputDock->setWidget(m_output);

    addDockWidget(Qt::LeftDockWidgetArea, m_projectDock);
    addDockWidget(Qt::RightDockWidgetArea, m_sidePanel);
    addDockWidget(Qt::RightDockWidgetArea, m_propertiesDock);
    addDockWidget(Qt::BottomDockWidgetArea, m_messagesDock);
    addDockWidget(Qt::LeftDockWidgetArea, m_structureDock);
    tabifyDockWidget(m_projectDock, m_structureDock);
    m_projectDock->raise();
    tabifyDockWidget(m_messagesDock, m_searchDock);
    tabifyDockWidget(m_searchDock, outputDock);
    m_messagesDock->raise();
    connect(&m_host, &Host::extraEditorRequested, m_sidePanel, &SidePanel::setPanel);
    connect(&m_host, &Host::retranslated, m_sidePanel, &SidePanel::retranslate);
    resizeDocks({m_projectDock, m_propertiesDock}, {260, 280}, Qt::Horizontal);
    resizeDocks({m_messagesDock}, {190}, Qt::Vertical);
    resizeDocks({m_sidePanel, m_propertiesDock}, {340, 200}, Qt::Vertical);
}

void MainWindow::makeToolBar()
{
    auto *bar = new QToolBar(tr("Main tool bar"));
    bar->setObjectName(QStringLiteral("mainToolBar"));
    addToolBar(bar);
    const char *menu = nullptr;
    for (const WindowAction &row : WindowAction::table()) {
        if (row.place != WindowAction::OnToolBar)
            continue;
        if (menu && qstrcmp(menu, row.menu) != 0)
            bar->addSeparator();
        menu = row.menu;
        bar->addAction(m_host.action(row.key));
    }
    m_host.menu("view")->addAction(bar->toggleViewAction());
}

void MainWindow::makeStatusBar()
{
    m_readProgress = new QProgressBar;
    m_readProgress->setObjectName(QStringLiteral("readProgress"));
    m_readProgress->setAccessibleName(tr("Reading the project's files"));
    m_readProgress->setMaximumWidth(220);
    m_readProgress->setFormat(tr("Reading files: %p %"));
    m_stopReading = new QToolButton;
    m_stopReading->setObjectName(QStringLiteral("stopReading"));
    m_stopReading->setIcon(m_host.icon(QStringLiteral("stop")));
    m_stopReading->setAutoRaise(true);
    m_stopReading->setToolTip(tr("Stop reading files; their messages come when they are opened"));
    m_stopReading->setAccessibleName(tr("Stop reading files"));
    statusBar()->addPermanentWidget(new SaveIndicator(m_commands->saveProgress()));
    statusBar()->addPermanentWidget(m_readProgress);
    statusBar()->addPermanentWidget(m_stopReading);
    m_readProgress->hide();
    m_stopReading->hide();
    m_fields = new StatusFields(statusBar());
    connect(m_fields, &StatusFields::activated, this, &MainWindow::onStatusField);
    connect(m_stopReading, &QToolButton::clicked, this, [this] {
        m_reader.stop();
        onReadProgress(0, 0);
        m_commands->offerRecovery();
    });
}

// What editors and extensions ask the host for appears in the window.
void MainWindow::connectEditors()
{
    connect(&m_host, &Host::toolBarAreaAdded, this, [this](ToolBarArea *area) {
        addToolBarBreak();
        addToolBar(area);
    });
    // An action that stands in no menu has its shortcut through the window.
    connect(&m_host.actions(), &ActionRegistry::actionAdded, this,
            [this](QAction *action) { addAction(action); });
}

void MainWindow::connectProject()
{
    connect(m_commands, &ProjectCommands::opened, this, &MainWindow::onOpened);
    connect(m_commands, &ProjectCommands::aboutToClose, this, &MainWindow::onAboutToClose);
    connect(m_commands, &ProjectCommands::closed, this, [this] {
        updateAll();
        storeSession();
    });
    connect(m_commands, &ProjectCommands::contentsChanged, this, &MainWindow::refresh);
    connect(m_commands, &ProjectCommands::done, this,
            [this](const QString &text) { statusBar()->showMessage(text, MessageTime); });
    connect(&m_files, &OpenFiles::filesChanged, this, &MainWindow::onFilesChanged);
    connect(&m_files, &OpenFiles::modifiedChanged, this, &MainWindow::updateTitle);
    connect(&m_files, &OpenFiles::contentChanged, this, [this](const QString &path) {
        // The file says so before it has its new content.
        if (path == m_current)
            m_contentTimer.start(0);
    });
    connect(&m_files, &OpenFiles::fileGone, this, &MainWindow::onFileGone);
    connect(&m_reader, &BackgroundReader::progressed, this, &MainWindow::onReadProgress);
    connect(&m_reader, &BackgroundReader::finished, m_commands, &ProjectCommands::offerRecovery);
    connect(&m_host.settings(), &Settings::changed, this, [this](const QString &key) {
        if (key.startsWith(QLatin1String("color/")) || key.startsWith(QLatin1String("format/")))
            m_view->updateColors();
    });
    connect(&m_host.settings(), &Settings::writeFailed, this, &MainWindow::onSettingsNotWritten);
    connect(&m_host, &Host::projectsRefreshed, this, &MainWindow::refresh);
    connect(&m_host, &Host::statusChanged, m_fields, &StatusFields::setText);
    connect(&m_host, &Host::logged, m_output, &QPlainTextEdit::appendPlainText);
    connect(&m_host, &Host::fileRequested, this,
            [this](const Vela::ProjectFile *file, unsigned int line, unsigned int column) {
                goToPlace(m_files.path(file), line, column);
            });
}

void MainWindow::connectDocks()
{
    connect(m_projectDock, &ProjectDock::pathChosen, this, [this](const QString &path) {
        if (m_files.file(path))
            setCurrentFile(path);
    });
    connect(m_projectDock, &ProjectDock::pathActivated, this, [this](const QString &path) {
        if (m_files.isClosedProject(path))
            return m_commands->openClosedProject(path);
        if (m_files.file(path))
            setCurrentFile(path);
        m_view->focusText();
    });
    connect(m_projectDock, &ProjectDock::openProjectWanted, m_commands,
            &ProjectCommands::openClosedProject);
    connect(m_projectDock, &ProjectDock::closeProjectWanted, m_commands,
            &ProjectCommands::closeProject);
    connect(m_projectDock, &ProjectDock::showInFolderWanted, this, &MainWindow::showInFolder);
    connect(m_projectDock, &ProjectDock::copyPathWanted, this, &MainWindow::copyPath);
    connect(m_messagesDock, &MessagesDock::placeWanted, this, &MainWindow::goToPlace);
    connect(m_searchDock, &SearchDock::replaced, this, &MainWindow::refresh);
    connect(m_searchDock, &SearchDock::left, m_view, &FileView::focusText);
    connect(m_searchDock, &SearchDock::matchWanted, this,
            [this](const QString &path, int line, int column, int length) {
                setCurrentFile(path);
                m_view->showMatch(line, column, length);
            });
    connect(m_propertiesDock->model(), &PropertiesModel::edited, this, &MainWindow::refresh);
}

void MainWindow::connectText()
{
    connect(m_view, &FileView::positionChanged, this, &MainWindow::updateStatus);
    connect(m_view, &FileView::historyChanged, this, &MainWindow::updateActions);
    connect(m_view, &FileView::edited, this, &MainWindow::onEdited);
    connect(m_view, &FileView::findEverywhereWanted, this,
            [this] { m_searchDock->search(m_view->searchTerm()); });
    connect(m_clipboard, &ClipboardCommands::changed, this, &MainWindow::updateActions);
}

void MainWindow::connectFileCommands()
{
    connect(m_tabs, &FileTabs::closed, m_fileCommands, &FileCommands::closeTab);
    connect(m_fileCommands, &FileCommands::fileWanted, this, [this](const QString &path) {
        // The editor may have changed under the file that is shown.
        setCurrentFile(QString());
        setCurrentFile(path);
        m_view->focusText();
    });
    connect(m_fileCommands, &FileCommands::saved, this, &MainWindow::refresh);
    connect(m_fileCommands, &FileCommands::done, this,
            [this](const QString &text) { statusBar()->showMessage(text, MessageTime); });
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
    m_propertiesDock->setFile(file);
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
