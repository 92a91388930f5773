// SPDX-License-Identifier: MIT
#include "frame/textcodecs.h"
#include "studio/cli/commandline.h"
#include "studio/cli/console.h"
#include "studio/cli/consolehost.h"
#include "studio/cli/dialogrefuser.h"
#include "studio/session/engineloader.h"

#include <QApplication>
#include <QFileInfo>
#include <QTextCodec>

#include <csignal>

using namespace Studio;

namespace {

/// Returns whether the environment names no language at all, as in scheduled jobs and containers.
bool hasPlainLocale()
{
    for (const char *name : {"LC_ALL", "LC_CTYPE", "LANG"}) {
        const QByteArray value = qgetenv(name);
        if (!value.isEmpty())
            return value == "C" || value == "POSIX";
    }
    return true;
}

/// What Qt warns about, such as an odd runtime folder, concerns no user of a finished call.
void onMessage(QtMsgType type, const QMessageLogContext &, const QString &text)
{
    if (type == QtCriticalMsg || type == QtFatalMsg)
        Console::report(text);
}

int run(const CommandLine &line)
{
    ConsoleHost host(line.call().options.testFlag(Quiet));
    Vela::TextCodecs::initialize();
    const QString folder =
        line.extensions().isEmpty() ? host.folders().extensionsFolder() : line.extensions();
    if (!QFileInfo(folder).isDir()) {
        Console::report(QStringLiteral("%1: the folder of the engines is not there").arg(folder));
        return Failed;
    }
    const DialogRefuser refuser;
    const EngineLoader loader(QFileInfo(folder).absoluteFilePath());
    const int code = line.command()->run(line.call());
    return refuser.hasRefused() || host.hasErrors() ? Failed : code;
}

int execute(const CommandLine &line)
{
    switch (line.kind()) {
    case CommandLine::RunCommand:
        return run(line);
    case CommandLine::ShowHelp:
        Console::print(CommandLine::help());
        return Done;
    case CommandLine::ShowCommandHelp:
        Console::print(CommandLine::help(*line.command()));
        return Done;
    case CommandLine::ShowVersion:
        Console::print(CommandLine::version());
        return Done;
    case CommandLine::WrongCall:
        break;
    }
    Console::report(line.error());
    return Failed;
}

} // namespace

int main(int argc, char *argv[])
{
    qInstallMessageHandler(onMessage);
    // A file that grows too long is to be an error like a full disk, and no end of the program.
    std::signal(SIGXFSZ, SIG_IGN);
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    // File names are UTF-8 where nothing else is said; Qt would take them for ASCII.
    if (hasPlainLocale())
        QTextCodec::setCodecForLocale(QTextCodec::codecForName("UTF-8"));
    const QApplication app(argc, argv);

    const int code = execute(CommandLine(QCoreApplication::arguments()));
    if (Console::finish())
        return code;
    Console::report(QStringLiteral("standard output cannot be written"));
    return Failed;
}
