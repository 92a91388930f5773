// SPDX-License-Identifier: MIT
#include "engine/engine.h"
#include "frame/filesystemarchive.h"
#include "frame/propertyitem.h"
#include "frame/textcodecs.h"
#include "project/parentproject.h"
#include "project/project.h"
#include "project/projectfile.h"
#include "studio/folders.h"
#include "studio/session/engineloader.h"
#include "studio/session/messagereport.h"
#include "studio/session/projectsession.h"
#include "studio/session/recovery.h"

#include "studio/smallgame.h"
#include "support/memoryarchive.h"
#include "support/recordinghost.h"

#include <QTemporaryDir>
#include <QtTest>

using namespace Studio;

namespace {

QStringList lines(const MessageReport &report)
{
    return report.text().split(QLatin1Char('\n'), Qt::SkipEmptyParts);
}

/// Changes the name that a main file gives its project.
void rename(const ProjectSession &session, const QString &project, const QString &name)
{
    const QList<Vela::Project *> projects = session.parent()->openedProjects();
    for (const Vela::Project *opened : projects) {
        if (opened->name() == project)
            dynamic_cast<Vela::PropertyItem &>(*opened->mainFile())
                .setProperty(QStringLiteral("project.name"), name);
    }
}

} // namespace

class TestSession : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();
    void cleanup();

    void pathsAreNormalized_data();
    void pathsAreNormalized();
    void whatCannotBeOpenedIsNamed_data();
    void whatCannotBeOpenedIsNamed();
    void createdProjectIsOpenAndSound();
    void createLeavesFoldersInUseAlone();
    void closedProjectsAreListedAndOpened();
    void contentsAreListedOnce();
    void copiesAreCompared();

    void saveWritesTheModifiedFileOnly();
    void saveNamesWhatCouldNotBeWritten();
    void saveAsCopiesEverythingAndStaysThere();
    void saveAsOfASingleProject();
    void backupHoldsWhatIsInMemory();
    void backupsOfOneSecondStayApart();
    void badBackupNamesAreRefused_data();
    void badBackupNamesAreRefused();
    void restoreBringsBackTheBytes();
    void brokenBackupsChangeNothing_data();
    void brokenBackupsChangeNothing();

    void backupsAreListed();
    void timesAreReadFromNames_data();
    void timesAreReadFromNames();

    void messagesAreSorted();
    void messageIsOneLine();

    void interruptedSavesAreFound();
    void recoverLosesNothing_data();
    void recoverLosesNothing();
    void discardRemovesTheTemporaryFileOnly();

private:
    QString path(const QString &name) const
    {
        return m_folder->path() + QLatin1Char('/') + name;
    }
    std::unique_ptr<ProjectSession> openGame();

    std::unique_ptr<RecordingHost> m_host;
    std::unique_ptr<EngineLoader> m_loader;
    std::unique_ptr<QTemporaryDir> m_folder;
};

void TestSession::initTestCase()
{
    m_host = std::make_unique<RecordingHost>();
    Vela::TextCodecs::initialize();
    m_loader = std::make_unique<EngineLoader>(Folders().extensionsFolder());
    QCOMPARE(EngineLoader::engines().size(), 1);
}

void TestSession::init()
{
    m_folder = std::make_unique<QTemporaryDir>();
    QVERIFY(SmallGame::write(path(QStringLiteral("game"))));
}

void TestSession::cleanup()
{
    m_folder.reset();
}

std::unique_ptr<ProjectSession> TestSession::openGame()
{
    QString error;
    auto session = ProjectSession::open(path(QStringLiteral("game")), &error);
    if (!session)
        qWarning("%s", qPrintable(error));
    return session;
}

void TestSession::pathsAreNormalized_data()
{
    QTest::addColumn<QString>("given");
    QTest::addColumn<QString>("expected");
    const QString here = QDir::currentPath();
    const QString home = QDir::homePath();
    QTest::newRow("empty") << ""
                           << "";
    QTest::newRow("absolute") << "/a/b"
                              << "/a/b";
    QTest::newRow("slash at the end") << "/a/b/"
                                      << "/a/b";
    QTest::newRow("root") << "/"
                          << "/";
    QTest::newRow("relative") << "a/b" << here + QLatin1String("/a/b");
    QTest::newRow("here") << "." << here;
    QTest::newRow("detour") << "/a/./c/../b"
                            << "/a/b";
    QTest::newRow("home") << "~" << home;
    QTest::newRow("below home") << "~/games/" << home + QLatin1String("/games");
    QTest::newRow("a name with ~") << "/a/~/b"
                                   << "/a/~/b";
    QTest::newRow("not a home") << "~other" << here + QLatin1String("/~other");
}

