// SPDX-License-Identifier: MIT
#include "studio/clirun.h"
#include "studio/smallgame.h"

#include <QJsonArray>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QtTest>

using namespace CliRun;

namespace {

/// Returns the options that a help text begins its lines with.
QSet<QString> optionsIn(const QString &help)
{
    static const QRegularExpression pattern(QStringLiteral("^  (?:(-\\w), )?(--[a-z-]+)"),
                                            QRegularExpression::MultilineOption);
    QSet<QString> result;
    auto matches = pattern.globalMatch(help);
    while (matches.hasNext()) {
        const QRegularExpressionMatch match = matches.next();
        result.insert(match.captured(2));
        if (!match.captured(1).isEmpty())
            result.insert(match.captured(1));
    }
    return result;
}

/// Returns whether a file that was saved elsewhere is as it was. Main files are written anew, with
/// CR and LF.
bool isCopy(const QString &name, QByteArray original, const QByteArray &copy)
{
    if (copy == original)
        return true;
    return name.endsWith(QLatin1String(".lantern")) && !original.contains('\r')
        && copy == original.replace("\n", "\r\n");
}

/// Returns the man page without its markup.
QString manPage()
{
    QString text = QString::fromUtf8(
        SmallGame::readFile(fromEnvironment("VELA_SOURCE_DIR") + QStringLiteral("/docs/vela.1")));
    return text.replace(QStringLiteral("\\-"), QStringLiteral("-"));
}

} // namespace

class TestCli : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();

    void callsAndExitCodes_data();
    void callsAndExitCodes();
    void argumentsComeInAnyOrder_data();
    void argumentsComeInAnyOrder();
    void helpAgreesWithTheManPage();
    void everyCommandHasHelp();

    void infoTellsTheFiles();
    void infoAsJson();
    void infoShowsClosedAndMissing();
    void checkPrintsOneLineForEachMessage();
    void checkAsJson();
    void quietCheckPrintsNothing();

    void checkNamesFilesThatCannotBeRead();
    void backupAndRestoreAreExact();
    void restoreTakesAUniqueName();
    void backupsAreListedAsJson();
    void saveAsIsExact();
    void saveAsLeavesFoldersInUseAlone();
    void dryRunWritesNothing_data();
    void dryRunWritesNothing();
    void failedCopyIsTold();
    void incompleteCopiesAreTold_data();
    void incompleteCopiesAreTold();
    void questionsAreAnsweredWithNo();

    void namesBeyondAsciiSurvive_data();
    void namesBeyondAsciiSurvive();
    void userSettingsStayUntouched();
    void fullOutputIsAFailure();

private:
    QString path(const QString &name) const
    {
        return m_folder->path() + QLatin1Char('/') + name;
    }

    std::unique_ptr<QTemporaryDir> m_folder;
    QString m_game;
};

void TestCli::init()
{
    m_folder = std::make_unique<QTemporaryDir>();
    m_game = path(QStringLiteral("game"));
    QVERIFY(SmallGame::write(m_game));
}

