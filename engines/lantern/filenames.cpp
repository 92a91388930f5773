// SPDX-License-Identifier: MIT
#include "lantern/filenames.h"

#include "frame/archive.h"

namespace Lantern {

namespace {

QString joined(const QString &folder, const QString &name)
{
    return folder.isEmpty() ? name : QString(folder + QLatin1Char('/') + name);
}

} // namespace

FileNames::FileNames(Vela::Archive &archive, const QString &folder)
    : m_archive(archive)
    , m_folder(folder)
{
}

QString FileNames::spelled(const QString &path)
{
    const int slash = path.lastIndexOf(QLatin1Char('/'));
    const QString folder = spelledFolder(path.left(qMax(slash, 0)));
    const QString asked = path.mid(slash + 1);
    const Names &files = names(folder, true);
    const QString name = files.value(asked, files.value(asked.toCaseFolded()));
    return name.isEmpty() ? QString() : joined(folder, name);
}

// A part with no match stays as it is, and then the file is not found.
QString FileNames::spelledFolder(const QString &folder)
{
    if (folder.isEmpty() || m_folders.contains(folder))
        return m_folders.value(folder);
    const int slash = folder.lastIndexOf(QLatin1Char('/'));
    const QString above = spelledFolder(folder.left(qMax(slash, 0)));
    const QString name = folder.mid(slash + 1);
    const QString result = joined(above,
                                  m_archive.directoryExists(absolute(joined(above, name)))
                                      ? name
                                      : names(above, false).value(name.toCaseFolded(), name));
    m_folders.insert(folder, result);
    return result;
}

QString FileNames::absolute(const QString &path) const
{
    return joined(m_folder, path);
}

// The listing holds plain files only: reading from a pipe could wait for ever.
const FileNames::Names &FileNames::names(const QString &folder, bool files)
{
    QHash<QString, Names> &lists = files ? m_files : m_subfolders;
    auto found = lists.find(folder);
    if (found == lists.end()) {
        found = lists.insert(folder, Names());
        const QStringList entries =
            m_archive.entries(folder.isEmpty() ? m_folder : absolute(folder),
                              (files ? QDir::Files : QDir::Dirs) | QDir::Hidden, QDir::Name);
        for (const QString &entry : entries)
            found->insert(entry, entry);
        for (const QString &entry : entries) {
            if (!found->contains(entry.toCaseFolded()))
                found->insert(entry.toCaseFolded(), entry);
        }
    }
    return *found;
}

} // namespace Lantern
