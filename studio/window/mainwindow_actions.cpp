// SPDX-License-Identifier: MIT
// The actions of the main window, and what the commands that are not the project's do.
#include "code/codedocument.h"
#include "editor/workspace.h"
#include "engine/engine.h"
#include "frame/menu.h"
#include "frame/propertyitem.h"
#include "project/parentproject.h"
#include "project/project.h"
#include "project/projectfile.h"
#include "studio/host.h"
#include "studio/window/clipboardcommands.h"
#include "studio/window/fileview.h"
#include "studio/window/mainwindow.h"
#include "studio/window/messagesdock.h"
#include "studio/window/projectdock.h"
#include "studio/window/propertiesdock.h"
#include "studio/window/settingsdialog.h"
#include "studio/window/soundview.h"
#include "studio/window/statusfields.h"
#include "studio/window/windowactions.h"

#include <QClipboard>
#include <QCoreApplication>
#include <QDesktopServices>
#include <QDir>
#include <QFileInfo>
#include <QGuiApplication>
#include <QMessageBox>
#include <QPlainTextEdit>
#include <QUrl>

namespace Studio {

namespace {

const QString encodingProperty = QStringLiteral("Encoding");

QString translated(const char *text)
{
    return QCoreApplication::translate("Studio::WindowAction", text);
}

} // namespace

void MainWindow::makeActions()
{
    for (const WindowAction &row : WindowAction::table()) {
        if (!row.key)
            continue;
        auto *action = new QAction(this);
        ActionSpec spec;
        spec.key = QLatin1String(row.key);
        spec.text = translated(row.text);
        spec.shortcut = row.shortcut;
        spec.place = QLatin1String(row.menu);
        spec.scope = QStringLiteral("all");
        connect(action, &QAction::triggered, this, [this, &row] { row.run(*this); });
        m_host.actions().add(action, spec);
    }
}

void MainWindow::makeMenus()
{
    auto *bar = new Vela::MenuBar;
    setMenuBar(bar);
    for (const WindowMenu &menu : WindowMenu::table()) {
        Vela::Menu *shown = m_host.menu(menu.key);
        shown->setTitle(translated(menu.title));
        bar->addMenu(shown);
    }
    for (const WindowAction &row : WindowAction::table()) {
        Vela::Menu *menu = m_host.menu(row.menu);
        if (row.key)
            menu->addAction(m_host.action(row.key));
        else
            menu->addSeparator();
        if (qstrcmp(row.key, "open") == 0) {
            m_recentMenu = new QMenu(tr("Open &Recent"), this);
            menu->QMenu::addMenu(m_recentMenu);
        }
    }
    connect(m_recentMenu, &QMenu::aboutToShow, this, &MainWindow::fillRecentMenu);
}

void MainWindow::addDockActions()
{
    const QList<QDockWidget *> docks = findChildren<QDockWidget *>();
    for (QDockWidget *dock : docks) {
        ActionSpec spec;
        spec.key = QStringLiteral("show_") + dock->objectName();
        spec.place = QStringLiteral("view");
        spec.scope = QStringLiteral("all");
        m_host.actions().add(dock->toggleViewAction(), spec);
        m_host.menu("view")->addAction(dock->toggleViewAction());
    }
}

void MainWindow::updateActions()
{
    const Vela::CodeDocument *document = m_view->document();
    const QPlainTextEdit *text = m_view->textEdit();
    bool met[WindowAction::NeedCount] = {};
    met[WindowAction::Nothing] = true;
    met[WindowAction::AProject] = m_commands->session();
    const SoundView *sound = m_view->soundView();
    met[WindowAction::ASound] = sound && sound->hasSound();
    met[WindowAction::AZoomedView] = m_host.currentWorkspace() || met[WindowAction::ASound];
    met[WindowAction::AFile] = m_view->file();
    met[WindowAction::AText] = document;
    met[WindowAction::AnEditableText] = text && !text->isReadOnly();
    // Only a definition text tells whether there is a step.
    met[WindowAction::ToUndo] = document ? document->isUndoAvailable() : m_view->file() != nullptr;
    met[WindowAction::ToRedo] = document ? document->isRedoAvailable() : m_view->file() != nullptr;
    met[WindowAction::ToCut] = m_clipboard->canCut();
    met[WindowAction::ToCopy] = m_clipboard->canCopy();
    met[WindowAction::ToPaste] = m_clipboard->canPaste();
    met[WindowAction::ToSelect] = m_clipboard->canSelectAll();
    for (const WindowAction &row : WindowAction::table()) {
        if (row.key)
            m_host.action(row.key)->setEnabled(met[row.need]);
    }
}

void MainWindow::fillRecentMenu()
{
    m_recentMenu->clear();
    const QStringList paths = m_recent.paths();
    bool anyMissing = false;
    int number = 0;
    for (const QString &path : paths) {
        const bool there = RecentProjects::isThere(path);
        anyMissing = anyMissing || !there;
        QString text =
            QDir::toNativeSeparators(path).replace(QLatin1Char('&'), QLatin1String("&&"));
        text = ++number < 10 ? QStringLiteral("&%1 %2").arg(number).arg(text) : text;
        QAction *action = m_recentMenu->addAction(there ? text : tr("%1 (missing)").arg(text));
        action->setEnabled(there);
        connect(action, &QAction::triggered, this, [this, path] { openProject(path); });
    }
    m_recentMenu->addSeparator();
    QAction *removing = m_recentMenu->addAction(tr("Remove &Missing"));
    removing->setEnabled(anyMissing);
    connect(removing, &QAction::triggered, this, [this, paths] {
        for (const QString &path : paths) {
            if (!RecentProjects::isThere(path))
                m_recent.remove(path);
        }
    });
    QAction *clearing = m_recentMenu->addAction(tr("&Clear List"));
    clearing->setEnabled(!paths.isEmpty());
    connect(clearing, &QAction::triggered, &m_recent, &RecentProjects::clear);
}

// The view takes the cursor to where a text changes.
void MainWindow::undo()
{
    if (m_view->document())
        m_view->textEdit()->undo();
    else if (Vela::ProjectFile *file = m_view->file())
        file->undo();
    refresh();
}

void MainWindow::redo()
{
    if (m_view->document())
        m_view->textEdit()->redo();
    else if (Vela::ProjectFile *file = m_view->file())
        file->redo();
    refresh();
}

void MainWindow::nextMessage()
{
    m_messagesDock->goOn(1);
}

void MainWindow::previousMessage()
{
    m_messagesDock->goOn(-1);
}

void MainWindow::showSettings()
{
    SettingsDialog dialog(m_host, this);
    dialog.exec();
}

void MainWindow::showAbout()
{
    QMessageBox::about(this, tr("About Vela Studio"),
                       tr("<h3>Vela Studio %1</h3><p>Edits the texts, animations, sprites and "
                          "sounds of 2D games.</p><p>Settings: %2</p>")
                           .arg(m_host.hostVersion(),
                                QDir::toNativeSeparators(m_host.userFolder()).toHtmlEscaped()));
}

void MainWindow::onStatusField(int field)
{
    Vela::Workspace *workspace = m_host.currentWorkspace();
    if (!workspace)
        return showEngine();
    switch (field) {
    case StatusFields::PositionField:
        return m_host.action("code_goto")->trigger();
    case StatusFields::SecondField:
        return m_host.action("code_next_error")->trigger();
    default:
        return workspace->statusClicked();
    }
}

// An editor keeps the fields itself.
void MainWindow::updateStatus()
{
    if (m_host.currentEditor())
        return;
    const Vela::Engine *engine = m_commands->session() ? m_host.engine() : nullptr;
    m_host.status(StatusFields::PositionField, QString());
    m_host.status(StatusFields::SecondField, encodingName());
    m_host.status(StatusFields::LastField,
                  engine ? engine->queryString(Vela::Engine::DisplayName, 0) : QString());
}

QString MainWindow::encodingName() const
{
    const auto *item = dynamic_cast<const Vela::PropertyItem *>(m_view->file());
    return item ? item->property(encodingProperty).toString() : QString();
}

void MainWindow::showEngine()
{
    const Vela::Engine *engine = m_host.engine();
    if (!engine)
        return;
    QMessageBox::information(this, tr("Engine"),
                             tr("%1\n\nInstalled instances known: %2")
                                 .arg(engine->queryString(Vela::Engine::DisplayName, 0))
                                 .arg(engine->count()));
}

void MainWindow::showInFolder(const QString &path)
{
    const QFileInfo info(QDir(rootPath(*m_commands->session()->parent())).filePath(path));
    QDesktopServices::openUrl(
        QUrl::fromLocalFile(info.isDir() ? info.filePath() : info.absolutePath()));
}

void MainWindow::copyPath(const QString &path)
{
    const QDir root(rootPath(*m_commands->session()->parent()));
    QGuiApplication::clipboard()->setText(QDir::toNativeSeparators(root.filePath(path)));
}

} // namespace Studio
