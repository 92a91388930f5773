// SPDX-License-Identifier: MIT
#include "project/messagelist.h"
#include "support/memoryarchive.h"
#include "support/recordinghost.h"
#include "support/testfile.h"
#include "support/testproject.h"

#include <QSignalSpy>
#include <QTest>
#include <memory>

Q_DECLARE_METATYPE(const Vela::ProjectFile *)

using namespace Vela;

namespace {

QString text(const char *literal)
{
    return QString::fromLatin1(literal);
}

/// A parent project at /game and in it a project in /game/hero with the main file hero.def.
struct Fixture
{
    Fixture()
    {
        main = new TestFile;
        main->place(store, text("/game/hero/hero.def"));
        store.put(main->name, "main");
        parent = std::make_unique<TestParentProject>(text("/game"), store);
        project = std::make_unique<TestProject>(parent.get(), 0, main);
    }

    TestFile *add(const char *name, int type = Project::Sprites)
    {
        auto *const file = new TestFile;
        file->place(store, text(name));
        project->addFile(file, type);
        return file;
    }

    MemoryArchive store;
    TestFile *main;
    std::unique_ptr<TestParentProject> parent;
    std::unique_ptr<TestProject> project;
};

/// Returns the type that each recorded signal carried.
QList<int> typesOf(const QSignalSpy &spy)
{
    QList<int> types;
    for (const QList<QVariant> &arguments : spy)
        types.append(arguments.at(1).toInt());
    return types;
}

} // namespace

class tst_Project : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void cleanup();
    void mainFileHandsItsParsingOptionsOver();
    void parsingOptionsReachTheHost();
    void fileIsListedUnderEachTypeOnce();
    void typesOutOfRangeAreRefused();
    void fileStaysUntilItsLastTypeGoes();
    void removingAFileEndsAllItsTypes();
    void takenFileIsTheCallersWithItsReference();
    void movesAndSelectsWithinTheList();
    void isEmptyAndModifiedAfterItsFiles();
    void optionsFallBackToTheHost();
    void knowsWhereItIs();
    void releaseGivesEverythingBackOnce();
    void deletingWithoutReleaseLeavesNothing();
    void outlivesItsParent();
    void reloadSkipsLostFiles();

    void copyWritesModifiedFilesAndCopiesTheRest();
    void saveAllRebindsEveryFile();
    void saveAllRefusesAReadOnlyArchive();
    void saveAllFindsEachFileInTheDependencies_data();
    void saveAllFindsEachFileInTheDependencies();
    void fileThatCannotBeSavedIsCopied();
    void fileOfAnotherArchiveIsKnownByItsName();
};

void tst_Project::initTestCase()
{
    qRegisterMetaType<const ProjectFile *>("const ProjectFile*");
    qRegisterMetaType<const ProjectFile *>("Vela::ProjectFile*");
}

void tst_Project::cleanup()
{
    QCOMPARE(TestFile::alive(), 0);
}

void tst_Project::mainFileHandsItsParsingOptionsOver()
{
    MemoryArchive store;
    TestParentProject parent(text("/game"), store);
    auto *const file = new TestFile(text("/game/hero.def"));
    file->setOption(text("parseCode"), true, false, false);
    file->setOption(text("highlightCode"), false, false, false);
    TestProject project(&parent, 0, file, false);
    QCOMPARE(project.option(text("parseCode")), QVariant(true));
    QCOMPARE(project.option(text("highlightCode")), QVariant(false));
    QCOMPARE(project.option(text("modelCode"), 7), QVariant(7));
    // Not listed, the file asks no project: what it answers is its own.
    QVERIFY(!file->option(text("parseCode")).isValid());
    QVERIFY(!file->option(text("highlightCode")).isValid());
    QCOMPARE(project.fileCount(), 0);
    QCOMPARE(project.mainFile(), file);
    QCOMPARE(file->refCount(), 2);
    file->release();
}

void tst_Project::parsingOptionsReachTheHost()
{
    RecordingHost host;
    MemoryArchive store;
    TestParentProject parent(text("/game"), store);
    auto *const file = new TestFile(text("/game/hero.def"));
    file->setOption(text("highlightCode"), false, false, false);
    TestProject project(&parent, 0, file);
    QCOMPARE(host.optionsSet,
             QStringList({text("parseCode"), text("highlightCode"), text("modelCode")}));
    QCOMPARE(host.options.value(text("highlightCode")), QVariant(false));
}

