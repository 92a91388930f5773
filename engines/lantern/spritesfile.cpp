// SPDX-License-Identifier: MIT
#include "lantern/spritesfile.h"

#include "lantern/spritetable.h"

#include "frame/checksum.h"
#include "frame/filesystemarchive.h"
#include "frame/interface.h"

#include <QCoreApplication>
#include <QHash>

#include <algorithm>
#include <limits>

namespace Lantern {

namespace {

struct Texts
{
    Q_DECLARE_TR_FUNCTIONS(Lantern)
};

// A file above this size is loaded in the background.
constexpr qint64 largeFile = 1024 * 1024;

QString spritesProperty()
{
    return QStringLiteral("Sprites");
}

QString palettesProperty()
{
    return QStringLiteral("Palettes");
}

bool mayShare(Vela::ShareMode share)
{
    switch (share) {
    case Vela::ShareMode::NoShare:
        return false;
    case Vela::ShareMode::AskToShare:
        return Vela::Interface::yesNoOption(
            Texts::tr("Equal data"),
            Texts::tr("The file holds the same data already. Do you want to store it only once?"),
            QStringLiteral("showmsg_share_data"), 1, Vela::Interface::NoButton);
    default:
        return true;
    }
}

bool isSame(const SpriteItem::Value &a, const SpriteItem::Value &b)
{
    return a.identifier == b.identifier && a.axis == b.axis && a.palette == b.palette
        && a.image == b.image;
}

bool isSame(const PaletteItem::Value &a, const PaletteItem::Value &b)
{
    return a.identifier == b.identifier && a.colors == b.colors;
}

template <class Ref>
void replaceRange(QVector<Ref> &list, int position, const QVector<Ref> &from,
                  const QVector<Ref> &to)
{
    list = list.mid(0, position) + to + list.mid(position + from.size());
}

template <class Ref>
void apply(const Splice<Ref> &splice, bool forward, QVector<Ref> &list)
{
    replaceRange(list, splice.position, forward ? splice.before : splice.after,
                 forward ? splice.after : splice.before);
}

template <class Ref>
void moveItem(QVector<Ref> &list, unsigned int from, unsigned int to)
{
    list.move(int(from), int(to));
}

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

private:
    SpriteTable &m_table;
    QHash<const Vela::StreamCache::Item *, quint32> m_numbers;
    QByteArray m_bytes;
};

} // namespace

Change::Change(SpritesFile &file, const QString &text)
    : m_file(file)
{
    m_file.beginChange(text);
}

Change::~Change()
{
    m_file.endChange();
}

SpritesFile::SpritesFile()
    : ContentFile("sprites")
    , m_store(std::make_shared<StreamStore>(QString(), true))
    , m_paletteList(std::make_unique<PaletteList>(*this))
    , m_messages(std::make_unique<Vela::SimpleMessages>(this))
{
}

SpritesFile::~SpritesFile() = default;

// Most operations are asked of a content that may not have been read yet.
void SpritesFile::ensureContent() const
{
    ensureLoaded();
}

// What a file held when it was opened is not to be taken back.
bool SpritesFile::fromFile(Vela::Archive &archive, const QString &name, unsigned int flags,
                           Vela::JobStats *stats)
{
    const bool isOpened = !(flags & Copy) && fileName().isEmpty() && m_undoStack.count() == 0;
    if (!ContentFile::fromFile(archive, name, flags, stats))
        return false;
    if (isOpened)
        m_undoStack.clear();
    return true;
}

void SpritesFile::load()
{
    ContentFile::load();
    m_undoStack.clear();
}

void SpritesFile::reset()
{
    ContentFile::reset();
    m_undoStack.clear();
    m_messages->clear();
}

bool SpritesFile::isModified() const
{
    return !m_undoStack.isClean();
}

bool SpritesFile::isEmpty() const
{
    ensureContent();
    return m_sprites.isEmpty() && m_palettes.isEmpty();
}

void SpritesFile::undo()
{
    ensureContent();
    m_undoStack.undo();
}

void SpritesFile::redo()
{
    ensureContent();
    m_undoStack.redo();
}

QUndoStack *SpritesFile::undoStack()
{
    return &m_undoStack;
}

void SpritesFile::move(unsigned int from, unsigned int to)
{
    if (from >= count() || to >= count() || from == to)
        return;
    const Change change(*this, Texts::tr("Move sprite"));
    moveItem(m_sprites, from, to);
    renumber(int(std::min(from, to)));
}

void SpritesFile::remove(unsigned int index)
{
    if (index >= count())
        return;
    const Change change(*this, Texts::tr("Remove sprite"));
    m_sprites.removeAt(int(index));
    renumber(int(index));
}

