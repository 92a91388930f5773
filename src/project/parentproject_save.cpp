// SPDX-License-Identifier: MIT
#include "engine/extensionmanager.h"
#include "frame/filesystemarchive.h"
#include "frame/fileutils.h"
#include "frame/interface.h"
#include "frame/jobstats.h"
#include "project/filesaver.h"
#include "project/filewatchobject.h"
#include "project/parentproject_p.h"
#include "project/project.h"
#include "project/projectfile.h"

#include <QDateTime>
#include <QFileInfo>
#include <QPointer>
#include <QtAlgorithms>
#include <algorithm>
#include <memory>

namespace Vela {

namespace {

/// Longest path below a backup's folder that is followed: longer than any real one, and an end for
/// an archive that lists its folders in a circle.
constexpr int maxPathLength = 4096;

struct Releaser
{
    void operator()(Object *object) const
    {
        object->release();
    }
};

using ArchiveHandle = std::unique_ptr<Archive, Releaser>;
using FileHandle = std::unique_ptr<ProjectFile, Releaser>;

FileHandle hold(ProjectFile *file)
{
    file->addRef();
    return FileHandle(file);
}

void saveInPlace(ProjectFile *file, ProgressProvider *provider)
{
    unsigned int flags = 0;
    ProgressJob *job = nullptr;
    if (file->capabilities() & ProjectFile::SavesSlowly) {
        flags = ProjectFile::WithJob;
        if (provider)
            job = provider->createJob(
                ParentProject::tr("Saving") + QLatin1Char(' ') + file->displayName(), 0);
        if (job)
            job->setLengthy(1);
    }
    // With WithJob the job is the file's, which may go on saving behind the call.
    file->toFile(file->archive(), file->fileName(), flags, job);
}

void saveElsewhere(ProjectFile *file, Project::FileTypes types)
{
    Interface *const host = Interface::instance();
    if (!host)
        return;
    const int type = types ? int(qCountTrailingZeroBits(types)) : -1;
    if (FileSaver *const saver = host->editorForFile(file, type))
        saver->saveFileAs(file);
}

void saveModified(const QPointer<Project> &project, ProgressProvider *provider)
{
    const QList<ProjectFile *> files = project->files();
    for (ProjectFile *file : files) {
        // A dialog of the host, run by an earlier file, may have closed this one or the project.
        const Project::FileTypes types = project ? project->fileID(file) : 0;
        if (!types || !file->isModified() || !file->canSave())
            continue;
        const FileHandle keep = hold(file);
        if (file->fileExists() && file->archive().isWritable(file->fileName()))
            saveInPlace(file, provider);
        else
            saveElsewhere(file, types);
    }
}

void advance(JobStats *job)
{
    if (job)
        job->incrementValue();
}

/// Opens a packed archive with the extension for it; null without one, or if it cannot.
ArchiveHandle openPacked(const QString &path, Extension::OpenMode mode)
{
    for (Extension *extension : ExtensionManager::list(Extension::ArchiveFormat)) {
        if (qstrcmp(extension->format(), "zip") != 0)
            continue;
        if (Archive *const archive = extension->openArchive(path, mode))
            return ArchiveHandle(archive);
    }
    return nullptr;
}

ArchiveHandle disk()
{
    Archive &archive = FileSystemArchive::instance();
    archive.addRef();
    return ArchiveHandle(&archive);
}

/// Returns whether a name from an archive is that of one entry, and no way out of its folder.
bool isEntryName(const QString &name)
{
    return !name.isEmpty() && name != QLatin1String(".") && name != QLatin1String("..")
        && !QDir::fromNativeSeparators(name).contains(QLatin1Char('/'));
}

/// Returns all files beneath a folder, relative to it.
QStringList listFiles(const Archive &archive, const QString &root)
{
    const QDir::Filters filters =
        QDir::Dirs | QDir::Files | QDir::NoSymLinks | QDir::Readable | QDir::NoDotAndDotDot;
    QStringList files;
    QStringList folders = {QString()};
    QSet<QString> seen;
    while (!folders.isEmpty()) {
        const QString folder = folders.takeLast();
        const QStringList names = archive.entries(joinPath(root, folder), filters, QDir::Name);
        for (const QString &name : names) {
            const QString relative = joinPath(folder, name);
            if (!isEntryName(name) || relative.length() > maxPathLength || seen.contains(relative))
                continue;
            seen.insert(relative);
            const QString path = joinPath(root, relative);
            // The disk finds a folder, too, when it is asked for a file.
            const bool isFile = archive.fileExists(path) && !archive.directoryExists(path);
            (isFile ? files : folders).append(relative);
        }
    }
    return files;
}

/// Pauses the watching of all files of a parent project for its own lifetime.
class WatchPause
{
public:
    explicit WatchPause(const QList<Project *> &projects)
    {
        for (const Project *project : projects) {
            const QList<ProjectFile *> files = project->files();
            for (ProjectFile *file : files)
                pause(file);
        }
    }

