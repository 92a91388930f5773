// SPDX-License-Identifier: MIT
#include "lantern/binaryfile.h"
#include "lantern/definitionfile.h"
#include "lantern/document.h"
#include "lantern/engine.h"
#include "lantern/motions.h"

#include "engine/extensionmanager.h"
#include "frame/archive.h"
#include "frame/filesystemarchive.h"
#include "frame/textcodecs.h"
#include "project/messagelist.h"
#include "project/messages.h"
#include "project/parentproject.h"
#include "project/project.h"
#include "support/recordinghost.h"

#include <QAbstractItemModelTester>
#include <QDirIterator>
#include <QElapsedTimer>
#include <QFile>
#include <QPointer>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

#include <memory>

#ifdef Q_OS_UNIX
#include <sys/stat.h>
#endif

using Lantern::DefinitionFile;
using Vela::Message;
using Vela::ParentProject;
using Vela::Project;
using Vela::ProjectFile;

class tst_LanternEngine : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();
    void cleanup();
    void theModuleRegistersItself();
    void theEngineTellsItsTexts();
    void theMeadowOpensWithoutAMessage();
    void filesAreFoundInAnyCase();
    void stagesComeFromTheGame();
    void closedProjectsOpenAndClose();
    void whatCanBeOpened_data();
    void whatCanBeOpened();
    void aSingleProjectIsNoGame();
    void filesOfEveryTypeAreMade();
    void aNewGameOpensWithoutAMessage_data();
    void aNewGameOpensWithoutAMessage();
    void newGamesAreRefused_data();
    void newGamesAreRefused();
    void savingAsTakesEverythingAlong();
    void aBackupBringsEverythingBack();
    void changesOfTheMainFileReachTheFiles();
    void changedFilesStayUntilTheyAreSaved();
    void scriptsNameAnimationsAndSounds();
    void projectsThatCannotBeReadBecomeMessages();
    void missingFilesAreDependencies();
    void thousandsOfFilesAreNotReadAtOnce();
    void motionsKnowTheNamesOfTheirProject();
    void linksOpenFilesOfTheGame();

private:
    QString path(const char *name) const;
    std::unique_ptr<ParentProject> open(const QString &path);
    Project *projectNamed(const ParentProject &parent, const char *name) const;

    std::unique_ptr<RecordingHost> m_host;
    std::unique_ptr<Vela::ExtensionManager> m_extensions;
    std::unique_ptr<QTemporaryDir> m_folder;
    Lantern::Engine m_engine;
};

namespace {

QString meadow()
{
    return QString::fromLocal8Bit(qgetenv("VELA_SOURCE_DIR")) + QStringLiteral("/examples/meadow");
}

void writeFile(const QString &name, const QByteArray &data)
{
    QVERIFY(QDir().mkpath(QFileInfo(name).absolutePath()));
    QFile file(name);
    QVERIFY(file.open(QIODevice::WriteOnly));
    QCOMPARE(file.write(data), qint64(data.size()));
}

// The content of every file below a folder, by its relative name; backups are left out.
QMap<QString, QByteArray> contents(const QString &folder)
{
    QMap<QString, QByteArray> result;
    QDirIterator it(folder, QDir::Files, QDirIterator::Subdirectories);
    while (it.hasNext()) {
        QFile file(it.next());
        const QString name = file.fileName().mid(folder.size() + 1);
        if (!name.startsWith(QLatin1String("backup/")) && file.open(QIODevice::ReadOnly))
            result.insert(name, file.readAll());
    }
    return result;
}

void copyTo(const QMap<QString, QByteArray> &files, const QString &folder)
{
    for (auto file = files.begin(); file != files.end(); ++file)
        writeFile(folder + QLatin1Char('/') + file.key(), file.value());
}

// The line ends of a document that was written, in an encoding of single bytes.
QByteArray withCrLf(QByteArray data)
{
    return data.replace("\r\n", "\n").replace("\n", "\r\n");
}

QStringList dependenciesOf(const Project &project)
{
    QList<Project::Dependency> files;
    project.dependencies(files);
    QStringList result;
    for (const Project::Dependency &file : qAsConst(files))
        result.append(QString::number(file.first) + QLatin1Char(' ') + file.second);
    return result;
}

QStringList messagesOf(const ParentProject &parent)
{
    QStringList result;
    const QList<Project *> projects = parent.openedProjects();
    for (Project *project : projects) {
        const Vela::Messages *source = nullptr;
        for (int row = 0; row < project->messages()->rowCount(); ++row) {
            const Message message = project->messages()->messageAt(row, source);
            result.append(QStringLiteral("%1:%2 %3")
                              .arg(source->file()->displayName())
                              .arg(message.line + 1)
                              .arg(message.text));
        }
    }
    return result;
}

void close(std::unique_ptr<ParentProject> &parent)
{
    const QList<Project *> projects = parent->openedProjects();
    for (Project *project : projects)
        project->release();
    parent.reset();
}

DefinitionFile *mainOf(Project *project)
{
    return dynamic_cast<DefinitionFile *>(project->mainFile());
}

} // namespace

