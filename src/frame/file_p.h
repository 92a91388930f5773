// SPDX-License-Identifier: MIT
#pragma once

#include <QFile>

namespace Vela {

/// The device of FileSystemArchive. A file that exists is written through a temporary file beside
/// it: this object then bears the temporary file's name, and its destructor puts the new content
/// in the target's place. A file that is read, or is new, is opened as it is.
///
/// At each moment of a save the old or the new content is complete on the disk, under the target's
/// or under the temporary file's name. So the target is touched only when all of the new content
/// has reached the disk; a write that failed leaves the target alone and tells the user.
class File : public QFile
{
    Q_OBJECT

public:
    explicit File(const QString &path);
    /// Runs the replacement, which may ask the user and then block.
    ~File() override;

    bool open(OpenMode mode) override;
    void close() override;
    /// Drops what was written; the destructor then replaces nothing.
    void discard();
    /// Has the destructor write down whether the content is in its place, where it is not.
    void reportTo(bool *isInPlace);

protected:
    qint64 writeData(const char *data, qint64 size) override;

private:
    bool isReplacement() const;
    bool openReplacement(OpenMode mode);
    void bringToDisk();
    bool replaceTarget();
    bool retry(bool (File::*step)(), const QString &title, const QString &question);
    bool removeTarget();
    bool removeWritten();
    bool renameToTarget();
    void noteFailure(const QString &reason);
    void tellFailure(const QString &reason) const;

    QFile m_target;
    bool m_isNew = false; ///< whether this object created the target
    QString m_failure;    ///< why the content is not complete; empty as long as it is
    bool *m_isInPlace = nullptr;
};

} // namespace Vela
