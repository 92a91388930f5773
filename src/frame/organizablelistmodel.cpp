// SPDX-License-Identifier: MIT
#include "frame/organizablelistmodel.h"

#include <QCoreApplication>
#include <QDataStream>
#include <QMimeData>
#include <QScopedValueRollback>
#include <QVector>
#include <algorithm>

namespace Vela {

namespace {

QString rowsFormat()
{
    return QStringLiteral("application/x-vela-rows");
}

} // namespace

OrganizableListModel::OrganizableListModel(QObject *parent)
    : QAbstractListModel(parent)
{
}

OrganizableListModel::~OrganizableListModel() = default;

Qt::ItemFlags OrganizableListModel::flags(const QModelIndex &index) const
{
    if (!index.isValid())
        return Qt::ItemIsDropEnabled;
    return Qt::ItemIsSelectable | Qt::ItemIsEnabled | Qt::ItemIsDragEnabled;
}

Qt::DropActions OrganizableListModel::supportedDropActions() const
{
    return Qt::MoveAction;
}

// Qt's own format does not say which model the rows are of.
QMimeData *OrganizableListModel::mimeData(const QModelIndexList &indexes) const
{
    QMimeData *const data = QAbstractListModel::mimeData(indexes);
    if (!data)
        return nullptr;
    QVector<int> rows;
    for (const QModelIndex &index : indexes)
        rows.append(index.row());
    QByteArray bytes;
    QDataStream stream(&bytes, QIODevice::WriteOnly);
    stream << QCoreApplication::applicationPid() << quint64(quintptr(this)) << rows;
    data->setData(rowsFormat(), bytes);
    return data;
}

/// Returns the rows of a drag that began here, in their order, without those that are gone since.
QVector<int> OrganizableListModel::draggedRows(const QMimeData *data) const
{
    QDataStream stream(data->data(rowsFormat()));
    qint64 process = 0;
    quint64 model = 0;
    stream >> process >> model;
    if (stream.status() != QDataStream::Ok || process != QCoreApplication::applicationPid()
        || model != quintptr(this))
        return {};
    QVector<int> rows;
    stream >> rows;
    std::sort(rows.begin(), rows.end());
    rows.erase(std::unique(rows.begin(), rows.end()), rows.end());
    const int count = rowCount();
    const auto isGone = [count](int row) { return row < 0 || row >= count; };
    rows.erase(std::remove_if(rows.begin(), rows.end(), isGone), rows.end());
    return rows;
}

bool OrganizableListModel::dropMimeData(const QMimeData *data, Qt::DropAction action, int row, int,
                                        const QModelIndex &parent)
{
    if (!data || action != Qt::MoveAction || parent.isValid())
        return false;
    const QVector<int> rows = draggedRows(data);
    if (rows.isEmpty())
        return false;

    const QScopedValueRollback<bool> moving(m_moveFromDrag, true);
    const int target = row < 0 ? rowCount() : qMin(row, rowCount());
    // Outwards from the target, so that no move shifts a row that is still to come.
    const auto below = std::lower_bound(rows.begin(), rows.end(), target);
    int to = target;
    for (auto from = below; from != rows.begin();)
        moveRowTo(*--from, --to);
    to = target;
    for (auto from = below; from != rows.end(); ++from)
        moveRowTo(*from, to++);
    return true;
}

void OrganizableListModel::moveRowTo(int from, int to)
{
    if (from != to)
        moveItem(unsigned(from), unsigned(to));
}

bool OrganizableListModel::isMoveFromDrag() const
{
    return m_moveFromDrag;
}

} // namespace Vela
