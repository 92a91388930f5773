// SPDX-License-Identifier: MIT
// The actions of the main window, and what the commands that are not the project's do.
#include "code/codedocument.h"
#include "engine/engine.h"
#include "frame/menu.h"
#include "frame/propertyitem.h"
#include "frame/textcodecs.h"
#include "project/parentproject.h"
#include "project/project.h"
#include "project/projectfile.h"
#include "studio/host.h"
#include "studio/window/clipboardcommands.h"
#include "studio/window/commandpalette.h"
#include "studio/window/fileview.h"
#include "studio/window/mainwindow.h"
#include "studio/window/messagesdock.h"
#include "studio/window/projectdock.h"
#include "studio/window/propertiesdock.h"
#include "studio/window/settingsdialog.h"
#include "studio/window/statusfields.h"
#include "studio/window/textview.h"
#include "studio/window/windowactions.h"

#include <QClipboard>
#include <QCoreApplication>
#include <QDesktopServices>
#include <QDir>
#include <QFileInfo>
#include <QGuiApplication>
#include <QInputDialog>
#include <QMessageBox>
#include <QToolButton>
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
    const QList<QDockWidget *> docks = findChildren<QDockWidget *>();
    for (QDockWidget *dock : docks) {
        ActionSpec spec;
        spec.key = QStringLiteral("show_") + dock->objectName();
        spec.place = QStringLiteral("menu_view");
        spec.scope = QStringLiteral("all");
        m_host.actions().add(dock->toggleViewAction(), spec);
        m_host.menu("menu_view")->addAction(dock->toggleViewAction());
    }
}

void MainWindow::updateActions()
{
    const Vela::CodeDocument *document = m_view->document();
    const TextView *text = m_view->textView();
    bool met[WindowAction::NeedCount] = {};
    met[WindowAction::Nothing] = true;
    met[WindowAction::AProject] = m_commands->session();
    met[WindowAction::AText] = text;
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
        m_view->textView()->undo();
    else if (Vela::ProjectFile *file = m_view->file())
        file->undo();
    refresh();
}

void MainWindow::redo()
{
    if (m_view->document())
        m_view->textView()->redo();
    else if (Vela::ProjectFile *file = m_view->file())
        file->redo();
    refresh();
}

void MainWindow::goToLine()
{
    TextView *text = m_view->textView();
    if (!text)
        return;
    bool ok = false;
    const int line =
        QInputDialog::getInt(this, tr("Go to Line"), tr("Line:"),
                             text->textCursor().blockNumber() + 1, 1, text->blockCount(), 1, &ok);
    if (ok)
        goToPlace(m_current, unsigned(line - 1), 0);
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

void MainWindow::showPalette()
{
    QList<CommandPalette::Command> commands;
    const QVector<ActionRegistry::Entry> entries = m_host.actions().actions();
    for (const ActionRegistry::Entry &entry : entries) {
        const QString group = entry.spec.place.isEmpty()
            ? QString()
            : m_host.actions().menu(entry.spec.place)->title();
        commands.append({group, entry.action});
    }
    CommandPalette palette(commands, this);
    palette.move(geometry().center().x() - palette.width() / 2, geometry().top() + 80);
    palette.exec();
    // The palette is gone when its command runs: it may show a dialog of its own.
    if (QAction *chosen = palette.chosen())
        QTimer::singleShot(0, chosen, &QAction::trigger);
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
    switch (field) {
    case StatusFields::PositionField:
        return goToLine();
    case StatusFields::EncodingField:
        return showEncodings();
    default:
        return showEngine();
    }
}

void MainWindow::updateStatus()
{
    const QString encoding = encodingName();
    const Vela::Engine *engine = m_commands->session() ? m_host.engine() : nullptr;
    QString position;
    if (const TextView *text = m_view->textView())
        position = tr("Line %1, Column %2")
                       .arg(text->textCursor().blockNumber() + 1)
                       .arg(text->textCursor().positionInBlock() + 1);
    m_host.status(StatusFields::PositionField, position);
    m_host.status(StatusFields::EncodingField, encoding);
    m_host.status(StatusFields::RendererField,
                  engine ? engine->queryString(Vela::Engine::DisplayName, 0) : QString());
    m_host.action("go_to_line")->setEnabled(!position.isEmpty());
}

void MainWindow::showEncodings()
{
    const QToolButton *button = m_fields->button(StatusFields::EncodingField);
    QMenu menu(this);
    menu.setObjectName(QStringLiteral("encodings"));
    menu.setStyleSheet(QStringLiteral("QMenu { menu-scrollable: 1; }"));
    const int current = Vela::TextCodecs::index(button->text().toLatin1().constData());
    for (int i = 0; i < Vela::TextCodecs::count(); ++i) {
        const QString name = QString::fromLatin1(Vela::TextCodecs::name(i));
        QAction *action = menu.addAction(Vela::TextCodecs::displayName(i));
        action->setCheckable(true);
        action->setChecked(i == current);
        connect(action, &QAction::triggered, this, [this, name] { setEncoding(name); });
    }
    menu.exec(button->mapToGlobal(QPoint(0, -menu.sizeHint().height())));
}

QString MainWindow::encodingName() const
{
    const auto *item = dynamic_cast<const Vela::PropertyItem *>(m_view->file());
    const QString name = item ? item->property(encodingProperty).toString() : QString();
    const Vela::CodeDocument *document = m_view->document();
    return name.isEmpty() && document ? QString::fromLatin1(document->codecName()) : name;
}

void MainWindow::setEncoding(const QString &name)
{
    auto *item = dynamic_cast<Vela::PropertyItem *>(m_view->file());
    Vela::CodeDocument *document = m_view->document();
    if (item && item->property(encodingProperty).isValid()) {
        item->setProperty(encodingProperty, name);
    } else if (document && document->codecName() != name.toLatin1()) {
        document->setCodec(name.toLatin1().constData());
        document->setModified(true);
    }
    refresh();
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
