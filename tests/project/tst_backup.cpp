// SPDX-License-Identifier: MIT
#include "engine/extensionmanager.h"
#include "frame/filesystemarchive.h"
#include "project/filewatchobject.h"
#include "support/memoryarchive.h"
#include "support/recordinghost.h"
#include "support/testfile.h"
#include "support/testproject.h"

#include <QAbstractItemModelTester>
#include <QDirIterator>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTest>
#include <memory>

using namespace Vela;

namespace {

QString text(const char *literal)
{
    return QString::fromLatin1(literal);
}

void write(const QString &path, const QByteArray &content)
{
    QDir().mkpath(QFileInfo(path).path());
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write(content);
}

QByteArray read(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

/// Returns all files below a folder, sorted.
QStringList filesBelow(const QString &folder)
{
    QStringList files;
    QDirIterator it(folder, QDir::Files, QDirIterator::Subdirectories);
    while (it.hasNext())
        files.append(it.next().mid(folder.length() + 1));
    files.sort();
    return files;
}

/// A file that writes down how often it had been read when its watch was paused and resumed.
class WatchedFile : public TestFile, public FileWatchObject
{
public:
    QString watchedFileName() const override
    {
        return fileName();
    }

    void reload() override
    {
    }

    void pauseWatch(bool pause) override
    {
        (pause ? paused : resumed).append(loads.size());
    }

    QList<int> paused;
    QList<int> resumed;
};

/// A packed archive in memory that never stops listing folders, and names some that lead out.
class HostileArchive : public MemoryArchive
{
public:
    using MemoryArchive::entries;
    QStringList entries(const QString &path, const QStringList &names, QDir::Filters filters,
                        QDir::SortFlags sort) const override
    {
        QStringList list = MemoryArchive::entries(path, names, filters, sort);
        for (const char *name : {"..", ".", "", "../evil", "loop"})
            list.append(text(name));
        return list;
    }
};

class ZipExtension : public Extension
{
public:
    void release() override
    {
        delete this;
    }

    Type type() const override
    {
        return ArchiveFormat;
    }

    const char *format() const override
    {
        return "zip";
    }

    const char *identifier() const override
    {
        return "";
    }

    Archive *openArchive(const QString &path, int mode) override
    {
        asked.append(path + QLatin1Char(' ') + QString::number(mode));
        if (archive)
            archive->addRef();
        return archive;
    }

    MemoryArchive *archive = nullptr;
    QStringList asked;
};

/// A parent project on disk with two projects, /a and /b, each with one file of its own.
struct Fixture
{
    Fixture()
    {
        root = dir.path() + text("/game");
        parent = std::make_unique<TestParentProject>(root, FileSystemArchive::instance());
        tester = std::make_unique<QAbstractItemModelTester>(
            parent.get(), QAbstractItemModelTester::FailureReportingMode::QtTest);
    }

    TestProject *open(const char *main, TestFile *file = new TestFile)
    {
        const QString path = root + text("/") + text(main);
        write(path, "main");
        file->fromFile(FileSystemArchive::instance(), path, 0, nullptr);
        projects.push_back(std::make_unique<TestProject>(parent.get(), 0, file));
        projects.back()->addToParent();
        return projects.back().get();
    }

    TestFile *add(TestProject *project, const char *name)
    {
        auto *const file = new TestFile;
        const QString path = project->absolutePath() + text("/") + text(name);
        write(path, "disk");
        file->fromFile(FileSystemArchive::instance(), path, 0, nullptr);
        project->addFile(file, Project::Sprites);
        project->listed.append({Project::Sprites, text(name)});
        return file;
    }

    /// Returns the rows of the top level, or of the folder in \a row of it.
    QStringList rows(int row = -1) const
    {
        const QModelIndex index = row < 0 ? QModelIndex() : parent->index(row, 0);
        QStringList names;
        for (int i = 0; i < parent->rowCount(index); ++i)
            names.append(parent->index(i, 0, index).data().toString());
        return names;
    }

    QTemporaryDir dir;
    QString root;
    std::unique_ptr<TestParentProject> parent;
    std::unique_ptr<QAbstractItemModelTester> tester;
    std::vector<std::unique_ptr<TestProject>> projects;
};

/// Registers a zip extension for its own lifetime.
struct Zip
{
    Zip()
        : manager(folder.path())
    {
        extension->archive = &archive;
        ExtensionManager::add(extension);
    }

    QTemporaryDir folder;
    ExtensionManager manager;
    ZipExtension *const extension = new ZipExtension;
    HostileArchive archive;
};

const QRegularExpression &stamp()
{
    static const QRegularExpression pattern(
        text("^\\d\\d\\.\\d\\d\\.\\d{4}_\\d{1,2}\\.\\d{1,2}\\.\\d{1,2}_[ap]m_mine$"));
    return pattern;
}

} // namespace

class tst_Backup : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void cleanup();
    void oneProjectIsSavedUnderItsNewName();
    void oneProjectInAFolderBecomesTheRoot();
    void failedSaveKeepsTheRoot();
    void packedProjectWorksOnDiskAfterwards();
    void gameIsSavedWhole();
    void backupIsADatedFolder();
    void backupIsPackedIfItCanBe();
    void backupCanBeCancelled();
    void restoreBringsFilesBack();
    void restoreReadsAPackedBackup();
    void restoreRefuses_data();
    void restoreRefuses();
    void restoreRefusesAReadOnlyArchive();
};

