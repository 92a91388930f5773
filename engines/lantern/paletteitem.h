// SPDX-License-Identifier: MIT
#pragma once

#include "lantern/itemlist.h"

#include "image/palette.h"

namespace Lantern {

class SpritesFile;

/// What undo takes back of a palette.
struct PaletteValue
{
    Vela::SubItem identifier;
    StreamRef stream; ///< its colours
};

/// Returns whether users see no difference.
bool isSame(const PaletteValue &a, const PaletteValue &b);

/// A palette of a sprites file.
class PaletteItem : public Vela::Palette, public ListItem<PaletteItem, PaletteValue>
{
public:
    PaletteItem(SpritesFile &file, const PaletteValue &value);

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

private:
    SpritesFile &m_file;
};

using PaletteRef = std::shared_ptr<PaletteItem>;

} // namespace Lantern
