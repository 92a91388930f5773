// SPDX-License-Identifier: MIT
#include "support/archivesuite.h"
#include "support/memoryarchive.h"

#include <memory>

using ArchiveSuite::list;
using ArchiveSuite::read;
using ArchiveSuite::write;

using Fault = void (*)(MemoryArchive &);
Q_DECLARE_METATYPE(Fault)

class TestArchive : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void memoryArchive_data();
    void memoryArchive();
    void countReachesZeroOnce();
    void copiesTakeOverTheCount();
    void relativePath_data();
    void relativePath();
    void pathsOfAnotherArchiveStay();
    void memoryFaults_data();
    void memoryFaults();
    void memoryRecords();
};

void TestArchive::memoryArchive_data()
{
    ArchiveSuite::addRows();
}

void TestArchive::memoryArchive()
{
    QFETCH(ArchiveSuite::Case, run);
    MemoryArchive archive;
    run(archive, QStringLiteral("/root"));
    QCOMPARE(archive.openDevices, 0);
}

void TestArchive::countReachesZeroOnce()
{
    MemoryArchive archive;
    archive.addRef();
    archive.release();
    QCOMPARE(archive.timesFreed, 0);
    archive.release();
    QCOMPARE(archive.timesFreed, 1);
}

void TestArchive::copiesTakeOverTheCount()
{
    MemoryArchive archive;
    archive.addRef();
    MemoryArchive copy(archive);
    copy.release();
    QCOMPARE(copy.timesFreed, 0);
    copy.release();
    QCOMPARE(copy.timesFreed, 1);
    QCOMPARE(archive.timesFreed, 0);
}

void TestArchive::relativePath_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<QString>("from");
    QTest::addColumn<QString>("expected");
    const auto row = [](const char *name, const char *path, const char *from,
                        const char *expected) {
        QTest::newRow(name) << QString::fromUtf8(path) << QString::fromUtf8(from)
                            << QString::fromUtf8(expected);
    };
    row("sibling folder", "a/b/d/e", "a/b/c", "../d/e");
    row("inside", "a/b/c/x", "a/b/c", "x");
    row("deep inside", "a/b/c/x/y/z", "a/b/c", "x/y/z");
    row("folder's name is the start of another", "a/b/cd/x", "a/b/c", "../cd/x");
    row("names with a common start", "a/bcd/x", "a/bce/f", "../../bcd/x");
    row("beside the folder", "/a/b/x", "/a/b/c", "../x");
    row("two levels up", "/a/x", "/a/b/c", "../../x");
    row("only the first separator in common", "/x/y", "/a/b/c", "../../../x/y");
    row("a folder above", "/a/b", "/a/b/c/d", "../../../b");
    row("the folder itself", "/a/b/c", "/a/b/c", "c");
    row("backslashes", "a\\b\\d\\e", "a\\b\\c", "../d\\e");
    row("both separators", "a\\b/d", "a/b\\c", "../d");
    row("drive", "C:\\game\\data\\x.act", "C:\\game\\chars\\hero", "../../data\\x.act");
    row("letters of all kinds", "/\xc3\xa9/\xe6\x97\xa5/x", "/\xc3\xa9/\xe6\x9c\xac",
        "../\xe6\x97\xa5/x");
    row("from the root", "/a/x", "", "a/x");
    row("no path", "", "/a/b", "../");
}

void TestArchive::relativePath()
{
    QFETCH(QString, path);
    QFETCH(QString, from);
    MemoryArchive archive;
    QTEST(archive.relativePath(path, &archive, from), "expected");
}

void TestArchive::pathsOfAnotherArchiveStay()
{
    MemoryArchive archive;
    MemoryArchive other;
    const QString path = QStringLiteral("a/b/c/x");
    QCOMPARE(archive.relativePath(path, &other, QStringLiteral("a/b/c")), path);
    QCOMPARE(archive.relativePath(path, nullptr, QStringLiteral("a/b/c")), path);
}

/// Each fault, on a save over "a.txt" in an archive of two files of three bytes. What another test
/// relies on: the fault strikes, and the old content stays.
void TestArchive::memoryFaults_data()
{
    QTest::addColumn<Fault>("fault");
    QTest::addColumn<bool>("opens");
    QTest::addColumn<qint64>("taken");
    const auto row = [](const char *name, bool opens, qint64 taken, Fault fault) {
        QTest::newRow(name) << fault << opens << taken;
    };
    row("first open", false, 0, [](MemoryArchive &archive) { archive.failOpen = 1; });
    row("read-only archive", false, 0, [](MemoryArchive &archive) { archive.readOnly = true; });
    row("read-only file", false, 0,
        [](MemoryArchive &archive) { archive.readOnlyFiles.insert(QStringLiteral("/a.txt")); });
    row("short write", true, 4, [](MemoryArchive &archive) { archive.writeLimit = 4; });
    row("no write", true, -1, [](MemoryArchive &archive) { archive.writeLimit = 0; });
    row("nearly full", true, 5, [](MemoryArchive &archive) { archive.capacity = 8; });
    row("full", true, -1, [](MemoryArchive &archive) { archive.capacity = 3; });
}

void TestArchive::memoryFaults()
{
    QFETCH(Fault, fault);
    QFETCH(bool, opens);
    MemoryArchive archive({{QStringLiteral("a.txt"), "old"}, {QStringLiteral("b.txt"), "oth"}});
    fault(archive);
    QIODevice *device = archive.openFile(QStringLiteral("a.txt"), QIODevice::WriteOnly);
    QCOMPARE(device != nullptr, opens);
    if (device) {
        QTEST(device->write("123456"), "taken");
        archive.closeFile(device);
    }
    QCOMPARE(archive.content(QStringLiteral("a.txt")), QByteArray("old"));
    QCOMPARE(archive.openDevices, 0);
}

void TestArchive::memoryRecords()
{
    MemoryArchive archive;
    archive.failOpen = 2;
    QVERIFY(write(archive, QStringLiteral("a.txt"), "1"));
    QVERIFY(!write(archive, QStringLiteral("b.txt"), "2"));
    QVERIFY(write(archive, QStringLiteral("b.txt"), "3"));
    QVERIFY(archive.renameFile(QStringLiteral("b.txt"), QStringLiteral("c.txt")));
    QCOMPARE(archive.fileNames().join(QLatin1Char(' ')), QStringLiteral("/a.txt /c.txt"));
    QCOMPARE(archive.calls.join(QLatin1String(", ")),
             QStringLiteral("write /a.txt, close /a.txt, write /b.txt, write /b.txt, "
                            "close /b.txt, rename /b.txt /c.txt"));
}

QTEST_APPLESS_MAIN(TestArchive)
#include "tst_archive.moc"
