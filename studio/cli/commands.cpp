// SPDX-License-Identifier: MIT
#include "studio/cli/commands.h"

#include <algorithm>

namespace Studio {

const std::vector<Command> &commands()
{
    static const std::vector<Command> all{
        {"info", "PROJECT", Json, "show what a project consists of",
         "Prints each project with its name, type and folder, and below it its files with their\n"
         "types, encoding and size. Closed projects are listed with their files.",
         runInfo},
        {"check", "PROJECT", Json | Quiet, "read everything and print the messages",
         "Reads every file and prints one line for each message, sorted by project, file and\n"
         "place:\n\n"
         "  file:line:column: error|warning|information: text\n\n"
         "Lines and columns count from 1. The exit status is 1 if a message is an error.",
         runCheck},
        {"backup", "PROJECT NAME", DryRun | Quiet, "write a dated backup",
         "Writes all files into the folder \"backup\" of the project, packed if an engine brings\n"
         "a zip archive, compares them with the project's, and prints the full name of the\n"
         "backup: date, time and NAME.",
         runBackup},
        {"backups", "PROJECT", Json, "list the backups, the newest first",
         "Prints one line for each backup: date, size in bytes and full name.", runBackups},
        {"restore", "PROJECT NAME", DryRun | Quiet, "write a backup over the project",
         "NAME is the full name that \"vela backups\" prints, or the name given to \"vela "
         "backup\"\n"
         "if only one backup has it. The files of the backup replace those of the project and\n"
         "are compared afterwards; other files stay.",
         runRestore},
        {"save-as", "PROJECT FOLDER", DryRun | Quiet, "copy a project to another folder",
         "Saves the project below FOLDER, which must be empty or not exist, and compares the\n"
         "copies with the originals.",
         runSaveAs},
    };
    return all;
}

const Command *findCommand(const QString &name)
{
    const auto &all = commands();
    const auto found = std::find_if(all.begin(), all.end(), [&name](const Command &command) {
        return name == QLatin1String(command.name);
    });
    return found == all.end() ? nullptr : &*found;
}

} // namespace Studio
