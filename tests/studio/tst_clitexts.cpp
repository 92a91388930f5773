// SPDX-License-Identifier: MIT
#include "studio/clirun.h"
#include "studio/smallgame.h"

#include <QJsonArray>
#include <QTemporaryDir>
#include <QtTest>

using namespace CliRun;

namespace {

const char heroMotion[] = "# Hero\n"
                          "[motion]\n"
                          "tags = idle, jump\n"
                          "mirrored = yes\n"
                          "tint = 1, 0.5, 0.25\n"
                          "\n"
                          "[animation walk] \"Slow walk\"\n"
                          "body -4 -12 8 12\n"
                          "attack 4 -8 6 2 depth -1 1\n"
                          "frame idle : 3\n"
                          "frame idle : 2, loop\n"
                          "[animation stay]\n"
                          "frame none : forever\n";

const char wolfMotion[] = "[animation walk]\n"
                          "frame none : 8\n"
                          "frame none : 20\n"
                          "[animation rest]\n";

/// Returns the small game with texts of animations in the open and in the closed project.
QMap<QString, QByteArray> game()
{
    QMap<QString, QByteArray> files = SmallGame::files();
    files[QStringLiteral("hero/hero.lantern")] += "animations = hero.motion\n";
    files[QStringLiteral("hero/hero.motion")] = heroMotion;
    files[QStringLiteral("wolf/run.motion")] = wolfMotion;
    return files;
}

/// Returns a node of JSON as "line type name value", and its children in brackets behind it.
QString nodeText(const QJsonValue &node)
{
    const QJsonObject object = node.toObject();
    QString text = QStringLiteral("%1 %2 %3")
                       .arg(QString::number(object[QStringLiteral("line")].toInt()),
                            string(node, "type"), string(node, "name"));
    if (object.contains(QStringLiteral("value")))
        text += QStringLiteral(" = ") + string(node, "value");
    QStringList children;
    const QJsonArray array = object[QStringLiteral("children")].toArray();
    for (const QJsonValue &child : array)
        children.append(nodeText(child));
    return children.isEmpty()
        ? text
        : text + QStringLiteral(" (%1)").arg(children.join(QStringLiteral("; ")));
}

} // namespace

class TestCliTexts : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();

    void treeFollowsTheText();
    void treeAsJson();
    void filesAreFoundInTheirProjects_data();
    void filesAreFoundInTheirProjects();
    void unreadableTextsAreTold();

    void checkTellsSyntaxMessages();
    void outdatedWordsAreNoErrors();

    void formatWritesWhatChanges_data();
    void formatWritesWhatChanges();
    void formatWritesNothingWhenAsked_data();
    void formatWritesNothingWhenAsked();
    void formatGoesOnBehindAFailure();
    void formatRefusesBytesThatAreNoText();
    void formatTellsWhatCannotBeWritten();

    void animationsAreListed();
    void animationsAsJson();
    void meadowIsListed();
    void playShowsTheFrames_data();
    void playShowsTheFrames();
    void playAsJson();
    void playNeedsOneAnimation_data();
    void playNeedsOneAnimation();

private:
    QString path(const char *name) const
    {
        return m_game + QLatin1Char('/') + QString::fromUtf8(name);
    }

    std::unique_ptr<QTemporaryDir> m_folder;
    QString m_game;
};

void TestCliTexts::init()
{
    m_folder = std::make_unique<QTemporaryDir>();
    m_game = m_folder->path() + QStringLiteral("/game");
    QVERIFY(SmallGame::write(m_game, game()));
}

void TestCliTexts::treeFollowsTheText()
{
    const Result motion = run({QStringLiteral("tree"), path("hero/hero.motion")});
    QCOMPARE(motion.err, QString());
    QCOMPARE(motion.code, 0);
    QCOMPARE(motion.out,
             QStringLiteral("2   group motion\n"
                            "3     value tags = idle, jump\n"
                            "4     value mirrored = 1\n"
                            "5     value tint = 1, 0.5, 0.25\n"
                            "7   animation Slow walk\n"
                            "10    frame idle\n"
                            "8       box collision = -4, -12, 8, 12\n"
                            "9       box attack = 4, -8, 6, 2\n"
                            "11    frame idle\n"
                            "12  animation stay\n"
                            "13    frame\n"));

    const Result main = run({QStringLiteral("tree"), path("game.lantern")});
    QCOMPARE(main.out,
             QStringLiteral("1  group game\n"
                            "2    value name = Small\n"
                            "3  group projects\n"
                            "4    value open = hero/hero.lantern\n"
                            "5    value closed = wolf/wolf.lantern\n"));
}

