// SPDX-License-Identifier: MIT
#include "code/codelayout.h"

#include "code/codeblockdata.h"

#include <QFontMetricsF>
#include <QTextBlock>
#include <QTextDocument>
#include <QTextLayout>
#include <cmath>
#include <limits>
#include <utility>

namespace Vela {

CodeLayout::CodeLayout(QTextDocument *document)
    : QPlainTextDocumentLayout(document)
{
}

QSizeF CodeLayout::documentSize() const
{
    const QSizeF size = QPlainTextDocumentLayout::documentSize();
    const bool isCurrent = m_maximumViewWidth == size.width();
    return QSizeF(isCurrent ? qMax(size.width(), m_maximumWidth) : size.width(), size.height());
}

QRectF CodeLayout::blockBoundingRect(const QTextBlock &block) const
{
    // Views ask for each of the lines that are folded away, and there may be very many.
    if (!block.isValid() || !block.isVisible())
        return QRectF();
    if (block.layout()->lineCount() == 0)
        const_cast<CodeLayout *>(this)->layOut(block);
    return QPlainTextDocumentLayout::blockBoundingRect(block);
}

void CodeLayout::documentChanged(int from, int charsRemoved, int charsAdded)
{
    Q_UNUSED(charsRemoved)
    const int blockCount = document()->blockCount();
    const QTextBlock first = lineAt(from);
    QTextBlock last = lineAt(from + qMax(0, charsAdded - 1));
    if (first == last && blockCount == m_blockCount) {
        relayOut(first);
        return;
    }
    // A line end that comes or goes changes the line behind it as well.
    const bool countChanged = std::exchange(m_blockCount, blockCount) != blockCount;
    if (countChanged && last.next().isValid())
        last = last.next();
    const bool visibilityChanged = clearLayouts(first, last);
    if (m_changedLine >= first.blockNumber())
        m_changedLine = -1;
    if (countChanged && first == document()->firstBlock() && last == document()->lastBlock())
        m_maximumWidth = 0;
    if (countChanged || visibilityChanged)
        announceSize();
    requestUpdate();
}

QTextBlock CodeLayout::lineAt(int position) const
{
    const QTextBlock block = document()->findBlock(position);
    return block.isValid() ? block : document()->lastBlock();
}

// A line that is typed in is laid out anew for each character, and its glyphs are asked for again
// by the cursor and when it is painted, so they are kept; those of the line before are not.
void CodeLayout::relayOut(const QTextBlock &block)
{
    takeNew(block);
    // Of the many texts of a project few are ever shown.
    if (!m_isAsked)
        return requestUpdate();
    const int line = block.blockNumber();
    qreal height = block.layout()->lineCount() > 0 ? block.layout()->boundingRect().height() : -1;
    if (line != m_changedLine) {
        document()->findBlockByNumber(m_changedLine).clearLayout();
        m_changedLine = line;
    } else if (height < 0) {
        height = m_changedHeight;
    }
    if (m_blockCount == 1)
        m_maximumWidth = 0;
    layOut(block);
    if (m_blockCount == 1)
        announceSize();
    if (m_changedHeight == height)
        Q_EMIT updateBlock(block);
    else
        requestUpdate();
}

// Returns whether the line is new, and notes that it is no longer. It has no layout then, or one
// that was only given formats.
bool CodeLayout::takeNew(const QTextBlock &block)
{
    CodeBlockData *const data = CodeBlockData::testBlockData(block);
    return data && std::exchange(data->m_isNew, false);
}

// Returns whether lines came to sight or went out of it.
bool CodeLayout::clearLayouts(const QTextBlock &first, const QTextBlock &last)
{
    bool visibilityChanged = false;
    for (QTextBlock block = first; block.isValid(); block = block.next()) {
        if (!takeNew(block)) {
            block.clearLayout();
            if (block.isVisible() != (block.lineCount() > 0)) {
                block.setLineCount(block.isVisible() ? 1 : 0);
                visibilityChanged = true;
            }
        }
        if (block == last)
            break;
    }
    return visibilityChanged;
}

void CodeLayout::layOut(QTextBlock block)
{
    m_isAsked = true;
    const qreal margin = document()->documentMargin();
    const QTextOption option = document()->defaultTextOption();
    const qreal viewWidth = QPlainTextDocumentLayout::documentSize().width();
    qreal lineWidth = viewWidth > 0 ? viewWidth : qreal(std::numeric_limits<int>::max());
    lineWidth -= 2 * margin;
    if (option.flags() & QTextOption::AddSpaceForLineAndParagraphSeparators)
        lineWidth -= QFontMetricsF(block.charFormat().font()).horizontalAdvance(QChar(0x21B5));

    const bool isChangedLine = block.blockNumber() == m_changedLine;
    QTextLayout *const layout = block.layout();
    layout->setCacheEnabled(isChangedLine);
    layout->setTextOption(option);
    qreal height = 0;
    qreal width = 0;
    layout->beginLayout();
    for (QTextLine line = layout->createLine(); line.isValid(); line = layout->createLine()) {
        line.setLeadingIncluded(true);
        line.setLineWidth(lineWidth);
        line.setPosition(QPointF(margin, height));
        height += line.height();
        if (line.leading() < 0)
            height += std::ceil(line.leading());
        width = qMax(width, line.naturalTextWidth() + 2 * margin);
    }
    layout->endLayout();
    if (isChangedLine)
        m_changedHeight = layout->boundingRect().height();

    const int lineCount = block.isVisible() ? layout->lineCount() : 0;
    const bool isOtherCount = block.lineCount() != lineCount;
    if (isOtherCount)
        block.setLineCount(lineCount);
    if (m_maximumViewWidth != viewWidth) {
        m_maximumViewWidth = viewWidth;
        m_maximumWidth = 0;
    }
    const bool isWidest = width > qMax(viewWidth, m_maximumWidth);
    m_maximumWidth = qMax(width, m_maximumWidth);
    if (isOtherCount || isWidest)
        announceSize();
}

// A view that hears of a new size lays out what it shows, which may change the size again.
void CodeLayout::announceSize()
{
    m_sizeChanged = true;
    if (m_announcing)
        return;
    m_announcing = true;
    while (m_sizeChanged) {
        m_sizeChanged = false;
        Q_EMIT documentSizeChanged(documentSize());
    }
    m_announcing = false;
}

} // namespace Vela