void TestCli::callsAndExitCodes_data()
{
    QTest::addColumn<QString>("call"); // "@" stands for the game
    QTest::addColumn<int>("code");
    QTest::addColumn<QString>("complaint"); // on standard error; empty for none
    QTest::newRow("nothing") << "" << 2 << "command";
    QTest::newRow("help") << "--help" << 0 << "";
    QTest::newRow("short help") << "-h" << 0 << "";
    QTest::newRow("help as a command") << "help" << 0 << "";
    QTest::newRow("help of help") << "help help" << 0 << "";
    QTest::newRow("help of no command") << "help dance" << 2 << "dance";
    QTest::newRow("version") << "--version" << 0 << "";
    QTest::newRow("unknown command") << "dance @" << 2 << "dance";
    QTest::newRow("unknown option") << "info @ --dance" << 2 << "dance";
    QTest::newRow("option of another command") << "backup @ a --json" << 2 << "--json";
    QTest::newRow("dry run of a reader") << "info @ -n" << 2 << "--dry-run";
    QTest::newRow("no project") << "info" << 2 << "PROJECT";
    QTest::newRow("too much") << "check @ @" << 2 << "PROJECT";
    QTest::newRow("no file") << "format --check" << 2 << "FILE...";
    QTest::newRow("too many files") << "tree @ @" << 2 << "FILE";
    QTest::newRow("no ticks") << "play @ walk" << 2 << "--ticks N";
    QTest::newRow("ticks without a number") << "play @ walk --ticks" << 2 << "ticks";
    QTest::newRow("file without a name") << "play @ walk --ticks 1 --file=" << 2 << "FILE";
    QTest::newRow("no ticks at all") << "play @ walk --ticks 0" << 2 << "216000";
    QTest::newRow("too many ticks") << "play @ walk --ticks 216001" << 2 << "216000";
    QTest::newRow("ticks are no number") << "play @ walk --ticks some" << 2 << "216000";
    QTest::newRow("unknown animation") << "play @ walk --ticks 1" << 2 << "walk";
    QTest::newRow("tree of a folder") << "tree @/hero" << 2 << "hero";
    QTest::newRow("tree of nothing") << "tree @/hero/no.motion" << 2 << "no.motion";
    QTest::newRow("tree of a picture") << "tree @/hero/sprites/idle.png" << 2 << "definition text";
    QTest::newRow("format of nothing") << "format @/no.motion" << 2 << "no.motion";
    QTest::newRow("no animations") << "animations @" << 0 << "";
    QTest::newRow("project is nowhere") << "check @/nowhere" << 2 << "nowhere";
    QTest::newRow("project is no project") << "check @/hero/sprites" << 2 << "sprites";
    QTest::newRow("no engines") << "check @ --extensions @/nowhere" << 2 << "nowhere";
    QTest::newRow("folder without engines") << "check @ --extensions @" << 2 << "engine";
    QTest::newRow("sound") << "check @" << 0 << "";
    QTest::newRow("main file") << "check @/hero/hero.lantern" << 0 << "";
    QTest::newRow("info") << "info @" << 0 << "";
    QTest::newRow("no backups") << "backups @" << 0 << "";
    QTest::newRow("restore of nothing") << "restore @ sunday" << 2 << "sunday";
    QTest::newRow("backup without a name") << "backup @" << 2 << "NAME";
    QTest::newRow("backup leading out") << "backup @ ../x" << 2 << "../x";
    QTest::newRow("save over a file") << "save-as @ @/game.lantern" << 2 << "game.lantern";
}

void TestCli::callsAndExitCodes()
{
    QFETCH(QString, call);
    QFETCH(int, code);
    QFETCH(QString, complaint);
    const Result result = run(call, m_game);
    QCOMPARE(result.code, code);
    QCOMPARE(result.err.isEmpty(), complaint.isEmpty());
    QVERIFY2(result.err.contains(complaint), qPrintable(result.err));
    if (code == 2)
        QCOMPARE(result.out, QString());
    QCOMPARE(SmallGame::tree(m_game), SmallGame::files());
}

void TestCli::argumentsComeInAnyOrder_data()
{
    QTest::addColumn<QString>("call");
    QTest::newRow("option first") << "--json info @";
    QTest::newRow("option between") << "info --json @";
    QTest::newRow("option last") << "info @ --json";
    QTest::newRow("end of options") << "info --json -- @";
}

void TestCli::argumentsComeInAnyOrder()
{
    QFETCH(QString, call);
    const Result result = run(call, m_game);
    QCOMPARE(result.code, 0);
    QCOMPARE(json(result).value(QStringLiteral("path")).toString(), m_game);
}

void TestCli::helpAgreesWithTheManPage()
{
    const QString help = run({QStringLiteral("--help")}).out;
    const QString page = manPage();
    const QSet<QString> options = optionsIn(help);
    QVERIFY(options.contains(QStringLiteral("--json")));
    QVERIFY(options.contains(QStringLiteral("-n")));
    for (const QString &option : options)
        QVERIFY2(page.contains(option), qPrintable(option));

    // And the other way round, for the long ones.
    static const QRegularExpression longOption(QStringLiteral("--[a-z][a-z-]+"));
    auto matches = longOption.globalMatch(page);
    while (matches.hasNext()) {
        const QString option = matches.next().captured();
        QVERIFY2(options.contains(option), qPrintable(option));
    }
}

