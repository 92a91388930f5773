// SPDX-License-Identifier: MIT
#include "editor/snipfieldsmodel.h"

namespace Vela {

SnipFieldsModel::SnipFieldsModel(QObject *parent)
    : QAbstractListModel(parent)
{
}

SnipFieldsModel::~SnipFieldsModel() = default;

int SnipFieldsModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : int(m_fields.size());
}

QVariant SnipFieldsModel::data(const QModelIndex &index, int role) const
{
    if (role != Qt::DisplayRole || !hasRow(index.row()))
        return QVariant();
    return m_fields[size_t(index.row())]->title;
}

const SnipFields &SnipFieldsModel::fields() const
{
    return m_fields;
}

void SnipFieldsModel::append(std::unique_ptr<SnipField> field)
{
    const int row = int(m_fields.size());
    beginInsertRows(QModelIndex(), row, row);
    m_fields.push_back(std::move(field));
    endInsertRows();
}

void SnipFieldsModel::remove(int row)
{
    if (!hasRow(row))
        return;
    beginRemoveRows(QModelIndex(), row, row);
    m_fields.erase(m_fields.begin() + row);
    endRemoveRows();
}

void SnipFieldsModel::moveUp(int row)
{
    if (row == 0 || !hasRow(row))
        return;
    beginMoveRows(QModelIndex(), row, row, QModelIndex(), row - 1);
    std::swap(m_fields[size_t(row)], m_fields[size_t(row) - 1]);
    endMoveRows();
}

bool SnipFieldsModel::hasRow(int row) const
{
    return row >= 0 && row < int(m_fields.size());
}

} // namespace Vela