void TestSession::pathsAreNormalized()
{
    QFETCH(QString, given);
    QTEST(ProjectSession::normalizedPath(given), "expected");
}

void TestSession::whatCannotBeOpenedIsNamed_data()
{
    QTest::addColumn<QString>("name");
    QTest::newRow("missing") << "nowhere";
    QTest::newRow("no project") << "notes.txt";
    QTest::newRow("empty folder") << "empty";
    QTest::newRow("main file is a folder") << "odd";
}

void TestSession::whatCannotBeOpenedIsNamed()
{
    QFETCH(QString, name);
    SmallGame::writeFile(path(QStringLiteral("notes.txt")), "hello");
    QDir().mkpath(path(QStringLiteral("empty")));
    QDir().mkpath(path(QStringLiteral("odd/game.lantern")));

    QString error;
    QVERIFY(!ProjectSession::open(path(name), &error));
    QVERIFY2(error.contains(name), qPrintable(error));
}

void TestSession::createdProjectIsOpenAndSound()
{
    QString error;
    const auto session =
        ProjectSession::create(EngineLoader::engines().first(), path(QStringLiteral("new/game")),
                               QStringLiteral("Lights Out"), &error);
    QVERIFY2(session, qPrintable(error));
    MessageReport::loadAll(*session->parent());
    QCOMPARE(lines(MessageReport(*session->parent())), QStringList());
    QVERIFY(!session->isModified());

    const auto again = ProjectSession::open(session->path(), &error);
    QVERIFY2(again, qPrintable(error));
    QCOMPARE(rootPath(*again->parent()), path(QStringLiteral("new/game")));
}

void TestSession::createLeavesFoldersInUseAlone()
{
    const auto before = SmallGame::tree(path(QStringLiteral("game")));
    QString error;
    QVERIFY(!ProjectSession::create(EngineLoader::engines().first(), path(QStringLiteral("game")),
                                    QStringLiteral("Other"), &error));
    QVERIFY(error.contains(path(QStringLiteral("game"))));
    QCOMPARE(SmallGame::tree(path(QStringLiteral("game"))), before);
}

void TestSession::closedProjectsAreListedAndOpened()
{
    const auto session = openGame();
    QVERIFY(session);
    const Vela::ParentProject &parent = *session->parent();
    QCOMPARE(closedProjects(parent), QStringList{QStringLiteral("wolf")});
    QCOMPARE(closedProjectFiles(parent, QStringLiteral("wolf")),
             (QStringList{QStringLiteral("wolf/wolf.lantern"), QStringLiteral("wolf/run.motion")}));
    QString error;
    QVERIFY(!session->openClosedProject(QStringLiteral("bear"), &error));
    QVERIFY(error.contains(QStringLiteral("bear")));

    QCOMPARE(session->openAllProjects(), QStringList());
    QCOMPARE(closedProjects(parent), QStringList());
    QStringList folders;
    const QList<Vela::Project *> projects = sortedProjects(parent);
    for (const Vela::Project *project : projects)
        folders.append(projectFolder(*project));
    QCOMPARE(folders, (QStringList{QString(), QStringLiteral("hero"), QStringLiteral("wolf")}));
}

void TestSession::contentsAreListedOnce()
{
    const auto session = openGame();
    QVERIFY(session);
    const QStringList opened{QStringLiteral("game.lantern"), QStringLiteral("hero/hero.lantern"),
                             QStringLiteral("hero/sprites/idle.png"),
                             QStringLiteral("hero/hero.script")};
    QCOMPARE(contentList(*session->parent(), false).files, opened);
    const ContentList all = contentList(*session->parent(), true);
    QCOMPARE(all.files,
             opened
                 + QStringList(
                     {QStringLiteral("wolf/wolf.lantern"), QStringLiteral("wolf/run.motion")}));
    QCOMPARE(all.missing + all.outside, QStringList());

    QFile::remove(path(QStringLiteral("game/hero/hero.script")));
    const ContentList less = contentList(*session->parent(), false);
    QCOMPARE(less.missing, QStringList{QStringLiteral("hero/hero.script")});
    QVERIFY(!less.files.contains(QStringLiteral("hero/hero.script")));
}