void tst_LanternEngine::initTestCase()
{
    Vela::TextCodecs::initialize();
}

void tst_LanternEngine::init()
{
    m_host = std::make_unique<RecordingHost>();
    m_extensions = std::make_unique<Vela::ExtensionManager>(QStringLiteral(LANTERN_EXTENSIONS));
    m_folder = std::make_unique<QTemporaryDir>();
    QVERIFY(m_folder->isValid());
    copyTo(contents(meadow()), path("meadow"));
}

void tst_LanternEngine::cleanup()
{
    m_extensions.reset();
    m_host.reset();
}

QString tst_LanternEngine::path(const char *name) const
{
    return m_folder->filePath(QString::fromUtf8(name));
}

std::unique_ptr<ParentProject> tst_LanternEngine::open(const QString &path)
{
    QString error;
    std::unique_ptr<ParentProject> parent(m_engine.openParentProject(path, &error));
    if (!parent)
        qWarning("%s", qPrintable(error));
    return parent;
}

Project *tst_LanternEngine::projectNamed(const ParentProject &parent, const char *name) const
{
    const QList<Project *> projects = parent.openedProjects();
    for (Project *project : projects) {
        if (project->name() == QString::fromUtf8(name))
            return project;
    }
    return nullptr;
}

void tst_LanternEngine::theModuleRegistersItself()
{
    const auto formats = [](Vela::Extension::Type type) {
        QByteArrayList result;
        for (const Vela::Extension *extension : Vela::ExtensionManager::list(type))
            result.append(extension->format());
        return result;
    };
    QCOMPARE(formats(Vela::Extension::ArchiveFormat), QByteArrayList{"zip"});
    QCOMPARE(formats(Vela::Extension::EngineProvider), QByteArrayList{"lantern"});
    // A second module of the same folder changes nothing.
    const Vela::ExtensionManager again(QStringLiteral(LANTERN_EXTENSIONS));
    QCOMPARE(formats(Vela::Extension::ArchiveFormat), QByteArrayList{"zip"});
}

void tst_LanternEngine::theEngineTellsItsTexts()
{
    QCOMPARE(m_engine.queryString(Vela::Engine::EngineName, 0), QStringLiteral("lantern"));
    QCOMPARE(m_engine.queryString(Vela::Engine::CommentString, 0), QStringLiteral("#"));
    QCOMPARE(m_engine.queryString(Vela::Engine::DisplayName, 0), QStringLiteral("Lantern"));
    QVERIFY(!m_engine.queryString(Vela::Engine::EditorText, 0).isEmpty());
    QCOMPARE(m_engine.queryString(Vela::Engine::ProjectTypeName, 2), QStringLiteral("Stage"));
    QCOMPARE(m_engine.queryString(Vela::Engine::ProjectTypeName, 99), QString());
    QCOMPARE(m_engine.queryString(Vela::Engine::EngineName, 1), QString());
    QCOMPARE(m_engine.queryString(Vela::Engine::StringType(77), 0), QString());
    QCOMPARE(m_engine.path(), m_host->userFolder() + QStringLiteral("/engines/lantern"));
}

