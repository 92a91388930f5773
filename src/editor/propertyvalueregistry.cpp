// SPDX-License-Identifier: MIT
#include "editor/propertyvalueregistry_p.h"

#include "editor/propertyprovider.h"
#include "editor/valueedits.h"

#include <QCoreApplication>
#include <QWidget>

namespace Vela {

namespace {

const char providerProperty[] = "provider";
const char indexProperty[] = "index";

using Types = QVector<VectorValueEdit::ComponentType>;

PropertyValueRegistry *theRegistry = nullptr;

void freeRegistry()
{
    delete theRegistry;
    theRegistry = nullptr;
}

} // namespace

void PropertyEditListener::bind(QWidget *widget, PropertyProvider *provider, unsigned int index)
{
    widget->setProperty(providerProperty, QVariant::fromValue(provider));
    widget->setProperty(indexProperty, index);
}

void PropertyEditListener::valueChanged(QWidget *widget, const QVariant &value)
{
    if (!widget)
        return;
    auto *provider = widget->property(providerProperty).value<PropertyProvider *>();
    // Nothing is touched after this: the provider may have changed or closed the form.
    if (provider)
        provider->setValue(widget->property(indexProperty).toUInt(), value);
}

PropertyValueRegistry &PropertyValueRegistry::instance()
{
    if (!theRegistry) {
        theRegistry = new PropertyValueRegistry;
        qAddPostRoutine(freeRegistry);
    }
    return *theRegistry;
}

PropertyValueRegistry::PropertyValueRegistry()
{
    add(QStringLiteral("bool"), new BoolValueEdit);
    add(QStringLiteral("int"), new IntValueEdit);
    add(QStringLiteral("float"), new FloatValueEdit);
    for (int size = 2; size <= 4; ++size) {
        add(QStringLiteral("int%1").arg(size),
            new VectorValueEdit(Types(size, VectorValueEdit::Integer)));
        add(QStringLiteral("float%1").arg(size),
            new VectorValueEdit(Types(size, VectorValueEdit::Floating)));
    }
    add(QStringLiteral("file"), new FileValueEdit);
    add(QStringLiteral("text"), new TextValueEdit);
    add(QStringLiteral("string"), new StringValueEdit);
    add(QStringLiteral("option"), new OptionValueEdit);
    add(QStringLiteral("stroption"), new StringOptionValueEdit);
}

void PropertyValueRegistry::add(const QString &kind, PropertyValueEdit *edit)
{
    m_edits.insert(kind, edit);
    if (!edit)
        return;
    edit->setParent(&m_listener);
    QObject::connect(edit, &PropertyValueEdit::valueChanged, &m_listener,
                     &PropertyEditListener::valueChanged, Qt::UniqueConnection);
}

PropertyValueEdit *PropertyValueRegistry::find(const QString &kind) const
{
    return m_edits.value(kind);
}

} // namespace Vela
