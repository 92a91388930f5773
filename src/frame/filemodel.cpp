// SPDX-License-Identifier: MIT
#include "frame/filemodel_p.h"

namespace Vela {

void FileModel::setPrefix(const QString &prefix)
{
    m_prefix = prefix;
}

QVariant FileModel::data(const QModelIndex &index, int role) const
{
    const QVariant value = QStringListModel::data(index, role);
    return role == Qt::EditRole && value.isValid() ? QVariant(m_prefix + value.toString()) : value;
}

} // namespace Vela
