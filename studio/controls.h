// SPDX-License-Identifier: MIT
#pragma once

#include "studio/spinturn.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDoubleSpinBox>
#include <QLabel>
#include <QListView>
#include <QSlider>
#include <QSpinBox>

// The widgets of the controls that editors ask for. All have the same two ends, which
// ControlFactory finds by name and argument type: edited() reports a new value, and push() takes
// one from the editor.
//
// A value that arrives by push() and changes the widget is reported too, as editors step a value
// through their setter and let their slot do the work. What an editor pushes from inside its slot
// is not reported back, so no two values can chase each other.

namespace Studio {

/// Keeps reports from going in circles.
class EchoGuard
{
public:
    /// Calls \a setValue, quietly if it is called from inside a report.
    template <typename Set>
    void push(QObject *widget, Set setValue);
    /// Calls \a emitEdited unless the change is quiet.
    template <typename Emit>
    void report(QObject *widget, Emit emitEdited);

private:
    int m_reporting = 0;
    bool m_quiet = false;
};

class Slider : public QSlider
{
    Q_OBJECT

public:
    explicit Slider(QWidget *parent = nullptr);

public Q_SLOTS:
    void push(int value);

Q_SIGNALS:
    void edited(int value);

private:
    EchoGuard m_guard;
};

/// A slider from 0 to 100 between an icon and the value in per cent.
class VolumeSlider : public QWidget
{
    Q_OBJECT

public:
    explicit VolumeSlider(QWidget *parent = nullptr);

    int value() const;
    Slider *slider() const;

public Q_SLOTS:
    void push(int value);

Q_SIGNALS:
    void edited(int value);

private:
    void showValue(int value);

    Slider *m_slider;
    QLabel *m_percent;
};

/// Typed digits are reported when they are confirmed, and a turn as one value at its end.
class SpinBox : public QSpinBox
{
    Q_OBJECT

public:
    explicit SpinBox(QWidget *parent = nullptr);

    void stepBy(int steps) override;

public Q_SLOTS:
    void push(int value);

Q_SIGNALS:
    void edited(int value);

private:
    void report();

    EchoGuard m_guard;
    SpinTurn m_turn;
    int m_reported = 0;
};

/// As SpinBox. Shows no more decimals than the value has.
class DoubleSpinBox : public QDoubleSpinBox
{
    Q_OBJECT

public:
    explicit DoubleSpinBox(QWidget *parent = nullptr);

    void stepBy(int steps) override;
    QString textFromValue(double value) const override;

public Q_SLOTS:
    void push(double value);

Q_SIGNALS:
    void edited(double value);

private:
    void report();

    EchoGuard m_guard;
    SpinTurn m_turn;
    double m_reported = 0;
};

class CheckBox : public QCheckBox
{
    Q_OBJECT

public:
    explicit CheckBox(QWidget *parent = nullptr);

public Q_SLOTS:
    void push(bool checked);

Q_SIGNALS:
    void edited(bool checked);

private:
    EchoGuard m_guard;
};

/// Reports the place of the current entry, or its text. Takes a place, the text of an entry (any
/// text if it is editable), new entries or a model; new entries keep the place where they can.
class ComboBox : public QComboBox
{
    Q_OBJECT

public:
    explicit ComboBox(QWidget *parent = nullptr);

public Q_SLOTS:
    void push(int index);
    void push(const QString &text);
    void push(const QStringList &entries);
    void push(QAbstractItemModel *model);

Q_SIGNALS:
    void edited(int index);
    void edited(const QString &text);

private:
    void report();

    EchoGuard m_guard;
};

/// Reports the entry that was double-clicked or on which Enter was pressed. Takes the current row
/// or a model.
class ListView : public QListView
{
    Q_OBJECT

public:
    explicit ListView(QWidget *parent = nullptr);

public Q_SLOTS:
    void push(int row);
    void push(const QModelIndex &index);
    void push(QAbstractItemModel *model);

Q_SIGNALS:
    void edited(const QModelIndex &index);

protected:
    void keyPressEvent(QKeyEvent *event) override;
};

/// A line of plain text: what a file says is never read as markup.
class Label : public QLabel
{
    Q_OBJECT

public:
    explicit Label(QWidget *parent = nullptr);

public Q_SLOTS:
    void push(const QString &text);
};

/// Keeps the wheel from changing the widgets that it passes over: without the focus they hand it
/// on to what scrolls.
class WheelGuard : public QObject
{
    Q_OBJECT

public:
    explicit WheelGuard(QWidget *widget);

    bool eventFilter(QObject *watched, QEvent *event) override;
};

} // namespace Studio
