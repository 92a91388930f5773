// SPDX-License-Identifier: MIT
#pragma once

#include "frame/archive.h"

#include <QHash>
#include <QSet>

namespace Lantern {

/// What reading and writing of zip archives share: the folders and the names in them. The root is
/// "/", and a path may be written with or without it.
class ZipArchive : public Vela::Archive
{
public:
    QString name() const override;
    QString path() const override;
    QString absoluteFilePath(const QString &path) const override;
    QString absoluteFileName(const QString &path) const override;
    using Archive::entries;
    QStringList entries(const QString &path, const QStringList &nameFilters, QDir::Filters filters,
                        QDir::SortFlags sort) const override;
    void flush() override;
    bool fileExists(const QString &path) const override;
    bool directoryExists(const QString &path) const override;

    /// Returns the name under which a path stands in an archive, without a "/" in front; empty for
    /// the root, and for a path that leaves it, that another system could take for one that does,
    /// or that is in more than 100 folders.
    static QString entryName(const QString &path);

protected:
    explicit ZipArchive(const QString &fileName);
    void free() override;

    /// Adds a file and the folders above it. Returns false where one of them is a file, or the file
    /// a folder.
    bool addName(const QString &entry);
    void removeName(const QString &entry);
    bool hasFile(const QString &entry) const;
    bool hasFolder(const QString &entry) const;
    /// Returns whether addName() would succeed.
    bool canAdd(const QString &entry) const;
    /// Tells the user of a host that has an output panel.
    void report(const QString &text) const;

private:
    struct Folder
    {
        QSet<QString> files;
        QSet<QString> folders;
    };

    const QString m_fileName;
    QHash<QString, Folder> m_folders;
};

} // namespace Lantern