void tst_LanternEngine::theMeadowOpensWithoutAMessage()
{
    auto parent = open(path("meadow"));
    QVERIFY(parent);
    QVERIFY(parent->isGame());
    QStringList projects;
    const QList<Project *> opened = parent->openedProjects();
    for (const Project *project : opened)
        projects.append(project->typeName() + QLatin1Char(' ') + project->name());
    projects.sort();
    QCOMPARE(projects,
             (QStringList{QString::fromUtf8("Character Rowan"),
                          QString::fromUtf8("Character \xe3\x81\xbb\xe3\x81\x9f\xe3\x82\x8b"),
                          QString::fromUtf8("Game The Meadow"),
                          QString::fromUtf8("Stage Die M\xc3\xbchle"),
                          QString::fromUtf8("Stage The Brook")}));
    QCOMPARE(messagesOf(*parent), QStringList());
    const ParentProject::Path *const barn = parent->filePath(QStringLiteral("barn"));
    QVERIFY(barn && barn->isProjectRoot());
    QVERIFY(parent->filePath(QStringLiteral("rowan/sprites/walk-1.png")));
    QVERIFY(parent->filePath(QStringLiteral("game.lantern")));
    QAbstractItemModelTester tester(parent.get());

    // Each text is in the encoding that its project shows.
    for (Project *project : opened) {
        for (const int type : {Project::Main, Project::Animations, Project::Scripts}) {
            const QList<ProjectFile *> files = project->filesByType(type);
            for (ProjectFile *file : files) {
                QVERIFY(!file->isEmpty());
                const auto *const text = dynamic_cast<Lantern::Document *>(file);
                QVERIFY(text);
                QVERIFY(!text->toString().contains(QChar(0xFFFD)));
            }
        }
    }
    QCOMPARE(messagesOf(*parent), QStringList());
    close(parent);
}

void tst_LanternEngine::filesAreFoundInAnyCase()
{
    auto parent = open(path("meadow/game.lantern"));
    QVERIFY(parent);
    Project *const rowan = projectNamed(*parent, "Rowan");
    QVERIFY(rowan);
    QCOMPARE(
        dependenciesOf(*rowan),
        (QStringList{QStringLiteral("1 sprites/idle.png"), QStringLiteral("1 sprites/walk-1.png"),
                     QStringLiteral("1 sprites/walk-2.png"), QStringLiteral("1 rowan.sprites"),
                     QStringLiteral("2 sounds/step.wav"), QStringLiteral("2 sounds/lantern.wav"),
                     QStringLiteral("2 rowan.sounds"), QStringLiteral("3 rowan.motion"),
                     QStringLiteral("4 scripts/rowan.script")}));
    QCOMPARE(rowan->fileCount(), 10);
    const ProjectFile *const script = rowan->file(Project::Scripts);
    QVERIFY(script->fileExists());
    QCOMPARE(script->displayName(), QStringLiteral("rowan.script"));
    QCOMPARE(rowan->basePath().remove(QLatin1Char('/')), QStringLiteral("rowan"));
    QCOMPARE(rowan->version(), QStringLiteral("1.0"));
    close(parent);
}

void tst_LanternEngine::stagesComeFromTheGame()
{
    auto parent = open(path("meadow"));
    QVERIFY(parent);
    QCOMPARE(projectNamed(*parent, "Rowan")->stageSize(), QSize(320, 180));
    QCOMPARE(projectNamed(*parent, "Rowan")->stageScale(), QPointF(2, 2));
    QCOMPARE(projectNamed(*parent, "The Brook")->stageSize(), QSize(640, 180));
    QCOMPARE(projectNamed(*parent, "The Brook")->stageScale(), QPointF(2, 2));
    close(parent);

    parent = open(path("meadow/rowan"));
    QCOMPARE(projectNamed(*parent, "Rowan")->stageSize(), QSize(320, 180));
    QCOMPARE(projectNamed(*parent, "Rowan")->stageScale(), QPointF(1, 1));
    close(parent);
}

