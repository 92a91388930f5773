// SPDX-License-Identifier: MIT
#pragma once

#include "frame/export.h"

#include <QObject>

namespace Vela {

/// An ordered collection whose items organizers, editors and scripts move, remove and sort. Main
/// thread only.
class VELA_EXPORT OrganizableObject : public QObject
{
    Q_OBJECT

public:
    explicit OrganizableObject(QObject *parent = nullptr);
    ~OrganizableObject() override;

    /// Moves an item so that it stands at index \a to. Does nothing for an index out of range.
    virtual void move(unsigned int from, unsigned int to) = 0;
    virtual void remove(unsigned int index) = 0;
    /// Returns a number below 0 when item \a a sorts before item \a b.
    virtual int compare(unsigned int a, unsigned int b) const = 0;
    /// The changes between beginChange() and endChange() are one step of undo.
    virtual void beginChange() = 0;
    virtual void endChange() = 0;

Q_SIGNALS:
    void modified();
    /// The items have changed; \a count tells whether their number has.
    void changed(bool count);
};

} // namespace Vela
