// SPDX-License-Identifier: MIT
#include "studio/window/textview.h"

#include "studio/colors.h"

#include <QFontDatabase>
#include <QPaintEvent>
#include <QPainter>
#include <QScrollBar>
#include <QTextBlock>

namespace Studio {

namespace {

constexpr int MarginPadding = 8; // pixels at either side of a line's number

} // namespace

TextView::TextView(const Colors &colors, QWidget *parent)
    : QPlainTextEdit(parent)
    , m_colors(colors)
    , m_margin(new QWidget(this))
{
    setLineWrapMode(QPlainTextEdit::NoWrap);
    setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
    setTabStopDistance(4 * fontMetrics().horizontalAdvance(QLatin1Char(' ')));
    setFrameShape(QFrame::NoFrame);
    setReadOnly(true);
    // A text that is only read still has a cursor, so that the keyboard can reach all of it.
    setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    m_margin->installEventFilter(this);
    connect(this, &QPlainTextEdit::blockCountChanged, this, &TextView::placeMargin);
    connect(this, &QPlainTextEdit::updateRequest, this, &TextView::scrollMargin);
    connect(this, &QPlainTextEdit::cursorPositionChanged, this, &TextView::markLine);
    placeMargin();
    updateColors();
}

TextView::Place TextView::place() const
{
    return {textCursor().anchor(), textCursor().position(), verticalScrollBar()->value(),
            horizontalScrollBar()->value()};
}

void TextView::setPlace(const Place &place)
{
    const int end = document()->characterCount() - 1;
    QTextCursor cursor(document());
    cursor.setPosition(qMin(place.anchor, end));
    cursor.setPosition(qMin(place.position, end), QTextCursor::KeepAnchor);
    setTextCursor(cursor);
    verticalScrollBar()->setValue(place.top);
    horizontalScrollBar()->setValue(place.left);
}

void TextView::updateColors()
{
    QPalette own = palette();
    own.setColor(QPalette::Base, m_colors.color(QStringLiteral("background")));
    own.setColor(QPalette::Text, m_colors.color(QStringLiteral("foreground")));
    if (own != palette())
        setPalette(own);
    markLine();
}

void TextView::resizeEvent(QResizeEvent *event)
{
    QPlainTextEdit::resizeEvent(event);
    placeMargin();
}

void TextView::changeEvent(QEvent *event)
{
    QPlainTextEdit::changeEvent(event);
    if (event->type() == QEvent::FontChange)
        placeMargin();
    else if (event->type() == QEvent::PaletteChange)
        updateColors();
}

bool TextView::eventFilter(QObject *watched, QEvent *event)
{
    if (watched != m_margin || event->type() != QEvent::Paint)
        return QPlainTextEdit::eventFilter(watched, event);
    paintMargin(static_cast<QPaintEvent *>(event)->rect());
    return true;
}

int TextView::marginWidth() const
{
    const int digits = QString::number(qMax(99, blockCount())).size();
    return 2 * MarginPadding + digits * fontMetrics().horizontalAdvance(QLatin1Char('9'));
}

void TextView::placeMargin()
{
    setViewportMargins(marginWidth(), 0, 0, 0);
    const QRect area = contentsRect();
    m_margin->setGeometry(area.left(), area.top(), marginWidth(), area.height());
}

void TextView::scrollMargin(const QRect &rect, int dy)
{
    if (dy != 0)
        m_margin->scroll(0, dy);
    else
        m_margin->update(0, rect.y(), m_margin->width(), rect.height());
}

void TextView::paintMargin(const QRect &rect)
{
    QPainter painter(m_margin);
    painter.fillRect(rect, m_colors.color(QStringLiteral("line")));
    const QColor text = m_colors.color(QStringLiteral("foreground"));
    const QColor number = m_colors.color(QStringLiteral("line_number"));
    const int current = textCursor().blockNumber();
    const int width = m_margin->width() - MarginPadding;
    for (QTextBlock block = firstVisibleBlock(); block.isValid(); block = block.next()) {
        const QRectF area = blockBoundingGeometry(block).translated(contentOffset());
        if (area.top() > rect.bottom())
            return;
        const bool isCurrent = block.blockNumber() == current;
        painter.setPen(isCurrent ? text : number);
        painter.drawText(QRectF(0, area.top(), width, fontMetrics().height()),
                         Qt::AlignRight | Qt::AlignVCenter,
                         QString::number(block.blockNumber() + 1));
    }
}

void TextView::markLine()
{
    QTextEdit::ExtraSelection line;
    line.format.setBackground(m_colors.color(QStringLiteral("line")));
    line.format.setProperty(QTextFormat::FullWidthSelection, true);
    line.cursor = textCursor();
    line.cursor.clearSelection();
    setExtraSelections({line});
    m_margin->update();
}

} // namespace Studio
