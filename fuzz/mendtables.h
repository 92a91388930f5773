// SPDX-License-Identifier: MIT
#pragma once

#include "frame/checksum.h"

#include <QByteArray>
#include <QtEndian>

/// Sets the checksum of a file's tables right, unless the file is too short for them, and takes
/// those of its streams away, so that what they cover is fuzzed, too. The rows of the three tables
/// take so many bytes; the first ones are of streams.
inline void mendTables(QByteArray &file, const int (&rowBytes)[3])
{
    constexpr qint64 headBytes = 20;
    if (file.size() < headBytes)
        return;
    const auto tableBytes = [&](int table) {
        const auto count = qFromLittleEndian<quint32>(file.constData() + 8 + table * 4);
        return qint64(count) * rowBytes[table];
    };
    const qint64 streamsEnd = headBytes + tableBytes(0);
    const qint64 end = streamsEnd + tableBytes(1) + tableBytes(2);
    if (end + 4 > file.size())
        return;
    for (qint64 row = headBytes; row < streamsEnd; row += rowBytes[0])
        qToLittleEndian<quint32>(0, file.data() + row + 12);
    qToLittleEndian(Vela::CRC32(file.constData(), std::size_t(end)), file.data() + end);
}
