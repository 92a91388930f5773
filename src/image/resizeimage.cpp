// SPDX-License-Identifier: MIT
#include "image/imageoperations.h"
#include "image/nearestcolor_p.h"
#include "image/pixels_p.h"
#include "image/pixelscaling.h"

#include <algorithm>
#include <array>
#include <vector>

namespace Vela {

namespace {

/// Gives the image plain pixels, and returns another one of its format for the result; a null one
/// where there can be none.
QImage makeTarget(QImage &image, QSize size)
{
    image = withPlainPixels(image);
    return image.isNull() ? QImage() : makeImage(size, image.format());
}

/// Returns the pixel of the source for each one of the target. The last ones of a very large target
/// would lie behind the source: they are its last one.
std::vector<int> nearestPlaces(int sourceSize, int targetSize)
{
    const qint64 step = (qint64(sourceSize) << 16) / targetSize + 1;
    std::vector<int> places(std::size_t(targetSize), 0);
    qint64 place = 0;
    for (int &pixel : places) {
        pixel = int(std::min<qint64>(place >> 16, sourceSize - 1));
        place += step;
    }
    return places;
}

template <typename Pixel>
void resizeNearest(const QImage &image, QImage &target)
{
    const std::vector<int> columns = nearestPlaces(image.width(), target.width());
    const std::vector<int> rows = nearestPlaces(image.height(), target.height());
    int copied = -1;
    for (int y = 0; y < target.height(); ++y) {
        const int sourceY = rows[std::size_t(y)];
        Pixel *row = pixels<Pixel>(target, y);
        if (sourceY == copied) {
            const Pixel *above = constPixels<Pixel>(target, y - 1);
            std::copy(above, above + target.width(), row);
            continue;
        }
        copied = sourceY;
        const Pixel *source = constPixels<Pixel>(image, sourceY);
        for (int column : columns)
            *row++ = source[column];
    }
}

/// Where a pixel of the target lies between two of the source.
struct Between
{
    int first;
    int second;
    double weight; ///< of the second one
};

std::vector<Between> placesBetween(int sourceSize, int targetSize)
{
    const double ratio = double(sourceSize) / targetSize;
    std::vector<Between> places;
    places.reserve(std::size_t(targetSize));
    for (int i = 0; i < targetSize; ++i) {
        const double place = i * ratio;
        const int first = int(place);
        places.push_back({first, std::min(first + 1, sourceSize - 1), place - first});
    }
    return places;
}

using Channels = std::array<quint8, 4>;

quint8 between(quint8 first, quint8 second, double weight)
{
    return quint8(int(first * (1 - weight) + second * weight));
}

Channels between(const Channels &first, const Channels &second, double weight)
{
    return {between(first[0], second[0], weight), between(first[1], second[1], weight),
            between(first[2], second[2], weight), between(first[3], second[3], weight)};
}

/// A row of the source as wide as the target.
struct WideRow
{
    int y = -1;
    std::vector<Channels> colors;
};

/// \a colorOf and \a pixelOf turn a pixel into its channels and back. Each row of the source is
/// interpolated across once, for all rows of the target that it takes part in.
template <typename Pixel, typename ColorOf, typename PixelOf>
void resizeBilinear(const QImage &image, QImage &target, ColorOf colorOf, PixelOf pixelOf)
{
    const std::vector<Between> columns = placesBetween(image.width(), target.width());
    const std::vector<Between> rows = placesBetween(image.height(), target.height());
    const auto widen = [&](WideRow &row, int y) {
        if (row.y == y)
            return;
        row.y = y;
        row.colors.resize(columns.size());
        const Pixel *source = constPixels<Pixel>(image, y);
        std::transform(columns.begin(), columns.end(), row.colors.begin(), [&](Between place) {
            return between(colorOf(source[place.first]), colorOf(source[place.second]),
                           place.weight);
        });
    };
    WideRow top;
    WideRow bottom;
    for (int y = 0; y < target.height(); ++y) {
        const Between place = rows[std::size_t(y)];
        if (bottom.y == place.first)
            std::swap(top, bottom);
        widen(top, place.first);
        widen(bottom, place.second);
        std::transform(top.colors.begin(), top.colors.end(), bottom.colors.begin(),
                       pixels<Pixel>(target, y),
                       [&](const Channels &first, const Channels &second) {
                           return pixelOf(between(first, second, place.weight));
                       });
    }
}

/// Scales whole times up until the factor is reached, by four at most.
QImage enlargeEPX(const QImage &image, float factor)
{
    if (factor > 3)
        return scaleEPX(scaleEPX(image, 2), 2);
    return scaleEPX(image, factor > 2 ? 3 : 2);
}

QImage withPalette(const QImage &scaled, const RGBA *palette)
{
    QImage target = makeImage(scaled.size(), QImage::Format_Indexed8);
    if (target.isNull())
        return target;
    PaletteIndex index(palette);
    for (int y = 0; y < scaled.height(); ++y) {
        const QRgb *row = constPixels<QRgb>(scaled, y);
        std::transform(row, row + scaled.width(), pixels<uchar>(target, y),
                       [&index](QRgb color) { return index.find(toRGBA(color)); });
    }
    return target;
}

QImage enlargeHQ(const QImage &image, float factor, const RGBA *palette)
{
    QImage source = image;
    if (image.format() == QImage::Format_Indexed8) {
        QVector<QRgb> table(256);
        std::transform(palette, palette + 256, table.begin(), toRgb);
        source.setColorTable(table);
    }
    source = source.convertToFormat(QImage::Format_ARGB32);
    if (source.bytesPerLine() != source.width() * int(sizeof(QRgb)))
        source = source.copy(); // without padding

    const int times = factor > 3 ? 4 : factor > 2 ? 3 : 2;
    QImage scaled = makeEnlargedImage(source.size(), times, QImage::Format_ARGB32);
    if (source.isNull() || scaled.isNull())
        return {};
    scaleHQ(times, constPixels<quint32>(source, 0), source.width(), source.height(),
            pixels<quint32>(scaled, 0), scaled.bytesPerLine());
    return image.format() == QImage::Format_Indexed8 ? withPalette(scaled, palette)
                                                     : scaled.convertToFormat(image.format());
}

} // namespace

QImage resizeImage(QImage image, QSize size, RGBA (&palette)[256], ImageResizeFilter filter)
{
    if (image.isNull() || size.isEmpty())
        return {};
    const float factor = std::max(float(size.height()) / float(image.height()),
                                  float(size.width()) / float(image.width()));
    ImageResizeFilter rest = NearestFilter;
    switch (filter) {
    case NearestFilter:
        return resizeImageNearest(image, size);
    case BilinearFilter:
        return resizeImageBilinear(image, size, palette);
    case EpxNearestFilter:
    case EpxBilinearFilter:
        image = enlargeEPX(withPlainPixels(image), factor);
        rest = filter == EpxNearestFilter ? NearestFilter : BilinearFilter;
        break;
    case HqNearestFilter:
    case HqBilinearFilter:
        image = enlargeHQ(withPlainPixels(image), factor, palette);
        rest = filter == HqNearestFilter ? NearestFilter : BilinearFilter;
        break;
    default:
        return {};
    }
    return image.size() == size ? image : resizeImage(image, size, palette, rest);
}

QImage resizeImageNearest(QImage image, QSize size)
{
    QImage target = makeTarget(image, size);
    if (target.isNull())
        return {};
    if (image.format() == QImage::Format_Indexed8)
        resizeNearest<uchar>(image, target);
    else
        resizeNearest<quint32>(image, target);
    return target;
}

QImage resizeImageBilinear(QImage image, QSize size, RGBA (&palette)[256])
{
    QImage target = makeTarget(image, size);
    if (target.isNull())
        return {};
    if (image.format() == QImage::Format_Indexed8) {
        PaletteIndex index(palette);
        resizeBilinear<uchar>(
            image, target,
            [&palette](uchar pixel) {
                const RGBA color = palette[pixel];
                return Channels{color.r, color.g, color.b, color.a};
            },
            [&index](const Channels &color) {
                return index.find({color[0], color[1], color[2], color[3]});
            });
    } else {
        resizeBilinear<Channels>(
            image, target, [](const Channels &color) { return color; },
            [](const Channels &color) { return color; });
    }
    return target;
}

} // namespace Vela