void TestCli::everyCommandHasHelp()
{
    const QString help = run({QStringLiteral("help")}).out;
    const QString page = manPage();
    for (const char *name : {"info", "check", "tree", "format", "animations", "play", "backup",
                             "backups", "restore", "save-as"}) {
        const QString command = QString::fromUtf8(name);
        const bool ofFiles = command == QLatin1String("tree") || command == QLatin1String("format");
        const QString usage =
            command + (ofFiles ? QLatin1String(" FILE") : QLatin1String(" PROJECT"));
        QVERIFY2(help.contains(QStringLiteral("\n  ") + usage), name);
        QVERIFY2(page.contains(QRegularExpression(QStringLiteral("^\\.BI \"%1 \" ").arg(command),
                                                  QRegularExpression::MultilineOption)),
                 name);
        const Result result = run({QStringLiteral("help"), command});
        QCOMPARE(result.code, 0);
        QVERIFY(result.out.startsWith(QStringLiteral("Usage: vela ") + usage));
        QCOMPARE(run({command, QStringLiteral("--help")}).out, result.out);
    }
}

void TestCli::infoTellsTheFiles()
{
    const Result result = run({QStringLiteral("info"), m_game});
    QCOMPARE(result.code, 0);
    const QStringList lines = linesOf(result.out.simplified().isEmpty() ? QString() : result.out);
    QVERIFY(lines.first().startsWith(m_game));
    QVERIFY(lines.contains(QStringLiteral("hero/  Hero (Character)")));
    QVERIFY(lines.contains(QStringLiteral("  hero/sprites/idle.png  Sprites  12 bytes")));
    QVERIFY(lines.contains(QStringLiteral("wolf/  (closed)")));
}

void TestCli::infoAsJson()
{
    const Result result = run({QStringLiteral("info"), m_game, QStringLiteral("--json")});
    QCOMPARE(result.code, 0);
    const QJsonObject info = json(result);
    QCOMPARE(string(info, "engine"), QStringLiteral("Lantern"));
    const QJsonArray projects = info.value(QStringLiteral("projects")).toArray();
    QCOMPARE(projects.size(), 3);
    const QJsonObject hero = projects.at(1).toObject();
    QCOMPARE(string(hero, "name"), QStringLiteral("Hero"));
    QCOMPARE(string(hero, "type"), QStringLiteral("Character"));
    QCOMPARE(string(hero, "folder"), QStringLiteral("hero"));
    QVERIFY(hero.value(QStringLiteral("open")).toBool());

    const QJsonArray files = hero.value(QStringLiteral("files")).toArray();
    QStringList rows;
    for (const QJsonValue &file : files)
        rows.append(QStringLiteral("%1 %2 %3")
                        .arg(string(file, "path"),
                             file[QStringLiteral("types")].toArray().first().toString(),
                             QString::number(file[QStringLiteral("size")].toInt())));
    QCOMPARE(
        rows,
        (QStringList{QStringLiteral("hero/hero.lantern Main %1")
                         .arg(SmallGame::files().value(QStringLiteral("hero/hero.lantern")).size()),
                     QStringLiteral("hero/sprites/idle.png Sprites 12"),
                     QStringLiteral("hero/hero.script Scripts 30")}));
    QVERIFY(!string(files.first(), "encoding").isEmpty());
    QVERIFY(!files.at(1).toObject().contains(QStringLiteral("encoding")));
    QVERIFY(!projects.at(2).toObject().value(QStringLiteral("open")).toBool());
}