void tst_Backup::cleanup()
{
    QCOMPARE(TestFile::alive(), 0);
}

void tst_Backup::oneProjectIsSavedUnderItsNewName()
{
    Fixture f;
    TestProject *const project = f.open("hero.def");
    TestFile *const file = f.add(project, "art/a.spr");
    f.add(project, "b.spr");
    f.parent->addRef(project);
    file->edit(text("edited"));
    const QString folder = f.dir.path() + text("/new");
    f.parent->saveAs(folder + text("/boss.def"), nullptr);
    QCOMPARE(filesBelow(folder), QStringList({text("art/a.spr"), text("b.spr"), text("boss.def")}));
    QCOMPARE(read(folder + text("/art/a.spr")), QByteArray("edited"));
    QCOMPARE(read(f.root + text("/art/a.spr")), QByteArray("disk"));
    QCOMPARE(f.parent->basePath(), folder);
    QCOMPARE(project->fileName(), folder + text("/boss.def"));
    QCOMPARE(project->basePath(), QString());
    QCOMPARE(f.rows(), QStringList({text("art"), text("b.spr"), text("boss.def")}));
    QVERIFY(!file->modified);
}

void tst_Backup::oneProjectInAFolderBecomesTheRoot()
{
    Fixture f;
    TestProject *const project = f.open("chars/hero/hero.def");
    f.add(project, "a.spr");
    f.parent->addRef(project);
    const QString folder = f.dir.path() + text("/new");
    f.parent->saveAs(folder + text("/boss.def"), nullptr);
    QCOMPARE(filesBelow(folder), QStringList({text("a.spr"), text("boss.def")}));
    QCOMPARE(f.parent->basePath(), folder);
    QCOMPARE(f.rows(), QStringList({text("boss.def"), text("a.spr")}));
    project->release();
    QCOMPARE(f.rows(), QStringList());
}

void tst_Backup::failedSaveKeepsTheRoot()
{
    Fixture f;
    TestProject *const project = f.open("hero.def");
    const QString taken = f.dir.path() + text("/new/folder");
    QVERIFY(QDir().mkpath(taken));
    f.parent->saveAs(taken, nullptr);
    QCOMPARE(f.parent->basePath(), f.root);
    QCOMPARE(project->fileName(), f.root + text("/hero.def"));
    QCOMPARE(f.rows(), QStringList({text("hero.def")}));
}

void tst_Backup::packedProjectWorksOnDiskAfterwards()
{
    MemoryArchive packed;
    packed.put(text("/game/hero/hero.def"), "main");
    packed.put(text("/game/hero/a.spr"), "packed");
    TestParentProject parent(text("/game"), packed);
    auto *const file = new TestFile;
    file->place(packed, text("/game/hero/hero.def"));
    TestProject project(&parent, 0, file);
    project.listed = {{Project::Sprites, text("a.spr")}};
    project.addToParent();
    parent.game = text("hero/hero.def");
    QTemporaryDir dir;
    parent.saveAs(dir.path(), nullptr);
    QCOMPARE(read(dir.path() + text("/hero/a.spr")), QByteArray("packed"));
    QCOMPARE(&parent.archive(), &FileSystemArchive::instance());
    QCOMPARE(&project.archive(), &FileSystemArchive::instance());
    QVERIFY(parent.isGame());
}

