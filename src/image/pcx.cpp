// SPDX-License-Identifier: MIT
#include "image/devicebytes_p.h"
#include "image/imageformats.h"
#include "image/pcxheader_p.h"
#include "image/pixels_p.h"
#include "image/spritecodec_p.h"

#include <QtEndian>

#include <cstring>
#include <vector>

namespace Vela {

namespace {

constexpr uchar manufacturer = 10;
constexpr uchar version = 5;
constexpr uchar runMark = 192;
constexpr int longestRun = 63;
constexpr uchar paletteMark = 12;
constexpr int paletteDepth = 8;
constexpr int paletteColors = 256;
constexpr int paletteBytes = paletteColors * 3;

// Turns packets into one row after the other: a line of each plane. Runs go on from line to line
// and from row to row: what one packet has too much begins the next row.
class PacketReader
{
public:
    PacketReader(const uchar *begin, const uchar *end, int rowLength)
        : m_next(begin)
        , m_end(end)
        , m_length(rowLength)
        , m_filled(rowLength)
        , m_row(size_t(rowLength + longestRun + runRoom))
    {
    }

    // Returns the next row, or null if the packets end within it.
    const uchar *readRow();

    // Returns where the packets go on.
    const uchar *next() const
    {
        return m_next;
    }

private:
    // Every run is written with this length, which is faster than with its own.
    static constexpr int runRoom = 64;

