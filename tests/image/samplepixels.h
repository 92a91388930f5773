// SPDX-License-Identifier: MIT
#pragma once

#include <QImage>

#include <random>

/// Pixels as sprites have them, the same for the same seed.
namespace SamplePixels {

enum Kind { Runs, Noise, Dithered, Tiles, KindCount };

using Random = std::mt19937;

/// Returns a number below \a bound, on every system the same.
inline int below(Random &random, int bound)
{
    return int(random() % uint(bound));
}

/// Returns an indexed image of \a colors colours.
inline QImage make(Random &random, Kind kind, const QSize &size, int colors)
{
    QImage image(size, QImage::Format_Indexed8);
    const int tile = 2 + below(random, 15);
    const int gray = below(random, 4);
    const int longest = 1 << below(random, 10);
    int color = 0;
    int run = 0;
    for (int y = 0; y < size.height(); ++y) {
        uchar *row = image.scanLine(y);
        for (int x = 0; x < size.width(); ++x) {
            if (kind == Tiles && (y >= tile || x >= tile)) {
                const uchar *above = y >= tile ? image.constScanLine(y - tile) + x : row + x - tile;
                row[x] = below(random, 200) == 0 ? uchar(below(random, colors)) : *above;
            } else if (kind == Dithered) {
                const int level = x * colors * 4 / size.width() + gray;
                row[x] = uchar(qMin(colors - 1, level / 4 + int(level % 4 > (x % 2 * 2 + y % 2))));
            } else {
                if (kind != Runs || run-- == 0) {
                    color = below(random, colors);
                    run = kind == Runs ? below(random, longest) : 0;
                }
                row[x] = uchar(color);
            }
        }
    }
    return image;
}

/// Returns the rows of an indexed image without padding.
inline QByteArray joined(const QImage &image)
{
    QByteArray pixels;
    for (int y = 0; y < image.height(); ++y)
        pixels.append(reinterpret_cast<const char *>(image.constScanLine(y)), image.width());
    return pixels;
}

} // namespace SamplePixels
