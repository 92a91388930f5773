// SPDX-License-Identifier: MIT
#include "studio/window/projecttreemodel.h"

#include "project/parentproject.h"
#include "studio/session/projectcontents.h"
#include "studio/window/openfiles.h"

#include <QDir>
#include <QFont>

namespace Studio {

ProjectTreeModel::ProjectTreeModel(const OpenFiles &files, QObject *parent)
    : QIdentityProxyModel(parent)
    , m_files(files)
{
    connect(&files, &OpenFiles::modifiedChanged, this, &ProjectTreeModel::markChanged);
    connect(&files, &OpenFiles::filesChanged, this, &ProjectTreeModel::takeLooseFiles);
}

void ProjectTreeModel::setParentProject(Vela::ParentProject *parent)
{
    m_parent = parent;
    setSourceModel(parent);
}

QString ProjectTreeModel::path(const QModelIndex &index) const
{
    if (isLoose(index))
        return m_loose.value(index.row() - QIdentityProxyModel::rowCount());
    const Vela::ParentProject::Path *node =
        m_parent && index.isValid() ? m_parent->itemPath(mapToSource(index)) : nullptr;
    return node ? relativeToRoot(*m_parent, node->fullPath()) : QString();
}

QModelIndex ProjectTreeModel::indexOf(const QString &path) const
{
    const int loose = m_loose.indexOf(path);
    if (loose >= 0)
        return index(QIdentityProxyModel::rowCount() + loose, 0);
    QModelIndex found;
    const QStringList parts = path.split(QLatin1Char('/'), Qt::SkipEmptyParts);
    for (const QString &part : parts) {
        QModelIndex next;
        for (int row = 0; row < rowCount(found) && !next.isValid(); ++row) {
            const QModelIndex child = index(row, 0, found);
            if (plainData(child, Qt::DisplayRole).toString() == part)
                next = child;
        }
        if (!next.isValid())
            return next;
        found = next;
    }
    return found;
}

// Each row of the parent project points to its node.
bool ProjectTreeModel::isLoose(const QModelIndex &index) const
{
    return index.isValid() && !index.internalPointer();
}

QModelIndex ProjectTreeModel::mapToSource(const QModelIndex &index) const
{
    return isLoose(index) ? QModelIndex() : QIdentityProxyModel::mapToSource(index);
}

QModelIndex ProjectTreeModel::index(int row, int column, const QModelIndex &parent) const
{
    const bool loose = !parent.isValid() && column == 0 && row < rowCount()
        && row >= QIdentityProxyModel::rowCount();
    return loose ? createIndex(row, column, nullptr)
                 : QIdentityProxyModel::index(row, column, parent);
}

QModelIndex ProjectTreeModel::parent(const QModelIndex &child) const
{
    return isLoose(child) ? QModelIndex() : QIdentityProxyModel::parent(child);
}

QModelIndex ProjectTreeModel::sibling(int row, int column, const QModelIndex &index) const
{
    return this->index(row, column, parent(index));
}

int ProjectTreeModel::rowCount(const QModelIndex &parent) const
{
    if (isLoose(parent))
        return 0;
    return QIdentityProxyModel::rowCount(parent) + (parent.isValid() ? 0 : m_loose.size());
}

bool ProjectTreeModel::hasChildren(const QModelIndex &parent) const
{
    return rowCount(parent) > 0;
}

Qt::ItemFlags ProjectTreeModel::flags(const QModelIndex &index) const
{
    return isLoose(index) ? Qt::ItemIsSelectable | Qt::ItemIsEnabled | Qt::ItemNeverHasChildren
                          : QIdentityProxyModel::flags(index);
}

void ProjectTreeModel::takeLooseFiles()
{
    const QStringList now = m_files.loose();
    if (now == m_loose)
        return;
    const int first = QIdentityProxyModel::rowCount();
    if (!m_loose.isEmpty()) {
        beginRemoveRows(QModelIndex(), first, first + m_loose.size() - 1);
        m_loose.clear();
        endRemoveRows();
    }
    if (!now.isEmpty()) {
        beginInsertRows(QModelIndex(), first, first + now.size() - 1);
        m_loose = now;
        endInsertRows();
    }
}

QVariant ProjectTreeModel::plainData(const QModelIndex &index, int role) const
{
    if (!isLoose(index))
        return QIdentityProxyModel::data(index, role);
    const bool isText = role == Qt::DisplayRole || role == Qt::AccessibleTextRole;
    return isText ? QVariant(path(index).section(QLatin1Char('/'), -1)) : QVariant();
}

QVariant ProjectTreeModel::data(const QModelIndex &index, int role) const
{
    const QVariant plain = plainData(index, role);
    if (role == Qt::ToolTipRole)
        return QDir::toNativeSeparators(path(index));
    if (role != Qt::DisplayRole && role != Qt::FontRole && role != Qt::AccessibleTextRole)
        return plain;

    const QString name = path(index);
    const bool modified = m_files.isModified(name);
    const bool closed = m_files.isClosedProject(name);
    if (role == Qt::FontRole && (modified || closed)) {
        QFont font;
        font.setBold(modified);
        font.setItalic(closed);
        return font;
    }
    const QString text = plainData(index, Qt::DisplayRole).toString();
    if (role == Qt::DisplayRole && modified)
        return QString(text + QStringLiteral(" \u25CF"));
    if (role == Qt::AccessibleTextRole && (modified || closed))
        return modified ? tr("%1, modified").arg(text) : tr("%1, closed project").arg(text);
    return plain;
}

void ProjectTreeModel::markChanged(const QStringList &paths)
{
    for (const QString &path : paths) {
        const QModelIndex index = indexOf(path);
        if (index.isValid())
            Q_EMIT dataChanged(index, index, {Qt::DisplayRole, Qt::FontRole});
    }
}

} // namespace Studio