    const uchar *m_next;
    const uchar *m_end;
    int m_length;
    int m_filled; // by the packets so far, from the start of the row
    std::vector<uchar> m_row;
};

const uchar *PacketReader::readRow()
{
    uchar *const row = m_row.data();
    uchar *const stop = row + m_length;
    uchar *to = row + (m_filled - m_length);
    std::memmove(row, stop, size_t(to - row));
    const uchar *next = m_next;
    while (to < stop) {
        if (next == m_end)
            return nullptr;
        const uchar first = *next++;
        if (first < runMark) {
            *to++ = first;
        } else {
            if (next == m_end)
                return nullptr;
            std::memset(to, *next++, runRoom);
            to += first & longestRun;
        }
    }
    m_next = next;
    m_filled = int(to - row);
    return row;
}

// Returns whether so many bytes can hold the packets of an image: two bytes make a run at most.
bool canHold(qint64 byteCount, const PcxHeader &header, QSize size)
{
    const qint64 most = byteCount / 2 * longestRun + byteCount % 2;
    const qint64 line = qMax(header.lineLength, size.width());
    return header.lineLength > 0 && line * header.planes * size.height() <= most;
}

// Returns whether the planes are the bytes of a pixel.
bool fitsPixels(const PcxHeader &header)
{
    if (header.format == QImage::Format_Indexed8)
        return header.planes == 1;
    return header.format != QImage::Format_Invalid && (header.planes == 3 || header.planes == 4);
}

// The planes are red, green, blue and, if it is there, alpha.
void mergePlanes(QRgb *to, const uchar *row, const PcxHeader &header, int count)
{
    const uchar *const red = row;
    const uchar *const green = red + header.lineLength;
    const uchar *const blue = green + header.lineLength;
    for (int x = 0; x < count; ++x)
        to[x] = QRgb(red[x]) << 16 | QRgb(green[x]) << 8 | blue[x];
    if (header.planes < 4)
        return;
    const uchar *const alpha = blue + header.lineLength;
    for (int x = 0; x < count; ++x)
        to[x] |= QRgb(alpha[x]) << 24;
}

bool readPixels(QImage &image, const PcxHeader &header, PacketReader &packets)
{
    const int count = qMin(image.width(), header.lineLength);
    const int used = count * image.depth() / 8;
    for (int y = 0; y < image.height(); ++y) {
        const uchar *const row = packets.readRow();
        if (!row)
            return false;
        uchar *const to = image.scanLine(y);
        if (header.planes == 1)
            std::memcpy(to, row, size_t(count));
        else
            mergePlanes(reinterpret_cast<QRgb *>(to), row, header, count);
        std::memset(to + used, 0, size_t(image.bytesPerLine() - used));
    }
    return true;
}

// Takes the palette at the end of the file, or as much as shows that there is none.
bool findPalette(const uchar **next, const uchar *end)
{
    if (end - *next > 1 + paletteBytes)
        *next = end - 1 - paletteBytes;
    if (*next == end || *(*next)++ != paletteMark || end - *next < paletteBytes)
        return false;
    *next += paletteBytes;
    return true;
}

QVector<QRgb> readColors(const uchar *bytes, int count)
{
    QVector<QRgb> colors(paletteColors, qRgb(0, 0, 0));
    for (int i = 0; i < count; ++i, bytes += 3)
        colors[i] = qRgb(bytes[0], bytes[1], bytes[2]);
    return colors;
}

std::vector<uchar> makeHeader(QSize size, int planes)
{
    std::vector<uchar> header(PcxHeader::Size);
    const auto setWord = [&header](int at, int value) {
        qToLittleEndian(quint16(value), header.data() + at);
    };
    header[0] = manufacturer;
    header[1] = version;
    header[2] = 1; // runs
    header[3] = 8; // bits a plane
    setWord(8, size.width() - 1);
    setWord(10, size.height() - 1);
    header[65] = uchar(planes);
    setWord(66, size.width());
    setWord(68, 1); // colours
    return header;
}

void appendPackets(std::vector<uchar> *bytes, const std::vector<uchar> &line)
{
    const uchar *const end = line.data() + line.size();
    for (const uchar *at = line.data(); at < end;) {
        const int count = runLength(at, int(qMin<qsizetype>(end - at, longestRun)));
        if (count > 1 || *at >= runMark)
            bytes->push_back(uchar(runMark | count));
        bytes->push_back(*at);
        at += count;
    }
}

void appendPalette(std::vector<uchar> *bytes, const QVector<QRgb> &colors)
{
    bytes->push_back(paletteMark);
    for (int i = 0; i < paletteColors; ++i) {
        const QRgb color = colors.value(i);
        bytes->insert(bytes->end(),
                      {uchar(qRed(color)), uchar(qGreen(color)), uchar(qBlue(color))});
    }
}

} // namespace

PcxHeader PcxHeader::read(const char *bytes)
{
    const auto byteAt = [bytes](int at) { return uchar(bytes[at]); };
    const auto wordAt = [bytes](int at) { return qFromLittleEndian<quint16>(bytes + at); };
    PcxHeader header;
    header.width = wordAt(8) - wordAt(4) + 1;
    header.height = wordAt(10) - wordAt(6) + 1;
    header.planes = byteAt(65);
    header.depth = header.planes * byteAt(3);
    header.lineLength = wordAt(66);
    header.format = formatOfDepth(header.depth);
    header.isKnown = byteAt(0) == manufacturer && byteAt(1) == version;
    return header;
}

bool loadPCX(QImage &image, QIODevice *device, bool *hasPalette)
{
    if (!openDevice(device, QIODevice::ReadOnly))
        return false;
    const QByteArray bytes = peekAll(device);
    const QByteArray head = bytes.left(PcxHeader::Size).leftJustified(PcxHeader::Size, '\0');
    const PcxHeader header = PcxHeader::read(head.constData());
    const bool hasSize = header.width >= 1 && header.height >= 1;
    if (!header.isKnown || !fitsPixels(header) || (!hasSize && image.format() != header.format)) {
        device->skip(PcxHeader::Size);
        return false;
    }
    const auto *const begin = reinterpret_cast<const uchar *>(bytes.constData());
    const uchar *const end = begin + bytes.size();
    const uchar *const packetsAt = qMin(begin + PcxHeader::Size, end);
    const QSize size = hasSize ? QSize(header.width, header.height) : image.size();
    if (!canHold(end - packetsAt, header, size))
        image = QImage();
    else if (image.size() != size || image.format() != header.format)
        image = makeImage(size, header.format);
    PacketReader packets(packetsAt, end, header.planes * header.lineLength);
    if (image.isNull() || !readPixels(image, header, packets)) {
        image = QImage();
        device->skip(bytes.size());
        return false;
    }
    const uchar *next = packets.next();
    bool found = false;
    if (header.depth == paletteDepth) {
        found = findPalette(&next, end);
        const auto *const fallback = reinterpret_cast<const uchar *>(head.constData());
        image.setColorTable(found ? readColors(next - paletteBytes, paletteColors)
                                  : readColors(fallback + PcxHeader::ColorsAt, 16));
    }
    if (hasPalette && header.depth >= paletteDepth)
        *hasPalette = found;
    device->skip(next - begin);
    return true;
}

bool savePCX(const QImage &image, QIODevice *device)
{
    if (!openDevice(device, QIODevice::WriteOnly))
        return false;
    const int planes = depthOfFormat(image.format()) / 8;
    if (planes == 0 || image.width() > 0xFFFF || image.height() > 0xFFFF)
        return false;
    const int stride = image.depth() / 8;
    std::vector<uchar> bytes = makeHeader(image.size(), planes);
    std::vector<uchar> line(size_t(image.width()));
    for (int y = 0; y < image.height(); ++y) {
        for (int plane = 0; plane < planes; ++plane) {
            // Red and blue change their places.
            const int offset = planes > 1 && plane < 3 ? 2 - plane : plane;
            const uchar *from = image.constScanLine(y) + offset;
            for (uchar &value : line) {
                value = *from;
                from += stride;
            }
            appendPackets(&bytes, line);
        }
    }
    if (planes == 1)
        appendPalette(&bytes, image.colorTable());
    return writeBytes(device, bytes);
}

} // namespace Vela
