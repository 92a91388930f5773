// SPDX-License-Identifier: MIT
#include "project/filesaver.h"
#include "support/memoryarchive.h"
#include "support/recordinghost.h"
#include "support/testfile.h"
#include "support/testproject.h"

#include <QAbstractItemModelTester>
#include <QElapsedTimer>
#include <QPixmap>
#include <QSignalSpy>
#include <QTest>
#include <memory>

Q_DECLARE_METATYPE(Vela::ProjectFile *)

using namespace Vela;

namespace {

QString text(const char *literal)
{
    return QString::fromLatin1(literal);
}

/// A parent project at /game under a model tester.
struct Fixture
{
    Fixture()
        : parent(text("/game"), store)
        , tester(&parent, QAbstractItemModelTester::FailureReportingMode::QtTest)
    {
    }

    /// Opens a project with a clean main file that exists.
    TestProject *open(const char *main, const QList<Project::Dependency> &files = {})
    {
        auto *const file = new TestFile;
        store.put(text(main), "main");
        file->place(store, text(main));
        projects.push_back(std::make_unique<TestProject>(&parent, 0, file));
        projects.back()->listed = files;
        projects.back()->addToParent();
        return projects.back().get();
    }

    /// Returns the tree as one line: folders with "/" and their content in brackets.
    QString tree(const QModelIndex &index = QModelIndex()) const
    {
        QStringList parts;
        for (int row = 0; row < parent.rowCount(index); ++row) {
            const QModelIndex child = parent.index(row, 0, index);
            const bool isFolder = parent.itemPath(child)->isFolder();
            QString part = child.data().toString();
            if (isFolder)
                part += QLatin1String("/[") + tree(child) + QLatin1Char(']');
            parts.append(part);
        }
        return parts.join(QLatin1Char(' '));
    }

    QString fullPath(const char *path) const
    {
        const ParentProject::Path *const node = parent.filePath(text(path));
        return node ? node->fullPath() : text("none");
    }

    MemoryArchive store;
    TestParentProject parent;
    QAbstractItemModelTester tester;
    std::vector<std::unique_ptr<TestProject>> projects;
};

class Saver : public FileSaver
{
public:
    void saveFileAs(ProjectFile *file) override
    {
        files.append(file);
    }

    QList<ProjectFile *> files;
};

} // namespace

class tst_ParentProject : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void cleanup();
    void treeFollowsItsProjects();
    void mergedTreeKeepsItsNodes();
    void treeShowsFilesThatAreNamedLater();
    void projectsInOneFolderAreClosedApart();
    void closingKeepsNestedProjects();
    void pathsAreAddedAndRemoved();
    void strangePathsAreHarmless();
    void namesAndIconsOfNodes();
    void nearestProjectRootIsFound();
    void countsItsProjects();
    void gameIsKnownByItsFile();
    void manyFilesAreEnteredAtOnce();
    void saveWritesOnlyModifiedFiles();
    void saveReportsProgress();
    void slowFileGetsAJobOfItsOwn();
    void fileThatCannotBeWrittenGoesToTheHost();
    void saveSurvivesAFileClosedOnTheWay();
};

void tst_ParentProject::initTestCase()
{
    qRegisterMetaType<ProjectFile *>("Vela::ProjectFile*");
}

void tst_ParentProject::cleanup()
{
    QCOMPARE(TestFile::alive(), 0);
}

void tst_ParentProject::treeFollowsItsProjects()
{
    Fixture f;
    TestProject *const hero = f.open("/game/chars/hero/hero.def",
                                     {{Project::Sounds, text("snd/a.snd")},
                                      {Project::Sprites, text("b.spr")},
                                      {Project::Sprites, text("art/a.spr")}});
    QCOMPARE(f.tree(), text("chars/[hero/[hero.def art/[a.spr] b.spr snd/[a.snd]]]"));
    TestProject *const game = f.open("/game/game.def");
    QCOMPARE(f.tree(), text("chars/[hero/[hero.def art/[a.spr] b.spr snd/[a.snd]]] game.def"));
    hero->release();
    QCOMPARE(f.tree(), text("chars/[] game.def"));
    game->release();
    QCOMPARE(f.tree(), QString());
}

