// SPDX-License-Identifier: MIT
#pragma once

#include <QImage>

#include <limits>

namespace Vela {

/// Returns an image whose pixels are a byte of Format_Indexed8 or four bytes of eight bits a
/// channel: the image itself, or, for the other formats, its conversion to Format_ARGB32.
inline QImage withPlainPixels(const QImage &image)
{
    switch (image.format()) {
    case QImage::Format_Indexed8:
    case QImage::Format_RGB32:
    case QImage::Format_ARGB32:
    case QImage::Format_ARGB32_Premultiplied:
    case QImage::Format_RGBX8888:
    case QImage::Format_RGBA8888:
    case QImage::Format_RGBA8888_Premultiplied:
        return image;
    default:
        return image.convertToFormat(QImage::Format_ARGB32);
    }
}

/// Returns an image whose content is undefined; a null one for an empty size and where it would
/// take more than 2 GiB, which QImage would try to have.
inline QImage makeImage(QSize size, QImage::Format format)
{
    const qint64 lineBits = qint64(size.width()) * QImage::toPixelFormat(format).bitsPerPixel();
    const qint64 lineBytes = (lineBits + 31) / 32 * 4;
    if (size.isEmpty() || lineBytes > std::numeric_limits<int>::max() / size.height())
        return {};
    return QImage(size, format);
}

/// The same for an image that is so many times as wide and as high.
inline QImage makeEnlargedImage(QSize size, int times, QImage::Format format)
{
    const int most = std::numeric_limits<int>::max() / times;
    if (size.width() > most || size.height() > most)
        return {};
    return makeImage(QSize(size.width() * times, size.height() * times), format);
}

template <typename Pixel>
const Pixel *constPixels(const QImage &image, int row)
{
    return reinterpret_cast<const Pixel *>(image.constScanLine(row));
}

/// The image must not share its data; otherwise this copies it.
template <typename Pixel>
Pixel *pixels(QImage &image, int row)
{
    return reinterpret_cast<Pixel *>(image.scanLine(row));
}

} // namespace Vela
