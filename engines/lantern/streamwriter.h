// SPDX-License-Identifier: MIT
#pragma once

#include "lantern/latecontent.h"
#include "lantern/streamhandle.h"

#include "frame/checksum.h"

#include <QHash>

namespace Lantern {

/// Gathers the streams of a file, each that several items have only once.
template <class Table>
class StreamWriter
{
public:
    explicit StreamWriter(Table &table)
        : m_table(table)
    {
    }

    /// Returns the stream's number in the table; None if it cannot be had.
    quint32 add(const StreamRef &stream, const decltype(Table::Stream::info) &info)
    {
        const auto known = m_numbers.constFind(stream->item());
        if (known != m_numbers.constEnd())
            return *known;
        unsigned int encoding = 0;
        const QByteArray bytes = stream->stored(encoding);
        if (bytes.isEmpty())
            return Table::None;
        m_isTooLarge = m_isTooLarge || bytes.size() > largestFile - m_bytes.size();
        if (m_isTooLarge)
            return 0;
        const quint32 number = quint32(m_table.streams.size());
        m_table.streams.append(
            {0, quint32(bytes.size()), stream->plainCrc(), quint16(encoding), info});
        m_numbers.insert(stream->item(), number);
        m_bytes += bytes;
        return number;
    }

    const QByteArray &bytes() const
    {
        return m_bytes;
    }
    /// Returns whether there was more than a file may have.
    bool isTooLarge() const
    {
        return m_isTooLarge;
    }

private:
    Table &m_table;
    bool m_isTooLarge = false;
    QHash<const Vela::StreamCache::Item *, quint32> m_numbers;
    QByteArray m_bytes;
};

} // namespace Lantern
