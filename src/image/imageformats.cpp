// SPDX-License-Identifier: MIT
#include "image/imageformats.h"

#include "engine/tryextensions_p.h"
#include "image/devicebytes_p.h"
#include "image/gifimage.h"
#include "image/imageextension.h"
#include "image/pcxheader_p.h"
#include "image/spritecodec_p.h"

#include <QBuffer>
#include <QDataStream>
#include <QtEndian>

#include <cstring>
#include <limits>

namespace Vela {

namespace {

constexpr char pngSignature[] = "\x89PNG\r\n\x1A\n";
constexpr int pngSignatureSize = 8;

bool isWord(const char *format, const char *word)
{
    return qstrcmp(format, word) == 0;
}

bool isOfQt(const char *format)
{
    return isWord(format, "PNG") || isWord(format, "BMP");
}

int channelsOfPng(int colorType)
{
    switch (colorType) {
    case 2: // red, green, blue
        return 3;
    case 4: // grey and alpha
        return 2;
    case 6: // red, green, blue, alpha
        return 4;
    default:
        return 1;
    }
}

// Returns whether so many bytes can hold the pixels that the header of a PNG file promises.
bool canHoldPng(const QByteArray &bytes)
{
    constexpr qint64 largestRatio = 1032; // of deflate
    constexpr int headerEnd = 26;
    if (bytes.size() < headerEnd)
        return false;
    const char *const header = bytes.constData() + 16;
    const qint64 width = qFromBigEndian<quint32>(header);
    const qint64 height = qFromBigEndian<quint32>(header + 4);
    const qint64 bits = uchar(header[8]) * channelsOfPng(header[9]);
    return height > 0 && (width * bits + 7) / 8 <= bytes.size() * largestRatio / height;
}

// What the header of a BMP file says about its pixels.
struct BmpHeader
{
    qint64 width = 0;
    qint64 height = 0;
    int depth = 0;
    bool hasRuns = false;
    qint64 pixelsAt = 0;

