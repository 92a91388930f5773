// SPDX-License-Identifier: MIT
#pragma once

#include "frame/archive.h"

namespace Vela {

/// The disk as an archive: one object for the process, which is never deleted. It holds no state
/// and may be used from worker threads, apart from closing a device that was written: that may ask
/// the user.
///
/// Writing to a file that exists goes to a temporary file beside it, named after the target with
/// six letters or digits behind, and closeFile() puts it in the target's place. Until then the old
/// content stands.
class VELA_EXPORT FileSystemArchive : public Archive
{
public:
    /// How a file that others may hold open is shared, in the scripts' terms.
    enum ShareMode { NoShare = 0, Share = 1, AskToShare = 2 };
    /// How a file is opened, in the scripts' terms.
    using OpenFlags = QIODevice::OpenMode;

    static FileSystemArchive &instance();

    QString name() const override;
    QString path() const override;
    QString absoluteFilePath(const QString &path) const override;
    QString absoluteFileName(const QString &path) const override;
    using Archive::entries;
    QStringList entries(const QString &path, const QStringList &nameFilters, QDir::Filters filters,
                        QDir::SortFlags sort) const override;
    QIODevice *openFile(const QString &path, QIODevice::OpenMode mode) override;
    void closeFile(QIODevice *device) override;
    void discardFile(QIODevice *device) override;
    bool removeFile(const QString &path) override;
    bool renameFile(const QString &from, const QString &to) override;
    void flush() override;
    bool isReadOnly() const override;
    bool isWritable(const QString &path) const override;
    bool fileExists(const QString &path) const override;
    bool directoryExists(const QString &path) const override;

protected:
    void free() override;

public:
    bool commitFile(QIODevice *device) override;

private:
    FileSystemArchive() = default;
    Q_DISABLE_COPY(FileSystemArchive)
};

} // namespace Vela
