// SPDX-License-Identifier: MIT
#include "image/plainlz5.h"
#include "image/samplepixels.h"
#include "spriteimage.h"

#include "image/imageformats.h"

namespace {

// What the writer makes of an image, the reader reads.
QByteArray writeAndRead(const QImage &image, bool useLz)
{
    QBuffer buffer;
    require(Vela::saveLZ5(image, &buffer, useLz));
    require(loadedPixels(Vela::loadLZ5, buffer.data(), image.size()) == image);
    return buffer.data();
}

// Also, the writer gives what the search without its index gives, which is slow.
void comparePlain(const QByteArray &bytes, int width)
{
    QImage image(width, qMin(bytes.size(), 300) / width, QImage::Format_Indexed8);
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < width; ++x)
            image.scanLine(y)[x] = bytes[y * width + x] & 31;
    }
    require(writeAndRead(image, true) == PlainLZ5::encode(SamplePixels::joined(image), true));
}

} // namespace

// The first byte picks a size; the rest is a stream, and then the pixels of an image.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    if (size == 0)
        return 0;
    const QByteArray stream(reinterpret_cast<const char *>(data) + 1, int(size) - 1);
    const QImage image = loadedPixels(Vela::loadLZ5, stream, imageSize(data[0]));
    writeAndRead(image, true);
    writeAndRead(image, false);
    loadedPixels(Vela::loadLZ5, stream, {40, 3}, QImage::Format_RGB32);
    loadedPixels(Vela::loadLZ5, stream, {40, 3}, QImage::Format_Mono);
    comparePlain(stream, 1 + data[0] % 40);
    return 0;
}
