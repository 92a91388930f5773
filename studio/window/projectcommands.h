// SPDX-License-Identifier: MIT
#pragma once

#include "studio/session/projectsession.h"
#include "studio/session/textautosave.h"
#include "studio/window/recoveryoffer.h"
#include "studio/window/saveprogress.h"

#include <QObject>
#include <memory>

namespace Vela {
class ParentProject;
class Project;
} // namespace Vela

namespace Studio {

class Host;
class RecentProjects;
class SaveFailures;

/// What the user does with a whole project, with the questions that belong to it. One parent
/// project is open at a time.
class ProjectCommands : public QObject
{
    Q_OBJECT

public:
    ProjectCommands(Host &host, RecentProjects &recent, QWidget *window);
    ~ProjectCommands() override;

    /// Returns null while no project is open.
    ProjectSession *session() const;
    /// Returns whether a command is at work. It lets events through; no other may begin in them.
    bool isBusy() const;

    /// Opens the project at \a path in the place of the present one. Asks about unsaved changes and
    /// tells about a failure, which leaves the present project open. Returns whether it is open.
    bool open(const QString &path);
    /// The same without a dialog about a failure, whose reason is in \a error instead. That is
    /// empty where the user cancelled.
    bool open(const QString &path, QString *error);
    void chooseAndOpen();
    void createNew();
    /// Saves what is modified, and waits until it is on the disk. Returns whether all of it is.
    bool save();
    /// The same without waiting: texts are written while the user goes on. Every other command
    /// waits for them first.
    void saveInBackground();
    const SaveProgress &saveProgress() const;
    void saveAs();
    /// Asks about unsaved changes; returns false, with nothing done, if the user cancels.
    bool close();
    /// Asks about unsaved changes; returns whether they may be lost now, or are saved.
    bool mayLeave();
    void backup();
    void restore();
    void reload();
    void openClosedProject(const QString &path);
    /// Closes the one project that a path relative to the root belongs to.
    void closeProject(const QString &path);
    /// Looks in the background for what a crash left of the project, and offers that if there is
    /// something.
    void offerRecovery();

Q_SIGNALS:
    void opened(Vela::ParentProject *parent);
    /// The project goes when this returns.
    void aboutToClose();
    void closed();
    /// Files were saved, loaded again or became others.
    void contentsChanged();
    /// Something worth a line in the status bar happened.
    void done(const QString &text);

private:
    /// Returns whether a command may begin with the open project.
    bool mayBegin();
    bool beginSave();
    bool endSave();
    void adopt(std::unique_ptr<ProjectSession> session);
    void drop();
    void warn(const QString &title, const QString &text, const QStringList &lines = {});
    /// Shows what a copying operation could not do, or says that it is done.
    void report(const QString &title, const QString &success, const CopyResult &result);
    bool askToOverwrite(const QString &title, const QString &text);
    bool askForLabel(QString &label);
    QString startFolder() const;

    Host &m_host;
    RecentProjects &m_recent;
    QWidget *m_window;
    TextAutosave m_autosave;
    RecoveryOffer m_recovery;
    SaveProgress m_saveProgress;            // outlives the jobs of the session's files
    std::unique_ptr<SaveFailures> m_saving; // null while nothing is being saved
    int m_saveCount = 0;
    std::unique_ptr<ProjectSession> m_session;
    bool m_busy = false;
};

} // namespace Studio
