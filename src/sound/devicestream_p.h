// SPDX-License-Identifier: MIT
#pragma once

#include "sound/samplebytes_p.h"

#include <QIODevice>

#include <array>
#include <cstdio>
#include <cstring>

namespace Vela {

/// A device from where it stands, as the libraries of the formats want to see it: they take a few
/// bytes at a time, which come from a buffer.
class DeviceStream
{
public:
    explicit DeviceStream(QIODevice *device)
        : m_device(device)
        , m_start(device->isSequential() ? 0 : device->pos())
    {
    }

    /// Returns the number of bytes read, fewer than \a most at the end only.
    qint64 read(char *to, qint64 most)
    {
        qint64 count = 0;
        while (count < most && (m_next < m_end || fill())) {
            const qint64 more = qMin(most - count, m_end - m_next);
            std::memcpy(to + count, m_buffer.data() + m_next, size_t(more));
            m_next += more;
            count += more;
        }
        return count;
    }
    /// Goes to an offset from where \a whence says, as fseek() does. Returns the new position, -1
    /// if that fails.
    qint64 seek(qint64 offset, int whence)
    {
        if (m_device->isSequential())
            return -1;
        const qint64 position = m_device->pos() - m_start - (m_end - m_next);
        const qint64 end = m_device->size() - m_start;
        const qint64 target = offset
            + (whence == SEEK_CUR       ? position
                   : whence == SEEK_END ? end
                                        : 0);
        if (target == position)
            return position;
        if (target < 0 || target > end || !m_device->seek(m_start + target))
            return -1;
        m_next = m_end = 0;
        return target;
    }

private:
    bool fill()
    {
        m_next = 0;
        m_end = qMax<qint64>(0, m_device->read(m_buffer.data(), qint64(m_buffer.size())));
        return m_end > 0;
    }

    QIODevice *m_device;
    qint64 m_start;
    std::array<char, 16384> m_buffer;
    qint64 m_next = 0; // within the buffer
    qint64 m_end = 0;
};

/// Appends to \a data what \a read, called with an address and a number of bytes, puts there and
/// returns the number of: up to \a block bytes a call, until it returns less than 1. So no memory
/// is taken for what a file only promises. Returns false, without any data, where it is more than
/// \a mostData bytes.
template <typename Read>
bool appendBlocks(QByteArray *data, int block, int mostData, Read read)
{
    // What is reserved is not given back each time that a block is short.
    data->reserve(block);
    for (;;) {
        const int size = data->size();
        if (size > qMin(mostData, LargestData - block)) {
            data->clear();
            return false;
        }
        data->resize(size + block);
        const int count = read(data->data() + size, block);
        data->resize(size + qMax(count, 0));
        if (count < 1)
            break;
    }
    data->squeeze();
    return true;
}

} // namespace Vela