void TestCli::infoShowsClosedAndMissing()
{
    const Result result = run({QStringLiteral("info"), m_game, QStringLiteral("--json")});
    const QJsonArray projects = json(result).value(QStringLiteral("projects")).toArray();
    const QJsonArray files = projects.at(2)[QStringLiteral("files")].toArray();
    QCOMPARE(files.size(), 2);
    QCOMPARE(string(files.at(1), "path"), QStringLiteral("wolf/run.motion"));
    QVERIFY(files.at(1)[QStringLiteral("exists")].toBool());

    QFile::remove(m_game + QStringLiteral("/hero/hero.script"));
    const Result text = run({QStringLiteral("info"), m_game});
    QVERIFY2(text.out.contains(QRegularExpression(QStringLiteral("hero\\.script .*missing"))),
             qPrintable(text.out));
}

void TestCli::checkPrintsOneLineForEachMessage()
{
    SmallGame::writeFile(m_game + QStringLiteral("/hero/hero.lantern"),
                         "[project]\nkind = character\n[files]\nsounds = no.wav\n");
    Result result = run({QStringLiteral("check"), m_game});
    QCOMPARE(result.code, 0);
    QCOMPARE(linesOf(result.out).size(), 1);
    QVERIFY(result.out.startsWith(QLatin1String("hero/hero.lantern:4:10: warning: ")));
    QVERIFY(result.out.contains(QLatin1String("no.wav")));
    QCOMPARE(result.err, QString());

    // A closed project is checked as well.
    SmallGame::writeFile(m_game + QStringLiteral("/wolf/wolf.lantern"),
                         "[project]\nkind = dragon\n");
    result = run({QStringLiteral("check"), m_game});
    QCOMPARE(result.code, 1);
    QCOMPARE(linesOf(result.out).size(), 2);
    QVERIFY(linesOf(result.out).at(1).startsWith(QLatin1String("wolf/wolf.lantern:2:8: error: ")));
    QCOMPARE(result.err, QString());
}

void TestCli::checkAsJson()
{
    SmallGame::writeFile(m_game + QStringLiteral("/hero/hero.lantern"),
                         "[project]\nkind = dragon\n[files]\nsounds = no.wav\n");
    const Result result = run({QStringLiteral("check"), QStringLiteral("--json"), m_game});
    QCOMPARE(result.code, 1);
    const QJsonObject report = json(result);
    QCOMPARE(report.value(QStringLiteral("errors")).toInt(), 1);
    QCOMPARE(report.value(QStringLiteral("warnings")).toInt(), 1);
    QCOMPARE(report.value(QStringLiteral("information")).toInt(), 0);
    const QJsonArray messages = report.value(QStringLiteral("messages")).toArray();
    QCOMPARE(messages.size(), 2);
    QCOMPARE(string(messages.first(), "file"), QStringLiteral("hero/hero.lantern"));
    QCOMPARE(messages.first()[QStringLiteral("line")].toInt(), 2);
    QCOMPARE(messages.first()[QStringLiteral("column")].toInt(), 8);
    QCOMPARE(string(messages.first(), "type"), QStringLiteral("error"));
    QVERIFY(string(messages.first(), "text").contains(QStringLiteral("dragon")));
}

void TestCli::quietCheckPrintsNothing()
{
    SmallGame::writeFile(m_game + QStringLiteral("/hero/hero.lantern"), "[project]\nkind = 7\n");
    const Result result = run({QStringLiteral("check"), QStringLiteral("-q"), m_game});
    QCOMPARE(result.code, 1);
    QCOMPARE(result.out + result.err, QString());
}

void TestCli::checkNamesFilesThatCannotBeRead()
{
    // A sprite has no messages; this one is larger than the engine reads.
    QFile sprite(m_game + QStringLiteral("/hero/sprites/idle.png"));
    QVERIFY(sprite.resize(qint64(1) << 30));
    const Result result = run({QStringLiteral("check"), m_game});
    QCOMPARE(result.code, 2);
    QVERIFY2(result.err.contains(QStringLiteral("hero/sprites/idle.png: cannot be read")),
             qPrintable(result.err));
}

