// SPDX-License-Identifier: MIT
#include "support/memoryarchive.h"

#include <algorithm>
#include <limits>
#include <memory>

MemoryDevice::MemoryDevice(MemoryArchive &archive, const QString &file)
    : fileName(file)
    , m_archive(archive)
{
    ++m_archive.openDevices;
}

MemoryDevice::~MemoryDevice()
{
    --m_archive.openDevices;
}

bool MemoryDevice::open(OpenMode mode)
{
    m_isWritten = mode & WriteOnly;
    if (!m_isWritten || (mode & (ReadOnly | Append)))
        setData(m_archive.content(fileName));
    return QBuffer::open(mode);
}

qint64 MemoryDevice::writeData(const char *data, qint64 size)
{
    const qint64 taken = std::clamp<qint64>(m_archive.room(fileName) - pos(), 0, size);
    m_hasFailed |= taken < size;
    const qint64 written = QBuffer::writeData(data, taken);
    return taken == 0 && size > 0 ? -1 : written;
}

void MemoryDevice::commit()
{
    if (m_isWritten && !m_hasFailed)
        m_archive.put(fileName, data());
}

MemoryArchive::MemoryArchive(const QMap<QString, QByteArray> &content)
{
    for (auto file = content.begin(); file != content.end(); ++file)
        put(file.key(), file.value());
}

void MemoryArchive::put(const QString &path, const QByteArray &content)
{
    // A file without content is there, and is told from one that is not by not being null.
    m_files.insert(absoluteFileName(path), content.isNull() ? QByteArray("") : content);
}

QByteArray MemoryArchive::content(const QString &path) const
{
    return m_files.value(absoluteFileName(path));
}

QStringList MemoryArchive::fileNames() const
{
    return m_files.keys();
}

QString MemoryArchive::name() const
{
    return QStringLiteral("Memory");
}

QString MemoryArchive::path() const
{
    return QStringLiteral("memory:");
}

QString MemoryArchive::absoluteFileName(const QString &path) const
{
    return path.isEmpty() ? QString() : QDir::cleanPath(QLatin1Char('/') + path);
}

QString MemoryArchive::absoluteFilePath(const QString &path) const
{
    const QString file = absoluteFileName(path);
    return file.left(qMax(file.lastIndexOf(QLatin1Char('/')), file.isEmpty() ? 0 : 1));
}

/// Returns the names of the files, or of the folders, in a folder that ends in "/".
QStringList MemoryArchive::namesIn(const QString &folder, bool folders) const
{
    QStringList names;
    for (auto file = m_files.begin(); file != m_files.end(); ++file) {
        if (!file.key().startsWith(folder))
            continue;
        const QString rest = file.key().mid(folder.size());
        if (rest.contains(QLatin1Char('/')) == folders)
            names.append(rest.section(QLatin1Char('/'), 0, 0));
    }
    names.removeDuplicates();
    return names;
}

QStringList MemoryArchive::entries(const QString &path, const QStringList &nameFilters,
                                   QDir::Filters filters, QDir::SortFlags sort) const
{
    QString folder = absoluteFileName(path.isEmpty() ? QStringLiteral("/") : path);
    if (!folder.endsWith(QLatin1Char('/')))
        folder += QLatin1Char('/');
    if (filters == QDir::NoFilter)
        filters = QDir::AllEntries;

    const auto isFilteredOut = [&](const QString &name) {
        return !nameFilters.isEmpty() && !QDir::match(nameFilters, name);
    };
    QStringList files = filters & QDir::Files ? namesIn(folder, false) : QStringList();
    files.erase(std::remove_if(files.begin(), files.end(), isFilteredOut), files.end());
    QStringList folders =
        filters & (QDir::Dirs | QDir::AllDirs) ? namesIn(folder, true) : QStringList();
    if (!(filters & QDir::AllDirs))
        folders.erase(std::remove_if(folders.begin(), folders.end(), isFilteredOut), folders.end());

    const auto isBefore = [sort](const QString &a, const QString &b) {
        const auto cs = sort & QDir::IgnoreCase ? Qt::CaseInsensitive : Qt::CaseSensitive;
        const int order = a.compare(b, cs);
        return sort & QDir::Reversed ? order > 0 : order < 0;
    };
    QStringList all = sort & QDir::DirsLast ? files + folders : folders + files;
    if (sort & (QDir::DirsFirst | QDir::DirsLast)) {
        const int border = sort & QDir::DirsLast ? files.size() : folders.size();
        std::stable_sort(all.begin(), all.begin() + border, isBefore);
        std::stable_sort(all.begin() + border, all.end(), isBefore);
    } else {
        std::stable_sort(all.begin(), all.end(), isBefore);
    }
    return all;
}