void TestCliTexts::treeAsJson()
{
    const Result result = run(QStringLiteral("--json tree @"), path("hero/hero.motion"));
    QCOMPARE(result.code, 0);
    const QJsonObject tree = json(result);
    QCOMPARE(string(tree, "path"), path("hero"));
    QCOMPARE(string(tree, "file"), QStringLiteral("hero.motion"));
    const QJsonArray nodes = tree.value(QStringLiteral("nodes")).toArray();
    QCOMPARE(nodes.size(), 3);
    QCOMPARE(nodeText(nodes.at(0)),
             QStringLiteral("2 group motion (3 value tags = idle, jump; 4 value mirrored = 1; "
                            "5 value tint = 1, 0.5, 0.25)"));
    QCOMPARE(nodeText(nodes.at(1)),
             QStringLiteral("7 animation Slow walk (10 frame idle (8 box collision = -4, -12, 8, "
                            "12; 9 box attack = 4, -8, 6, 2); 11 frame idle)"));
}

void TestCliTexts::filesAreFoundInTheirProjects_data()
{
    QTest::addColumn<QString>("file");
    QTest::addColumn<QString>("root"); // empty where no project names the file
    QTest::newRow("of an open project") << "hero/hero.motion"
                                        << "hero";
    QTest::newRow("of a closed project") << "wolf/run.motion"
                                         << "wolf";
    QTest::newRow("a main file") << "wolf/wolf.lantern"
                                 << "wolf";
    QTest::newRow("the game") << "game.lantern"
                              << ".";
    QTest::newRow("deeper than its project") << "hero/parts/legs.motion"
                                             << "hero";
    QTest::newRow("one of two in a folder") << "both/b.motion"
                                            << "both";
    QTest::newRow("named by nobody") << "hero/loose.motion"
                                     << "";
    QTest::newRow("in no folder of a project") << "loose.motion"
                                               << "";
}

void TestCliTexts::filesAreFoundInTheirProjects()
{
    QFETCH(QString, file);
    QFETCH(QString, root);
    QMap<QString, QByteArray> files = game();
    files[QStringLiteral("hero/hero.lantern")] += "animations = parts/legs.motion\n";
    files[QStringLiteral("both/a.lantern")] = "[project]\n[files]\nanimations = a.motion\n";
    files[QStringLiteral("both/b.lantern")] = "[project]\n[files]\nanimations = b.motion\n";
    for (const char *name : {"hero/parts/legs.motion", "both/a.motion", "both/b.motion",
                             "hero/loose.motion", "loose.motion"})
        files[QString::fromUtf8(name)] = "[animation a]\n";
    QVERIFY(SmallGame::write(m_game, files));

    const Result result = run(QStringLiteral("tree @ --json"), m_game + QLatin1Char('/') + file);
    QCOMPARE(result.code, root.isEmpty() ? 2 : 0);
    QCOMPARE(result.err.isEmpty(), !root.isEmpty());
    if (root.isEmpty()) {
        QVERIFY2(result.err.contains(file), qPrintable(result.err));
        QCOMPARE(result.out, QString());
        return;
    }
    QCOMPARE(string(json(result), "path"), QDir::cleanPath(m_game + QLatin1Char('/') + root));
    QVERIFY(!json(result).value(QStringLiteral("nodes")).toArray().isEmpty());
}