int SpritesFile::compare(unsigned int a, unsigned int b) const
{
    if (a >= count() || b >= count() || a == b)
        return 0;
    const Vela::SubItem first = m_sprites.at(int(a))->identifier();
    const Vela::SubItem second = m_sprites.at(int(b))->identifier();
    if (first == second)
        return a < b ? -1 : 1;
    return first < second ? -1 : 1;
}

void SpritesFile::beginChange()
{
    beginChange(Texts::tr("Change of sprites"));
}

void SpritesFile::beginChange(const QString &text)
{
    ensureContent();
    if (m_changeDepth++ > 0)
        return;
    m_before = std::make_unique<SpritesBefore>();
    m_before->sprites = m_sprites;
    m_before->palettes = m_palettes;
    m_before->text = text;
}

void SpritesFile::endChange()
{
    if (m_changeDepth == 0 || --m_changeDepth > 0)
        return;
    const std::unique_ptr<SpritesBefore> before = std::move(m_before);
    const SpritesChange change = changeSince(*before, m_sprites, m_palettes);
    if (change.isEmpty())
        return;
    m_undoStack.push(new SpritesCommand(*this, change, before->text));
    notify(change);
}

void SpritesFile::apply(const SpritesChange &change, bool forward)
{
    Lantern::apply(change.sprites, forward, m_sprites);
    Lantern::apply(change.palettes, forward, m_palettes);
    for (const auto &changed : change.spriteValues)
        changed.item->m_value = forward ? changed.after : changed.before;
    for (const auto &changed : change.paletteValues)
        changed.item->m_value = forward ? changed.after : changed.before;
    renumber(0);
    renumberPalettes(0);
    notify(change);
}

void SpritesFile::notify(const SpritesChange &change)
{
    const auto hasOtherCount = [](const auto &splice) {
        return splice.before.size() != splice.after.size();
    };
    const bool hasOtherNames = !change.sprites.isEmpty()
        || std::any_of(
            change.spriteValues.begin(), change.spriteValues.end(),
            [](const auto &value) { return value.before.identifier != value.after.identifier; });
    if (hasOtherNames)
        Q_EMIT namesChanged();
    Q_EMIT modified();
    Q_EMIT changed(hasOtherCount(change.sprites));
    if (change.palettes.isEmpty() && change.paletteValues.isEmpty())
        return;
    Q_EMIT m_paletteList->modified();
    Q_EMIT m_paletteList->changed(hasOtherCount(change.palettes));
}

void SpritesFile::renumber(int from)
{
    for (int i = from; i < m_sprites.size(); ++i)
        m_sprites.at(i)->m_index = unsigned(i);
}

void SpritesFile::renumberPalettes(int from)
{
    for (int i = from; i < m_palettes.size(); ++i)
        m_palettes.at(i)->m_index = unsigned(i);
}

unsigned int SpritesFile::selected() const
{
    return m_selected;
}

void SpritesFile::setSelected(unsigned int index)
{
    m_selected = index;
}

Vela::Palettes *SpritesFile::palettes() const
{
    ensureContent();
    return m_paletteList.get();
}

unsigned int SpritesFile::count() const
{
    ensureContent();
    return unsigned(m_sprites.size());
}

Vela::Sprite *SpritesFile::at(unsigned int index) const
{
    return index < count() ? m_sprites.at(int(index)).get() : nullptr;
}

Vela::Sprite *SpritesFile::add(const QVariant &identifier, const QImage &image,
                               Vela::ShareMode share)
{
    return insert(count(), identifier, image, share);
}

Vela::Sprite *SpritesFile::insert(unsigned int index, const QVariant &identifier,
                                  const QImage &image, Vela::ShareMode share)
{
    SpriteItem::Value value;
    if (!readIdentifier(identifier, value.identifier)) {
        const Vela::SubItem last =
            count() == 0 ? Vela::SubItem() : m_sprites.constLast()->identifier();
        value.identifier = freeIdentifier(last);
    }
    const Change change(*this, Texts::tr("Add sprite"));
    const auto sprite = std::make_shared<SpriteItem>(*this, value);
    if (!image.isNull()) {
        sprite->setImage(image, true, SpriteItem::OwnPalette, nullptr, share);
        if (sprite->isEmpty())
            return nullptr;
    }
    insertSprite(std::min(index, count()), sprite);
    return sprite.get();
}

int SpritesFile::find(unsigned int start, const QVariant &identifier) const
{
    Vela::SubItem item;
    if (!readIdentifier(identifier, item))
        return -1;
    for (unsigned int i = start; i < count(); ++i) {
        if (m_sprites.at(int(i))->identifier() == item)
            return int(i);
    }
    return -1;
}

void SpritesFile::clear()
{
    if (isEmpty())
        return;
    const Change change(*this, Texts::tr("Remove all sprites"));
    m_sprites.clear();
    m_palettes.clear();
}

QList<SpritesFile::SearchResult> SpritesFile::search(const Vela::RegExp &, unsigned int) const
{
    return {};
}

