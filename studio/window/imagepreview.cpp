// SPDX-License-Identifier: MIT
#include "studio/window/imagepreview.h"

#include <QPainter>

namespace Studio {

namespace {

constexpr int CheckSize = 8;
constexpr int Space = 16;    // pixels left free round the image
constexpr int MaxFactor = 8; // a tiny image shall not fill the whole window

QPixmap checkers(const QPalette &palette)
{
    QPixmap tile(2 * CheckSize, 2 * CheckSize);
    tile.fill(palette.color(QPalette::Base));
    QPainter painter(&tile);
    const QColor dark = palette.color(QPalette::AlternateBase);
    painter.fillRect(0, 0, CheckSize, CheckSize, dark);
    painter.fillRect(CheckSize, CheckSize, CheckSize, CheckSize, dark);
    return tile;
}

} // namespace

ImagePreview::ImagePreview(QWidget *parent)
    : QWidget(parent)
{
    setBackgroundRole(QPalette::Base);
    setAutoFillBackground(true);
}

void ImagePreview::setImage(const QImage &image)
{
    m_image = image;
    setAccessibleDescription(tr("%1 by %2 pixels").arg(image.width()).arg(image.height()));
    update();
}

QSize ImagePreview::minimumSizeHint() const
{
    return QSize(64, 64);
}

QRect ImagePreview::imageRect() const
{
    const QSize room = size() - QSize(2 * Space, 2 * Space);
    const int fit =
        qMin(room.width() / qMax(1, m_image.width()), room.height() / qMax(1, m_image.height()));
    QSize shown = m_image.size() * qBound(1, fit, MaxFactor);
    if (fit < 1)
        shown.scale(room.expandedTo(QSize(1, 1)), Qt::KeepAspectRatio);
    QRect area(QPoint(), shown);
    area.moveCenter(rect().center());
    return area;
}

void ImagePreview::paintEvent(QPaintEvent *)
{
    if (m_image.isNull())
        return;
    QPainter painter(this);
    const QRect area = imageRect();
    painter.drawTiledPixmap(area, checkers(palette()));
    // Whole multiples keep pixels square; only an image too large for the window is smoothed.
    painter.setRenderHint(QPainter::SmoothPixmapTransform, area.width() < m_image.width());
    painter.drawImage(area, m_image);
    painter.setPen(palette().color(QPalette::Mid));
    painter.drawRect(area.adjusted(-1, -1, 0, 0));
}

} // namespace Studio
