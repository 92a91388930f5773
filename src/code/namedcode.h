// SPDX-License-Identifier: MIT
#pragma once

#include "frame/propertyitem.h"

namespace Vela {

/// Something in a definition text that has a name. Its properties are "DisplayName", to be read
/// only, and "Name".
class VELA_EXPORT NamedCode : public PropertyItem
{
public:
    QStringList propertyNames() const override;
    QVariant property(const QString &name) const override;
    void setProperty(const QString &name, const QVariant &value) override;

    /// Returns the name as the text has it; empty by default.
    virtual QString name() const;
    /// Returns the name for users; name() by default.
    virtual QString displayName() const;
    virtual void setName(const QString &name) = 0;
};

} // namespace Vela
