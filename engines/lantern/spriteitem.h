// SPDX-License-Identifier: MIT
#pragma once

#include "lantern/paletteitem.h"

#include "image/sprite.h"

namespace Lantern {

/// A sprite of a sprites file.
class SpriteItem : public Vela::Sprite, public std::enable_shared_from_this<SpriteItem>
{
public:
    /// What undo takes back.
    struct Value
    {
        Vela::SubItem identifier;
        QPoint axis;
        PaletteRef palette;
        StreamRef image; ///< null for an empty sprite
        Vela::ImageInfo info{0, 0, QImage::Format_Invalid};
    };

    SpriteItem(SpritesFile &file, const Value &value);

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

    const Value &value() const;

private:
    friend class SpritesFile;

    void takeColors(QImage &image, PaletteMode mode, Vela::Palette *palette, Vela::ShareMode share);

    SpritesFile &m_file;
    Value m_value;
    unsigned int m_index = 0;
};

using SpriteRef = std::shared_ptr<SpriteItem>;

} // namespace Lantern