void tst_ParentProject::mergedTreeKeepsItsNodes()
{
    Fixture f;
    f.parent.addPath(text("hero"), {}, {});
    const ParentProject::Path *const folder = f.parent.filePath(text("hero"));
    const QPersistentModelIndex index = f.parent.index(0, 0);
    QSignalSpy inserted(&f.parent, &QAbstractItemModel::rowsInserted);
    QSignalSpy reset(&f.parent, &QAbstractItemModel::modelReset);
    f.open("/game/hero/hero.def", {{Project::Sprites, text("a.spr")}});
    QCOMPARE(f.parent.filePath(text("hero")), folder);
    QCOMPARE(f.parent.itemPath(index), folder);
    QVERIFY(folder->isProjectRoot());
    QCOMPARE(inserted.size(), 1);
    QCOMPARE(reset.size(), 0);
    // A file and a folder of one name are two nodes.
    f.open("/game/hero/other.def", {{Project::Sprites, text("a.spr/b.spr")}});
    QCOMPARE(f.tree(), text("hero/[hero.def a.spr other.def a.spr/[b.spr]]"));
    QCOMPARE(folder->childIndex(f.parent.filePath(text("hero/other.def"))), 2);
    QCOMPARE(folder->childIndex(folder), -1);
    QVERIFY(!folder->childAt(4));
    QVERIFY(!folder->childAt(-1));
}

void tst_ParentProject::treeShowsFilesThatAreNamedLater()
{
    Fixture f;
    TestProject *const project = f.open("/game/hero/hero.def");
    project->listed = {{Project::Sprites, text("a.spr")}};
    Q_EMIT project->fileHierarchyChanged();
    QCOMPARE(f.tree(), text("hero/[hero.def a.spr]"));
    project->release();
    Q_EMIT project->fileHierarchyChanged();
    QCOMPARE(f.tree(), QString());
}

void tst_ParentProject::projectsInOneFolderAreClosedApart()
{
    Fixture f;
    TestProject *const a = f.open(
        "/game/a.def", {{Project::Sprites, text("a.spr")}, {Project::Sounds, text("x.snd")}});
    TestProject *const b = f.open("/game/b.def", {{Project::Sounds, text("x.snd")}});
    a->release();
    QCOMPARE(f.tree(), text("b.def x.snd"));
    b->release();
    QCOMPARE(f.tree(), QString());
}

void tst_ParentProject::closingKeepsNestedProjects()
{
    Fixture f;
    f.parent.addPath(text("chars/closed"), ParentProject::ProjectRoot, {text("c.def")});
    TestProject *const game = f.open("/game/game.def", {{Project::Main, text("hero/hero.def")}});
    TestProject *const hero = f.open("/game/hero/hero.def", {{Project::Sprites, text("a.spr")}});
    TestProject *const inner = f.open("/game/hero/alt/alt.def");
    QCOMPARE(f.tree(), text("chars/[closed/[]] game.def hero/[hero.def a.spr alt/[alt.def]]"));
    hero->release();
    // The game still names hero.def, and the inner project is open.
    QCOMPARE(f.tree(), text("chars/[closed/[]] game.def hero/[alt/[alt.def] hero.def]"));
    QVERIFY(!f.parent.filePath(text("hero"))->isProjectRoot());
    game->release();
    QCOMPARE(f.tree(), text("chars/[closed/[]] hero/[alt/[alt.def]]"));
    inner->release();
    QCOMPARE(f.tree(), text("chars/[closed/[]] hero/[]"));
}

