// SPDX-License-Identifier: MIT
#pragma once

#include "lantern/definitionfile.h"

#include "project/project.h"

#include <QHash>
#include <QSet>
#include <QTimer>

namespace Lantern {

class ParentProject;

/// A unit of a game: a character, a stage, a screen, what several of them share, or the game's own
/// file. It is a child of its parent project, and deletes itself once it has been released.
///
/// The main file's text says which files there are. A file that is added, or gets its name, here
/// instead is written into the text as one step of undo; one outside of the folder cannot be, and
/// stays without a line until the project is closed.
class Project : public Vela::Project
{
    Q_OBJECT

public:
    /// Takes the caller's reference on \a main over. \a job hears of each file that is added, and
    /// its end leaves the others out; null where nobody waits.
    Project(ParentProject *parent, DefinitionFile *main, Vela::JobStats *job);

    /// Returns the name set in the main file, else the main file's own.
    QString name() const override;
    QString version() const override;
    /// Returns the project's own stage, else the game's, else 320 by 180.
    QSize stageSize() const override;
    QPointF stageScale() const override;
    void dependencies(QList<Dependency> &files) const override;
    bool saveAll(Vela::Archive &archive, const QString &path, bool copy,
                 QStringList *written) override;
    void reload() override;
    void release() override;

    DefinitionFile *definition() const;
    /// Has the texts look again for the sprites and sounds that they name.
    void passOnNames();

private:
    void definitionChanged();
    void matchFiles(Vela::JobStats *job = nullptr);
    void removeUnnamedFiles(QSet<Dependency> &named);
    void addFiles(const QSet<Dependency> &missing, Vela::JobStats *job);
    QString pathInFolder(const Vela::ProjectFile &file) const;
    void onFileAdded(Vela::ProjectFile *file);
    void onFileNamed(Vela::ProjectFile *file);
    void listFile(Vela::ProjectFile *file);
    void onFilesChanged(int type);
    const Settings *gameSettings() const;

    ParentProject *const m_parent;
    DefinitionFile *const m_definition;
    QList<Dependency> m_dependencies;
    QString m_name;
    QHash<const Vela::ProjectFile *, QString> m_names; // the last ones that are known
    bool m_matchesLater = false; // while several changes of the text come at once
    bool m_takesNames = false;   // while names come from the text, or move along with it
    QTimer m_namesChanged;       // many files of a list change at once
};

/// Makes an empty file of a type of Vela::Project::FileType, or returns null. One image, or one
/// sound, is told by its name from a file of many.
Vela::ProjectFile *createContentFile(int type, const QString &name);

} // namespace Lantern
