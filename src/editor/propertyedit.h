// SPDX-License-Identifier: MIT
#pragma once

#include "frame/export.h"

#include <QWidget>

namespace Vela {

class PropertyEditPrivate;
class PropertyProvider;
class PropertyValueEdit;

/// A form for the properties of a PropertyProvider, in sections that fold. What the user changes
/// goes back to the provider at once.
///
/// Which widget a property gets is looked up by its kind in a registry for the whole program. It
/// knows "bool", "int", "float", "int2" to "int4", "float2" to "float4", "file", "text", "string",
/// "option" and "stroption" (valueedits.h); engines add their own. A property of another kind gets
/// a label only.
///
/// The form grows with its content and is meant to stand in a scroll area. Main thread only.
class VELA_EXPORT PropertyEdit : public QWidget
{
    Q_OBJECT

public:
    explicit PropertyEdit(QWidget *parent = nullptr);
    ~PropertyEdit() override;

    /// Adds a kind or replaces it for rows made from now on. The registry takes \a edit over and
    /// deletes it when the application ends; an extension that is unloaded earlier deletes its own
    /// first, which takes the kind out. Null takes a kind out, and leaves the edit to its rows.
    static void registerValueEdit(const QString &kind, PropertyValueEdit *edit);

    /// Shows the properties of \a provider, which should outlive the form or be replaced before it
    /// goes; null empties the form. The provider that is shown already only has its values read
    /// again: one whose properties themselves are others now is set anew by way of null.
    void setProvider(PropertyProvider *provider);
    /// Reads a value again. Does nothing for a number that no row has.
    void propertyChanged(unsigned int index);
    void setPropertyEnabled(unsigned int index, bool enabled);
    /// Reads the labels and the titles of the sections again, as after a change of the language.
    void updateNameStrings();

private:
    // A QObject child of the form.
    PropertyEditPrivate *d;
};

} // namespace Vela
