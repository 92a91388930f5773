// SPDX-License-Identifier: MIT
#pragma once

#include "frame/export.h"

#include <QDateTime>
#include <QPair>
#include <QString>

namespace Vela {

class Archive;
class FileWatcherManager;

/// The mix-in of documents that notice when another program, or another document of this one,
/// changes their file on disk. Main thread only.
class VELA_EXPORT FileWatchObject
{
public:
    FileWatchObject();
    virtual ~FileWatchObject();

    /// Returns the file that the document stands for now; empty for none.
    virtual QString watchedFileName() const = 0;
    /// Reads the document's file again.
    virtual void reload() = 0;
    /// While paused, the next change of the file is left out. At the end of a pause the document
    /// counts as one that knows its file as it then is: a change during the pause that only comes
    /// to notice afterwards is left out as well.
    virtual void pauseWatch(bool pause);

    /// A document calls this when it is read from \a path, before its own name changes. A \a copy
    /// leaves the watch as it is; a file of another archive than the disk is not watched.
    void fileLoaded(Archive &archive, const QString &path, bool copy);
    /// The same when it is written, once the file is open and before its content: the next change
    /// of the file is taken for the document's own and left out.
    void fileSaved(Archive &archive, const QString &path, bool copy);

private:
    Q_DISABLE_COPY(FileWatchObject)
    friend class FileWatcherManager;

    QString m_entryPath; ///< where the manager lists this object; empty if nowhere
    bool m_ignoreChange = false;
    QPair<QDateTime, qint64> m_known; ///< the state of the file at the end of a pause
};

} // namespace Vela
