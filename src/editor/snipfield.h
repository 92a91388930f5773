// SPDX-License-Identifier: MIT
#pragma once

#include "frame/export.h"

#include <QString>
#include <memory>
#include <vector>

namespace Vela {

/// The words for the kinds of field in a snippet's file.
namespace SnipFieldType {
inline const QLatin1String Text("string");
inline const QLatin1String Integer("int");
inline const QLatin1String Float("float");
inline const QLatin1String Items("items");
} // namespace SnipFieldType

/// One field of a code snippet: what the user is asked for when the snippet is inserted.
class VELA_EXPORT SnipField
{
public:
    SnipField();
    virtual ~SnipField();

    /// Returns the word that stands for the kind of field in a snippet's file.
    virtual QString type() const = 0;
    /// Returns the attributes of the field's element beyond name, title and type.
    virtual QString attributes() const = 0;

    QString name;  ///< the code refers to the field as "@" and the name
    QString title; ///< the label above the field's widget

private:
    Q_DISABLE_COPY(SnipField)
};

/// The fields of a snippet, in its order.
using SnipFields = std::vector<std::unique_ptr<SnipField>>;

/// A text or a number that the user types.
class VELA_EXPORT RegularSnipField : public SnipField
{
public:
    /// \a type is a word of SnipFieldType but Items. Another one is kept, for a field without a
    /// widget.
    explicit RegularSnipField(const QString &type);

    QString type() const override;
    QString attributes() const override;

private:
    QString m_type;
};

/// One of several values.
class VELA_EXPORT ComboSnipField : public SnipField
{
public:
    /// Both are separated by commas and have the same number of parts.
    ComboSnipField(const QString &value, const QString &valueTitle);

    QString type() const override;
    QString attributes() const override;

private:
    QString m_value;
    QString m_valueTitle;
};

} // namespace Vela
