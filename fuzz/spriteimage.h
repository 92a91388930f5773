// SPDX-License-Identifier: MIT
#pragma once

#include "require.h"

#include <QBuffer>
#include <QImage>

#include <cstring>

using LoadPixels = bool (*)(QImage &, QIODevice *);

/// Loads \a stream into an image of \a size and \a format, and returns the image.
inline QImage loadedPixels(LoadPixels load, const QByteArray &stream, const QSize &size,
                           QImage::Format format = QImage::Format_Indexed8)
{
    QImage image(size, format);
    if (!image.isNull())
        std::memset(image.bits(), 0, size_t(image.sizeInBytes()));
    QBuffer buffer;
    buffer.setData(stream);
    const bool loaded = load(image, &buffer);
    require(buffer.pos() <= stream.size());
    require(image.size() == size);
    require(loaded || !image.isNull());
    return image;
}

/// Sizes with and without padding in their rows; the first byte of the data picks one.
inline QSize imageSize(uint8_t choice)
{
    static const QSize sizes[] = {{0, 0},   {1, 1},   {3, 5},    {4, 300},
                                  {33, 20}, {64, 64}, {1030, 3}, {2, 2000}};
    return sizes[choice % (sizeof(sizes) / sizeof(sizes[0]))];
}
