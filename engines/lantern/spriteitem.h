// SPDX-License-Identifier: MIT
#pragma once

#include "lantern/paletteitem.h"

#include "image/sprite.h"

namespace Lantern {

/// What undo takes back of a sprite.
struct SpriteValue
{
    Vela::SubItem identifier;
    QPoint axis;
    PaletteRef palette;
    StreamRef stream; ///< its image; null for an empty sprite
    Vela::ImageInfo info{0, 0, QImage::Format_Invalid};
};

/// Returns whether users see no difference.
bool isSame(const SpriteValue &a, const SpriteValue &b);

/// A sprite of a sprites file.
class SpriteItem : public Vela::Sprite, public ListItem<SpriteItem, SpriteValue>
{
public:
    SpriteItem(SpritesFile &file, const SpriteValue &value);

    /// "Identifier", two whole numbers with a comma between; "Axis", the same; "Palette", an index
    /// or nothing; and, to be read only, "Width", "Height" and "Colors".
    QStringList propertyNames() const override;
    QVariant property(const QString &name) const override;
    void setProperty(const QString &name, const QVariant &value) override;

    unsigned int index() const override;
    Vela::Sprites *parent() const override;
    /// Returns a copy, which stands behind this one, under the next free number of its group.
    Vela::Sprite *duplicate() const override;
    void crop() override;
    /// Adds three sprites behind this one, each with one channel as red, green or blue.
    void splitRGB() override;
    bool isEmpty() const override;
    Vela::SubItem identifier() const override;
    void setIdentifier(Vela::SubItem identifier) override;
    /// Indexed images have the colours of the palette, or shades of grey without one.
    QImage image() const override;
    Vela::ImageInfo imageProperties() const override;
    bool imageIsShared() const override;
    using Vela::Sprite::setImage;
    void setImage(const QImage &image, bool keepAxis, PaletteMode mode, Vela::Palette *palette,
                  Vela::ShareMode share) override;
    void setImage(const QImage &image, Vela::ShareMode share) override;
    Vela::Palette *palette() const override;
    void setPalette(Vela::Palette *palette) override;
    QPoint axis() const override;
    void setAxis(QPoint axis) override;

private:
    void takeColors(QImage &image, PaletteMode mode, Vela::Palette *palette, Vela::ShareMode share);

    SpritesFile &m_file;
};

using SpriteRef = std::shared_ptr<SpriteItem>;

} // namespace Lantern
