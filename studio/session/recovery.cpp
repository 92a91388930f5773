// SPDX-License-Identifier: MIT
#include "studio/session/recovery.h"

#include "engine/engine.h"
#include "frame/filesystemarchive.h"
#include "project/parentproject.h"
#include "project/project.h"
#include "studio/session/projectcontents.h"

#include <QFile>
#include <QFileInfo>
#include <QSet>

#include <algorithm>

namespace Studio {

namespace {

constexpr int SuffixLength = 6;

bool isSuffix(const QString &text)
{
    return std::all_of(text.begin(), text.end(),
                       [](QChar c) { return c.unicode() < 128 && c.isLetterOrNumber(); });
}

/// Returns the files that this process has open, where the system shows them; elsewhere such a
/// file refuses to be renamed or removed.
QStringList openFiles()
{
    QStringList result;
    const QFileInfoList links =
        QDir(QStringLiteral("/proc/self/fd")).entryInfoList(QDir::AllEntries | QDir::System);
    for (const QFileInfo &link : links) {
        const QString target = link.symLinkTarget();
        if (QFileInfo(target).isFile())
            result.append(target);
    }
    return result;
}

QStringList projectFiles(const Vela::ParentProject &parent)
{
    QStringList result;
    const QList<Vela::Project *> projects = sortedProjects(parent);
    for (const Vela::Project *project : projects) {
        const QList<ProjectEntry> entries = projectEntries(*project);
        for (const ProjectEntry &entry : entries)
            result.append(entry.path);
    }
    const QStringList closed = closedProjects(parent);
    for (const QString &project : closed)
        result += closedProjectFiles(parent, project);

    const QDir root(rootPath(parent));
    for (QString &path : result)
        path = QDir::cleanPath(root.absoluteFilePath(path));
    return result;
}

QStringList folderAndSubfolders(const QString &folder)
{
    QStringList result{folder};
    const QFileInfoList infos =
        QDir(folder).entryInfoList(QDir::Dirs | QDir::NoSymLinks | QDir::NoDotAndDotDot);
    for (const QFileInfo &info : infos)
        result.append(info.absoluteFilePath());
    return result;
}

/// Finds the target of what may be a temporary file; empty if it is none.
class TargetFinder
{
public:
    explicit TargetFinder(const RecoverySearch &search)
        : m_files(search.files.begin(), search.files.end())
        , m_held(search.held.begin(), search.held.end())
        , m_patterns(search.patterns)
    {
    }

    QString targetOf(const QString &path) const
    {
        if (path.size() <= SuffixLength || m_files.contains(path) || m_held.contains(path)
            || !isSuffix(path.right(SuffixLength)))
            return QString();
        const QString target = path.chopped(SuffixLength);
        const QFileInfo info(target);
        const bool isLost = !info.exists() && QDir::match(m_patterns, info.fileName());
        return isLost || m_files.contains(target) ? target : QString();
    }

private:
    QSet<QString> m_files;
    QSet<QString> m_held;
    QStringList m_patterns;
};

InterruptedSave describe(const QFileInfo &temporary, const QFileInfo &target)
{
    auto &disk = Vela::FileSystemArchive::instance();
    InterruptedSave save;
    save.target = target.absoluteFilePath();
    save.temporary = temporary.absoluteFilePath();
    save.temporarySize = temporary.size();
    save.temporaryTime = temporary.lastModified();
    save.targetExists = target.exists();
    if (save.targetExists) {
        save.targetSize = target.size();
        save.targetTime = target.lastModified();
        save.differs = save.targetSize != save.temporarySize
            || !sameContent(disk, save.target, disk, save.temporary);
    }
    return save;
}

bool move(const QString &from, const QString &to, QString *error)
{
    QFile file(from);
    if (file.rename(to))
        return true;
    *error = Recovery::tr("%1: cannot be renamed to %2: %3").arg(from, to, file.errorString());
    return false;
}

} // namespace

RecoverySearch Recovery::searchFor(const Vela::ParentProject &parent)
{
    if (&parent.archive() != &Vela::FileSystemArchive::instance())
        return {};
    RecoverySearch search;
    search.files = projectFiles(parent);
    search.held = openFiles();
    const QList<QString> filters = parent.engine()->singleFileFilters().values();
    for (const QString &filter : filters)
        search.patterns += filter.split(QLatin1Char(' '), Qt::SkipEmptyParts);
    // A pattern that fits everything tells nothing about a name.
    search.patterns.removeAll(QStringLiteral("*"));
    search.patterns.removeAll(QStringLiteral("*.*"));

    const QList<Vela::Project *> projects = sortedProjects(parent);
    for (const Vela::Project *project : projects)
        search.folders += folderAndSubfolders(project->absolutePath());
    for (const QString &file : qAsConst(search.files))
        search.folders.append(QFileInfo(file).absolutePath());
    search.folders.removeDuplicates();
    search.folders.sort();
    return search;
}

QList<InterruptedSave> Recovery::find(const RecoverySearch &search)
{
    const TargetFinder finder(search);
    QList<InterruptedSave> result;
    for (const QString &folder : search.folders) {
        const QFileInfoList infos =
            QDir(folder).entryInfoList(QDir::Files | QDir::Hidden | QDir::NoSymLinks, QDir::Name);
        for (const QFileInfo &info : infos) {
            const QString target = finder.targetOf(info.absoluteFilePath());
            if (!target.isEmpty())
                result.append(describe(info, QFileInfo(target)));
        }
    }
    return result;
}

bool Recovery::recover(const InterruptedSave &save, QString *kept, QString *error)
{
    kept->clear();
    if (!QFileInfo::exists(save.temporary)) {
        *error = tr("%1: is no longer there.").arg(save.temporary);
        return false;
    }
    auto &disk = Vela::FileSystemArchive::instance();
    if (!QFileInfo::exists(save.target))
        return move(save.temporary, save.target, error);
    if (sameContent(disk, save.target, disk, save.temporary))
        return discard(save, error);

    const QString name = freeName(save.target + QStringLiteral(".before-recovery"));
    if (!move(save.target, name, error))
        return false;
    if (!move(save.temporary, save.target, error)) {
        QString ignored;
        move(name, save.target, &ignored);
        return false;
    }
    *kept = name;
    return true;
}

QString Recovery::freeName(const QString &name)
{
    QString free = name;
    for (int i = 2; QFileInfo::exists(free); ++i)
        free = name + QLatin1Char('-') + QString::number(i);
    return free;
}

bool Recovery::discard(const InterruptedSave &save, QString *error)
{
    QFile file(save.temporary);
    if (file.remove())
        return true;
    *error = tr("%1: cannot be removed: %2").arg(save.temporary, file.errorString());
    return false;
}

} // namespace Studio
