// SPDX-License-Identifier: MIT
#include "editor/codefileeditor.h"

#include "code/codedocument.h"
#include "code/codenodefile.h"
#include "editor/codeeditor.h"
#include "editor/codeworkspace.h"
#include "frame/interface.h"
#include "frame/menu.h"
#include "frame/regexp.h"
#include "project/messages.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QPersistentModelIndex>
#include <QPointer>
#include <QScopedValueRollback>
#include <QSet>
#include <QTextBlock>
#include <QTreeView>
#include <algorithm>

namespace Vela {

namespace {

enum StatusField { CursorField = 0, ErrorField = 1 };

CodeDocument *documentOf(ProjectFile *file)
{
    if (auto *const document = dynamic_cast<CodeDocument *>(file))
        return document;
    const auto *const nodes = dynamic_cast<CodeNodeFile *>(file);
    return nodes ? nodes->document() : nullptr;
}

/// Returns whether a parent of \a node is among \a nodes.
bool isBelow(const CodeNode *node, const QSet<const CodeNode *> &nodes)
{
    for (const CodeNode *parent = node->parent(); parent; parent = parent->parent()) {
        if (nodes.contains(parent))
            return true;
    }
    return false;
}

QTextCursor cursorOf(const ProjectFile::SearchResult &result, CodeDocument *document)
{
    QTextCursor cursor(document->findBlockByNumber(result.line));
    const int start = cursor.position() + result.column;
    cursor.setPosition(start);
    cursor.setPosition(start + result.length, QTextCursor::KeepAnchor);
    return cursor;
}

QList<QTextEdit::ExtraSelection> highlights(const QList<ProjectFile::SearchResult> &results,
                                            CodeDocument *document)
{
    QList<QTextEdit::ExtraSelection> selections;
    QTextCharFormat format;
    format.setBackground(Qt::yellow);
    format.setForeground(Qt::black);
    for (const ProjectFile::SearchResult &result : results)
        selections.append({cursorOf(result, document), format});
    return selections;
}

/// Brings a result to the middle of the view and selects it. Going past it by half a view first
/// makes the view scroll that far, from whichever side the view stands on.
void show(const ProjectFile::SearchResult &result, CodeEditor &editor)
{
    CodeDocument *const document = editor.codeDocument();
    const QTextBlock target = document->findBlockByNumber(result.line);
    const QPoint middle = editor.viewport()->rect().center();
    const bool isAbove = result.line < editor.cursorForPosition(middle).blockNumber();
    const int half = editor.displayedLineCount() / 2;
    // Counted in the lines that are in sight, so that nothing is unfolded on the way.
    const int past =
        qBound(0, target.firstLineNumber() + (isAbove ? -half : half), document->lineCount() - 1);
    editor.setTextCursor(QTextCursor(document->findBlockByLineNumber(past)));
    editor.setTextCursor(cursorOf(result, document));
}

} // namespace

class CodeFileEditorPrivate
{
public:
    CodeFileEditorPrivate(CodeWorkspace *sharedWorkspace, const char *key)
        : workspace(sharedWorkspace)
        , name(key)
    {
    }

    CodeEditor &editor() const
    {
        return *workspace->editor();
    }

    /// Returns the document if it is the one that the shared workspace shows.
    CodeDocument *shownDocument() const
    {
        return workspace->document() == document ? document.data() : nullptr;
    }

    bool canEditNodes() const
    {
        return document && !editor().isReadOnly();
    }

    QVector<CodeNode *> selectedNodes() const;
    void showContextMenu(const QPoint &position);
    void paste(void (CodeDocument::*insert)(const CodeNode *, const QString &, bool));

