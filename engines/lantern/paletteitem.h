// SPDX-License-Identifier: MIT
#pragma once

#include "lantern/streamhandle.h"

#include "image/palette.h"
#include "image/subitem.h"

namespace Lantern {

class SpritesFile;

/// A palette of a sprites file.
class PaletteItem : public Vela::Palette, public std::enable_shared_from_this<PaletteItem>
{
public:
    /// What undo takes back.
    struct Value
    {
        Vela::SubItem identifier;
        StreamRef colors;
    };

    PaletteItem(SpritesFile &file, const Value &value);

    /// "Identifier", two whole numbers with a comma between.
    QStringList propertyNames() const override;
    QVariant property(const QString &name) const override;
    void setProperty(const QString &name, const QVariant &value) override;

    unsigned int index() const override;
    Vela::Palettes *parent() const override;
    bool colorTable(Vela::RGBA (&table)[256]) const override;
    void setColorTable(const Vela::RGBA *table, Vela::ShareMode share) override;
    /// Returns a copy, which stands behind this one, under the next free number.
    Vela::Palette *duplicate() const override;

    const Value &value() const;

private:
    friend class SpritesFile;

    SpritesFile &m_file;
    Value m_value;
    unsigned int m_index = 0;
};

using PaletteRef = std::shared_ptr<PaletteItem>;

} // namespace Lantern
