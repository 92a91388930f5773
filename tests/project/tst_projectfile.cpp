// SPDX-License-Identifier: MIT
#include "frame/filesystemarchive.h"
#include "frame/propertyitem.h"
#include "frame/regexp.h"
#include "project/parentproject.h"
#include "project/project.h"
#include "project/searchableprojectfile.h"
#include "support/memoryarchive.h"
#include "support/recordinghost.h"
#include "support/testfile.h"

#include <QtTest>
#include <memory>
#include <vector>

using namespace Vela;

using Ints = QVector<int>;

namespace {

QString text(const char *latin1)
{
    return QString::fromLatin1(latin1);
}

/// A root folder in a memory archive.
class Root : public ParentProject
{
public:
    explicit Root(Archive &archive)
        : ParentProject(QStringLiteral("/"), archive)
    {
    }

    Engine *engine() const override
    {
        return nullptr;
    }
    QString gameFile() const override
    {
        return QString();
    }
    void closedProjectFiles(const QString &, QStringList &) const override
    {
    }
    void lastProjectClosed() override
    {
    }
};

class Unit : public Project
{
public:
    Unit(ParentProject *parent, ProjectFile *mainFile)
        : Project(parent, 0, mainFile, true)
    {
        addToParent();
    }

    QString name() const override
    {
        return QString();
    }
    QString version() const override
    {
        return QString();
    }
    QSize stageSize() const override
    {
        return QSize();
    }
    QPointF stageScale() const override
    {
        return QPointF(1, 1);
    }
    void dependencies(QList<Dependency> &) const override
    {
    }
};

/// An archive inside of another one, which it keeps alive.
class NestedArchive : public MemoryArchive
{
public:
    explicit NestedArchive(Archive &held)
        : inner(held)
    {
        inner.addRef();
    }

protected:
    void free() override
    {
        MemoryArchive::free();
        inner.release();
    }

private:
    Archive &inner;
};

/// An archive that refuses every name, even an empty one.
class LockedArchive : public MemoryArchive
{
public:
    bool isWritable(const QString &) const override
    {
        return false;
    }
};

class Item : public PropertyItem
{
public:
    explicit Item(const QString &name)
        : identifier(name)
    {
    }

    QStringList propertyNames() const override
    {
        return {QStringLiteral("Identifier")};
    }
    QVariant property(const QString &name) const override
    {
        return propertyNames().contains(name) ? identifier : QVariant();
    }
    void setProperty(const QString &name, const QVariant &value) override
    {
        if (propertyNames().contains(name))
            identifier = value.toString();
    }

    QString identifier;
};

/// A file of items; an empty name makes a place without an item.
class ItemFile : public SearchableProjectFile
{
public:
    explicit ItemFile(const QStringList &names)
    {
        for (const QString &name : names)
            items.push_back(name.isEmpty() ? nullptr : std::make_unique<Item>(name));
    }

    bool isEmpty() const override
    {
        return items.empty();
    }
    int itemCount() const override
    {
        return static_cast<int>(items.size());
    }
    int currentItem() const override
    {
        return current;
    }
    PropertyItem *item(int index) const override
    {
        return index >= 0 && index < itemCount() ? items[static_cast<size_t>(index)].get()
                                                 : nullptr;
    }
    void beginChange() override
    {
        brackets.append(QLatin1Char('('));
    }
    void endChange() override
    {
        brackets.append(QLatin1Char(')'));
    }

    QStringList names() const
    {
        QStringList result;
        for (const auto &entry : items)
            result.append(entry ? entry->identifier : QString());
        return result;
    }

    std::vector<std::unique_ptr<Item>> items;
    int current = -1;
    QString brackets;

protected:
    void free() override
    {
    }
    Messages *fileMessages() const override
    {
        return nullptr;
    }
};

} // namespace

class tst_ProjectFile : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void lastReleaseFreesFile();
    void accessBindsFileUnlessCopy_data();
    void accessBindsFileUnlessCopy();
    void bindingSurvivesNestedArchives();
    void fileWithoutArchiveIsOnDisk();
    void baseClassWritesNothing();
    void parentIsToldUnlessCopy();
    void displayNameIsBehindLastSlash();
    void archiveDecidesWhetherWritable();
    void optionFallsBack();
    void optionIsStoredWhereAsked();
    void searchVisitsItems_data();
    void searchVisitsItems();
    void resultTellsWhereAndWhat();
    void replaceFillsCapturesIn();
    void replaceBracketsSeveralResults();
};

