// SPDX-License-Identifier: MIT
#pragma once

#include <QIdentityProxyModel>

namespace Vela {
class ParentProject;
}

namespace Studio {

class OpenFiles;

/// The tree of a parent project with marks: modified files are bold and have a dot behind their
/// name, projects that are shown but not open are in italics.
class ProjectTreeModel : public QIdentityProxyModel
{
    Q_OBJECT

public:
    explicit ProjectTreeModel(const OpenFiles &files, QObject *parent = nullptr);

    void setParentProject(Vela::ParentProject *parent);

    /// Returns the path of a node relative to the root, without a trailing separator.
    QString path(const QModelIndex &index) const;
    /// Returns an invalid index for a path that the tree does not show.
    QModelIndex indexOf(const QString &path) const;

    QVariant data(const QModelIndex &index, int role = Qt::DisplayRole) const override;

private:
    void markChanged(const QStringList &paths);

    const OpenFiles &m_files;
    Vela::ParentProject *m_parent = nullptr;
};

} // namespace Studio
