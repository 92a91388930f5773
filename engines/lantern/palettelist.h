// SPDX-License-Identifier: MIT
#pragma once

#include "lantern/paletteitem.h"

#include "image/palettes.h"

namespace Lantern {

/// The palettes of a sprites file. Their changes are steps of the file's undo.
class PaletteList : public Vela::Palettes
{
    Q_OBJECT

public:
    explicit PaletteList(SpritesFile &file);

    void move(unsigned int from, unsigned int to) override;
    void remove(unsigned int index) override;
    /// By identifier, then by place.
    int compare(unsigned int a, unsigned int b) const override;
    void beginChange() override;
    void endChange() override;

    /// Never past the end.
    unsigned int selected() const override;
    void setSelected(unsigned int index) override;
    Vela::Sprites *sprites() const override;
    unsigned int count() const override;
    Vela::Palette *at(unsigned int index) const override;
    /// An identifier that is none becomes the next free one.
    Vela::Palette *add(const Vela::RGBA *table, const QVariant &identifier,
                       Vela::ShareMode share) override;
    Vela::Palette *insert(unsigned int index, const Vela::RGBA *table, const QVariant &identifier,
                          Vela::ShareMode share) override;
    void removeDuplicates() override;
    int find(unsigned int start, const QVariant &identifier) const override;
    void clear() override;
    void clearUnused() override;

private:
    SpritesFile &m_file;
    unsigned int m_selected = 0;
};

} // namespace Lantern
