// SPDX-License-Identifier: MIT
#include "image/imageoperations.h"
#include "image/pixels_p.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace Vela {

namespace {

struct Turn
{
    float cos;
    float sin;
};

/// Where the turned image lies, seen from its first pixel; null if it is too large for an image.
QRect turnedRect(QSize size, Turn turn)
{
    const float w = float(size.width());
    const float h = float(size.height());
    const auto x = {qint64(0), qint64(-h * turn.sin), qint64(w * turn.cos - h * turn.sin),
                    qint64(w * turn.cos)};
    const auto y = {qint64(0), qint64(h * turn.cos), qint64(h * turn.cos + w * turn.sin),
                    qint64(w * turn.sin)};
    const auto [minX, maxX] = std::minmax_element(x.begin(), x.end());
    const auto [minY, maxY] = std::minmax_element(y.begin(), y.end());
    if (std::max(*maxX - *minX, *maxY - *minY) > std::numeric_limits<int>::max())
        return {};
    return {int(*minX), int(*minY), int(*maxX - *minX), int(*maxY - *minY)};
}

template <typename Pixel>
void turn(const QImage &image, QImage &target, QPoint origin, Turn turn, Pixel fill)
{
    const int width = image.width();
    const int height = image.height();
    const uchar *source = image.constBits();
    const qsizetype sourceLine = image.bytesPerLine();
    const int targetWidth = target.width();
    for (int y = 0; y < target.height(); ++y) {
        Pixel *row = pixels<Pixel>(target, y);
        const float down = float(y + origin.y());
        for (int x = 0; x < targetWidth; ++x) {
            const float across = float(x + origin.x());
            const auto sourceX = qint64(across * turn.cos + down * turn.sin);
            const auto sourceY = qint64(down * turn.cos - across * turn.sin);
            const bool inside = sourceX >= 0 && sourceX < width && sourceY >= 0 && sourceY < height;
            row[x] = inside
                ? reinterpret_cast<const Pixel *>(source + sourceY * sourceLine)[sourceX]
                : fill;
        }
    }
}

} // namespace

QImage rotateImage(QImage image, float radians, unsigned int fill)
{
    image = withPlainPixels(image);
    if (image.isNull() || !std::isfinite(radians))
        return {};
    const Turn angle{std::cos(radians), std::sin(radians)};
    const QRect rect = turnedRect(image.size(), angle);
    QImage target = makeImage(rect.size(), image.format());
    if (target.isNull())
        return {};
    if (image.format() == QImage::Format_Indexed8)
        turn<uchar>(image, target, rect.topLeft(), angle, uchar(fill));
    else
        turn<QRgb>(image, target, rect.topLeft(), angle, fill);
    return target;
}

} // namespace Vela
