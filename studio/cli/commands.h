// SPDX-License-Identifier: MIT
#pragma once

#include "studio/cli/commandline.h"

#include <vector>

namespace Studio {

/// Returns the commands in the order of the help text.
const std::vector<Command> &commands();

/// Returns null for a name that no command has.
const Command *findCommand(const QString &name);

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

} // namespace Studio
