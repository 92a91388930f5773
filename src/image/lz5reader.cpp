// SPDX-License-Identifier: MIT
#include "image/imageformats.h"
#include "image/spritecodec_p.h"

namespace Vela {

namespace {

/// Reads the copies of a stream. Of four short ones the first three carry the distance of the last
/// in their upper two bits.
class CopyReader
{
public:
    bool read(PacketSource &source, PixelBuffer &pixels)
    {
        const uchar first = source.take();
        int count = (first & 0x3F) + 1;
        int distance = 0;
        if (count > 1) {
            distance = readShortDistance(first >> 6, source);
        } else {
            distance = (first >> 6) << 8 | source.take();
            count = source.take() + 3;
        }
        return !source.isPastEnd() && pixels.appendCopy(distance + 1, count);
    }

private:
    int readShortDistance(int recycled, PacketSource &source)
    {
        m_recycled = m_recycled << 2 | recycled;
        m_shortPackets = (m_shortPackets + 1) % 4;
        return m_shortPackets == 0 ? m_recycled & 0xFF : source.take();
    }

    uint m_recycled = 0;
    int m_shortPackets = 0;
};

bool readRun(PacketSource &source, PixelBuffer &pixels)
{
    const uchar first = source.take();
    int count = first >> 5;
    if (count == 0)
        count = source.take() + 8;
    if (source.isPastEnd())
        return false;
    pixels.appendRun(first & 31, count);
    return true;
}

bool decodeLZ5(PacketSource &source, PixelBuffer &pixels)
{
    CopyReader copies;
    while (!pixels.isFull() && source.hasPacket()) {
        uint flags = source.take();
        for (int i = 0; i < 8 && !pixels.isFull() && source.hasPacket(); ++i, flags >>= 1) {
            if (!(flags & 1 ? copies.read(source, pixels) : readRun(source, pixels)))
                return false;
        }
    }
    return true;
}

} // namespace

bool loadLZ5(QImage &image, QIODevice *device)
{
    return loadPixels(image, image.width(), device, decodeLZ5);
}

} // namespace Vela
