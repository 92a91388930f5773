// SPDX-License-Identifier: MIT
#pragma once

#include "project/projectpath_p.h"

#include <QObject>
#include <QSet>

namespace Vela {

/// The data of a ParentProject, and the root of its tree.
class ParentProjectPrivate : public QObject, public DirectoryPath
{
public:
    ParentProjectPrivate(ParentProject *owner, const QString &root, Archive &archive);

    QString root() const;
    void setRoot(const QString &root);
    /// Returns the absolute name of a path relative to the root.
    QString rootPath(const QString &relative) const;

    BasePath *nodeAt(const QModelIndex &index) const;
    QModelIndex indexOf(const BasePath *node) const;
    QVariant icon(const BasePath *node) const;

    /// Returns the node for a project's folder, made where it is missing.
    DirectoryPath *place(const Project *project);
    DirectoryPath *addFolder(const QString &path, ParentProject::PathType type,
                             const QStringList &files);
    /// Adds the nodes of a project's files as far as they are missing.
    void rebuild(Project *project);
    /// Moves the nodes of a tree that are missing beneath \a target over; views follow.
    void merge(DirectoryPath *target, DirectoryPath *source);
    /// Removes a node and all beneath, but for the root and what opened projects need.
    void removeBranch(BasePath *node);
    void insertRows(DirectoryPath *folder, const QVector<BasePath *> &nodes);
    void removeRows(DirectoryPath *folder, int first, int last);

    /// Returns whether a project root belongs to an opened project.
    bool isOpened(const BasePath *node, const QSet<QString> &mainFiles) const;
    /// Returns the files of all projects in the tree that are not open, relative to the root.
    QStringList closedFiles() const;
    void saveSingleAs(Project *project, const QString &path);
    void saveAllAs(const QString &path, JobStats *job);
    void saveProjectAs(Project *project, const QString &newRoot);
    QString backupName(const QString &name) const;
    void restoreFrom(Archive &source, const QString &folder, JobStats *job);

    ParentProject *const owner;
    Archive *archive;
    int refCount = 0;
    QMap<Project *, DirectoryPath *> projects;

private:
    void setType(FilePath *file, int type);
    bool isPlace(const BasePath *node) const;
    QSet<const BasePath *> pathsToPlaces(const BasePath *top) const;
    void removeAllButPlaces(DirectoryPath *top);
};

} // namespace Vela
