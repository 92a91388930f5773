// SPDX-License-Identifier: MIT
#include "image/imageoperations.h"
#include "image/pixels_p.h"

#include <algorithm>
#include <array>

namespace Vela {

namespace {

/// Further right or down no bounds begin.
constexpr int Far = 100000;

/// The pixels for which \a isVisible is true; reads of each row only what lies outside of the
/// bounds so far.
template <typename Pixel, typename IsVisible>
QRect visibleRect(const QImage &image, IsVisible isVisible)
{
    const int width = image.width();
    int left = Far;
    int right = -Far;
    int top = Far;
    int bottom = -Far;
    for (int y = 0; y < image.height(); ++y) {
        const Pixel *row = constPixels<Pixel>(image, y);
        const int first = int(std::find_if(row, row + width, isVisible) - row);
        if (first == width)
            continue;
        int last = width - 1;
        while (last > right && !isVisible(row[last]))
            --last;
        left = std::min(left, first);
        right = std::max(right, last);
        top = std::min(top, y);
        bottom = y;
    }
    return bottom < 0 ? QRect() : QRect(QPoint(left, top), QPoint(right, bottom));
}

QRect indexedRect(const QImage &image)
{
    const QVector<QRgb> table = image.colorTable();
    std::array<bool, 256> visible;
    visible.fill(true);
    bool transparent = false;
    for (int i = 0; i < std::min<int>(table.size(), 256); ++i) {
        visible[std::size_t(i)] = qAlpha(table[i]) != 0;
        transparent = transparent || qAlpha(table[i]) == 0;
    }
    if (!transparent)
        visible[*image.constScanLine(0)] = false;
    return visibleRect<uchar>(image, [&visible](uchar index) { return visible[index]; });
}

QRect contentRect(const QImage &image)
{
    switch (image.format()) {
    case QImage::Format_ARGB32:
        return visibleRect<QRgb>(image, [](QRgb color) { return qAlpha(color) != 0; });
    case QImage::Format_RGB32:
    case QImage::Format_ARGB32_Premultiplied: {
        const QRgb background = *constPixels<QRgb>(image, 0);
        return visibleRect<QRgb>(image, [background](QRgb color) { return color != background; });
    }
    case QImage::Format_Indexed8:
        return indexedRect(image);
    default:
        return {};
    }
}

} // namespace

QRect cropImageRect(const QImage &image, int margin)
{
    const QRect rect = image.isNull() ? QRect() : contentRect(image);
    if (rect.isNull() || margin <= 0)
        return rect;
    const int reach = std::min(margin, std::max(image.width(), image.height()));
    return rect.adjusted(-reach, -reach, reach, reach) & image.rect();
}

bool cropImage(QImage &image, QPoint *offset, int margin)
{
    const QRect rect = cropImageRect(image, margin);
    if (!rect.isValid() || rect == image.rect())
        return false;
    if (offset)
        *offset = rect.topLeft();
    image = image.copy(rect);
    return true;
}

} // namespace Vela
