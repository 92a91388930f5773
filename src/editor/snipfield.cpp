// SPDX-License-Identifier: MIT
#include "editor/snipfield.h"

namespace Vela {

SnipField::SnipField() = default;

SnipField::~SnipField() = default;

RegularSnipField::RegularSnipField(const QString &type)
    : m_type(type)
{
}

QString RegularSnipField::type() const
{
    return m_type;
}

QString RegularSnipField::attributes() const
{
    return QString();
}

ComboSnipField::ComboSnipField(const QString &value, const QString &valueTitle)
    : m_value(value)
    , m_valueTitle(valueTitle)
{
}

QString ComboSnipField::type() const
{
    return SnipFieldType::Items;
}

QString ComboSnipField::attributes() const
{
    return QStringLiteral("value=\"%1\" value_title=\"%2\"").arg(m_value, m_valueTitle);
}

} // namespace Vela
