// SPDX-License-Identifier: MIT
#pragma once

#include "cache/sharemode.h"
#include "frame/propertyitem.h"
#include "image/imageformats.h"
#include "image/subitem.h"

#include <QImage>
#include <QPoint>

namespace Vela {

class Palette;
class Sprites;

/// A picture of a collection with the point that an engine places it by. It belongs to the
/// collection from its insertion until its removal. Main thread only.
class VELA_EXPORT Sprite : public PropertyItem
{
public:
    /// What happens to the colours of an image that a sprite takes.
    enum PaletteMode {
        Ignore = 0,     ///< the image's palette plays no part
        OwnPalette = 1, ///< the sprite uses the image's palette, unless the collection has it
        AdaptImage = 2, ///< the image is fitted to the given palette
        SwapPalette = 3 ///< the given palette takes the image's colours
    };

    ~Sprite() override;

    /// The property "Identifier", which users know the sprite by.
    QStringList propertyNames() const override;

    /// Returns the position in the collection.
    virtual unsigned int index() const = 0;
    virtual Sprites *parent() const = 0;
    virtual Sprite *duplicate() const = 0;
    /// Cuts the image to what can be seen; the axis stays on its pixel.
    virtual void crop() = 0;
    /// Adds a sprite for each of the channels red, green and blue.
    virtual void splitRGB() = 0;
    virtual bool isEmpty() const = 0;
    virtual SubItem identifier() const = 0;
    virtual void setIdentifier(SubItem identifier) = 0;
    virtual QImage image() const = 0;
    /// Returns size and format without decoding the pixels.
    virtual ImageInfo imageProperties() const = 0;
    /// Returns whether another sprite holds the same pixels.
    virtual bool imageIsShared() const = 0;
    /// Sets the image, which may be shared.
    virtual void setImage(const QImage &image);
    /// With \a keepAxis the axis stays where it is in the image; else it keeps its place in
    /// proportion to the size. \a palette is that of AdaptImage and SwapPalette; it may be null.
    virtual void setImage(const QImage &image, bool keepAxis, PaletteMode mode, Palette *palette,
                          ShareMode share) = 0;
    virtual void setImage(const QImage &image, ShareMode share) = 0;
    virtual Palette *palette() const = 0;
    virtual void setPalette(Palette *palette) = 0;
    /// The place of the anchor point inside the image, in pixels.
    virtual QPoint axis() const = 0;
    virtual void setAxis(QPoint axis) = 0;

    /// Returns the image on a larger one on which the axes of all sprites of a set meet.
    ///
    /// \a leftTop holds the greatest distances from an axis to the left and the top of an image,
    /// \a rightBottom those to the right and the bottom; both have to hold this sprite, whose axis
    /// is \a axis. What no pixel covers is 0. Null for a sprite without an image, where the
    /// distances do not hold it, and for more than 2 GiB.
    QImage aligned(QPoint axis, QPoint leftTop, QPoint rightBottom) const;

protected:
    Sprite() = default;
    Sprite(const Sprite &) = default;
    Sprite &operator=(const Sprite &) = default;
};

} // namespace Vela
