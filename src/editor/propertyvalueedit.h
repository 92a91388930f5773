// SPDX-License-Identifier: MIT
#pragma once

#include "frame/export.h"

#include <QObject>
#include <QVariantMap>

class QWidget;

namespace Vela {

/// Names the parts of a value that has several, for editors that label each. Callers implement it
/// and hand a pointer to it over as the attribute "translator"; it must outlive the form.
class VELA_EXPORT PropertyValueEditTranslator
{
public:
    virtual ~PropertyValueEditTranslator();

    /// Returns the label of the part \a item, from 0. A folded editor has little room: there a
    /// letter or two are best.
    virtual QString itemText(unsigned int item, bool folded) const = 0;

protected:
    PropertyValueEditTranslator() = default;
    Q_DISABLE_COPY(PropertyValueEditTranslator)
};

/// Makes the widgets of one kind of property and carries values to them and from them. One object
/// serves all widgets of its kind. Main thread only.
class VELA_EXPORT PropertyValueEdit : public QObject
{
    Q_OBJECT

public:
    enum Capabilities {
        CanFold = 1 ///< the widget has a small and a large form; it starts small
    };

    explicit PropertyValueEdit(QObject *parent = nullptr);
    ~PropertyValueEdit() override;

    /// Returns nothing by default.
    virtual QFlags<Capabilities> capabilities() const;
    virtual void setEnabled(QWidget *widget, bool enabled) = 0;
    /// Does nothing by default.
    virtual void setFolded(QWidget *widget, bool folded) const;
    /// Shows \a value without a valueChanged(). A value that is shown already must leave the widget
    /// as it is, with its cursor and selection: the user may be typing there.
    virtual void setValue(QWidget *widget, const QVariant &value) = 0;
    /// Returns a new widget, which belongs to \a parent.
    virtual QWidget *createWidget(QWidget *parent, const QVariantMap &attributes) = 0;
    /// Takes the texts in \a widget from \a translator. Does nothing by default.
    virtual void retranslate(QWidget *widget, PropertyValueEditTranslator &translator) const;

    /// Calls retranslate() with the translator in the dynamic property "translator" of \a widget,
    /// if it has one.
    void retranslateOwn(QWidget *widget) const;

Q_SIGNALS:
    /// The user changed the value in \a widget, which createWidget() made.
    void valueChanged(QWidget *widget, const QVariant &value);
};

} // namespace Vela

Q_DECLARE_METATYPE(Vela::PropertyValueEditTranslator *)
