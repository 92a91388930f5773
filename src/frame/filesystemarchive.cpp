// SPDX-License-Identifier: MIT
#include "frame/filesystemarchive.h"

#include "frame/file_p.h"

#include <QFileInfo>

#include <memory>

namespace Vela {

FileSystemArchive &FileSystemArchive::instance()
{
    static FileSystemArchive archive;
    return archive;
}

QString FileSystemArchive::name() const
{
    return QString();
}

QString FileSystemArchive::path() const
{
    return QString();
}

QString FileSystemArchive::absoluteFilePath(const QString &path) const
{
    return path.isEmpty() ? QString() : QFileInfo(path).absolutePath();
}

QString FileSystemArchive::absoluteFileName(const QString &path) const
{
    return path.isEmpty() ? QString() : QFileInfo(path).absoluteFilePath();
}

QStringList FileSystemArchive::entries(const QString &path, const QStringList &nameFilters,
                                       QDir::Filters filters, QDir::SortFlags sort) const
{
    // NoFilter has every bit set, and QDir would read it as "with links and dots".
    if (filters == QDir::NoFilter)
        filters = QDir::AllEntries;
    filters |= QDir::NoSymLinks | QDir::NoDot | QDir::NoDotDot;
    return QDir(path).entryList(nameFilters, filters, sort);
}

QIODevice *FileSystemArchive::openFile(const QString &path, QIODevice::OpenMode mode)
{
    // As QFile has it: appending and making a file are writing.
    if (mode & (QIODevice::Append | QIODevice::NewOnly))
        mode |= QIODevice::WriteOnly;
    if ((mode & QIODevice::NewOnly) && QFile::exists(path))
        return nullptr;
    if (mode & QIODevice::WriteOnly) {
        const QString folder = QFileInfo(path).absolutePath();
        if (!QDir(folder).exists())
            QDir().mkpath(folder);
    } else if (!QFile::exists(path)) {
        return nullptr;
    }
    auto file = std::make_unique<File>(path);
    return file->open(mode) ? file.release() : nullptr;
}

void FileSystemArchive::closeFile(QIODevice *device)
{
    commitFile(device);
}

bool FileSystemArchive::commitFile(QIODevice *device)
{
    auto *file = qobject_cast<QFileDevice *>(device);
    if (file && file->isOpen())
        file->flush();
    bool isInPlace = true;
    if (auto *written = qobject_cast<File *>(device))
        written->reportTo(&isInPlace);
    delete device;
    return isInPlace;
}

void FileSystemArchive::discardFile(QIODevice *device)
{
    if (auto *file = qobject_cast<File *>(device))
        file->discard();
    delete device;
}

bool FileSystemArchive::removeFile(const QString &path)
{
    return QFile::remove(path);
}

bool FileSystemArchive::renameFile(const QString &from, const QString &to)
{
    return QFile::rename(from, to);
}

void FileSystemArchive::flush()
{
}

bool FileSystemArchive::isReadOnly() const
{
    return false;
}

bool FileSystemArchive::isWritable(const QString &path) const
{
    return !QFile::exists(path) || QFileInfo(path).isWritable();
}

bool FileSystemArchive::fileExists(const QString &path) const
{
    return QFile::exists(path);
}

bool FileSystemArchive::directoryExists(const QString &path) const
{
    return QDir(path).exists();
}

void FileSystemArchive::free()
{
}

} // namespace Vela