void tst_ParentProject::pathsAreAddedAndRemoved()
{
    Fixture f;
    const ParentProject::Path *const path =
        f.parent.addPath(text("/a/b/"), ParentProject::ChildProjectRoot, {});
    QCOMPARE(f.tree(), text("a/[b/[b]]"));
    QCOMPARE(path->fullPath(), text("/game/a/b/"));
    QVERIFY(!path->isProjectRoot());
    const ParentProject::Path *const dummy = path->childAt(0);
    QVERIFY(dummy->isProjectRoot());
    QVERIFY(!dummy->isFile() && !dummy->isFolder());
    QCOMPARE(dummy->fullPath(), text("/game/a/b/"));
    QCOMPARE(f.parent.addPath(text("a/b"), ParentProject::ProjectRoot, {}), path);
    QVERIFY(path->isProjectRoot());
    QVERIFY(!f.parent.filePath(text("a"))->isProjectRoot());
    f.parent.removePath(text("a/c"));
    f.parent.removePath(QString());
    f.parent.removePath(text("a/b"));
    QCOMPARE(f.tree(), text("a/[]"));

    f.open("/game/a/d/d.def");
    f.parent.removePath(text("a"));
    QCOMPARE(f.tree(), text("a/[d/[d.def]]"));
}

void tst_ParentProject::strangePathsAreHarmless()
{
    QString deep;
    for (int i = 0; i < 20000; ++i)
        deep += QLatin1String("d/");
    MemoryArchive store;
    TestParentProject parent(text("/game"), store);
    auto *const file = new TestFile(text("/elsewhere/hero.def"));
    file->place(store, file->name);
    TestProject project(&parent, 0, file);
    project.listed = {{Project::Sprites, QString()},
                      {Project::Sprites, text("//")},
                      {Project::Sprites, text("../a.spr")},
                      {99, deep + text("x")},
                      {-5, text("./b//c")}};
    project.addToParent();
    QCOMPARE(parent.rowCount(), 1);
    QCOMPARE(parent.projectForFile(nullptr)->fullPath(), text("/game/../elsewhere/"));
    QVERIFY(parent.filePath(text("../elsewhere/b/c"))->isFile());
    QCOMPARE(parent.filePath(text("../elsewhere/") + deep + text("x"))->fullPath().length(),
             text("/game/../elsewhere/x").length() + deep.length());
    project.release();
    QCOMPARE(parent.filePath(text("../elsewhere")), nullptr);
}

void tst_ParentProject::namesAndIconsOfNodes()
{
    Fixture f;
    f.open("/game/hero.def",
           {{Project::Sprites, text("a.spr")},
            {Project::Sounds, text("b.snd")},
            {Project::Animations, text("c.anm")},
            {Project::Scripts, text("d.lua")},
            {9, text("sub/e")}});
    QCOMPARE(f.tree(), text("hero.def a.spr b.snd c.anm d.lua sub/[e]"));
    const QModelIndex first = f.parent.index(0, 0);
    QCOMPARE(first.data(Qt::ToolTipRole), QVariant(text("hero.def")));
    QVERIFY(!first.data(Qt::DecorationRole).isValid());
    QVERIFY(!first.data(Qt::EditRole).isValid());
    QVERIFY(!f.parent.headerData(0, Qt::Horizontal).isValid());

    RecordingHost host;
    for (int row = 0; row < 6; ++row)
        f.parent.index(row, 0).data(Qt::DecorationRole);
    f.parent.index(0, 0, f.parent.index(5, 0)).data(Qt::DecorationRole);
    QCOMPARE(host.iconsAsked,
             QStringList({text("icon_code"), text("icon_sprite"), text("icon_sound"),
                          text("icon_animation"), text("icon_code"), text("icon_folder"),
                          text("icon_file")}));
    host.iconsAsked.clear();
    QPixmap pixmap(8, 8);
    pixmap.fill(Qt::red);
    const QIcon own(pixmap);
    f.parent.icons.insert(Project::Sounds, own);
    QCOMPARE(f.parent.index(2, 0).data(Qt::DecorationRole).value<QIcon>().cacheKey(),
             own.cacheKey());
    QVERIFY(host.iconsAsked.isEmpty());
}