void tst_Project::fileIsListedUnderEachTypeOnce()
{
    Fixture f;
    QSignalSpy added(f.project.get(), &Project::fileAdded);
    QSignalSpy parentAdded(f.parent.get(), &ParentProject::fileAdded);
    TestFile *const file = f.add("/game/hero/a.spr");
    file->notes.add(Message::Error, text("bad"), 0, 0);
    QVERIFY(!f.project->addFile(file, Project::Sprites));
    QVERIFY(f.project->addFile(file, Project::Animations));
    QCOMPARE(typesOf(added), QList<int>({Project::Sprites, Project::Animations}));
    QCOMPARE(parentAdded.size(), 2);
    QCOMPARE(f.project->fileID(file), 0b1010u);
    QCOMPARE(f.project->filesByType(Project::Sprites), QList<ProjectFile *>({file}));
    QCOMPARE(f.project->filesByType(Project::Animations), QList<ProjectFile *>({file}));
    QCOMPARE(f.project->fileCount(), 2);
    QCOMPARE(file->project(), f.project.get());
    QCOMPARE(file->refCount(), 1);
    QCOMPARE(f.project->messages()->errorCount(), 1u);
}

void tst_Project::typesOutOfRangeAreRefused()
{
    Fixture f;
    TestFile file;
    for (int type : {-1, 32, 1000})
        QVERIFY(!f.project->addFile(&file, type));
    QVERIFY(f.project->addFile(&file, 31));
    QCOMPARE(f.project->fileID(&file), 0x80000000u);
    QCOMPARE(f.project->takeFile(&file), &file);
    f.project->removeFile(-1, 0);
}

void tst_Project::fileStaysUntilItsLastTypeGoes()
{
    Fixture f;
    TestFile *const file = f.add("/game/hero/a.spr");
    f.project->addFile(file, Project::Sounds);
    file->notes.add(Message::Error, text("bad"), 0, 0);
    QSignalSpy removed(f.project.get(), &Project::fileRemoved);
    QSignalSpy closed(f.parent.get(), &ParentProject::fileClosed);
    f.project->removeFile(Project::Sprites, 1);
    QCOMPARE(removed.size(), 0);
    f.project->removeFile(Project::Sprites, 0);
    QCOMPARE(typesOf(removed), QList<int>({Project::Sprites}));
    QCOMPARE(f.project->fileID(file), 0b100u);
    QCOMPARE(closed.size(), 0);
    QCOMPARE(f.project->messages()->errorCount(), 1u);
    f.project->removeFile(Project::Sounds, 0);
    QCOMPARE(typesOf(removed), QList<int>({Project::Sprites, Project::Sounds}));
    QCOMPARE(closed.size(), 1);
    QCOMPARE(TestFile::alive(), 1);
    QCOMPARE(f.project->messages()->errorCount(), 0u);
}

void tst_Project::removingAFileEndsAllItsTypes()
{
    Fixture f;
    TestFile *const file = f.add("/game/hero/a.spr", Project::Scripts);
    f.project->addFile(file, Project::Sprites);
    QSignalSpy removed(f.project.get(), &Project::fileRemoved);
    f.project->removeFile(file);
    QCOMPARE(typesOf(removed), QList<int>({Project::Sprites, Project::Scripts}));
    QCOMPARE(TestFile::alive(), 1);
    QVERIFY(f.project->filesByType(Project::Scripts).isEmpty());
    TestFile stranger;
    f.project->removeFile(&stranger);
    QCOMPARE(removed.size(), 2);
}

void tst_Project::takenFileIsTheCallersWithItsReference()
{
    Fixture f;
    TestFile *const file = f.add("/game/hero/a.spr", Project::Animations);
    f.project->addFile(file, Project::Sprites);
    file->notes.add(Message::Warning, text("odd"), 0, 0);
    QSignalSpy removed(f.project.get(), &Project::fileRemoved);
    QSignalSpy closed(f.parent.get(), &ParentProject::fileClosed);
    QCOMPARE(f.project->takeFile(file), file);
    QCOMPARE(typesOf(removed), QList<int>({Project::Sprites, Project::Animations}));
    QCOMPARE(closed.size(), 0);
    QCOMPARE(file->refCount(), 1);
    QVERIFY(!file->project());
    QCOMPARE(f.project->messages()->rowCount(), 0);
    QVERIFY(!f.project->takeFile(file));

    // It can go to another project, whose list then shows its messages.
    Fixture other;
    QVERIFY(other.project->addFile(file, Project::Sprites));
    QCOMPARE(other.project->messages()->warningCount(), 1u);
}

