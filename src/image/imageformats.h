// SPDX-License-Identifier: MIT
#pragma once

#include "frame/export.h"

#include <QImage>

class QIODevice;

namespace Vela {

/// Size and format of an image, known without its pixels.
struct ImageInfo
{
    quint16 width = 0;
    quint16 height = 0;
    QImage::Format format = QImage::Format_Indexed8;
};

/// What imageFileExtension() returns.
enum ImageExtensionType {
    AllImages = 0,    ///< the patterns of all images, to follow a label
    LoadImages = 1,   ///< a filter for each format of images
    SaveImages = 2,   ///< the same, with the best one for saving first
    AllPalettes = 3,  ///< the patterns of all palettes, to follow a label
    LoadPalettes = 4, ///< a filter for each format of palettes
    SavePalettes = 5  ///< the filters of palettes that can be written
};

/// Returns filters for file dialogs, or null for a type that does not exist.
VELA_EXPORT const char *imageFileExtension(ImageExtensionType type);

/// Reads an image. \a format is "PNG", "BMP", "GIF", "PCX" or the word of an ImageLoader. The
/// device has to be readable. On failure \a image may be null or hold what was decoded; the result
/// is whether it holds anything. A GIF gives its first frame, in the colours of the whole file
/// where it has some, else in the frame's own.
VELA_EXPORT bool loadImage(QIODevice *device, const char *format, QImage &image);

/// Writes an image. \a format is "PNG", "BMP", "GIF", "PCX" or the word of an ImageSaver. The
/// device has to be writable. GIF takes indexed and monochrome images only.
VELA_EXPORT bool saveImage(QIODevice *device, const char *format, const QImage &image);

/// Reads the header of a "PNG", "BMP", "GIF" or "PCX" file, and leaves the device behind it.
/// Returns a default ImageInfo for anything else.
VELA_EXPORT ImageInfo imageInfoFromFile(QIODevice *device, const char *format);

/// Returns the format of images with \a depth bits a pixel, Format_Invalid if there is none.
VELA_EXPORT QImage::Format formatOfDepth(int depth);
/// Returns the bits that a pixel of \a format takes in a file, 0 for a format that has none.
VELA_EXPORT int depthOfFormat(QImage::Format format);

// The codecs below open a device that is closed, and return false if that fails or the device ends
// early.

VELA_EXPORT bool loadPNG(QImage &image, QIODevice *device);
VELA_EXPORT bool savePNG(const QImage &image, QIODevice *device);

/// Reads a PCX image of version 5 with 5, 8, 24 or 32 bits a pixel. \a hasPalette, which may be
/// null, becomes whether the file holds a palette of 256 colours. A file that ends early leaves a
/// null image, one with another header leaves \a image as it was.
VELA_EXPORT bool loadPCX(QImage &image, QIODevice *device, bool *hasPalette);
VELA_EXPORT bool savePCX(const QImage &image, QIODevice *device);

// The codecs of one sprite's pixels. A load fills an image that has its size and format already,
// and leaves its colour table alone. It takes from the device what it needs and no more. A stream
// may end between two packets before the image is full; the pixels behind stay as they were, also
// where a cut packet makes the load fail.

/// Reads LZ5: groups of runs and copies, for images of up to 32 colours, one byte a pixel. A copy
/// from before the first pixel makes it fail.
VELA_EXPORT bool loadLZ5(QImage &image, QIODevice *device);
/// Writes LZ5. Without \a useLz all packets are runs. Fails and writes nothing if an index is
/// above 31.
VELA_EXPORT bool saveLZ5(const QImage &image, QIODevice *device, bool useLz);

/// Reads RLE5: runs of up to 32 colours, one byte a pixel.
VELA_EXPORT bool loadRLE5(QImage &image, QIODevice *device);
/// Returns false: the format is for reading only.
VELA_EXPORT bool saveRLE5(const QImage &image, QIODevice *device);

/// Reads RLE8: runs of up to 63 bytes, which go on from row to row.
VELA_EXPORT bool loadRLE8(QImage &image, QIODevice *device);
/// Writes RLE8. A pixel of Format_RGB32 is written with 32 bits, but read with 24.
VELA_EXPORT bool saveRLE8(const QImage &image, QIODevice *device);

} // namespace Vela
