// SPDX-License-Identifier: MIT
#pragma once

#include "lantern/parsercontext.h"

#include "project/message.h"

#include <QPointF>
#include <QSize>
#include <QString>
#include <QVector>

namespace Vela {
class RootCode;
}

namespace Lantern {

/// The types of projects; the first is the one that the game's own file makes.
enum ProjectType { GameProject, CharacterProject, StageProject, ScreenProject, SharedProject };
constexpr int ProjectTypeCount = 5;

/// A file that a definition text names.
struct FileEntry
{
    int type = 0;        ///< of Vela::Project::FileType; Main for a project of the game
    bool closed = false; ///< a project that the game does not open by itself
    QString path;        ///< relative to the text's folder, with "/", as the text spells it
    int line = 0;
    int column = 0;
    bool missing = false; ///< not on the disk, as far as anybody has looked
};

/// The settings of a main file, read off its tree, with what is wrong about them as a whole. The
/// parser has told about each line.
class Settings
{
public:
    Settings() = default;
    Settings(const Vela::RootCode &root, Scope scope);

    QString name;
    QString author;
    QString version;
    int projectType = SharedProject;
    QSize stageSize;    ///< in stage pixels; invalid where the text sets none
    QPointF stageScale; ///< null where the text sets none
    QVector<FileEntry> files;
    QVector<Vela::Message> messages;
};

/// The version of the engine that this extension knows.
constexpr int engineMajor = 1;
constexpr int engineMinor = 0;

} // namespace Lantern
