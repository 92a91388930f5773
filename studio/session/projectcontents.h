// SPDX-License-Identifier: MIT
#pragma once

#include <QList>
#include <QString>
#include <QStringList>

namespace Vela {
class Archive;
class ParentProject;
class Project;
class ProjectFile;
} // namespace Vela

namespace Studio {

/// One file that an opened project names.
struct ProjectEntry
{
    QString path;                      ///< relative to the parent project's root
    int type = 0;                      ///< a Vela::Project::FileType, or one of the engine's own
    Vela::ProjectFile *file = nullptr; ///< null where the project has not opened the file
};

/// Returns the root folder as an absolute path without a trailing separator; empty for the root of
/// a packed archive.
QString rootPath(const Vela::ParentProject &parent);

/// Returns \a path, absolute or as the project's archive understands it, relative to the root of
/// \a parent. A path outside the root comes back absolute.
QString relativeToRoot(const Vela::ParentProject &parent, const QString &path);

/// Returns the path of a file relative to the root, and of one that was never saved the name that
/// it has until then.
QString pathOf(const Vela::ParentProject &parent, const Vela::ProjectFile &file);

/// Sets, or with an empty one removes, the name that a file has until it is saved.
void setWorkingName(Vela::ProjectFile &file, const QString &name);

/// Returns the project's folder relative to the root; empty for the root itself.
QString projectFolder(const Vela::Project &project);

/// Returns the opened projects sorted by folder and main file: the parent project's own order
/// differs from run to run.
QList<Vela::Project *> sortedProjects(const Vela::ParentProject &parent);

/// Returns the file types that \a types holds, from the lowest.
QList<int> typesOf(quint32 types);

/// Returns the project's own files, each once, in the order of their types and of the lists.
QList<Vela::ProjectFile *> orderedFiles(const Vela::Project &project);

/// Returns what a project consists of: the main file, then what it refers to in that order, then
/// what is opened beside. A file under several types comes once for each.
QList<ProjectEntry> projectEntries(const Vela::Project &project);

/// Returns the roots, relative to the parent's, of the projects that are shown but not open.
QStringList closedProjects(const Vela::ParentProject &parent);

/// Returns the files of a closed project relative to the parent's root.
QStringList closedProjectFiles(const Vela::ParentProject &parent, const QString &project);

/// The files that a copy has to hold.
struct ContentList
{
    QStringList files;
    QStringList missing; ///< named by a project, but not there
    QStringList outside; ///< named by a project, but not inside its folder: no copy takes them
};

/// Returns the main file of a project and what it refers to, relative to the project's folder.
ContentList contentList(const Vela::Project &project);
/// Returns the same of all opened projects, relative to the root of \a parent, with \a withClosed
/// of the closed ones as well. Each file comes once.
ContentList contentList(const Vela::ParentProject &parent, bool withClosed);

/// A folder of an archive.
struct Place
{
    Vela::Archive &archive;
    QString root; ///< without a trailing separator
};

/// Returns a line of text for each of \a files that is not in \a to, or does not hold the bytes
/// there that it holds in \a from. What \a changed names was written from memory: it only has to
/// be there. Of \a texts the line ends may differ.
QStringList failedCopies(const Place &from, const Place &to, const QStringList &files,
                         const QStringList &changed, const QStringList &texts = {});

/// Returns whether two files hold the same bytes; false if either cannot be read.
bool sameContent(Vela::Archive &archive, const QString &name, Vela::Archive &other,
                 const QString &otherName);

/// Returns every file below the folder relative to it, sorted. Links are left out.
QStringList filesBelow(const Place &place);

} // namespace Studio
