// SPDX-License-Identifier: MIT
#pragma once

#include "frame/object.h"

#include <QDialog>
#include <QModelIndexList>

namespace Vela {

/// The dialog with which a user picks rows of a list. Made by Interface::itemsDialog(); release()
/// deletes it.
class VELA_EXPORT ItemsDialog : public QDialog, public Object
{
    Q_OBJECT

public:
    explicit ItemsDialog(QWidget *parent = nullptr);
    ~ItemsDialog() override;

    void release() override;

    /// Returns the selected rows as indexes of column 0, in the order of the selection model,
    /// which need not be that of the rows.
    virtual QModelIndexList selectedRows() const = 0;

    bool hasSelection() const;
};

} // namespace Vela