void tst_LanternEngine::closedProjectsOpenAndClose()
{
    auto parent = open(path("meadow"));
    QString error;
    QVERIFY(!m_engine.openProject(parent.get(), QStringLiteral("rowan"), &error));
    QVERIFY(!error.isEmpty());
    for (const char *name : {"barn/", "barn", "barn/barn.lantern"}) {
        Project *const barn = m_engine.openProject(parent.get(), QLatin1String(name), &error);
        QVERIFY2(barn, qPrintable(error));
        QCOMPARE(barn->name(), QStringLiteral("The Barn"));
        QCOMPARE(parent->openedProjects().size(), 6);
        QPointer<Project> guard(barn);
        barn->release();
        QTRY_VERIFY(!guard);
        const ParentProject::Path *const node = parent->filePath(QStringLiteral("barn"));
        QVERIFY(node && node->isProjectRoot());
    }
    QStringList files;
    parent->closedProjectFiles(QStringLiteral("barn/"), files);
    QCOMPARE(files,
             (QStringList{QStringLiteral("barn/barn.lantern"), QStringLiteral("barn/barn.png"),
                          QStringLiteral("barn/barn.sounds"), QStringLiteral("barn/barn.script")}));

    // One that is closed by the user joins them.
    projectNamed(*parent, "Rowan")->release();
    files.clear();
    parent->closedProjectFiles(QStringLiteral("rowan"), files);
    QCOMPARE(files.size(), 10);
    close(parent);
}

void tst_LanternEngine::whatCanBeOpened_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<bool>("can");
    QTest::addColumn<bool>("game");

    QTest::newRow("a game's folder") << "meadow" << true << true;
    QTest::newRow("with a slash behind") << "meadow/" << true << true;
    QTest::newRow("its file") << "meadow/game.lantern" << true << true;
    QTest::newRow("a project's folder") << "meadow/rowan" << true << false;
    QTest::newRow("its main file") << "meadow/brook/brook.lantern" << true << false;
    QTest::newRow("a folder without a main file") << "meadow/rowan/sprites" << false << false;
    QTest::newRow("another file") << "meadow/evening.script" << false << false;
    QTest::newRow("nothing") << "meadow/none.lantern" << false << false;
    QTest::newRow("no folder") << "none" << false << false;
    QTest::newRow("a game written in capitals") << "capitals" << true << true;
    QTest::newRow("two main files") << "two" << false << false;
    QTest::newRow("one of two main files") << "two/a.lantern" << true << false;
}

void tst_LanternEngine::whatCanBeOpened()
{
    QFETCH(QString, name);
    QFETCH(bool, can);
    QFETCH(bool, game);
    writeFile(path("capitals/GAME.Lantern"), "[game]\n");
    writeFile(path("two/a.lantern"), "[project]\n");
    writeFile(path("two/b.lantern"), "[project]\n");

    QCOMPARE(m_engine.canOpen(path(name.toUtf8().constData())), can);
    QString error;
    std::unique_ptr<ParentProject> parent(
        m_engine.openParentProject(path(name.toUtf8().constData()), &error));
    QCOMPARE(parent != nullptr, can);
    QCOMPARE(error.isEmpty(), can);
    if (parent) {
        QCOMPARE(parent->isGame(), game);
        close(parent);
    }
}

void tst_LanternEngine::aSingleProjectIsNoGame()
{
    auto parent = open(path("meadow/mill/mill.lantern"));
    QVERIFY(parent && !parent->isGame());
    QCOMPARE(parent->openedProjects().size(), 1);
    QCOMPARE(messagesOf(*parent), QStringList());
    QVERIFY(QDir().mkpath(path("elsewhere")));
    parent->saveAs(path("elsewhere/wheel.lantern"), nullptr);
    QCOMPARE(parent->basePath(), path("elsewhere"));

    auto expected = contents(meadow() + QStringLiteral("/mill"));
    expected.insert(QStringLiteral("wheel.lantern"),
                    withCrLf(expected.take(QStringLiteral("mill.lantern"))));
    QCOMPARE(contents(path("elsewhere")), expected);
    close(parent);
}

