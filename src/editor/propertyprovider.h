// SPDX-License-Identifier: MIT
#pragma once

#include "frame/export.h"

#include <QMetaType>
#include <QVariantMap>

namespace Vela {

/// A list of typed properties that a PropertyEdit shows and changes. Callers implement it and own
/// it; indices run from 0 to count() - 1 and keep their meaning as long as a form shows them.
class VELA_EXPORT PropertyProvider
{
public:
    virtual unsigned int count() const = 0;
    /// Returns the key of the value editor, such as "int"; see PropertyEdit.
    virtual QString kind(unsigned int index) const = 0;
    /// Returns the name for users. A "&" is shown as it stands.
    virtual QString label(unsigned int index) const = 0;
    /// Returns the title of the group. Neighbours with the same title share one section.
    virtual QString section(unsigned int index) const = 0;
    virtual QVariant value(unsigned int index) const = 0;
    /// Takes a value that the user gave, in the type that value() has for this kind. May call the
    /// form back, even to give it another provider.
    virtual void setValue(unsigned int index, const QVariant &value) = 0;
    /// Returns what the kind's editor reads when it makes its widget.
    virtual QVariantMap attributes(unsigned int index) const = 0;
    /// Returns the object name of the section, which is also the setting under which the host
    /// keeps whether it is open. With an empty key nothing is kept.
    virtual QString sectionKey(unsigned int index) const = 0;

    /// Empties the forms that still show the properties.
    virtual ~PropertyProvider();

protected:
    PropertyProvider() = default;
    Q_DISABLE_COPY(PropertyProvider)
};

} // namespace Vela

Q_DECLARE_METATYPE(Vela::PropertyProvider *)
