// SPDX-License-Identifier: MIT
#include "lantern/palettelist.h"

#include "lantern/spritesfile.h"

#include <QCoreApplication>
#include <QHash>
#include <QSet>

#include <algorithm>

namespace Lantern {

namespace {

struct Texts
{
    Q_DECLARE_TR_FUNCTIONS(Lantern)
};

} // namespace

PaletteList::PaletteList(SpritesFile &file)
    : m_file(file)
{
}

void PaletteList::move(unsigned int from, unsigned int to)
{
    m_file.moveItem<PaletteItem>(from, to, Texts::tr("Move palette"));
}

void PaletteList::remove(unsigned int index)
{
    if (index >= count())
        return;
    const Change change(m_file, Texts::tr("Remove palette"));
    m_file.removePalette(index, nullptr);
}

int PaletteList::compare(unsigned int a, unsigned int b) const
{
    return m_file.list<PaletteItem>().compare(a, b);
}

void PaletteList::beginChange()
{
    m_file.beginChange();
}

void PaletteList::endChange()
{
    m_file.endChange();
}

unsigned int PaletteList::selected() const
{
    return std::min(m_selected, std::max(count(), 1u) - 1);
}

void PaletteList::setSelected(unsigned int index)
{
    m_selected = index;
}

Vela::Sprites *PaletteList::sprites() const
{
    return &m_file;
}

unsigned int PaletteList::count() const
{
    return m_file.list<PaletteItem>().count();
}

Vela::Palette *PaletteList::at(unsigned int index) const
{
    return m_file.list<PaletteItem>().at(index);
}

Vela::Palette *PaletteList::add(const Vela::RGBA *table, const QVariant &identifier,
                                Vela::ShareMode share)
{
    return insert(count(), table, identifier, share);
}

Vela::Palette *PaletteList::insert(unsigned int index, const Vela::RGBA *table,
                                   const QVariant &identifier, Vela::ShareMode share)
{
    PaletteValue value;
    if (!readIdentifier(identifier, value.identifier))
        value.identifier = m_file.freePaletteIdentifier({});
    const QByteArray colors(reinterpret_cast<const char *>(table), 256 * sizeof(Vela::RGBA));
    value.stream = m_file.keep(colors, StreamKind::Palette, share);
    if (!value.stream)
        return nullptr;
    const Change change(m_file, Texts::tr("Add palette"));
    const auto palette = std::make_shared<PaletteItem>(m_file, value);
    m_file.list<PaletteItem>().insert(index, palette);
    return palette.get();
}

void PaletteList::removeDuplicates()
{
    const Change change(m_file, Texts::tr("Remove equal palettes"));
    QHash<QByteArray, PaletteRef> byColors;
    for (unsigned int i = 0; i < count();) {
        const PaletteRef &palette = m_file.list<PaletteItem>().items().at(int(i));
        PaletteRef &first = byColors[palette->value().stream->plain()];
        if (first) {
            m_file.removePalette(i, first);
        } else {
            first = palette;
            ++i;
        }
    }
}

int PaletteList::find(unsigned int start, const QVariant &identifier) const
{
    Vela::SubItem item;
    return readIdentifier(identifier, item) ? m_file.list<PaletteItem>().find(start, item) : -1;
}

void PaletteList::clear()
{
    const Change change(m_file, Texts::tr("Remove all palettes"));
    for (unsigned int i = count(); i > 0; --i)
        m_file.removePalette(i - 1, nullptr);
}

void PaletteList::clearUnused()
{
    const Change change(m_file, Texts::tr("Remove unused palettes"));
    QSet<const PaletteItem *> used;
    for (const SpriteRef &sprite : m_file.list<SpriteItem>().items())
        used.insert(sprite->value().palette.get());
    for (unsigned int i = count(); i > 0; --i) {
        if (!used.contains(m_file.list<PaletteItem>().at(i - 1)))
            m_file.removePalette(i - 1, nullptr);
    }
}

} // namespace Lantern
