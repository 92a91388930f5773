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

bool isSame(const PaletteValue &a, const PaletteValue &b)
{
    return a.identifier == b.identifier && isSameStream(a.stream, b.stream);
}

PaletteItem::PaletteItem(SpritesFile &file, const PaletteValue &value)
    : ListItem(value)
    , m_file(file)
{
}

QStringList PaletteItem::propertyNames() const
{
    return {identifierProperty()};
}

QVariant PaletteItem::property(const QString &name) const
{
    return name == identifierProperty() ? identifierText(value().identifier) : QVariant();
}

void PaletteItem::setProperty(const QString &name, const QVariant &value)
{
    PaletteValue changed = this->value();
    if (name == identifierProperty() && readIdentifier(value, changed.identifier))
        m_file.changeValue(*this, changed, Texts::tr("Palette's number"));
}

unsigned int PaletteItem::index() const
{
    return place();
}

Vela::Palettes *PaletteItem::parent() const
{
    return m_file.palettes();
}

bool PaletteItem::colorTable(Vela::RGBA (&table)[256]) const
{
    const QByteArray colors = value().stream->plain();
    if (colors.size() != int(sizeof table))
        return false;
    std::memcpy(table, colors.constData(), sizeof table);
    return true;
}

void PaletteItem::setColorTable(const Vela::RGBA *table, Vela::ShareMode share)
{
    const QByteArray colors(reinterpret_cast<const char *>(table), 256 * sizeof(Vela::RGBA));
    PaletteValue changed = value();
    changed.stream = m_file.keep(colors, StreamKind::Palette, share);
    if (changed.stream)
        m_file.changeValue(*this, changed, Texts::tr("Palette's colors"));
}

Vela::Palette *PaletteItem::duplicate() const
{
    const Change change(m_file, Texts::tr("Duplicate palette"));
    PaletteValue copy = value();
    copy.identifier = m_file.freePaletteIdentifier(copy.identifier);
    const auto palette = std::make_shared<PaletteItem>(m_file, copy);
    m_file.list<PaletteItem>().insert(index() + 1, palette);
    return palette.get();
}

} // namespace Lantern