void TestCli::backupAndRestoreAreExact()
{
    const QString meadow = path(QStringLiteral("meadow"));
    const auto original =
        SmallGame::content(fromEnvironment("VELA_SOURCE_DIR") + QStringLiteral("/examples/meadow"));
    QVERIFY(!original.isEmpty());
    QVERIFY(SmallGame::write(meadow, original));

    const Result made = run({QStringLiteral("backup"), meadow, QStringLiteral("nightly")});
    QCOMPARE(made.err, QString());
    QCOMPARE(made.code, 0);
    QVERIFY(made.out.endsWith(QLatin1String("_nightly\n")));
    QCOMPARE(SmallGame::content(meadow), original);

    // What the project names is spoilt or gone; what it does not name is no part of it.
    const Result plan = run({QStringLiteral("restore"), meadow, QStringLiteral("nightly"),
                             QStringLiteral("--dry-run")});
    QCOMPARE(plan.code, 0);
    const QStringList files = linesOf(plan.out);
    QVERIFY(files.size() > 3);
    for (const QString &file : files) {
        QVERIFY2(original.contains(file), qPrintable(file));
        if (!file.endsWith(QLatin1String(".lantern")))
            SmallGame::writeFile(meadow + QLatin1Char('/') + file, "spoilt");
    }
    QVERIFY(SmallGame::content(meadow) != original);
    const Result back = run({QStringLiteral("restore"), meadow, made.out.trimmed()});
    QCOMPARE(back.err, QString());
    QCOMPARE(back.code, 0);
    QCOMPARE(SmallGame::content(meadow), original);
}

void TestCli::restoreTakesAUniqueName()
{
    const QStringList backup{QStringLiteral("backup"), m_game, QStringLiteral("day")};
    QStringList names;
    for (int i = 0; i < 2; ++i) {
        const Result result = run(backup);
        QCOMPARE(result.code, 0);
        names.append(result.out.trimmed());
    }
    const Result result = run({QStringLiteral("restore"), m_game, QStringLiteral("day")});
    QCOMPARE(result.code, 2);
    for (const QString &name : qAsConst(names)) {
        QVERIFY(result.err.contains(name));
        QCOMPARE(run({QStringLiteral("restore"), m_game, name}).code, 0);
    }
}

void TestCli::backupsAreListedAsJson()
{
    QCOMPARE(run({QStringLiteral("backup"), m_game, QStringLiteral("one")}).code, 0);
    SmallGame::writeFile(m_game + QStringLiteral("/backup/01.02.2020_3.4.5_pm_old/x"), "12345");
    const Result result = run({QStringLiteral("backups"), m_game, QStringLiteral("--json")});
    QCOMPARE(result.code, 0);
    const QJsonArray backups = json(result).value(QStringLiteral("backups")).toArray();
    QCOMPARE(backups.size(), 2);
    QCOMPARE(string(backups.first(), "label"), QStringLiteral("one"));
    QCOMPARE(string(backups.last(), "name"), QStringLiteral("01.02.2020_3.4.5_pm_old"));
    QCOMPARE(string(backups.last(), "time"), QStringLiteral("2020-02-01T15:04:05"));
    QCOMPARE(backups.last()[QStringLiteral("size")].toInt(), 5);
    QVERIFY(!backups.last()[QStringLiteral("packed")].toBool());

    const QStringList lines = linesOf(run({QStringLiteral("backups"), m_game}).out);
    QCOMPARE(lines.size(), 2);
    QVERIFY(lines.last().startsWith(QLatin1String("2020-02-01 15:04:05  ")));
    QVERIFY(lines.last().endsWith(QLatin1String("  5  01.02.2020_3.4.5_pm_old")));
}