void tst_ProjectFile::lastReleaseFreesFile()
{
    const int before = TestFile::alive();
    TestFile *const file = new TestFile;
    QCOMPARE(file->refCount(), 1);
    file->addRef();
    QCOMPARE(file->refCount(), 2);
    file->release();
    QCOMPARE(TestFile::alive(), before + 1);
    file->release();
    QCOMPARE(TestFile::alive(), before);
}

void tst_ProjectFile::accessBindsFileUnlessCopy_data()
{
    QTest::addColumn<bool>("save");
    QTest::addColumn<unsigned int>("flags");
    QTest::addColumn<bool>("elsewhere");
    QTest::addColumn<bool>("moves");
    for (const bool save : {false, true}) {
        const char *const what = save ? "save" : "load";
        QTest::addRow("%s in place", what) << save << 0u << false << false;
        QTest::addRow("%s elsewhere", what) << save << 0u << true << true;
        QTest::addRow("%s elsewhere with job", what) << save << 2u << true << true;
        QTest::addRow("%s a copy", what) << save << 1u << true << false;
        QTest::addRow("%s a copy with job", what) << save << 3u << true << false;
    }
}

/// The archives begin with the count of this test, which it gives up: what is left is the file's.
void tst_ProjectFile::accessBindsFileUnlessCopy()
{
    QFETCH(bool, save);
    QFETCH(unsigned int, flags);
    QFETCH(bool, elsewhere);
    QFETCH(bool, moves);

    const QMap<QString, QByteArray> content{{text("/a.txt"), "a"}};
    MemoryArchive home(content);
    MemoryArchive away(content);
    TestFile *const file = new TestFile;
    file->place(home, text("/a.txt"));
    home.release();
    QCOMPARE(home.timesFreed, 0);

    MemoryArchive &target = elsewhere ? away : home;
    QVERIFY(save ? file->toFile(target, text("/a.txt"), flags, nullptr)
                 : file->fromFile(target, text("/a.txt"), flags, nullptr));
    QCOMPARE(&file->archive(), moves ? &away : &home);
    QCOMPARE(home.timesFreed, moves ? 1 : 0);
    away.release();
    QCOMPARE(away.timesFreed, moves ? 0 : 1);

    file->release();
    QCOMPARE(home.timesFreed, 1);
    QCOMPARE(away.timesFreed, 1);
}

void tst_ProjectFile::bindingSurvivesNestedArchives()
{
    MemoryArchive inner;
    NestedArchive outer(inner);
    inner.release();
    TestFile file;
    file.place(outer, text("a.txt"));
    outer.release();

    file.place(inner, text("a.txt"));
    QCOMPARE(outer.timesFreed, 1);
    QCOMPARE(inner.timesFreed, 0);
}

void tst_ProjectFile::fileWithoutArchiveIsOnDisk()
{
    TestFile file;
    QCOMPARE(&file.archive(), &FileSystemArchive::instance());
}

void tst_ProjectFile::baseClassWritesNothing()
{
    MemoryArchive archive;
    TestFile file;
    QVERIFY(!file.ProjectFile::toFile(archive, text("a.txt"), 0, nullptr));
    QVERIFY(!file.ProjectFile::fromFile(archive, text("a.txt"), 0, nullptr));
    QCOMPARE(&file.archive(), &archive);
    QVERIFY(archive.calls.isEmpty());
}

