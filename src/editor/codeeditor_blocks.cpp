// SPDX-License-Identifier: MIT
#include "code/codedocument.h"
#include "editor/codeeditor.h"
#include "editor/codeeditor_p.h"
#include "editor/codeeditorextraarea.h"

#include <QPainter>

#include <algorithm>

namespace Vela {

namespace {

constexpr int BlockDelay = 100; ///< milliseconds from the last move of the cursor
constexpr int DarkBelow = 129;  ///< the value below which a base colour is made lighter

QColor shifted(const QColor &color, int by)
{
    return QColor(qBound(0, color.red() + by, 255), qBound(0, color.green() + by, 255),
                  qBound(0, color.blue() + by, 255));
}

/// \a part is that of \a b, of 256.
QColor mixed(const QColor &a, const QColor &b, int part)
{
    const auto mix = [&](int x, int y) { return (x * (256 - part) + y * part) / 256; };
    return QColor(mix(a.red(), b.red()), mix(a.green(), b.green()), mix(a.blue(), b.blue()));
}

} // namespace

void CodeEditor::updateBlockHighlight()
{
    d->updateBlocks();
}

void CodeEditorPrivate::startBlockTimer()
{
    if (formatting.highlightBlocks)
        blockTimer.start(BlockDelay);
}

// The walk down goes on where that of the level before ended, so that all ranges together cost one
// walk over the outermost.
QVector<CodeEditorPrivate::BlockRange> CodeEditorPrivate::blockRanges() const
{
    QVector<BlockRange> ranges;
    QTextBlock block = editor->textCursor().block();
    if (isFoldable(block))
        block = block.next();
    QTextBlock last = block;
    for (QTextBlock open = headerOf(block); open.isValid(); open = headerOf(open)) {
        last = lastInLevel(last, foldingLevel(block));
        const QTextBlock shown = open.isVisible() ? open : nextShown(open);
        ranges.append({open.blockNumber(), last.blockNumber(), shown.blockNumber()});
        block = open;
    }
    return ranges;
}

void CodeEditorPrivate::updateBlocks()
{
    blockTimer.stop();
    QVector<BlockRange> ranges;
    if (document && formatting.highlightBlocks)
        ranges = blockRanges();
    if (ranges == blocks)
        return;
    blocks = ranges;
    editor->viewport()->update();
    extraArea->update();
}

void CodeEditorPrivate::paintBands(QPainter &painter, const QRect &rect)
{
    if (blocks.isEmpty())
        return;
    // What is above and below the text is outside of all blocks.
    painter.fillRect(rect, bandColor(-1));
    for (const ShownLine &line : shownLines(rect.top(), rect.bottom())) {
        painter.fillRect(QRectF(rect.left(), line.top, rect.width(), line.height),
                         bandColor(line.block.blockNumber()));
    }
}

// Each range lies inside of the next one.
QColor CodeEditorPrivate::bandColor(int line) const
{
    const auto innermost =
        std::find_if(blocks.begin(), blocks.end(), [line](const BlockRange &range) {
            return line >= range.open && line <= range.close;
        });
    const int depth = int(blocks.end() - innermost);
    const int count = blocks.size();
    const QColor base = formatting.blockColor.isValid() ? formatting.blockColor : baseColor;
    const bool isDark = base.value() < DarkBelow;
    const QColor outer = shifted(base, isDark ? 40 : -30);
    const QColor inner = shifted(base, isDark ? 20 : -15);
    if (depth == count)
        return base;
    if (depth == 0)
        return outer;
    if (depth == count - 1)
        return inner;
    return mixed(outer, inner, depth * (256 / (count - 2)));
}

} // namespace Vela
