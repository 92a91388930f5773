// SPDX-License-Identifier: MIT
#pragma once

#include "frame/treemodel.h"

#include <QIcon>
#include <QMap>
#include <memory>

class QProcess;

namespace Vela {

class Archive;
class Engine;
class JobStats;
class ParentProjectPrivate;
class ProgressProvider;
class Project;
class ProjectFile;

/// The opened work unit: a root folder on an archive, the projects opened in it, and the tree of
/// their paths as an item model. Main thread only.
///
/// The projects are released before the parent project is deleted. One that is still open then
/// lives on without a parent.
class VELA_EXPORT ParentProject : public TreeModel
{
    Q_OBJECT

public:
    /// One node of the tree. Nodes belong to the parent project and stay until their project is
    /// closed.
    class VELA_EXPORT Path
    {
    public:
        virtual ~Path();
        /// Returns the parent's full path and the own name; a folder ends with "/".
        virtual QString fullPath() const = 0;
        virtual QString name() const = 0;
        virtual bool isFolder() const = 0;
        virtual bool isProjectRoot() const = 0;
        virtual bool isFile() const = 0;
        /// Returns the place of a child, or -1.
        virtual int childIndex(const Path *child) const = 0;
        /// Returns null past the end.
        virtual Path *childAt(int index) const = 0;
        virtual int childCount() const = 0;

    protected:
        Path() = default;
        Q_DISABLE_COPY(Path)
    };

    enum PathFlag {
        ProjectRoot = 1,     ///< the folder is the root of a project
        ChildProjectRoot = 2 ///< the unnamed node inside the folder is one
    };
    Q_DECLARE_FLAGS(PathType, PathFlag)

    ~ParentProject() override;

    QModelIndex index(int row, int column,
                      const QModelIndex &parent = QModelIndex()) const override;
    QModelIndex parent(const QModelIndex &child) const override;
    int rowCount(const QModelIndex &parent = QModelIndex()) const override;
    int columnCount(const QModelIndex &parent = QModelIndex()) const override;
    QVariant data(const QModelIndex &index, int role = Qt::DisplayRole) const override;
    QVariant headerData(int section, Qt::Orientation orientation,
                        int role = Qt::DisplayRole) const override;

    virtual Engine *engine() const = 0;
    /// Returns the name, relative to the root, of the file that marks a whole game.
    virtual QString gameFile() const = 0;
    /// Returns what a process of the engine has printed, as text.
    virtual QString outputString(QProcess *process) const;
    /// Returns the engine's own icon for a file type; an empty icon leaves it to the host.
    virtual QIcon fileIcon(int type) const;
    /// Appends the files, relative to the root, of a project that is not open. \a path is the
    /// project's root relative to the parent's.
    virtual void closedProjectFiles(const QString &path, QStringList &files) const = 0;
    /// Called when the last project has gone.
    virtual void lastProjectClosed() = 0;

    /// Returns the opened projects, in the order in which all operations here go through them.
    QList<Project *> openedProjects() const;
    int refCount() const;
    /// Returns the root folder as given, or as saveAs() changed it.
    QString basePath() const;
    Archive &archive() const;
    /// Returns whether the root holds the file that marks a whole game; it decides the form of
    /// saveAs().
    bool isGame() const;

    /// Returns the node of a path relative to the root, or null.
    const Path *filePath(const QString &path) const;
    /// Returns the node of an index of this model; the root for an invalid index.
    const Path *itemPath(const QModelIndex &index) const;
    /// Returns the first project root from the node upwards, else the first one among the opened
    /// projects, else null.
    const Path *projectForFile(const Path *path) const;

    /// Saves every modified file in place. One that cannot be written there goes to the host, which
    /// may save it under another name. A failure shows with the file itself.
    void save(ProgressProvider *provider);
    /// Saves everything to a new place on disk and works there from then on. \a path is the main
    /// file's new name for a single project outside a game, otherwise the new root folder.
    void saveAs(const QString &path, JobStats *job);
    /// Writes a dated backup of the opened projects in the folder "backup/" of the root, packed if
    /// an extension can. Returns false if the job was cancelled or the target is read-only.
    bool backup(const QString &name, JobStats *job);
    /// Copies a backup, named as it stands in "backup/" without its extension, over the root and
    /// reads all files again. Returns false, with nothing changed, for a read-only archive and for
    /// a backup that is not there.
    bool restoreBackup(const QString &name, JobStats *job);

Q_SIGNALS:
    void fileAdded(Vela::ProjectFile *file);
    void fileOpened(Vela::ProjectFile *file);
    void fileSaved(Vela::ProjectFile *file);
    void fileClosed(Vela::ProjectFile *file);

protected:
    /// \a path is the absolute root folder on \a archive, which must outlive the object.
    ParentProject(const QString &path, Archive &archive);

    /// Adds the folders of a path relative to the root, as far as they are missing. The last one
    /// takes the type and, for a closed project, the names of its files. Returns it.
    Path *addPath(const QString &path, PathType type, const QStringList &files);
    /// Removes a node with all beneath, apart from what opened projects need.
    void removePath(const QString &path);
    /// Enters a project; Project::release() takes it out again.
    void addRef(Project *project);

private:
    friend class Project;
    friend class ParentProjectPrivate;

    /// Takes a released project out of the tree and the list.
    void removeRef(Project *project);

    std::unique_ptr<ParentProjectPrivate> d;
};

Q_DECLARE_OPERATORS_FOR_FLAGS(ParentProject::PathType)

} // namespace Vela
