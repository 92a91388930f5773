// SPDX-License-Identifier: MIT
#pragma once

#include "project/parentproject.h"

#include <QHash>
#include <QStringList>
#include <QVector>

namespace Vela {

class DirectoryPath;

/// Joins a folder and a name below it with one "/". An empty folder gives the name alone.
QString joinPath(const QString &folder, const QString &name);
/// Returns \a folder without a "/" at its end.
QString withoutSlash(const QString &folder);
/// Returns what stands behind \a folder and "/" in \a path; empty for a path outside the folder.
QString pathBelow(const QString &folder, const QString &path);
/// Returns the parts of a path between its slashes, without those that lead nowhere.
QStringList pathParts(const QString &path);
/// Returns whether a relative path, as content or an archive gives it, stays below its folder.
bool staysBelow(const QString &relative);

/// A node of the tree. A folder owns its children; a node knows its row there.
class BasePath : public ParentProject::Path
{
public:
    explicit BasePath(const QString &name);
    /// Deletes all nodes beneath without recursion: their depth comes from file names in content.
    ~BasePath() override;

    QString fullPath() const override;
    QString name() const override;
    bool isFolder() const override;
    bool isProjectRoot() const override;
    bool isFile() const override;
    int childIndex(const ParentProject::Path *child) const override;
    ParentProject::Path *childAt(int index) const override;
    int childCount() const override;

    DirectoryPath *folder() const;
    int row() const;
    const QVector<BasePath *> &nodes() const;
    /// Returns whether this is \a other or lies beneath it.
    bool isWithin(const BasePath *other) const;

protected:
    void setName(const QString &name);

private:
    friend class DirectoryPath;

    DirectoryPath *m_folder = nullptr;
    int m_row = 0;
    QString m_name;
    QVector<BasePath *> m_nodes;
};

/// A file of a project, with its type.
class FilePath : public BasePath
{
public:
    FilePath(const QString &name, int type);

    bool isProjectRoot() const override;
    bool isFile() const override;

    int type() const;
    void setType(int type);

private:
    int m_type;
};

/// A node without a name of its own: the project inside a folder that is not open.
class DummyPath : public BasePath
{
public:
    DummyPath();

    QString fullPath() const override;
    QString name() const override;
    bool isProjectRoot() const override;
};

/// A folder. It finds its folders and files by name.
class DirectoryPath : public BasePath
{
public:
    explicit DirectoryPath(const QString &name);

    bool isFolder() const override;
    bool isProjectRoot() const override;

    ParentProject::PathType pathType() const;
    void setPathType(ParentProject::PathType type);
    /// The names of a closed project's files, as the engine gave them.
    QStringList files() const;
    void setFiles(const QStringList &files);

    DirectoryPath *findFolder(const QString &name) const;
    FilePath *findFile(const QString &name) const;
    /// Returns the node of a relative path; a path that ends with "/" is a folder's. May be null.
    BasePath *find(const QString &path);

    /// Adds a node behind the others and takes it over.
    void append(BasePath *node);
    /// Gives rows up to the caller.
    QVector<BasePath *> take(int first, int last);
    /// Gives the nodes up that have no counterpart in \a other.
    QVector<BasePath *> takeMissing(const DirectoryPath &other);
    /// Returns the child of the kind and name of \a node, or null.
    BasePath *counterpart(const BasePath *node) const;
    /// Adds the nodes of a relative file path as far as they are missing.
    void addFile(const QString &path, int type);
    /// Adds the folders of a relative path as far as they are missing; returns the last one.
    DirectoryPath *addFolders(const QStringList &parts);

private:
    void detach(BasePath *node);
    void number(int first);

    ParentProject::PathType m_type;
    QStringList m_files;
    QHash<QString, DirectoryPath *> m_folders;
    QHash<QString, FilePath *> m_fileNodes;
};

} // namespace Vela