void tst_Project::movesAndSelectsWithinTheList()
{
    Fixture f;
    QVERIFY(!f.project->file(Project::Sprites));
    TestFile *const a = f.add("/game/hero/a.spr");
    TestFile *const b = f.add("/game/hero/b.spr");
    QCOMPARE(f.project->selectedFile(Project::Sprites), 0u);
    QCOMPARE(f.project->file(Project::Sprites), a);
    f.project->setSelectedFile(Project::Sprites, 1);
    QCOMPARE(f.project->file(Project::Sprites), b);
    f.project->setSelectedFile(Project::Sprites, 0xffffffffu);
    QCOMPARE(f.project->file(Project::Sprites), a);
    f.project->moveFile(Project::Sprites, 0, 2);
    f.project->moveFile(Project::Sprites, 0x80000000u, 0);
    f.project->moveFile(Project::Sounds, 0, 0);
    QCOMPARE(f.project->filesByType(Project::Sprites), QList<ProjectFile *>({a, b}));
    f.project->moveFile(Project::Sprites, 0, 1);
    QCOMPARE(f.project->filesByType(Project::Sprites), QList<ProjectFile *>({b, a}));
}

void tst_Project::isEmptyAndModifiedAfterItsFiles()
{
    Fixture f;
    f.project->removeFile(f.main);
    QVERIFY(f.project->isEmpty());
    QVERIFY(!f.project->isModified());
    f.add("/game/hero/a.spr");
    TestFile *const b = f.add("/game/hero/b.spr");
    QVERIFY(f.project->isEmpty());
    b->edit(text("x"));
    QVERIFY(!f.project->isEmpty());
    QVERIFY(f.project->isModified());
}

void tst_Project::optionsFallBackToTheHost()
{
    const QString key = text("size");
    Fixture f;
    QVERIFY(!f.project->option(key).isValid());
    RecordingHost host;
    host.options.insert(key, 1);
    QCOMPARE(f.project->option(key), QVariant(1));
    QCOMPARE(f.main->option(key), QVariant(1));
    f.project->setOption(key, 2, false);
    QCOMPARE(host.options.value(key), QVariant(1));
    QCOMPARE(f.main->option(key), QVariant(2));
    f.main->setOption(key, 3, true, true);
    QCOMPARE(host.options.value(key), QVariant(3));
    QCOMPARE(f.project->option(key), QVariant(3));
    host.options.insert(key, 4);
    f.project->setOption(key, QVariant(), false);
    QCOMPARE(f.project->option(key, 9), QVariant(4));
}

void tst_Project::knowsWhereItIs()
{
    RecordingHost host;
    Fixture f;
    QCOMPARE(f.project->fileName(), text("/game/hero/hero.def"));
    QCOMPARE(f.project->absolutePath(), text("/game/hero"));
    QCOMPARE(f.project->basePath(), text("/hero"));
    QCOMPARE(f.project->typeName(), QString());
    TestEngine engine;
    f.parent->activeEngine = &engine;
    QCOMPARE(f.project->typeName(), text("Character"));
}

void tst_Project::releaseGivesEverythingBackOnce()
{
    Fixture f;
    TestFile *const kept = f.add("/game/hero/a.spr");
    kept->addRef();
    f.project->addToParent();
    f.store.release(); // the project's own reference is the last one
    QCOMPARE(f.store.timesFreed, 0);
    f.store.calls.clear();
    QSignalSpy closed(f.parent.get(), &ParentProject::fileClosed);

    f.project->release();
    QVERIFY(f.store.calls.join(QLatin1Char(' ')).startsWith(text("flush")));
    QCOMPARE(closed.size(), 2);
    QCOMPARE(f.parent->refCount(), 0);
    QCOMPARE(f.parent->timesEmpty, 1);
    QCOMPARE(f.project->fileCount(), 0);
    QVERIFY(!kept->project());
    QCOMPARE(kept->refCount(), 1);
    QCOMPARE(f.project->fileName(), text("/game/hero/hero.def"));

    f.project->release();
    f.project.reset();
    QCOMPARE(f.parent->timesEmpty, 1);
    QCOMPARE(closed.size(), 2);
    // The files hold the archive, too.
    QCOMPARE(f.store.timesFreed, 0);
    kept->release();
    QCOMPARE(f.store.timesFreed, 1);
}

void tst_Project::deletingWithoutReleaseLeavesNothing()
{
    Fixture f;
    f.add("/game/hero/a.spr");
    f.project->addToParent();
    f.store.release();
    f.project.reset();
    QCOMPARE(TestFile::alive(), 0);
    QCOMPARE(f.store.timesFreed, 1);
    QVERIFY(f.parent->openedProjects().isEmpty());
}