void tst_LanternEngine::filesOfEveryTypeAreMade()
{
    const QMap<int, QString> filters = m_engine.singleFileFilters();
    QCOMPARE(filters.keys(), (QList<int>{0, 1, 2, 3, 4}));
    for (int type = 0; type <= Project::Scripts; ++type) {
        ProjectFile *const file = m_engine.createFile(type, nullptr);
        QVERIFY(file && file->isEmpty() && file->canSave());
        QVERIFY(filters.value(type).contains(QLatin1String(file->fileExtension())));
        file->release();
    }
    QVERIFY(!m_engine.createFile(5, nullptr));
    QVERIFY(!m_engine.createFile(-1, nullptr));
}

void tst_LanternEngine::aNewGameOpensWithoutAMessage_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("mainFile");

    QTest::newRow("words") << "Night  Garden 2!"
                           << "night-garden-2/night-garden-2.lantern";
    QTest::newRow("a device") << "con"
                              << "first-con/first-con.lantern";
    QTest::newRow("other letters")
        << QString::fromUtf8("\xe8\x8d\x89\xe5\x8e\x9f") << "first/first.lantern";
    QTest::newRow("a comment") << " # 1"
                               << "first-1/first-1.lantern";
    QTest::newRow("game") << "game"
                          << "first-game/first-game.lantern";
}

void tst_LanternEngine::aNewGameOpensWithoutAMessage()
{
    QFETCH(QString, name);
    QFETCH(QString, mainFile);
    QVERIFY(QDir().mkpath(path("new")));
    QString error;
    const QString created = m_engine.createParentProject(path("new"), name, &error);
    QCOMPARE(created, path("new"));
    QVERIFY(QFile::exists(created + QLatin1Char('/') + mainFile));
    auto parent = open(created);
    QVERIFY(parent && parent->isGame());
    QCOMPARE(messagesOf(*parent), QStringList());
    QCOMPARE(parent->openedProjects().size(), 2);
    for (const Project *project : parent->openedProjects())
        QCOMPARE(project->name(), name);
    close(parent);
}

void tst_LanternEngine::newGamesAreRefused_data()
{
    QTest::addColumn<QString>("folder");
    QTest::addColumn<QString>("name");
    QTest::newRow("a folder with something in it") << "meadow"
                                                   << "A";
    QTest::newRow("no folder") << "none"
                               << "A";
    QTest::newRow("no name") << "new"
                             << "  ";
    QTest::newRow("two lines") << "new"
                               << "A\nB";
}

void tst_LanternEngine::newGamesAreRefused()
{
    QFETCH(QString, folder);
    QFETCH(QString, name);
    QVERIFY(QDir().mkpath(path("new")));
    const auto before = contents(path("meadow"));
    QString error;
    QVERIFY(
        m_engine.createParentProject(path(folder.toUtf8().constData()), name, &error).isEmpty());
    QVERIFY(!error.isEmpty());
    QCOMPARE(contents(path("meadow")), before);
    QVERIFY(QDir(path("new")).isEmpty() && !QDir(path("none")).exists());
}

void tst_LanternEngine::savingAsTakesEverythingAlong()
{
    auto parent = open(path("meadow"));
    QVERIFY(QDir().mkpath(path("away")));
    parent->saveAs(path("away"), nullptr);
    // Main files are written from memory; what nobody has read is passed on as it is.
    auto expected = contents(meadow());
    for (const char *name : {"game.lantern", "rowan/rowan.lantern", "mill/mill.lantern"}) {
        QByteArray &data = expected[QLatin1String(name)];
        data = withCrLf(data);
    }
    QCOMPARE(contents(path("away")), expected);
    QVERIFY(parent->isGame());
    QCOMPARE(parent->basePath(), path("away"));
    const QList<Project *> projects = parent->openedProjects();
    for (const Project *project : projects)
        QVERIFY(project->fileName().startsWith(path("away/")));
    close(parent);
}

