// SPDX-License-Identifier: MIT
#include "editor/multivaluewidget.h"
#include "editor/valueedits.h"

#include <QDoubleSpinBox>
#include <QLabel>
#include <QSignalBlocker>
#include <QSpinBox>
#include <cmath>
#include <limits>

namespace Vela {

namespace {

const int decimals = 6;
const int minimumBoxWidth = 60; // pixels; the limits alone would ask for much more

// A number of a vector as it was given, until the user changes it: it may have more places than
// its box shows, or lie beyond the limits.
const char givenProperty[] = "given";

template <typename Number>
struct Range
{
    Number minimum;
    Number maximum;
    Number step;
};

const Range<int> intRange = {std::numeric_limits<int>::min(), std::numeric_limits<int>::max(), 1};
const Range<double> floatRange = {-3.4028235e38, 3.4028235e38, 0.1};

/// Returns a number as near to \a value as the type can be, or \a fallback for what is none.
template <typename Number>
Number toNumber(const QVariant &value, Number fallback)
{
    bool isNumber = false;
    const double number = value.toDouble(&isNumber);
    if (!isNumber || std::isnan(number))
        return fallback;
    using Limits = std::numeric_limits<Number>;
    return Number(qBound(double(Limits::lowest()), number, double(Limits::max())));
}

/// Reads an attribute and, where \a component is not empty, the one of that component, whose name
/// is \a ofComponent with the number behind it.
template <typename Number>
Number attribute(const QVariantMap &attributes, const char *common, const char *ofComponent,
                 const QString &component, Number fallback)
{
    const Number number = toNumber(attributes.value(QLatin1String(common)), fallback);
    if (component.isEmpty())
        return number;
    return toNumber(attributes.value(QLatin1String(ofComponent) + component), number);
}

template <typename Number>
Range<Number> range(const QVariantMap &attributes, const QString &component,
                    const Range<Number> &defaults)
{
    return {attribute(attributes, "minimum", "minimim", component, defaults.minimum),
            attribute(attributes, "maximum", "maximim", component, defaults.maximum),
            attribute(attributes, "step", "step", component, defaults.step)};
}

/// A spin box that shows no zeros at the end.
class FloatBox : public QDoubleSpinBox
{
public:
    using QDoubleSpinBox::QDoubleSpinBox;

