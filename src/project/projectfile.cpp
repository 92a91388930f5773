// SPDX-License-Identifier: MIT
#include "project/projectfile.h"

#include "frame/filesystemarchive.h"
#include "frame/interface.h"
#include "project/parentproject.h"
#include "project/project.h"
#include "project/projectfile_p.h"

namespace Vela {

namespace {

/// Returns the parent of a file's project, or null.
ParentProject *parentOf(const ProjectFile &file)
{
    const Project *const project = file.project();
    return project ? project->parent() : nullptr;
}

} // namespace

ProjectFile::ProjectFile()
    : d(std::make_unique<ProjectFilePrivate>())
{
}

ProjectFile::~ProjectFile()
{
    if (d->archive)
        d->archive->release();
}

void ProjectFile::addRef()
{
    ++d->refCount;
}

void ProjectFile::release()
{
    if (--d->refCount == 0)
        free();
}

int ProjectFile::refCount() const
{
    return d->refCount;
}

Archive &ProjectFile::archive() const
{
    return d->archive ? *d->archive : FileSystemArchive::instance();
}

Project *ProjectFile::project() const
{
    return d->project;
}

QAbstractItemModel *ProjectFile::model()
{
    return nullptr;
}

ProjectFile::Capabilities ProjectFile::capabilities() const
{
    return {};
}

bool ProjectFile::canSave() const
{
    return false;
}

bool ProjectFile::isModified() const
{
    return false;
}

void ProjectFile::reset()
{
}

bool ProjectFile::toFile(Archive &archive, const QString &, unsigned int flags, JobStats *)
{
    if (flags & Copy)
        return false;
    bind(archive);
    if (ParentProject *const parent = parentOf(*this))
        Q_EMIT parent->fileSaved(this);
    return false;
}

bool ProjectFile::fromFile(Archive &archive, const QString &, unsigned int flags, JobStats *)
{
    if (flags & Copy)
        return false;
    bind(archive);
    if (ParentProject *const parent = parentOf(*this))
        Q_EMIT parent->fileOpened(this);
    return false;
}

QString ProjectFile::fileName() const
{
    return QString();
}

QString ProjectFile::displayName() const
{
    return fileName().section(QLatin1Char('/'), -1);
}

void ProjectFile::beginChange()
{
}

void ProjectFile::endChange()
{
}

void ProjectFile::undo()
{
}

void ProjectFile::redo()
{
}

QVariant ProjectFile::option(const QString &key, const QVariant &defaultValue) const
{
    const QVariant value = option(key);
    return value.isValid() ? value : defaultValue;
}

QVariant ProjectFile::option(const QString &key) const
{
    const auto own = d->options.constFind(key);
    if (own != d->options.constEnd())
        return *own;
    if (const Project *const owner = project())
        return owner->option(key);
    if (const Interface *const host = Interface::instance())
        return host->option(key, QVariant());
    return QVariant();
}

void ProjectFile::setOption(const QString &key, const QVariant &value, bool inProject, bool inHost)
{
    Project *const owner = project();
    if (inProject && owner)
        owner->setOption(key, value, inHost);
    else if (value.isNull())
        d->options.remove(key);
    else
        d->options.insert(key, value);
}

const char *ProjectFile::fileExtension() const
{
    return nullptr;
}

bool ProjectFile::fileExists() const
{
    return archive().fileExists(fileName());
}

bool ProjectFile::isReadOnly() const
{
    const QString name = fileName();
    return !name.isEmpty() && !archive().isWritable(name);
}

Messages *ProjectFile::messages() const
{
    return fileMessages();
}

void ProjectFile::bind(Archive &archive)
{
    if (d->archive == &archive)
        return;
    // The old archive may hold the last reference on the new one.
    archive.addRef();
    if (d->archive)
        d->archive->release();
    d->archive = &archive;
}

} // namespace Vela
