// SPDX-License-Identifier: MIT
#pragma once

#include <QDateTime>
#include <QFileSystemWatcher>
#include <QList>
#include <QMap>
#include <QObject>
#include <QPair>

namespace Vela {

class FileWatchObject;

/// Watches the paths of all FileWatchObjects and offers to reload them. There is one while there
/// are objects; it sees them only.
class FileWatcherManager : public QObject
{
    Q_OBJECT

public:
    FileWatcherManager();

    /// Returns what tells two states of a file apart: when it changed last, and its size.
    static QPair<QDateTime, qint64> stateOf(const QString &path);

    /// Moves an object to \a path; an empty path is not watched.
    void watch(FileWatchObject *object, const QString &path);
    /// Takes an object out of the watch; does nothing for one that is not in it.
    void unwatch(FileWatchObject *object);

private:
    struct Entry
    {
        QList<FileWatchObject *> objects;
        bool asking = false;
        bool listed = false; ///< whether the watcher has the path, as far as it has told
    };

    bool isWatched(FileWatchObject *object, const QString &path) const;
    void list(const QString &path, Entry &entry);
    void fileChanged(const QString &path);
    bool isHandled(const QString &path, const Entry &entry) const;
    void offerReload(const QString &path, const QList<FileWatchObject *> &objects);

    QFileSystemWatcher m_watcher;
    QMap<QString, Entry> m_entries;
};

} // namespace Vela