void tst_ParentProject::nearestProjectRootIsFound()
{
    Fixture f;
    QVERIFY(!f.parent.projectForFile(nullptr));
    f.open("/game/chars/hero/hero.def", {{Project::Sprites, text("art/big/a.spr")}});
    const auto root = [&f](const char *path) {
        const ParentProject::Path *const node =
            f.parent.projectForFile(f.parent.filePath(text(path)));
        return node ? node->fullPath() : QString();
    };
    QCOMPARE(f.fullPath("chars/hero/art/big/a.spr"), text("/game/chars/hero/art/big/a.spr"));
    QCOMPARE(root("chars/hero/art/big/a.spr"), text("/game/chars/hero/"));
    QCOMPARE(root("chars/hero/hero.def"), text("/game/chars/hero/hero.def"));
    // Nothing above: the first root among the opened projects.
    QCOMPARE(root("chars"), text("/game/chars/hero/"));

    Fixture single;
    single.open("/game/hero.def", {{Project::Sprites, text("art/a.spr")}});
    QCOMPARE(single.parent.projectForFile(single.parent.filePath(text("art/a.spr")))->name(),
             text("hero.def"));
    QCOMPARE(single.parent.itemPath(QModelIndex()), single.parent.filePath(QString()));
}

void tst_ParentProject::countsItsProjects()
{
    Fixture f;
    TestProject *const a = f.open("/game/a/a.def");
    TestProject *const b = f.open("/game/b/b.def");
    QCOMPARE(f.parent.refCount(), 2);
    QCOMPARE(f.parent.openedProjects().size(), 2);
    QVERIFY(f.parent.openedProjects().contains(a));
    b->release();
    QCOMPARE(f.parent.refCount(), 1);
    QCOMPARE(f.parent.timesEmpty, 0);
    a->release();
    QCOMPARE(f.parent.timesEmpty, 1);
}

void tst_ParentProject::gameIsKnownByItsFile()
{
    Fixture f;
    f.store.put(text("/game/data/game.def"), "");
    QVERIFY(!f.parent.isGame());
    f.parent.game = text("missing.def");
    QVERIFY(!f.parent.isGame());
    f.parent.game = text("data/game.def");
    QVERIFY(f.parent.isGame());
}

void tst_ParentProject::manyFilesAreEnteredAtOnce()
{
    QList<Project::Dependency> files;
    for (int i = 0; i < 5000; ++i)
        files.append({Project::Sprites, text("art/%1.spr").arg(i)});
    MemoryArchive store;
    TestParentProject parent(text("/game"), store);
    auto *const file = new TestFile;
    file->place(store, text("/game/hero/hero.def"));
    TestProject project(&parent, 0, file);
    project.listed = files;
    QElapsedTimer timer;
    timer.start();
    project.addToParent();
    const qint64 opening = timer.elapsed();
    QCOMPARE(parent.filePath(text("hero/art"))->childCount(), 5000);
    // Far above what it takes, and far below what a search of all names for each would.
    QVERIFY2(opening < 1000, qPrintable(QString::number(opening)));
}

void tst_ParentProject::saveWritesOnlyModifiedFiles()
{
    Fixture f;
    TestProject *const project = f.open("/game/hero.def");
    auto *const main = static_cast<TestFile *>(project->mainFile());
    auto *const other = new TestFile;
    f.store.put(text("/game/a.spr"), "old");
    other->place(f.store, text("/game/a.spr"));
    project->addFile(other, Project::Sprites);
    other->edit(text("new"));
    QSignalSpy saved(&f.parent, &ParentProject::fileSaved);
    f.parent.save(nullptr);
    QVERIFY(main->saves.isEmpty());
    QCOMPARE(other->saves.size(), 1);
    QCOMPARE(other->saves.first().flags, 0u);
    QCOMPARE(saved.size(), 1);
    QCOMPARE(f.store.content(text("/game/a.spr")), QByteArray("new"));

    // A failure stops nothing: the other file is saved.
    main->edit(text("x"));
    other->edit(text("newer"));
    f.store.failOpen = 1;
    f.parent.save(nullptr);
    QCOMPARE(main->modified + other->modified, 1);

    main->edit(text("x"));
    main->savable = false;
    main->saves.clear();
    f.parent.save(nullptr);
    QVERIFY(main->saves.isEmpty());
}

