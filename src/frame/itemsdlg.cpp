// SPDX-License-Identifier: MIT
#include "frame/itemsdlg.h"

#include "ui_itemsdlg.h"

#include <QItemSelectionModel>

namespace Vela {

ItemsDlg::ItemsDlg(QWidget *parent, const QString &title, QAbstractItemModel *model, int row)
    : ItemsDialog(parent)
    , m_form(std::make_unique<Ui::ItemsDlg>())
{
    setWindowTitle(title);
    m_form->setupUi(this);
    m_formSize = size();
    adjustSize();
    m_form->list->setModel(model);
    if (model && row >= 0)
        selectRow(row);

    connect(m_form->clearBut, &QPushButton::clicked, m_form->list, &QListView::clearSelection);
    connect(m_form->invBut, &QPushButton::clicked, this, &ItemsDlg::invertSelection);
    connect(m_form->allBut, &QPushButton::clicked, m_form->list, &QListView::selectAll);
    connect(m_form->buttonBox, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(m_form->buttonBox, &QDialogButtonBox::rejected, this, &QDialog::reject);
}

ItemsDlg::~ItemsDlg() = default;

QModelIndexList ItemsDlg::selectedRows() const
{
    const QItemSelectionModel *selection = m_form->list->selectionModel();
    return selection ? selection->selectedRows(0) : QModelIndexList();
}

QSize ItemsDlg::sizeHint() const
{
    return minimumSizeHint().expandedTo(m_formSize);
}

void ItemsDlg::selectRow(int row)
{
    const QModelIndex index = m_form->list->model()->index(row, 0);
    m_form->list->setCurrentIndex(index);
    m_form->list->scrollTo(index, QAbstractItemView::PositionAtTop);
}

void ItemsDlg::invertSelection()
{
    const QAbstractItemModel *model = m_form->list->model();
    if (!model || model->rowCount() == 0)
        return;
    const QItemSelection all(model->index(0, 0), model->index(model->rowCount() - 1, 0));
    m_form->list->selectionModel()->select(all,
                                           QItemSelectionModel::Toggle | QItemSelectionModel::Rows);
}

} // namespace Vela