void TestSession::copiesAreCompared()
{
    const QByteArray longText(200000, 'x');
    MemoryArchive from({{QStringLiteral("/a/same"), "1"},
                        {QStringLiteral("/a/longer"), longText},
                        {QStringLiteral("/a/late"), QByteArray(longText).append('1')},
                        {QStringLiteral("/a/lost"), "4"},
                        {QStringLiteral("/a/changed"), "5"}});
    MemoryArchive to({{QStringLiteral("/b/c/same"), "1"},
                      {QStringLiteral("/b/c/longer"), QByteArray(longText).append('x')},
                      {QStringLiteral("/b/c/late"), QByteArray(longText).append('2')},
                      {QStringLiteral("/b/c/changed"), "6"}});
    const QStringList files = filesBelow({from, QStringLiteral("/a")});
    QCOMPARE(
        files,
        (QStringList{QStringLiteral("changed"), QStringLiteral("late"), QStringLiteral("longer"),
                     QStringLiteral("lost"), QStringLiteral("same")}));

    const QStringList failures =
        failedCopies({from, QStringLiteral("/a")}, {to, QStringLiteral("/b/c")}, files,
                     {QStringLiteral("changed"), QStringLiteral("lost")});
    QCOMPARE(failures.size(), 3);
    QVERIFY(failures.at(0).startsWith(QLatin1String("late:")));
    QVERIFY(failures.at(1).startsWith(QLatin1String("longer:")));
    QVERIFY(failures.at(2).startsWith(QLatin1String("lost:")));
    QCOMPARE(from.openDevices + to.openDevices, 0);
}

void TestSession::saveWritesTheModifiedFileOnly()
{
    const auto session = openGame();
    QVERIFY(session);
    rename(*session, QStringLiteral("Hero"), QStringLiteral("Ann"));
    QCOMPARE(session->modifiedFiles(), QStringList{QStringLiteral("hero/hero.lantern")});

    QMap<QString, QByteArray> expected = SmallGame::files();
    expected[QStringLiteral("hero/hero.lantern")].replace("Hero", "Ann");
    QCOMPARE(session->save(nullptr), QStringList());
    QVERIFY(!session->isModified());
    QCOMPARE(SmallGame::tree(path(QStringLiteral("game"))), expected);
}

void TestSession::saveNamesWhatCouldNotBeWritten()
{
    const auto session = openGame();
    QVERIFY(session);
    rename(*session, QStringLiteral("Hero"), QStringLiteral("Ann"));
    QFile::remove(path(QStringLiteral("game/hero/hero.lantern")));
    QDir().mkpath(path(QStringLiteral("game/hero/hero.lantern")));
    QCOMPARE(session->save(nullptr), QStringList{QStringLiteral("hero/hero.lantern")});
    QVERIFY(session->isModified());
}

void TestSession::saveAsCopiesEverythingAndStaysThere()
{
    const auto session = openGame();
    QVERIFY(session);
    rename(*session, QStringLiteral("Hero"), QStringLiteral("Ann"));
    const CopyResult result = session->saveAs(path(QStringLiteral("copy/")), nullptr);
    QCOMPARE(result.errors + result.warnings, QStringList());

    QMap<QString, QByteArray> expected = SmallGame::files();
    QCOMPARE(SmallGame::tree(path(QStringLiteral("game"))), expected);
    expected[QStringLiteral("hero/hero.lantern")].replace("Hero", "Ann");
    QCOMPARE(SmallGame::tree(path(QStringLiteral("copy"))), expected);

    rename(*session, QStringLiteral("Ann"), QStringLiteral("Bea"));
    QCOMPARE(session->save(nullptr), QStringList());
    QVERIFY(SmallGame::readFile(path(QStringLiteral("copy/hero/hero.lantern"))).contains("Bea"));
    QCOMPARE(session->path(), path(QStringLiteral("copy")));
}

