// SPDX-License-Identifier: MIT
#include "project/project.h"

#include "engine/engine.h"
#include "frame/filesystemarchive.h"
#include "frame/fileutils.h"
#include "frame/interface.h"
#include "project/messages.h"
#include "project/project_p.h"
#include "project/projectfile.h"
#include "project/projectfile_p.h"
#include "project/projectpath_p.h"

#include <QDir>
#include <algorithm>

namespace Vela {

namespace {

constexpr int typeCount = 32;

Project::FileTypes bitOf(int type)
{
    return Project::FileTypes(1) << type;
}

/// Returns the entry that a file of another archive stands for: the first that its name ends with.
int entryOf(const QStringList &entries, const QString &name)
{
    for (int i = 0; i < entries.size(); ++i) {
        const QString &entry = entries.at(i);
        if (name == entry || name.endsWith(QLatin1Char('/') + entry))
            return i;
    }
    return -1;
}

} // namespace

Project::Project(ParentProject *parent, int type, ProjectFile *mainFile, bool addMain)
    : d(std::make_unique<ProjectPrivate>(this))
{
    d->parent = parent;
    d->type = type;
    d->mainFile = mainFile;
    mainFile->addRef();
    d->archive = &parent->archive();
    d->archive->addRef();

    const QString parse = QStringLiteral("parseCode");
    const QString highlight = QStringLiteral("highlightCode");
    const QString model = QStringLiteral("modelCode");
    for (const QString &key : {parse, highlight, model})
        setOption(key, mainFile->option(key), true);
    for (const QString &key : {highlight, parse, model})
        mainFile->setOption(key, QVariant(), false, false);

    if (addMain)
        addFile(mainFile, Main);
}

Project::~Project()
{
    Project::release();
    d->mainFile->release();
}

void Project::release()
{
    if (Archive *const archive = d->archive) {
        archive->flush();
        d->archive = nullptr;
        archive->release();
    }
    if (d->parent)
        d->parent->removeRef(this);
    const QList<ProjectFile *> files = d->files.keys();
    d->files.clear();
    d->filesByType.clear();
    for (auto file = files.crbegin(); file != files.crend(); ++file) {
        disown(*file);
        (*file)->release();
    }
}

/// Cuts the ties of a file that leaves the project.
void Project::disown(ProjectFile *file)
{
    if (file->d->project == this)
        file->d->project = nullptr;
    if (Messages *const messages = file->messages())
        d->unregisterMessages(messages);
}

void Project::addToParent()
{
    if (d->parent)
        d->parent->addRef(this);
}

bool Project::addFile(ProjectFile *file, int type)
{
    if (type < 0 || type >= typeCount)
        return false;
    FileTypes &types = d->files[file];
    if (types & bitOf(type))
        return false;
    const bool isNew = !types;
    types |= bitOf(type);
    file->d->project = this;
    Messages *const messages = file->messages();
    if (isNew && messages)
        d->registerMessages(messages);
    d->filesByType[type].append(file);
    Q_EMIT fileAdded(file, type);
    if (d->parent)
        Q_EMIT d->parent->fileAdded(file);
    return true;
}

void Project::removeFile(int type, unsigned int index)
{
    const QList<ProjectFile *> files = filesByType(type);
    if (index < unsigned(files.size()))
        removeType(files.at(int(index)), type);
}

void Project::removeFile(ProjectFile *file)
{
    for (int type = 0; type < typeCount && fileID(file); ++type) {
        if (fileID(file) & bitOf(type))
            removeType(file, type);
    }
}

void Project::removeType(ProjectFile *file, int type)
{
    d->filesByType[type].removeOne(file);
    FileTypes &types = d->files[file];
    types &= ~bitOf(type);
    if (types) {
        Q_EMIT fileRemoved(file, type);
        return;
    }
    d->files.remove(file);
    disown(file);
    Q_EMIT fileRemoved(file, type);
    if (d->parent)
        Q_EMIT d->parent->fileClosed(file);
    file->release();
}

ProjectFile *Project::takeFile(ProjectFile *file)
{
    const FileTypes types = d->files.take(file);
    if (!types)
        return nullptr;
    for (QList<ProjectFile *> &list : d->filesByType)
        list.removeOne(file);
    disown(file);
    for (int type = 0; type < typeCount; ++type) {
        if (types & bitOf(type))
            Q_EMIT fileRemoved(file, type);
    }
    return file;
}

void Project::moveFile(int type, unsigned int from, unsigned int to)
{
    const auto list = d->filesByType.find(type);
    if (list == d->filesByType.end())
        return;
    const auto size = unsigned(list->size());
    if (from < size && to < size)
        list->move(int(from), int(to));
}

ProjectFile *Project::file(int type) const
{
    const QList<ProjectFile *> files = filesByType(type);
    const unsigned int selected = selectedFile(type);
    return files.value(selected < unsigned(files.size()) ? int(selected) : 0);
}

ProjectFile *Project::mainFile() const
{
    return d->mainFile;
}

QList<ProjectFile *> Project::files() const
{
    return d->files.keys();
}

QList<ProjectFile *> Project::filesByType(int type) const
{
    return d->filesByType.value(type);
}

QMap<ProjectFile *, Project::FileTypes> Project::filesWithIDs() const
{
    return d->files;
}

int Project::fileCount() const
{
    return d->files.size();
}

Project::FileTypes Project::fileID(ProjectFile *file) const
{
    return d->files.value(file);
}

unsigned int Project::selectedFile(int type) const
{
    return d->selected.value(type);
}

void Project::setSelectedFile(int type, unsigned int index)
{
    d->selected.insert(type, index);
}

Archive &Project::archive() const
{
    return d->archive ? *d->archive : FileSystemArchive::instance();
}

QString Project::absolutePath() const
{
    return archive().absoluteFilePath(fileName());
}

QString Project::basePath() const
{
    return absolutePath().mid(d->parent ? d->parent->basePath().length() : 0);
}

QString Project::fileName() const
{
    return d->mainFile->fileName();
}

int Project::type() const
{
    return d->type;
}

QString Project::typeName() const
{
    const Engine *const engine = d->parent ? d->parent->engine() : nullptr;
    return engine ? engine->queryString(Engine::ProjectTypeName, unsigned(d->type)) : QString();
}

QVariant Project::option(const QString &key) const
{
    const auto own = d->options.constFind(key);
    if (own != d->options.constEnd())
        return *own;
    const Interface *const host = Interface::instance();
    return host ? host->option(key, QVariant()) : QVariant();
}

QVariant Project::option(const QString &key, const QVariant &defaultValue) const
{
    const QVariant value = option(key);
    return value.isValid() ? value : defaultValue;
}

void Project::setOption(const QString &key, const QVariant &value, bool toHost)
{
    Interface *const host = Interface::instance();
    if (toHost && host)
        host->setOption(key, value);
    if (value.isNull())
        d->options.remove(key);
    else
        d->options.insert(key, value);
}

MessageList *Project::messages() const
{
    return d.get();
}

ParentProject *Project::parent() const
{
    return d->parent;
}

bool Project::isEmpty() const
{
    const QList<ProjectFile *> files = d->files.keys();
    return std::all_of(files.begin(), files.end(),
                       [](const ProjectFile *file) { return file->isEmpty(); });
}

bool Project::isModified() const
{
    const QList<ProjectFile *> files = d->files.keys();
    return std::any_of(files.begin(), files.end(),
                       [](const ProjectFile *file) { return file->isModified(); });
}

void Project::reload()
{
    const QList<ProjectFile *> files = d->files.keys();
    for (ProjectFile *file : files) {
        // Reading one file may have taken others out.
        if (d->files.contains(file) && file->fileExists())
            file->fromFile(file->archive(), file->fileName(), 0, nullptr);
    }
}

bool Project::saveAll(Archive &target, const QString &path, bool copy, QStringList *written)
{
    if (target.isReadOnly())
        return false;
    const QString folder = joinPath(path, basePath());
    QStringList rest = pathsToSave(copy);
    if (written)
        written->append(rest);

    const QList<ProjectFile *> files = d->files.keys();
    for (ProjectFile *file : files) {
        // Saving one file may have taken others out.
        if (d->files.contains(file))
            saveFile(file, target, folder, copy, rest);
    }
    copyFiles(rest, target, folder);

    if (!copy && d->archive && d->archive != &target) {
        target.addRef();
        d->archive->release();
        d->archive = &target;
    }
    return true;
}

/// Returns the paths of the files that belong to the project, each once, relative to its folder.
QStringList Project::pathsToSave(bool copy) const
{
    QList<Dependency> entries;
    dependencies(entries);
    if (copy)
        entries.append({Main, pathBelow(absolutePath(), archive().absoluteFileName(fileName()))});
    QStringList paths;
    for (const Dependency &entry : qAsConst(entries)) {
        if (!entry.second.isEmpty())
            paths.append(QDir::cleanPath(entry.second));
    }
    paths.removeDuplicates();
    return paths;
}

/// Writes one file below \a folder if it has to be written from memory, and takes it off \a rest.
void Project::saveFile(ProjectFile *file, Archive &target, const QString &folder, bool copy,
                       QStringList &rest)
{
    if (copy && !file->isModified() && file->fileExists())
        return;
    const bool isInArchive = &file->archive() == &archive();
    const QString name = file->archive().absoluteFileName(file->fileName());
    if (!copy) {
        file->bind(target);
        if (fileID(file) & bitOf(Main))
            return;
    }
    QString relative = isInArchive ? pathBelow(absolutePath(), name) : QString();
    if (isInArchive && relative.isEmpty())
        return;
    const int entry = isInArchive ? rest.indexOf(relative) : entryOf(rest, name);
    if (relative.isEmpty() && entry >= 0)
        relative = rest.at(entry);
    // What cannot be written from memory stays on the list and is copied.
    if (relative.isEmpty() || !staysBelow(relative) || !file->canSave())
        return;
    file->toFile(target, joinPath(folder, relative), copy ? ProjectFile::Copy : 0u, nullptr);
    if (entry >= 0)
        rest.removeAt(entry);
}

void Project::copyFiles(const QStringList &files, Archive &target, const QString &folder)
{
    Archive &source = archive();
    const QString sourceFolder = absolutePath();
    for (const QString &file : files) {
        const QString from = QDir::cleanPath(source.absoluteFileName(joinPath(sourceFolder, file)));
        const QString below = pathBelow(sourceFolder, from);
        if (below.isEmpty() || !staysBelow(below) || !source.fileExists(from))
            continue;
        const QString to = target.absoluteFileName(joinPath(folder, below));
        if (from != to || &source != &target)
            copyFile(source, from, target, to);
    }
}

} // namespace Vela