void tst_Project::outlivesItsParent()
{
    Fixture f;
    f.project->addToParent();
    f.parent.reset();
    QVERIFY(!f.project->parent());
    QCOMPARE(f.project->typeName(), QString());
    QVERIFY(f.project->addFile(new TestFile, Project::Sounds));
    QVERIFY(f.main->toFile(f.store, f.main->name, 0, nullptr));
    f.project->release();
}

void tst_Project::reloadSkipsLostFiles()
{
    Fixture f;
    TestFile *const lost = f.add("/game/hero/a.spr");
    lost->edit(text("kept"));
    f.main->edit(text("dropped"));
    f.main->loads.clear();
    f.project->reload();
    QCOMPARE(f.main->text, text("main"));
    QCOMPARE(f.main->loads.size(), 1);
    QCOMPARE(f.main->loads.first().flags, 0u);
    QCOMPARE(lost->text, text("kept"));
    QVERIFY(lost->modified);
    QVERIFY(lost->loads.isEmpty());
}

void tst_Project::copyWritesModifiedFilesAndCopiesTheRest()
{
    Fixture f;
    TestFile *const clean = f.add("/game/hero/a.spr");
    TestFile *const edited = f.add("/game/hero/data/b.spr");
    f.store.put(clean->name, "a on disk");
    f.store.put(edited->name, "b on disk");
    f.store.put(text("/game/hero/c.snd"), "c on disk");
    edited->edit(text("b edited"));
    f.project->listed = {{Project::Sprites, text("a.spr")},
                         {Project::Sprites, text("data/b.spr")},
                         {Project::Animations, text("data/b.spr")},
                         {Project::Sounds, text("c.snd")},
                         {Project::Sounds, text("missing.snd")}};
    MemoryArchive target;
    QStringList written;
    QVERIFY(f.project->saveAll(target, text("/backup"), true, &written));
    QCOMPARE(written,
             QStringList({text("a.spr"), text("data/b.spr"), text("c.snd"), text("missing.snd"),
                          text("hero.def")}));
    QCOMPARE(target.fileNames().size(), 4);
    QCOMPARE(target.content(text("/backup/hero/hero.def")), QByteArray("main"));
    QCOMPARE(target.content(text("/backup/hero/a.spr")), QByteArray("a on disk"));
    QCOMPARE(target.content(text("/backup/hero/data/b.spr")), QByteArray("b edited"));
    QCOMPARE(target.content(text("/backup/hero/c.snd")), QByteArray("c on disk"));

    QVERIFY(clean->saves.isEmpty());
    QCOMPARE(edited->saves.size(), 1);
    QCOMPARE(edited->saves.first().flags, unsigned(ProjectFile::Copy));
    QVERIFY(edited->modified);
    const QList<ProjectFile *> files = f.project->files();
    for (ProjectFile *file : files)
        QCOMPARE(&file->archive(), &f.store);
    QCOMPARE(&f.project->archive(), &f.store);
    QCOMPARE(target.openDevices, 0);
}

void tst_Project::saveAllRebindsEveryFile()
{
    MemoryArchive target;
    Fixture f;
    TestFile *const clean = f.add("/game/hero/a.spr");
    clean->text = text("a in memory");
    TestFile *const outside = f.add("/game/common/b.spr");
    outside->edit(text("b"));
    TestFile *const unnamed = f.add("");
    f.store.put(text("/game/hero/c.snd"), "c on disk");
    f.project->listed = {{Project::Sprites, text("a.spr")}, {Project::Sounds, text("c.snd")}};
    f.store.release();
    QVERIFY(f.project->saveAll(target, text("/new/"), false, nullptr));
    QCOMPARE(target.content(text("/new/hero/a.spr")), QByteArray("a in memory"));
    QCOMPARE(target.content(text("/new/hero/c.snd")), QByteArray("c on disk"));
    QCOMPARE(target.fileNames().size(), 2);
    QCOMPARE(clean->saves.first().flags, 0u);
    QCOMPARE(clean->name, text("/new/hero/a.spr"));
    // The main file is the caller's to save, and what lies elsewhere stays unsaved.
    QVERIFY(f.main->saves.isEmpty());
    QVERIFY(outside->saves.isEmpty());
    QVERIFY(outside->modified);
    QVERIFY(unnamed->saves.isEmpty());
    const QList<ProjectFile *> files = f.project->files();
    for (ProjectFile *file : files)
        QCOMPARE(&file->archive(), &target);
    QCOMPARE(&f.project->archive(), &target);
    QCOMPARE(f.store.timesFreed, 1);
}

