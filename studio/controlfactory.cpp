// SPDX-License-Identifier: MIT
#include "studio/controlfactory.h"

#include "frame/controldescriptor.h"
#include "frame/menu.h"
#include "frame/translator.h"
#include "studio/controls.h"
#include "studio/signature.h"

#include <QAction>
#include <QDebug>
#include <QToolButton>

namespace Studio {

namespace {

using Vela::ControlDescriptor;

const QLatin1String labelSuffix("_lb");

bool isKnown(const ControlDescriptor &descriptor)
{
    const size_t size = size_t(descriptor.size);
    switch (descriptor.kind) {
    case ControlDescriptor::ActionButton:
        return size == sizeof(Vela::ActionControl);
    case ControlDescriptor::MenuButton:
        return size == sizeof(Vela::MenuControl);
    case ControlDescriptor::Label:
        return size == sizeof(Vela::BoundControl) || size == sizeof(Vela::TextControl);
    case ControlDescriptor::Slider:
    case ControlDescriptor::VolumeSlider:
        return size == sizeof(Vela::BoundControl);
    case ControlDescriptor::SpinBox:
        return size == sizeof(Vela::SpinBoxControl);
    case ControlDescriptor::DoubleSpinBox:
        return size == sizeof(Vela::DoubleSpinBoxControl);
    case ControlDescriptor::CheckBox:
    case ControlDescriptor::GroupHeader:
        return size == sizeof(Vela::TextControl);
    case ControlDescriptor::ComboBox:
        return size == sizeof(Vela::ComboBoxControl);
    case ControlDescriptor::ListView:
        return size == sizeof(Vela::ListViewControl);
    default:
        return false;
    }
}

bool isButton(const ControlDescriptor &descriptor)
{
    return descriptor.kind == ControlDescriptor::ActionButton
        || descriptor.kind == ControlDescriptor::MenuButton;
}

QToolButton *makeActionButton(QAction *action)
{
    auto *button = new QToolButton;
    button->setAutoRaise(true);
    button->setFocusPolicy(Qt::TabFocus);
    if (action)
        button->setDefaultAction(action);
    return button;
}

QWidget *makeButton(const ControlDescriptor &descriptor)
{
    if (descriptor.kind == ControlDescriptor::ActionButton)
        return makeActionButton(static_cast<const Vela::ActionControl &>(descriptor).action);
    const auto &control = static_cast<const Vela::MenuControl &>(descriptor);
    QToolButton *button = makeActionButton(control.action);
    button->setMenu(control.menu);
    button->setPopupMode(control.action ? QToolButton::MenuButtonPopup : QToolButton::InstantPopup);
    return button;
}

QWidget *makeSpinBox(const ControlDescriptor &descriptor)
{
    const auto &control = static_cast<const Vela::SpinBoxControl &>(descriptor);
    auto *box = new SpinBox;
    box->setRange(control.minimum, control.maximum);
    return box;
}

QWidget *makeDoubleSpinBox(const ControlDescriptor &descriptor)
{
    const auto &control = static_cast<const Vela::DoubleSpinBoxControl &>(descriptor);
    auto *box = new DoubleSpinBox;
    box->setRange(control.minimum, control.maximum);
    box->setSingleStep(control.step);
    return box;
}

QWidget *makeListView(const ControlDescriptor &descriptor)
{
    auto *view = new ListView;
    view->setModel(static_cast<const Vela::ListViewControl &>(descriptor).model);
    return view;
}

QWidget *makeLabel(const ControlDescriptor &descriptor)
{
    auto *label = new Label;
    if (descriptor.kind == ControlDescriptor::GroupHeader) {
        QFont bold = label->font();
        bold.setBold(true);
        label->setFont(bold);
        label->setFrameStyle(QFrame::StyledPanel | QFrame::Plain);
    }
    return label;
}

void warnUnfit(const QString &key, const char *signature)
{
    qWarning("%s: the arguments of \"%s\" do not fit the control", qUtf8Printable(key), signature);
}

// The other end of each connection is looked for on the widget by its name.
void bindSlot(const QString &key, QWidget *widget, const Vela::BoundControl &control)
{
    const QMetaMethod slot = methodOf(control.receiver, control.slot, key);
    if (!slot.isValid())
        return;
    const QMetaMethod edited = counterpart(widget, "edited", slot);
    if (edited.isValid())
        QObject::connect(widget, edited, control.receiver, slot);
    else
        warnUnfit(key, control.slot);
}

void bindSignal(const QString &key, QWidget *widget, const Vela::BoundControl &control,
                const char *signature, const char *slotName)
{
    const QMetaMethod signal = methodOf(control.receiver, signature, key);
    if (!signal.isValid())
        return;
    const QMetaMethod slot = signal.methodType() == QMetaMethod::Signal
        ? counterpart(widget, slotName, signal)
        : QMetaMethod();
    if (slot.isValid())
        QObject::connect(control.receiver, signal, widget, slot);
    else
        warnUnfit(key, signature);
}

void setComboTexts(QComboBox &box, const Vela::Translator &translator, const QVector<int> &ids)
{
    for (int i = 0; i < ids.size() && i < box.count(); ++i) {
        box.setItemText(i, translator.translate(ids.at(i)));
        box.setItemData(i, translator.toolTip(ids.at(i)), Qt::ToolTipRole);
    }
}

void setText(QWidget *widget, const Vela::Translator &translator, const QVector<int> &ids)
{
    if (auto *box = qobject_cast<QComboBox *>(widget))
        return setComboTexts(*box, translator, ids);
    const QString text = translator.translate(ids.first());
    if (auto *check = qobject_cast<QCheckBox *>(widget))
        check->setText(text);
    else if (auto *label = qobject_cast<QLabel *>(widget))
        label->setText(text);
    widget->setAccessibleName(text);
    widget->setToolTip(translator.toolTip(ids.first()));
}

void nameBuddy(const Label *label)
{
    QString name = label->text();
    while (name.endsWith(QLatin1Char(':')) || name.endsWith(QLatin1Char(' ')))
        name.chop(1);
    if (label->buddy() && !name.isEmpty())
        label->buddy()->setAccessibleName(name);
}

} // namespace

ControlFactory::~ControlFactory()
{
    for (const QPointer<QWidget> &widget : qAsConst(m_widgets)) {
        if (widget && !widget->parent())
            delete widget;
    }
}

QWidget *ControlFactory::create(const QString &key, const ControlDescriptor *descriptor)
{
    if (!descriptor || !isKnown(*descriptor)) {
        qWarning("%s: a control of the kind %d and the size %d is not known", qUtf8Printable(key),
                 descriptor ? descriptor->kind : -1, descriptor ? descriptor->size : -1);
        return nullptr;
    }
    QWidget *widget = isButton(*descriptor) ? makeButton(*descriptor) : makeBound(*descriptor);
    add(key, widget);
    if (isButton(*descriptor))
        return widget;
    const auto &control = static_cast<const Vela::BoundControl &>(*descriptor);
    bindSlot(key, widget, control);
    bindSignal(key, widget, control, control.setter, "push");
    bindSignal(key, widget, control, control.enabler, "setEnabled");
    if (widget->accessibleName().isEmpty() && descriptor->kind != ControlDescriptor::Label)
        nameByLabel(key, widget);
    if (control.hidden)
        widget->hide();
    return widget;
}

QWidget *ControlFactory::makeBound(const ControlDescriptor &descriptor)
{
    switch (descriptor.kind) {
    case ControlDescriptor::Slider:
        return new Slider;
    case ControlDescriptor::VolumeSlider:
        return new VolumeSlider;
    case ControlDescriptor::SpinBox:
        return makeSpinBox(descriptor);
    case ControlDescriptor::DoubleSpinBox:
        return makeDoubleSpinBox(descriptor);
    case ControlDescriptor::ComboBox:
        return makeComboBox(descriptor);
    case ControlDescriptor::ListView:
        return makeListView(descriptor);
    default:
        return makeText(descriptor);
    }
}

QWidget *ControlFactory::makeText(const ControlDescriptor &descriptor)
{
    QWidget *widget =
        descriptor.kind == ControlDescriptor::CheckBox ? new CheckBox : makeLabel(descriptor);
    if (descriptor.size == int(sizeof(Vela::TextControl))) {
        const auto &control = static_cast<const Vela::TextControl &>(descriptor);
        addText(widget, control, control.translator, {control.textId});
    }
    return widget;
}

QWidget *ControlFactory::makeComboBox(const ControlDescriptor &descriptor)
{
    const auto &control = static_cast<const Vela::ComboBoxControl &>(descriptor);
    auto *box = new ComboBox;
    box->setEditable(control.editable);
    QVector<int> ids;
    for (const int *id = control.items; id && *id != -1; ++id)
        ids.append(*id);
    if (ids.isEmpty() && control.model)
        box->setModel(control.model);
    for (int i = 0; i < ids.size(); ++i)
        box->addItem(QString());
    addText(box, control, control.translator, ids);
    box->setCurrentIndex(control.current);
    return box;
}

void ControlFactory::addText(QWidget *widget, const Vela::BoundControl &control,
                             const Vela::Translator *translator, const QVector<int> &ids)
{
    if (!translator || ids.isEmpty())
        return;
    m_texts.append({widget, control.receiver, control.receiver != nullptr, translator, ids});
    setText(widget, *translator, ids);
}

void ControlFactory::add(const QString &key, QWidget *widget)
{
    widget->setObjectName(key);
    m_widgets.insert(key, widget);
}

QWidget *ControlFactory::widget(const QString &key) const
{
    return m_widgets.value(key);
}

void ControlFactory::retranslate()
{
    for (const Text &text : qAsConst(m_texts)) {
        if (text.widget && (text.receiver || !text.hasReceiver))
            setText(text.widget, *text.translator, text.ids);
    }
    for (const QPointer<QWidget> &widget : qAsConst(m_widgets)) {
        if (const auto *label = qobject_cast<const Label *>(widget.data()))
            nameBuddy(label);
    }
}

void ControlFactory::nameByLabel(const QString &key, QWidget *widget)
{
    widget->setAccessibleName(key);
    if (auto *label = qobject_cast<Label *>(this->widget(key + labelSuffix))) {
        label->setBuddy(widget);
        nameBuddy(label);
    }
}

} // namespace Studio
