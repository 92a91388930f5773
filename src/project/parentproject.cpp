// SPDX-License-Identifier: MIT
#include "project/parentproject.h"

#include "frame/archive.h"
#include "project/parentproject_p.h"
#include "project/project.h"

#include <QProcess>

namespace Vela {

ParentProject::ParentProject(const QString &path, Archive &archive)
    : d(std::make_unique<ParentProjectPrivate>(this, path, archive))
{
}

ParentProject::~ParentProject() = default;

QModelIndex ParentProject::index(int row, int column, const QModelIndex &parent) const
{
    if (!hasIndex(row, column, parent))
        return QModelIndex();
    return createIndex(row, column, d->nodeAt(parent)->nodes().at(row));
}

QModelIndex ParentProject::parent(const QModelIndex &child) const
{
    return child.isValid() ? d->indexOf(d->nodeAt(child)->folder()) : QModelIndex();
}

int ParentProject::rowCount(const QModelIndex &parent) const
{
    return parent.column() > 0 ? 0 : d->nodeAt(parent)->childCount();
}

int ParentProject::columnCount(const QModelIndex &) const
{
    return 1;
}

QVariant ParentProject::data(const QModelIndex &index, int role) const
{
    if (!index.isValid())
        return QVariant();
    switch (role) {
    case Qt::DisplayRole:
    case Qt::ToolTipRole:
        return d->nodeAt(index)->name();
    case Qt::DecorationRole:
        return d->icon(d->nodeAt(index));
    default:
        return QVariant();
    }
}

QVariant ParentProject::headerData(int, Qt::Orientation, int) const
{
    return QVariant();
}

QString ParentProject::outputString(QProcess *process) const
{
    return QString::fromLocal8Bit(process->readAllStandardOutput());
}

QIcon ParentProject::fileIcon(int) const
{
    return QIcon();
}

QList<Project *> ParentProject::openedProjects() const
{
    return d->projects.keys();
}

int ParentProject::refCount() const
{
    return d->refCount;
}

QString ParentProject::basePath() const
{
    return d->root();
}

Archive &ParentProject::archive() const
{
    return *d->archive;
}

bool ParentProject::isGame() const
{
    const QString name = gameFile();
    return !name.isEmpty() && d->archive->fileExists(d->rootPath(name));
}

const ParentProject::Path *ParentProject::filePath(const QString &path) const
{
    return d->find(path);
}

const ParentProject::Path *ParentProject::itemPath(const QModelIndex &index) const
{
    return d->nodeAt(index);
}

const ParentProject::Path *ParentProject::projectForFile(const Path *path) const
{
    for (auto node = static_cast<const BasePath *>(path); node; node = node->folder()) {
        if (node->isProjectRoot())
            return node;
    }
    for (const DirectoryPath *folder : qAsConst(d->projects)) {
        if (folder->isProjectRoot())
            return folder;
        // A project in the root folder is known by its main file.
        for (const BasePath *node : folder->nodes()) {
            if (node->isFile() && node->isProjectRoot())
                return node;
        }
    }
    return nullptr;
}

ParentProject::Path *ParentProject::addPath(const QString &path, PathType type,
                                            const QStringList &files)
{
    return d->addFolder(path, type, files);
}

void ParentProject::removePath(const QString &path)
{
    BasePath *const node = d->find(path);
    if (node && node != d.get())
        d->removeBranch(node);
}

void ParentProject::addRef(Project *project)
{
    ++d->refCount;
    d->projects.insert(project, d->place(project));
    d->rebuild(project);
    connect(project, &Project::fileHierarchyChanged, this,
            [this, project] { d->rebuild(project); });
}

void ParentProject::removeRef(Project *project)
{
    if (!d->projects.contains(project))
        return;
    disconnect(project, &Project::fileHierarchyChanged, this, nullptr);
    const QList<ProjectFile *> files = project->files();
    for (ProjectFile *file : files)
        Q_EMIT fileClosed(file);
    DirectoryPath *const node = d->projects.take(project);
    d->removeBranch(node);
    if (--d->refCount == 0)
        lastProjectClosed();
}

} // namespace Vela
