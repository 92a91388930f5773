// SPDX-License-Identifier: MIT
#include "lantern/spritecodec.h"

#include <QBuffer>
#include <QtEndian>

#include <algorithm>
#include <cstring>
#include <limits>

namespace Lantern {

namespace {

constexpr int headBytes = 8;
constexpr int largestSide = 65535;
// The index of a colour in LZ5 and RLE5 has five bits.
constexpr uchar smallColors = 32;
// No codec of indices makes more than this many pixels of a byte: LZ5 copies 258 with 3 bytes, or
// repeats 263 with 2.
constexpr qint64 mostPixelsOfByte = 256;

qint64 plainBytes(const Vela::ImageInfo &info)
{
    const int pixelBytes = info.format == QImage::Format_Indexed8 ? 1 : 4;
    return qint64(info.width) * info.height * pixelBytes;
}

bool isTooLarge(const Vela::ImageInfo &info)
{
    return plainBytes(info) > std::numeric_limits<int>::max() - headBytes;
}

Vela::ImageInfo infoOf(const QImage &image)
{
    return {quint16(image.width()), quint16(image.height()), image.format()};
}

QByteArray headOf(const Vela::ImageInfo &info)
{
    QByteArray head(headBytes, 0);
    qToLittleEndian<quint16>(info.width, head.data());
    qToLittleEndian<quint16>(info.height, head.data() + 2);
    qToLittleEndian<quint16>(quint16(Vela::depthOfFormat(info.format)), head.data() + 4);
    return head;
}

bool decodePng(const QByteArray &bytes, const Vela::ImageInfo &info, QImage &image)
{
    QBuffer buffer;
    buffer.setData(bytes);
    buffer.open(QIODevice::ReadOnly);
    const Vela::ImageInfo told = Vela::imageInfoFromFile(&buffer, "PNG");
    if (told.width != info.width || told.height != info.height || !buffer.seek(0))
        return false;
    QImage loaded;
    if (!Vela::loadPNG(loaded, &buffer))
        return false;
    const bool isIndexed = info.format == QImage::Format_Indexed8;
    if (isIndexed != (loaded.format() == QImage::Format_Indexed8))
        return false;
    image = isIndexed ? loaded : loaded.convertToFormat(info.format);
    return true;
}

bool decodeIndices(unsigned int encoding, const QByteArray &bytes, const Vela::ImageInfo &info,
                   QImage &image)
{
    if (info.format != QImage::Format_Indexed8
        || plainBytes(info) > bytes.size() * mostPixelsOfByte)
        return false;
    image = QImage(info.width, info.height, info.format);
    if (image.isNull())
        return false;
    image.fill(0);
    QBuffer buffer;
    buffer.setData(bytes);
    switch (encoding) {
    case Rle8:
        return Vela::loadRLE8(image, &buffer);
    case Rle5:
        return Vela::loadRLE5(image, &buffer);
    case Lz5:
        return Vela::loadLZ5(image, &buffer);
    default:
        return false;
    }
}

// Appends the rows without their padding. Some readers leave the byte of a pixel that has no
// opacity as it comes; it becomes 255, so that equal pixels are equal bytes.
void appendRows(const QImage &image, QByteArray &data)
{
    const int rowBytes = image.width() * image.depth() / 8;
    const int begin = data.size();
    for (int y = 0; y < image.height(); ++y)
        data.append(reinterpret_cast<const char *>(image.constScanLine(y)), rowBytes);
    if (image.format() != QImage::Format_RGB32)
        return;
    char *const bytes = data.data();
    for (int i = begin + 3; i < data.size(); i += 4)
        bytes[i] = '\xff';
}

} // namespace

bool SpriteCodec::decode(unsigned int encoding, void *, const QByteArray &raw, QByteArray &data)
{
    Vela::ImageInfo info;
    if (!readHead(raw, info) || isTooLarge(info))
        return false;
    const QByteArray bytes = raw.mid(headBytes);
    QImage image;
    const bool isDecoded = encoding == Png ? decodePng(bytes, info, image)
                                           : decodeIndices(encoding, bytes, info, image);
    if (!isDecoded)
        return false;
    data = headOf(info);
    data.reserve(headBytes + int(plainBytes(info)));
    appendRows(image, data);
    return true;
}

bool SpriteCodec::encode(unsigned int encoding, void *, const QByteArray &data, QByteArray &raw)
{
    const QImage image = imageFromPlain(data);
    if (image.isNull() || (encoding != Png && image.format() != QImage::Format_Indexed8))
        return false;
    QBuffer buffer(&raw);
    buffer.open(QIODevice::WriteOnly);
    buffer.write(data.constData(), headBytes);
    switch (encoding) {
    case Png:
        return Vela::savePNG(image, &buffer);
    case Rle8:
        return Vela::saveRLE8(image, &buffer);
    case Lz5:
        return Vela::saveLZ5(image, &buffer, true);
    default:
        return false;
    }
}

unsigned int SpriteCodec::preferredEncoding(const QByteArray &plain) const
{
    Vela::ImageInfo info;
    if (!readHead(plain, info) || info.format != QImage::Format_Indexed8)
        return Png;
    const auto *const begin = reinterpret_cast<const uchar *>(plain.constData()) + headBytes;
    const auto *const end = begin + (plain.size() - headBytes);
    const bool isSmall = std::all_of(begin, end, [](uchar index) { return index < smallColors; });
    return isSmall ? Lz5 : Rle8;
}

QImage spriteImage(const QImage &image)
{
    switch (image.format()) {
    case QImage::Format_Indexed8:
    case QImage::Format_RGB32:
    case QImage::Format_ARGB32:
        return image;
    case QImage::Format_Mono:
    case QImage::Format_MonoLSB:
        return image.convertToFormat(QImage::Format_Indexed8);
    default:
        return image.convertToFormat(image.hasAlphaChannel() ? QImage::Format_ARGB32
                                                             : QImage::Format_RGB32);
    }
}

bool hasPlainForm(const QImage &image)
{
    return !image.isNull() && image.width() <= largestSide && image.height() <= largestSide
        && !isTooLarge(infoOf(image));
}

QByteArray plainImage(const QImage &image)
{
    if (!hasPlainForm(image))
        return {};
    const Vela::ImageInfo info = infoOf(image);
    QByteArray plain = headOf(info);
    plain.reserve(headBytes + int(plainBytes(info)));
    appendRows(image, plain);
    return plain;
}

QImage imageFromPlain(const QByteArray &plain)
{
    Vela::ImageInfo info;
    if (!readHead(plain, info) || plain.size() != headBytes + plainBytes(info))
        return {};
    QImage image(info.width, info.height, info.format);
    if (image.isNull())
        return {};
    const size_t rowBytes = size_t(plainBytes(info)) / info.height;
    for (int y = 0; y < image.height(); ++y)
        std::memcpy(image.scanLine(y), plain.constData() + headBytes + size_t(y) * rowBytes,
                    rowBytes);
    return image;
}

bool readHead(const QByteArray &stream, Vela::ImageInfo &info)
{
    if (stream.size() < headBytes)
        return false;
    info.width = qFromLittleEndian<quint16>(stream.constData());
    info.height = qFromLittleEndian<quint16>(stream.constData() + 2);
    info.format = Vela::formatOfDepth(qFromLittleEndian<quint16>(stream.constData() + 4));
    return info.width > 0 && info.height > 0 && info.format != QImage::Format_Invalid;
}

} // namespace Lantern
