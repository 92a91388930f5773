// SPDX-License-Identifier: MIT
#pragma once

#include "editor/propertyvalueedit.h"

#include <QMap>
#include <QPointer>

namespace Vela {

class PropertyProvider;

/// Carries what users change from the widgets of all forms to the providers. A widget holds both
/// its provider and its number, in the dynamic properties "provider" and "index".
class PropertyEditListener : public QObject
{
    Q_OBJECT

public:
    /// Says where the changes in \a widget go from now on; a null provider for nowhere.
    static void bind(QWidget *widget, PropertyProvider *provider, unsigned int index);

public Q_SLOTS:
    void valueChanged(QWidget *widget, const QVariant &value);
};

/// The value editors by kind, from the first use to the end of the application. Owns them, also
/// those that others replaced, because rows may still stand that they made.
class PropertyValueRegistry
{
public:
    static PropertyValueRegistry &instance();

    /// Takes a kind out if \a edit is null.
    void add(const QString &kind, PropertyValueEdit *edit);
    /// Returns null for a kind that nobody registered or whose editor was deleted.
    PropertyValueEdit *find(const QString &kind) const;

private:
    PropertyValueRegistry();

    PropertyEditListener m_listener;
    QMap<QString, QPointer<PropertyValueEdit>> m_edits;
};

} // namespace Vela
