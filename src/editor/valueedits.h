// SPDX-License-Identifier: MIT
#pragma once

#include "editor/propertyvalueedit.h"

#include <QVector>

namespace Vela {

/// The base of editors whose widget is enabled as a whole.
class VELA_EXPORT WidgetValueEdit : public PropertyValueEdit
{
    Q_OBJECT

public:
    using PropertyValueEdit::PropertyValueEdit;

    void setEnabled(QWidget *widget, bool enabled) override;
};

/// A check box for a bool.
class VELA_EXPORT BoolValueEdit : public WidgetValueEdit
{
    Q_OBJECT

public:
    using WidgetValueEdit::WidgetValueEdit;

    void setValue(QWidget *widget, const QVariant &value) override;
    QWidget *createWidget(QWidget *parent, const QVariantMap &attributes) override;

private Q_SLOTS:
    void changed(bool value);
};

/// A spin box for an int. Attributes: "minimum" and "maximum", which begin as the limits of int.
/// A value beyond them is shown as the nearer one, and stays what it is until the user changes it.
class VELA_EXPORT IntValueEdit : public WidgetValueEdit
{
    Q_OBJECT

public:
    using WidgetValueEdit::WidgetValueEdit;

    void setValue(QWidget *widget, const QVariant &value) override;
    QWidget *createWidget(QWidget *parent, const QVariantMap &attributes) override;

private Q_SLOTS:
    void changed(int value);
};

/// A spin box for a double, with six places. Attributes: "minimum" and "maximum", which begin as
/// the limits of float, and "step", which begins as 0.1.
class VELA_EXPORT FloatValueEdit : public WidgetValueEdit
{
    Q_OBJECT

public:
    using WidgetValueEdit::WidgetValueEdit;

    void setValue(QWidget *widget, const QVariant &value) override;
    QWidget *createWidget(QWidget *parent, const QVariantMap &attributes) override;

private Q_SLOTS:
    void changed(double value);
};

/// A MultiValueWidget of spin boxes for a list of numbers, which is one QVariantList.
///
/// Attributes: those of the int and float kinds, which hold for all components, and for single
/// ones, which go first, "minimim%1", "maximim%1" and "step%1" with the component's number from 0;
/// "translator", a PropertyValueEditTranslator * that names the components. Without it they are X,
/// Y, Z and W. A change of one component leaves the others as they were given, however many places
/// they have.
class VELA_EXPORT VectorValueEdit : public WidgetValueEdit
{
    Q_OBJECT

public:
    enum ComponentType { Integer = 0, Floating = 1 };

    explicit VectorValueEdit(const QVector<ComponentType> &types, QObject *parent = nullptr);

    QFlags<Capabilities> capabilities() const override;
    void setFolded(QWidget *widget, bool folded) const override;
    void setValue(QWidget *widget, const QVariant &value) override;
    QWidget *createWidget(QWidget *parent, const QVariantMap &attributes) override;
    void retranslate(QWidget *widget, PropertyValueEditTranslator &translator) const override;

private Q_SLOTS:
    void intChanged(int value);
    void floatChanged(double value);

private:
    QWidget *createBox(int component, QWidget *parent, const QVariantMap &attributes);
    void componentChanged();

    QVector<ComponentType> m_types;
};

/// A FileBrowseEdit for a path that is relative to a folder. Attributes: "filter", which begins as
/// "*.*"; "basePath"; "baseArchive", an Archive * that outlives the form, which begins as the disk.
class VELA_EXPORT FileValueEdit : public WidgetValueEdit
{
    Q_OBJECT

public:
    using WidgetValueEdit::WidgetValueEdit;

    void setValue(QWidget *widget, const QVariant &value) override;
    QWidget *createWidget(QWidget *parent, const QVariantMap &attributes) override;

private Q_SLOTS:
    void changed(const QString &value);
};

/// A text of several lines, parted by "\n". Tab leaves it.
class VELA_EXPORT TextValueEdit : public WidgetValueEdit
{
    Q_OBJECT

public:
    using WidgetValueEdit::WidgetValueEdit;

    QFlags<Capabilities> capabilities() const override;
    void setFolded(QWidget *widget, bool folded) const override;
    void setValue(QWidget *widget, const QVariant &value) override;
    QWidget *createWidget(QWidget *parent, const QVariantMap &attributes) override;

private Q_SLOTS:
    void changed();
};

/// A line edit for a string. Attributes: "validator", a regular expression, and "mask", an input
/// mask. Only texts that fit are reported; leaving an unfinished one brings the last good one back.
class VELA_EXPORT StringValueEdit : public WidgetValueEdit
{
    Q_OBJECT

public:
    using WidgetValueEdit::WidgetValueEdit;

    void setValue(QWidget *widget, const QVariant &value) override;
    QWidget *createWidget(QWidget *parent, const QVariantMap &attributes) override;

private Q_SLOTS:
    void changed(const QString &value);
};

/// A combo box for the index of an item. Attribute: "items", a list of strings. An index that no
/// item has shows as an empty box.
class VELA_EXPORT OptionValueEdit : public WidgetValueEdit
{
    Q_OBJECT

public:
    using WidgetValueEdit::WidgetValueEdit;

    void setValue(QWidget *widget, const QVariant &value) override;
    QWidget *createWidget(QWidget *parent, const QVariantMap &attributes) override;

private Q_SLOTS:
    void changed(int value);
};

/// A combo box for a string that is one of the items or another. Attributes: "items", and
/// "validator" as for StringValueEdit.
class VELA_EXPORT StringOptionValueEdit : public WidgetValueEdit
{
    Q_OBJECT

public:
    using WidgetValueEdit::WidgetValueEdit;

    void setValue(QWidget *widget, const QVariant &value) override;
    QWidget *createWidget(QWidget *parent, const QVariantMap &attributes) override;

private Q_SLOTS:
    void changed(const QString &value);
};

} // namespace Vela