// A text that cannot be read must not pass for an empty one.
void TestCliTexts::unreadableTextsAreTold()
{
    QFile motion(path("hero/hero.motion"));
    QVERIFY(motion.resize(qint64(1) << 30));
    for (const char *call : {"tree @/hero/hero.motion", "format @/hero/hero.motion", "animations @",
                             "play @ rest --ticks 1"}) {
        const Result result = run(QString::fromUtf8(call), m_game);
        QVERIFY2(result.code == 2, call);
        QVERIFY2(result.err.contains(QStringLiteral("hero.motion")), qPrintable(result.err));
    }
    QCOMPARE(run(QStringLiteral("check @"), m_game).code, 1);
    // The others can be played all the same.
    QCOMPARE(run(QStringLiteral("play @ rest --ticks 1 --file wolf/run.motion"), m_game).code, 0);
    QCOMPARE(motion.size(), qint64(1) << 30);
    QVERIFY(QFile::resize(path("wolf/wolf.lantern"), qint64(1) << 30));
    const Result lost = run(QStringLiteral("tree @"), path("wolf/run.motion"));
    QCOMPARE(lost.code, 2);
    QVERIFY2(lost.err.contains(QStringLiteral("wolf.lantern")), qPrintable(lost.err));
}

void TestCliTexts::checkTellsSyntaxMessages()
{
    SmallGame::writeFile(path("hero/hero.motion"),
                         "[animation walk]\n"
                         "frame none 8\n"
                         "frame none wait 8\n"
                         "frame ghost : 8\n");
    const Result result = run({QStringLiteral("check"), m_game});
    QCOMPARE(result.err, QString());
    QCOMPARE(result.code, 1);
    const QStringList lines = linesOf(result.out);
    QCOMPARE(lines.size(), 3);
    QVERIFY2(lines.at(0).startsWith(QLatin1String("hero/hero.motion:2:12: error: ")),
             qPrintable(lines.at(0)));
    QVERIFY(lines.at(0).contains(QLatin1String("'8'")));
    QVERIFY2(lines.at(1).startsWith(QLatin1String("hero/hero.motion:3:12: warning: ")),
             qPrintable(lines.at(1)));
    QVERIFY(lines.at(1).contains(QLatin1String("'wait'")));
    QVERIFY2(lines.at(2).startsWith(QLatin1String("hero/hero.motion:4:7: warning: ")),
             qPrintable(lines.at(2)));
    QVERIFY(lines.at(2).contains(QLatin1String("ghost")));

    const QJsonObject report =
        json(run({QStringLiteral("check"), m_game, QStringLiteral("--json")}));
    QCOMPARE(report.value(QStringLiteral("errors")).toInt(), 1);
    QCOMPARE(report.value(QStringLiteral("warnings")).toInt(), 2);
}

void TestCliTexts::outdatedWordsAreNoErrors()
{
    SmallGame::writeFile(path("wolf/run.motion"), "[animation run]\nframe none wait 8\n");
    const Result result = run({QStringLiteral("check"), m_game});
    QCOMPARE(result.code, 0);
    QCOMPARE(linesOf(result.out).size(), 1);
    QVERIFY(result.out.startsWith(QLatin1String("wolf/run.motion:2:12: warning: ")));
}

void TestCliTexts::formatWritesWhatChanges_data()
{
    QTest::addColumn<QByteArray>("before");
    QTest::addColumn<QString>("option");
    QTest::addColumn<QByteArray>("after"); // empty where the file is not to be written

    const QByteArray untidy("[ANIMATION  walk]\n"
                            "\tframe idle:3,x=4   # go\n"
                            "body   -4 -12 8 12\n"
                            "frame none : 2\n");
    QTest::newRow("all of it") << untidy << ""
                               << QByteArray("[animation walk]\r\n"
                                             "frame idle : 3, x = 4 # go\r\n"
                                             "  body -4 -12 8 12\r\n"
                                             "frame none : 2\r\n");
    QTest::newRow("indents") << untidy << "--indent-only"
                             << QByteArray("[ANIMATION  walk]\r\n"
                                           "frame idle:3,x=4   # go\r\n"
                                           "  body   -4 -12 8 12\r\n"
                                           "frame none : 2\r\n");
    QTest::newRow("with an error") << QByteArray("[animation walk]\n  frame idle   3\n") << ""
                                   << QByteArray("[animation walk]\r\nframe idle   3\r\n");
    QTest::newRow("UTF-16") << QByteArray("\xff\xfe[\0m\0o\0t\0i\0o\0n\0]\0 \0\n\0", 22) << ""
                            << QByteArray("\xff\xfe[\0m\0o\0t\0i\0o\0n\0]\0\r\0\n\0", 22);
    QTest::newRow("byte-order mark and hard blank")
        << QByteArray("\xef\xbb\xbf# caf\xc3\xa9\xc2\xa0"
                      "au lait\n\n[animation  a]\n")
        << ""
        << QByteArray("\xef\xbb\xbf# caf\xc3\xa9\xc2\xa0"
                      "au lait\r\n\r\n[animation a]\r\n");
    QTest::newRow("formatted, LF")
        << QByteArray("[animation a]\nframe none : 2\n") << "" << QByteArray();
    QTest::newRow("formatted, CR")
        << QByteArray("[animation a]\rframe none : 2\r") << "" << QByteArray();
    QTest::newRow("empty") << QByteArray() << "" << QByteArray();
}

