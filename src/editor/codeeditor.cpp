// SPDX-License-Identifier: MIT
#include "editor/codeeditor.h"

#include "code/codedocument.h"
#include "editor/codeeditor_p.h"
#include "editor/codeeditorextraarea.h"
#include "editor/screenscale_p.h"
#include "project/messages.h"

#include <QEvent>
#include <QPainter>
#include <QScopedValueRollback>
#include <QScrollBar>
#include <QTextLayout>

namespace Vela {

namespace {

constexpr int TabBlanks = 4;
constexpr int JumpParenDelay = 50; ///< milliseconds

} // namespace

QIcon CodeEditorPrivate::lineMarkIcon;

CodeEditor::SyntaxFormatting::SyntaxFormatting()
    : lineColor(QColor(Qt::yellow).lighter(160))
{
    matchFormat.setForeground(Qt::red);
    rangeFormat.setBackground(QColor(Qt::magenta).lighter(190));
}

CodeEditorPrivate::CodeEditorPrivate(CodeEditor *owner)
    : editor(owner)
    , completion(owner)
    , baseColor(owner->palette().color(QPalette::Active, QPalette::Base))
    , extraArea(new CodeEditorExtraArea(owner))
{
    parenTimer.setSingleShot(true);
    blockTimer.setSingleShot(true);
    connect(&parenTimer, &QTimer::timeout, this, &CodeEditorPrivate::matchParens);
    connect(&blockTimer, &QTimer::timeout, this, &CodeEditorPrivate::updateBlocks);
    connect(editor, &QPlainTextEdit::cursorPositionChanged, this,
            &CodeEditorPrivate::onCursorMoved);
    connect(editor, &QPlainTextEdit::blockCountChanged, this, &CodeEditorPrivate::updateMargin);
    connect(editor, &QPlainTextEdit::updateRequest, this, &CodeEditorPrivate::updateSideArea);
}

CodeEditorPrivate::~CodeEditorPrivate() = default;

void CodeEditorPrivate::setSelections(SelectionGroup group,
                                      const QList<QTextEdit::ExtraSelection> &selections)
{
    m_selections[group] = selections;
    QList<QTextEdit::ExtraSelection> all;
    for (const QList<QTextEdit::ExtraSelection> &some : m_selections)
        all += some;
    editor->setExtraSelections(all);
}

void CodeEditorPrivate::clearSelections()
{
    for (QList<QTextEdit::ExtraSelection> &selections : m_selections)
        selections.clear();
    editor->setExtraSelections({});
}

// The text keeps both of these, and not the view.
void CodeEditorPrivate::applyFont()
{
    QTextDocument *const text = editor->document();
    if (text->defaultFont() != editor->font())
        text->setDefaultFont(editor->font());
    const QFontMetricsF metrics(editor->font(), editor);
    editor->setTabStopDistance(TabBlanks * metrics.horizontalAdvance(QLatin1Char(' '))
                               * screenScale(*editor));
    updateCursorWidth();
}

void CodeEditorPrivate::updateMargin()
{
    setMargin(editor->blockCount());
}

void CodeEditorPrivate::setMargin(int lineCount)
{
    const int width = extraArea->neededWidth(lineCount);
    const bool isOnTheRight = editor->isRightToLeft();
    const QMargins margins(isOnTheRight ? 0 : width, 0, isOnTheRight ? width : 0, 0);
    if (editor->viewportMargins() != margins)
        editor->setViewportMargins(margins);
    placeSideArea();
}

void CodeEditorPrivate::placeSideArea()
{
    const int width = qMax(editor->viewportMargins().left(), editor->viewportMargins().right());
    const QRect view = editor->viewport()->geometry();
    const int left = editor->isRightToLeft() ? view.right() + 1 : view.left() - width;
    extraArea->setGeometry(left, view.top(), width, view.height());
    extraArea->update();
}

void CodeEditorPrivate::updateSideArea(const QRect &rect, int dy)
{
    if (dy == 0) {
        extraArea->update(0, rect.top(), extraArea->width(), rect.height());
        return;
    }
    extraArea->scroll(0, dy);
    hoverFolded(QTextBlock());
}

void CodeEditorPrivate::onCursorMoved()
{
    if (!document || isOnTheWay)
        return;
    if (passesHiddenLines && !editor->textCursor().block().isVisible()) {
        passHiddenLines();
        return;
    }
    revealCursor();
    lastPosition = editor->textCursor().position();
    highlightLine();
    updateParen();
    startBlockTimer();
    const CodeEditor::LinePos position = editor->currentLine();
    if (std::exchange(lastLine, position.line) != position.line)
        Q_EMIT editor->currentLineChanged(position.line);
    Q_EMIT editor->cursorChanged(QPoint(position.column, position.line));
}

void CodeEditorPrivate::onContentsChange(int from, int charsRemoved, int charsAdded)
{
    const bool isFirst = m_changeStart < 0;
    m_changeStart = isFirst ? from : qMin(m_changeStart, from);
    m_changeEnd = qMax(from + charsAdded, isFirst ? 0 : m_changeEnd + charsAdded - charsRemoved);
}

// A change may part folded lines from the line that folds them, or put lines among them. Those
// that the user works on come to sight; all others go with the rest of their block.
void CodeEditorPrivate::onContentsChanged()
{
    if (m_changeStart < 0)
        return;
    QTextBlock first = document->findBlock(m_changeStart);
    QTextBlock last = document->findBlock(m_changeEnd);
    m_changeStart = -1;
    if (!last.isValid())
        last = document->lastBlock();
    if (!first.isValid())
        first = last;
    const QTextBlock cursorLine = editor->textCursor().block();
    const int line = cursorLine.blockNumber();
    bool hasChanged = line >= first.blockNumber() && line <= last.blockNumber()
        && (isCovered(cursorLine) || isCovered(first)) && reveal(cursorLine);
    if (first.previous().isValid())
        first = first.previous();
    hasChanged |= settleLines(first, last);
    if (hasChanged)
        foldingChanged();
    hoverFolded(QTextBlock());
    extraArea->update();
    updateParen();
    startBlockTimer();
}

// As long as the cursor stays on its line there is nothing to do, however many matches of a search
// would have to be handed over with it.
void CodeEditorPrivate::highlightLine()
{
    QList<QTextEdit::ExtraSelection> selections;
    if (document && formatting.highlightLine) {
        QTextEdit::ExtraSelection selection;
        selection.cursor = editor->textCursor();
        selection.cursor.clearSelection();
        selection.format.setBackground(formatting.lineColor);
        selection.format.setProperty(QTextFormat::FullWidthSelection, true);
        selections.append(selection);
    }
    const QList<QTextEdit::ExtraSelection> &shown = m_selections[LineSelection];
    if (shown.isEmpty() && selections.isEmpty())
        return;
    if (!shown.isEmpty() && !selections.isEmpty()) {
        const QTextBlock block = selections.first().cursor.block();
        if (shown.first().cursor.block() == block && block.layout()->lineCount() == 1
            && shown.first().format == selections.first().format)
            return;
    }
    setSelections(LineSelection, selections);
}

QVector<CodeEditorPrivate::ShownLine> CodeEditorPrivate::shownLines(int top, int bottom) const
{
    QVector<ShownLine> lines;
    QTextBlock block = editor->firstVisibleBlock();
    qreal y = editor->blockBoundingGeometry(block).translated(editor->contentOffset()).top();
    for (; block.isValid() && y <= bottom; block = nextShown(block)) {
        const qreal height = editor->blockBoundingRect(block).height();
        if (y + height > top)
            lines.append({block, y, height});
        y += height;
    }
    return lines;
}

QTextBlock CodeEditorPrivate::shownLineAt(int y) const
{
    const QVector<ShownLine> lines = shownLines(y, y);
    return lines.isEmpty() ? QTextBlock() : lines.first().block;
}

CodeEditor::CodeEditor(QWidget *parent)
    : QPlainTextEdit(parent)
    , d(std::make_unique<CodeEditorPrivate>(this))
{
    viewport()->setMouseTracking(true);
    setDocument(nullptr);
}

CodeEditor::~CodeEditor() = default;

void CodeEditor::setDocument(CodeDocument *document)
{
    d->parenTimer.stop();
    d->blockTimer.stop();
    d->completion.close();
    d->hoverFolded(QTextBlock());
    d->hideLink();
    d->extraArea->endSelecting();
    d->clearSelections();
    d->blocks.clear();
    d->markedLine = -1;
    d->lastLine = -1;
    d->m_changeStart = -1;
    if (d->document)
        d->document->disconnect(d.get());
    QObject::disconnect(d->documentEnd);
    d->document = document;
    // A new width costs a layout of all lines, so it comes before them.
    d->setMargin(document ? document->blockCount() : 1);
    QPlainTextEdit::setDocument(document);
    d->applyFont();
    if (document) {
        connect(document, &QTextDocument::contentsChange, d.get(),
                &CodeEditorPrivate::onContentsChange);
        connect(document, &QTextDocument::contentsChanged, d.get(),
                &CodeEditorPrivate::onContentsChanged);
        // A save changes the bars beside the lines.
        connect(document, &QTextDocument::modificationChanged, d.get(),
                [this] { d->extraArea->update(); });
        // A document ends its messages while its text is still whole.
        d->documentEnd = connect(document->messages(), &QObject::destroyed, d.get(),
                                 [this] { setDocument(nullptr); });
    }
    d->highlightLine();
    d->startBlockTimer();
    d->lastPosition = textCursor().position();
    d->updateMargin();
}

CodeDocument *CodeEditor::codeDocument() const
{
    return d->document;
}

const CodeEditor::SyntaxFormatting &CodeEditor::syntaxFormatting() const
{
    return d->formatting;
}

void CodeEditor::setSyntaxFormatting(const SyntaxFormatting &formatting)
{
    d->formatting = formatting;
    d->highlightLine();
    d->matchParens();
    d->updateBlocks();
    d->updateMargin();
    viewport()->update();
}

void CodeEditor::setCurrentLine(unsigned int line, LineType type)
{
    if (!d->document)
        return;
    const int number = int(qMin(line, unsigned(blockCount()) - 1));
    const QTextBlock target = document()->findBlockByNumber(number);
    if (!target.isVisible() && d->reveal(target))
        d->foldingChanged();
    const int shown = displayedLineCount();
    const int offset = type == TopPlace ? shown : type == MiddlePlace ? shown / 2 : 0;
    if (number >= shown && offset > 0) {
        // From the top of the text the view always comes to its place from the same side.
        const QScopedValueRollback<bool> onTheWay(d->isOnTheWay, true);
        const int lineBehind = qMin(target.firstLineNumber() + offset, document()->lineCount() - 1);
        verticalScrollBar()->setValue(0);
        setTextCursor(QTextCursor(document()->findBlockByLineNumber(lineBehind)));
    }
    setTextCursor(QTextCursor(target));
    d->startParenTimer(JumpParenDelay);
}

void CodeEditor::setCurrentLine(const LinePos &position)
{
    if (!d->document)
        return;
    const QTextBlock block =
        document()->findBlockByNumber(qBound(0, position.line, blockCount() - 1));
    QTextCursor cursor(block);
    cursor.setPosition(block.position() + qBound(0, position.column, block.length() - 1));
    {
        const QScopedValueRollback<bool> onTheWay(d->isOnTheWay, true);
        setTextCursor(cursor);
    }
    d->onCursorMoved();
    verticalScrollBar()->setValue(position.scroll);
}

CodeEditor::LinePos CodeEditor::currentLine() const
{
    const QTextCursor cursor = textCursor();
    return {cursor.blockNumber(), cursor.positionInBlock(), verticalScrollBar()->value()};
}

int CodeEditor::displayedLineCount() const
{
    return viewport()->height() / fontMetrics().height();
}

void CodeEditor::markCurrentLine(bool mark)
{
    if (!d->document)
        return;
    d->markedLine = mark ? textCursor().blockNumber() : -1;
    d->extraArea->update();
}

void CodeEditor::setLineMarkIcon(const QIcon &icon)
{
    CodeEditorPrivate::lineMarkIcon = icon;
}

void CodeEditor::setSearchSelections(const QList<QTextEdit::ExtraSelection> &matches)
{
    d->setSelections(CodeEditorPrivate::SearchSelection, matches);
}

bool CodeEditor::completerFromFile(const QString &fileName)
{
    return d->completion.load(fileName);
}

void CodeEditor::resizeEvent(QResizeEvent *event)
{
    QPlainTextEdit::resizeEvent(event);
    d->placeSideArea();
}

void CodeEditor::changeEvent(QEvent *event)
{
    QPlainTextEdit::changeEvent(event);
    const QEvent::Type type = event->type();
    if (type == QEvent::FontChange)
        d->applyFont();
    if (type == QEvent::FontChange || type == QEvent::LayoutDirectionChange
        || type == QEvent::StyleChange)
        d->updateMargin();
}

void CodeEditor::paintEvent(QPaintEvent *event)
{
    {
        QPainter painter(viewport());
        d->paintBands(painter, event->rect());
    }
    QPlainTextEdit::paintEvent(event);
    QPainter painter(viewport());
    d->paintFoldBoxes(painter);
    d->paintHoverPanel(painter);
}

} // namespace Vela
