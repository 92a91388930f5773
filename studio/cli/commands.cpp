// SPDX-License-Identifier: MIT
#include "studio/cli/commands.h"

#include <algorithm>

namespace Studio {

const std::vector<Command> &commands()
{
    static const std::vector<Command> all{
        {"info",
         "PROJECT",
         {},
         Json,
         "show what a project consists of",
         "Prints each project with its name, type and folder, and below it its files with their\n"
         "types, encoding and size. Closed projects are listed with their files.",
         runInfo},
        {"check",
         "PROJECT",
         {},
         Json | Quiet,
         "read everything and print the messages",
         "Reads every file and prints one line for each message, sorted by project, file and\n"
         "place:\n\n"
         "  file:line:column: error|warning|information: text\n\n"
         "Lines and columns count from 1. The exit status is 1 if a message is an error.",
         runCheck},
        {"tree",
         "FILE",
         {},
         Json,
         "print the node tree of a definition text",
         "Prints one line for each node, indented as the nodes are inside of each other:\n\n"
         "  line  type  name [= value]\n\n"
         "Lines count from 1. FILE is a text that a project names; its project is looked for in\n"
         "its folder and in those above.",
         runTree},
        {"format",
         "FILE...",
         {},
         Check | DryRun | IndentOnly | Quiet,
         "format definition texts",
         "Formats texts in the engine's way, and prints the names of those that it has changed "
         "and\n"
         "saved. What is formatted already is not written, whatever its line ends. With --check\n"
         "nothing is written, and the exit status is 1 if a file would change.",
         runFormat},
        {"animations",
         "PROJECT",
         {},
         Json,
         "list the animations",
         "Prints one line for each animation: file, identifier, name, number of frames, duration,\n"
         "and the index of the frame that it goes on with when it is through. A tick is a 60th of\n"
         "a second; the duration is \"endless\" if a frame never ends.",
         runAnimations},
        {"play", "PROJECT ID", Ticks, Ticks | InFile | Json, "print the frame at each tick",
         "Plays the animation with the identifier ID from its beginning, and prints one line for\n"
         "each tick: the time in ticks from the beginning, the index of the frame, and the number\n"
         "of ticks, with this one, that the frame has been shown. Times go back when the "
         "animation\n"
         "goes on at its loop point. N is at most 216000, an hour. Where several files have the\n"
         "animation, --file takes one of those that \"vela animations\" prints.",
         runPlay},
        {"backup",
         "PROJECT NAME",
         {},
         DryRun | Quiet,
         "write a dated backup",
         "Writes all files into the folder \"backup\" of the project, packed if an engine brings\n"
         "a zip archive, compares them with the project's, and prints the full name of the\n"
         "backup: date, time and NAME.",
         runBackup},
        {"backups",
         "PROJECT",
         {},
         Json,
         "list the backups, the newest first",
         "Prints one line for each backup: date, size in bytes and full name.",
         runBackups},
        {"restore",
         "PROJECT NAME",
         {},
         DryRun | Quiet,
         "write a backup over the project",
         "NAME is the full name that \"vela backups\" prints, or the name given to \"vela "
         "backup\"\n"
         "if only one backup has it. The files of the backup replace those of the project and\n"
         "are compared afterwards; other files stay.",
         runRestore},
        {"save-as",
         "PROJECT FOLDER",
         {},
         DryRun | Quiet,
         "copy a project to another folder",
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
