// SPDX-License-Identifier: MIT
#pragma once

#include <QHash>
#include <QString>

namespace Vela {
class Archive;
}

namespace Lantern {

/// Finds files under a folder that may be spelled in another case than they are asked for. A file
/// spelled as it is asked for goes before others. Each folder is listed once, so that a game of
/// thousands of files opens quickly; an object is made for one pass over a list and then forgotten.
class FileNames
{
public:
    FileNames(Vela::Archive &archive, const QString &folder);

    /// Returns \a path, relative to the folder, as the archive spells it; empty if there is no such
    /// file.
    QString spelled(const QString &path);

private:
    // By itself, and by its case-folded form.
    using Names = QHash<QString, QString>;

    QString spelledFolder(const QString &folder);
    QString absolute(const QString &path) const;
    const Names &names(const QString &folder, bool files);

    Vela::Archive &m_archive;
    const QString m_folder;
    QHash<QString, QString> m_folders;
    QHash<QString, Names> m_files;
    QHash<QString, Names> m_subfolders;
};

} // namespace Lantern
