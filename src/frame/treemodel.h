// SPDX-License-Identifier: MIT
#pragma once

#include "frame/itemmodel.h"

#include <QList>

namespace Vela {

/// The base of models over a tree of nodes, whose indexes carry the node as internal pointer.
///
/// It keeps the persistent indexes of views over a change that moves nodes: beginRelayout() notes
/// each index and its node, endRelayout() asks the subclass where those nodes stand now.
class VELA_EXPORT TreeModel : public ItemModel
{
    Q_OBJECT

public:
    explicit TreeModel(QObject *parent = nullptr);
    ~TreeModel() override;

protected:
    void beginRelayout();
    void endRelayout();
    /// Returns the present index of a node in \a column, or an invalid one for a node that is gone,
    /// which must not be dereferenced. The base knows no nodes and returns an invalid index.
    virtual QModelIndex nodeIndex(void *node, int column) const;

private:
    QModelIndexList m_persistent;
    QList<void *> m_nodes;
};

} // namespace Vela