void TestCliTexts::formatWritesWhatChanges()
{
    QFETCH(QByteArray, before);
    QFETCH(QString, option);
    QFETCH(QByteArray, after);
    const QString file = path("hero/hero.motion");
    SmallGame::writeFile(file, before);
    const QStringList call = QStringList{QStringLiteral("format"), file}
        + option.split(QLatin1Char(' '), Qt::SkipEmptyParts);
    const Result result = run(call);
    QCOMPARE(result.err, QString());
    QCOMPARE(result.code, 0);
    QCOMPARE(result.out, after.isEmpty() ? QString() : file + QLatin1Char('\n'));
    QCOMPARE(SmallGame::readFile(file), after.isEmpty() ? before : after);
    // Once is enough.
    QCOMPARE(run(call + QStringList(QStringLiteral("--check"))).code, 0);
}

void TestCliTexts::formatWritesNothingWhenAsked_data()
{
    QTest::addColumn<QString>("options");
    QTest::addColumn<int>("code");
    QTest::addColumn<bool>("isListed");
    QTest::newRow("check") << "--check" << 1 << true;
    QTest::newRow("quiet check") << "--check -q" << 1 << false;
    QTest::newRow("dry run") << "--dry-run" << 0 << true;
    QTest::newRow("check as a dry run") << "-n --check" << 1 << true;
    QTest::newRow("check of indents") << "--check --indent-only" << 0 << false;
}

void TestCliTexts::formatWritesNothingWhenAsked()
{
    QFETCH(QString, options);
    QFETCH(int, code);
    QFETCH(bool, isListed);
    SmallGame::writeFile(path("wolf/run.motion"), "[animation  run]\n");
    const auto before = SmallGame::tree(m_game);
    const Result result =
        run(QStringLiteral("format @/wolf/run.motion @/wolf/wolf.lantern ") + options, m_game);
    QCOMPARE(result.err, QString());
    QCOMPARE(result.code, code);
    QCOMPARE(result.out, isListed ? path("wolf/run.motion") + QLatin1Char('\n') : QString());
    QCOMPARE(SmallGame::tree(m_game), before);
}

void TestCliTexts::formatGoesOnBehindAFailure()
{
    SmallGame::writeFile(path("hero/hero.motion"), "[animation  run]\n");
    SmallGame::writeFile(path("wolf/run.motion"), "[animation  run]\n");
    const Result result =
        run(QStringLiteral(
                "format @/hero/hero.motion @/no.motion @/hero/sprites/idle.png @/wolf/run.motion"),
            m_game);
    QCOMPARE(result.code, 2);
    QCOMPARE(linesOf(result.out), (QStringList{path("hero/hero.motion"), path("wolf/run.motion")}));
    QCOMPARE(linesOf(result.err).size(), 2);
    QVERIFY(result.err.contains(QStringLiteral("no.motion")));
    QVERIFY(result.err.contains(QStringLiteral("idle.png")));
    QCOMPARE(SmallGame::readFile(path("hero/hero.motion")), QByteArray("[animation run]\r\n"));
    QCOMPARE(SmallGame::readFile(path("wolf/run.motion")), QByteArray("[animation run]\r\n"));
}

void TestCliTexts::formatRefusesBytesThatAreNoText()
{
    const QByteArray damaged("\xef\xbb\xbf[animation  a]\n# \xff\n");
    SmallGame::writeFile(path("hero/hero.motion"), damaged);
    for (const char *call : {"format @", "format --dry-run @"}) {
        const Result result = run(QString::fromUtf8(call), path("hero/hero.motion"));
        QCOMPARE(result.code, 2);
        QVERIFY(result.err.contains(QStringLiteral("hero.motion")));
        QCOMPARE(result.out, QString());
        QCOMPARE(SmallGame::readFile(path("hero/hero.motion")), damaged);
    }
}