void tst_Backup::gameIsSavedWhole()
{
    Fixture f;
    f.open("game.def")->listed = {{Project::Main, text("c/c.def")}};
    TestProject *const a = f.open("chars/a/a.def");
    f.add(a, "a.spr")->edit(text("edited"));
    f.parent->addRef(f.projects.front().get());
    write(f.root + text("/stages/s/s.def"), "s");
    write(f.root + text("/c/c.def"), "c");
    write(f.dir.path() + text("/secret"), "");
    f.parent->addPath(text("stages/s"), ParentProject::ProjectRoot, {});
    f.parent->game = text("game.def");
    f.parent->closed = {{text("stages/s"), {text("stages/s/s.def"), text("../secret")}},
                        {text("c/c.def"), {text("c/c.def")}}};
    RecordingProgress progress;
    const std::unique_ptr<ProgressJob> job(progress.createJob(QString(), 0));
    const QString folder = f.dir.path() + text("/x/new");
    f.parent->saveAs(folder, job.get());

    f.parent->closedAsked.sort();
    QCOMPARE(f.parent->closedAsked, QStringList({text("c/c.def"), text("stages/s")}));
    QCOMPARE(filesBelow(f.dir.path() + text("/x")),
             QStringList({text("new/c/c.def"), text("new/chars/a/a.def"), text("new/chars/a/a.spr"),
                          text("new/game.def"), text("new/stages/s/s.def")}));
    QCOMPARE(read(folder + text("/chars/a/a.spr")), QByteArray("edited"));
    QCOMPARE(progress.jobs.at(0)->maximum, 5u);
    QCOMPARE(progress.jobs.at(0)->value, 5u);
    QCOMPARE(f.parent->basePath(), folder);
    QCOMPARE(a->fileName(), folder + text("/chars/a/a.def"));
    QCOMPARE(f.parent->filePath(text("chars/a/a.def"))->fullPath(), a->fileName());
}

void tst_Backup::backupIsADatedFolder()
{
    Fixture f;
    TestProject *const a = f.open("a/a.def");
    f.open("b/b.def");
    TestFile *const edited = f.add(a, "x.spr");
    edited->edit(text("edited"));
    RecordingProgress progress;
    const std::unique_ptr<ProgressJob> job(progress.createJob(QString(), 0));
    QVERIFY(f.parent->backup(text("mine"), job.get()));
    const QStringList names =
        QDir(f.root + text("/backup")).entryList(QDir::AllEntries | QDir::NoDotAndDotDot);
    QCOMPARE(names.size(), 1);
    QVERIFY2(stamp().match(names.first()).hasMatch(), qPrintable(names.first()));
    const QString folder = f.root + text("/backup/") + names.first();
    QCOMPARE(filesBelow(folder), QStringList({text("a/a.def"), text("a/x.spr"), text("b/b.def")}));
    QCOMPARE(read(folder + text("/a/x.spr")), QByteArray("edited"));
    QVERIFY(edited->modified);
    QCOMPARE(edited->name, f.root + text("/a/x.spr"));
    QCOMPARE(f.parent->basePath(), f.root);
    QCOMPARE(progress.jobs.at(0)->maximum, 2u);
    QCOMPARE(progress.jobs.at(0)->value, 2u);
}

void tst_Backup::backupIsPackedIfItCanBe()
{
    Zip zip;
    Fixture f;
    TestProject *const a = f.open("a/a.def");
    f.add(a, "x.spr")->edit(text("edited"));
    QVERIFY(f.parent->backup(text("mine"), nullptr));
    QCOMPARE(zip.extension->asked.size(), 1);
    const QString asked = zip.extension->asked.first();
    QVERIFY2(asked.startsWith(f.root + text("/backup/")) && asked.endsWith(text("_mine.zip 0")),
             qPrintable(asked));
    QCOMPARE(zip.archive.fileNames(), QStringList({text("/a/a.def"), text("/a/x.spr")}));
    QCOMPARE(zip.archive.content(text("a/x.spr")), QByteArray("edited"));
    QCOMPARE(zip.archive.timesFreed, 0);
    zip.archive.release(); // the backup has given its reference back, so this was the last
    QCOMPARE(zip.archive.timesFreed, 1);
    QCOMPARE(&a->archive(), &FileSystemArchive::instance());

    // An archive that does not open leaves the folder.
    zip.extension->archive = nullptr;
    QVERIFY(f.parent->backup(text("mine"), nullptr));
    QCOMPARE(QDir(f.root + text("/backup")).entryList(QDir::Dirs | QDir::NoDotAndDotDot).size(), 1);
}

