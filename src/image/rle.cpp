// SPDX-License-Identifier: MIT
#include "image/imageformats.h"
#include "image/spritecodec_p.h"

#include <QtAlgorithms>
#include <QtEndian>

namespace Vela {

namespace {

constexpr int LongestRun = 63;
constexpr uchar RunMask = 0xC0;
constexpr uchar RunMark = 0x40;

// Returns how many of the next bytes stand for themselves.
qsizetype literals(const uchar *bytes)
{
    const quint64 word = qFromLittleEndian<quint64>(bytes);
    const quint64 marks = word & ~(word >> 1) & 0x4040404040404040;
    return marks ? qsizetype(qCountTrailingZeroBits(marks) / 8) : Step;
}

// Takes stretches of plain bytes, each with the run behind it, as long as neither end is near. A
// stretch without a run counts as one with a run of no pixels, so that there is nothing to guess
// for the processor.
void decodeRuns(PacketSource &source, PixelBuffer &pixels)
{
    const uchar *from = source.next();
    const uchar *const lastFrom = from + source.available() - (Step + 2);
    uchar *to = pixels.next();
    uchar *const lastTo = to + pixels.room() - Step;
    while (from <= lastFrom && to <= lastTo) {
        const qsizetype plain = literals(from);
        std::memcpy(to, from, Step);
        to += plain;
        from += plain;
        const bool isRun = plain < Step;
        const int run = isRun ? from[0] & LongestRun : 0;
        std::memset(to, from[1], Step);
        if (run > Step)
            std::memset(to + Step, from[1], size_t(LongestRun - Step));
        to += run;
        from += isRun ? 2 : 0;
    }
    source.skip(from - source.next());
    pixels.skip(to - pixels.next());
}

bool decodeRLE8(PacketSource &source, PixelBuffer &pixels)
{
    while (!pixels.isFull() && source.hasPacket()) {
        decodeRuns(source, pixels);
        if (pixels.isFull() || !source.hasPacket())
            break;
        const qsizetype plain = literals(source.next());
        const qsizetype count = qMin(plain, qMin(source.available(), pixels.room()));
        pixels.append(source.next(), count);
        source.skip(count);
        if (count < plain || count == Step || pixels.isFull() || !source.hasPacket())
            continue;
        const int run = source.take() & LongestRun;
        const uchar value = source.take();
        if (source.isPastEnd())
            return false;
        pixels.appendRun(value, run);
    }
    return true;
}

// A group is a run of one colour and up to 31 bytes with a run each.
bool decodeRLE5(PacketSource &source, PixelBuffer &pixels)
{
    while (!pixels.isFull() && source.hasPacket()) {
        const int run = source.take() + 1;
        const uchar second = source.take();
        const uchar color = second & 0x80 ? source.take() & 31 : 0;
        if (source.isPastEnd())
            return false;
        pixels.appendRun(color, run);
        for (int left = second & 31; left > 0 && !pixels.isFull(); --left) {
            if (!source.hasPacket())
                return false;
            const uchar data = source.take();
            pixels.appendRun(data & 31, (data >> 5) + 1);
        }
    }
    return true;
}

} // namespace

bool loadRLE5(QImage &image, QIODevice *device)
{
    return loadPixels(image, image.width(), device, decodeRLE5);
}

bool saveRLE5(const QImage &, QIODevice *)
{
    return false;
}

bool loadRLE8(QImage &image, QIODevice *device)
{
    const qsizetype bits = depthOfFormat(image.format());
    return loadPixels(image, image.width() * bits / 8, device, decodeRLE8);
}

bool saveRLE8(const QImage &image, QIODevice *device)
{
    if (!openDevice(device, QIODevice::WriteOnly))
        return false;
    const JoinedRows pixels(image, qsizetype(image.width()) * image.depth() / 8);
    std::vector<uchar> bytes;
    const uchar *const end = pixels.data() + pixels.size();
    for (const uchar *next = pixels.data(); next < end;) {
        const int run = runLength(next, int(qMin<qsizetype>(LongestRun, end - next)));
        if (run > 1 || (*next & RunMask) == RunMark)
            bytes.push_back(uchar(run | RunMark));
        bytes.push_back(*next);
        next += run;
    }
    return writeBytes(device, bytes);
}

} // namespace Vela
