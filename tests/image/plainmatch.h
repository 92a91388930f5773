// SPDX-License-Identifier: MIT
#pragma once

#include "image/rgba.h"

#include <QImage>

#include <limits>

/// The scan of all entries for each pixel, to compare the faster ways with.
namespace PlainMatch {

inline int distance(QRgb color, Vela::RGBA entry)
{
    const int red = qRed(color) - entry.r;
    const int green = qGreen(color) - entry.g;
    const int blue = qBlue(color) - entry.b;
    const int alpha = qAlpha(color) - entry.a;
    int rgb = qAlpha(color) == 0 ? 0 : red * red + green * green + blue * blue;
    if (qAlpha(color) < 255)
        rgb = qAlpha(color) * rgb / 255;
    return rgb + alpha * alpha;
}

inline int match(QRgb color, const Vela::RGBA *palette)
{
    int best = std::numeric_limits<int>::max();
    int index = 0;
    for (int i = 0; i < 256; ++i) {
        const int candidate = distance(color, palette[i]);
        if (candidate < best) {
            best = candidate;
            index = i;
        }
    }
    return index;
}

/// Of a Format_RGB32 or Format_ARGB32 image. Without a colour table.
inline QImage matched(const QImage &image, const Vela::RGBA *palette)
{
    QImage target(image.size(), QImage::Format_Indexed8);
    for (int y = 0; y < image.height(); ++y) {
        const QRgb *row = reinterpret_cast<const QRgb *>(image.constScanLine(y));
        for (int x = 0; x < image.width(); ++x)
            target.scanLine(y)[x] = uchar(match(row[x], palette));
    }
    return target;
}

} // namespace PlainMatch
