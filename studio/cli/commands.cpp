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
        {"convert",
         "IN OUT",
         {},
         WithPalette | ColorCount | Scale | Filter | Rotate | Crop | DryRun | Json | Quiet,
         "convert an image or a palette",
         "The formats are told by what follows the last dot of the names. Images: PNG, BMP, GIF,\n"
         "PCX, and what engines add. Palettes: ACT, to be read also ACO, ASE, PAL (RIFF or JASC)\n"
         "and TXT (Painter). An image of colors written as ACT leaves its palette there.\n\n"
         "The image is changed in this order: --crop, --scale, --rotate, then --palette or\n"
         "--colors. Filters are nearest (unless told otherwise), bilinear, epx-nearest,\n"
         "epx-bilinear, hq-nearest and hq-bilinear.\n\n"
         "An image with a palette keeps its colors, their order and its transparent color: scaled\n"
         "and rotated pixels are made of the same colors. What a rotation adds is transparent, or\n"
         "else has the color 0. With --palette the colors keep FILE's order, too; what cannot be\n"
         "seen gets its transparent color, or else the color 0, which no other pixel has then.\n"
         "With --colors the transparent color is the first of the N, unless the image has a\n"
         "palette and uses none but its first N colors: those stay as they are.\n\n"
         "A GIF holds a palette only. One of a single image has its transparent color as its\n"
         "background, which other programs show; of one that is read the first image is taken,\n"
         "its background as transparent. OUT may be IN, and is replaced in one step.",
         runConvert},
        {"sprites list",
         "FILE",
         {},
         Json,
         "list the sprites of a sprites file",
         "Prints one line for each sprite: its two numbers, its size, its bits a pixel, its axis,\n"
         "and the number of its palette, from 0, or \"-\".",
         runSpritesList},
        {"sprites export",
         "FILE FOLDER",
         {},
         Format | DryRun | Json | Quiet,
         "write the sprites of a file as images",
         "Writes each sprite to FOLDER/GROUP_IMAGE.png, or what --format says, and prints the\n"
         "names of the images. FOLDER is made if it is not there; images of these names are\n"
         "replaced. Of sprites with the same two numbers the second one gets \"-2\" behind its\n"
         "name, and so on. A PNG holds the axis, as the offset of its picture; other formats do\n"
         "not. Transparency that a format does not hold is told, as \"vela convert\" does.",
         runSpritesExport},
        {"sprites import",
         "FILE IMAGE...",
         {},
         DryRun | Json | Quiet,
         "put images into a sprites file",
         "Images that are called GROUP_IMAGE, as in 0_1.png, replace the sprite of these two\n"
         "numbers in its place, or become a new one; a replaced sprite keeps its axis unless the\n"
         "image has an offset of its own. A palette that only replaced sprites used goes with\n"
         "them. Other images come behind, with the next free numbers. FILE is made if it is not\n"
         "there, and saved once, at the end. An image that cannot be read is left out, and the\n"
         "exit status is 2. Prints the numbers and the image of each sprite.",
         runSpritesImport},
        {"sound convert",
         "IN OUT",
         {},
         SampleRate | SampleBits | ChannelCount | DryRun | Json | Quiet,
         "convert a sound",
         "The formats are told by what follows the last dot of the names: WAV, OGG, FLAC, to be\n"
         "read also MP3, and what engines add. The sound keeps its frames, bits and channels\n"
         "unless told otherwise: --rate resamples it to N frames a second, from 1 to 1048575,\n"
         "--bits gives its samples 8, 16, 20, 24 or 32 bits, and --channels makes one channel of\n"
         "the first two, or two of one. OGG loses what is hard to hear, holds 200000 frames a\n"
         "second at most, and is always read with 16 bits; FLAC holds 8 channels at most. WAV is\n"
         "read with integer samples only. OUT may be IN, and is replaced in one step.",
         runSoundConvert},
        {"sound info",
         "FILE...",
         {},
         Json,
         "show length and form of sounds",
         "Prints one line for each sound: its file, its format, its length in milliseconds, its\n"
         "frames a second, the bits of its samples, its channels and the number of its frames.\n"
         "A sound that cannot be read is told, and the exit status is 2.",
         runSoundInfo},
        {"sounds list",
         "FILE",
         {},
         Json,
         "list the sounds of a sounds file",
         "Prints one line for each sound: its identifier, its length in milliseconds, its frames\n"
         "a second, the bits of its samples, its channels and the number of its frames.",
         runSoundsList},
        {"sounds export",
         "FILE FOLDER",
         {},
         Format | DryRun | Json | Quiet,
         "write the sounds of a file as files",
         "Writes each sound to FOLDER/IDENTIFIER.wav, or what --format says, and prints the names\n"
         "of the files. FOLDER is made if it is not there; files of these names are replaced. Of\n"
         "sounds with the same identifier the second one gets \"-2\" behind its name, and so on.\n"
         "In an identifier that is no name of a file \"_\" stands for what cannot be in one.",
         runSoundsExport},
        {"sounds import",
         "FILE SOUND...",
         {},
         DryRun | Json | Quiet,
         "put sounds into a sounds file",
         "The identifier of a sound is the name of its file without what follows the last dot, or\n"
         "another one, with a warning, where FILE does not take that. A sound that FILE has is\n"
         "replaced in its place, others come behind. FILE is made if it is not there, and saved\n"
         "once, at the end. Where two files are for one sound nothing is done. A sound that\n"
         "cannot be read is left out, and the exit status is 2. Prints the identifier and the\n"
         "file of each sound.",
         runSoundsImport},
        {"gif",
         "PROJECT ID OUT",
         {},
         InFile | Scale | Speed | SharedPalette | Once | DryRun | Json | Quiet,
         "write an animation as a GIF",
         "Writes the animation with the identifier ID, the axes of its sprites in one place,\n"
         "moved by the offsets of the frames. Only sprites of sprites files are shown. Flips and\n"
         "scales are applied; angles and blending are not, and a warning tells so. Of an image\n"
         "with a palette the transparent color, or else the color 0, is not seen. Frames of 0\n"
         "ticks are left out. The animation begins again at its first frame, whatever its loop\n"
         "point, unless --once is given or a frame never ends: that is the last one then. Where\n"
         "several files have the animation, --file takes one of those that \"vela animations\"\n"
         "prints.",
         runGif},
    };
    return all;
}

const Command *findCommand(const QStringList &words)
{
    const auto &all = commands();
    const auto found = std::find_if(all.begin(), all.end(), [&words](const Command &command) {
        const QStringList name = QString::fromUtf8(command.name).split(QLatin1Char(' '));
        return name == words.mid(0, name.size());
    });
    return found == all.end() ? nullptr : &*found;
}

QStringList commandsBehind(const QString &word)
{
    QStringList result;
    for (const Command &command : commands()) {
        const QStringList name = QString::fromUtf8(command.name).split(QLatin1Char(' '));
        if (name.size() > 1 && name.first() == word)
            result.append(name.at(1));
    }
    return result;
}

} // namespace Studio