void TestSession::saveAsOfASingleProject()
{
    QString error;
    const auto session =
        ProjectSession::open(path(QStringLiteral("game/hero/hero.lantern")), &error);
    QVERIFY2(session, qPrintable(error));
    const CopyResult result = session->saveAs(path(QStringLiteral("alone")), nullptr);
    QCOMPARE(result.errors + result.warnings, QStringList());
    QCOMPARE(SmallGame::tree(path(QStringLiteral("alone"))),
             SmallGame::tree(path(QStringLiteral("game/hero"))));
    QCOMPARE(session->path(), path(QStringLiteral("alone/hero.lantern")));
}

void TestSession::backupHoldsWhatIsInMemory()
{
    const auto session = openGame();
    QVERIFY(session);
    rename(*session, QStringLiteral("Hero"), QStringLiteral("Ann"));
    const CopyResult result = session->backup(QStringLiteral("first"), nullptr);
    QCOMPARE(result.errors + result.warnings, QStringList());
    QCOMPARE(SmallGame::content(path(QStringLiteral("game"))), SmallGame::files());
    QCOMPARE(session->modifiedFiles(), QStringList{QStringLiteral("hero/hero.lantern")});

    QString error;
    Backup backup;
    QVERIFY2(session->findBackup(QStringLiteral("first"), &backup, &error), qPrintable(error));
    QCOMPARE(backup.name, result.name);
    QVERIFY(qAbs(backup.time.secsTo(QDateTime::currentDateTime())) < 60);
    QVERIFY(backup.size > 0);
    QCOMPARE(ProjectSession::backupFiles(backup, &error).size(), 4);
    QCOMPARE(session->restore(backup, nullptr).errors, QStringList());
    QVERIFY(SmallGame::readFile(path(QStringLiteral("game/hero/hero.lantern"))).contains("Ann"));
}

void TestSession::backupsOfOneSecondStayApart()
{
    const auto session = openGame();
    QVERIFY(session);
    QSet<QString> names;
    for (int i = 0; i < 2; ++i) {
        const CopyResult result = session->backup(QStringLiteral("twice"), nullptr);
        QCOMPARE(result.errors, QStringList());
        names.insert(result.name);
    }
    QCOMPARE(names.size(), 2);

    Backup backup;
    QString error;
    QVERIFY(!session->findBackup(QStringLiteral("twice"), &backup, &error));
    for (const QString &name : qAsConst(names)) {
        QVERIFY(error.contains(name));
        QVERIFY(session->findBackup(name, &backup, &error));
    }
    QVERIFY(!session->findBackup(QStringLiteral("thrice"), &backup, &error));
    QVERIFY(error.contains(QStringLiteral("thrice")));
}

void TestSession::badBackupNamesAreRefused_data()
{
    QTest::addColumn<QString>("label");
    QTest::newRow("empty") << "";
    QTest::newRow("blanks") << "  ";
    QTest::newRow("slash") << "a/b";
    QTest::newRow("backslash") << "a\\b";
    QTest::newRow("up") << "..";
    QTest::newRow("up inside") << "a..b";
    QTest::newRow("control character") << "a\nb";
    QTest::newRow("NUL") << QString(QChar(0));
    QTest::newRow("device") << "a:b";
}

void TestSession::badBackupNamesAreRefused()
{
    QFETCH(QString, label);
    const auto session = openGame();
    QVERIFY(session);
    QVERIFY(!session->backup(label, nullptr).errors.isEmpty());
    QCOMPARE(SmallGame::tree(path(QStringLiteral("game"))), SmallGame::files());
}

void TestSession::restoreBringsBackTheBytes()
{
    const auto session = openGame();
    QVERIFY(session);
    QCOMPARE(session->openAllProjects(), QStringList());
    QString error;
    const CopyResult made = session->backup(QStringLiteral("sound"), nullptr);
    QCOMPARE(made.errors, QStringList());

    SmallGame::writeFile(path(QStringLiteral("game/hero/hero.script")), "spoilt");
    SmallGame::writeFile(path(QStringLiteral("game/hero/own.txt")), "stays");
    QFile::remove(path(QStringLiteral("game/wolf/run.motion")));
    Backup backup;
    QVERIFY(session->findBackup(made.name, &backup, &error));
    m_host->refreshProjectsCount = 0;
    QCOMPARE(session->restore(backup, nullptr).errors, QStringList());

    QMap<QString, QByteArray> expected = SmallGame::files();
    expected.insert(QStringLiteral("hero/own.txt"), "stays");
    QCOMPARE(SmallGame::content(path(QStringLiteral("game"))), expected);
    QCOMPARE(m_host->refreshProjectsCount, 1);
}

