// SPDX-License-Identifier: MIT
#include "studio/session/projectsession.h"

#include "code/codedocument.h"
#include "engine/engine.h"
#include "engine/extensionmanager.h"
#include "frame/filesystemarchive.h"
#include "frame/jobstats.h"
#include "project/parentproject.h"
#include "project/project.h"
#include "project/projectfile.h"
#include "studio/session/documents.h"
#include "studio/session/engineloader.h"

#include <QFileInfo>
#include <QThread>

#include <algorithm>

namespace Studio {

namespace {

struct Releaser
{
    void operator()(Vela::Archive *archive) const
    {
        archive->release();
    }
};
using ArchivePointer = std::unique_ptr<Vela::Archive, Releaser>;

ArchivePointer shared(Vela::Archive &archive)
{
    archive.addRef();
    return ArchivePointer(&archive);
}

ArchivePointer openPacked(const QString &path)
{
    const auto &extensions = Vela::ExtensionManager::list(Vela::Extension::ArchiveFormat);
    for (Vela::Extension *extension : extensions) {
        if (qstrcmp(extension->format(), "zip") != 0)
            continue;
        if (Vela::Archive *archive = extension->openArchive(path, Vela::Extension::ReadMode))
            return ArchivePointer(archive);
    }
    return nullptr;
}

ArchivePointer openBackup(const Backup &backup)
{
    return backup.packed ? openPacked(backup.path) : shared(Vela::FileSystemArchive::instance());
}

QString rootOf(const Backup &backup)
{
    return backup.packed ? QString() : backup.path;
}

bool leadsOut(const QString &path)
{
    return QDir::isAbsolutePath(path) || QDir::cleanPath(path) != path
        || path.startsWith(QLatin1String("../")) || path == QLatin1String("..");
}

QStringList names(const QList<Backup> &backups)
{
    QStringList result;
    for (const Backup &backup : backups)
        result.append(backup.name);
    return result;
}

/// The name of a backup holds its second: a second one of the same label has to wait for the next,
/// or it would be written over the first.
void waitForFreeName(const QStringList &taken, const QString &label)
{
    while (taken.contains(Backups::nameAt(QDateTime::currentDateTime(), label)))
        QThread::msleep(20);
}

/// What ParentProject::saveAs() is to do, and what must have been done then.
struct SavePlan
{
    QString path;    ///< what it is called with
    QString oldRoot; ///< what the new folder is the copy of
    ContentList contents;
};

SavePlan planSave(const Vela::ParentProject &parent, const QString &folder)
{
    const QList<Vela::Project *> projects = parent.openedProjects();
    if (projects.size() != 1 || parent.isGame())
        return {folder, rootPath(parent), contentList(parent, true)};
    // A single project is saved under the new name of its main file, in whose folder it stands.
    const Vela::Project &project = *projects.first();
    const QString mainFile = QFileInfo(project.fileName()).fileName();
    return {folder + QLatin1Char('/') + mainFile, project.absolutePath(), contentList(project)};
}

/// Returns paths relative to \a folder that are given relative to \a root.
QStringList below(const QString &folder, const QString &root, QStringList paths)
{
    for (QString &path : paths)
        path = QDir(folder).relativeFilePath(QDir(root).absoluteFilePath(path));
    return paths;
}

QList<Vela::ProjectFile *> modifiedProjectFiles(const Vela::ParentProject &parent)
{
    QList<Vela::ProjectFile *> result;
    const QList<Vela::Project *> projects = sortedProjects(parent);
    for (const Vela::Project *project : projects) {
        const QList<Vela::ProjectFile *> files = orderedFiles(*project);
        std::copy_if(files.begin(), files.end(), std::back_inserter(result),
                     [](const Vela::ProjectFile *file) { return file->isModified(); });
    }
    return result;
}

/// Returns the definition texts, relative to the root. Saved elsewhere, they get line ends of one
/// kind even where nothing has changed.
QStringList textFiles(const Vela::ParentProject &parent)
{
    QStringList result;
    const QList<Vela::CodeDocument *> documents = openDocuments(parent);
    for (const Vela::CodeDocument *document : documents)
        result.append(relativeToRoot(parent, document->fileName()));
    return result;
}

/// Returns whether a file is modified only because it was edited while its \a revision was saved.
bool isEditedSince(Vela::ProjectFile *file, int revision)
{
    const Vela::CodeDocument *document = documentOf(file);
    return document && document->savedRevision() == revision && document->revision() != revision;
}

bool makeEmptyFolder(const QString &folder, QString *error)
{
    if (!QDir().mkpath(folder))
        *error = ProjectSession::tr("%1: the folder cannot be made").arg(folder);
    else if (!QDir(folder).isEmpty())
        *error = ProjectSession::tr("%1: the folder is not empty").arg(folder);
    return error->isEmpty();
}

} // namespace

QString ProjectSession::normalizedPath(const QString &path)
{
    if (path.isEmpty())
        return path;
    QString name = QDir::fromNativeSeparators(path);
    if (name == QLatin1String("~") || name.startsWith(QLatin1String("~/")))
        name.replace(0, 1, QDir::homePath());
    return QDir::cleanPath(QDir::current().absoluteFilePath(name));
}

std::unique_ptr<ProjectSession> ProjectSession::open(const QString &path, QString *error)
{
    error->clear();
    const QString name = normalizedPath(path);
    Vela::Engine *engine = nullptr;
    if (name.isEmpty() || !QFileInfo::exists(name))
        *error = tr("%1: there is no such file or folder").arg(path);
    else if (EngineLoader::engines().isEmpty())
        *error = tr("%1: no engine is installed that could read it").arg(path);
    else if (!(engine = EngineLoader::engineFor(name)))
        *error = tr("%1: is not a project of an installed engine").arg(path);
    if (!engine)
        return nullptr;

    Vela::ParentProject *parent = engine->openParentProject(name, error);
    if (!parent) {
        if (error->isEmpty())
            *error = tr("%1: cannot be read").arg(path);
        return nullptr;
    }
    return std::unique_ptr<ProjectSession>(new ProjectSession(parent, name));
}

std::unique_ptr<ProjectSession> ProjectSession::create(Vela::Engine *engine, const QString &folder,
                                                       const QString &name, QString *error)
{
    error->clear();
    const QString place = normalizedPath(folder);
    if (!makeEmptyFolder(place, error))
        return nullptr;
    const QString path = engine->createParentProject(place, name, error);
    return path.isEmpty() ? nullptr : open(path, error);
}

ProjectSession::ProjectSession(Vela::ParentProject *parent, const QString &path)
    : m_parent(parent)
    , m_path(path)
{
}

ProjectSession::~ProjectSession()
{
    finishSave();
    const QList<Vela::Project *> projects = m_parent->openedProjects();
    for (Vela::Project *project : projects)
        project->release();
}

Vela::ParentProject *ProjectSession::parent() const
{
    return m_parent.get();
}

QString ProjectSession::path() const
{
    return m_path;
}

Backups ProjectSession::backups() const
{
    return Backups(Backups::folderOf(*m_parent));
}

bool ProjectSession::openClosedProject(const QString &path, QString *error)
{
    error->clear();
    if (m_parent->engine()->openProject(m_parent.get(), path, error))
        return true;
    if (error->isEmpty())
        *error = tr("%1: cannot be read").arg(path);
    return false;
}

QStringList ProjectSession::openAllProjects()
{
    QStringList errors;
    const QStringList closed = closedProjects(*m_parent);
    for (const QString &path : closed) {
        QString reason;
        if (!openClosedProject(path, &reason))
            errors.append(reason);
    }
    return errors;
}

bool ProjectSession::isModified() const
{
    return !modifiedFiles().isEmpty();
}

QStringList ProjectSession::modifiedFiles() const
{
    QStringList result;
    const QList<Vela::ProjectFile *> files = modifiedProjectFiles(*m_parent);
    for (const Vela::ProjectFile *file : files)
        result.append(pathOf(*m_parent, *file));
    result.removeDuplicates();
    return result;
}

QStringList ProjectSession::save(Vela::ProgressProvider *provider)
{
    beginSave(provider);
    return finishSave();
}

void ProjectSession::beginSave(Vela::ProgressProvider *provider)
{
    finishSave();
    const QList<Vela::ProjectFile *> files = modifiedProjectFiles(*m_parent);
    for (Vela::ProjectFile *file : files) {
        const Vela::CodeDocument *document = documentOf(file);
        m_toSave.insert(pathOf(*m_parent, *file), document ? document->revision() : 0);
    }
    m_parent->save(provider);
    // A project has its own name and place from its main file, and nobody can do without them.
    const QList<Vela::Project *> projects = m_parent->openedProjects();
    for (const Vela::Project *project : projects) {
        if (Vela::CodeDocument *main = documentOf(project->mainFile())) {
            main->waitForSave();
            saveAgain(*main);
        }
    }
}

// A file that got its name just now may be listed in a main file that was through before.
void ProjectSession::saveAgain(Vela::CodeDocument &main)
{
    const QString path = pathOf(*m_parent, main);
    if (!main.isModified() || !main.fileExists() || main.isReadOnly()
        || (m_toSave.contains(path) && !isEditedSince(&main, m_toSave.value(path))))
        return;
    m_toSave.insert(path, main.revision());
    main.toFile(main.archive(), main.fileName(), 0, nullptr);
}

bool ProjectSession::isSaving() const
{
    return Studio::isSaving(*m_parent);
}

QStringList ProjectSession::finishSave()
{
    while (isSaving())
        QCoreApplication::processEvents(QEventLoop::ExcludeUserInputEvents
                                        | QEventLoop::WaitForMoreEvents);
    QStringList unsaved;
    const QList<Vela::ProjectFile *> files = modifiedProjectFiles(*m_parent);
    for (Vela::ProjectFile *file : files) {
        const QString path = pathOf(*m_parent, *file);
        if (m_toSave.contains(path) && !isEditedSince(file, m_toSave.value(path)))
            unsaved.append(path);
    }
    m_toSave.clear();
    return unsaved;
}

CopyResult ProjectSession::findings(const ContentList &contents)
{
    CopyResult result;
    for (const QString &file : contents.missing)
        result.warnings.append(tr("%1: is missing in the project").arg(file));
    for (const QString &file : contents.outside)
        result.errors.append(tr("%1: lies outside the project's folder, not copied").arg(file));
    return result;
}

CopyResult ProjectSession::saveAs(const QString &folder, Vela::JobStats *job)
{
    const QString root = normalizedPath(folder);
    const ArchivePointer oldArchive = shared(m_parent->archive());
    const SavePlan plan = planSave(*m_parent, root);
    const QStringList changed = below(plan.oldRoot, rootPath(*m_parent), modifiedFiles());
    const QStringList texts = below(plan.oldRoot, rootPath(*m_parent), textFiles(*m_parent));
    m_parent->saveAs(plan.path, job);
    if (QFileInfo::exists(plan.path))
        m_path = plan.path;

    CopyResult result = findings(plan.contents);
    result.errors +=
        failedCopies({*oldArchive, plan.oldRoot}, {Vela::FileSystemArchive::instance(), root},
                     plan.contents.files, changed, texts);
    const QStringList unsaved = modifiedFiles();
    for (const QString &file : unsaved)
        result.errors.append(tr("%1: was not saved").arg(file));
    return result;
}

CopyResult ProjectSession::backup(const QString &label, Vela::JobStats *job)
{
    if (!Backups::isValidLabel(label))
        return {QString(), {tr("\"%1\" cannot be the name of a backup").arg(label)}, {}};

    const ContentList contents = contentList(*m_parent, false);
    const QStringList before = names(backups().list());
    waitForFreeName(before, label);
    const bool isComplete = m_parent->backup(label, job);

    CopyResult result = findings(contents);
    if (!isComplete)
        result.errors.append(tr("the backup was not finished"));
    const QList<Backup> after = backups().find(label);
    const auto made = std::find_if(after.begin(), after.end(), [&before](const Backup &backup) {
        return !before.contains(backup.name);
    });
    if (made == after.end()) {
        result.errors.append(tr("no backup was written to %1").arg(Backups::folderOf(*m_parent)));
        return result;
    }
    result.name = made->name;
    const ArchivePointer target = openBackup(*made);
    if (!target)
        result.errors.append(tr("%1: the backup cannot be read").arg(made->path));
    else
        result.errors += failedCopies({m_parent->archive(), rootPath(*m_parent)},
                                      {*target, rootOf(*made)}, contents.files, modifiedFiles());
    return result;
}

CopyResult ProjectSession::restore(const Backup &backup, Vela::JobStats *job)
{
    QString error;
    const QStringList files = backupFiles(backup, &error);
    if (files.isEmpty())
        return {backup.name, {error}, {}};
    if (!m_parent->restoreBackup(backup.name, job))
        return {backup.name, {tr("the project is read-only: nothing was restored")}, {}};

    const ArchivePointer source = openBackup(backup);
    if (!source)
        return {backup.name, {tr("%1: the backup cannot be read").arg(backup.path)}, {}};
    return {backup.name,
            failedCopies({*source, rootOf(backup)}, {m_parent->archive(), rootPath(*m_parent)},
                         files, {}),
            {}};
}

void ProjectSession::reload(Vela::JobStats *job)
{
    const QList<Vela::Project *> projects = m_parent->openedProjects();
    if (job)
        job->setMaximum(unsigned(projects.size()));
    for (Vela::Project *project : projects) {
        project->reload();
        if (job)
            job->incrementValue();
    }
}

bool ProjectSession::findBackup(const QString &name, Backup *backup, QString *error) const
{
    const QList<Backup> found = backups().find(name);
    if (found.size() == 1) {
        *backup = found.first();
        return true;
    }
    if (found.isEmpty())
        *error = tr("%1: there is no such backup").arg(name);
    else
        *error = tr("%1: is the name of several backups: %2")
                     .arg(name, names(found).join(QStringLiteral(", ")));
    return false;
}

QStringList ProjectSession::backupFiles(const Backup &backup, QString *error)
{
    const ArchivePointer source = openBackup(backup);
    if (!source) {
        *error = tr("%1: the backup cannot be read").arg(backup.path);
        return {};
    }
    const QStringList files = filesBelow({*source, rootOf(backup)});
    if (files.isEmpty())
        *error = tr("%1: the backup holds no files").arg(backup.path);
    for (const QString &file : files) {
        if (leadsOut(file)) {
            *error = tr("%1: the backup holds a file that would lie outside the project: %2")
                         .arg(backup.path, file);
            return {};
        }
    }
    return files;
}

} // namespace Studio
