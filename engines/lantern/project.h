// SPDX-License-Identifier: MIT
#pragma once

#include "lantern/definitionfile.h"

#include "project/project.h"

#include <QSet>
#include <QTimer>

namespace Lantern {

class ParentProject;

/// A unit of a game: a character, a stage, a screen, what several of them share, or the game's own
/// file. It is a child of its parent project, and deletes itself once it has been released.
class Project : public Vela::Project
{
    Q_OBJECT

public:
    /// Takes the caller's reference on \a main over.
    Project(ParentProject *parent, DefinitionFile *main);

    /// Returns the name set in the main file, else the main file's own.
    QString name() const override;
    QString version() const override;
    /// Returns the project's own stage, else the game's, else 320 by 180.
    QSize stageSize() const override;
    QPointF stageScale() const override;
    void dependencies(QList<Dependency> &files) const override;
    void reload() override;
    void release() override;

    DefinitionFile *definition() const;

private:
    void definitionChanged();
    void matchFiles();
    void removeUnnamedFiles(QSet<Dependency> &named);
    void addFiles(const QSet<Dependency> &missing);
    void onFilesChanged(int type);
    void passOnNames();
    const Settings *gameSettings() const;

    ParentProject *const m_parent;
    DefinitionFile *const m_definition;
    QList<Dependency> m_dependencies;
    QString m_name;
    bool m_isReloading = false;
    QTimer m_namesChanged; // many files of a list change at once
};

/// Makes an empty file of a type of Vela::Project::FileType, or returns null.
Vela::ProjectFile *createContentFile(int type);

} // namespace Lantern