void TestSession::brokenBackupsChangeNothing_data()
{
    QTest::addColumn<QString>("file");
    QTest::addColumn<QByteArray>("content");
    QTest::newRow("empty zip") << "bad.zip" << QByteArray();
    QTest::newRow("no zip") << "bad.zip" << QByteArray("PK\3\4 but nothing behind");
    QTest::newRow("empty folder") << "bad/inner/" << QByteArray();
}

void TestSession::brokenBackupsChangeNothing()
{
    QFETCH(QString, file);
    QFETCH(QByteArray, content);
    const QString place = path(QStringLiteral("game/backup/")) + file;
    if (file.endsWith(QLatin1Char('/')))
        QDir().mkpath(place);
    else
        SmallGame::writeFile(place, content);

    const auto session = openGame();
    QVERIFY(session);
    Backup backup;
    QString error;
    QVERIFY2(session->findBackup(QStringLiteral("bad"), &backup, &error), qPrintable(error));
    QVERIFY(!session->restore(backup, nullptr).errors.isEmpty());
    QCOMPARE(SmallGame::content(path(QStringLiteral("game"))), SmallGame::files());
}

void TestSession::backupsAreListed()
{
    const QString folder = path(QStringLiteral("backup"));
    const QString older = QStringLiteral("01.02.2020_3.4.5_am_a_b.c");
    const QString newer = QStringLiteral("01.02.2020_3.4.5_pm_late");
    SmallGame::writeFile(folder + QLatin1Char('/') + older + QLatin1String("/x/one"), "12345");
    SmallGame::writeFile(folder + QLatin1Char('/') + older + QLatin1String("/two"), "678");
    SmallGame::writeFile(folder + QLatin1Char('/') + newer + QLatin1String(".zip"), "1234");
    // A folder that a packed backup of the same name hides, and what is no backup.
    SmallGame::writeFile(folder + QLatin1Char('/') + newer + QLatin1String("/hidden"), "9");
    SmallGame::writeFile(folder + QLatin1String("/readme.txt"), "9");
    SmallGame::writeFile(folder + QLatin1String("/.zip"), "9");
    QFile::link(folder, folder + QLatin1String("/loop"));
    SmallGame::writeFile(folder + QLatin1String("/mine.zip"), "12");

    const QList<Backup> list = Backups(folder).list();
    QCOMPARE(list.size(), 3);
    QCOMPARE(list.at(0).name, QStringLiteral("mine"));
    QCOMPARE(list.at(0).label, QStringLiteral("mine"));
    QCOMPARE(list.at(1).name, newer);
    QCOMPARE(list.at(1).label, QStringLiteral("late"));
    QVERIFY(list.at(1).packed);
    QCOMPARE(list.at(1).size, 4);
    QCOMPARE(list.at(2).name, older);
    QCOMPARE(list.at(2).label, QStringLiteral("a_b.c"));
    QVERIFY(!list.at(2).packed);
    QCOMPARE(list.at(2).size, 8);
    QCOMPARE(Backups(path(QStringLiteral("nowhere"))).list().size(), 0);
}

void TestSession::timesAreReadFromNames_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QDateTime>("time"); // invalid: that of the file
    const QDate day(2020, 2, 29);
    QTest::newRow("midnight") << "29.02.2020_12.0.1_am_x" << QDateTime(day, QTime(0, 0, 1));
    QTest::newRow("morning") << "29.02.2020_9.5.59_am_x" << QDateTime(day, QTime(9, 5, 59));
    QTest::newRow("noon") << "29.02.2020_12.30.0_pm_x" << QDateTime(day, QTime(12, 30));
    QTest::newRow("evening") << "29.02.2020_11.59.59_PM_x" << QDateTime(day, QTime(23, 59, 59));
    QTest::newRow("no such day") << "30.02.2020_9.5.59_am_x" << QDateTime();
    QTest::newRow("no such hour") << "29.02.2020_13.5.59_am_x" << QDateTime();
    QTest::newRow("no such minute") << "29.02.2020_9.60.59_am_x" << QDateTime();
    QTest::newRow("cut short") << "29.02.2020_9.5.59" << QDateTime();
    QTest::newRow("letters behind") << "x29.02.2020_9.5.59_am_x" << QDateTime();
}