    // Returns the header of a file's first bytes, as many as there have to be.
    static BmpHeader read(const char *bytes)
    {
        constexpr quint32 shortHeader = 12;
        const auto wordAt = [bytes](int at) { return qFromLittleEndian<quint16>(bytes + at); };
        const auto sideAt = [bytes](int at) {
            return qAbs(qint64(qFromLittleEndian<qint32>(bytes + at)));
        };
        const qint64 pixelsAt = qFromLittleEndian<quint32>(bytes + 10);
        if (qFromLittleEndian<quint32>(bytes + 14) == shortHeader)
            return {wordAt(18), wordAt(20), wordAt(24), false, pixelsAt};
        const int compression = wordAt(30);
        return {sideAt(18), sideAt(22), wordAt(28), compression == 1 || compression == 2, pixelsAt};
    }
};

// Returns whether so many bytes can hold the pixels that the header of a BMP file promises. A file
// that ends early shows the rows that it has, so the bound is that of runs for all files. Rows that
// are missing become zero: QImage would leave them undefined.
bool completeBmp(QByteArray *bytes)
{
    constexpr qint64 longestRun = 255; // in two bytes
    constexpr int headerEnd = 32;
    if (bytes->size() < headerEnd)
        return false;
    const BmpHeader header = BmpHeader::read(bytes->constData());
    if (header.height == 0 || header.width > bytes->size() * longestRun / 2 / header.height)
        return false;
    const qint64 rowSize = (header.width * qMin(header.depth, 32) + 31) / 32 * 4;
    const qint64 present = qMax<qint64>(0, bytes->size() - header.pixelsAt);
    const qint64 missing = rowSize * header.height - present;
    if (missing > std::numeric_limits<int>::max() - bytes->size())
        return false;
    if (!header.hasRuns && missing > 0)
        bytes->append(int(missing), '\0');
    return true;
}

// Reads PNG and BMP, whichever of them the content is.
bool loadByQt(QImage &image, QIODevice *device, const char *format)
{
    QByteArray bytes = peekAll(device);
    const bool canHold = bytes.startsWith(pngSignature)
        ? canHoldPng(bytes)
        : bytes.startsWith("BM") && completeBmp(&bytes);
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::ReadOnly);
    if (canHold)
        image.load(&buffer, format);
    else
        image = QImage();
    device->skip(buffer.pos());
    return !image.isNull();
}

// Sets what lies behind the pixels of each line to zero, so that equal images have equal bytes.
void clearPadding(QImage &image)
{
    const qint64 bits = qint64(image.width()) * image.depth();
    const int used = int(bits / 8);
    if (used >= image.bytesPerLine())
        return;
    uchar *line = image.bits();
    for (int y = 0; y < image.height(); ++y, line += image.bytesPerLine()) {
        const uchar begun = line[used] & uchar(0xFF00 >> bits % 8);
        std::memset(line + used, 0, size_t(image.bytesPerLine() - used));
        line[used] = begun;
    }
}

void loadFirstFrame(QIODevice *device, QImage &image)
{
    GIFImage gif;
    if (!gif.load(device) || gif.images().isEmpty())
        return;
    const GIFImage::SubImage &frame = gif.images().constFirst();
    QVector<QRgb> colors;
    for (RGB color : gif.globalColorMap().isEmpty() ? frame.colorMap : gif.globalColorMap())
        colors.append(qRgb(color.r, color.g, color.b));
    if (frame.transparent >= 0 && frame.transparent < colors.size())
        colors[frame.transparent] &= RGB_MASK;
    image = frame.image;
    image.setColorTable(colors);
}

bool saveFrame(QIODevice *device, const QImage &image)
{
    GIFImage gif(quint16(image.width()), quint16(image.height()), false);
    GIFImage::SubImage frame;
    frame.image = image;
    const QVector<QRgb> colors = image.colorTable();
    for (int i = 0; i < colors.size(); ++i) {
        const RGBA color = toRGBA(colors[i]);
        gif.globalColorMap().append({color.r, color.g, color.b});
        if (color.a == 0 && frame.transparent == GIFImage::NoTransparent)
            frame.transparent = qint16(i);
    }
    gif.images().append(frame);
    return gif.save(device);
}

// The readers of headers get a file's first bytes, as many as they need.

ImageInfo makeInfo(int width, int height, QImage::Format format)
{
    return {static_cast<quint16>(width), static_cast<quint16>(height), format};
}

ImageInfo bmpInfo(const char *header)
{
    const qint64 width = qFromLittleEndian<qint32>(header + 18);
    const qint64 height = qFromLittleEndian<qint32>(header + 22);
    return makeInfo(int(qAbs(width)), int(qAbs(height)),
                    formatOfDepth(qFromLittleEndian<quint16>(header + 28)));
}

ImageInfo pngInfo(const char *header)
{
    if (std::memcmp(header, pngSignature, pngSignatureSize) != 0
        || std::memcmp(header + 12, "IHDR", 4) != 0)
        return {};
    QImage::Format format = ImageInfo().format;
    switch (header[25]) {
    case 2:
        format = QImage::Format_RGB32;
        break;
    case 6:
        format = QImage::Format_ARGB32;
        break;
    default:
        break;
    }
    return makeInfo(qFromBigEndian<qint32>(header + 16), qFromBigEndian<qint32>(header + 20),
                    format);
}

ImageInfo pcxInfo(const char *bytes)
{
    const PcxHeader header = PcxHeader::read(bytes);
    return header.isKnown ? makeInfo(header.width, header.height, header.format) : ImageInfo();
}

ImageInfo gifInfo(const char *header)
{
    if (std::memcmp(header, "GIF8", 4) != 0)
        return {};
    return makeInfo(qFromLittleEndian<quint16>(header + 6), qFromLittleEndian<quint16>(header + 8),
                    formatOfDepth((header[10] & 7) + 1));
}

constexpr struct
{
    const char *format;
    int size; // of the header, in bytes
    ImageInfo (*read)(const char *header);
} headerReaders[] = {
    {"BMP", 54, bmpInfo},
    {"PNG", 26, pngInfo},
    {"PCX", PcxHeader::Size, pcxInfo},
    {"GIF", 13, gifInfo},
};

} // namespace