void SpritesFile::replace(const QList<SearchResult> &, const QString &)
{
}

QStringList SpritesFile::propertyNames() const
{
    return {spritesProperty(), palettesProperty()};
}

QVariant SpritesFile::property(const QString &name) const
{
    if (name == spritesProperty())
        return count();
    return name == palettesProperty() ? QVariant(palettes()->count()) : QVariant();
}

void SpritesFile::setProperty(const QString &, const QVariant &)
{
}

const QVector<SpriteRef> &SpritesFile::spriteItems() const
{
    return m_sprites;
}

const QVector<PaletteRef> &SpritesFile::paletteItems() const
{
    return m_palettes;
}

StreamRef SpritesFile::keep(const QByteArray &plain, unsigned int encoding, Vela::ShareMode share)
{
    ensureContent();
    const StreamRef twin =
        share == Vela::ShareMode::NoShare ? StreamRef() : m_store->findTwin(plain);
    return twin && mayShare(share) ? twin : m_store->addPlain(plain, encoding);
}

void SpritesFile::setValue(SpriteItem &sprite, const SpriteItem::Value &value)
{
    if (isSame(sprite.m_value, value))
        return;
    auto &known = m_before->spriteValues[&sprite];
    if (!known.item)
        known = {sprite.shared_from_this(), sprite.m_value, {}};
    sprite.m_value = value;
}

void SpritesFile::setValue(PaletteItem &palette, const PaletteItem::Value &value)
{
    if (isSame(palette.m_value, value))
        return;
    auto &known = m_before->paletteValues[&palette];
    if (!known.item)
        known = {palette.shared_from_this(), palette.m_value, {}};
    palette.m_value = value;
}

void SpritesFile::insertSprite(unsigned int index, const SpriteRef &sprite)
{
    m_sprites.insert(int(index), sprite);
    renumber(int(index));
}

void SpritesFile::insertPalette(unsigned int index, const PaletteRef &palette)
{
    m_palettes.insert(int(index), palette);
    renumberPalettes(int(index));
}

void SpritesFile::movePalette(unsigned int from, unsigned int to)
{
    moveItem(m_palettes, from, to);
    renumberPalettes(int(std::min(from, to)));
}

void SpritesFile::removePalette(unsigned int index, const PaletteRef &substitute)
{
    const PaletteRef palette = m_palettes.takeAt(int(index));
    renumberPalettes(int(index));
    for (const SpriteRef &sprite : qAsConst(m_sprites)) {
        SpriteItem::Value value = sprite->value();
        if (value.palette != palette)
            continue;
        value.palette = substitute;
        setValue(*sprite, value);
    }
}

PaletteRef SpritesFile::paletteRef(const Vela::Palette *palette) const
{
    const auto found =
        std::find_if(m_palettes.begin(), m_palettes.end(),
                     [palette](const PaletteRef &own) { return own.get() == palette; });
    return found == m_palettes.end() ? nullptr : *found;
}

Vela::SubItem SpritesFile::freeIdentifier(Vela::SubItem ofGroup) const
{
    Vela::SubItem free{ofGroup.group, 0};
    for (const SpriteRef &sprite : m_sprites) {
        const Vela::SubItem used = sprite->identifier();
        if (used.group == free.group && used.image >= free.image
            && used.image < std::numeric_limits<qint32>::max())
            free.image = used.image + 1;
    }
    return free;
}

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
    const auto store = std::make_shared<StreamStore>(isLate ? name : QString(), true);
    bool isRead = device->size() <= largestFile && table.read(*device, reason);
    for (int i = 0; isRead && i < table.streams.size(); ++i) {
        const SpriteTable::Stream &row = table.streams.at(i);
        StreamRef stream;
        if (isLate) {
            stream = store->addLate({row.offset, row.size, row.crc, row.encoding, nullptr});
        } else if (device->seek(row.offset)) {
            stream = store->addRaw(device->read(row.size), row.encoding, row.crc);
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
    replaceContent(table, streams, store);
    return true;
}

// The state in front of it comes back with undo, out of the store that it has been in.
void SpritesFile::replaceContent(const SpriteTable &table, const QVector<StreamRef> &streams,
                                 const std::shared_ptr<StreamStore> &store)
{
    setLoaded();
    const Change change(*this, Texts::tr("Reading the file"));
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

bool SpritesFile::encode(QByteArray &data, QString &error) const
{
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
    return true;
}

void SpritesFile::markSaved()
{
    m_undoStack.setClean();
}

void SpritesFile::loadFailed(const QString &error)
{
    m_messages->clear();
    m_messages->add(Vela::Message::Error, error, 0, 0);
}

Vela::Messages *SpritesFile::fileMessages() const
{
    return m_messages.get();
}

} // namespace Lantern
