// SPDX-License-Identifier: MIT
#include "image/spritecodec_p.h"

#include <QtAlgorithms>
#include <QtEndian>

namespace Vela {

int equalBytes(const uchar *a, const uchar *b, int limit)
{
    int count = 0;
    for (; limit - count >= Step; count += Step) {
        const quint64 difference =
            qFromLittleEndian<quint64>(a + count) ^ qFromLittleEndian<quint64>(b + count);
        if (difference)
            return count + int(qCountTrailingZeroBits(difference) / 8);
    }
    while (count < limit && a[count] == b[count])
        ++count;
    return count;
}

PacketSource::PacketSource(QIODevice *device, qint64 expected)
    : m_device(device)
    , m_capacity(qBound<qint64>(64, expected, 64 * 1024))
    , m_bytes(new uchar[size_t(m_capacity + Step)])
    , m_next(m_bytes.get())
    , m_end(m_next)
{
}

PacketSource::~PacketSource()
{
    skipTaken();
}

void PacketSource::skipTaken()
{
    m_device->skip(qMin(m_next, m_end) - m_bytes.get());
}

// The bytes are peeked at, and left in the device until they are taken. A pipe may give only some
// of those that are to come; where it has no more, less than a step is the end.
void PacketSource::fill()
{
    skipTaken();
    m_next = m_bytes.get();
    qint64 count = 0;
    qint64 before = 0;
    do {
        before = count;
        count = qMax(before, m_device->peek(reinterpret_cast<char *>(m_next), m_capacity));
    } while (count > before && count < Step);
    m_end = m_next + count;
    std::memset(m_end, 0, Step);
}

PixelBuffer::PixelBuffer(qsizetype size)
    : m_bytes(new uchar[size_t(size + Slack)])
    , m_next(m_bytes.get())
    , m_end(m_next + size)
{
}

bool PixelBuffer::appendCopy(int distance, int count)
{
    if (distance > m_next - m_bytes.get())
        return false;
    uchar *to = m_next;
    const uchar *from = to - distance;
    m_next += count;
    if (distance < Step) {
        for (int i = 0; i < Step; ++i)
            to[i] = from[i];
        // The pixels repeat with the distance, and so with a multiple of it, which leaves room for
        // a step.
        to += Step;
        from = to - distance * ((Step + distance - 1) / distance);
    }
    for (; to < m_next; to += Step, from += Step)
        std::memcpy(to, from, Step);
    return true;
}

bool PixelBuffer::copyTo(QImage &image, qsizetype rowLength) const
{
    const uchar *from = m_bytes.get();
    const uchar *const end = qMin(m_next, m_end);
    if (from == end)
        return true;
    uchar *row = image.bits();
    if (!row)
        return false;
    for (; from < end; from += rowLength, row += image.bytesPerLine())
        std::memcpy(row, from, size_t(qMin<qsizetype>(rowLength, end - from)));
    return true;
}

bool loadPixels(QImage &image, qsizetype rowLength, QIODevice *device, PacketDecoder decode)
{
    if (!openDevice(device, QIODevice::ReadOnly) || rowLength > image.bytesPerLine())
        return false;
    const qsizetype size = rowLength * image.height();
    PixelBuffer pixels(size);
    PacketSource source(device, size + size / 8);
    const bool decoded = decode(source, pixels);
    return pixels.copyTo(image, rowLength) && decoded;
}

JoinedRows::JoinedRows(const QImage &image, qsizetype rowLength)
    : m_data(image.constBits())
    , m_size(rowLength * image.height())
{
    if (rowLength == image.bytesPerLine())
        return;
    m_joined.reserve(size_t(m_size));
    for (int y = 0; y < image.height(); ++y) {
        const uchar *const row = image.constScanLine(y);
        m_joined.insert(m_joined.end(), row, row + rowLength);
    }
    m_data = m_joined.data();
}

bool writeBytes(QIODevice *device, const std::vector<uchar> &bytes)
{
    const qint64 size = qint64(bytes.size());
    return size == 0 || device->write(reinterpret_cast<const char *>(bytes.data()), size) == size;
}

} // namespace Vela