void tst_LanternEngine::aBackupBringsEverythingBack()
{
    auto parent = open(path("meadow"));
    const auto before = contents(path("meadow"));
    // A change that is not on the disk is in the backup.
    Project *const rowan = projectNamed(*parent, "Rowan");
    mainOf(rowan)->setProperty(QStringLiteral("project.author"), QStringLiteral("Backup"));
    QVERIFY(parent->backup(QStringLiteral("one"), nullptr));
    const QStringList backups = QDir(path("meadow/backup")).entryList(QDir::Files);
    QCOMPARE(backups.size(), 1);
    QVERIFY(backups.at(0).endsWith(QLatin1String("one.zip")));
    QCOMPARE(contents(path("meadow")), before);
    QVERIFY(rowan->isModified());

    for (const char *name : {"rowan/rowan.lantern", "rowan/sprites/idle.png", "game.lantern"})
        QVERIFY(QFile::remove(path("meadow/") + QLatin1String(name)));
    writeFile(path("meadow/hotaru/hotaru.lantern"), "[project]\nname = wrong\n");
    QVERIFY(parent->restoreBackup(backups.at(0).chopped(4), nullptr));
    auto expected = before;
    QByteArray &changed = expected[QStringLiteral("rowan/rowan.lantern")];
    changed = withCrLf(changed.replace("Zo\xc3\xab W\xc3\xb3jcik", "Backup"));
    QCOMPARE(contents(path("meadow")), expected);
    QVERIFY(!rowan->isModified());
    QCOMPARE(messagesOf(*parent), QStringList());
    QCOMPARE(m_host->refreshProjectsCount, 1);
    close(parent);
}

void tst_LanternEngine::changesOfTheMainFileReachTheFiles()
{
    auto parent = open(path("meadow/rowan/rowan.lantern"));
    Project *const rowan = parent->openedProjects().at(0);
    QSignalSpy hierarchy(rowan, &Project::fileHierarchyChanged);
    QSignalSpy names(rowan, &Project::nameChanged);
    DefinitionFile *const main = mainOf(rowan);

    const QString text = main->toString();
    main->setText(QString(text).remove(QStringLiteral("sounds = sounds/step.wav\n")));
    QCOMPARE(hierarchy.size(), 1);
    QCOMPARE(rowan->filesByType(Project::Sounds).size(), 2);
    main->setText(text + QStringLiteral("scripts = rowan.motion\nsounds = none.wav\n"));
    QCOMPARE(hierarchy.size(), 2);
    QCOMPARE(rowan->filesByType(Project::Sounds).size(), 3);
    QCOMPARE(rowan->filesByType(Project::Scripts).size(), 2);
    // One file under two types.
    ProjectFile *const motion = rowan->file(Project::Animations);
    QCOMPARE(rowan->fileID(motion), Project::FileTypes(1 << 3 | 1 << 4));
    QCOMPARE(main->messages()->count(Message::Warning), 1);
    QCOMPARE(main->messages()->at(0, Message::Warning).column, 9u);
    QCOMPARE(names.size(), 0);

    main->setProperty(QStringLiteral("project.name"), QStringLiteral("Birch"));
    QCOMPARE(names.size(), 1);
    QCOMPARE(hierarchy.size(), 2);
    main->setText(text);
    QCOMPARE(rowan->fileID(motion), Project::FileTypes(1 << 3));
    QCOMPARE(rowan->filesByType(Project::Scripts).size(), 1);
    close(parent);
}

void tst_LanternEngine::changedFilesStayUntilTheyAreSaved()
{
    auto parent = open(path("meadow/rowan/rowan.lantern"));
    Project *const rowan = parent->openedProjects().at(0);
    auto *const script = dynamic_cast<Lantern::Document *>(rowan->file(Project::Scripts));
    script->setText(QStringLiteral("mine"));
    writeFile(path("meadow/rowan/rowan.lantern"), "[project]\nname = Rowan\n");
    rowan->mainFile()->fromFile(parent->archive(), rowan->fileName(), 0, nullptr);
    QCOMPARE(rowan->fileCount(), 2);
    QCOMPARE(rowan->file(Project::Scripts), script);
    QCOMPARE(dependenciesOf(*rowan), QStringList());
    parent->save(nullptr);
    QTRY_COMPARE(contents(path("meadow/rowan")).value(QStringLiteral("scripts/rowan.script")),
                 QByteArray("mine"));
    close(parent);
}

