// SPDX-License-Identifier: MIT
#include "code/codeblockdata.h"
#include "code/codedocument.h"
#include "editor/codeeditor.h"
#include "editor/codeeditor_p.h"

#include <QPainter>
#include <QPlainTextDocumentLayout>
#include <QTextLayout>

#include <cmath>
#include <limits>
#include <memory>
#include <utility>
#include <vector>

namespace Vela {

namespace {

constexpr int HoverDelay = 40;  ///< milliseconds from the mouse's coming to the panel
constexpr int BoxDistance = 12; ///< pixels from the end of the text to the box
constexpr qreal CornerRadius = 3;

const QString &boxText()
{
    static const QString text = QStringLiteral(" ... ");
    return text;
}

bool setShown(QTextBlock block, bool shown)
{
    if (block.isVisible() == shown)
        return false;
    block.setVisible(shown);
    block.setLineCount(shown ? qMax(1, block.layout()->lineCount()) : 0);
    return true;
}

void unfold(const QTextBlock &block)
{
    if (CodeBlockData *const data = CodeBlockData::testBlockData(block))
        data->setFolded(false);
}

/// Returns the position of the end of the nearest line above that is not hidden.
int endOfShownAbove(QTextBlock block)
{
    while (!block.isVisible() && block.previous().isValid())
        block = block.previous();
    return block.position() + block.length() - 1;
}

/// Returns a layout of a hidden line, which has none itself, as one line.
std::unique_ptr<QTextLayout> layoutOf(const QTextBlock &block, const QPointF &position)
{
    auto layout = std::make_unique<QTextLayout>(block.text(), block.document()->defaultFont());
    layout->setTextOption(block.document()->defaultTextOption());
    layout->setFormats(block.layout()->formats());
    layout->beginLayout();
    QTextLine line = layout->createLine();
    line.setLeadingIncluded(true);
    line.setLineWidth(std::numeric_limits<int>::max());
    line.setPosition(position);
    layout->endLayout();
    return layout;
}

/// Returns the level of the outermost folded line that hides a line, or -1. Right above a line that
/// is hidden there is another hidden one, or the one that folds.
int coverOf(const QTextBlock &block)
{
    const QTextBlock above = block.previous();
    int cover = -1;
    if (!above.isValid() || (above.isVisible() && !isFolded(above)))
        return cover;
    for (QTextBlock header = headerOf(block); header.isValid(); header = headerOf(header)) {
        if (isFolded(header))
            cover = int(foldingLevel(header));
    }
    return cover;
}

} // namespace

unsigned int foldingLevel(const QTextBlock &block)
{
    const CodeBlockData *const data = CodeBlockData::testBlockData(block);
    return data ? data->foldingIndent() : 0;
}

bool isFolded(const QTextBlock &block)
{
    const CodeBlockData *const data = CodeBlockData::testBlockData(block);
    return data && data->isFolded();
}

QTextBlock headerOf(const QTextBlock &block)
{
    const unsigned int level = foldingLevel(block);
    if (level == 0)
        return QTextBlock();
    QTextBlock above = block.previous();
    while (above.isValid() && foldingLevel(above) >= level)
        above = above.previous();
    return above;
}

QTextBlock lastInLevel(QTextBlock block, unsigned int level)
{
    for (QTextBlock next = block.next(); next.isValid() && foldingLevel(next) >= level;
         next = next.next())
        block = next;
    return block;
}

// Hidden lines have no place in the count of lines, so that they cost nothing here.
QTextBlock nextShown(const QTextBlock &block)
{
    return block.document()->findBlockByLineNumber(block.firstLineNumber() + block.lineCount());
}

bool CodeEditorPrivate::isFoldable(const QTextBlock &block) const
{
    return CodeBlockData::testBlockData(block) && foldingLevel(block.next()) > foldingLevel(block);
}

void CodeEditorPrivate::toggleFolded(const QTextBlock &block)
{
    if (!isFoldable(block))
        return;
    CodeBlockData *const data = CodeBlockData::testBlockData(block);
    data->setFolded(!data->isFolded());
    settleLines(block, lastInLevel(block.next(), foldingLevel(block) + 1));
}

/// Returns whether a folded line asks for a line to be hidden.
bool CodeEditorPrivate::isCovered(const QTextBlock &block) const
{
    return coverOf(block) >= 0;
}

/// Shows and hides lines as the folded lines above them ask for: those from \a first to \a last,
/// and those behind them up to one that is in sight with right. Returns whether any changed.
bool CodeEditorPrivate::settleLines(const QTextBlock &first, const QTextBlock &last)
{
    int cover = coverOf(first);
    bool hasChanged = false;
    bool isBehind = false;
    for (QTextBlock block = first; block.isValid(); block = block.next()) {
        if (int(foldingLevel(block)) <= cover)
            cover = -1;
        const bool shown = cover < 0 || !block.next().isValid();
        if (isBehind && shown && block.isVisible())
            break;
        hasChanged |= setShown(block, shown);
        if (cover < 0 && isFolded(block)) {
            if (isFoldable(block))
                cover = int(foldingLevel(block));
            else
                unfold(block);
        }
        isBehind |= block == last;
    }
    return hasChanged;
}

bool CodeEditorPrivate::reveal(const QTextBlock &block)
{
    for (QTextBlock header = headerOf(block); header.isValid(); header = headerOf(header))
        unfold(header);
    QTextBlock first = block;
    while (first.previous().isValid() && !first.previous().isVisible())
        first = first.previous();
    return settleLines(first, block);
}

void CodeEditorPrivate::foldingChanged()
{
    hoverFolded(QTextBlock());
    auto *const layout = static_cast<QPlainTextDocumentLayout *>(document->documentLayout());
    layout->requestUpdate();
    Q_EMIT layout->documentSizeChanged(layout->documentSize());
}

void CodeEditorPrivate::leaveHiddenLine()
{
    QTextCursor cursor = editor->textCursor();
    if (cursor.block().isVisible())
        return;
    cursor.setPosition(endOfShownAbove(cursor.block()));
    editor->setTextCursor(cursor);
}

void CodeEditorPrivate::passHiddenLines()
{
    QTextCursor cursor = editor->textCursor();
    const auto mode = cursor.hasSelection() ? QTextCursor::KeepAnchor : QTextCursor::MoveAnchor;
    const QTextBlock next = nextShown(cursor.block());
    if (cursor.position() > lastPosition && next.isValid())
        cursor.setPosition(next.position(), mode);
    else
        cursor.setPosition(endOfShownAbove(cursor.block()), mode);
    editor->setTextCursor(cursor);
}

void CodeEditorPrivate::revealCursor()
{
    const QTextBlock block = editor->textCursor().block();
    if (block.isVisible() || !reveal(block))
        return;
    foldingChanged();
    editor->ensureCursorVisible();
}

void CodeEditor::toggleBlockVisible(const QTextBlock &block)
{
    if (!d->document || !d->isFoldable(block))
        return;
    d->toggleFolded(block);
    d->foldingChanged();
    d->leaveHiddenLine();
}

void CodeEditor::foldAll()
{
    if (!d->document)
        return;
    unsigned int levelAbove = 0;
    for (QTextBlock block = document()->begin(); block.isValid(); block = block.next()) {
        const unsigned int level = foldingLevel(block);
        if (block.isVisible() && level > levelAbove && !isFolded(block.previous()))
            d->toggleFolded(block.previous());
        levelAbove = level;
    }
    d->foldingChanged();
    d->leaveHiddenLine();
}

void CodeEditor::unfoldAll()
{
    if (!d->document)
        return;
    unsigned int levelAbove = 0;
    for (QTextBlock block = document()->begin(); block.isValid(); block = block.next()) {
        const unsigned int level = foldingLevel(block);
        if (!block.isVisible() && level == 1 && levelAbove == 0 && isFolded(block.previous()))
            d->toggleFolded(block.previous());
        levelAbove = level;
    }
    d->foldingChanged();
}

QRectF CodeEditorPrivate::foldBoxRect(const QTextBlock &block) const
{
    const QTextBlock next = block.next();
    if (!isFolded(block) || !block.isVisible() || !next.isValid() || next.isVisible())
        return QRectF();
    const QPointF origin =
        editor->blockBoundingGeometry(block).translated(editor->contentOffset()).topLeft();
    const QTextLayout *const layout = block.layout();
    const QRectF text =
        layout->lineAt(layout->lineCount() - 1).naturalTextRect().translated(origin);
    const QFontMetricsF metrics(editor->document()->defaultFont());
    // Lines of one pixel are sharp between the pixels' edges.
    return QRectF(std::floor(text.right()) + BoxDistance + 0.5, std::floor(text.top()) + 0.5,
                  std::ceil(metrics.horizontalAdvance(boxText())), std::floor(text.height()) - 1);
}

QTextBlock CodeEditorPrivate::foldedBlockAt(const QPoint &position) const
{
    const QTextBlock block = shownLineAt(position.y());
    return foldBoxRect(block).contains(position) ? block : QTextBlock();
}

void CodeEditorPrivate::paintFoldBoxes(QPainter &painter)
{
    painter.setFont(editor->document()->defaultFont());
    painter.setBrush(Qt::NoBrush);
    painter.setPen(Qt::gray);
    for (const ShownLine &line : shownLines(0, editor->viewport()->height())) {
        const QRectF rect = foldBoxRect(line.block);
        if (rect.isNull())
            continue;
        painter.drawRoundedRect(rect, CornerRadius, CornerRadius);
        painter.drawText(rect, Qt::AlignCenter, boxText().trimmed());
    }
}

void CodeEditorPrivate::paintHoverPanel(QPainter &painter)
{
    if (!hoveredBlock.isValid())
        return;
    const QRectF line =
        editor->blockBoundingGeometry(hoveredBlock).translated(editor->contentOffset());
    const qreal margin = editor->document()->documentMargin();
    const qreal room = editor->viewport()->height() - line.bottom();
    std::vector<std::unique_ptr<QTextLayout>> hidden;
    qreal height = 0;
    qreal width = 0;
    for (QTextBlock block = hoveredBlock.next();
         block.isValid() && !block.isVisible() && height < room; block = block.next()) {
        hidden.push_back(layoutOf(block, QPointF(margin, height)));
        const QTextLine text = hidden.back()->lineAt(0);
        height += text.height();
        width = qMax(width, text.naturalTextWidth());
    }
    if (hidden.empty())
        return;
    painter.setBrush(editor->palette().base());
    painter.setPen(Qt::gray);
    const QRectF panel(line.left() + 0.5, std::floor(line.bottom()) + 0.5,
                       std::ceil(width + 2 * margin), std::ceil(height));
    painter.drawRoundedRect(panel, CornerRadius, CornerRadius);
    painter.setPen(editor->palette().color(QPalette::Text));
    for (const std::unique_ptr<QTextLayout> &layout : hidden)
        layout->draw(&painter, line.bottomLeft());
}

void CodeEditorPrivate::hoverFolded(const QTextBlock &block)
{
    if (block.isValid() && (block == hoveredBlock || block == pendingHoveredBlock))
        return;
    hoverTimer.stop();
    pendingHoveredBlock = block;
    if (std::exchange(hoveredBlock, QTextBlock()).isValid())
        editor->viewport()->update();
    if (block.isValid())
        hoverTimer.start(HoverDelay, editor);
}

void CodeEditorPrivate::showHovered()
{
    hoverTimer.stop();
    hoveredBlock = std::exchange(pendingHoveredBlock, QTextBlock());
    editor->viewport()->update();
}

} // namespace Vela
