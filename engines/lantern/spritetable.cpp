// SPDX-License-Identifier: MIT
#include "lantern/spritetable.h"

#include "lantern/spritecodec.h"

#include "frame/checksum.h"

#include <QCoreApplication>
#include <QDataStream>
#include <QIODevice>

#include <algorithm>

namespace Lantern {

namespace {

struct Texts
{
    Q_DECLARE_TR_FUNCTIONS(Lantern)
};

constexpr char magic[] = {'L', 'S', 'P', 'R'};
constexpr quint16 currentVersion = 1;
constexpr quint16 preferredFlag = 1;
constexpr int headBytes = 20;
constexpr int streamBytes = 24;
constexpr int paletteBytes = 12;
constexpr int spriteBytes = 24;
constexpr int crcBytes = 4;
constexpr quint32 paletteStreamBytes = 1024;

quint32 checksum(const QByteArray &bytes)
{
    return Vela::CRC32(bytes.constData(), size_t(bytes.size()));
}

bool isPalette(const SpriteTable::Stream &stream)
{
    return stream.info.format == QImage::Format_Invalid;
}

QDataStream &operator>>(QDataStream &in, SpriteTable::Stream &stream)
{
    quint16 depth = 0;
    in >> stream.offset >> stream.size >> stream.crc >> stream.encoding >> stream.info.width
        >> stream.info.height >> depth;
    stream.info.format = Vela::formatOfDepth(depth);
    return in;
}

QDataStream &operator<<(QDataStream &out, const SpriteTable::Stream &stream)
{
    return out << stream.offset << stream.size << stream.crc << stream.encoding << stream.info.width
               << stream.info.height << quint16(Vela::depthOfFormat(stream.info.format));
}

QDataStream &operator>>(QDataStream &in, Vela::SubItem &item)
{
    return in >> item.group >> item.image;
}

QDataStream &operator<<(QDataStream &out, Vela::SubItem item)
{
    return out << item.group << item.image;
}

QDataStream &operator>>(QDataStream &in, SpriteTable::Palette &palette)
{
    return in >> palette.identifier >> palette.stream;
}

QDataStream &operator<<(QDataStream &out, const SpriteTable::Palette &palette)
{
    return out << palette.identifier << palette.stream;
}

QDataStream &operator>>(QDataStream &in, SpriteTable::Sprite &sprite)
{
    qint32 x = 0;
    qint32 y = 0;
    in >> sprite.identifier >> x >> y >> sprite.palette >> sprite.stream;
    sprite.axis = {x, y};
    return in;
}

QDataStream &operator<<(QDataStream &out, const SpriteTable::Sprite &sprite)
{
    return out << sprite.identifier << qint32(sprite.axis.x()) << qint32(sprite.axis.y())
               << sprite.palette << sprite.stream;
}

template <class Row>
void readRows(QDataStream &in, QVector<Row> &rows)
{
    for (Row &row : rows)
        in >> row;
}

template <class Row>
void writeRows(QDataStream &out, const QVector<Row> &rows)
{
    for (const Row &row : rows)
        out << row;
}

bool isStream(const SpriteTable::Stream &stream, qint64 begin, qint64 end)
{
    const bool lies = stream.size > 0 && stream.offset >= begin && stream.offset <= end
        && qint64(stream.size) <= end - stream.offset;
    const bool fits = isPalette(stream)
        ? stream.encoding == Raw && stream.size == paletteStreamBytes
        : stream.encoding < EncodingCount && stream.info.width > 0 && stream.info.height > 0;
    return lies && fits;
}

// Whether each number of another row is one of a row that there is, of the right kind.
bool areLinked(const SpriteTable &table)
{
    const auto isOf = [&table](quint32 stream, bool palette) {
        return stream < quint32(table.streams.size())
            && isPalette(table.streams.at(int(stream))) == palette;
    };
    return std::all_of(table.palettes.begin(), table.palettes.end(),
                       [&isOf](const SpriteTable::Palette &row) { return isOf(row.stream, true); })
        && std::all_of(table.sprites.begin(), table.sprites.end(),
                       [&](const SpriteTable::Sprite &row) {
                           const bool hasPalette = row.palette == SpriteTable::None
                               || row.palette < quint32(table.palettes.size());
                           return hasPalette
                               && (row.stream == SpriteTable::None || isOf(row.stream, false));
                       });
}

} // namespace

bool SpriteTable::read(QIODevice &device, QString &error)
{
    const qint64 fileBytes = device.size();
    const QByteArray head = device.read(headBytes);
    QDataStream in(head);
    in.setByteOrder(QDataStream::LittleEndian);
    char signature[sizeof magic] = {};
    quint16 version = 0;
    quint16 flags = 0;
    quint32 counts[3] = {};
    in.readRawData(signature, sizeof signature);
    in >> version >> flags >> counts[0] >> counts[1] >> counts[2];
    if (in.status() != QDataStream::Ok || !std::equal(signature, std::end(signature), magic)) {
        error = Texts::tr("it is no sprites file");
        return false;
    }
    if (version != currentVersion) {
        error = Texts::tr("its version %1 is not known").arg(version);
        return false;
    }
    error = Texts::tr("its tables are broken");
    const qint64 bodyBytes = qint64(counts[0]) * streamBytes + qint64(counts[1]) * paletteBytes
        + qint64(counts[2]) * spriteBytes;
    if (bodyBytes > fileBytes - headBytes - crcBytes)
        return false;
    const QByteArray body = device.read(bodyBytes + crcBytes);
    if (body.size() != bodyBytes + crcBytes)
        return false;
    QDataStream rows(body);
    rows.setByteOrder(QDataStream::LittleEndian);
    SpriteTable table;
    table.streams.resize(int(counts[0]));
    table.palettes.resize(int(counts[1]));
    table.sprites.resize(int(counts[2]));
    readRows(rows, table.streams);
    readRows(rows, table.palettes);
    readRows(rows, table.sprites);
    quint32 crc = 0;
    rows >> crc;
    if (crc != checksum(head + body.left(int(bodyBytes))))
        return false;
    const qint64 begin = headBytes + bodyBytes + crcBytes;
    // Together they are no longer than the file, or a small one would fill the memory.
    qint64 streamTotal = 0;
    const bool areStreams =
        std::all_of(table.streams.begin(), table.streams.end(), [&](const Stream &stream) {
            streamTotal += stream.size;
            return isStream(stream, begin, fileBytes) && streamTotal <= fileBytes - begin;
        });
    if (!areStreams || !areLinked(table))
        return false;
    table.isPreferred = flags & preferredFlag;
    table.original = head + body;
    *this = table;
    error.clear();
    return true;
}

QByteArray SpriteTable::write()
{
    qint64 offset = headBytes + qint64(streams.size()) * streamBytes
        + qint64(palettes.size()) * paletteBytes + qint64(sprites.size()) * spriteBytes + crcBytes;
    for (Stream &stream : streams) {
        stream.offset = offset;
        offset += stream.size;
    }
    QByteArray bytes;
    QDataStream out(&bytes, QIODevice::WriteOnly);
    out.setByteOrder(QDataStream::LittleEndian);
    out.writeRawData(magic, sizeof magic);
    out << currentVersion << quint16(isPreferred ? preferredFlag : 0) << quint32(streams.size())
        << quint32(palettes.size()) << quint32(sprites.size());
    writeRows(out, streams);
    writeRows(out, palettes);
    writeRows(out, sprites);
    out << checksum(bytes);
    return bytes;
}

} // namespace Lantern