void tst_ParentProject::saveReportsProgress()
{
    Fixture f;
    static_cast<TestFile *>(f.open("/game/a/a.def")->mainFile())->edit(text("x"));
    f.open("/game/b/b.def");
    RecordingProgress progress;
    f.parent.save(&progress);
    QCOMPARE(int(progress.jobs.size()), 1);
    const JobRecord &job = *progress.jobs.at(0);
    QCOMPARE(job.text, text("Saving..."));
    QCOMPARE(job.flags, 0);
    QCOMPARE(job.maximum, 2u);
    QCOMPARE(job.value, 2u);
    QVERIFY(job.ended);
    progress.refuseJobs = true;
    f.parent.save(&progress);
}

void tst_ParentProject::slowFileGetsAJobOfItsOwn()
{
    Fixture f;
    auto *const file = static_cast<TestFile *>(f.open("/game/hero.def")->mainFile());
    file->caps = ProjectFile::SavesSlowly;
    file->edit(text("x"));
    f.parent.save(nullptr);
    QCOMPARE(file->saves.last().flags, 2u);
    QVERIFY(!file->saves.last().withJob);

    file->edit(text("y"));
    RecordingProgress progress;
    f.parent.save(&progress);
    QCOMPARE(file->saves.last().flags, 2u);
    QVERIFY(file->saves.last().withJob);
    QCOMPARE(int(progress.jobs.size()), 2);
    QCOMPARE(progress.jobs.at(1)->text, text("Saving hero.def"));
    QCOMPARE(progress.jobs.at(1)->lengthy, 1);
    QVERIFY(progress.jobs.at(1)->ended);
}

void tst_ParentProject::fileThatCannotBeWrittenGoesToTheHost()
{
    Fixture f;
    TestProject *const project = f.open("/game/hero.def");
    auto *const readOnly = static_cast<TestFile *>(project->mainFile());
    f.store.readOnlyFiles.insert(readOnly->name);
    auto *const missing = new TestFile;
    missing->place(f.store, text("/game/gone.snd"));
    project->addFile(missing, Project::Scripts);
    project->addFile(missing, Project::Sounds);
    readOnly->edit(text("x"));
    missing->edit(text("x"));
    f.parent.save(nullptr);

    RecordingHost host;
    f.parent.save(nullptr);
    QCOMPARE(host.editorForFileCalls.size(), 2);
    for (const RecordingHost::FileRequest &request : qAsConst(host.editorForFileCalls))
        QCOMPARE(request.type, request.file == missing ? int(Project::Sounds) : int(Project::Main));
    Saver saver;
    host.saver = &saver;
    f.parent.save(nullptr);
    QCOMPARE(saver.files.size(), 2);
    QVERIFY(saver.files.contains(readOnly) && saver.files.contains(missing));
    QVERIFY(readOnly->saves.isEmpty() && missing->saves.isEmpty());
    QCOMPARE(f.store.content(text("/game/hero.def")), QByteArray("main"));
}

void tst_ParentProject::saveSurvivesAFileClosedOnTheWay()
{
    // A save may show a dialog, and behind it the user closes a project.
    Fixture f;
    for (const char *name : {"/game/a/a.def", "/game/b/b.def"}) {
        TestProject *const project = f.open(name);
        static_cast<TestFile *>(project->mainFile())->edit(text("x"));
        for (int i = 0; i < 3; ++i) {
            auto *const file = new TestFile;
            const QString path = text("/game/%1.spr").arg(i);
            f.store.put(path, "");
            file->place(f.store, path);
            project->addFile(file, Project::Sprites);
            file->edit(text("x"));
        }
    }
    QSignalSpy saved(&f.parent, &ParentProject::fileSaved);
    connect(&f.parent, &ParentProject::fileSaved, &f.parent, [&f] { f.projects.clear(); });
    f.parent.save(nullptr);
    QCOMPARE(saved.size(), 1);
    QCOMPARE(TestFile::alive(), 0);
}

QTEST_MAIN(tst_ParentProject)
#include "tst_parentproject.moc"
