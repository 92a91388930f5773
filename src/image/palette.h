// SPDX-License-Identifier: MIT
#pragma once

#include "cache/sharemode.h"
#include "frame/propertyitem.h"
#include "image/rgba.h"

namespace Vela {

class Palettes;

/// A palette of a collection. It belongs to the collection, which is the engine's.
class VELA_EXPORT Palette : public PropertyItem
{
public:
    /// Returns the position in the collection.
    virtual unsigned int index() const = 0;
    virtual Palettes *parent() const = 0;
    /// Fills the table. Returns false if there is none.
    virtual bool colorTable(RGBA (&table)[256]) const = 0;
    /// \a share tells whether an equal palette may hold the colours, too.
    virtual void setColorTable(const RGBA *table, ShareMode share) = 0;
    virtual Palette *duplicate() const = 0;

protected:
    Palette() = default;
    Palette(const Palette &) = default;
    Palette &operator=(const Palette &) = default;
};

} // namespace Vela
