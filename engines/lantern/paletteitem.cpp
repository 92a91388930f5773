// SPDX-License-Identifier: MIT
#include "lantern/paletteitem.h"

#include "lantern/spritesfile.h"

#include <QCoreApplication>

#include <cstring>

namespace Lantern {

namespace {

struct Texts
{
    Q_DECLARE_TR_FUNCTIONS(Lantern)
};

QString identifierProperty()
{
    return QStringLiteral("Identifier");
}

} // namespace

PaletteItem::PaletteItem(SpritesFile &file, const Value &value)
    : m_file(file)
    , m_value(value)
{
}

QStringList PaletteItem::propertyNames() const
{
    return {identifierProperty()};
}

QVariant PaletteItem::property(const QString &name) const
{
    return name == identifierProperty() ? identifierText(m_value.identifier) : QVariant();
}

void PaletteItem::setProperty(const QString &name, const QVariant &value)
{
    Value changed = m_value;
    if (name != identifierProperty() || !readIdentifier(value, changed.identifier))
        return;
    const Change change(m_file, Texts::tr("Palette's number"));
    m_file.setValue(*this, changed);
}

unsigned int PaletteItem::index() const
{
    return m_index;
}

Vela::Palettes *PaletteItem::parent() const
{
    return m_file.palettes();
}

bool PaletteItem::colorTable(Vela::RGBA (&table)[256]) const
{
    const QByteArray colors = m_value.colors->plain();
    if (colors.size() != int(sizeof table))
        return false;
    std::memcpy(table, colors.constData(), sizeof table);
    return true;
}

void PaletteItem::setColorTable(const Vela::RGBA *table, Vela::ShareMode share)
{
    const QByteArray colors(reinterpret_cast<const char *>(table), 256 * sizeof(Vela::RGBA));
    Value changed = m_value;
    changed.colors = m_file.keep(colors, StreamKind::Palette, share);
    if (!changed.colors)
        return;
    const Change change(m_file, Texts::tr("Palette's colors"));
    m_file.setValue(*this, changed);
}

Vela::Palette *PaletteItem::duplicate() const
{
    const Change change(m_file, Texts::tr("Duplicate palette"));
    Value copy = m_value;
    while (m_file.palettes()->find(0, QVariant::fromValue(copy.identifier)) >= 0)
        ++copy.identifier.image;
    const auto palette = std::make_shared<PaletteItem>(m_file, copy);
    m_file.insertPalette(m_index + 1, palette);
    return palette.get();
}

const PaletteItem::Value &PaletteItem::value() const
{
    return m_value;
}

} // namespace Lantern
