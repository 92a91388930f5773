// SPDX-License-Identifier: MIT
#pragma once

#include "lantern/collectionfile.h"
#include "lantern/identifiers.h"
#include "lantern/palettelist.h"
#include "lantern/spriteitem.h"

#include "image/sprites.h"

namespace Lantern {

class SpriteCodec;
struct SpriteTable;

/// What a sprites file is made of.
struct SpritesKind
{
    using Base = Vela::Sprites;
    using Table = SpriteTable;
    using Codec = SpriteCodec;
    using Lists = ItemLists<SpriteItem, PaletteItem>;
};

/// A file of many sprites and their palettes. docs/lantern.md tells its layout.
class SpritesFile : public CollectionFile<SpritesKind>
{
    Q_OBJECT

public:
    SpritesFile();
    ~SpritesFile() override;

    void move(unsigned int from, unsigned int to) override;
    void remove(unsigned int index) override;

    Vela::Palettes *palettes() const override;
    Vela::Sprite *at(unsigned int index) const override;
    /// An identifier that is none becomes the next free number of the last group. An indexed image
    /// brings its colours as a palette; none is added where the file has an equal one.
    Vela::Sprite *add(const QVariant &identifier, const QImage &image,
                      Vela::ShareMode share) override;
    Vela::Sprite *insert(unsigned int index, const QVariant &identifier, const QImage &image,
                         Vela::ShareMode share) override;
    int find(unsigned int start, const QVariant &identifier) const override;
    void clear() override;

    /// The properties "Sprites" and "Palettes", their numbers.
    QStringList propertyNames() const override;
    QVariant property(const QString &name) const override;

    /// Sprites that use the palette are left with \a substitute, which may be null. For use inside
    /// of a change.
    void removePalette(unsigned int index, const PaletteRef &substitute);
    /// Returns the palette of this file that \a palette is; null if it is none.
    PaletteRef paletteRef(const Vela::Palette *palette) const;
    /// Returns the identifier of that group behind all others.
    Vela::SubItem freeIdentifier(Vela::SubItem ofGroup) const;
    /// Returns the identifier, or the next one of its group that no palette has.
    Vela::SubItem freePaletteIdentifier(Vela::SubItem wanted) const;

Q_SIGNALS:
    /// The sprites have other names than before.
    void namesChanged();

protected:
    void takeRows(const SpriteTable &table, const QVector<StreamRef> &streams) override;
    bool makeRows(SpriteTable &table, StreamWriter<SpriteTable> &writer,
                  QString &error) const override;
    void namesHaveChanged() override;
    void notify(const Changes &changes) override;

private:
    std::unique_ptr<PaletteList> m_paletteList;
};

} // namespace Lantern
