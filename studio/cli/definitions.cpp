// SPDX-License-Identifier: MIT
#include "studio/cli/definitions.h"

#include "code/codedocument.h"
#include "frame/jobstats.h"
#include "project/parentproject.h"
#include "studio/cli/console.h"
#include "studio/cli/diskfiles.h"
#include "studio/cli/projectcall.h"
#include "studio/session/documents.h"
#include "studio/session/engineloader.h"

#include <QDir>
#include <QFileInfo>
#include <QSet>

namespace Studio {

namespace {

QList<Vela::ProjectFile *> filesOf(const Vela::ParentProject &parent)
{
    QList<Vela::ProjectFile *> result;
    const QList<Vela::Project *> projects = sortedProjects(parent);
    for (const Vela::Project *project : projects)
        result += orderedFiles(*project);
    return result;
}

Vela::ProjectFile *fileIn(const ProjectSession &session, const QFileInfo &wanted)
{
    const QList<Vela::ProjectFile *> files = filesOf(*session.parent());
    for (Vela::ProjectFile *file : files) {
        if (QFileInfo(file->fileName()) == wanted)
            return file;
    }
    return nullptr;
}

/// Returns what a folder holds that an engine opens: itself, or else main files. Several projects
/// in one folder open by their main files only.
QStringList projectsIn(const QDir &folder)
{
    if (EngineLoader::engineFor(folder.path()))
        return {folder.path()};
    QStringList result;
    const QStringList names = folder.entryList(QDir::Files, QDir::Name);
    for (const QString &name : names) {
        if (EngineLoader::engineFor(folder.filePath(name)))
            result.append(folder.filePath(name));
    }
    return result;
}

/// Returns the projects that may name a file, the nearest first.
QStringList projectsAbove(const QString &path)
{
    QStringList result;
    if (EngineLoader::engineFor(path))
        result.append(path);
    QDir folder = QFileInfo(path).dir();
    do {
        result += projectsIn(folder);
    } while (folder.cdUp());
    return result;
}

} // namespace

bool read(Vela::CodeDocument *document)
{
    // Whether an empty text has been read shows only when it is read again.
    if (!document->isEmpty() || !document->fileExists())
        return true;
    const auto job = createJob("Open");
    if (document->fromFile(document->archive(), document->fileName(), 0, job.get()))
        return true;
    Console::report(QStringLiteral("%1: cannot be read").arg(document->fileName()));
    return false;
}

QList<Definition> definitions(const Vela::ParentProject &parent)
{
    QList<Definition> result;
    QSet<const Vela::CodeDocument *> known;
    const QList<Vela::ProjectFile *> files = filesOf(parent);
    for (Vela::ProjectFile *file : files) {
        Vela::CodeDocument *const document = documentOf(file);
        if (!document || known.contains(document))
            continue;
        known.insert(document);
        result.append({relativeToRoot(parent, document->fileName()), document});
    }
    return result;
}

DefinitionFinder::DefinitionFinder() = default;
DefinitionFinder::~DefinitionFinder() = default;

Definition DefinitionFinder::find(const QString &file, const ProjectSession **session)
{
    const QString path = ProjectSession::normalizedPath(file);
    if (!hasFile(file))
        return {};
    QString reason = QStringLiteral("%1: no project above it names this file").arg(file);
    Vela::ProjectFile *const found = findFile(path, session, &reason);
    if (!found) {
        Console::report(reason);
        return {};
    }
    Vela::CodeDocument *const document = documentOf(found);
    if (!document)
        Console::report(QStringLiteral("%1: is not a definition text").arg(file));
    if (!document || !read(document))
        return {};
    return {relativeToRoot(*(*session)->parent(), path), document};
}

// A project that cannot be opened is a better reason than that none names the file.
Vela::ProjectFile *DefinitionFinder::findFile(const QString &path, const ProjectSession **session,
                                              QString *reason)
{
    const QFileInfo wanted(path);
    for (const auto &opened : m_sessions) {
        *session = opened.get();
        if (Vela::ProjectFile *file = fileIn(*opened, wanted))
            return file;
    }
    const QStringList projects = projectsAbove(path);
    for (const QString &project : projects) {
        QString error;
        std::unique_ptr<ProjectSession> opened = ProjectSession::open(project, &error);
        Vela::ProjectFile *const file = opened ? fileIn(*opened, wanted) : nullptr;
        if (!opened)
            *reason = error;
        if (!file)
            continue;
        *session = opened.get();
        m_sessions.push_back(std::move(opened));
        return file;
    }
    return nullptr;
}

} // namespace Studio
