// SPDX-License-Identifier: MIT
// Reads arbitrary bytes as an image, in the format that the first byte says: no image is larger
// than the input can account for, and what was read can be
// written and read again.
#include "require.h"

#include "image/gifimage.h"
#include "image/imageformats.h"

#include <QBuffer>
#include <QtGlobal>

#include <cstdint>

namespace {

// What a byte can account for: in a GIF one pixel wide, whose rows take four bytes each, a code of
// 12 bits stands for 4096 rows.
constexpr qint64 largestRatio = 4 * 4096 * 8 / 12 + 1;

constexpr const char *formats[] = {"PNG", "BMP", "PCX", "GIF"};

void checkPcx(const QImage &image)
{
    QBuffer buffer;
    require(Vela::savePCX(image, &buffer) && buffer.seek(0));
    QImage again;
    bool hasPalette = false;
    require(Vela::loadPCX(again, &buffer, &hasPalette) && buffer.atEnd());
    require(hasPalette == (image.format() == QImage::Format_Indexed8));
    // A palette has 256 colours then.
    again.setColorTable(image.colorTable());
    require(again == image);
}

void checkGif(QBuffer *device)
{
    Vela::GIFImage gif;
    const bool whole = gif.load(device);
    require(!whole || !gif.images().isEmpty());
    for (const Vela::GIFImage::SubImage &image : qAsConst(gif.images()))
        require(!image.image.isNull());
    // Without a palette it cannot be written.
    QBuffer buffer;
    if (!gif.save(&buffer) || !buffer.seek(0))
        return;
    Vela::GIFImage again;
    require(again.load(&buffer) && buffer.atEnd());
    require(again.images().size() == gif.images().size());
    require(again.canLoop() == gif.canLoop());
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int *, char ***)
{
    qInstallMessageHandler([](QtMsgType, const QMessageLogContext &, const QString &) {});
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    if (size == 0)
        return 0;
    const char *const format = formats[data[0] % 4];
    QByteArray bytes(reinterpret_cast<const char *>(data + 1), int(size - 1));
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::ReadOnly);
    Vela::imageInfoFromFile(&buffer, format);
    buffer.seek(0);
    QImage image;
    require(Vela::loadImage(&buffer, format, image) != image.isNull());
    require(image.sizeInBytes() <= largestRatio * qint64(size));
    if (data[0] % 4 == 2 && !image.isNull())
        checkPcx(image);
    buffer.seek(0);
    if (data[0] % 4 == 3)
        checkGif(&buffer);
    return 0;
}
