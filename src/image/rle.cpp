// SPDX-License-Identifier: MIT
#include "image/imageformats.h"
#include "image/runmarks_p.h"
#include "image/spritecodec_p.h"

#include <QtAlgorithms>

namespace Vela {

namespace {

constexpr int LongestRun = 63;
constexpr uchar RunMask = 0xC0;
constexpr uchar RunMark = 0x40;

// What has to be left on both sides for a block: it is read with the one behind it, and written
// with the longest run.
constexpr int Margin = 2 * Block;

// Most packets need no more than one piece.
constexpr int Piece = 16;

// Copies up to a block, which has to have room, and returns where the next pixels go.
uchar *copyUpToBlock(uchar *to, const uchar *from, qsizetype count)
{
    std::memcpy(to, from, Piece);
    if (count > Piece)
        std::memcpy(to + Piece, from + Piece, Block - Piece);
    return to + count;
}

uchar *fillUpToBlock(uchar *to, uchar value, int count)
{
    std::memset(to, value, Piece);
    if (count > Piece)
        std::memset(to + Piece, value, Block - Piece);
    return to + count;
}

// Takes blocks as long as neither end is near. The runs of a block are found all at once, and one
// block ahead, so that the processor need not wait for one packet to see where the next one begins,
// nor stand idle when it was wrong about the number of runs.
void decodeBlocks(PacketSource &source, PixelBuffer &pixels)
{
    if (source.available() < Margin || pixels.room() < Margin)
        return;
    const uchar *from = source.next();
    const uchar *block = from;
    const uchar *const lastBlock = block + (source.available() - Margin);
    uchar *to = pixels.next();
    uchar *const lastTo = to + (pixels.room() - Margin);
    quint64 marked = markedBytes(block);
    quint64 valueFirst = 0;
    while (block <= lastBlock && to <= lastTo) {
        quint64 starts = runStarts(marked & ~valueFirst);
        valueFirst = starts >> (Block - 1);
        const uchar *const nextBlock = block + Block;
        marked = markedBytes(nextBlock);
        for (; starts && to <= lastTo; starts &= starts - 1) {
            const uchar *const packet = block + qCountTrailingZeroBits(starts);
            to = copyUpToBlock(to, from, packet - from);
            to = fillUpToBlock(to, packet[1], packet[0] & LongestRun);
            from = packet + 2;
        }
        if (!starts && from < nextBlock) {
            to = copyUpToBlock(to, from, nextBlock - from);
            from = nextBlock;
        }
        block = nextBlock;
    }
    source.skip(from - source.next());
    pixels.skip(to - pixels.next());
}

// Blocks leave some of both sides; the packets there are taken one by one.
bool decodeRLE8(PacketSource &source, PixelBuffer &pixels)
{
    while (!pixels.isFull() && source.hasPacket()) {
        decodeBlocks(source, pixels);
        const uchar first = source.take();
        if ((first & RunMask) != RunMark) {
            pixels.appendRun(first, 1);
            continue;
        }
        const uchar value = source.take();
        if (source.isPastEnd())
            return false;
        pixels.appendRun(value, first & LongestRun);
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