    QString textFromValue(double value) const override
    {
        QString text = QDoubleSpinBox::textFromValue(value);
        const int point = text.lastIndexOf(locale().decimalPoint());
        if (point < 0)
            return text;
        int end = text.size();
        while (end > point + 1 && text.at(end - 1) == locale().zeroDigit())
            --end;
        text.truncate(end == point + 1 ? point : end);
        return text;
    }
};

template <typename Box, typename Number>
Box *newBox(QWidget *parent, const Range<Number> &range)
{
    auto *box = new Box(parent);
    box->setMinimumWidth(minimumBoxWidth);
    box->setRange(range.minimum, range.maximum);
    box->setSingleStep(range.step);
    return box;
}

QSpinBox *newIntBox(QWidget *parent, const QVariantMap &attributes, const QString &component)
{
    Range<int> limits = range(attributes, component, intRange);
    // The step is an attribute of vectors only.
    if (component.isEmpty())
        limits.step = intRange.step;
    return newBox<QSpinBox>(parent, limits);
}

QDoubleSpinBox *newFloatBox(QWidget *parent, const QVariantMap &attributes,
                            const QString &component)
{
    const Range<double> limits = range(attributes, component, floatRange);
    auto *box = newBox<FloatBox>(parent, limits);
    box->setDecimals(decimals);
    box->setRange(limits.minimum, limits.maximum); // they were rounded to fewer places
    return box;
}

// Setting even the same number would rewrite a text that the user has half typed, such as "1.".

void showInt(QSpinBox *box, const QVariant &value)
{
    const QSignalBlocker blocker(box);
    const int number = toNumber(value, 0);
    if (number != box->value())
        box->setValue(number);
}

void showFloat(QDoubleSpinBox *box, const QVariant &value)
{
    const QSignalBlocker blocker(box);
    const double number = toNumber(value, 0.0);
    if (QString::number(number, 'f', decimals).toDouble() != box->value())
        box->setValue(number);
}

} // namespace

void IntValueEdit::setValue(QWidget *widget, const QVariant &value)
{
    if (auto *box = qobject_cast<QSpinBox *>(widget))
        showInt(box, value);
}

QWidget *IntValueEdit::createWidget(QWidget *parent, const QVariantMap &attributes)
{
    QSpinBox *box = newIntBox(parent, attributes, QString());
    connect(box, QOverload<int>::of(&QSpinBox::valueChanged), this, &IntValueEdit::changed);
    return box;
}

void IntValueEdit::changed(int value)
{
    Q_EMIT valueChanged(qobject_cast<QWidget *>(sender()), value);
}

void FloatValueEdit::setValue(QWidget *widget, const QVariant &value)
{
    if (auto *box = qobject_cast<QDoubleSpinBox *>(widget))
        showFloat(box, value);
}

QWidget *FloatValueEdit::createWidget(QWidget *parent, const QVariantMap &attributes)
{
    QDoubleSpinBox *box = newFloatBox(parent, attributes, QString());
    connect(box, QOverload<double>::of(&QDoubleSpinBox::valueChanged), this,
            &FloatValueEdit::changed);
    return box;
}

void FloatValueEdit::changed(double value)
{
    Q_EMIT valueChanged(qobject_cast<QWidget *>(sender()), value);
}

VectorValueEdit::VectorValueEdit(const QVector<ComponentType> &types, QObject *parent)
    : WidgetValueEdit(parent)
    , m_types(types)
{
}

QFlags<PropertyValueEdit::Capabilities> VectorValueEdit::capabilities() const
{
    return CanFold;
}

void VectorValueEdit::setFolded(QWidget *widget, bool folded) const
{
    if (auto *multi = qobject_cast<MultiValueWidget *>(widget))
        multi->setFolded(folded);
}

void VectorValueEdit::setValue(QWidget *widget, const QVariant &value)
{
    const auto *multi = qobject_cast<MultiValueWidget *>(widget);
    if (!multi)
        return;
    const QVariantList numbers = value.toList();
    for (int i = 0; i < m_types.size(); ++i) {
        QWidget *box = multi->itemWidget(unsigned(i));
        const QVariant number = numbers.value(i);
        if (m_types.at(i) == Integer) {
            showInt(static_cast<QSpinBox *>(box), number);
            box->setProperty(givenProperty, toNumber(number, 0));
        } else {
            showFloat(static_cast<QDoubleSpinBox *>(box), number);
            box->setProperty(givenProperty, toNumber(number, 0.0));
        }
    }
}

QWidget *VectorValueEdit::createWidget(QWidget *parent, const QVariantMap &attributes)
{
    const QString names = QStringLiteral("XYZW");
    auto *multi = new MultiValueWidget(unsigned(m_types.size()), parent);
    for (int i = 0; i < m_types.size(); ++i) {
        const auto item = unsigned(i);
        multi->setItemWidget(item, createBox(i, multi->itemParent(item), attributes));
        multi->itemLabel(item)->setText(i < names.size() ? QString(names.at(i))
                                                         : QString::number(i + 1));
    }
    multi->setProperty("edit", QVariant::fromValue<PropertyValueEdit *>(this));
    const QVariant translator = attributes.value(QStringLiteral("translator"));
    if (translator.isValid())
        multi->setProperty("translator", translator);
    retranslateOwn(multi);
    return multi;
}

void VectorValueEdit::retranslate(QWidget *widget, PropertyValueEditTranslator &translator) const
{
    const auto *multi = qobject_cast<MultiValueWidget *>(widget);
    for (unsigned int i = 0; multi && i < multi->count(); ++i)
        multi->itemLabel(i)->setText(translator.itemText(i, multi->isFolded()));
}

QWidget *VectorValueEdit::createBox(int component, QWidget *parent, const QVariantMap &attributes)
{
    const QString number = QString::number(component);
    if (m_types.at(component) == Integer) {
        QSpinBox *box = newIntBox(parent, attributes, number);
        box->setProperty(givenProperty, box->value());
        connect(box, QOverload<int>::of(&QSpinBox::valueChanged), this,
                &VectorValueEdit::intChanged);
        return box;
    }
    QDoubleSpinBox *box = newFloatBox(parent, attributes, number);
    box->setProperty(givenProperty, box->value());
    connect(box, QOverload<double>::of(&QDoubleSpinBox::valueChanged), this,
            &VectorValueEdit::floatChanged);
    return box;
}

void VectorValueEdit::intChanged(int value)
{
    sender()->setProperty(givenProperty, value);
    componentChanged();
}

void VectorValueEdit::floatChanged(double value)
{
    sender()->setProperty(givenProperty, value);
    componentChanged();
}

/// Reports all components of the vector that the sending box belongs to.
void VectorValueEdit::componentChanged()
{
    QObject *owner = sender();
    while (owner && !qobject_cast<MultiValueWidget *>(owner))
        owner = owner->parent();
    auto *multi = static_cast<MultiValueWidget *>(owner);
    QVariantList numbers;
    for (unsigned int i = 0; multi && i < multi->count(); ++i)
        numbers.append(multi->itemWidget(i)->property(givenProperty));
    Q_EMIT valueChanged(multi, numbers);
}

} // namespace Vela
