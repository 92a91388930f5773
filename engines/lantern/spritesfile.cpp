// SPDX-License-Identifier: MIT
#include "lantern/spritesfile.h"

#include "lantern/spritetable.h"

#include <QCoreApplication>

#include <algorithm>
#include <limits>

namespace Lantern {

namespace {

struct Texts
{
    Q_DECLARE_TR_FUNCTIONS(Lantern)
};

QString spritesProperty()
{
    return QStringLiteral("Sprites");
}

QString palettesProperty()
{
    return QStringLiteral("Palettes");
}

} // namespace

SpritesFile::SpritesFile()
    : CollectionFile("sprites")
    , m_paletteList(std::make_unique<PaletteList>(*this))
{
}

SpritesFile::~SpritesFile() = default;

void SpritesFile::move(unsigned int from, unsigned int to)
{
    moveItem<SpriteItem>(from, to, Texts::tr("Move sprite"));
}

void SpritesFile::remove(unsigned int index)
{
    if (index >= count())
        return;
    const Change change(*this, Texts::tr("Remove sprite"));
    list<SpriteItem>().take(index);
}

Vela::Palettes *SpritesFile::palettes() const
{
    ensureLoaded();
    return m_paletteList.get();
}

Vela::Sprite *SpritesFile::at(unsigned int index) const
{
    return list<SpriteItem>().at(index);
}

Vela::Sprite *SpritesFile::add(const QVariant &identifier, const QImage &image,
                               Vela::ShareMode share)
{
    return insert(count(), identifier, image, share);
}

Vela::Sprite *SpritesFile::insert(unsigned int index, const QVariant &identifier,
                                  const QImage &image, Vela::ShareMode share)
{
    SpriteValue value;
    if (!readIdentifier(identifier, value.identifier)) {
        const SpriteItem *const last = list<SpriteItem>().at(count() - 1);
        value.identifier = freeIdentifier(last ? last->identifier() : Vela::SubItem());
    }
    const Change change(*this, Texts::tr("Add sprite"));
    const auto sprite = std::make_shared<SpriteItem>(*this, value);
    if (!image.isNull()) {
        sprite->setImage(image, true, SpriteItem::OwnPalette, nullptr, share);
        if (sprite->isEmpty())
            return nullptr;
    }
    list<SpriteItem>().insert(index, sprite);
    return sprite.get();
}

int SpritesFile::find(unsigned int start, const QVariant &identifier) const
{
    Vela::SubItem item;
    return readIdentifier(identifier, item) ? list<SpriteItem>().find(start, item) : -1;
}

void SpritesFile::clear()
{
    clearLists(Texts::tr("Remove all sprites"));
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

void SpritesFile::removePalette(unsigned int index, const PaletteRef &substitute)
{
    const PaletteRef palette = list<PaletteItem>().take(index);
    for (const SpriteRef &sprite : list<SpriteItem>().items()) {
        if (sprite->value().palette != palette)
            continue;
        SpriteValue value = sprite->value();
        value.palette = substitute;
        list<SpriteItem>().setValue(*sprite, value);
    }
}

PaletteRef SpritesFile::paletteRef(const Vela::Palette *palette) const
{
    const QVector<PaletteRef> &palettes = list<PaletteItem>().items();
    const auto found =
        std::find_if(palettes.begin(), palettes.end(),
                     [palette](const PaletteRef &own) { return own.get() == palette; });
    return found == palettes.end() ? nullptr : *found;
}

Vela::SubItem SpritesFile::freeIdentifier(Vela::SubItem ofGroup) const
{
    Vela::SubItem free{ofGroup.group, 0};
    for (const SpriteRef &sprite : list<SpriteItem>().items()) {
        const Vela::SubItem used = sprite->identifier();
        if (used.group == free.group && used.image >= free.image
            && used.image < std::numeric_limits<qint32>::max())
            free.image = used.image + 1;
    }
    return free;
}

Vela::SubItem SpritesFile::freePaletteIdentifier(Vela::SubItem wanted) const
{
    while (list<PaletteItem>().find(0, wanted) >= 0)
        wanted.image = wanted.image == std::numeric_limits<qint32>::max() ? 0 : wanted.image + 1;
    return wanted;
}

void SpritesFile::takeRows(const SpriteTable &table, const QVector<StreamRef> &streams)
{
    QVector<PaletteRef> palettes;
    for (const SpriteTable::Palette &row : table.palettes) {
        const PaletteValue value{row.identifier, streams.at(int(row.stream))};
        palettes.append(std::make_shared<PaletteItem>(*this, value));
    }
    QVector<SpriteRef> sprites;
    for (const SpriteTable::Sprite &row : table.sprites) {
        SpriteValue value;
        value.identifier = row.identifier;
        value.axis = row.axis;
        if (row.palette != SpriteTable::None)
            value.palette = palettes.at(int(row.palette));
        if (row.stream != SpriteTable::None) {
            value.stream = streams.at(int(row.stream));
            value.info = table.streams.at(int(row.stream)).info;
        }
        sprites.append(std::make_shared<SpriteItem>(*this, value));
    }
    list<PaletteItem>().setItems(palettes);
    list<SpriteItem>().setItems(sprites);
}

bool SpritesFile::makeRows(SpriteTable &table, StreamWriter<SpriteTable> &writer,
                           QString &error) const
{
    for (const PaletteRef &palette : list<PaletteItem>().items()) {
        const PaletteValue &value = palette->value();
        const quint32 stream = writer.add(value.stream, {0, 0, QImage::Format_Invalid});
        table.palettes.append({value.identifier, stream});
        if (stream == SpriteTable::None) {
            error = Texts::tr("The colors of palette %1 cannot be read; the file stays as it is.")
                        .arg(identifierText(value.identifier));
            return false;
        }
    }
    for (const SpriteRef &sprite : list<SpriteItem>().items()) {
        const SpriteValue &value = sprite->value();
        const quint32 palette = value.palette ? value.palette->index() : SpriteTable::None;
        const quint32 stream =
            value.stream ? writer.add(value.stream, value.info) : SpriteTable::None;
        table.sprites.append({value.identifier, value.axis, palette, stream});
        if (value.stream && stream == SpriteTable::None) {
            error = Texts::tr("The image of sprite %1 cannot be read; the file stays as it is.")
                        .arg(identifierText(value.identifier));
            return false;
        }
    }
    return true;
}

void SpritesFile::namesHaveChanged()
{
    Q_EMIT namesChanged();
}

void SpritesFile::notify(const Changes &changes)
{
    CollectionFile::notify(changes);
    const ListChange<PaletteItem> &palettes = changes.of<PaletteItem>();
    if (palettes.isEmpty())
        return;
    Q_EMIT m_paletteList->modified();
    Q_EMIT m_paletteList->changed(palettes.items.changesCount());
}

} // namespace Lantern
