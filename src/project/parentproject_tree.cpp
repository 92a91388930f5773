// SPDX-License-Identifier: MIT
#include "frame/archive.h"
#include "frame/interface.h"
#include "project/parentproject_p.h"
#include "project/project.h"

#include <QFileInfo>
#include <algorithm>
#include <memory>

namespace Vela {

namespace {

const char *iconName(int type)
{
    switch (type) {
    case Project::Sprites:
        return "icon_sprite";
    case Project::Sounds:
        return "icon_sound";
    case Project::Animations:
        return "icon_animation";
    case Project::Main:
    case Project::Scripts:
        return "icon_code";
    default:
        return "icon_file";
    }
}

} // namespace

ParentProjectPrivate::ParentProjectPrivate(ParentProject *parentProject, const QString &root,
                                           Archive &store)
    : DirectoryPath(root)
    , owner(parentProject)
    , archive(&store)
{
}

QString ParentProjectPrivate::root() const
{
    return name();
}

void ParentProjectPrivate::setRoot(const QString &root)
{
    setName(root);
}

QString ParentProjectPrivate::rootPath(const QString &relative) const
{
    return joinPath(root(), relative);
}

BasePath *ParentProjectPrivate::nodeAt(const QModelIndex &index) const
{
    if (index.isValid())
        return static_cast<BasePath *>(index.internalPointer());
    return const_cast<ParentProjectPrivate *>(this);
}

QModelIndex ParentProjectPrivate::indexOf(const BasePath *node) const
{
    if (node == this)
        return QModelIndex();
    return owner->createIndex(node->row(), 0, const_cast<BasePath *>(node));
}

QVariant ParentProjectPrivate::icon(const BasePath *node) const
{
    const Interface *const host = Interface::instance();
    if (!host)
        return QVariant();
    if (!node->isFile())
        return host->icon(QStringLiteral("icon_folder"));
    const int type = static_cast<const FilePath *>(node)->type();
    const QIcon own = owner->fileIcon(type);
    return own.isNull() ? host->icon(QLatin1String(iconName(type))) : own;
}

DirectoryPath *ParentProjectPrivate::place(const Project *project)
{
    const QString folder = withoutSlash(project->absolutePath());
    const QString top = withoutSlash(root());
    if (folder == top)
        return this;
    QString relative = pathBelow(top, folder);
    if (relative.isEmpty())
        relative = archive->relativePath(folder, &project->archive(), top);
    return addFolder(relative, ParentProject::ProjectRoot, QStringList());
}

DirectoryPath *ParentProjectPrivate::addFolder(const QString &path, ParentProject::PathType type,
                                               const QStringList &files)
{
    const QStringList parts = pathParts(path);
    DirectoryPath chain((QString()));
    chain.addFolders(parts);
    merge(this, &chain);

    DirectoryPath *const node = addFolders(parts);
    if (node == this)
        return node;
    const ParentProject::PathType hadType = node->pathType();
    node->setPathType(hadType | type);
    if (!files.isEmpty())
        node->setFiles(files);
    if (!(hadType & ParentProject::ChildProjectRoot) && (type & ParentProject::ChildProjectRoot))
        insertRows(node, {new DummyPath});
    return node;
}

void ParentProjectPrivate::rebuild(Project *project)
{
    QList<Project::Dependency> entries;
    project->dependencies(entries);
    entries.append({Project::Main, QFileInfo(project->fileName()).fileName()});
    std::sort(entries.begin(), entries.end());

    DirectoryPath plain((QString()));
    for (const Project::Dependency &entry : qAsConst(entries))
        plain.addFile(entry.second, entry.first);
    merge(projects.value(project), &plain);
}

void ParentProjectPrivate::merge(DirectoryPath *target, DirectoryPath *source)
{
    QVector<QPair<DirectoryPath *, DirectoryPath *>> pending = {{target, source}};
    while (!pending.isEmpty()) {
        const auto [present, wanted] = pending.takeLast();
        insertRows(present, wanted->takeMissing(*present));
        for (BasePath *node : wanted->nodes()) {
            BasePath *const known = present->counterpart(node);
            if (node->isFolder())
                pending.append(qMakePair(static_cast<DirectoryPath *>(known),
                                         static_cast<DirectoryPath *>(node)));
            else
                setType(static_cast<FilePath *>(known), static_cast<FilePath *>(node)->type());
        }
    }
}

void ParentProjectPrivate::setType(FilePath *file, int type)
{
    if (file->type() == type)
        return;
    file->setType(type);
    const QModelIndex index = indexOf(file);
    Q_EMIT owner->dataChanged(index, index, {Qt::DecorationRole});
}

void ParentProjectPrivate::insertRows(DirectoryPath *folder, const QVector<BasePath *> &nodes)
{
    if (nodes.isEmpty())
        return;
    const int first = folder->childCount();
    owner->beginInsertRows(indexOf(folder), first, first + nodes.size() - 1);
    for (BasePath *node : nodes)
        folder->append(node);
    owner->endInsertRows();
}

void ParentProjectPrivate::removeRows(DirectoryPath *folder, int first, int last)
{
    if (first > last)
        return;
    owner->beginRemoveRows(indexOf(folder), first, last);
    const QVector<BasePath *> taken = folder->take(first, last);
    owner->endRemoveRows();
    qDeleteAll(taken);
}

void ParentProjectPrivate::removeBranch(BasePath *node)
{
    bool isNeeded = node == this;
    QList<Project *> overlapping;
    for (auto it = projects.cbegin(); it != projects.cend(); ++it) {
        isNeeded = isNeeded || it.value()->isWithin(node);
        if (node->isWithin(it.value()))
            overlapping.append(it.key());
    }
    if (isNeeded)
        removeAllButPlaces(static_cast<DirectoryPath *>(node));
    else
        removeRows(node->folder(), node->row(), node->row());
    for (Project *project : qAsConst(overlapping))
        rebuild(project);
}

/// Returns whether a folder is the place of a project, opened or closed.
bool ParentProjectPrivate::isPlace(const BasePath *node) const
{
    return node->isFolder() && static_cast<const DirectoryPath *>(node)->pathType();
}

/// Returns all nodes on the ways from \a top down to the places of projects.
QSet<const BasePath *> ParentProjectPrivate::pathsToPlaces(const BasePath *top) const
{
    QSet<const BasePath *> paths;
    QVector<BasePath *> pending = top->nodes();
    while (!pending.isEmpty()) {
        const BasePath *const node = pending.takeLast();
        pending += node->nodes();
        if (isPlace(node)) {
            for (const BasePath *step = node; step != top && !paths.contains(step);
                 step = step->folder())
                paths.insert(step);
        }
    }
    return paths;
}

void ParentProjectPrivate::removeAllButPlaces(DirectoryPath *top)
{
    const QSet<const BasePath *> kept = pathsToPlaces(top);
    if (top != this && !projects.values().contains(top))
        top->setPathType({});
    QVector<DirectoryPath *> pending = {top};
    while (!pending.isEmpty()) {
        DirectoryPath *const folder = pending.takeLast();
        for (int last = folder->childCount() - 1; last >= 0; --last) {
            BasePath *const node = folder->nodes().at(last);
            if (kept.contains(node)) {
                if (!isPlace(node))
                    pending.append(static_cast<DirectoryPath *>(node));
                continue;
            }
            int first = last;
            while (first > 0 && !kept.contains(folder->nodes().at(first - 1)))
                --first;
            removeRows(folder, first, last);
            last = first;
        }
    }
}

} // namespace Vela