void TestCliTexts::formatTellsWhatCannotBeWritten()
{
    // The new file stands beside the old one first, under a longer name than the disk takes.
    const QString name = QString(248, QLatin1Char('m')) + QStringLiteral(".motion");
    const QByteArray untidy("[animation  a]\n");
    SmallGame::writeFile(path("hero/") + name, untidy);
    SmallGame::writeFile(path("hero/hero.lantern"),
                         "[project]\n[files]\nanimations = " + name.toUtf8() + '\n');
    const Result result = run({QStringLiteral("format"), path("hero/") + name});
    QCOMPARE(result.code, 2);
    QCOMPARE(result.out, QString());
    QVERIFY(result.err.contains(name));
    QCOMPARE(SmallGame::readFile(path("hero/") + name), untidy);
}

void TestCliTexts::animationsAreListed()
{
    const Result result = run({QStringLiteral("animations"), m_game});
    QCOMPARE(result.err, QString());
    QCOMPARE(result.code, 0);
    QCOMPARE(
        result.out,
        QStringLiteral("hero/hero.motion  walk  Slow walk  2 frames  5 ticks   83 ms   loop 1\n"
                       "hero/hero.motion  stay  stay       1 frame   endless           loop 0\n"
                       "wolf/run.motion   walk  walk       2 frames  28 ticks  467 ms  loop 0\n"
                       "wolf/run.motion   rest  rest       0 frames  0 ticks   0 ms    loop 0\n"));
}

void TestCliTexts::animationsAsJson()
{
    const Result result = run({QStringLiteral("animations"), m_game, QStringLiteral("--json")});
    QCOMPARE(result.code, 0);
    const QJsonObject report = json(result);
    QCOMPARE(string(report, "path"), m_game);
    const QJsonArray animations = report.value(QStringLiteral("animations")).toArray();
    QCOMPARE(animations.size(), 4);
    const QJsonObject walk{{QStringLiteral("file"), QStringLiteral("hero/hero.motion")},
                           {QStringLiteral("line"), 7},
                           {QStringLiteral("identifier"), QStringLiteral("walk")},
                           {QStringLiteral("name"), QStringLiteral("Slow walk")},
                           {QStringLiteral("frames"), 2},
                           {QStringLiteral("ticks"), 5},
                           {QStringLiteral("milliseconds"), 83},
                           {QStringLiteral("endless"), false},
                           {QStringLiteral("loop"), 1}};
    QCOMPARE(animations.at(0).toObject(), walk);
    const QJsonObject stay = animations.at(1).toObject();
    QVERIFY(stay.value(QStringLiteral("endless")).toBool());
    QVERIFY(!stay.contains(QStringLiteral("ticks")));
}

// Every encoding of the example, and its closed projects.
void TestCliTexts::meadowIsListed()
{
    const QString meadow = fromEnvironment("VELA_SOURCE_DIR") + QStringLiteral("/examples/meadow");
    const Result result = run({QStringLiteral("animations"), meadow, QStringLiteral("--json")});
    QCOMPARE(result.err, QString());
    QCOMPARE(result.code, 0);
    QMap<QString, QString> found;
    const QJsonArray animations = json(result).value(QStringLiteral("animations")).toArray();
    for (const QJsonValue &animation : animations)
        found.insert(string(animation, "identifier"),
                     QStringLiteral("%1: %2 ticks")
                         .arg(string(animation, "file"),
                              QString::number(animation[QStringLiteral("ticks")].toInt())));
    const QMap<QString, QString> expected{
        {QStringLiteral("idle"), QStringLiteral("rowan/rowan.motion: 80 ticks")},
        {QStringLiteral("walk"), QStringLiteral("rowan/rowan.motion: 48 ticks")},
        {QStringLiteral("flow"), QStringLiteral("brook/brook.motion: 36 ticks")},
        {QStringLiteral("Rad"), QStringLiteral("mill/mill.motion: 10 ticks")},
        {QString::fromUtf8("飛ぶ"), QStringLiteral("hotaru/hotaru.motion: 60 ticks")}};
    for (auto it = expected.begin(); it != expected.end(); ++it)
        QCOMPARE(found.value(it.key()), it.value());
}

