// SPDX-License-Identifier: MIT
// How a sprites file is read and written.
#include "lantern/spritesfile.h"

#include "lantern/spritetable.h"

#include "frame/checksum.h"
#include "frame/filesystemarchive.h"

#include <QCoreApplication>
#include <QHash>

namespace Lantern {

namespace {

struct Texts
{
    Q_DECLARE_TR_FUNCTIONS(Lantern)
};

// A file above this size is loaded in the background.
constexpr qint64 largeFile = 1024 * 1024;

// Writes the streams of palettes and sprites, each that several have only once.
class StreamWriter
{
public:
    explicit StreamWriter(SpriteTable &table)
        : m_table(table)
    {
    }

    // Returns the stream's number; None if it cannot be had.
    quint32 add(const StreamRef &stream, const Vela::ImageInfo &info)
    {
        const auto known = m_numbers.constFind(stream->item());
        if (known != m_numbers.constEnd())
            return *known;
        unsigned int encoding = Raw;
        const QByteArray bytes = stream->stored(encoding);
        if (bytes.isEmpty())
            return SpriteTable::None;
        m_isTooLarge = m_isTooLarge || bytes.size() > largestFile - m_bytes.size();
        if (m_isTooLarge)
            return 0;
        const QByteArray plain = stream->crc() == 0 ? stream->plain() : QByteArray();
        const quint32 crc = stream->crc() == 0
            ? Vela::CRC32(plain.constData(), size_t(plain.size()))
            : stream->crc();
        const quint32 number = quint32(m_table.streams.size());
        m_table.streams.append({0, quint32(bytes.size()), crc, quint16(encoding), info});
        m_numbers.insert(stream->item(), number);
        m_bytes += bytes;
        return number;
    }

    const QByteArray &bytes() const
    {
        return m_bytes;
    }
    // Returns whether there was more than a file may have.
    bool isTooLarge() const
    {
        return m_isTooLarge;
    }

private:
    SpriteTable &m_table;
    bool m_isTooLarge = false;
    QHash<const Vela::StreamCache::Item *, quint32> m_numbers;
    QByteArray m_bytes;
};

} // namespace

bool SpritesFile::read(Vela::Archive &archive, const QString &name, QString &error)
{
    QIODevice *const device = archive.openFile(name, QIODevice::ReadOnly);
    if (!device) {
        error = Texts::tr("The file '%1' cannot be read.").arg(name);
        return false;
    }
    SpriteTable table;
    QString reason;
    QVector<StreamRef> streams;
    const bool isOnDisk = &archive == &Vela::FileSystemArchive::instance();
    const bool isLate = isOnDisk && device->size() > largeFile;
    bool isRead = device->size() <= largestFile && table.read(*device, reason);
    const auto store = std::make_shared<StreamStore>(isLate ? name : QString(), table.isPreferred);
    for (int i = 0; isRead && i < table.streams.size(); ++i) {
        const SpriteTable::Stream &row = table.streams.at(i);
        const StreamKind kind =
            row.info.format == QImage::Format_Invalid ? StreamKind::Palette : StreamKind::Image;
        StreamRef stream;
        if (isLate) {
            stream = store->addLate({row.offset, row.size, row.crc, row.encoding, nullptr}, kind);
        } else if (device->seek(row.offset)) {
            stream = store->addRaw(device->read(row.size), row.encoding, kind, row.crc);
        }
        isRead = stream && stream->item()->size() == row.size;
        streams.append(stream);
    }
    archive.closeFile(device);
    if (!isRead) {
        error = Texts::tr("The file '%1' cannot be read: %2.")
                    .arg(name, reason.isEmpty() ? Texts::tr("it is too large or cut off") : reason);
        return false;
    }
    m_messages->clear();
    m_tables = table.original;
    replaceContent(table, streams, store);
    return true;
}

// The state in front of it comes back with undo, out of the store that it has been in, unless this
// is the first one.
void SpritesFile::replaceContent(const SpriteTable &table, const QVector<StreamRef> &streams,
                                 const std::shared_ptr<StreamStore> &store)
{
    setLoaded();
    std::unique_ptr<Change> change;
    if (!m_isOpening)
        change = std::make_unique<Change>(*this, Texts::tr("Reading the file"));
    m_store = store;
    m_palettes.clear();
    for (const SpriteTable::Palette &row : table.palettes) {
        const PaletteItem::Value value{row.identifier, streams.at(int(row.stream))};
        m_palettes.append(std::make_shared<PaletteItem>(*this, value));
    }
    m_sprites.clear();
    for (const SpriteTable::Sprite &row : table.sprites) {
        SpriteItem::Value value;
        value.identifier = row.identifier;
        value.axis = row.axis;
        if (row.palette != SpriteTable::None)
            value.palette = m_palettes.at(int(row.palette));
        if (row.stream != SpriteTable::None) {
            value.image = streams.at(int(row.stream));
            value.info = table.streams.at(int(row.stream)).info;
        }
        m_sprites.append(std::make_shared<SpriteItem>(*this, value));
    }
    renumber(0);
    renumberPalettes(0);
}

// Another program may have put another file in its place.
bool SpritesFile::originalBytes(QByteArray &data) const
{
    QString error;
    return !isModified() && !m_tables.isEmpty()
        && readAll(archive(), fileName(), largestFile, data, error) && data.startsWith(m_tables);
}

bool SpritesFile::encode(QByteArray &data, QString &error) const
{
    if (originalBytes(data))
        return true;
    m_store->finishLoads();
    SpriteTable table;
    table.isPreferred = true;
    StreamWriter writer(table);
    for (const PaletteRef &palette : m_palettes) {
        const PaletteItem::Value &value = palette->value();
        table.palettes.append({value.identifier, 0});
        quint32 &stream = table.palettes.last().stream;
        stream = writer.add(value.colors, {0, 0, QImage::Format_Invalid});
        if (stream == SpriteTable::None) {
            error = Texts::tr("The colors of palette %1 cannot be read; the file stays as it is.")
                        .arg(identifierText(value.identifier));
            return false;
        }
    }
    for (const SpriteRef &sprite : m_sprites) {
        const SpriteItem::Value &value = sprite->value();
        const quint32 palette = value.palette ? value.palette->index() : SpriteTable::None;
        table.sprites.append({value.identifier, value.axis, palette, SpriteTable::None});
        if (!value.image)
            continue;
        quint32 &stream = table.sprites.last().stream;
        stream = writer.add(value.image, value.info);
        if (stream == SpriteTable::None) {
            error = Texts::tr("The image of sprite %1 cannot be read; the file stays as it is.")
                        .arg(identifierText(value.identifier));
            return false;
        }
    }
    data = table.write() + writer.bytes();
    if (!writer.isTooLarge() && data.size() <= largestFile)
        return true;
    error =
        Texts::tr("The sprites take more than %1 bytes; the file stays as it is.").arg(largestFile);
    return false;
}

} // namespace Lantern
