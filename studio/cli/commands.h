// SPDX-License-Identifier: MIT
#pragma once

#include "studio/cli/commandline.h"

#include <vector>

namespace Studio {

/// Returns the commands in the order of the help text.
const std::vector<Command> &commands();

/// Returns the command whose name the words of a call, at least one, begin with; null for none.
const Command *findCommand(const QStringList &words);
/// Returns the second words of the commands that have two and \a word for the first.
QStringList commandsBehind(const QString &word);

// What the commands do. Each returns an ExitCode.
int runInfo(const Call &call);
int runCheck(const Call &call);
int runTree(const Call &call);
int runFormat(const Call &call);
int runAnimations(const Call &call);
int runPlay(const Call &call);
int runBackup(const Call &call);
int runBackups(const Call &call);
int runRestore(const Call &call);
int runSaveAs(const Call &call);
int runConvert(const Call &call);
int runSpritesList(const Call &call);
int runSpritesExport(const Call &call);
int runSpritesImport(const Call &call);
int runSoundConvert(const Call &call);
int runSoundInfo(const Call &call);
int runSoundsList(const Call &call);
int runSoundsExport(const Call &call);
int runSoundsImport(const Call &call);
int runGif(const Call &call);

} // namespace Studio
