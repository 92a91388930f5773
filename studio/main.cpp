// SPDX-License-Identifier: MIT
#include "frame/textcodecs.h"
#include "studio/host.h"
#include "studio/session/engineloader.h"
#include "studio/session/projectsession.h"
#include "studio/window/mainwindow.h"
#include "studio/window/screenshottour.h"
#include "studio/window/theme.h"
#include "version.h"

#include <QApplication>
#include <QCommandLineParser>
#include <QTextStream>
#include <QTimer>

namespace {

enum ExitCode { Done = 0, Failed = 2 };

const QString screenshotsOption = QStringLiteral("screenshots");
const QString portableOption = QStringLiteral("portable");

void describe(QCommandLineParser &parser)
{
    parser.setApplicationDescription(
        QCoreApplication::translate("main",
                                    "Edits the texts, animations, sprites and sounds of "
                                    "2D games."));
    parser.addHelpOption();
    parser.addVersionOption();
    parser.addOption(
        {portableOption,
         QCoreApplication::translate("main", "Keep the settings beside the program.")});
    parser.addOption({screenshotsOption,
                      QCoreApplication::translate("main",
                                                  "Leave pictures of the window's main "
                                                  "states in a folder and quit. Changes "
                                                  "the project."),
                      QStringLiteral("DIR")});
    parser.addPositionalArgument(
        QStringLiteral("PROJECT"),
        QCoreApplication::translate("main", "A project's folder or main file to open."),
        QStringLiteral("[PROJECT]"));
}

int fail(const QStringList &errors)
{
    QTextStream out(stderr);
    for (const QString &error : errors)
        out << QStringLiteral("vela-studio: ") << error << '\n';
    return Failed;
}

int run(const QCommandLineParser &parser)
{
    const bool portable = parser.isSet(portableOption);
    Studio::Host host(
        Studio::Folders(portable ? Studio::Folders::PortablePlace : Studio::Folders::UserPlace));
    Vela::TextCodecs::initialize();
    const Studio::EngineLoader loader(host.folders().extensionsFolder());
    const Studio::Theme theme(host.settings());
    Studio::MainWindow window(host);
    const QString path =
        Studio::ProjectSession::normalizedPath(parser.positionalArguments().value(0));
    if (parser.isSet(screenshotsOption)) {
        Studio::ScreenshotTour tour(window, parser.value(screenshotsOption));
        const QStringList errors = tour.run(path);
        return errors.isEmpty() ? Done : fail(errors);
    }
    window.show();
    QTimer::singleShot(0, &window, [&window, path] {
        if (path.isEmpty())
            window.reopenLastProject();
        else
            window.openProject(path);
    });
    return QApplication::exec();
}

} // namespace

int main(int argc, char *argv[])
{
    QApplication::setAttribute(Qt::AA_EnableHighDpiScaling);
    QApplication::setAttribute(Qt::AA_UseHighDpiPixmaps);
    QApplication app(argc, argv);
    QApplication::setApplicationName(QStringLiteral("vela-studio"));
    QApplication::setApplicationDisplayName(QStringLiteral("Vela Studio"));
    QApplication::setApplicationVersion(QStringLiteral(VELA_VERSION_STRING));
    QGuiApplication::setDesktopFileName(QStringLiteral("org.vela.Studio"));

    QCommandLineParser parser;
    describe(parser);
    if (!parser.parse(QApplication::arguments()))
        return fail({parser.errorText()});
    if (parser.isSet(QStringLiteral("help")))
        parser.showHelp(Done);
    if (parser.isSet(QStringLiteral("version")))
        parser.showVersion();
    if (parser.positionalArguments().size() > 1)
        return fail({QCoreApplication::translate("main", "only one project can be given")});
    return run(parser);
}
