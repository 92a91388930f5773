// SPDX-License-Identifier: MIT
#include "project/filewatchermanager_p.h"

#include "frame/interface.h"
#include "project/filewatchobject.h"

#include <QDebug>
#include <QFileInfo>
#include <QPointer>

namespace Vela {

FileWatcherManager::FileWatcherManager()
{
    // Queued, because a change can end the life of the last object, and with it of this manager
    // and its watcher, which then must not be in the middle of a signal.
    connect(&m_watcher, &QFileSystemWatcher::fileChanged, this, &FileWatcherManager::fileChanged,
            Qt::QueuedConnection);
}

QPair<QDateTime, qint64> FileWatcherManager::stateOf(const QString &path)
{
    const QFileInfo file(path);
    return {file.metadataChangeTime(), file.size()};
}

void FileWatcherManager::watch(FileWatchObject *object, const QString &path)
{
    if (object->watchedFileName() == path && isWatched(object, path) && m_entries[path].listed)
        return;
    unwatch(object);
    if (path.isEmpty())
        return;
    object->m_entryPath = path;
    Entry &entry = m_entries[path];
    entry.objects.append(object);
    // The path of an entry that has objects is missing too, once its file has been removed.
    list(path, entry);
}

void FileWatcherManager::unwatch(FileWatchObject *object)
{
    const auto entry = m_entries.find(object->m_entryPath);
    object->m_entryPath.clear();
    if (entry == m_entries.end())
        return;
    entry->objects.removeOne(object);
    if (entry->objects.isEmpty()) {
        m_watcher.removePath(entry.key());
        m_entries.erase(entry);
    }
}

bool FileWatcherManager::isWatched(FileWatchObject *object, const QString &path) const
{
    const auto entry = m_entries.constFind(path);
    return entry != m_entries.constEnd() && entry->objects.contains(object);
}

// The watcher's own list is searched name by name, so it is not asked for every file.
void FileWatcherManager::list(const QString &path, Entry &entry)
{
    if (!entry.listed)
        entry.listed = m_watcher.addPath(path);
}

void FileWatcherManager::fileChanged(const QString &path)
{
    qDebug() << "File modified:" << path;
    const auto entry = m_entries.find(path);
    if (entry == m_entries.end())
        return;

    // A file that was replaced by renaming another one over it is no longer listed. This stands
    // in front of the question, so that a change during the question is seen as well.
    entry->listed = m_watcher.files().contains(path);
    list(path, *entry);
    if (!isHandled(path, *entry))
        return;

    const QPair<QDateTime, qint64> state = stateOf(path);
    QList<FileWatchObject *> toReload;
    for (FileWatchObject *const object : qAsConst(entry->objects)) {
        if (object->m_ignoreChange)
            object->m_ignoreChange = false;
        else if (object->m_known != state)
            toReload.append(object);
    }
    if (!toReload.isEmpty())
        offerReload(path, toReload);
}

bool FileWatcherManager::isHandled(const QString &path, const Entry &entry) const
{
    if (entry.asking || !QFileInfo::exists(path))
        return false;
    const Interface *const host = Interface::instance();
    return !host || host->option(QStringLiteral("enable_file_watcher"), QVariant()).toBool();
}

void FileWatcherManager::offerReload(const QString &path, const QList<FileWatchObject *> &objects)
{
    m_entries[path].asking = true;
    const QPointer<FileWatcherManager> alive(this);
    const bool reload = Interface::yesNoOption(
        tr("File modified"),
        tr("The file '%1' has been modified. Do you want to reload all other instances of this "
           "file now?")
            .arg(path),
        QStringLiteral("showmsg_reload_file"), 1, Interface::YesButton);

    // The question ran an event loop, and a reload runs code of the document: objects, the entry
    // and the manager itself may be gone behind each of them.
    for (FileWatchObject *const object : objects) {
        if (!alive)
            return;
        if (reload && isWatched(object, path))
            object->reload();
    }
    if (!alive)
        return;
    const auto entry = m_entries.find(path);
    if (entry != m_entries.end())
        entry->asking = false;
}

} // namespace Vela
