// SPDX-License-Identifier: MIT
#pragma once

#include <QDateTime>
#include <QList>
#include <QString>

namespace Vela {
class ParentProject;
}

namespace Studio {

/// One backup of a parent project.
struct Backup
{
    QString name;  ///< as ParentProject::restoreBackup() takes it, without an extension
    QString label; ///< the part of the name that the user chose
    QDateTime time;
    qint64 size = 0; ///< in bytes; of a folder, what the files in it measure
    bool packed = false;
    QString path; ///< the file or folder itself
};

/// The backups that lie in one folder: those that ParentProject::backup() wrote, and whatever else
/// there is a folder or a zip file.
class Backups
{
public:
    /// Returns where \a parent keeps its backups, without a trailing separator.
    static QString folderOf(const Vela::ParentProject &parent);
    /// Returns whether \a label can stand in the name of a backup: not empty, no separator of
    /// folders, nothing that leads out of the folder, no control character.
    static bool isValidLabel(const QString &label);
    /// Returns the name that a backup made at \a time gets.
    static QString nameAt(const QDateTime &time, const QString &label);

    explicit Backups(const QString &folder);

    /// Returns the backups, the newest first; equal times go by name.
    QList<Backup> list() const;
    /// Returns the backups whose whole name or whose label is \a name.
    QList<Backup> find(const QString &name) const;

private:
    QString m_folder;
};

} // namespace Studio
