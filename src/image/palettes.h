// SPDX-License-Identifier: MIT
#pragma once

#include "cache/sharemode.h"
#include "frame/organizableobject.h"
#include "image/rgba.h"

#include <QVariant>

namespace Vela {

class Palette;
class Sprites;

/// The palettes of a sprites file, which owns them. Main thread only.
class VELA_EXPORT Palettes : public OrganizableObject
{
    Q_OBJECT

public:
    /// The palette that editors show.
    virtual unsigned int selected() const = 0;
    virtual void setSelected(unsigned int index) = 0;
    virtual Sprites *sprites() const = 0;
    virtual unsigned int count() const = 0;
    /// Returns null past the end.
    virtual Palette *at(unsigned int index) const = 0;
    /// Appends a palette of 256 colours and returns it, or null if it cannot be taken.
    virtual Palette *add(const RGBA *table, const QVariant &identifier, ShareMode share) = 0;
    virtual Palette *insert(unsigned int index, const RGBA *table, const QVariant &identifier,
                            ShareMode share) = 0;
    void remove(unsigned int index) override = 0;
    /// Removes the palettes whose colours another one in front of them has; their sprites change
    /// over to that one.
    virtual void removeDuplicates() = 0;
    /// Returns the index of the first palette from \a start on with that identifier, or -1.
    virtual int find(unsigned int start, const QVariant &identifier) const = 0;
    virtual void clear() = 0;
    /// Removes the palettes that no sprite uses.
    virtual void clearUnused() = 0;

protected:
    explicit Palettes(QObject *parent = nullptr);
};

} // namespace Vela