const char *imageFileExtension(ImageExtensionType type)
{
    switch (type) {
    case AllImages:
        return " (*.pcx *.png *.gif *.bmp);;";
    case LoadImages:
        return "Personal Computer eXchange (*.pcx);;Portable Network Graphic (*.png);;"
               "Graphics Interchange Format (*.gif);;Bitmap (*.bmp)";
    case SaveImages:
        return "Portable Network Graphic (*.png);;Graphics Interchange Format (*.gif);;"
               "Personal Computer eXchange (*.pcx);;Bitmap (*.bmp)";
    case AllPalettes:
        return " (*.act *.pcx *.png *.gif *.bmp *.pal *.aco *.ase *.txt);;";
    case LoadPalettes:
        return "Adobe Color Table (*.act);;Personal Computer eXchange (*.pcx);;"
               "Portable Network Graphic (*.png);;Graphics Interchange Format (*.gif);;"
               "Bitmap (*.bmp);;RIFF / Jasc Palette (*.pal);;Adobe Color Swatch (*.aco);;"
               "Adobe Swatch Exchange (*.ase);;Corel Painter Swatches (*.txt)";
    case SavePalettes:
        return "Adobe Color Table (*.act)";
    }
    return nullptr;
}

QImage::Format formatOfDepth(int depth)
{
    switch (depth) {
    case 5:
    case 8:
        return QImage::Format_Indexed8;
    case 24:
        return QImage::Format_RGB32;
    case 32:
        return QImage::Format_ARGB32;
    default:
        return QImage::Format_Invalid;
    }
}

int depthOfFormat(QImage::Format format)
{
    switch (format) {
    case QImage::Format_Indexed8:
        return 8;
    case QImage::Format_RGB32:
        return 24;
    case QImage::Format_ARGB32:
    case QImage::Format_ARGB32_Premultiplied:
        return 32;
    default:
        return 0;
    }
}

bool loadImage(QIODevice *device, const char *format, QImage &image)
{
    if (!device->isReadable())
        return false;
    if (isOfQt(format)) {
        if (loadByQt(image, device, format))
            clearPadding(image);
    } else if (isWord(format, "GIF")) {
        loadFirstFrame(device, image);
    } else if (isWord(format, "PCX")) {
        loadPCX(image, device, nullptr);
    } else {
        tryExtensions<ImageLoader>(Extension::ImageLoader, format, [&](ImageLoader *loader) {
            return loader->load(device, image);
        });
    }
    return !image.isNull();
}

bool saveImage(QIODevice *device, const char *format, const QImage &image)
{
    if (image.isNull() || !device->isWritable())
        return false;
    if (isOfQt(format))
        return image.save(device, format, -1);
    if (isWord(format, "GIF"))
        return saveFrame(device, image);
    if (isWord(format, "PCX"))
        return savePCX(image, device);
    return tryExtensions<ImageSaver>(Extension::ImageSaver, format,
                                     [&](ImageSaver *saver) { return saver->save(image, device); });
}

ImageInfo imageInfoFromFile(QIODevice *device, const char *format)
{
    if (!device->isReadable())
        return {};
    for (const auto &reader : headerReaders) {
        if (!isWord(format, reader.format))
            continue;
        const QByteArray header = device->read(reader.size);
        return header.size() == reader.size ? reader.read(header.constData()) : ImageInfo();
    }
    return {};
}

bool loadPNG(QImage &image, QIODevice *device)
{
    return openDevice(device, QIODevice::ReadOnly) && loadByQt(image, device, "PNG");
}

bool savePNG(const QImage &image, QIODevice *device)
{
    return openDevice(device, QIODevice::WriteOnly) && image.save(device, "PNG", -1);
}

} // namespace Vela