    CodeWorkspace *const workspace;
    const char *const name;
    QPointer<CodeDocument> document;
    QMetaObject::Connection documentEnd;
    QPointer<QTreeView> view;
    Menu menu; ///< of the view
    QList<QAction *> pasteActions;
    QPersistentModelIndex clicked; ///< under the last context click
    bool isFollowingTree = false;  ///< while the text goes where the user clicked in the tree
};

// In the order of the text, without those that another selected one covers.
QVector<CodeNode *> CodeFileEditorPrivate::selectedNodes() const
{
    QVector<CodeNode *> nodes;
    if (!document || !view || view->model() != document->model())
        return nodes;
    QSet<const CodeNode *> selected;
    const QModelIndexList rows = view->selectionModel()->selectedRows();
    for (const QModelIndex &row : rows)
        selected.insert(document->nodeFromIndex(row));
    for (const QModelIndex &row : rows) {
        CodeNode *const node = document->nodeFromIndex(row);
        if (!isBelow(node, selected))
            nodes.append(node);
    }
    std::sort(nodes.begin(), nodes.end(),
              [](const CodeNode *a, const CodeNode *b) { return a->lineNo() < b->lineNo(); });
    return nodes;
}

void CodeFileEditorPrivate::showContextMenu(const QPoint &position)
{
    const QModelIndex index = view->indexAt(position);
    clicked = index;
    if (!index.isValid() || !view->selectionModel()->hasSelection())
        return;
    const bool canPaste = !QGuiApplication::clipboard()->text().isEmpty();
    for (QAction *const action : qAsConst(pasteActions))
        action->setEnabled(canPaste);
    menu.popup(view->viewport()->mapToGlobal(position));
}

void CodeFileEditorPrivate::paste(void (CodeDocument::*insert)(const CodeNode *, const QString &,
                                                               bool))
{
    const QString code = QGuiApplication::clipboard()->text();
    if (canEditNodes() && !code.isEmpty() && clicked.isValid()
        && clicked.model() == document->model())
        (document->*insert)(document->nodeFromIndex(clicked), code, false);
}

CodeFileEditor::CodeFileEditor(CodeWorkspace *workspace, const char *name)
    : d(std::make_unique<CodeFileEditorPrivate>(workspace, name))
{
    d->menu.addAction(QString(), this, &CodeFileEditor::deleteNode);
    d->menu.addAction(QString(), this, &CodeFileEditor::cutNode);
    d->menu.addAction(QString(), this, &CodeFileEditor::copyNode);
    d->pasteActions = {d->menu.addAction(QString(), this, &CodeFileEditor::pasteBefore),
                       d->menu.addAction(QString(), this, &CodeFileEditor::pasteAfter)};
    CodeFileEditor::retranslate();
}

CodeFileEditor::~CodeFileEditor() = default;

const char *CodeFileEditor::name() const
{
    return d->name;
}

unsigned int CodeFileEditor::areas() const
{
    return 5;
}

void CodeFileEditor::activate()
{
    FileEditor::activate();
    connect(&d->editor(), &CodeEditor::currentLineChanged, this, &CodeFileEditor::currLineChanged,
            Qt::UniqueConnection);
    connect(&d->editor(), &CodeEditor::cursorChanged, this, &CodeFileEditor::cursorChanged,
            Qt::UniqueConnection);
    d->workspace->interfaceObject().setWorkspace(d->workspace);
    // Another editor may have shown its own file meanwhile.
    if (!d->shownDocument())
        d->workspace->setDocument(d->document);
    const CodeEditor::LinePos position = d->editor().currentLine();
    cursorChanged(QPoint(position.column, position.line));
}

void CodeFileEditor::deactivate()
{
    FileEditor::deactivate();
    disconnect(&d->editor(), &CodeEditor::currentLineChanged, this,
               &CodeFileEditor::currLineChanged);
    disconnect(&d->editor(), &CodeEditor::cursorChanged, this, &CodeFileEditor::cursorChanged);
}

void CodeFileEditor::retranslate()
{
    const QStringList texts = {tr("Remove"), tr("Cut"), tr("Copy"), tr("Paste before"),
                               tr("Paste after")};
    const QList<QAction *> actions = d->menu.actions();
    for (int i = 0; i < actions.size(); ++i)
        actions.at(i)->setText(texts.at(i));
}

QList<ProjectFile::SearchResult> CodeFileEditor::find(const RegExp &expression, unsigned int flags)
{
    CodeDocument *const document = d->shownDocument();
    d->editor().setSearchSelections({});
    if (!document || expression.pattern().isEmpty())
        return {};
    document->setCursor(d->editor().textCursor());
    const QList<ProjectFile::SearchResult> results = document->search(expression, flags);
    if (results.isEmpty())
        return results;
    show(results.first(), d->editor());
    if (flags & CodeDocument::FindAll)
        d->editor().setSearchSelections(highlights(results.mid(1), document));
    return results;
}

void CodeFileEditor::replace(const QList<ProjectFile::SearchResult> &results, const QString &text)
{
    if (!d->shownDocument() || d->editor().isReadOnly())
        return;
    // Each highlight would follow each step of the change.
    if (results.size() > 1)
        d->editor().setSearchSelections({});
    const QTextCursor cursor = d->editor().textCursor();
    d->document->replace(results, text);
    d->editor().setTextCursor(cursor);
}

void CodeFileEditor::navigateTo(unsigned int line, unsigned int column)
{
    d->workspace->goTo(line, column);
}

void CodeFileEditor::setCurrentFile(ProjectFile *file)
{
    if (d->document)
        disconnect(d->document, &QTextDocument::modificationChanged, this, &FileEditor::modified);
    disconnect(d->documentEnd);
    FileEditor::setCurrentFile(file);
    CodeDocument *const document = documentOf(file);
    // Another editor may show its own file meanwhile, which stays.
    const bool isShown = document || isActive() || d->shownDocument();
    d->document = document;
    setCodeModel(file ? file->model() : nullptr); // which follows the text from the first line on
    if (isShown)
        d->workspace->setDocument(document);
    setVisible(document);
    setWritable(document && !d->editor().isReadOnly());
    if (!document)
        return;
    connect(document, &QTextDocument::modificationChanged, this, &FileEditor::modified);
    d->documentEnd = connect(document, &QObject::destroyed, this, [this] {
        FileEditor::setCurrentFile(nullptr);
        setVisible(false);
        setWritable(false);
    });
}

void CodeFileEditor::save()
{
    // Until then the document has no name, and no state that counts as saved.
    if (d->document)
        d->document->waitForSave();
    FileEditor::save();
}

void CodeFileEditor::cut()
{
    if (d->shownDocument())
        d->editor().cut();
}

void CodeFileEditor::copy()
{
    if (d->shownDocument())
        d->editor().copy();
}

void CodeFileEditor::paste()
{
    if (d->shownDocument())
        d->editor().paste();
}

CodeWorkspace *CodeFileEditor::workspace() const
{
    return d->workspace;
}

CodeDocument *CodeFileEditor::document() const
{
    return d->document;
}

void CodeFileEditor::setTreeView(QTreeView *view)
{
    if (d->view)
        d->view->disconnect(this);
    d->view = view;
    if (!view)
        return;
    view->setSelectionMode(QAbstractItemView::ExtendedSelection);
    view->setContextMenuPolicy(Qt::CustomContextMenu);
    connect(view, &QTreeView::clicked, this, &CodeFileEditor::selectedItem);
    connect(view, &QTreeView::activated, this, &CodeFileEditor::selectedItem);
    connect(view, &QTreeView::customContextMenuRequested, this,
            [this](const QPoint &position) { d->showContextMenu(position); });
    setCodeModel(currentFile() ? currentFile()->model() : nullptr);
}

QTreeView *CodeFileEditor::treeView() const
{
    return d->view;
}

void CodeFileEditor::setCodeModel(QAbstractItemModel *model)
{
    if (!d->view || d->view->model() == model)
        return;
    const QPointer<QItemSelectionModel> old = d->view->selectionModel();
    d->view->setModel(model);
    delete old; // The view has made a new one, and keeps the old one otherwise.
}

void CodeFileEditor::saveAsUTF8()
{
    if (!d->document)
        return;
    const int before = d->document->codecId();
    d->document->setCodec("UTF-8");
    if (d->document->codecId() != before)
        d->document->setModified(true); // The file is still in the old encoding.
    save();
    if (d->shownDocument())
        d->workspace->showEncoding();
}

void CodeFileEditor::currLineChanged(int line)
{
    if (!d->shownDocument() || !d->view || d->isFollowingTree
        || !d->workspace->interfaceObject()
                .option(QStringLiteral("auto_expand_tree"), true)
                .toBool())
        return;
    d->view->collapseAll();
    const QModelIndex index = d->document->indexInLine(unsigned(line));
    if (!index.isValid() || index.model() != d->view->model())
        return;
    d->view->selectionModel()->setCurrentIndex(index, QItemSelectionModel::ClearAndSelect);
    d->view->expand(index);
    d->view->scrollTo(index, QAbstractItemView::EnsureVisible);
}

void CodeFileEditor::cursorChanged(const QPoint &position)
{
    if (!d->shownDocument())
        return;
    Interface &host = d->workspace->interfaceObject();
    host.status(CursorField,
                tr("Line: %1, Column: %2, Line count: %3")
                    .arg(position.y() + 1)
                    .arg(position.x() + 1)
                    .arg(d->document->blockCount()));
    const Messages *const messages = d->document->messages();
    host.status(ErrorField,
                tr("Syntax error count: %1").arg(messages ? messages->count(Message::Error) : 0));
}

void CodeFileEditor::selectedItem(const QModelIndex &index)
{
    if (!isActive() || !d->shownDocument() || index.model() != d->document->model())
        return;
    // The tree stays as the user has it: following the text would end a selection of several rows.
    const QScopedValueRollback<bool> following(d->isFollowingTree, true);
    d->editor().setCurrentLine(unsigned(d->document->lineNo(index)), CodeEditor::TopPlace);
    d->editor().setFocus();
}

void CodeFileEditor::deleteNode()
{
    const QVector<CodeNode *> nodes = d->selectedNodes();
    if (nodes.isEmpty() || !d->canEditNodes())
        return;
    // Each selected row would follow the going of each other.
    d->view->selectionModel()->clearSelection();
    d->document->beginChange();
    // From the end: what goes away has only the lines below parsed anew.
    for (auto node = nodes.crbegin(); node != nodes.crend(); ++node) {
        if (CodeNode::isValid(*node))
            (*node)->remove(true);
    }
    d->document->endChange();
}

void CodeFileEditor::copyNode()
{
    QString code;
    const QVector<CodeNode *> nodes = d->selectedNodes();
    for (const CodeNode *const node : nodes)
        code += node->code();
    if (!code.isEmpty())
        QGuiApplication::clipboard()->setText(
            code.replace(QChar::ParagraphSeparator, QLatin1Char('\n')));
}

void CodeFileEditor::cutNode()
{
    copyNode();
    deleteNode();
}

void CodeFileEditor::pasteBefore()
{
    d->paste(&CodeDocument::insertBefore);
}

void CodeFileEditor::pasteAfter()
{
    d->paste(&CodeDocument::insertAfter);
}

} // namespace Vela
