// SPDX-License-Identifier: MIT
#include "studio/cli/commandline.h"

#include "studio/cli/commands.h"

#include "version.h"

#include <QCommandLineParser>

namespace Studio {

namespace {

/// An option as users write it. The value 0 is for those of the program, which every call may have.
struct OptionInfo
{
    int option;
    const char *shortName;
    const char *name;
    const char *value;
    const char *summary;
};

const OptionInfo Options[] = {
    {Json, "", "json", "", "print JSON instead of text"},
    {DryRun, "n", "dry-run", "", "print the files that would be written, and write nothing"},
    {Quiet, "q", "quiet", "", "print nothing but errors"},
    {Check, "", "check", "", "write nothing, print what would change, and fail if anything would"},
    {IndentOnly, "", "indent-only", "", "change the indents of lines and nothing else"},
    {Ticks, "", "ticks", "N", "play for N ticks"},
    {InFile, "", "file", "FILE", "look in FILE only"},
    {WithPalette, "", "palette", "FILE", "fit the image to the colors of FILE"},
    {ColorCount, "", "colors", "N", "reduce the image to N colors"},
    {Scale, "", "scale", "SIZE", "convert: to WxH pixels; gif: SIZE times as large"},
    {Filter, "", "filter", "NAME", "how new pixels are made"},
    {Rotate, "", "rotate", "DEG", "turn clockwise by DEG degrees"},
    {Crop, "", "crop", "", "cut off the borders in which nothing is seen"},
    {Format, "", "format", "WORD", "write files of this format: png, flac, ..."},
    {Speed, "", "speed", "X", "play X times as fast"},
    {SharedPalette, "", "shared-palette", "", "use the first frame's colors for all frames"},
    {Once, "", "once", "", "play once, and not again and again"},
    {SampleRate, "", "rate", "N", "make N frames of sound a second"},
    {SampleBits, "", "bits", "N", "make samples of N bits: 8, 16, 20, 24 or 32"},
    {ChannelCount, "", "channels", "N", "make 1 channel or 2"},
    {0, "", "extensions", "DIR", "load the engines from DIR"},
    {0, "h", "help", "", "print help, with a command about that command"},
    {0, "v", "version", "", "print the version"},
};

QString text(const char *utf8)
{
    return QString::fromUtf8(utf8);
}

QCommandLineOption parserOption(const OptionInfo &info)
{
    QStringList names(text(info.name));
    if (*info.shortName)
        names.prepend(text(info.shortName));
    return QCommandLineOption(names, text(info.summary), text(info.value));
}

QStringList argumentNames(const Command &command)
{
    return text(command.arguments).split(QLatin1Char(' '), Qt::SkipEmptyParts);
}

/// Returns whether a command takes that many arguments.
bool takes(const Command &command, int count)
{
    const QStringList names = argumentNames(command);
    return names.last().endsWith(QLatin1String("...")) ? count >= names.size()
                                                       : count == names.size();
}

QString longForm(const OptionInfo &info)
{
    const QString name = QStringLiteral("--") + text(info.name);
    return *info.value ? name + QLatin1Char(' ') + text(info.value) : name;
}

QString usageLine(const Command &command)
{
    QString result = QStringLiteral("%1 %2").arg(text(command.name), text(command.arguments));
    for (const OptionInfo &info : Options) {
        if (command.required & static_cast<CallOption>(info.option))
            result += QLatin1Char(' ') + longForm(info);
    }
    return result;
}

QString row(const QString &left, const char *right)
{
    return QStringLiteral("  %1  %2\n").arg(left, -28).arg(text(right));
}

QString optionRow(const OptionInfo &info)
{
    const QString letter =
        *info.shortName ? QStringLiteral("-%1, ").arg(text(info.shortName)) : QString();
    return row(letter + longForm(info), info.summary);
}

} // namespace

CommandLine::CommandLine(const QStringList &arguments)
{
    parse(arguments);
}

void CommandLine::parse(const QStringList &arguments)
{
    QCommandLineParser parser;
    for (const OptionInfo &info : Options)
        parser.addOption(parserOption(info));
    if (!parser.parse(arguments))
        return fail(parser.errorText());

    for (const OptionInfo &info : Options) {
        const QString name = text(info.name);
        if (!parser.isSet(name))
            continue;
        if (*info.value && parser.value(name).isEmpty())
            return fail(QStringLiteral("--%1 needs %2").arg(name, text(info.value)));
        const auto option = static_cast<CallOption>(info.option);
        m_call.options |= option;
        if (*info.value)
            m_call.values.insert(option, parser.value(name));
    }
    m_extensions = parser.value(QStringLiteral("extensions"));
    if (parser.isSet(QStringLiteral("version"))) {
        m_kind = ShowVersion;
        return;
    }
    readCommand(parser.positionalArguments(), parser.isSet(QStringLiteral("help")));
}

void CommandLine::readCommand(QStringList words, bool helpWanted)
{
    while (!words.isEmpty() && words.first() == QLatin1String("help")) {
        words.removeFirst();
        helpWanted = true;
    }
    if (words.isEmpty()) {
        if (!helpWanted)
            fail(QStringLiteral("a command is missing; see vela --help"));
        return;
    }
    m_command = findCommand(words);
    if (!m_command) {
        const QString known = commandsBehind(words.first()).join(QStringLiteral(", "));
        return fail(
            known.isEmpty()
                ? QStringLiteral("there is no command \"%1\"; see vela --help").arg(words.first())
                : QStringLiteral("vela %1: one of these has to follow: %2")
                      .arg(words.first(), known));
    }
    const QString name = text(m_command->name);
    words = words.mid(name.count(QLatin1Char(' ')) + 1);
    if (helpWanted) {
        m_kind = ShowCommandHelp;
        return;
    }
    if (!takes(*m_command, words.size()) || (m_command->required & ~m_call.options))
        return fail(QStringLiteral("usage: vela %1").arg(usageLine(*m_command)));
    for (const OptionInfo &info : Options) {
        const CallOptions given = m_call.options & static_cast<CallOption>(info.option);
        if (given & ~m_command->options)
            return fail(QStringLiteral("vela %1 has no option --%2").arg(name, text(info.name)));
    }
    m_call.arguments = words;
    m_kind = RunCommand;
}

void CommandLine::fail(const QString &error)
{
    m_kind = WrongCall;
    m_error = error;
}

CommandLine::Kind CommandLine::kind() const
{
    return m_kind;
}

QString CommandLine::error() const
{
    return m_error;
}

const Command *CommandLine::command() const
{
    return m_command;
}

const Call &CommandLine::call() const
{
    return m_call;
}

QString CommandLine::extensions() const
{
    return m_extensions;
}

QString CommandLine::help()
{
    QString result = QStringLiteral(
        "Usage: vela COMMAND ARGUMENTS [OPTIONS]\n"
        "Works on projects of 2D game engines without a window or a display.\n\n"
        "PROJECT is a project's folder or main file, FILE a file of a project. Arguments and\n"
        "options come in any order; what follows -- is an argument.\n\n"
        "Commands:\n");
    for (const Command &command : commands())
        result += row(usageLine(command), command.summary);
    result += row(QStringLiteral("help COMMAND"), "tell about a command");
    result += QStringLiteral("\nOptions:\n");
    for (const OptionInfo &info : Options)
        result += optionRow(info);
    result += QStringLiteral("\nExit status: 0 if everything asked for was done, 1 if checked "
                             "content has errors\nor is not formatted, 2 if the call is wrong or "
                             "something could not be done.\n");
    return result;
}

QString CommandLine::help(const Command &command)
{
    QString result = QStringLiteral("Usage: vela %1 [OPTIONS]\n\n%2\n\nOptions:\n")
                         .arg(usageLine(command), text(command.description));
    for (const OptionInfo &info : Options) {
        if (!info.option || command.options.testFlag(static_cast<CallOption>(info.option)))
            result += optionRow(info);
    }
    return result;
}

QString CommandLine::version()
{
    return QStringLiteral("vela " VELA_VERSION_STRING "\n");
}

} // namespace Studio
