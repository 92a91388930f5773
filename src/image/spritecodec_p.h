// SPDX-License-Identifier: MIT
#pragma once

// What the codecs of one sprite's pixels share: packets come from a device in big pieces, pixels
// go through a buffer of rows without padding.

#include "image/devicebytes_p.h"

#include <QImage>

#include <array>
#include <cstring>
#include <memory>
#include <vector>

namespace Vela {

/// Bytes that are handled at once.
constexpr int Step = 8;

/// Returns how many of the first \a limit bytes are equal, counted up to the first difference.
int equalBytes(const uchar *a, const uchar *b, int limit);

/// Returns how often the first of \a limit bytes, at least one, stands there in a row.
inline int runLength(const uchar *bytes, int limit)
{
    return 1 + equalBytes(bytes, bytes + 1, limit - 1);
}

/// The packets of a device. What lies behind the last one taken stays in the device.
class PacketSource
{
public:
    /// \a expected is the number of bytes that are likely to be needed.
    PacketSource(QIODevice *device, qint64 expected);
    ~PacketSource();

    /// Returns whether a packet follows. A step of bytes can then be seen and taken, even past the
    /// end, where zeros follow.
    bool hasPacket()
    {
        if (m_end - m_next < Step)
            fill();
        return m_next < m_end;
    }
    const uchar *next() const
    {
        return m_next;
    }
    qsizetype available() const
    {
        return m_end - m_next;
    }
    void skip(qsizetype count)
    {
        m_next += count;
    }
    uchar take()
    {
        return *m_next++;
    }
    /// Returns whether the device ended within the bytes taken.
    bool isPastEnd() const
    {
        return m_next > m_end;
    }

private:
    Q_DISABLE_COPY(PacketSource)

    void fill();
    void skipTaken();

    QIODevice *m_device;
    qint64 m_capacity;
    std::unique_ptr<uchar[]> m_bytes;
    uchar *m_next;
    uchar *m_end;
};

/// The rows of an image without padding, filled from the first pixel on. A packet may write over
/// the end.
class PixelBuffer
{
public:
    explicit PixelBuffer(qsizetype size);

    bool isFull() const
    {
        return m_next >= m_end;
    }
    qsizetype room() const
    {
        return m_end - m_next;
    }
    /// Returns where the next pixel goes. A packet may be written there.
    uchar *next() const
    {
        return m_next;
    }
    /// Counts pixels that were written at next().
    void skip(qsizetype count)
    {
        m_next += count;
    }
    /// Appends up to 263 equal pixels.
    void appendRun(uchar value, int count)
    {
        std::memset(m_next, value, Step);
        if (count > Step)
            std::memset(m_next + Step, value, size_t(count - Step));
        m_next += count;
    }
    /// Appends 1 to 263 pixels from \a distance behind, which may overlap themselves. Returns false
    /// if the distance leads out of the image.
    bool appendCopy(int distance, int count);
    /// Copies what there is to the rows of \a image, \a rowLength bytes each.
    bool copyTo(QImage &image, qsizetype rowLength) const;

private:
    static constexpr int Slack = 263 + 2 * Step;

    std::unique_ptr<uchar[]> m_bytes;
    uchar *m_next;
    uchar *m_end;
};

/// Reads packets until the buffer is full or the source ends between two of them. Returns false if
/// a packet is cut or makes no sense.
using PacketDecoder = bool (*)(PacketSource &source, PixelBuffer &pixels);

/// Fills the rows of \a image, \a rowLength bytes each.
bool loadPixels(QImage &image, qsizetype rowLength, QIODevice *device, PacketDecoder decode);

/// The first \a rowLength bytes of each row of an image, without padding. Sees the image's own
/// memory where it has none.
class JoinedRows
{
public:
    JoinedRows(const QImage &image, qsizetype rowLength);

    const uchar *data() const
    {
        return m_data;
    }
    qsizetype size() const
    {
        return m_size;
    }

private:
    Q_DISABLE_COPY(JoinedRows)

    std::vector<uchar> m_joined;
    const uchar *m_data;
    qsizetype m_size;
};

/// Writes all of \a bytes.
bool writeBytes(QIODevice *device, const std::vector<uchar> &bytes);

} // namespace Vela
