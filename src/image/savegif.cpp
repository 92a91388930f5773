// SPDX-License-Identifier: MIT
#include "image/gifimage.h"

#include "image/colorquantizer.h"
#include "image/imageoperations.h"

#include <algorithm>
#include <limits>

namespace Vela {

namespace {

constexpr int tableSize = 256;
// One entry of a table is for what is transparent.
constexpr int opaqueColors = tableSize - 1;
constexpr int colorBits = 8;
constexpr int leastVisibleAlpha = 128;
constexpr int largestLength = 0xFFFF; // of a side of an image or of the screen

using Table = RGBA[tableSize];

// How far the frames reach from the point that they have in common, in pixels.
struct Extent
{
    qint64 left = std::numeric_limits<qint32>::min();
    qint64 top = left;
    qint64 right = left;
    qint64 bottom = left;

    void add(const AnimImageFrame &frame)
    {
        left = qMax<qint64>(left, frame.x);
        top = qMax<qint64>(top, frame.y);
        right = qMax(right, qint64(frame.image.width()) - frame.x);
        bottom = qMax(bottom, qint64(frame.image.height()) - frame.y);
    }
};

// Returns a format that the operations on images know.
QImage::Format plainFormat(const QImage &image)
{
    if (image.format() == QImage::Format_Indexed8)
        return QImage::Format_Indexed8;
    return image.hasAlphaChannel() ? QImage::Format_ARGB32 : QImage::Format_RGB32;
}

QVector<AnimImageFrame> shownFrames(const QVector<AnimImageFrame> &frames)
{
    QVector<AnimImageFrame> shown;
    for (AnimImageFrame frame : frames) {
        if (frame.image.isNull())
            continue;
        frame.image = frame.image.convertToFormat(plainFormat(frame.image));
        shown.append(frame);
    }
    return shown;
}

bool isIndexed(const AnimImageFrame &frame)
{
    return frame.image.format() == QImage::Format_Indexed8;
}

// Makes a table of the colours, behind a transparent one.
void makeTable(ColorQuantizer &quantizer, Table &table)
{
    quantizer.getColorTable(table);
    std::move_backward(table, table + opaqueColors, table + tableSize);
    table[0].a = 0;
}

QVector<RGB> toColors(const Table &table)
{
    QVector<RGB> colors;
    for (const RGBA color : table)
        colors.append({color.r, color.g, color.b});
    return colors;
}

QVector<RGB> toColors(const QVector<QRgb> &table)
{
    QVector<RGB> colors;
    for (const QRgb color : table)
        colors.append({quint8(qRed(color)), quint8(qGreen(color)), quint8(qBlue(color))});
    return colors;
}

// Replaces an image by the indices of the nearest colours. What is hardly visible takes the colour
// 0, which nothing else takes if it is the transparent one.
void adaptToColors(QImage &image, const QVector<RGB> &colors, qint16 transparent)
{
    Table table;
    for (int i = 0; i < tableSize; ++i) {
        // Behind the colours stands the first one again, which is never nearer than itself.
        const RGB color = i < colors.size() ? colors[i] : colors.value(0);
        table[i] = {color.r, color.g, color.b, 255};
    }
    const QImage source = image;
    adaptImageToPalette(image, table);
    const bool hasAlpha = source.format() == QImage::Format_ARGB32;
    if (!hasAlpha && transparent != 0)
        return;
    for (int y = 0; y < image.height(); ++y) {
        const auto *const from = reinterpret_cast<const QRgb *>(source.constScanLine(y));
        uchar *const to = image.scanLine(y);
        for (int x = 0; x < image.width(); ++x) {
            if (hasAlpha && qAlpha(from[x]) < leastVisibleAlpha)
                to[x] = 0;
            else if (to[x] == 0)
                to[x] = 1;
        }
    }
}

qint16 firstTransparent(const QVector<QRgb> &colors)
{
    const auto found =
        std::find_if(colors.begin(), colors.end(), [](QRgb color) { return qAlpha(color) == 0; });
    return found == colors.end() ? GIFImage::NoTransparent : qint16(found - colors.begin());
}

// Gives an image a palette if it has none, the colour 0 of which is transparent.
void makeIndexed(QImage &image)
{
    if (image.format() == QImage::Format_Indexed8)
        return;
    ColorQuantizer quantizer(opaqueColors, colorBits);
    quantizer.processImage(image);
    Table table;
    makeTable(quantizer, table);
    adaptToColors(image, toColors(table), 0);
    image.setColor(0, toRgb(table[0]));
}

// Returns the colours for all frames, none of which has a palette.
QVector<RGB> commonColors(const QVector<AnimImageFrame> &frames)
{
    ColorQuantizer quantizer(opaqueColors, colorBits);
    for (const AnimImageFrame &frame : frames)
        quantizer.processImage(frame.image);
    Table table;
    makeTable(quantizer, table);
    return toColors(table);
}

// Returns whether a side is one that a file can name.
bool isLength(float length)
{
    return length <= largestLength;
}

QImage scaledImage(const QImage &image, float scale)
{
    if (scale == 1)
        return image;
    const auto side = [scale](int length) { return qMax(1, qRound(float(length) * scale)); };
    return resizeImageNearest(image, QSize(side(image.width()), side(image.height())));
}

} // namespace

bool saveGIF(QIODevice *device, const QVector<AnimImageFrame> &frames, float scale, float velocity,
             bool sharedPalette, bool loop)
{
    constexpr float hundredths = 100;
    constexpr float ticks = 60;
    const QVector<AnimImageFrame> shown = shownFrames(frames);
    if (shown.isEmpty() || !device)
        return false;
    if (!(scale > 0))
        scale = 1;
    Extent extent;
    for (const AnimImageFrame &frame : shown)
        extent.add(frame);
    const float width = float(extent.left + extent.right) * scale;
    const float height = float(extent.top + extent.bottom) * scale;
    if (!isLength(width) || !isLength(height))
        return false;
    GIFImage gif(quint16(width), quint16(height), loop);
    const bool trueColor = std::none_of(shown.begin(), shown.end(), isIndexed);
    if (trueColor)
        gif.globalColorMap() = commonColors(shown);
    qint16 transparent = trueColor ? 0 : GIFImage::NoTransparent;
    for (int i = 0; i < shown.size(); ++i) {
        const AnimImageFrame &frame = shown[i];
        QImage pixels = frame.image;
        GIFImage::SubImage image;
        if (!trueColor && (i == 0 || !sharedPalette)) {
            makeIndexed(pixels);
            const QVector<QRgb> colors = pixels.colorTable();
            (sharedPalette ? gif.globalColorMap() : image.colorMap) = toColors(colors);
            transparent = firstTransparent(colors);
        }
        image.image = scaledImage(pixels, scale);
        if (image.image.format() != QImage::Format_Indexed8)
            adaptToColors(image.image, gif.globalColorMap(), transparent);
        image.transparent = transparent;
        image.left = quint16(float(extent.left - frame.x) * scale);
        image.top = quint16(float(extent.top - frame.y) * scale);
        image.delay = hundredths / velocity * float(frame.ticks) / ticks;
        gif.images().append(image);
    }
    return gif.save(device);
}

} // namespace Vela