void tst_ProjectFile::parentIsToldUnlessCopy()
{
    MemoryArchive archive({{text("/main.txt"), "m"}});
    Root root(archive);
    TestFile *const file = new TestFile;
    file->place(archive, text("/main.txt"));
    Unit project(&root, file);

    QList<ProjectFile *> saved;
    QList<ProjectFile *> opened;
    connect(&root, &ParentProject::fileSaved, this, [&](ProjectFile *f) { saved.append(f); });
    connect(&root, &ParentProject::fileOpened, this, [&](ProjectFile *f) { opened.append(f); });
    QVERIFY(file->toFile(archive, text("/copy.txt"), ProjectFile::Copy, nullptr));
    QVERIFY(file->fromFile(archive, text("/copy.txt"), ProjectFile::Copy, nullptr));
    QVERIFY(saved.isEmpty() && opened.isEmpty());

    const QList<ProjectFile *> once{file};
    QVERIFY(file->toFile(archive, text("/main.txt"), 0, nullptr));
    QCOMPARE(saved, once);
    QVERIFY(file->fromFile(archive, text("/main.txt"), 0, nullptr));
    QCOMPARE(opened, once);
    project.release();
}

void tst_ProjectFile::displayNameIsBehindLastSlash()
{
    const QMap<const char *, const char *> names{
        {"/a/b/c.txt", "c.txt"}, {"c.txt", "c.txt"}, {"a/", ""}, {"", ""}};
    for (auto it = names.begin(); it != names.end(); ++it)
        QCOMPARE(TestFile(text(it.key())).displayName(), text(it.value()));
}

void tst_ProjectFile::archiveDecidesWhetherWritable()
{
    MemoryArchive archive({{text("/there.txt"), "t"}, {text("/locked.txt"), "l"}});
    archive.readOnlyFiles.insert(text("/locked.txt"));
    LockedArchive locked;
    TestFile file;
    file.place(archive, text("/there.txt"));
    QVERIFY(file.fileExists());
    QVERIFY(!file.isReadOnly());
    file.place(archive, text("/locked.txt"));
    QVERIFY(file.fileExists());
    QVERIFY(file.isReadOnly());
    file.place(archive, text("/gone.txt"));
    QVERIFY(!file.fileExists());
    QVERIFY(!file.isReadOnly());

    file.place(locked, text("new.txt"));
    QVERIFY(file.isReadOnly());
    file.place(locked, QString());
    QVERIFY(!file.isReadOnly());
}

/// The nearest holder of a key wins: the file, its project, the host, the caller's default.
void tst_ProjectFile::optionFallsBack()
{
    const QString key = text("zoom");
    TestFile *const file = new TestFile(text("/main.txt"));
    QVERIFY(!file->option(key).isValid());
    QCOMPARE(file->option(key, 1), QVariant(1));

    RecordingHost host;
    host.options.insert(key, 2);
    QCOMPARE(file->option(key), QVariant(2));

    MemoryArchive archive;
    Root root(archive);
    Unit project(&root, file);
    QCOMPARE(file->option(key, 1), QVariant(2));
    project.setOption(key, 3, false);
    QCOMPARE(file->option(key, 1), QVariant(3));
    file->setOption(key, false, false, false);
    QCOMPARE(file->option(key, 1), QVariant(false));
    file->setOption(key, QVariant(), false, false);
    QCOMPARE(file->option(key, 1), QVariant(3));
    project.release();
}

void tst_ProjectFile::optionIsStoredWhereAsked()
{
    const QString key = text("zoom");
    RecordingHost host;
    TestFile *const file = new TestFile(text("/main.txt"));
    file->setOption(key, 1, true, true);
    QVERIFY2(!host.options.contains(key), "without a project the file keeps it");
    QCOMPARE(file->option(key), QVariant(1));
    file->setOption(key, QVariant(), false, false);

    MemoryArchive archive;
    Root root(archive);
    Unit project(&root, file);
    file->setOption(key, 2, false, true);
    QVERIFY(!project.option(key).isValid());
    file->setOption(key, 3, true, false);
    QCOMPARE(project.option(key), QVariant(3));
    QVERIFY(!host.options.contains(key));
    QCOMPARE(file->option(key), QVariant(2));
    file->setOption(key, 4, true, true);
    QCOMPARE(project.option(key), QVariant(4));
    QCOMPARE(host.options.value(key), QVariant(4));
    project.release();
}

