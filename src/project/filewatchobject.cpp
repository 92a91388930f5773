// SPDX-License-Identifier: MIT
#include "project/filewatchobject.h"

#include "frame/filesystemarchive.h"
#include "project/filewatchermanager_p.h"

namespace Vela {

namespace {

FileWatcherManager *manager = nullptr;
int objectCount = 0;

/// Returns what to watch: a document that has moved to another archive leaves its old file.
QString diskPath(const Archive &archive, const QString &path)
{
    return &archive == &FileSystemArchive::instance() ? path : QString();
}

} // namespace

FileWatchObject::FileWatchObject()
{
    if (objectCount++ == 0)
        manager = new FileWatcherManager;
}

FileWatchObject::~FileWatchObject()
{
    manager->unwatch(this);
    if (--objectCount == 0) {
        delete manager;
        manager = nullptr;
    }
}

void FileWatchObject::pauseWatch(bool pause)
{
    m_ignoreChange = pause;
    if (!pause)
        m_known = FileWatcherManager::stateOf(watchedFileName());
}

void FileWatchObject::fileLoaded(Archive &archive, const QString &path, bool copy)
{
    if (!copy)
        manager->watch(this, diskPath(archive, path));
}

void FileWatchObject::fileSaved(Archive &archive, const QString &path, bool copy)
{
    if (copy)
        return;
    const QString watched = diskPath(archive, path);
    manager->watch(this, watched);
    if (!watched.isEmpty())
        m_ignoreChange = true;
}

} // namespace Vela