void tst_LanternEngine::scriptsNameAnimationsAndSounds()
{
    RecordingHost host;
    auto parent = open(path("meadow/rowan/rowan.lantern"));
    Project *const rowan = parent->openedProjects().at(0);
    auto *const script = dynamic_cast<Lantern::Document *>(rowan->file(Project::Scripts));
    QVERIFY(!script->isEmpty());
    QCOMPARE(script->animationNames(),
             (QStringList{QStringLiteral("idle"), QStringLiteral("walk"), QStringLiteral("lift"),
                          QStringLiteral("turn"), QStringLiteral("far")}));
    script->openAnimation(QStringLiteral("Walk"));
    QCOMPARE(host.openFileCalls.size(), 1);
    QCOMPARE(host.openFileCalls.last().file, rowan->file(Project::Animations));
    // "[animation walk]" is the 23rd line of the file.
    QCOMPARE(host.openFileCalls.last().line, 22u);
    script->openSound(QStringLiteral("LANTERN"));
    QCOMPARE(host.openFileCalls.last().file->fileName(), path("meadow/rowan/sounds/lantern.wav"));
    script->openAnimation(QStringLiteral("swim"));
    script->openSound(QStringLiteral("bang"));
    QCOMPARE(host.openFileCalls.size(), 2);
    QCOMPARE(host.logged.size(), 2);
    close(parent);
}

void tst_LanternEngine::projectsThatCannotBeReadBecomeMessages()
{
    // A folder of the file's name, and a file that is larger than any text.
    QVERIFY(QDir().mkpath(path("bad/a/a.lantern")));
    writeFile(path("bad/b/b.lantern"), QByteArray());
    QVERIFY(QFile::resize(path("bad/b/b.lantern"), Lantern::largestFile + 1));
    writeFile(path("bad/game.lantern"),
              "[game]\nname = Bad\n[projects]\nopen = a/a.lantern\n open = b/b.lantern\n");
    auto parent = open(path("bad"));
    QVERIFY(parent);
    QCOMPARE(parent->openedProjects().size(), 1);
    Vela::Messages *const messages = parent->openedProjects().at(0)->mainFile()->messages();
    QCOMPARE(messages->count(Message::Any), 2);
    QCOMPARE(messages->at(0, Message::Warning).line, 3u);
    QCOMPARE(messages->at(0, Message::Error).line, 4u);
    QCOMPARE(messages->at(0, Message::Error).column, 8u);

    // It stays in the game: shown closed, and copied along.
    QVERIFY(parent->filePath(QStringLiteral("b"))->isProjectRoot());
    QStringList files;
    parent->closedProjectFiles(QStringLiteral("b"), files);
    QCOMPARE(files, QStringList{QStringLiteral("b/b.lantern")});
    close(parent);

    QString error;
    QVERIFY(!m_engine.openParentProject(path("bad/b/b.lantern"), &error));
    QVERIFY(error.contains(QStringLiteral("b.lantern")));
}

// Whoever copies the project has to know what is not there.
void tst_LanternEngine::missingFilesAreDependencies()
{
    writeFile(path("half/dew.png"), "x");
    writeFile(path("half/folder.png/x"), "x");
    writeFile(path("half/game.lantern"),
              "[game]\n[projects]\nopen = a/a.lantern\n[files]\nsprites = dew.png\n"
              "sprites = DEW.png\nsounds = none.wav\nsounds = none.wav\n"
              "sprites = folder.png\nscripts = pipe.script\n");
#ifdef Q_OS_UNIX
    // Nobody writes into it: whoever opens it waits for ever.
    QCOMPARE(::mkfifo(QFile::encodeName(path("half/pipe.script")).constData(), 0600), 0);
#else
    QVERIFY(QDir().mkpath(path("half/pipe.script")));
#endif
    auto parent = open(path("half"));
    QVERIFY(parent);
    Project *const game = parent->openedProjects().at(0);
    QCOMPARE(dependenciesOf(*game),
             (QStringList{QStringLiteral("1 dew.png"), QStringLiteral("2 none.wav")}));
    QCOMPARE(game->fileCount(), 2);
    QVERIFY(parent->filePath(QStringLiteral("a"))->isProjectRoot());
    QList<unsigned int> lines;
    const Vela::Messages *const messages = game->mainFile()->messages();
    for (int i = 0; i < messages->count(Message::Warning); ++i)
        lines.append(messages->at(unsigned(i), Message::Warning).line + 1);
    QCOMPARE(lines, (QList<unsigned int>{3, 6, 7, 8, 9, 10}));
    close(parent);
}

