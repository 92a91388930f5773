// SPDX-License-Identifier: MIT
#include "editor/codeeditorextraarea.h"

#include "code/codeblockdata.h"
#include "code/codedocument.h"
#include "code/codemark.h"
#include "editor/codeeditor.h"
#include "editor/codeeditor_p.h"

#include <QPaintEvent>
#include <QPainter>
#include <QScrollBar>
#include <QStyle>

#include <cmath>

namespace Vela {

namespace {

constexpr int Gap = 4; ///< pixels between the numbers and the border; holds the bars of changes
constexpr int Border = 1;
constexpr int BarWidth = 2;
constexpr int MinimumDigits = 2;
constexpr int MinimumBox = 9;
constexpr int NumbersDarker = 115; ///< percent
constexpr int MinimumDistance = 7; ///< pixels that the mouse is taken to be beyond at least

} // namespace

CodeEditorExtraArea::CodeEditorExtraArea(CodeEditor *editor)
    : QWidget(editor)
    , m_editor(editor)
    , m_openBox(QStringLiteral(":/vlib_icons/icons/contract.png"))
    , m_foldedBox(QStringLiteral(":/vlib_icons/icons/expand.png"))
{
    setAttribute(Qt::WA_OpaquePaintEvent);
    setCursor(Qt::ArrowCursor);
}

int CodeEditorExtraArea::neededWidth(int lineCount) const
{
    return marksWidth() + numbersWidth(lineCount) + Gap + Border + foldingWidth();
}

QSize CodeEditorExtraArea::sizeHint() const
{
    return QSize(neededWidth(m_editor->blockCount()), 0);
}

int CodeEditorExtraArea::numbersWidth(int lineCount) const
{
    if (!m_editor->d->formatting.lineNumbers)
        return 0;
    const int digits = qMax(MinimumDigits, QString::number(lineCount).size());
    return digits * m_editor->fontMetrics().horizontalAdvance(QLatin1Char('9'));
}

int CodeEditorExtraArea::numbersWidth() const
{
    return numbersWidth(m_editor->blockCount());
}

int CodeEditorExtraArea::marksWidth() const
{
    return m_editor->d->formatting.marks ? m_editor->fontMetrics().lineSpacing() : 0;
}

int CodeEditorExtraArea::foldingWidth() const
{
    if (!m_editor->d->formatting.foldingMarkers)
        return 0;
    const int spacing = m_editor->fontMetrics().lineSpacing();
    return spacing + spacing % 2 + 1;
}

int CodeEditorExtraArea::foldingStart() const
{
    return marksWidth() + numbersWidth() + Gap + Border;
}

// The marks are farthest from the text and the boxes nearest, on either side of it.
QRect CodeEditorExtraArea::column(int start, int width) const
{
    return QStyle::visualRect(layoutDirection(), rect(), QRect(start, 0, width, height()));
}

void CodeEditorExtraArea::paintEvent(QPaintEvent *event)
{
    QPainter painter(this);
    const QColor color = palette().color(QPalette::Window);
    painter.fillRect(event->rect(), color);
    painter.fillRect(column(0, foldingStart()) & event->rect(), color.darker(NumbersDarker));
    painter.setFont(m_editor->font());
    const auto lines = m_editor->d->shownLines(event->rect().top(), event->rect().bottom());
    for (const CodeEditorPrivate::ShownLine &line : lines)
        paintLine(painter, line.block, qRound(line.top), qRound(line.height));
}

void CodeEditorExtraArea::paintLine(QPainter &painter, const QTextBlock &block, int top, int height)
{
    if (numbersWidth() > 0) {
        const QRect numbers = column(marksWidth(), numbersWidth());
        painter.setPen(palette().color(QPalette::WindowText));
        painter.drawText(QRect(numbers.left(), top, numbers.width(), height),
                         Qt::AlignRight | Qt::AlignTop, QString::number(block.blockNumber() + 1));
    }
    if (marksWidth() > 0)
        paintMarks(painter, block, top);
    if (m_editor->d->document)
        paintChangeBar(painter, block, top, height);
    if (foldingWidth() > 0)
        paintFolding(painter, block, top, height);
}

void CodeEditorExtraArea::paintMarks(QPainter &painter, const QTextBlock &block, int top)
{
    const QRect rect(column(0, marksWidth()).left(), top, marksWidth(), marksWidth());
    const CodeBlockData *const known = CodeBlockData::testBlockData(block);
    for (const CodeMark *const mark : known ? known->marks() : QList<CodeMark *>()) {
        painter.save();
        mark->paint(painter, rect);
        painter.restore();
    }
    if (block.blockNumber() == m_editor->d->markedLine)
        CodeEditorPrivate::lineMarkIcon.paint(&painter, rect);
}

void CodeEditorExtraArea::paintChangeBar(QPainter &painter, const QTextBlock &block, int top,
                                         int height)
{
    const int revision = block.revision();
    if (revision == m_editor->d->document->savedRevision())
        return;
    const QRect bar = column(marksWidth() + numbersWidth() + Gap - BarWidth - 1, BarWidth);
    painter.fillRect(QRect(bar.left(), top, bar.width(), height),
                     revision < 0 ? Qt::darkGreen : Qt::red);
}

void CodeEditorExtraArea::paintFolding(QPainter &painter, const QTextBlock &block, int top,
                                       int height)
{
    const CodeEditorPrivate &d = *m_editor->d;
    const QRect folding = column(foldingStart(), foldingWidth());
    if (!d.blocks.isEmpty())
        painter.fillRect(QRect(folding.left(), top, folding.width(), height),
                         d.bandColor(block.blockNumber()));
    if (!d.isFoldable(block))
        return;
    const int spacing = m_editor->fontMetrics().lineSpacing();
    const int size = qMax(MinimumBox, qMin(foldingWidth(), m_openBox.width()));
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    painter.drawPixmap(QRect(folding.left() + (folding.width() - size) / 2,
                             top + (spacing - size) / 2, size, size),
                       isFolded(block) ? m_foldedBox : m_openBox);
}

void CodeEditorExtraArea::mousePressEvent(QMouseEvent *event)
{
    if (event->button() != Qt::LeftButton || !m_editor->d->document)
        return;
    const QTextBlock block = m_editor->d->shownLineAt(event->y());
    if (column(foldingStart(), foldingWidth()).contains(event->pos())) {
        m_editor->toggleBlockVisible(block);
    } else if (column(0, marksWidth()).contains(event->pos())) {
        if (block.isValid())
            Q_EMIT m_editor->markRequested(block.blockNumber() + 1);
    } else if (block.isValid()) {
        m_selectionStart = block.blockNumber();
        selectLinesTo(event->y());
    }
}

void CodeEditorExtraArea::mouseMoveEvent(QMouseEvent *event)
{
    if (m_selectionStart < 0)
        return;
    selectLinesTo(event->y());
    scrollBeyond(event->y());
}

void CodeEditorExtraArea::mouseReleaseEvent(QMouseEvent *event)
{
    if (event->button() == Qt::LeftButton)
        endSelecting();
}

void CodeEditorExtraArea::endSelecting()
{
    m_selectionStart = -1;
    m_scrollTimer.stop();
}

void CodeEditorExtraArea::wheelEvent(QWheelEvent *event)
{
    QCoreApplication::sendEvent(m_editor->viewport(), event);
}

void CodeEditorExtraArea::timerEvent(QTimerEvent *event)
{
    if (event->timerId() != m_scrollTimer.timerId()) {
        QWidget::timerEvent(event);
        return;
    }
    m_editor->verticalScrollBar()->triggerAction(
        m_mouseY < 0 ? QAbstractSlider::SliderSingleStepSub : QAbstractSlider::SliderSingleStepAdd);
    selectLinesTo(m_mouseY);
    scrollBeyond(m_mouseY);
}

// Selects whole lines, with what is folded behind them.
void CodeEditorExtraArea::selectLinesTo(int y)
{
    const CodeDocument *const document = m_editor->d->document;
    const QTextBlock start =
        document ? document->findBlockByNumber(m_selectionStart) : QTextBlock();
    if (!start.isValid())
        return;
    const int top = int(std::ceil(document->documentMargin()));
    QTextBlock end = m_editor->d->shownLineAt(qBound(top, y, height() - 1));
    if (!end.isValid())
        end = document->lastBlock();
    const auto endOf = [document](const QTextBlock &block) {
        const QTextBlock next = nextShown(block);
        return next.isValid() ? next.position() : document->characterCount() - 1;
    };
    const bool isUpward = end.blockNumber() < m_selectionStart;
    QTextCursor cursor(start);
    cursor.setPosition(isUpward ? endOf(start) : start.position());
    cursor.setPosition(isUpward ? end.position() : endOf(end), QTextCursor::KeepAnchor);
    m_editor->setTextCursor(cursor);
}

// Scrolls the faster the farther the mouse is beyond the area.
void CodeEditorExtraArea::scrollBeyond(int y)
{
    m_mouseY = y;
    const int beyond = qMax(y, height() - 1 - y) - height();
    if (beyond < 0) {
        m_scrollTimer.stop();
        return;
    }
    const int distance = qMax(beyond, MinimumDistance);
    m_scrollTimer.start(4900 / (distance * distance), this);
}

} // namespace Vela
