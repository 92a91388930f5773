// SPDX-License-Identifier: MIT
#pragma once

#include <QIODevice>

#include <algorithm>

/// A device that knows no position, and hands out only some bytes at a time.
class Pipe : public QIODevice
{
public:
    explicit Pipe(const QByteArray &content = {}, int atOnce = 3)
        : m_bytes(content)
        , m_atOnce(atOnce)
    {
    }
    bool isSequential() const override
    {
        return true;
    }
    qint64 bytesAvailable() const override
    {
        return m_bytes.size() + QIODevice::bytesAvailable();
    }

    int room = 1 << 20; ///< for bytes that are written

protected:
    qint64 readData(char *data, qint64 maxSize) override
    {
        const int count = std::min({int(maxSize), m_atOnce, m_bytes.size()});
        std::copy_n(m_bytes.constData(), count, data);
        m_bytes.remove(0, count);
        return count;
    }
    qint64 writeData(const char *data, qint64 size) override
    {
        const int count = std::min(int(size), room);
        m_bytes.append(data, count);
        room -= count;
        return count;
    }

private:
    QByteArray m_bytes;
    int m_atOnce;
};