void TestSession::timesAreReadFromNames()
{
    QFETCH(QString, name);
    QFETCH(QDateTime, time);
    const QString file = path(QStringLiteral("backup/")) + name + QLatin1String(".zip");
    QVERIFY(SmallGame::writeFile(file, "1"));
    const QList<Backup> list = Backups(path(QStringLiteral("backup"))).list();
    QCOMPARE(list.size(), 1);
    QCOMPARE(list.first().time, time.isValid() ? time : QFileInfo(file).lastModified());
    QCOMPARE(list.first().label, time.isValid() ? QStringLiteral("x") : name);
}

void TestSession::messagesAreSorted()
{
    // Two errors and a missing file in one project, an error in the closed one.
    SmallGame::writeFile(path(QStringLiteral("game/hero/hero.lantern")),
                         "[project]\nkind = dragon\nrequires = soon\n[files]\nsounds = no.wav\n");
    SmallGame::writeFile(path(QStringLiteral("game/wolf/wolf.lantern")),
                         "[project]\n\n  kind = bear\n");
    const auto session = openGame();
    QVERIFY(session);
    QCOMPARE(session->openAllProjects(), QStringList());
    MessageReport::loadAll(*session->parent());
    const MessageReport report(*session->parent());

    QStringList places;
    for (const QString &line : lines(report))
        places.append(line.section(QLatin1Char(':'), 0, 3));
    QCOMPARE(places,
             (QStringList{QStringLiteral("hero/hero.lantern:2:8: error"),
                          QStringLiteral("hero/hero.lantern:3:12: error"),
                          QStringLiteral("hero/hero.lantern:5:10: warning"),
                          QStringLiteral("wolf/wolf.lantern:3:10: error")}));
    QCOMPARE(report.count(Vela::Message::Error), 3);
    QCOMPARE(report.count(Vela::Message::Warning), 1);
    QCOMPARE(report.count(Vela::Message::Any), 4);
}

void TestSession::messageIsOneLine()
{
    const MessageRecord record{QStringLiteral("a %2.txt"), 3, 7, Vela::Message::Information,
                               QStringLiteral("one\n  two\ttwo ")};
    QCOMPARE(MessageReport::line(record), QStringLiteral("a %2.txt:3:7: information: one two two"));

    // A text from a file must not command the terminal. What lies beyond the first plane stays.
    const MessageRecord unsafe{QStringLiteral("a\nb"), 1, 1, Vela::Message::Error,
                               QString::fromUtf8("\x1b[2J\u202ehi \U0001f33e")};
    QCOMPARE(MessageReport::line(unsafe),
             QString::fromUtf8("a b:1:1: error: \ufffd[2J\ufffdhi \U0001f33e"));
}

void TestSession::interruptedSavesAreFound()
{
    const QString game = path(QStringLiteral("game/"));
    SmallGame::write(path(QStringLiteral("game")),
                     {{QStringLiteral("hero/hero.scriptAb3dE9"), "wait 1\r\nwait 3\r\n"},
                      {QStringLiteral("game.lanternZZZZZZ"),
                       SmallGame::files().value(QStringLiteral("game.lantern"))},
                      {QStringLiteral("wolf/run.motion012345"), "half"},
                      // Its target was removed already, so that no project names it any more.
                      {QStringLiteral("hero/sprites/jump.pngq1W2e3"), "whole"},
                      // None of these was left behind by a save.
                      {QStringLiteral("hero/hero.script-copy1"), ""},
                      {QStringLiteral("hero/hero.scriptAb3dE"), ""},
                      {QStringLiteral("hero/hero.scriptAb3dE90"), ""},
                      {QStringLiteral("hero/hero.scriptäb3dE9"), ""},
                      {QStringLiteral("hero/notes.textAb3dE9"), ""},
                      {QStringLiteral("hero/ABCDEF"), ""},
                      // One that the project names itself.
                      {QStringLiteral("hero/hero.scriptNEWONE"), "wait 9\n"},
                      {QStringLiteral("hero/hero.lantern"),
                       "[project]\nname = Hero\nkind = character\n[files]\n"
                       "scripts = hero.script\nscripts = hero.scriptNEWONE\n"}});
    const auto session = openGame();
    QVERIFY(session);
    QList<InterruptedSave> found = Recovery::find(Recovery::searchFor(*session->parent()));
    QCOMPARE(found.size(), 4);

    QCOMPARE(found.at(0).target, game + QLatin1String("game.lantern"));
    QVERIFY(found.at(0).targetExists && !found.at(0).differs);
    QCOMPARE(found.at(1).temporary, game + QLatin1String("hero/hero.scriptAb3dE9"));
    QVERIFY(found.at(1).targetExists && found.at(1).differs);
    QCOMPARE(found.at(1).targetSize, 30);
    QCOMPARE(found.at(1).temporarySize, 16);
    QCOMPARE(found.at(2).target, game + QLatin1String("hero/sprites/jump.png"));
    QVERIFY(!found.at(2).targetExists && found.at(2).differs);
    QCOMPARE(found.at(3).target, game + QLatin1String("wolf/run.motion"));

    // A save that is going on in this process is not interrupted.
    QFile held(found.at(1).temporary);
    QVERIFY(held.open(QIODevice::ReadWrite));
    found = Recovery::find(Recovery::searchFor(*session->parent()));
    QCOMPARE(found.size(), 3);
}

