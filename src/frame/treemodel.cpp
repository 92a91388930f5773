// SPDX-License-Identifier: MIT
#include "frame/treemodel.h"

namespace Vela {

TreeModel::TreeModel(QObject *parent)
    : ItemModel(parent)
{
}

TreeModel::~TreeModel() = default;

void TreeModel::beginRelayout()
{
    Q_EMIT layoutAboutToBeChanged();
    m_persistent = persistentIndexList();
    m_nodes.clear();
    for (const QModelIndex &index : qAsConst(m_persistent))
        m_nodes.append(index.internalPointer());
}

void TreeModel::endRelayout()
{
    QModelIndexList present;
    for (int i = 0; i < m_persistent.size(); ++i)
        present.append(nodeIndex(m_nodes.at(i), m_persistent.at(i).column()));
    changePersistentIndexList(m_persistent, present);
    m_persistent.clear();
    m_nodes.clear();
    Q_EMIT layoutChanged();
}

QModelIndex TreeModel::nodeIndex(void *, int) const
{
    return QModelIndex();
}

} // namespace Vela