void tst_LanternEngine::thousandsOfFilesAreNotReadAtOnce()
{
    constexpr int count = 5000;
    QByteArray text = "[project]\nname = Many\n[files]\n";
    for (int i = 0; i < count; ++i) {
        writeFile(path("many/art/p") + QString::number(i) + QStringLiteral(".png"), "x");
        text += "sprites = ART/P" + QByteArray::number(i) + ".PNG\n";
    }
    // A text takes more memory than a picture, even one that is not read.
    constexpr int textCount = 500;
    for (int i = 0; i < textCount; ++i) {
        writeFile(path("many/art/m") + QString::number(i) + QStringLiteral(".motion"), "x");
        text += "animations = art/m" + QByteArray::number(i) + ".motion\n";
    }
    writeFile(path("many/many.lantern"), text);
    QElapsedTimer timer;
    timer.start();
    auto parent = open(path("many"));
    // Generous for a loaded machine; one listing per file would take minutes.
    QVERIFY2(timer.elapsed() < 10000, qPrintable(QString::number(timer.elapsed())));
    Project *const project = parent->openedProjects().at(0);
    QCOMPARE(project->fileCount(), count + textCount + 1);
    QCOMPARE(messagesOf(*parent), QStringList());
    const QList<ProjectFile *> files =
        project->filesByType(Project::Sprites) + project->filesByType(Project::Animations);
    for (ProjectFile *file : files)
        QVERIFY(!dynamic_cast<Lantern::LateContent *>(file)->isLoaded());
    QVERIFY(!project->isModified());
    close(parent);
}

void tst_LanternEngine::motionsKnowTheNamesOfTheirProject()
{
    writeFile(path("one/one.lantern"),
              "[project]\nname = One\n[files]\nsprites = art/Leaf.png\n"
              "animations = one.motion\n");
    writeFile(path("one/art/Leaf.png"), "x");
    writeFile(path("one/art/dew.png"), "x");
    writeFile(path("one/one.motion"), "[animation 1]\nframe leaf : 6\nframe DEW : 6\n");
    auto parent = open(path("one"));
    QVERIFY(parent);
    Project *const project = parent->openedProjects().at(0);
    ProjectFile *const motion = project->file(Project::Animations);
    QVERIFY(!motion->isEmpty());
    QCOMPARE(motion->messages()->count(Message::Warning), 1);
    QCOMPARE(motion->messages()->at(0, Message::Warning).line, 2u);
    QCOMPARE(project->messages()->warningCount(), 1u);

    DefinitionFile *const main = mainOf(project);
    main->setText(main->toString() + QStringLiteral("sprites = art/dew.png\n"));
    QTRY_COMPARE(motion->messages()->count(Message::Warning), 0);
    QCOMPARE(project->messages()->warningCount(), 0u);
    QVERIFY(!motion->isModified());
    main->undo();
    QTRY_COMPARE(motion->messages()->count(Message::Warning), 1);
    close(parent);

    // Who has no project knows no sprites.
    ProjectFile *const single = m_engine.createFile(Project::Animations, nullptr);
    QVERIFY(
        single->fromFile(Vela::FileSystemArchive::instance(), path("one/one.motion"), 0, nullptr));
    QCOMPARE(single->messages()->count(Message::Any), 0);
    single->release();
}

void tst_LanternEngine::linksOpenFilesOfTheGame()
{
    auto parent = open(path("meadow"));
    Project *const game = projectNamed(*parent, "The Meadow");
    mainOf(game)->openFile(QStringLiteral("ROWAN\\rowan.lantern"));
    QCOMPARE(m_host->openFileCalls.size(), 1);
    QCOMPARE(m_host->openFileCalls.at(0).file, projectNamed(*parent, "Rowan")->mainFile());
    mainOf(game)->openFile(QStringLiteral("barn/barn.lantern"));
    QCOMPARE(m_host->openFileCalls.size(), 1);
    QCOMPARE(m_host->logged.size(), 1);
    close(parent);
}

QTEST_MAIN(tst_LanternEngine)
#include "tst_lanternengine.moc"
