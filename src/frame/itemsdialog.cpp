// SPDX-License-Identifier: MIT
#include "frame/itemsdialog.h"

namespace Vela {

ItemsDialog::ItemsDialog(QWidget *parent)
    : QDialog(parent)
{
}

ItemsDialog::~ItemsDialog() = default;

void ItemsDialog::release()
{
    delete this;
}

bool ItemsDialog::hasSelection() const
{
    return !selectedRows().isEmpty();
}

} // namespace Vela