bool MemoryArchive::canOpen(const QString &file, QIODevice::OpenMode mode)
{
    if (failOpen > 0 && --failOpen == 0)
        return false;
    if (file.isEmpty() || directoryExists(file))
        return false;
    return mode & QIODevice::WriteOnly ? !readOnly && isWritable(file) : fileExists(file);
}

QIODevice *MemoryArchive::openFile(const QString &path, QIODevice::OpenMode mode)
{
    const bool isWritten = mode & QIODevice::WriteOnly;
    record(isWritten ? "write" : "read", path);
    const QString file = absoluteFileName(path);
    if (!canOpen(file, mode))
        return nullptr;
    auto device = std::make_unique<MemoryDevice>(*this, file);
    return device->open(mode) ? device.release() : nullptr;
}

void MemoryArchive::closeFile(QIODevice *device)
{
    if (auto *file = qobject_cast<MemoryDevice *>(device)) {
        file->commit();
        record("close", file->fileName);
    }
    delete device;
}

void MemoryArchive::discardFile(QIODevice *device)
{
    if (auto *file = qobject_cast<MemoryDevice *>(device))
        record("discard", file->fileName);
    delete device;
}

bool MemoryArchive::removeFile(const QString &path)
{
    record("remove", path);
    return !readOnly && m_files.remove(absoluteFileName(path)) > 0;
}

bool MemoryArchive::renameFile(const QString &from, const QString &to)
{
    record("rename", from, to);
    if (readOnly || to.isEmpty() || !fileExists(from) || fileExists(to) || directoryExists(to))
        return false;
    put(to, m_files.take(absoluteFileName(from)));
    return true;
}

void MemoryArchive::flush()
{
    calls.append(QStringLiteral("flush"));
}

bool MemoryArchive::isReadOnly() const
{
    return readOnly;
}

bool MemoryArchive::isWritable(const QString &path) const
{
    return !fileExists(path) || !(readOnly || readOnlyFiles.contains(absoluteFileName(path)));
}

bool MemoryArchive::fileExists(const QString &path) const
{
    return m_files.contains(absoluteFileName(path));
}

bool MemoryArchive::directoryExists(const QString &path) const
{
    const QString folder = absoluteFileName(path);
    if (folder == QLatin1String("/"))
        return true;
    const auto next = m_files.lowerBound(folder + QLatin1Char('/'));
    return next != m_files.end() && next.key().startsWith(folder + QLatin1Char('/'));
}

void MemoryArchive::free()
{
    ++timesFreed;
}

/// Returns how many bytes a file may have beside all others.
qint64 MemoryArchive::room(const QString &file) const
{
    qint64 room = writeLimit >= 0 ? writeLimit : std::numeric_limits<qint64>::max();
    if (capacity < 0)
        return room;
    qint64 others = 0;
    for (auto other = m_files.begin(); other != m_files.end(); ++other) {
        if (other.key() != file)
            others += other.value().size();
    }
    return qMin(room, qMax<qint64>(capacity - others, 0));
}

void MemoryArchive::record(const char *operation, const QString &path, const QString &other)
{
    QString call = QString::fromLatin1(operation) + QLatin1Char(' ') + absoluteFileName(path);
    if (!other.isEmpty())
        call += QLatin1Char(' ') + absoluteFileName(other);
    calls.append(call);
}
