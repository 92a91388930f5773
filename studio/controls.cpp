// SPDX-License-Identifier: MIT
#include "studio/controls.h"

#include <QHBoxLayout>
#include <QKeyEvent>
#include <QPointer>
#include <QStyle>
#include <limits>

namespace Studio {

// A slot may delete the widget whose value it gets: nothing is touched after it unless it lives.
template <typename Set>
void EchoGuard::push(QObject *widget, Set setValue)
{
    const QPointer<QObject> alive(widget);
    const bool before = m_quiet;
    m_quiet = m_reporting > 0;
    setValue();
    if (alive)
        m_quiet = before;
}

template <typename Emit>
void EchoGuard::report(QObject *widget, Emit emitEdited)
{
    if (m_quiet)
        return;
    const QPointer<QObject> alive(widget);
    ++m_reporting;
    emitEdited();
    if (alive)
        --m_reporting;
}

Slider::Slider(QWidget *parent)
    : QSlider(Qt::Horizontal, parent)
{
    setFocusPolicy(Qt::StrongFocus);
    new WheelGuard(this);
    connect(this, &QSlider::valueChanged, this,
            [this](int value) { m_guard.report(this, [this, value] { Q_EMIT edited(value); }); });
}

void Slider::push(int value)
{
    m_guard.push(this, [this, value] { setValue(value); });
}

VolumeSlider::VolumeSlider(QWidget *parent)
    : QWidget(parent)
    , m_slider(new Slider(this))
    , m_percent(new QLabel(this))
{
    const int iconSize = style()->pixelMetric(QStyle::PM_SmallIconSize, nullptr, this);
    auto *icon = new QLabel(this);
    icon->setPixmap(style()->standardIcon(QStyle::SP_MediaVolume).pixmap(iconSize));
    // Room for the widest text, so that nothing moves while the slider does.
    m_percent->setMinimumWidth(m_percent->fontMetrics().horizontalAdvance(tr("%1 %").arg(100)));
    m_percent->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    auto *row = new QHBoxLayout(this);
    row->setContentsMargins(0, 0, 0, 0);
    row->addWidget(icon);
    row->addWidget(m_slider);
    row->addWidget(m_percent);
    setFocusProxy(m_slider);

    connect(m_slider, &QSlider::valueChanged, this, &VolumeSlider::showValue);
    m_slider->setRange(0, 100);
    m_slider->setValue(100);
    connect(m_slider, &Slider::edited, this, &VolumeSlider::edited);
}

int VolumeSlider::value() const
{
    return m_slider->value();
}

Slider *VolumeSlider::slider() const
{
    return m_slider;
}

void VolumeSlider::push(int value)
{
    m_slider->push(value);
}

void VolumeSlider::showValue(int value)
{
    m_percent->setText(tr("%1 %").arg(value));
}

SpinBox::SpinBox(QWidget *parent)
    : QSpinBox(parent)
    , m_turn(this)
{
    setFocusPolicy(Qt::StrongFocus);
    setKeyboardTracking(false);
    new WheelGuard(this);
    connect(this, QOverload<int>::of(&QSpinBox::valueChanged), this, &SpinBox::report);
    connect(&m_turn, &SpinTurn::ended, this, &SpinBox::report);
}

void SpinBox::stepBy(int steps)
{
    m_turn.step();
    QSpinBox::stepBy(steps);
}

void SpinBox::push(int value)
{
    m_turn.cancel();
    if (value == this->value())
        m_reported = value;
    else
        m_guard.push(this, [this, value] { setValue(value); });
}

void SpinBox::report()
{
    if (m_turn.isActive() || value() == m_reported)
        return;
    m_reported = value();
    m_guard.report(this, [this] { Q_EMIT edited(value()); });
}

DoubleSpinBox::DoubleSpinBox(QWidget *parent)
    : QDoubleSpinBox(parent)
    , m_turn(this)
{
    setFocusPolicy(Qt::StrongFocus);
    setKeyboardTracking(false);
    setDecimals(6);
    new WheelGuard(this);
    connect(this, QOverload<double>::of(&QDoubleSpinBox::valueChanged), this,
            &DoubleSpinBox::report);
    connect(&m_turn, &SpinTurn::ended, this, &DoubleSpinBox::report);
}

void DoubleSpinBox::stepBy(int steps)
{
    m_turn.step();
    QDoubleSpinBox::stepBy(steps);
}

QString DoubleSpinBox::textFromValue(double value) const
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

void DoubleSpinBox::push(double value)
{
    m_turn.cancel();
    if (value == this->value())
        m_reported = value;
    else
        m_guard.push(this, [this, value] { setValue(value); });
}

void DoubleSpinBox::report()
{
    if (m_turn.isActive() || value() == m_reported)
        return;
    m_reported = value();
    m_guard.report(this, [this] { Q_EMIT edited(value()); });
}

CheckBox::CheckBox(QWidget *parent)
    : QCheckBox(parent)
{
    connect(this, &QCheckBox::toggled, this, [this](bool checked) {
        m_guard.report(this, [this, checked] { Q_EMIT edited(checked); });
    });
}

void CheckBox::push(bool checked)
{
    m_guard.push(this, [this, checked] { setChecked(checked); });
}

ComboBox::ComboBox(QWidget *parent)
    : QComboBox(parent)
{
    setFocusPolicy(Qt::StrongFocus);
    setSizeAdjustPolicy(QComboBox::AdjustToContents);
    new WheelGuard(this);
    connect(this, QOverload<int>::of(&QComboBox::currentIndexChanged), this, &ComboBox::report);
}

void ComboBox::report()
{
    m_guard.report(this, [this] {
        const QPointer<QObject> alive(this);
        Q_EMIT edited(currentIndex());
        if (alive)
            Q_EMIT edited(currentText());
    });
}

void ComboBox::push(int index)
{
    m_guard.push(this, [this, index] { setCurrentIndex(index); });
}

void ComboBox::push(const QString &text)
{
    m_guard.push(this, [this, &text] { setCurrentText(text); });
}

void ComboBox::push(const QStringList &entries)
{
    const QSignalBlocker quiet(this);
    const int current = currentIndex();
    clear();
    addItems(entries);
    setCurrentIndex(qMin(qMax(current, 0), count() - 1));
}

void ComboBox::push(QAbstractItemModel *model)
{
    const QSignalBlocker quiet(this);
    const int current = currentIndex();
    setModel(model);
    setCurrentIndex(qMin(qMax(current, 0), count() - 1));
}

ListView::ListView(QWidget *parent)
    : QListView(parent)
{
    connect(this, &QListView::doubleClicked, this, &ListView::edited);
}

void ListView::push(int row)
{
    if (model())
        setCurrentIndex(model()->index(row, modelColumn(), rootIndex()));
}

void ListView::push(const QModelIndex &index)
{
    setCurrentIndex(index);
}

void ListView::push(QAbstractItemModel *model)
{
    setModel(model);
}

void ListView::keyPressEvent(QKeyEvent *event)
{
    const bool enter = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
    if (enter && state() != EditingState && currentIndex().isValid())
        Q_EMIT edited(currentIndex());
    else
        QListView::keyPressEvent(event);
}

Label::Label(QWidget *parent)
    : QLabel(parent)
{
    setTextFormat(Qt::PlainText);
}

void Label::push(const QString &text)
{
    setText(text);
}

WheelGuard::WheelGuard(QWidget *widget)
    : QObject(widget)
{
    widget->installEventFilter(this);
}

bool WheelGuard::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() != QEvent::Wheel || static_cast<QWidget *>(watched)->hasFocus())
        return false;
    event->ignore();
    return true;
}

} // namespace Studio