void tst_ProjectFile::searchVisitsItems_data()
{
    constexpr unsigned int all = SearchableProjectFile::FindAll;
    constexpr unsigned int wrap = SearchableProjectFile::WrapAround;
    constexpr unsigned int start = SearchableProjectFile::FromStart;
    constexpr unsigned int back = SearchableProjectFile::Backward;

    QTest::addColumn<QString>("pattern");
    QTest::addColumn<int>("current");
    QTest::addColumn<unsigned int>("flags");
    QTest::addColumn<Ints>("found");
    const auto row = [](const char *name, const char *pattern, int current, unsigned int flags,
                        const Ints &found) {
        QTest::newRow(name) << text(pattern) << current << flags << found;
    };
    row("all", "walk", 3, all, {0, 2, 4});
    row("all, whatever the direction", "walk", 3, all | back | start | wrap, {0, 2, 4});
    row("all, none there", "jump", 3, all, {});
    row("behind the current item", "walk", 0, 0, {2});
    row("nothing behind", "walk", 4, 0, {});
    row("wraps", "walk", 4, wrap, {0});
    row("no wrap needed", "walk", 2, wrap, {4});
    row("wraps to the current item", "stand", 1, wrap, {1});
    row("current item is left out", "stand", 1, 0, {});
    row("wraps in vain", "jump", 1, wrap, {});
    row("from the first", "walk", 3, start, {0});
    row("first itself", "walk", 0, start, {0});
    row("from the first, with wrap", "run", 4, start | wrap, {3});
    row("none selected", "walk", -1, 0, {0});
    row("in front of the current item", "walk", 4, back, {2});
    row("nothing in front", "walk", 0, back, {});
    row("wraps backward", "walk", 0, back | wrap, {4});
    row("wraps backward to the current item", "run", 3, back | wrap, {3});
    row("from the last", "walk", 1, back | start, {4});
    row("from the last to the first", "walk1", 4, back | start, {0});
    row("broken expression", "(walk", 0, all, {});
}

void tst_ProjectFile::searchVisitsItems()
{
    QFETCH(QString, pattern);
    QFETCH(int, current);
    QFETCH(unsigned int, flags);
    QFETCH(Ints, found);

    ItemFile file({text("walk1"), text("stand"), text("walk2"), text("run"), text("walk3")});
    file.current = current;
    Ints items;
    for (const ProjectFile::SearchResult &result : file.search(RegExp(pattern), flags))
        items.append(result.item);
    QCOMPARE(items, found);
    QVERIFY(ItemFile({}).search(RegExp(pattern), flags).isEmpty());
}

void tst_ProjectFile::resultTellsWhereAndWhat()
{
    ItemFile file({QString(), text("the walk7!")});
    const QList<ProjectFile::SearchResult> results =
        file.search(RegExp(text("(w)alk(\\d)")), SearchableProjectFile::FindAll);
    QCOMPARE(results.size(), 1);
    const ProjectFile::SearchResult &result = results.first();
    QCOMPARE(result.item, 1);
    QCOMPARE(result.line, 0);
    QCOMPARE(result.column, 4);
    QCOMPARE(result.length, 5);
    QCOMPARE(result.text, text("the walk7!"));
    QCOMPARE(result.captures, QStringList({text("w"), text("7")}));
}

void tst_ProjectFile::replaceFillsCapturesIn()
{
    ItemFile file({text("walk7"), text("run8")});
    file.replace(file.search(RegExp(text("(w)alk(\\d)")), SearchableProjectFile::FindAll),
                 text("%2-%1"));
    QCOMPARE(file.names(), QStringList({text("7-w"), text("run8")}));
    QCOMPARE(file.brackets, QString());
}

void tst_ProjectFile::replaceBracketsSeveralResults()
{
    ItemFile file({text("walk7"), QString(), text("run8")});
    QList<ProjectFile::SearchResult> results =
        file.search(RegExp(text("\\d")), SearchableProjectFile::FindAll);
    for (const int missing : {1, 3, -1}) {
        ProjectFile::SearchResult result;
        result.item = missing;
        results.prepend(result);
    }
    file.replace(results, text("new"));
    QCOMPARE(file.names(), QStringList({text("new"), QString(), text("new")}));
    QCOMPARE(file.brackets, text("()"));
}

QTEST_MAIN(tst_ProjectFile)
#include "tst_projectfile.moc"