void tst_Backup::backupCanBeCancelled()
{
    Zip zip;
    Fixture f;
    f.open("a/a.def");
    f.open("b/b.def");
    RecordingProgress progress;
    progress.cancelAfter = 1;
    const std::unique_ptr<ProgressJob> job(progress.createJob(QString(), 0));
    QVERIFY(!f.parent->backup(text("mine"), job.get()));
    QCOMPARE(zip.archive.fileNames().size(), 1);
    zip.archive.readOnly = true;
    QVERIFY(!f.parent->backup(text("mine"), nullptr));
}

void tst_Backup::restoreBringsFilesBack()
{
    RecordingHost host;
    Fixture f;
    auto *const watched = new WatchedFile;
    TestProject *const a = f.open("a/a.def", watched);
    TestFile *const file = f.add(a, "art/x.spr");
    QVERIFY(f.parent->backup(text("mine"), nullptr));
    const QString name = QDir(f.root + text("/backup")).entryList(QDir::Dirs).last();
    for (TestFile *each : {static_cast<TestFile *>(watched), file}) {
        each->edit(text("later"));
        each->toFile(each->archive(), each->name, 0, nullptr);
        each->loads.clear();
    }
    RecordingProgress progress;
    const std::unique_ptr<ProgressJob> job(progress.createJob(QString(), 0));
    QVERIFY(f.parent->restoreBackup(name, job.get()));
    QCOMPARE(read(watched->name), QByteArray("main"));
    QCOMPARE(read(file->name), QByteArray("disk"));
    QCOMPARE(watched->text, text("main"));
    QCOMPARE(file->text, text("disk"));
    // The watch rests until the file has been read again.
    QCOMPARE(watched->paused, QList<int>({0}));
    QCOMPARE(watched->resumed, QList<int>({1}));
    QCOMPARE(progress.jobs.at(0)->maximum, 3u);
    QCOMPARE(progress.jobs.at(0)->value, 3u);
    QCOMPARE(host.refreshProjectsCount, 1);
}

void tst_Backup::restoreReadsAPackedBackup()
{
    Zip zip;
    zip.archive.put(text("a/a.def"), "packed");
    zip.archive.put(text("a/new/y.spr"), "y");
    zip.archive.put(text("evil"), "e");
    Fixture f;
    TestProject *const a = f.open("a/a.def");
    write(f.root + text("/backup/old.zip"), "");
    QVERIFY(f.parent->restoreBackup(text("old"), nullptr));
    QCOMPARE(zip.extension->asked, QStringList(f.root + text("/backup/old.zip 1")));
    QCOMPARE(static_cast<TestFile *>(a->mainFile())->text, text("packed"));
    QCOMPARE(filesBelow(f.dir.path()),
             QStringList({text("game/a/a.def"), text("game/a/new/y.spr"),
                          text("game/backup/old.zip"), text("game/evil")}));
    QCOMPARE(zip.archive.openDevices, 0);
}

void tst_Backup::restoreRefuses_data()
{
    QTest::addColumn<QString>("name");
    QTest::newRow("empty") << QString();
    QTest::newRow("not there") << text("gone");
    QTest::newRow("outside") << text("../a");
    QTest::newRow("zip that does not open") << text("broken");
}

void tst_Backup::restoreRefuses()
{
    QFETCH(QString, name);
    RecordingHost host;
    Fixture f;
    TestProject *const a = f.open("a/a.def");
    auto *const file = static_cast<TestFile *>(a->mainFile());
    write(f.root + text("/backup/old/a/a.def"), "old");
    write(f.root + text("/backup/broken.zip"), "");
    file->edit(text("unsaved"));
    QVERIFY(!f.parent->restoreBackup(name, nullptr));
    QCOMPARE(file->text, text("unsaved"));
    QCOMPARE(filesBelow(f.root).size(), 3);
    QCOMPARE(host.refreshProjectsCount, 0);
}

void tst_Backup::restoreRefusesAReadOnlyArchive()
{
    MemoryArchive store;
    store.readOnly = true;
    TestParentProject parent(text("/game"), store);
    QVERIFY(!parent.restoreBackup(text("old"), nullptr));
    QVERIFY(store.calls.filter(text("entries")).isEmpty());
}

QTEST_GUILESS_MAIN(tst_Backup)
#include "tst_backup.moc"