void TestCli::saveAsIsExact()
{
    const QString source = fromEnvironment("VELA_SOURCE_DIR") + QStringLiteral("/examples/meadow");
    const QString meadow = path(QStringLiteral("meadow"));
    const auto original = SmallGame::content(source);
    QVERIFY(SmallGame::write(meadow, original));
    const QStringList plan = linesOf(
        run({QStringLiteral("save-as"), meadow, path(QStringLiteral("copy")), QStringLiteral("-n")})
            .out);
    const Result result = run({QStringLiteral("save-as"), meadow, path(QStringLiteral("copy"))});
    QCOMPARE(result.err, QString());
    QCOMPARE(result.code, 0);
    QCOMPARE(SmallGame::tree(meadow), original);
    const auto copy = SmallGame::tree(path(QStringLiteral("copy")));
    QCOMPARE(QSet<QString>(plan.begin(), plan.end()),
             QSet<QString>(copy.keyBegin(), copy.keyEnd()));
    for (auto it = copy.begin(); it != copy.end(); ++it)
        QVERIFY2(isCopy(it.key(), original.value(it.key()), it.value()), qPrintable(it.key()));
    QCOMPARE(run({QStringLiteral("check"), path(QStringLiteral("copy"))}).code,
             run({QStringLiteral("check"), meadow}).code);
}

void TestCli::saveAsLeavesFoldersInUseAlone()
{
    const QString copy = path(QStringLiteral("copy"));
    SmallGame::writeFile(copy + QStringLiteral("/mine.txt"), "1");
    const Result result = run({QStringLiteral("save-as"), m_game, copy});
    QCOMPARE(result.code, 2);
    QVERIFY(result.err.contains(copy));
    QCOMPARE(SmallGame::tree(copy).size(), 1);

    QFile::remove(copy + QStringLiteral("/mine.txt"));
    QCOMPARE(run({QStringLiteral("save-as"), m_game, copy, QStringLiteral("-q")}).code, 0);
    QCOMPARE(SmallGame::tree(copy), SmallGame::files());
}

void TestCli::dryRunWritesNothing_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<int>("count");
    QTest::newRow("backup") << QStringList{QStringLiteral("backup"), QStringLiteral("@/game"),
                                           QStringLiteral("x")}
                            << 6;
    QTest::newRow("restore") << QStringList{QStringLiteral("restore"), QStringLiteral("@/game"),
                                            QStringLiteral("old")}
                             << 1;
    QTest::newRow("save-as") << QStringList{QStringLiteral("save-as"), QStringLiteral("@/game"),
                                            QStringLiteral("@/copy")}
                             << 6;
}

void TestCli::dryRunWritesNothing()
{
    QFETCH(QStringList, arguments);
    QFETCH(int, count);
    SmallGame::writeFile(m_game + QStringLiteral("/backup/old/hero/hero.script"), "other");
    const auto before = SmallGame::tree(m_folder->path());
    const QStringList folders = QDir(m_folder->path()).entryList();
    arguments.replaceInStrings(QStringLiteral("@"), m_folder->path());

    const Result result = run(arguments + QStringList(QStringLiteral("--dry-run")));
    QCOMPARE(result.err, QString());
    QCOMPARE(result.code, 0);
    QCOMPARE(linesOf(result.out).size(), count);
    QVERIFY(linesOf(result.out).contains(QStringLiteral("hero/hero.script")));
    QCOMPARE(SmallGame::tree(m_folder->path()), before);
    QCOMPARE(QDir(m_folder->path()).entryList(), folders);
}

void TestCli::failedCopyIsTold()
{
    // A folder in the place of a file of the backup: it cannot be written over.
    SmallGame::writeFile(m_game + QStringLiteral("/backup/old/hero/sprites/idle.png"), "new");
    QFile::remove(m_game + QStringLiteral("/hero/sprites/idle.png"));
    QDir().mkpath(m_game + QStringLiteral("/hero/sprites/idle.png"));
    const Result result = run({QStringLiteral("restore"), m_game, QStringLiteral("old")});
    QCOMPARE(result.code, 2);
    QVERIFY2(result.err.contains(QStringLiteral("hero/sprites/idle.png")), qPrintable(result.err));
    QCOMPARE(result.out, QString());
}

