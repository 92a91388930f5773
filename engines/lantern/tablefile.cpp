// SPDX-License-Identifier: MIT
#include "lantern/tablefile.h"

#include "frame/checksum.h"

#include <QCoreApplication>
#include <QIODevice>
#include <QtEndian>

namespace Lantern {

namespace {

struct Texts
{
    Q_DECLARE_TR_FUNCTIONS(Lantern)
};

constexpr quint16 currentVersion = 1;
constexpr quint16 preferredFlag = 1;
constexpr int headBytes = 20;
constexpr int crcBytes = 4;

quint32 checksum(const QByteArray &bytes, int size)
{
    return Vela::CRC32(bytes.constData(), size_t(size));
}

// The bytes of all tables with what stands around them.
template <class Count>
qint64 tableBytes(const TableLayout &layout, const std::array<Count, 3> &counts)
{
    qint64 bytes = headBytes + crcBytes;
    for (size_t i = 0; i < counts.size(); ++i)
        bytes += qint64(counts[i]) * layout.rowBytes[i];
    return bytes;
}

} // namespace

TableReader::TableReader(const TableLayout &layout)
    : m_layout(layout)
    , m_in(&m_bytes, QIODevice::ReadOnly)
{
    m_in.setByteOrder(QDataStream::LittleEndian);
}

bool TableReader::read(QIODevice &device, const QString &otherKind, QString &error)
{
    m_fileBytes = device.size();
    m_bytes = device.read(headBytes);
    const auto &magic = m_layout.magic;
    if (m_bytes.size() != headBytes
        || !std::equal(std::begin(magic), std::end(magic), m_bytes.constBegin())) {
        error = otherKind;
        return false;
    }
    quint16 version = 0;
    quint16 flags = 0;
    m_in.skipRawData(sizeof magic);
    m_in >> version >> flags >> m_counts[0] >> m_counts[1] >> m_counts[2];
    if (version != currentVersion) {
        error = Texts::tr("its version %1 is not known").arg(version);
        return false;
    }
    m_isPreferred = flags & preferredFlag;
    error = Texts::tr("its tables are broken");
    const qint64 size = tableBytes(m_layout, m_counts);
    if (size > m_fileBytes)
        return false;
    m_bytes += device.read(size - headBytes);
    const int rowsEnd = int(size) - crcBytes;
    return m_bytes.size() == size
        && qFromLittleEndian<quint32>(m_bytes.constData() + rowsEnd) == checksum(m_bytes, rowsEnd);
}

QByteArray TableReader::readBytes()
{
    return m_in.device()->read(m_counts[m_next++]);
}

bool TableReader::isPreferred() const
{
    return m_isPreferred;
}

const QByteArray &TableReader::bytes() const
{
    return m_bytes;
}

TableWriter::TableWriter(const TableLayout &layout, bool isPreferred,
                         const std::array<int, 3> &counts)
    : m_out(&m_bytes, QIODevice::WriteOnly)
    , m_tableBytes(tableBytes(layout, counts))
{
    m_out.setByteOrder(QDataStream::LittleEndian);
    m_out.writeRawData(layout.magic, sizeof layout.magic);
    m_out << currentVersion << quint16(isPreferred ? preferredFlag : 0);
    for (const int count : counts)
        m_out << quint32(count);
}

void TableWriter::writeBytes(const QByteArray &bytes)
{
    m_out.writeRawData(bytes.constData(), bytes.size());
}

QByteArray TableWriter::finished()
{
    m_out << checksum(m_bytes, m_bytes.size());
    return m_bytes;
}

} // namespace Lantern
