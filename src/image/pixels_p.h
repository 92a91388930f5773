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

/// Returns an image, of plain pixels as above, whose content is undefined; a null one for an empty
/// size and where it would take more than 2 GiB, which QImage would try to have.
inline QImage makePlainImage(QSize size, QImage::Format format)
{
    const qint64 lineBytes = qint64(size.width()) * (format == QImage::Format_Indexed8 ? 1 : 4);
    if (size.isEmpty() || lineBytes > std::numeric_limits<int>::max() / size.height())
        return {};
    return QImage(size, format);
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
