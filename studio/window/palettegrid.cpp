// SPDX-License-Identifier: MIT
#include "studio/window/palettegrid.h"

#include <QHelpEvent>
#include <QKeyEvent>
#include <QPainter>
#include <QToolTip>

#include <algorithm>

namespace Studio {

namespace {

constexpr int Columns = 16;
constexpr int UsualSide = 14;
constexpr int LeastSide = 5;

/// Returns how far an arrow key goes; 0 for another key.
int stepOf(int key)
{
    switch (key) {
    case Qt::Key_Left:
        return -1;
    case Qt::Key_Right:
        return 1;
    case Qt::Key_Up:
        return -Columns;
    case Qt::Key_Down:
        return Columns;
    default:
        return 0;
    }
}

} // namespace

PaletteGrid::PaletteGrid(QWidget *parent)
    : QWidget(parent)
{
    setAccessibleName(tr("Palette"));
    setFocusPolicy(Qt::TabFocus);
}

void PaletteGrid::setColors(const QVector<QRgb> &colors)
{
    m_colors = colors;
    m_current = 0;
    setAccessibleDescription(tr("Colors: %1").arg(colors.size()));
    update();
}

int PaletteGrid::cellSide() const
{
    return std::max(LeastSide, std::min(width(), height()) / Columns);
}

QRect PaletteGrid::cell(int index) const
{
    const int side = cellSide();
    return {index % Columns * side, index / Columns * side, side, side};
}

int PaletteGrid::colorAt(QPoint place) const
{
    const int column = place.x() / cellSide();
    const int index = place.y() / cellSide() * Columns + column;
    const bool isInside =
        place.x() >= 0 && place.y() >= 0 && column < Columns && index < m_colors.size();
    return isInside ? index : -1;
}

QString PaletteGrid::nameOf(int index) const
{
    const QRgb color = m_colors.at(index);
    return tr("%1: red %2, green %3, blue %4, alpha %5")
        .arg(index)
        .arg(qRed(color))
        .arg(qGreen(color))
        .arg(qBlue(color))
        .arg(qAlpha(color));
}

QSize PaletteGrid::sizeHint() const
{
    return {Columns * UsualSide + 1, Columns * UsualSide + 1};
}

QSize PaletteGrid::minimumSizeHint() const
{
    return {Columns * LeastSide + 1, Columns * LeastSide + 1};
}

bool PaletteGrid::event(QEvent *event)
{
    if (event->type() != QEvent::ToolTip)
        return QWidget::event(event);
    const auto *const help = static_cast<QHelpEvent *>(event);
    const int index = colorAt(help->pos());
    if (index < 0) {
        QToolTip::hideText();
        event->ignore();
        return true;
    }
    QToolTip::showText(help->globalPos(), nameOf(index), this, cell(index));
    return true;
}

void PaletteGrid::keyPressEvent(QKeyEvent *event)
{
    const int step = stepOf(event->key());
    if (step == 0)
        return QWidget::keyPressEvent(event);
    const int index = m_current + step;
    if (index < 0 || index >= m_colors.size())
        return;
    m_current = index;
    setAccessibleDescription(nameOf(index));
    QToolTip::showText(mapToGlobal(cell(index).bottomRight()), nameOf(index), this, cell(index));
    update();
}

// A colour that is not opaque shows the ground in its lower half; what cannot be seen shows nothing
// else.
void PaletteGrid::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    for (int i = 0; i < m_colors.size(); ++i) {
        const QRect area = cell(i);
        const QColor color = QColor::fromRgba(m_colors.at(i));
        painter.fillRect(area, palette().color(QPalette::Base));
        painter.fillRect(area, color);
        if (color.alpha() > 0)
            painter.fillRect(QRect(area.topLeft(), QSize(area.width(), area.height() / 2)),
                             QColor(color.rgb()));
        painter.setPen(palette().color(QPalette::Window));
        painter.drawRect(area.adjusted(0, 0, -1, -1));
    }
    if (!hasFocus() || m_current >= m_colors.size())
        return;
    // Two frames: one of them is seen on any colour.
    const QRect area = cell(m_current).adjusted(0, 0, -1, -1);
    painter.setPen(palette().color(QPalette::WindowText));
    painter.drawRect(area);
    painter.setPen(palette().color(QPalette::Base));
    painter.drawRect(area.adjusted(1, 1, -1, -1));
}

} // namespace Studio
