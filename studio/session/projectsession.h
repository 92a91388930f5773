// SPDX-License-Identifier: MIT
#pragma once

#include "studio/session/backups.h"
#include "studio/session/projectcontents.h"

#include <QCoreApplication>
#include <QHash>
#include <memory>

namespace Vela {
class CodeDocument;
class Engine;
class JobStats;
class ProgressProvider;
} // namespace Vela

namespace Studio {

/// What came of an operation that writes many files.
struct CopyResult
{
    QString name;         ///< of the backup that was made
    QStringList errors;   ///< whatever was asked for and not done, a line each
    QStringList warnings; ///< what the project lacks, so that no copy can hold it
};

/// One parent project, opened for as long as this object lives. Main thread only, between the
/// making and the end of an EngineLoader.
class ProjectSession
{
    Q_DECLARE_TR_FUNCTIONS(ProjectSession)

public:
    /// Returns \a path, as a user types it, absolute and clean: "~" is the user's home, and there
    /// is no trailing separator.
    static QString normalizedPath(const QString &path);

    /// Opens the project that \a path, a folder or a main file, names. Returns null, with the
    /// reason in \a error, where no engine reads it.
    static std::unique_ptr<ProjectSession> open(const QString &path, QString *error);
    /// Makes a new project of \a engine in a folder that is empty or does not exist yet, and opens
    /// it. Returns null, with the reason in \a error, on failure.
    static std::unique_ptr<ProjectSession> create(Vela::Engine *engine, const QString &folder,
                                                  const QString &name, QString *error);
    /// Closes the project without saving, once what is being saved is on the disk.
    ~ProjectSession();

    Vela::ParentProject *parent() const;
    /// Returns the normalized path that opens this project again.
    QString path() const;
    Backups backups() const;

    /// Opens a project that is shown closed; \a path is one of closedProjects().
    bool openClosedProject(const QString &path, QString *error);
    /// Opens every project that is shown closed. Returns the reasons of those that cannot be
    /// opened.
    QStringList openAllProjects();

    bool isModified() const;
    /// Returns the modified files, relative to the root.
    QStringList modifiedFiles() const;

    /// Saves in place and returns the files that could not be saved.
    QStringList save(Vela::ProgressProvider *provider);
    /// Begins the same, to be ended with finishSave(). Texts may go on being written behind the
    /// call, and can be edited meanwhile; their jobs are \a provider's and end when they are
    /// through. Until then such a file has no name.
    void beginSave(Vela::ProgressProvider *provider);
    /// Returns whether something is still being written.
    bool isSaving() const;
    /// Waits for what is still being written, with the windows painted and no input taken. Returns
    /// the files that could not be saved; what was edited meanwhile is modified, and not among
    /// them.
    QStringList finishSave();
    /// Returns what a copy of \a contents cannot hold.
    static CopyResult findings(const ContentList &contents);
    /// Saves everything below \a folder, works there from then on, and compares the copies.
    CopyResult saveAs(const QString &folder, Vela::JobStats *job);
    /// Writes a backup of the opened projects and compares it. \a label must be
    /// Backups::isValidLabel().
    CopyResult backup(const QString &label, Vela::JobStats *job);
    /// Writes a backup over the project, reads all files again, and compares them.
    CopyResult restore(const Backup &backup, Vela::JobStats *job);
    /// Reads every file again; what was not saved is lost. \a job may be null.
    void reload(Vela::JobStats *job);

    /// Returns the one backup that \a name means, by its name or by its label alone. Returns false,
    /// with the reason in \a error, if there is none or more than one.
    bool findBackup(const QString &name, Backup *backup, QString *error) const;
    /// Returns the files of a backup relative to the project's root; empty, with the reason in
    /// \a error, if it cannot be read or holds none.
    static QStringList backupFiles(const Backup &backup, QString *error);

private:
    Q_DISABLE_COPY(ProjectSession)

    ProjectSession(Vela::ParentProject *parent, const QString &path);

    void saveAgain(Vela::CodeDocument &main);

    std::unique_ptr<Vela::ParentProject> m_parent;
    QString m_path;
    QHash<QString, int> m_toSave; // the revisions of the texts that are being saved, by their paths
};

} // namespace Studio
