// SPDX-License-Identifier: MIT
#include "code/namedcode.h"

namespace Vela {

namespace {

const QLatin1String DisplayName("DisplayName");
const QLatin1String Name("Name");

} // namespace

QStringList NamedCode::propertyNames() const
{
    return {DisplayName, Name};
}

QVariant NamedCode::property(const QString &name) const
{
    if (name == DisplayName)
        return displayName();
    return name == Name ? QVariant(this->name()) : QVariant();
}

void NamedCode::setProperty(const QString &name, const QVariant &value)
{
    if (name == Name)
        setName(value.toString());
}

QString NamedCode::name() const
{
    return QString();
}

QString NamedCode::displayName() const
{
    return name();
}

} // namespace Vela
