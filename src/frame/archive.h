// SPDX-License-Identifier: MIT
#pragma once

#include "frame/object.h"

#include <QDir>
#include <QIODevice>
#include <QMetaType>
#include <QStringList>

namespace Vela {

/// A store of files: the disk, a packed file, or whatever an extension offers. Paths are strings
/// that the store understands, with "/" as separator.
///
/// A device that openFile() returned belongs to the caller until it goes back to closeFile() or
/// discardFile() of the same archive, which delete it.
class VELA_EXPORT Archive : public Object
{
public:
    /// Subtracts 1 from the count, which begins at 1, and at 0 calls free().
    void release() override;
    ~Archive() override;

    /// Returns the display name of the store.
    virtual QString name() const = 0;
    /// Returns the location of the store; empty for the disk.
    virtual QString path() const = 0;
    /// Returns the absolute folder of a path; empty for an empty path.
    virtual QString absoluteFilePath(const QString &path) const = 0;
    /// Returns the absolute name of a path; empty for an empty path.
    virtual QString absoluteFileName(const QString &path) const = 0;
    /// Returns the names in a folder, without "." and "..".
    virtual QStringList entries(const QString &path, const QStringList &nameFilters,
                                QDir::Filters filters, QDir::SortFlags sort) const = 0;
    /// Opens a file; null on failure, without a message.
    virtual QIODevice *openFile(const QString &path, QIODevice::OpenMode mode) = 0;
    /// Commits what was written to a device and deletes it.
    virtual void closeFile(QIODevice *device) = 0;
    /// Deletes a device without committing what was written to it.
    virtual void discardFile(QIODevice *device) = 0;
    virtual bool removeFile(const QString &path) = 0;
    virtual bool renameFile(const QString &from, const QString &to) = 0;
    /// Writes what the store itself still holds back.
    virtual void flush() = 0;
    virtual bool isReadOnly() const = 0;
    /// Returns whether a file can be written; true for one that does not exist.
    virtual bool isWritable(const QString &path) const = 0;
    virtual bool fileExists(const QString &path) const = 0;
    virtual bool directoryExists(const QString &path) const = 0;

    void addRef();
    QStringList entries(const QString &path, QDir::Filters filters, QDir::SortFlags sort) const;
    /// Returns \a path relative to the folder \a from, written without a trailing separator. A
    /// path of another archive \a other comes back unchanged.
    QString relativePath(const QString &path, const Archive *other, const QString &from) const;

protected:
    Archive() = default;
    /// A copy takes over the count's value.
    Archive(const Archive &) = default;
    Archive &operator=(const Archive &) = default;

    /// Disposes of the archive when its count has reached 0.
    virtual void free() = 0;

public:
    /// Does what closeFile() does and returns whether the new content is in its place. A file
    /// that is saved counts as saved only then. The default trusts closeFile().
    virtual bool commitFile(QIODevice *device);

private:
    qint32 m_refCount = 1;
};

} // namespace Vela

Q_DECLARE_METATYPE(Vela::Archive *)
