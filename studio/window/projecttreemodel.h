// SPDX-License-Identifier: MIT
#pragma once

#include <QIdentityProxyModel>

namespace Vela {
class ParentProject;
}

namespace Studio {

class OpenFiles;

/// The tree of a parent project with marks: modified files are bold and have a dot behind their
/// name, projects that are shown but not open are in italics. Files that stand in no folder of the
/// project, such as new ones, come behind all others.
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

    /// Returns whether a row is that of a file in no folder of the project.
    bool isLoose(const QModelIndex &index) const;

    QModelIndex mapToSource(const QModelIndex &index) const override;
    QModelIndex index(int row, int column,
                      const QModelIndex &parent = QModelIndex()) const override;
    QModelIndex parent(const QModelIndex &child) const override;
    QModelIndex sibling(int row, int column, const QModelIndex &index) const override;
    int rowCount(const QModelIndex &parent = QModelIndex()) const override;
    bool hasChildren(const QModelIndex &parent = QModelIndex()) const override;
    Qt::ItemFlags flags(const QModelIndex &index) const override;
    QVariant data(const QModelIndex &index, int role = Qt::DisplayRole) const override;

private:
    void markChanged(const QStringList &paths);
    void takeLooseFiles();
    QVariant plainData(const QModelIndex &index, int role) const;

    const OpenFiles &m_files;
    Vela::ParentProject *m_parent = nullptr;
    QStringList m_loose; // the rows behind those of the parent project
};

} // namespace Studio