    ~WatchPause()
    {
        for (ProjectFile *file : qAsConst(m_files)) {
            dynamic_cast<FileWatchObject &>(*file).pauseWatch(false);
            file->release();
        }
    }

private:
    Q_DISABLE_COPY(WatchPause)

    void pause(ProjectFile *file)
    {
        auto *const watched = dynamic_cast<FileWatchObject *>(file);
        if (!watched)
            return;
        file->addRef();
        m_files.append(file);
        watched->pauseWatch(true);
    }

    QList<ProjectFile *> m_files;
};

} // namespace

void ParentProject::save(ProgressProvider *provider)
{
    const std::unique_ptr<ProgressJob> job(provider ? provider->createJob(tr("Saving..."), 0)
                                                    : nullptr);
    const QList<Project *> projects = openedProjects();
    if (job)
        job->setMaximum(unsigned(projects.size()));
    for (Project *project : projects) {
        if (d->projects.contains(project))
            saveModified(project, provider);
        advance(job.get());
    }
}

void ParentProject::saveAs(const QString &path, JobStats *job)
{
    if (d->projects.size() == 1 && !isGame())
        d->saveSingleAs(d->projects.firstKey(), path);
    else
        d->saveAllAs(path, job);
}

void ParentProjectPrivate::saveSingleAs(Project *project, const QString &path)
{
    Archive &target = FileSystemArchive::instance();
    const QString folder = target.absoluteFilePath(path);
    const QString oldName = QFileInfo(project->fileName()).fileName();
    // The project's own folder becomes the root, so its files go straight into the new one.
    setRoot(project->absolutePath());
    project->saveAll(target, folder + QLatin1Char('/'), false, nullptr);
    archive = &target;
    if (project->mainFile()->toFile(target, path, 0, nullptr))
        setRoot(folder);

    DirectoryPath *const place = projects.value(project);
    projects.insert(project, this);
    if (place != this)
        removeRows(this, 0, childCount() - 1);
    else if (const FilePath *const oldMain = findFile(oldName))
        removeRows(this, oldMain->row(), oldMain->row());
    rebuild(project);
}

void ParentProjectPrivate::saveAllAs(const QString &path, JobStats *job)
{
    Archive &target = FileSystemArchive::instance();
    const QString newRoot = target.absoluteFileName(path);
    const QStringList closed = closedFiles();
    const QList<Project *> opened = projects.keys();
    if (job)
        job->setMaximum(unsigned(opened.size() + closed.size()));
    for (const QString &file : closed) {
        if (staysBelow(file))
            copyFile(*archive, rootPath(file), target, joinPath(newRoot, file));
        advance(job);
    }
    for (Project *project : opened) {
        // A dialog about an earlier file may have closed it.
        if (projects.contains(project))
            saveProjectAs(project, newRoot);
        advance(job);
    }
    setRoot(newRoot);
    archive = &target;
}

void ParentProjectPrivate::saveProjectAs(Project *project, const QString &newRoot)
{
    Archive &target = FileSystemArchive::instance();
    const FileHandle main = hold(project->mainFile());
    const QString folder = joinPath(newRoot, project->basePath());
    const QString name = joinPath(folder, QFileInfo(main->fileName()).fileName());
    project->saveAll(target, newRoot + QLatin1Char('/'), false, nullptr);
    if (main->canSave())
        main->toFile(target, name, 0, nullptr);
}

bool ParentProjectPrivate::isOpened(const BasePath *node, const QSet<QString> &mainFiles) const
{
    if (node->isFile())
        return mainFiles.contains(archive->absoluteFileName(node->fullPath()));
    const BasePath *const folder = node->isFolder() ? node : node->folder();
    return std::any_of(projects.cbegin(), projects.cend(),
                       [folder](const DirectoryPath *place) { return place == folder; });
}

QStringList ParentProjectPrivate::closedFiles() const
{
    QSet<QString> mainFiles;
    for (auto it = projects.keyBegin(); it != projects.keyEnd(); ++it)
        mainFiles.insert((*it)->archive().absoluteFileName((*it)->fileName()));

    QStringList files;
    QVector<BasePath *> pending = nodes();
    while (!pending.isEmpty()) {
        const BasePath *const node = pending.takeLast();
        pending += node->nodes();
        if (!node->isProjectRoot() || isOpened(node, mainFiles))
            continue;
        owner->closedProjectFiles(withoutSlash(pathBelow(fullPath(), node->fullPath())), files);
    }
    files.removeDuplicates();
    return files;
}

QString ParentProjectPrivate::backupName(const QString &name) const
{
    QString path = archive == &FileSystemArchive::instance() ? root() : archive->path();
    if (!path.isEmpty() && !path.endsWith(QLatin1Char('/')))
        path += QLatin1Char('/');
    const QDateTime now = QDateTime::currentDateTime();
    return path + QLatin1String("backup/") + now.toString(QStringLiteral("dd.MM.yyyy_h.m.s_ap_"))
        + name;
}

bool ParentProject::backup(const QString &name, JobStats *job)
{
    QString folder = d->backupName(name);
    ArchiveHandle target = openPacked(folder + QLatin1String(".zip"), Extension::WriteMode);
    if (target)
        folder.clear();
    else
        target = disk();

    const QList<Project *> projects = openedProjects();
    if (job)
        job->setMaximum(unsigned(projects.size()));
    for (Project *project : projects) {
        if (job && job->wasCancelled())
            return false;
        if (d->projects.contains(project) && !project->saveAll(*target, folder, true, nullptr))
            return false;
        advance(job);
    }
    return true;
}

bool ParentProject::restoreBackup(const QString &name, JobStats *job)
{
    if (d->archive->isReadOnly() || name.isEmpty() || !staysBelow(name))
        return false;
    QString folder = joinPath(QFileInfo(d->backupName(QString())).path(), name);
    ArchiveHandle source;
    const QString packed = folder + QLatin1String(".zip");
    if (QFileInfo::exists(packed))
        source = openPacked(packed, Extension::ReadMode);
    if (source)
        folder.clear();
    else
        source = disk();
    if (!folder.isEmpty() && !source->directoryExists(folder))
        return false;

    d->restoreFrom(*source, folder, job);
    if (Interface *const host = Interface::instance())
        host->refreshProjects();
    return true;
}

void ParentProjectPrivate::restoreFrom(Archive &source, const QString &folder, JobStats *job)
{
    const QList<Project *> opened = projects.keys();
    const WatchPause pause(opened);
    const QStringList files = listFiles(source, folder);
    if (job)
        job->setMaximum(unsigned(opened.size() + files.size()));
    for (const QString &file : files) {
        copyFile(source, joinPath(folder, file), *archive, rootPath(file));
        advance(job);
    }
    for (Project *project : opened) {
        if (projects.contains(project))
            project->reload();
        advance(job);
    }
}

} // namespace Vela
