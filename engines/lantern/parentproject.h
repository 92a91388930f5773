// SPDX-License-Identifier: MIT
#pragma once

#include "project/parentproject.h"

#include <QMap>

namespace Lantern {

class DefinitionFile;
class Engine;
class Project;

/// A game folder with its projects, or the folder of a single project outside a game.
///
/// The game's own file is the main file of a project as well, so that it is shown, saved and backed
/// up like all others.
class ParentProject : public Vela::ParentProject
{
    Q_OBJECT

public:
    /// \a gameFile is the game file's name as the disk spells it, or empty outside a game.
    ParentProject(const QString &root, const QString &gameFile, Engine *engine);
    /// Deletes the projects that are left, released or not.
    ~ParentProject() override;

    /// Opens the game with all projects that are not closed. Those that cannot be read become
    /// messages of the game's file. \a job hears of each file and may end it; it may be null.
    bool openGame(Vela::JobStats *job, QString *error);
    /// Opens one project by its main file, an absolute name.
    Project *openMainFile(const QString &fileName, Vela::JobStats *job, QString *error);
    /// Opens a project of the game that is closed. \a path is its folder or its main file.
    Project *openClosed(const QString &path, QString *error);

    /// Returns the project of the game's own file, or null.
    Project *gameProject() const;
    /// A project calls this behind its release: it becomes one of the closed.
    void projectReleased(Project *project);

    Vela::Engine *engine() const override;
    QString gameFile() const override;
    void closedProjectFiles(const QString &path, QStringList &files) const override;
    void lastProjectClosed() override;

private:
    Project *open(DefinitionFile *main, const QString &fileName, Vela::JobStats *job,
                  QString *error);
    void showClosed(const QString &mainFile);
    QString absolute(const QString &path) const;

    Engine *const m_engine;
    const QString m_gameFile;
    Project *m_game = nullptr;
    // Main files of the projects that are not open, by their folders, relative to the root.
    QMap<QString, QString> m_closed;
};

} // namespace Lantern
