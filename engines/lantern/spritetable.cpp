// SPDX-License-Identifier: MIT
#include "lantern/spritetable.h"

#include "lantern/spritecodec.h"

#include <QCoreApplication>

#include <algorithm>

namespace Lantern {

namespace {

struct Texts
{
    Q_DECLARE_TR_FUNCTIONS(Lantern)
};

constexpr TableLayout layout = {{'L', 'S', 'P', 'R'}, {24, 12, 24}};
constexpr quint32 paletteStreamBytes = 1024;

bool isPalette(const SpriteTable::Stream &stream)
{
    return stream.info.format == QImage::Format_Invalid;
}

void readStream(QDataStream &in, SpriteTable::Stream &stream)
{
    quint16 depth = 0;
    readPlace(in, stream);
    in >> stream.info.width >> stream.info.height >> depth;
    stream.info.format = Vela::formatOfDepth(depth);
}

void writeStream(QDataStream &out, const SpriteTable::Stream &stream)
{
    writePlace(out, stream);
    out << stream.info.width << stream.info.height
        << quint16(Vela::depthOfFormat(stream.info.format));
}

QDataStream &operator>>(QDataStream &in, Vela::SubItem &item)
{
    return in >> item.group >> item.image;
}

QDataStream &operator<<(QDataStream &out, Vela::SubItem item)
{
    return out << item.group << item.image;
}

void readPalette(QDataStream &in, SpriteTable::Palette &palette)
{
    in >> palette.identifier >> palette.stream;
}

void writePalette(QDataStream &out, const SpriteTable::Palette &palette)
{
    out << palette.identifier << palette.stream;
}

void readSprite(QDataStream &in, SpriteTable::Sprite &sprite)
{
    qint32 x = 0;
    qint32 y = 0;
    in >> sprite.identifier >> x >> y >> sprite.palette >> sprite.stream;
    sprite.axis = {x, y};
}

void writeSprite(QDataStream &out, const SpriteTable::Sprite &sprite)
{
    out << sprite.identifier << qint32(sprite.axis.x()) << qint32(sprite.axis.y()) << sprite.palette
        << sprite.stream;
}

bool isStream(const SpriteTable::Stream &stream)
{
    return isPalette(stream)
        ? stream.encoding == Raw && stream.size == paletteStreamBytes
        : stream.encoding < EncodingCount && stream.info.width > 0 && stream.info.height > 0;
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
    TableReader reader(layout);
    if (!reader.read(device, Texts::tr("it is no sprites file"), error))
        return false;
    SpriteTable table;
    reader.readRows(table.streams, readStream);
    reader.readRows(table.palettes, readPalette);
    reader.readRows(table.sprites, readSprite);
    if (!reader.areStreams(table.streams, isStream) || !areLinked(table))
        return false;
    table.isPreferred = reader.isPreferred();
    table.original = reader.bytes();
    *this = table;
    error.clear();
    return true;
}

QByteArray SpriteTable::write()
{
    TableWriter writer(layout, isPreferred, {streams.size(), palettes.size(), sprites.size()});
    writer.place(streams);
    writer.writeRows(streams, writeStream);
    writer.writeRows(palettes, writePalette);
    writer.writeRows(sprites, writeSprite);
    return writer.finished();
}

} // namespace Lantern
