// SPDX-License-Identifier: MIT
#include "frame/controldescriptor.h"

namespace Vela {

// Hosts and extensions may come from different builds: the sizes are part of the contract.
#if QT_POINTER_SIZE == 8
static_assert(sizeof(ActionControl) == 16);
static_assert(sizeof(MenuControl) == 24);
static_assert(sizeof(BoundControl) == 48);
static_assert(sizeof(TextControl) == 64);
static_assert(sizeof(SpinBoxControl) == 56);
static_assert(sizeof(DoubleSpinBoxControl) == 72);
static_assert(sizeof(ListViewControl) == 56);
static_assert(sizeof(ComboBoxControl) == 88);
#endif

ActionControl::ActionControl(QAction *buttonAction)
    : ControlDescriptor{ActionButton, int(sizeof(ActionControl))}
    , action(buttonAction)
{
}

MenuControl::MenuControl(QAction *buttonAction, Menu *dropDown)
    : ControlDescriptor{MenuButton, int(sizeof(MenuControl))}
    , action(buttonAction)
    , menu(dropDown)
{
}

BoundControl::BoundControl(Kind kindOfControl, QObject *owner, const char *slotName,
                           const char *setterName, const char *enablerName)
    : BoundControl(kindOfControl, int(sizeof(BoundControl)), owner, slotName, setterName,
                   enablerName)
{
}

BoundControl::BoundControl(Kind kindOfControl, int sizeOfControl, QObject *owner,
                           const char *slotName, const char *setterName, const char *enablerName)
    : ControlDescriptor{kindOfControl, sizeOfControl}
    , receiver(owner)
    , slot(slotName)
    , setter(setterName)
    , enabler(enablerName)
{
}

TextControl::TextControl(Kind kindOfControl, QObject *owner, const char *slotName,
                         const char *setterName, const char *enablerName, Translator *texts,
                         int idOfText)
    : BoundControl(kindOfControl, int(sizeof(TextControl)), owner, slotName, setterName,
                   enablerName)
    , translator(texts)
    , textId(idOfText)
{
}

SpinBoxControl::SpinBoxControl(QObject *owner, const char *slotName, const char *setterName,
                               const char *enablerName, int lowest, int highest)
    : BoundControl(SpinBox, int(sizeof(SpinBoxControl)), owner, slotName, setterName, enablerName)
    , minimum(lowest)
    , maximum(highest)
{
}

DoubleSpinBoxControl::DoubleSpinBoxControl(QObject *owner, const char *slotName,
                                           const char *setterName, const char *enablerName,
                                           double lowest, double highest, double singleStep)
    : BoundControl(DoubleSpinBox, int(sizeof(DoubleSpinBoxControl)), owner, slotName, setterName,
                   enablerName)
    , minimum(lowest)
    , maximum(highest)
    , step(singleStep)
{
}

ListViewControl::ListViewControl(QObject *owner, const char *slotName, const char *setterName,
                                 const char *enablerName, QAbstractItemModel *itemModel)
    : BoundControl(ListView, int(sizeof(ListViewControl)), owner, slotName, setterName, enablerName)
    , model(itemModel)
{
}

ListViewControl::ListViewControl(Kind kindOfControl, int sizeOfControl, QObject *owner,
                                 const char *slotName, const char *setterName,
                                 const char *enablerName)
    : BoundControl(kindOfControl, sizeOfControl, owner, slotName, setterName, enablerName)
    , model(nullptr)
{
}

ComboBoxControl::ComboBoxControl(QObject *owner, const char *slotName, const char *setterName,
                                 const char *enablerName, Translator *texts, const int *textIds,
                                 int currentItem)
    : ListViewControl(ComboBox, int(sizeof(ComboBoxControl)), owner, slotName, setterName,
                      enablerName)
    , translator(texts)
    , current(currentItem)
    , items(textIds)
{
}

} // namespace Vela
