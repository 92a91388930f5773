// SPDX-License-Identifier: MIT
// What the main window is made of, and who in it listens to whom.
#include "studio/window/mainwindow.h"

#include "frame/menu.h"
#include "project/parentproject.h"
#include "project/project.h"
#include "project/projectfile.h"
#include "studio/host.h"
#include "studio/toolbararea.h"
#include "studio/window/clipboardcommands.h"
#include "studio/window/editors.h"
#include "studio/window/filecommands.h"
#include "studio/window/filetabs.h"
#include "studio/window/fileview.h"
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
#include <QHBoxLayout>
#include <QPlainTextEdit>
#include <QProgressBar>
#include <QStackedWidget>
#include <QStatusBar>
#include <QToolBar>
#include <QToolButton>
#include <QVBoxLayout>

namespace Studio {

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
    m_view = new FileView(*m_editors, m_host.settings(), m_host.colors());
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
    resizeDocks({m_projectDock, m_propertiesDock}, {260, 370}, Qt::Horizontal);
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
    connect(m_view, &FileView::soundChanged, this, &MainWindow::updateActions);
    connect(m_view, &FileView::edited, this, &MainWindow::onEdited);
    connect(m_view, &FileView::propertyItemChanged, this,
            [this] { m_propertiesDock->setItem(m_view->propertyItem()); });
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

} // namespace Studio
