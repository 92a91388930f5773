// SPDX-License-Identifier: MIT
#include "lantern/spooldevice.h"

#include <algorithm>
#include <cstring>
#include <utility>

namespace Lantern {

bool SpoolDevice::isSequential() const
{
    return false;
}

qint64 SpoolDevice::size() const
{
    return m_file ? m_file->size() : m_memory.size();
}

bool SpoolDevice::seek(qint64 position)
{
    return position >= 0 && position <= size() && QIODevice::seek(position);
}

bool SpoolDevice::isWhole() const
{
    return !m_failed;
}

bool SpoolDevice::isInMemory() const
{
    return !m_file;
}

QByteArray SpoolDevice::takeMemory()
{
    return std::exchange(m_memory, QByteArray());
}

qint64 SpoolDevice::readData(char *data, qint64 size)
{
    if (m_file)
        return m_file->seek(pos()) ? m_file->read(data, size) : -1;
    const qint64 length = std::min(size, m_memory.size() - pos());
    if (length <= 0)
        return 0;
    std::memcpy(data, m_memory.constData() + pos(), size_t(length));
    return length;
}

qint64 SpoolDevice::writeData(const char *data, qint64 size)
{
    if (!m_file && pos() + size > memoryLimit && !moveToFile())
        m_failed = true;
    if (m_failed)
        return -1;
    if (m_file) {
        const qint64 written = m_file->seek(pos()) ? m_file->write(data, size) : -1;
        m_failed = written != size || !m_file->flush();
        return m_failed ? -1 : written;
    }
    if (pos() + size > m_memory.size())
        m_memory.resize(int(pos() + size));
    std::memcpy(m_memory.data() + pos(), data, size_t(size));
    return size;
}

bool SpoolDevice::moveToFile()
{
    m_file = std::make_unique<QTemporaryFile>();
    const bool moved = m_file->open() && m_file->write(m_memory) == m_memory.size();
    m_memory.clear();
    return moved;
}

} // namespace Lantern