void tst_Project::saveAllRefusesAReadOnlyArchive()
{
    Fixture f;
    f.main->edit(text("x"));
    MemoryArchive target;
    target.readOnly = true;
    QStringList written;
    QVERIFY(!f.project->saveAll(target, text("/new"), false, &written));
    QVERIFY(written.isEmpty());
    QVERIFY(f.main->saves.isEmpty());
    QCOMPARE(&f.main->archive(), &f.store);
}

void tst_Project::saveAllFindsEachFileInTheDependencies_data()
{
    QTest::addColumn<QString>("open");
    QTest::addColumn<QStringList>("dependencies");
    QTest::addColumn<QStringList>("result");
    QTest::newRow("a name that ends like another")
        << text("/game/hero/data.spr") << QStringList({text("a.spr"), text("data.spr")})
        << QStringList({text("/new/hero/a.spr=disk"), text("/new/hero/data.spr=memory")});
    QTest::newRow("the same name in a folder")
        << text("/game/hero/sub/a.spr") << QStringList({text("a.spr"), text("sub/a.spr")})
        << QStringList({text("/new/hero/a.spr=disk"), text("/new/hero/sub/a.spr=memory")});
    QTest::newRow("another spelling")
        << text("/game/hero/a.spr") << QStringList({text("./a.spr"), text("sub/../a.spr")})
        << QStringList({text("/new/hero/a.spr=memory")});
    QTest::newRow("not listed") << text("/game/hero/a.spr") << QStringList()
                                << QStringList({text("/new/hero/a.spr=memory")});
    QTest::newRow("beside the folder")
        << text("/game/hero2/a.spr") << QStringList({text("../hero2/a.spr")}) << QStringList();
    QTest::newRow("out of the folder and back")
        << text("/game/common/a.spr")
        << QStringList({text("../../game/hero/a.spr"), text("../secret")})
        << QStringList({text("/new/hero/a.spr=disk")});
}

void tst_Project::saveAllFindsEachFileInTheDependencies()
{
    QFETCH(QString, open);
    QFETCH(QStringList, dependencies);
    QFETCH(QStringList, result);
    MemoryArchive target;
    Fixture f;
    TestFile *const file = f.add(open.toLatin1().constData());
    file->edit(text("memory"));
    for (const char *name :
         {"hero/a.spr", "hero/data.spr", "hero/sub/a.spr", "hero2/a.spr", "secret"})
        f.store.put(text("/game/") + text(name), "disk");
    for (const QString &path : qAsConst(dependencies))
        f.project->listed.append({Project::Sprites, path});
    QVERIFY(f.project->saveAll(target, text("/new"), false, nullptr));
    QStringList found;
    const QStringList names = target.fileNames();
    for (const QString &name : names)
        found.append(name + QLatin1Char('=') + QString::fromLatin1(target.content(name)));
    found.sort();
    QCOMPARE(found, result);
}

void tst_Project::fileThatCannotBeSavedIsCopied()
{
    Fixture f;
    TestFile *const file = f.add("/game/hero/a.spr");
    f.store.put(file->name, "disk");
    file->edit(text("memory"));
    file->savable = false;
    f.project->listed = {{Project::Sprites, text("a.spr")}};
    MemoryArchive target;
    QVERIFY(f.project->saveAll(target, text("/new"), true, nullptr));
    QVERIFY(file->saves.isEmpty());
    QCOMPARE(target.content(text("/new/hero/a.spr")), QByteArray("disk"));
}

void tst_Project::fileOfAnotherArchiveIsKnownByItsName()
{
    MemoryArchive packed;
    Fixture f;
    TestFile *const listed = f.add("/game/hero/a.spr");
    listed->place(packed, text("/art/a.spr"));
    listed->edit(text("memory"));
    TestFile *const other = f.add("/game/hero/b.spr");
    other->place(packed, text("/art/b.spr"));
    other->edit(text("memory"));
    f.project->listed = {{Project::Sprites, text("a.spr")}};
    MemoryArchive target;
    QVERIFY(f.project->saveAll(target, text("/new"), true, nullptr));
    QCOMPARE(target.content(text("/new/hero/a.spr")), QByteArray("memory"));
    QVERIFY(other->saves.isEmpty());
}

QTEST_GUILESS_MAIN(tst_Project)
#include "tst_project.moc"