void TestCliTexts::playShowsTheFrames_data()
{
    QTest::addColumn<QString>("call");
    QTest::addColumn<QString>("rows"); // time, frame and ticks of the frame
    // Frames of 3 and 2 ticks: behind time 4 it goes on at time 3, where frame 1 begins.
    QTest::newRow("loop point") << "walk --ticks 9 --file hero/hero.motion"
                                << "0 0 1, 1 0 2, 2 0 3, 3 1 1, 4 1 2, 3 1 1, 4 1 2, 3 1 1, 4 1 2";
    QTest::newRow("endless") << "stay --ticks 3"
                             << "0 0 1, 1 0 2, 2 0 3";
    QTest::newRow("without frames") << "rest --ticks 2"
                                    << "0 - 1, 0 - 1";
    QTest::newRow("file on the disk") << "walk --ticks 1 --file @/wolf/run.motion"
                                      << "0 0 1";
}

void TestCliTexts::playShowsTheFrames()
{
    QFETCH(QString, call);
    QFETCH(QString, rows);
    const Result result = run(QStringLiteral("play @ ") + call, m_game);
    QCOMPARE(result.err, QString());
    QCOMPARE(result.code, 0);
    QStringList found;
    const QStringList lines = linesOf(result.out);
    for (const QString &line : lines) {
        // Columns of a fixed width, for whoever cuts lines.
        QCOMPARE(line.size(), 20);
        found.append(line.simplified());
    }
    QCOMPARE(found.join(QStringLiteral(", ")), rows);
}

void TestCliTexts::playAsJson()
{
    const QJsonObject stay = json(run(QStringLiteral("play @ stay --json --ticks 2"), m_game));
    QCOMPARE(string(stay, "file"), QStringLiteral("hero/hero.motion"));
    QCOMPARE(string(stay, "identifier"), QStringLiteral("stay"));
    const QJsonArray ticks = stay.value(QStringLiteral("ticks")).toArray();
    QCOMPARE(ticks.size(), 2);
    const QJsonObject second{{QStringLiteral("time"), 1},
                             {QStringLiteral("frame"), 0},
                             {QStringLiteral("frameTime"), 2}};
    QCOMPARE(ticks.at(1).toObject(), second);
    const QJsonObject rest = json(run(QStringLiteral("play @ rest --json --ticks 1"), m_game));
    QVERIFY(rest.value(QStringLiteral("ticks"))[0][QStringLiteral("frame")].isNull());
}

void TestCliTexts::playNeedsOneAnimation_data()
{
    QTest::addColumn<QString>("call");
    QTest::addColumn<QStringList>("complaints");
    QTest::newRow("unknown") << "swim --ticks 1" << QStringList{QStringLiteral("swim")};
    QTest::newRow("in two files") << "walk --ticks 1"
                                  << QStringList{QStringLiteral("hero/hero.motion:7"),
                                                 QStringLiteral("wolf/run.motion:1")};
    QTest::newRow("not in this file")
        << "stay --ticks 1 --file wolf/run.motion" << QStringList{QStringLiteral("stay")};
    QTest::newRow("twice in this file")
        << "walk --ticks 1 --file wolf/run.motion"
        << QStringList{QStringLiteral("wolf/run.motion:1"), QStringLiteral("wolf/run.motion:5")};
    QTest::newRow("file of scripts")
        << "walk --ticks 1 --file hero/hero.script" << QStringList{QStringLiteral("hero.script")};
}

void TestCliTexts::playNeedsOneAnimation()
{
    QFETCH(QString, call);
    QFETCH(QStringList, complaints);
    if (complaints.contains(QStringLiteral("wolf/run.motion:5")))
        SmallGame::writeFile(path("wolf/run.motion"),
                             QByteArray(wolfMotion) + "[animation walk]\n");
    const Result result = run(QStringLiteral("play @ ") + call, m_game);
    QCOMPARE(result.code, 2);
    QCOMPARE(result.out, QString());
    for (const QString &complaint : qAsConst(complaints))
        QVERIFY2(result.err.contains(complaint), qPrintable(result.err));
}

QTEST_MAIN(TestCliTexts)
#include "tst_clitexts.moc"
