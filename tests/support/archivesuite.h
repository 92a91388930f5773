// SPDX-License-Identifier: MIT
#pragma once

#include "frame/archive.h"

#include <QTest>

/// What every archive must do, whatever it stores its files in. A test program has one row per
/// case:
///
///     void archives_data() { ArchiveSuite::addRows(); }
///     void archives()
///     {
///         QFETCH(ArchiveSuite::Case, run);
///         run(archive, root);
///     }
///
/// where the archive can be written and \a root is the absolute name of an empty folder in it,
/// without a "/" at its end, or of one that is not there yet.
namespace ArchiveSuite {

using Case = void (*)(Vela::Archive &archive, const QString &root);

/// Writes a whole file; false if it can't be opened.
inline bool write(Vela::Archive &archive, const QString &path, const QByteArray &content)
{
    QIODevice *device = archive.openFile(path, QIODevice::WriteOnly);
    if (!device)
        return false;
    const bool isWritten = device->write(content) == content.size();
    archive.closeFile(device);
    return isWritten;
}

/// Returns a whole file, or a text that says that it can't be read.
inline QByteArray read(Vela::Archive &archive, const QString &path)
{
    QIODevice *device = archive.openFile(path, QIODevice::ReadOnly);
    if (!device)
        return "(can't be read)";
    const QByteArray content = device->readAll();
    archive.closeFile(device);
    return content;
}

/// Returns the names of everything in a folder.
inline QStringList list(const Vela::Archive &archive, const QString &folder)
{
    return archive.entries(folder, QDir::AllEntries | QDir::Hidden, QDir::Name);
}

inline void newFilesBringTheirFolders(Vela::Archive &archive, const QString &root)
{
    const QString folder = root + QStringLiteral("/deep/er");
    QVERIFY(!archive.directoryExists(folder));
    QVERIFY(archive.isWritable(folder + QStringLiteral("/a.txt")));
    QVERIFY(write(archive, folder + QStringLiteral("/a.txt"), "first"));
    QVERIFY(archive.directoryExists(folder));
    QVERIFY(archive.directoryExists(root + QStringLiteral("/deep")));
    QVERIFY(!archive.directoryExists(root + QStringLiteral("/dee")));
    QCOMPARE(list(archive, folder), QStringList{QStringLiteral("a.txt")});
    QCOMPARE(read(archive, folder + QStringLiteral("/a.txt")), QByteArray("first"));
}

inline void missingFilesCannotBeRead(Vela::Archive &archive, const QString &root)
{
    const QString path = root + QStringLiteral("/missing.txt");
    QVERIFY(!archive.openFile(path, QIODevice::ReadOnly));
    QVERIFY(!archive.fileExists(path));
    QVERIFY(archive.isWritable(path));
    QVERIFY(!archive.removeFile(path));
    QVERIFY(!archive.renameFile(path, root + QStringLiteral("/other.txt")));
    QVERIFY(!archive.fileExists(root + QStringLiteral("/other.txt")));
}

inline void contentOfAnySizeComesBack(Vela::Archive &archive, const QString &root)
{
    QByteArray large;
    for (int i = 0; i < 300000; ++i)
        large.append(char(i * 7 + i / 256));
    const QByteArray contents[] = {QByteArray(), QByteArray(1, '\0'), "a\r\nb\n\x1a\xff", large};
    for (const QByteArray &content : contents) {
        const QString path = root + QStringLiteral("/%1.bin").arg(content.size());
        QVERIFY(write(archive, path, content));
        QVERIFY(archive.fileExists(path));
        QCOMPARE(read(archive, path), content);
    }
}

inline void namesMayHoldBlanksAndLettersOfAllKinds(Vela::Archive &archive, const QString &root)
{
    const QString name = QString::fromUtf8("a b #1 (\u00e9\u65e5\u672c).txt");
    const QString path = root + QLatin1Char('/') + name;
    QVERIFY(write(archive, path, "x"));
    QCOMPARE(list(archive, root), QStringList{name});
    QCOMPARE(read(archive, path), QByteArray("x"));
}

inline void oldContentStandsUntilTheDeviceIsClosed(Vela::Archive &archive, const QString &root)
{
    const QString path = root + QStringLiteral("/a.txt");
    QVERIFY(write(archive, path, "a long old content"));
    QIODevice *device = archive.openFile(path, QIODevice::WriteOnly);
    QVERIFY(device);
    QCOMPARE(device->write("new"), qint64(3));
    QCOMPARE(read(archive, path), QByteArray("a long old content"));
    archive.closeFile(device);
    QCOMPARE(read(archive, path), QByteArray("new"));
    QCOMPARE(list(archive, root), QStringList{QStringLiteral("a.txt")});
}

inline void discardedWritesLeaveNoTrace(Vela::Archive &archive, const QString &root)
{
    const QString old = root + QStringLiteral("/old.txt");
    QVERIFY(write(archive, old, "old"));
    for (const QString &path : {old, QString(root + QStringLiteral("/new.txt"))}) {
        QIODevice *device = archive.openFile(path, QIODevice::WriteOnly);
        QVERIFY(device);
        device->write("something else");
        archive.discardFile(device);
    }
    QCOMPARE(read(archive, old), QByteArray("old"));
    QCOMPARE(list(archive, root), QStringList{QStringLiteral("old.txt")});
}

inline void discardedReadsLeaveTheFile(Vela::Archive &archive, const QString &root)
{
    const QString path = root + QStringLiteral("/a.txt");
    QVERIFY(write(archive, path, "old"));
    QIODevice *device = archive.openFile(path, QIODevice::ReadOnly);
    QVERIFY(device);
    archive.discardFile(device);
    QCOMPARE(read(archive, path), QByteArray("old"));
}

inline void updatesStartFromTheOldContent(Vela::Archive &archive, const QString &root)
{
    const QString path = root + QStringLiteral("/a.txt");
    QVERIFY(write(archive, path, "0123456789"));
    QIODevice *device = archive.openFile(path, QIODevice::ReadWrite);
    QVERIFY(device);
    QCOMPARE(device->read(4), QByteArray("0123"));
    QVERIFY(device->seek(2));
    QCOMPARE(device->write("xy"), qint64(2));
    archive.closeFile(device);
    QCOMPARE(read(archive, path), QByteArray("01xy456789"));
}

inline void filesAreRenamedAndRemoved(Vela::Archive &archive, const QString &root)
{
    const QString a = root + QStringLiteral("/a.txt");
    const QString b = root + QStringLiteral("/b.txt");
    QVERIFY(write(archive, a, "a"));
    QVERIFY(write(archive, b, "b"));
    QVERIFY(!archive.renameFile(a, b));
    QCOMPARE(read(archive, a), QByteArray("a"));
    QCOMPARE(read(archive, b), QByteArray("b"));
    QVERIFY(archive.removeFile(b));
    QVERIFY(archive.renameFile(a, b));
    QVERIFY(!archive.fileExists(a));
    QCOMPARE(read(archive, b), QByteArray("a"));
}

inline void entriesAreFilteredAndSorted(Vela::Archive &archive, const QString &root)
{
    for (const char *name : {"b.txt", "C.txt", "a.png", "sub/inner.txt"})
        QVERIFY(write(archive, root + QLatin1Char('/') + QLatin1String(name), "x"));

    const auto names = [&](const char *filter, QDir::Filters filters, QDir::SortFlags sort) {
        QStringList filterList;
        if (*filter)
            filterList.append(QLatin1String(filter));
        return archive.entries(root, filterList, filters, sort).join(QLatin1Char(' '));
    };
    QCOMPARE(names("", QDir::Files, QDir::Name), QStringLiteral("C.txt a.png b.txt"));
    QCOMPARE(names("", QDir::Files, QDir::Name | QDir::IgnoreCase),
             QStringLiteral("a.png b.txt C.txt"));
    QCOMPARE(names("", QDir::Files, QDir::Name | QDir::Reversed),
             QStringLiteral("b.txt a.png C.txt"));
    QCOMPARE(names("*.txt", QDir::Files, QDir::Name), QStringLiteral("C.txt b.txt"));
    QCOMPARE(names("", QDir::Dirs, QDir::Name), QStringLiteral("sub"));
    QCOMPARE(names("", QDir::Dirs | QDir::Files, QDir::Name | QDir::DirsFirst),
             QStringLiteral("sub C.txt a.png b.txt"));
    QCOMPARE(names("", QDir::NoFilter, QDir::Name | QDir::DirsLast),
             QStringLiteral("C.txt a.png b.txt sub"));
    QCOMPARE(names("*.png", QDir::AllDirs | QDir::Files, QDir::Name | QDir::DirsFirst),
             QStringLiteral("sub a.png"));
    QCOMPARE(archive.entries(root, QDir::Files, QDir::Name),
             archive.entries(root, QStringList(), QDir::Files, QDir::Name));
    QCOMPARE(list(archive, root + QStringLiteral("/none")), QStringList());
}

inline void absoluteNamesAndFolders(Vela::Archive &archive, const QString &root)
{
    const QString path = root + QStringLiteral("/sub/a.txt");
    QCOMPARE(archive.absoluteFileName(path), path);
    QCOMPARE(archive.absoluteFilePath(path), QString(root + QStringLiteral("/sub")));
    QCOMPARE(archive.absoluteFileName(QString()), QString());
    QCOMPARE(archive.absoluteFilePath(QString()), QString());
}

inline void unusablePathsAndNoDeviceAreHarmless(Vela::Archive &archive, const QString &root)
{
    QVERIFY(write(archive, root + QStringLiteral("/sub/a.txt"), "x"));
    const QString folder = root + QStringLiteral("/sub");
    QVERIFY(!archive.openFile(folder, QIODevice::ReadOnly));
    QVERIFY(!archive.openFile(folder, QIODevice::WriteOnly));
    QVERIFY(!archive.removeFile(folder));
    QCOMPARE(list(archive, root), QStringList{QStringLiteral("sub")});
    archive.closeFile(nullptr);
    archive.discardFile(nullptr);
}

/// Adds one row for each case, in a column named "run".
inline void addRows()
{
    QTest::addColumn<Case>("run");
    const std::pair<const char *, Case> cases[] = {
        {"new files bring their folders", newFilesBringTheirFolders},
        {"missing files cannot be read", missingFilesCannotBeRead},
        {"content of any size comes back", contentOfAnySizeComesBack},
        {"names may hold blanks and letters of all kinds", namesMayHoldBlanksAndLettersOfAllKinds},
        {"old content stands until the device is closed", oldContentStandsUntilTheDeviceIsClosed},
        {"discarded writes leave no trace", discardedWritesLeaveNoTrace},
        {"discarded reads leave the file", discardedReadsLeaveTheFile},
        {"updates start from the old content", updatesStartFromTheOldContent},
        {"files are renamed and removed", filesAreRenamedAndRemoved},
        {"entries are filtered and sorted", entriesAreFilteredAndSorted},
        {"absolute names and folders", absoluteNamesAndFolders},
        {"unusable paths and no device are harmless", unusablePathsAndNoDeviceAreHarmless},
    };
    for (const auto &[name, run] : cases)
        QTest::newRow(name) << run;
}

} // namespace ArchiveSuite

Q_DECLARE_METATYPE(ArchiveSuite::Case)