// A copy that lacks something must not pass for a whole one.
void TestCli::incompleteCopiesAreTold_data()
{
    QTest::addColumn<QString>("file");
    QTest::addColumn<bool>("tooLarge");
    QTest::addColumn<int>("code");

    QTest::newRow("a missing sprite") << "hero/sprites/idle.png" << false << 0;
    QTest::newRow("a missing project") << "hero/hero.lantern" << false << 2;
    QTest::newRow("a project that cannot be read") << "hero/hero.lantern" << true << 2;
    QTest::newRow("a closed one that cannot be read") << "wolf/wolf.lantern" << true << 2;
}

void TestCli::incompleteCopiesAreTold()
{
    QFETCH(QString, file);
    QFETCH(bool, tooLarge);
    QFETCH(int, code);
    QFile changed(m_game + QLatin1Char('/') + file);
    QVERIFY(tooLarge ? changed.resize(qint64(1) << 30) : changed.remove());
    const Result result = run({QStringLiteral("backup"), m_game, QStringLiteral("part")});
    QCOMPARE(result.code, code);
    QVERIFY2(result.err.contains(file), qPrintable(result.err));
    // The others are there all the same.
    const Result backups = run({QStringLiteral("backups"), m_game});
    QVERIFY2(backups.out.contains(QStringLiteral("part")), qPrintable(backups.out));
}

void TestCli::questionsAreAnsweredWithNo()
{
    // An extension that asks as soon as it is loaded, and prints what it was told.
    const Result result =
        run({QStringLiteral("info"), m_game, QStringLiteral("--extensions"),
             fromEnvironment("VELA_BUILD_DIR") + QStringLiteral("/tests/asking")});
    QCOMPARE(result.code, 2);
    QCOMPARE(result.out, QStringLiteral("no\nclosed\n"));
    QVERIFY2(result.err.contains(QStringLiteral("Lost? Shall the file be written over?")),
             qPrintable(result.err));
    QVERIFY2(result.err.contains(QStringLiteral("Pick a colour")), qPrintable(result.err));
}

void TestCli::namesBeyondAsciiSurvive_data()
{
    QTest::addColumn<QString>("locale");
    QTest::newRow("UTF-8") << "C.UTF-8";
    QTest::newRow("plain C") << "C";
    QTest::newRow("none") << "";
}

void TestCli::namesBeyondAsciiSurvive()
{
    QFETCH(QString, locale);
    const QString name = QString::fromUtf8("Grüße 草");
    const QString game = path(name);
    QVERIFY(SmallGame::write(game));
    const QMap<QString, QString> environment{{QStringLiteral("LC_ALL"), locale},
                                             {QStringLiteral("LC_CTYPE"), locale},
                                             {QStringLiteral("LANG"), locale}};
    const Result info = run({QStringLiteral("info"), QStringLiteral("--json"), game}, environment);
    QCOMPARE(info.code, 0);
    QCOMPARE(string(json(info), "path"), game);
    const Result backup = run({QStringLiteral("backup"), game, name}, environment);
    QCOMPARE(backup.err, QString());
    QCOMPARE(backup.code, 0);
    QVERIFY(backup.out.trimmed().endsWith(name));
    QCOMPARE(run({QStringLiteral("restore"), game, name}, environment).code, 0);
    QCOMPARE(SmallGame::content(game), SmallGame::files());
}

void TestCli::userSettingsStayUntouched()
{
    const QString config = path(QStringLiteral("config"));
    QCOMPARE(
        run({QStringLiteral("check"), m_game}, {{QStringLiteral("XDG_CONFIG_HOME"), config}}).code,
        0);
    QCOMPARE(SmallGame::tree(config), (QMap<QString, QByteArray>()));
}

void TestCli::fullOutputIsAFailure()
{
    const QString full = QStringLiteral("/dev/full");
    if (!QFile::exists(full))
        return;
    QProcess process;
    process.setStandardOutputFile(full);
    process.start(program(), {QStringLiteral("info"), m_game});
    QVERIFY(process.waitForFinished());
    QCOMPARE(process.exitCode(), 2);
    QVERIFY(process.readAllStandardError().contains("standard output"));
}

QTEST_MAIN(TestCli)
#include "tst_cli.moc"
