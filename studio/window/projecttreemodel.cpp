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
}

void ProjectTreeModel::setParentProject(Vela::ParentProject *parent)
{
    m_parent = parent;
    setSourceModel(parent);
}

QString ProjectTreeModel::path(const QModelIndex &index) const
{
    const Vela::ParentProject::Path *node =
        m_parent && index.isValid() ? m_parent->itemPath(mapToSource(index)) : nullptr;
    return node ? relativeToRoot(*m_parent, node->fullPath()) : QString();
}

QModelIndex ProjectTreeModel::indexOf(const QString &path) const
{
    QModelIndex found;
    const QStringList parts = path.split(QLatin1Char('/'), Qt::SkipEmptyParts);
    for (const QString &part : parts) {
        QModelIndex next;
        for (int row = 0; row < rowCount(found) && !next.isValid(); ++row) {
            const QModelIndex child = index(row, 0, found);
            if (QIdentityProxyModel::data(child).toString() == part)
                next = child;
        }
        if (!next.isValid())
            return next;
        found = next;
    }
    return found;
}

QVariant ProjectTreeModel::data(const QModelIndex &index, int role) const
{
    const QVariant plain = QIdentityProxyModel::data(index, role);
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
    const QString text = QIdentityProxyModel::data(index).toString();
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
