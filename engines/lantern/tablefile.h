// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QDataStream>
#include <QString>
#include <QVector>

#include <algorithm>
#include <array>

class QIODevice;

namespace Lantern {

/// The three tables at the beginning of a file of streams: streams, and two more of each kind of
/// files. A head says how many rows each has, and a checksum stands behind them.
struct TableLayout
{
    char magic[4];
    std::array<int, 3> rowBytes;
};

/// The row of a stream. \a Info is its form, which differs from file to file.
template <class Info>
struct TableStream
{
    qint64 offset = 0; ///< from the file's start, in bytes
    quint32 size = 0;  ///< in bytes
    quint32 crc = 0;   ///< CRC32 of the plain data; 0 where that is not known
    quint16 encoding = 0;
    Info info;
};

/// Reads what files of streams have in common. Tables are read in the order that they stand in.
class TableReader
{
public:
    explicit TableReader(const TableLayout &layout);

    /// Reads all tables, and leaves the device behind them. Returns false if they are broken.
    /// \a error becomes the reason, \a otherKind for another kind of file; where true is returned
    /// that of rows that make no sense.
    bool read(QIODevice &device, const QString &otherKind, QString &error);

    /// Fills \a rows with the next table. \a readRow takes one from a data stream.
    template <class Row, class ReadRow>
    void readRows(QVector<Row> &rows, ReadRow readRow)
    {
        rows.resize(int(m_counts[m_next++]));
        for (Row &row : rows)
            readRow(m_in, row);
    }
    /// Returns the next table as bytes.
    QByteArray readBytes();

    /// Returns whether each stream lies behind the tables and in the file, and \a fits. Together
    /// they are no longer than the file, or a small one would fill the memory.
    template <class Info, class Fits>
    bool areStreams(const QVector<TableStream<Info>> &streams, Fits fits) const
    {
        qint64 room = m_fileBytes - m_bytes.size();
        return std::all_of(streams.begin(), streams.end(), [&](const TableStream<Info> &stream) {
            room -= stream.size;
            return room >= 0 && stream.size > 0 && stream.offset >= m_bytes.size()
                && stream.offset <= m_fileBytes - stream.size && fits(stream);
        });
    }

    /// The flag of the head.
    bool isPreferred() const;
    /// Returns the tables as they were read.
    const QByteArray &bytes() const;

private:
    Q_DISABLE_COPY(TableReader)

    const TableLayout m_layout;
    std::array<quint32, 3> m_counts = {};
    bool m_isPreferred = false;
    qint64 m_fileBytes = 0;
    QByteArray m_bytes;
    QDataStream m_in;  // stands in m_bytes, which grows behind it
    size_t m_next = 0; // the table that has not been read
};

/// Writes what a TableReader reads.
class TableWriter
{
public:
    /// \a counts are the rows of each table.
    TableWriter(const TableLayout &layout, bool isPreferred, const std::array<int, 3> &counts);

    /// Puts streams behind the tables, in their order and without gaps.
    template <class Info>
    void place(QVector<TableStream<Info>> &streams) const
    {
        qint64 offset = m_tableBytes;
        for (TableStream<Info> &stream : streams) {
            stream.offset = offset;
            offset += stream.size;
        }
    }
    /// Writes the next table.
    template <class Row, class WriteRow>
    void writeRows(const QVector<Row> &rows, WriteRow writeRow)
    {
        for (const Row &row : rows)
            writeRow(m_out, row);
    }
    void writeBytes(const QByteArray &bytes);
    /// Returns all tables.
    QByteArray finished();

private:
    Q_DISABLE_COPY(TableWriter)

    QByteArray m_bytes;
    QDataStream m_out;
    qint64 m_tableBytes;
};

/// Reads a stream's row up to its form.
template <class Info>
void readPlace(QDataStream &in, TableStream<Info> &stream)
{
    in >> stream.offset >> stream.size >> stream.crc >> stream.encoding;
}

template <class Info>
void writePlace(QDataStream &out, const TableStream<Info> &stream)
{
    out << stream.offset << stream.size << stream.crc << stream.encoding;
}

} // namespace Lantern
