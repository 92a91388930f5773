// SPDX-License-Identifier: MIT
#pragma once

#include "frame/export.h"

class QAbstractItemModel;
class QAction;
class QObject;

namespace Vela {

class Menu;
class Translator;

/// What Interface::createControl makes. Every structure below opens with its kind and its own size
/// in bytes, so that a host can tell a field that an older caller does not have.
struct VELA_EXPORT ControlDescriptor
{
    enum Kind : int {
        ActionButton = 0,
        MenuButton = 1,
        Label = 3,
        Slider = 4,
        VolumeSlider = 5,
        SpinBox = 7,
        DoubleSpinBox = 8,
        CheckBox = 9,
        ComboBox = 10,
        ListView = 11,
        GroupHeader = 14
    };

    int kind;
    int size;
};

/// Kind ActionButton: a tool button of an action, which stays the caller's.
struct VELA_EXPORT ActionControl : ControlDescriptor
{
    explicit ActionControl(QAction *action);

    QAction *action;
};

/// Kind MenuButton: a tool button of an action with a drop-down menu.
struct VELA_EXPORT MenuControl : ControlDescriptor
{
    MenuControl(QAction *action, Menu *menu);

    QAction *action;
    Menu *menu;
};

/// The connection block of all other kinds, and the whole of the kinds Slider and VolumeSlider.
/// The strings are Qt's signature strings: a slot begins with '1', a signal with '2', as the
/// macros SLOT and SIGNAL write them. Any of them may be null.
struct VELA_EXPORT BoundControl : ControlDescriptor
{
    BoundControl(Kind kind, QObject *receiver, const char *slot, const char *setter,
                 const char *enabler);

    QObject *receiver;   ///< owner of the signals and of the slot
    const char *slot;    ///< slot that receives changes made by the user
    const char *setter;  ///< signal by which the editor pushes a new value into the widget
    const char *enabler; ///< signal with a bool that enables the widget
    bool hidden = false;

protected:
    BoundControl(Kind kind, int size, QObject *receiver, const char *slot, const char *setter,
                 const char *enabler);
};

/// Kinds CheckBox and GroupHeader, and a Label with a fixed text. A Label whose text arrives by its
/// setter is a plain BoundControl.
struct VELA_EXPORT TextControl : BoundControl
{
    TextControl(Kind kind, QObject *receiver, const char *slot, const char *setter,
                const char *enabler, Translator *translator, int textId);

    Translator *translator;
    int textId;
};

/// Kind SpinBox.
struct VELA_EXPORT SpinBoxControl : BoundControl
{
    SpinBoxControl(QObject *receiver, const char *slot, const char *setter, const char *enabler,
                   int minimum, int maximum);

    int minimum;
    int maximum;
};

/// Kind DoubleSpinBox.
struct VELA_EXPORT DoubleSpinBoxControl : BoundControl
{
    DoubleSpinBoxControl(QObject *receiver, const char *slot, const char *setter,
                         const char *enabler, double minimum, double maximum, double step);

    double minimum;
    double maximum;
    double step;
};

/// Kind ListView: the view is returned to the caller, who owns its model. A null model leaves the
/// view without one.
struct VELA_EXPORT ListViewControl : BoundControl
{
    ListViewControl(QObject *receiver, const char *slot, const char *setter, const char *enabler,
                    QAbstractItemModel *model = nullptr);

    QAbstractItemModel *model;

protected:
    ListViewControl(Kind kind, int size, QObject *receiver, const char *slot, const char *setter,
                    const char *enabler);
};

/// Kind ComboBox: its entries are the texts of an array of identifiers that ends with -1.
struct VELA_EXPORT ComboBoxControl : ListViewControl
{
    ComboBoxControl(QObject *receiver, const char *slot, const char *setter, const char *enabler,
                    Translator *translator, const int *items, int current = 0);

    Translator *translator;
    int current;
    const int *items;
    bool editable = false;
};

} // namespace Vela
