// SPDX-License-Identifier: MIT
#include "spriteimage.h"

#include "image/imageformats.h"

// The first byte picks a size; the rest is a stream.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    if (size == 0)
        return 0;
    const QByteArray stream(reinterpret_cast<const char *>(data) + 1, int(size) - 1);
    for (const QImage::Format format : {QImage::Format_Mono, QImage::Format_RGB32,
                                        QImage::Format_ARGB32, QImage::Format_Indexed8}) {
        loadedPixels(Vela::loadRLE5, stream, imageSize(data[0]), format);
        const QImage image = loadedPixels(Vela::loadRLE8, stream, imageSize(data[0]), format);
        QBuffer buffer;
        require(Vela::saveRLE8(image, &buffer));
        // The other formats are not read as wide as they are written.
        if (format == QImage::Format_ARGB32 || format == QImage::Format_Indexed8)
            require(loadedPixels(Vela::loadRLE8, buffer.data(), image.size(), format) == image);
    }
    return 0;
}
