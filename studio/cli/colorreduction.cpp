// SPDX-License-Identifier: MIT
#include "studio/cli/colorreduction.h"

#include "image/colorquantizer.h"
#include "image/imageoperations.h"

#include <algorithm>

namespace Studio {

namespace {

constexpr int leastVisibleAlpha = 128;
constexpr int tableSize = 256;
constexpr int colorBits = 8;

bool isHidden(QRgb color)
{
    return qAlpha(color) < leastVisibleAlpha;
}

/// Calls \a visit for each row of an image of Format_ARGB32, from the top.
template <typename Visit>
bool anyPixel(const QImage &image, Visit visit)
{
    for (int y = 0; y < image.height(); ++y) {
        const auto *const row = reinterpret_cast<const QRgb *>(image.constScanLine(y));
        if (std::any_of(row, row + image.width(), visit))
            return true;
    }
    return false;
}

/// Returns the image with indices of \a colors, of which that at \a transparent, unless it is
/// negative, is for the hidden pixels only.
QImage matched(const QImage &argb, const QVector<QRgb> &colors, int transparent)
{
    const auto isSeen = [&colors, transparent](int index) {
        return index < colors.size() && index != transparent && qAlpha(colors.at(index)) > 0;
    };
    int firstSeen = 0;
    while (firstSeen < colors.size() && !isSeen(firstSeen))
        ++firstSeen;
    if (firstSeen == colors.size())
        firstSeen = qMax(0, transparent);

    // Of equal colours the first one is taken: entries that nothing is to get repeat another.
    Vela::RGBA table[tableSize];
    for (int i = 0; i < tableSize; ++i)
        table[i] = Vela::toRGBA(colors.at(isSeen(i) ? i : firstSeen));
    QImage image = argb;
    Vela::adaptImageToPalette(image, table);
    if (image.isNull())
        return image;
    for (int y = 0; y < image.height(); ++y) {
        const auto *const from = reinterpret_cast<const QRgb *>(argb.constScanLine(y));
        uchar *const to = image.scanLine(y);
        for (int x = 0; x < image.width(); ++x) {
            if (transparent >= 0 && isHidden(from[x]))
                to[x] = uchar(transparent);
            else if (to[x] < firstSeen)
                to[x] = uchar(firstSeen);
        }
    }
    image.setColorTable(colors);
    return image;
}

/// Returns whether an image has indices below \a count only.
bool usesOnlyFirst(const QImage &image, int count)
{
    for (int y = 0; y < image.height(); ++y) {
        const uchar *const row = image.constScanLine(y);
        if (std::any_of(row, row + image.width(), [count](uchar index) { return index >= count; }))
            return false;
    }
    return true;
}

/// Returns the colours that the visible pixels are reduced to.
QVector<QRgb> quantized(const QImage &argb, int count)
{
    // What is hidden takes no part: it gets the colour of a pixel that is seen.
    QImage visible = argb;
    QRgb last = qRgb(0, 0, 0);
    anyPixel(argb, [&last](QRgb color) {
        last = color;
        return !isHidden(color);
    });
    for (int y = 0; y < visible.height(); ++y) {
        auto *const row = reinterpret_cast<QRgb *>(visible.scanLine(y));
        std::replace_if(row, row + visible.width(), isHidden, last);
    }
    Vela::ColorQuantizer quantizer(count, colorBits);
    quantizer.processImage(visible);
    ColorTable table;
    quantizer.getColorTable(table.colors);
    QVector<QRgb> colors(quantizer.colorCount());
    std::transform(table.colors, table.colors + colors.size(), colors.begin(), Vela::toRgb);
    return colors;
}

} // namespace

QImage fittedToPalette(const QImage &image, const ColorTable &table)
{
    const QImage argb = image.convertToFormat(QImage::Format_ARGB32);
    QVector<QRgb> colors(table.count);
    std::transform(table.colors, table.colors + table.count, colors.begin(), Vela::toRgb);
    int transparent = transparentColor(colors);
    if (transparent < 0 && anyPixel(argb, isHidden)) {
        transparent = 0;
        colors[0] &= RGB_MASK;
    }
    return matched(argb, colors, transparent);
}

QImage reducedToColors(const QImage &image, int count)
{
    if (image.format() == QImage::Format_Indexed8 && usesOnlyFirst(image, count)) {
        QImage result = image;
        result.setColorTable(image.colorTable().mid(0, count));
        return result;
    }
    const QImage argb = image.convertToFormat(QImage::Format_ARGB32);
    const bool hasHidden = anyPixel(argb, isHidden);
    QVector<QRgb> colors = quantized(argb, hasHidden ? count - 1 : count);
    if (hasHidden)
        colors.prepend(qRgba(0, 0, 0, 0));
    return matched(argb, colors, hasHidden ? 0 : -1);
}

} // namespace Studio
