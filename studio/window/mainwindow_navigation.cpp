// SPDX-License-Identifier: MIT
// How the user gets about in the main window without the mouse.
#include "code/codeblockdata.h"
#include "code/codedocument.h"
#include "code/codenode.h"
#include "editor/codeeditor.h"
#include "editor/codeworkspace.h"
#include "editor/snippetmanager.h"
#include "frame/menu.h"
#include "studio/host.h"
#include "studio/session/documents.h"
#include "studio/window/editors.h"
#include "studio/window/fileview.h"
#include "studio/window/mainwindow.h"
#include "studio/window/picker.h"
#include "studio/window/searchdock.h"

#include <QApplication>
#include <QDir>
#include <QDockWidget>
#include <QPlainTextEdit>
#include <QStackedWidget>
#include <QTextBlock>
#include <algorithm>

namespace Studio {

namespace {

/// Returns the rows of groups, also of nested ones, and of animations.
QModelIndexList symbolsBelow(Vela::CodeDocument &document, const QModelIndex &parent)
{
    QModelIndexList symbols;
    const QAbstractItemModel &tree = *document.model();
    for (int row = 0; row < tree.rowCount(parent); ++row) {
        const QModelIndex index = tree.index(row, 0, parent);
        const int type = document.nodeFromIndex(index)->type();
        if (type != Vela::CodeNode::Group && type != Vela::CodeNode::Animation)
            continue;
        symbols.append(index);
        if (type == Vela::CodeNode::Group)
            symbols += symbolsBelow(document, index);
    }
    return symbols;
}

/// Returns what a symbol is found by: its line has the name and the title.
QString symbolText(const Vela::CodeDocument &document, const QModelIndex &index)
{
    const QString line = document.findBlockByNumber(document.lineNo(index)).text().trimmed();
    return line.isEmpty() ? index.data().toString() : line;
}

} // namespace

void MainWindow::showPalette()
{
    QVector<QAction *> actions;
    QVector<Picker::Entry> entries;
    const QVector<ActionRegistry::Entry> all = m_host.actions().actions();
    for (const ActionRegistry::Entry &entry : all) {
        if (!entry.action->isEnabled() || entry.action->text().isEmpty())
            continue;
        QString text = entry.action->text();
        if (!entry.spec.place.isEmpty())
            text = m_host.actions().menu(entry.spec.place)->title() + QStringLiteral(": ") + text;
        text.remove(QLatin1Char('&')).remove(QStringLiteral("..."));
        entries.append({text, entry.action->shortcut().toString(QKeySequence::NativeText),
                        entry.action->icon()});
        actions.append(entry.action);
    }
    const int chosen =
        Picker(tr("Command Palette"), tr("Type a part of a command"), entries, this).pick();
    // The palette is gone when its command runs: it may show a dialog of its own.
    if (chosen >= 0)
        QTimer::singleShot(0, actions.at(chosen), &QAction::trigger);
}

// The block of the cursor is the one that its line begins, or else the one that it is in.
void MainWindow::toggleFold()
{
    auto *editor = qobject_cast<Vela::CodeEditor *>(m_view->textEdit());
    if (!editor)
        return;
    const auto level = [](const QTextBlock &block) {
        const Vela::CodeBlockData *known = Vela::CodeBlockData::testBlockData(block);
        return known ? known->foldingIndent() : 0;
    };
    QTextBlock block = editor->textCursor().block();
    const unsigned int own = level(block);
    if (!block.next().isValid() || level(block.next()) <= own) {
        while (block.isValid() && level(block) >= own)
            block = block.previous();
    }
    if (block.isValid())
        editor->toggleBlockVisible(block);
}

void MainWindow::insertSnippet()
{
    const Vela::SnippetManager &snippets = *Vela::SnippetManager::instance();
    QVector<Picker::Entry> entries;
    for (int row = 0; row < snippets.rowCount(); ++row)
        entries.append({snippets.index(row).data().toString(), QString(), QIcon()});
    const int chosen =
        Picker(tr("Insert Snippet"), tr("Type a part of a snippet's name"), entries, this).pick();
    if (chosen >= 0)
        m_editors->code().snipActivated(chosen);
}

void MainWindow::goToPane(int steps)
{
    QList<QWidget *> panes{m_centre};
    const QList<QDockWidget *> docks = findChildren<QDockWidget *>();
    for (QDockWidget *dock : docks) {
        if (!dock->visibleRegion().isEmpty())
            panes.append(dock->widget());
    }
    const QWidget *focused = QApplication::focusWidget();
    int current = 0;
    for (int pane = 0; pane < panes.size(); ++pane) {
        if (panes.at(pane)->isAncestorOf(focused) || panes.at(pane) == focused)
            current = pane;
    }
    // Some have nothing to go to.
    for (int tried = 1; tried < panes.size(); ++tried) {
        const int pane = (current + tried * steps) % panes.size();
        if (focusPane(*panes.at((pane + panes.size()) % panes.size())))
            return;
    }
}

// The pane's own child that had the focus last, or else its first that takes it.
bool MainWindow::focusPane(QWidget &pane)
{
    QWidget *text = &pane == m_centre && m_view->isVisible() ? m_view->textEdit() : nullptr;
    QWidget *child = text ? text : pane.focusWidget();
    if (child && child->isVisible()) {
        child->setFocus(Qt::TabFocusReason);
        return true;
    }
    const QList<QWidget *> children = pane.findChildren<QWidget *>();
    const auto found = std::find_if(children.begin(), children.end(), [](QWidget *each) {
        return each->isVisible() && each->isEnabled() && (each->focusPolicy() & Qt::TabFocus);
    });
    if (found == children.end())
        return false;
    (*found)->setFocus(Qt::TabFocusReason);
    return true;
}

void MainWindow::findInFiles()
{
    m_searchDock->open(m_view->searchTerm());
}

void MainWindow::goToFile()
{
    const QStringList paths = m_files.paths();
    QVector<Picker::Entry> entries;
    for (const QString &path : paths)
        entries.append({path.section(QLatin1Char('/'), -1),
                        QDir::toNativeSeparators(path.section(QLatin1Char('/'), 0, -2)), QIcon()});
    const int chosen =
        Picker(tr("Go to File"), tr("Type a part of a file's name"), entries, this).pick();
    if (chosen < 0)
        return;
    setCurrentFile(paths.at(chosen));
    m_view->focusText();
}

void MainWindow::goToSymbol()
{
    QVector<Picker::Entry> entries;
    QVector<QPair<QString, int>> places; // paths and lines
    const QStringList paths = m_files.paths();
    for (const QString &path : paths) {
        Vela::CodeDocument *document = documentOf(m_files.file(path));
        const QModelIndexList symbols =
            document ? symbolsBelow(*document, QModelIndex()) : QModelIndexList();
        for (const QModelIndex &symbol : symbols) {
            const int line = document->lineNo(symbol);
            entries.append({symbolText(*document, symbol),
                            QStringLiteral("%1:%2").arg(path).arg(line + 1),
                            symbol.data(Qt::DecorationRole).value<QIcon>()});
            places.append({path, line});
        }
    }
    const int chosen = Picker(tr("Go to Symbol"),
                              tr("Type a part of an animation's or a group's name"), entries, this)
                           .pick();
    if (chosen >= 0)
        goToPlace(places.at(chosen).first, unsigned(places.at(chosen).second), 0);
}

} // namespace Studio
