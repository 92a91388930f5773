// SPDX-License-Identifier: MIT
#pragma once

#include "frame/itemsdialog.h"

#include <memory>

class QAbstractItemModel;

namespace Ui {
class ItemsDlg;
}

namespace Vela {

/// The dialog of Interface::itemsDialog(): a list with extended selection, buttons that clear,
/// invert and fill the selection, OK and Cancel.
class ItemsDlg : public ItemsDialog
{
    Q_OBJECT

public:
    /// The model stays the caller's. \a row is selected and stands at the top unless negative.
    ItemsDlg(QWidget *parent, const QString &title, QAbstractItemModel *model, int row);
    ~ItemsDlg() override;

    QModelIndexList selectedRows() const override;
    /// The size of the form, or more where the texts of the buttons need it.
    QSize sizeHint() const override;

private:
    void selectRow(int row);
    void invertSelection();

    std::unique_ptr<Ui::ItemsDlg> m_form;
    QSize m_formSize;
};

} // namespace Vela
