// SPDX-License-Identifier: MIT
#include "editor/propertyvalueedit.h"

#include <QVariant>
#include <QWidget>

namespace Vela {

PropertyValueEditTranslator::~PropertyValueEditTranslator() = default;

PropertyValueEdit::PropertyValueEdit(QObject *parent)
    : QObject(parent)
{
}

PropertyValueEdit::~PropertyValueEdit() = default;

QFlags<PropertyValueEdit::Capabilities> PropertyValueEdit::capabilities() const
{
    return {};
}

void PropertyValueEdit::setFolded(QWidget *, bool) const
{
}

void PropertyValueEdit::retranslate(QWidget *, PropertyValueEditTranslator &) const
{
}

void PropertyValueEdit::retranslateOwn(QWidget *widget) const
{
    const QVariant translator = widget->property("translator");
    if (auto *own = translator.value<PropertyValueEditTranslator *>())
        retranslate(widget, *own);
}

} // namespace Vela
