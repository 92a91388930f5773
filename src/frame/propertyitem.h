// SPDX-License-Identifier: MIT
#pragma once

#include "frame/export.h"

#include <QStringList>
#include <QVariant>

namespace Vela {

/// Something with named values that property editors show and scripts read.
class VELA_EXPORT PropertyItem
{
public:
    virtual ~PropertyItem();

    virtual QStringList propertyNames() const = 0;
    /// Returns an invalid variant for a name that the item does not have.
    virtual QVariant property(const QString &name) const = 0;
    /// Ignores a name that the item does not have or that cannot be changed.
    virtual void setProperty(const QString &name, const QVariant &value) = 0;

protected:
    PropertyItem() = default;
    PropertyItem(const PropertyItem &) = default;
    PropertyItem &operator=(const PropertyItem &) = default;
};

} // namespace Vela
