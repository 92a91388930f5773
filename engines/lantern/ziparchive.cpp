// SPDX-License-Identifier: MIT
#include "lantern/ziparchive.h"

#include "frame/interface.h"

#include <QFileInfo>

#include <algorithm>

namespace Lantern {

namespace {

const QLatin1Char slash('/');

// How many folders a file may be in. Each of them is kept under its whole path, so that a name of
// nothing but folders would take much memory.
constexpr int deepest = 100;

QString folderOf(const QString &entry)
{
    return entry.left(qMax(entry.lastIndexOf(slash), 0));
}

QString lastPart(const QString &entry)
{
    return entry.mid(entry.lastIndexOf(slash) + 1);
}

QStringList filtered(const QSet<QString> &names, const QStringList &filters, QDir::SortFlags sort)
{
    QStringList result;
    for (const QString &name : names) {
        if (filters.isEmpty() || QDir::match(filters, name))
            result.append(name);
    }
    // Names are all that an archive sorts by.
    result.sort(sort & QDir::IgnoreCase ? Qt::CaseInsensitive : Qt::CaseSensitive);
    if (sort & QDir::Reversed)
        std::reverse(result.begin(), result.end());
    return result;
}

} // namespace

ZipArchive::ZipArchive(const QString &fileName)
    : m_fileName(fileName)
{
    m_folders.insert(QString(), Folder());
}

void ZipArchive::free()
{
    delete this;
}

QString ZipArchive::name() const
{
    return QFileInfo(m_fileName).fileName();
}

QString ZipArchive::path() const
{
    return m_fileName;
}

QString ZipArchive::absoluteFilePath(const QString &path) const
{
    return path.isEmpty() ? QString() : QString(slash + folderOf(entryName(path)));
}

// A path that is refused stays as it is, and is refused again where it is opened.
QString ZipArchive::absoluteFileName(const QString &path) const
{
    const QString entry = entryName(path);
    return entry.isEmpty() ? path : QString(slash + entry);
}

QStringList ZipArchive::entries(const QString &path, const QStringList &nameFilters,
                                QDir::Filters filters, QDir::SortFlags sort) const
{
    const auto folder = m_folders.constFind(entryName(path));
    if (folder == m_folders.constEnd())
        return {};
    if (!(filters & (QDir::AllEntries | QDir::AllDirs)) || filters == QDir::NoFilter)
        filters |= QDir::AllEntries;
    if (sort == QDir::NoSort)
        sort = QDir::Unsorted;

    QStringList folders;
    QStringList files;
    if (filters & (QDir::Dirs | QDir::AllDirs))
        folders =
            filtered(folder->folders, filters & QDir::AllDirs ? QStringList() : nameFilters, sort);
    if (filters & QDir::Files)
        files = filtered(folder->files, nameFilters, sort);
    if (sort & QDir::DirsFirst)
        return folders + files;
    if (sort & QDir::DirsLast)
        return files + folders;
    return filtered(QSet<QString>(folders.begin(), folders.end())
                        .unite(QSet<QString>(files.begin(), files.end())),
                    {}, sort);
}

void ZipArchive::flush()
{
}

bool ZipArchive::fileExists(const QString &path) const
{
    return hasFile(entryName(path));
}

bool ZipArchive::directoryExists(const QString &path) const
{
    const QString entry = entryName(path);
    return entry.isEmpty() ? path.isEmpty() || QDir::cleanPath(path) == slash : hasFolder(entry);
}

QString ZipArchive::entryName(const QString &path)
{
    if (path.contains(QLatin1Char('\\')) || path.contains(QChar(0)))
        return QString();
    int start = 0;
    while (start < path.size() && path.at(start) == slash)
        ++start;
    const QString entry = QDir::cleanPath(path.mid(start));
    const bool refused = entry.count(slash) > deepest || entry == QLatin1String(".")
        || entry == QLatin1String("..") || entry.startsWith(QLatin1String("../"))
        || entry.startsWith(slash) || (entry.size() > 1 && entry.at(1) == QLatin1Char(':'));
    return refused ? QString() : entry;
}

bool ZipArchive::addName(const QString &entry)
{
    if (!canAdd(entry))
        return false;
    m_folders[folderOf(entry)].files.insert(lastPart(entry));
    // Upwards to the first folder that is known.
    for (QString folder = folderOf(entry); !folder.isEmpty(); folder = folderOf(folder)) {
        Folder &above = m_folders[folderOf(folder)];
        if (above.folders.contains(lastPart(folder)))
            break;
        above.folders.insert(lastPart(folder));
    }
    return true;
}

void ZipArchive::removeName(const QString &entry)
{
    m_folders[folderOf(entry)].files.remove(lastPart(entry));
}

bool ZipArchive::hasFile(const QString &entry) const
{
    const auto folder = m_folders.constFind(folderOf(entry));
    return folder != m_folders.constEnd() && folder->files.contains(lastPart(entry));
}

bool ZipArchive::hasFolder(const QString &entry) const
{
    return m_folders.contains(entry);
}

bool ZipArchive::canAdd(const QString &entry) const
{
    if (entry.isEmpty() || hasFolder(entry))
        return false;
    for (QString folder = folderOf(entry); !hasFolder(folder); folder = folderOf(folder)) {
        if (hasFile(folder))
            return false;
    }
    return true;
}

void ZipArchive::report(const QString &text) const
{
    if (Vela::Interface *const host = Vela::Interface::instance())
        host->log(text);
}

} // namespace Lantern