void TestSession::recoverLosesNothing_data()
{
    QTest::addColumn<QMap<QString, QByteArray>>("before");
    QTest::addColumn<QMap<QString, QByteArray>>("after");
    QTest::addColumn<QString>("kept");
    using Files = QMap<QString, QByteArray>;
    const QString file = QStringLiteral("a.txt");
    const QString temporary = QStringLiteral("a.txtAb3dE9");
    const QString kept = QStringLiteral("a.txt.before-recovery");
    QTest::newRow("both differ") << Files{{file, "old"}, {temporary, "new"}}
                                 << Files{{file, "new"}, {kept, "old"}} << kept;
    QTest::newRow("kept before") << Files{{file, "old"}, {temporary, "new"}, {kept, "older"}}
                                 << Files{{file, "new"},
                                          {kept, "older"},
                                          {kept + QLatin1String("-2"), "old"}}
                                 << kept + QLatin1String("-2");
    QTest::newRow("same") << Files{{file, "new"}, {temporary, "new"}} << Files{{file, "new"}}
                          << QString();
    QTest::newRow("target gone") << Files{{temporary, "new"}} << Files{{file, "new"}} << QString();
}

void TestSession::recoverLosesNothing()
{
    using Files = QMap<QString, QByteArray>;
    QFETCH(Files, before);
    QFETCH(Files, after);
    QFETCH(QString, kept);
    const QString folder = path(QStringLiteral("files"));
    QVERIFY(SmallGame::write(folder, before));
    const QList<InterruptedSave> found =
        Recovery::find({{folder + QLatin1String("/a.txt")}, {folder}, {}, {}});
    QCOMPARE(found.size(), 1);

    QString name;
    QString error;
    QVERIFY2(Recovery::recover(found.first(), &name, &error), qPrintable(error));
    QCOMPARE(name, kept.isEmpty() ? kept : folder + QLatin1Char('/') + kept);
    QCOMPARE(SmallGame::tree(folder), after);

    QVERIFY(!Recovery::recover(found.first(), &name, &error));
    QVERIFY(error.contains(found.first().temporary));
    QCOMPARE(SmallGame::tree(folder), after);
}

void TestSession::discardRemovesTheTemporaryFileOnly()
{
    const QString folder = path(QStringLiteral("files"));
    SmallGame::write(folder, {{QStringLiteral("a"), "old"}, {QStringLiteral("aAb3dE9"), "new"}});
    const QList<InterruptedSave> found =
        Recovery::find({{folder + QLatin1String("/a")}, {folder}, {}, {}});
    QCOMPARE(found.size(), 1);
    QString error;
    QVERIFY(Recovery::discard(found.first(), &error));
    QCOMPARE(SmallGame::tree(folder), (QMap<QString, QByteArray>{{QStringLiteral("a"), "old"}}));
    QVERIFY(!Recovery::discard(found.first(), &error));
    QVERIFY(error.contains(found.first().temporary));
}

QTEST_MAIN(TestSession)
#include "tst_session.moc"
