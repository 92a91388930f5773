// SPDX-License-Identifier: MIT
#pragma once

#include <QCoreApplication>
#include <QDateTime>
#include <QList>
#include <QString>
#include <QStringList>

namespace Vela {
class ParentProject;
}

namespace Studio {

/// A temporary file that a save left behind when it was interrupted.
struct InterruptedSave
{
    QString target;    ///< the file that was being written; absolute
    QString temporary; ///< what had been written of its new content; absolute
    bool targetExists = false;
    bool differs = true; ///< false where both hold the same bytes
    qint64 targetSize = 0;
    qint64 temporarySize = 0;
    QDateTime targetTime;
    QDateTime temporaryTime;
};

/// Where interrupted saves are looked for.
struct RecoverySearch
{
    QStringList files;    ///< the files of the project, absolute
    QStringList folders;  ///< the folders to look into, absolute; not what is below them
    QStringList patterns; ///< the engine's patterns of file names, such as "*.png"
    QStringList held;     ///< absolute names that are never taken
};

/// Finds what interrupted saves left beside the files of a project on disk, and puts it back or
/// clears it away. The disk as an archive writes over a file by way of a temporary one named after
/// it with six letters or digits behind.
class Recovery
{
    Q_DECLARE_TR_FUNCTIONS(Recovery)

public:
    /// Returns where to look for a project: beside the files that it names, and in the folders of
    /// its projects and those directly below them. What this process has open itself is held.
    static RecoverySearch searchFor(const Vela::ParentProject &parent);
    /// Returns what there is, by name. The target of an interrupted save is a file of the project;
    /// or it is gone, because the save ended between the removal of the old file and the renaming
    /// of the new one, and then its name fits a pattern: a project need not name a file that it no
    /// longer finds. A file of the project is never taken for a temporary one.
    static QList<InterruptedSave> find(const RecoverySearch &search);

    /// Gives the target the content of the temporary file. Other content that the target has now
    /// stays beside it under the name of \a kept, which is empty where there was nothing to keep.
    /// Returns false, with the reason in \a error and both contents still there, on failure.
    static bool recover(const InterruptedSave &save, QString *kept, QString *error);
    /// Returns \a name, or where there is such a file already the same with a number behind.
    static QString freeName(const QString &name);
    /// Removes the temporary file. Returns false, with the reason in \a error, on failure.
    static bool discard(const InterruptedSave &save, QString *error);
};

} // namespace Studio
