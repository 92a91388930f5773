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
    if (from >= count() || to >= count() || from == to)
        return;
    const Change change(m_file, Texts::tr("Move palette"));
    m_file.movePalette(from, to);
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
    const QVector<PaletteRef> &palettes = m_file.paletteItems();
    if (a >= count() || b >= count() || a == b)
        return 0;
    const Vela::SubItem first = palettes.at(int(a))->value().identifier;
    const Vela::SubItem second = palettes.at(int(b))->value().identifier;
    if (first == second)
        return a < b ? -1 : 1;
    return first < second ? -1 : 1;
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
    return unsigned(m_file.paletteItems().size());
}

Vela::Palette *PaletteList::at(unsigned int index) const
{
    return index < count() ? m_file.paletteItems().at(int(index)).get() : nullptr;
}

Vela::Palette *PaletteList::add(const Vela::RGBA *table, const QVariant &identifier,
                                Vela::ShareMode share)
{
    return insert(count(), table, identifier, share);
}

Vela::Palette *PaletteList::insert(unsigned int index, const Vela::RGBA *table,
                                   const QVariant &identifier, Vela::ShareMode share)
{
    PaletteItem::Value value;
    if (!readIdentifier(identifier, value.identifier)) {
        while (find(0, QVariant::fromValue(value.identifier)) >= 0)
            ++value.identifier.image;
    }
    const QByteArray colors(reinterpret_cast<const char *>(table), 256 * sizeof(Vela::RGBA));
    value.colors = m_file.keep(colors, StreamKind::Palette, share);
    if (!value.colors)
        return nullptr;
    const Change change(m_file, Texts::tr("Add palette"));
    const auto palette = std::make_shared<PaletteItem>(m_file, value);
    m_file.insertPalette(index, palette);
    return palette.get();
}

void PaletteList::removeDuplicates()
{
    const Change change(m_file, Texts::tr("Remove equal palettes"));
    QHash<QByteArray, PaletteRef> byColors;
    for (unsigned int i = 0; i < count();) {
        const PaletteRef &palette = m_file.paletteItems().at(int(i));
        PaletteRef &first = byColors[palette->value().colors->plain()];
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
    if (!readIdentifier(identifier, item))
        return -1;
    const QVector<PaletteRef> &palettes = m_file.paletteItems();
    for (unsigned int i = start; i < count(); ++i) {
        if (palettes.at(int(i))->value().identifier == item)
            return int(i);
    }
    return -1;
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
    for (const SpriteRef &sprite : m_file.spriteItems())
        used.insert(sprite->value().palette.get());
    for (unsigned int i = count(); i > 0; --i) {
        if (!used.contains(m_file.paletteItems().at(int(i) - 1).get()))
            m_file.removePalette(i - 1, nullptr);
    }
}

} // namespace Lantern
