// SPDX-License-Identifier: MIT
#pragma once

#include "cache/sharemode.h"
#include "frame/organizableobject.h"
#include "project/projectfile.h"

class QImage;

namespace Vela {

class Palettes;
class Sprite;

/// The sprites of a file, with their palettes. The engine's class decides how they are stored. Main
/// thread only.
class VELA_EXPORT Sprites : public OrganizableObject, public ProjectFile
{
    Q_OBJECT

public:
    /// The sprite that editors show.
    virtual unsigned int selected() const = 0;
    virtual void setSelected(unsigned int index) = 0;
    virtual Palettes *palettes() const = 0;
    virtual unsigned int count() const = 0;
    /// Returns null past the end.
    virtual Sprite *at(unsigned int index) const = 0;
    /// Appends a sprite and returns it, or null if it cannot be taken. What identifies a sprite is
    /// the engine's business. An empty image makes an empty sprite.
    virtual Sprite *add(const QVariant &identifier, const QImage &image, ShareMode share) = 0;
    virtual Sprite *insert(unsigned int index, const QVariant &identifier, const QImage &image,
                           ShareMode share) = 0;
    void remove(unsigned int index) override = 0;
    /// Returns the index of the first sprite from \a start on with that identifier, or -1.
    virtual int find(unsigned int start, const QVariant &identifier) const = 0;
    virtual void clear() = 0;

    void beginChange() override = 0;
    void endChange() override = 0;
};

} // namespace Vela
