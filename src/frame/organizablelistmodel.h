// SPDX-License-Identifier: MIT
#pragma once

#include "frame/export.h"

#include <QAbstractListModel>

namespace Vela {

/// A list whose rows are put in another order by dragging them.
class VELA_EXPORT OrganizableListModel : public QAbstractListModel
{
    Q_OBJECT

public:
    explicit OrganizableListModel(QObject *parent = nullptr);
    ~OrganizableListModel() override;

    Qt::DropActions supportedDropActions() const override;
    QMimeData *mimeData(const QModelIndexList &indexes) const override;
    /// Moves the dragged rows, in their order, in front of \a row; behind all others for -1. Takes
    /// only rows of this model. Returns whether it took the drop, though a view must not remove the
    /// rows behind it, as they have only moved.
    bool dropMimeData(const QMimeData *data, Qt::DropAction action, int row, int column,
                      const QModelIndex &parent) override;

    /// Returns whether a drop is moving rows, so that a subclass does not take the change for one
    /// from outside.
    bool isMoveFromDrag() const;

protected:
    Qt::ItemFlags flags(const QModelIndex &index) const override;
    /// Moves a row so that it stands at \a to.
    virtual void moveItem(unsigned int from, unsigned int to) = 0;

private:
    QVector<int> draggedRows(const QMimeData *data) const;
    void moveRowTo(int from, int to);

    bool m_moveFromDrag = false;
};

} // namespace Vela
