// SPDX-License-Identifier: MIT
#include "frame/fileutils.h"

#include "frame/filesystemarchive.h"
#include "support/dialoganswerer.h"
#include "support/memoryarchive.h"
#include "support/recordinghost.h"

#include <QFile>
#include <QFileDialog>
#include <QTemporaryDir>
#include <QTest>
#include <QVector>
#include <algorithm>

namespace {

/// Never at its end, and yields nothing: a file on a drive that went away.
class StuckDevice : public QIODevice
{
public:
    bool atEnd() const override
    {
        return false;
    }

protected:
    qint64 readData(char *, qint64) override
    {
        return -1;
    }

    qint64 writeData(const char *, qint64) override
    {
        return -1;
    }
};

class StuckArchive : public MemoryArchive
{
public:
    QIODevice *openFile(const QString &, QIODevice::OpenMode mode) override
    {
        auto *device = new StuckDevice;
        device->open(mode);
        return device;
    }

    void closeFile(QIODevice *device) override
    {
        delete device;
    }
};

/// Holds \a left bytes and writes down how many it was asked for at a time.
class CountingDevice : public QIODevice
{
public:
    explicit CountingDevice(qint64 bytes)
        : left(bytes)
    {
        open(QIODevice::ReadOnly | QIODevice::Unbuffered);
    }

    bool isSequential() const override
    {
        return true;
    }

    qint64 left;
    QVector<qint64> asked;

protected:
    qint64 readData(char *data, qint64 size) override
    {
        asked.append(size);
        const qint64 given = qMin(size, left);
        std::fill_n(data, given, 'x');
        left -= given;
        return given;
    }

    qint64 writeData(const char *, qint64) override
    {
        return -1;
    }
};

void touch(const QString &path)
{
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly));
}

QStringList under(const QString &folder, QStringList names)
{
    for (QString &name : names)
        name = folder + QLatin1Char('/') + name;
    return names;
}

} // namespace

class TestFileUtils : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void namesSortByPrefixAndNumber_data();
    void namesSortByPrefixAndNumber();
    void sortingEndsWithOrdersThatRunInACircle();
    void severalFilesComeSortedIfAskedFor_data();
    void severalFilesComeSortedIfAskedFor();
    void settingChoosesTheOpenDialog_data();
    void settingChoosesTheOpenDialog();
    void saveAndFolderDialogsIgnoreTheSetting();
    void copyTakesTheWholeFile_data();
    void copyTakesTheWholeFile();
    void copyOntoTheSameNameOpensNothing();
    void failedCopyLeavesNothingOpenOrBehind();
    void copyOfAStuckSourceEnds();
    void caseIsFixedPartByPart_data();
    void caseIsFixedPartByPart();
    void caseOfTheDiskIsFound();
    void relativePaths_data();
    void relativePaths();
    void extensionsInUpperCase_data();
    void extensionsInUpperCase();
    void randomStringsHaveOnlyLettersAndDigits();
    void skippingAsksInPiecesOf256_data();
    void skippingAsksInPiecesOf256();
};

void TestFileUtils::namesSortByPrefixAndNumber_data()
{
    QTest::addColumn<QString>("names");
    QTest::addColumn<QString>("sorted");
    const auto row = [](const char *title, const char *names, const char *sorted) {
        QTest::newRow(title) << QString::fromLatin1(names) << QString::fromLatin1(sorted);
    };
    row("numbers", "w10.png w9.png w2.png", "w2.png w9.png w10.png");
    row("prefixes first", "b1.png a10.png a9.png", "a9.png a10.png b1.png");
    row("prefixes differ in case", "a1.png B2.png", "B2.png a1.png");
    row("no prefix", "10.png 9.png 08.png", "08.png 9.png 10.png");
    row("leading zeros", "w010.png w9.png", "w9.png w010.png");
    row("plain strings", "beta.png alpha.png Zeta.png", "Zeta.png alpha.png beta.png");
    // A digit in the prefix or none before the dot: plain order, in which '1' comes before '9'.
    row("digit in the prefix", "a1b9.png a1b10.png", "a1b10.png a1b9.png");
    row("no extension", "w9 w10", "w10 w9");
    row("digits not last", "w9b.png w10b.png", "w10b.png w9b.png");
    // The extension may hold dots and digits, but "w9.tar.gz" has one number only.
    row("long extension", "w10.tar.gz w9.tar.gz", "w9.tar.gz w10.tar.gz");
    // Too large for an int: it counts as 0.
    row("overflow", "w1.png w99999999999.png", "w99999999999.png w1.png");
    row("empty list", "", "");
}

void TestFileUtils::namesSortByPrefixAndNumber()
{
    QFETCH(QString, names);
    QStringList list = names.split(QLatin1Char(' '));
    Vela::sortFileNames(list);
    QTEST(list.join(QLatin1Char(' ')), "sorted");
}

// "a2.x" < "a10.x" by number, "a10.x" < "a1b" < "a2.x" as strings: no order fits all of these, but
// every name must still be there.
void TestFileUtils::sortingEndsWithOrdersThatRunInACircle()
{
    QStringList names;
    for (int i = 0; i < 300; ++i)
        names << QStringLiteral("a%1.x").arg((i * 37) % 300) << QStringLiteral("a%1b").arg(i);
    QStringList list = names;
    Vela::sortFileNames(list);
    std::sort(names.begin(), names.end());
    std::sort(list.begin(), list.end());
    QCOMPARE(list, names);
}

void TestFileUtils::severalFilesComeSortedIfAskedFor_data()
{
    QTest::addColumn<bool>("sort");
    QTest::addColumn<QStringList>("expected");
    const QString walk = QStringLiteral("walk%1.png");
    QTest::newRow("sorted") << true << QStringList{walk.arg(2), walk.arg(9), walk.arg(10)};
    QTest::newRow("as chosen") << false << QStringList{walk.arg(10), walk.arg(9), walk.arg(2)};
}

void TestFileUtils::severalFilesComeSortedIfAskedFor()
{
    QFETCH(bool, sort);
    QFETCH(QStringList, expected);
    RecordingHost host;
    if (sort)
        host.options.insert(QStringLiteral("sort_file_names"), true);
    QTemporaryDir folder;
    const QStringList chosen = under(
        folder.path(),
        {QStringLiteral("walk10.png"), QStringLiteral("walk9.png"), QStringLiteral("walk2.png")});
    for (const QString &name : chosen)
        touch(name);
    DialogAnswerer answerer;
    answerer.chooseFiles(chosen);
    const QStringList names = Vela::getOpenFileNames(nullptr, QStringLiteral("Add sprites"),
                                                     folder.path(), QStringLiteral("*.png"));
    QCOMPARE(names, under(folder.path(), expected));
    QCOMPARE(answerer.dialogs.first().title, QStringLiteral("Add sprites"));
}

void TestFileUtils::settingChoosesTheOpenDialog_data()
{
    QTest::addColumn<QVariant>("setting");
    QTest::addColumn<bool>("native");
    QTest::newRow("unset") << QVariant() << false;
    QTest::newRow("off") << QVariant(false) << false;
    QTest::newRow("on") << QVariant(true) << true;
    QTest::newRow("on, as a string") << QVariant(QStringLiteral("true")) << true;
}

void TestFileUtils::settingChoosesTheOpenDialog()
{
    QFETCH(QVariant, setting);
    QFETCH(bool, native);
    RecordingHost host;
    if (setting.isValid())
        host.options.insert(QStringLiteral("use_native_open"), setting);
    QTemporaryDir folder;
    DialogAnswerer answerer;
    QVector<bool> seen;
    const auto note = [&](QDialog *dialog) {
        seen << !qobject_cast<QFileDialog *>(dialog)->testOption(QFileDialog::DontUseNativeDialog);
        dialog->reject();
    };
    answerer.handle(note);
    QVERIFY(Vela::getOpenFileName(nullptr, QString(), folder.path(), QString()).isEmpty());
    answerer.handle(note);
    QVERIFY(Vela::getOpenFileNames(nullptr, QString(), folder.path(), QString()).isEmpty());
    QCOMPARE(seen, (QVector<bool>{native, native}));
}

void TestFileUtils::saveAndFolderDialogsIgnoreTheSetting()
{
    QTemporaryDir folder;
    DialogAnswerer answerer;
    QFileDialog::Options options;
    answerer.handle([&](QDialog *dialog) {
        options = qobject_cast<QFileDialog *>(dialog)->options();
        dialog->reject();
    });
    QVERIFY(Vela::getSaveFileName(nullptr, QString(), folder.path(), QString()).isEmpty());
    QCOMPARE(options, QFileDialog::Options());

    const QString file = folder.filePath(QStringLiteral("new.png"));
    answerer.chooseFiles({file});
    QCOMPARE(Vela::getSaveFileName(nullptr, QString(), folder.path(), QString()), file);

    answerer.handle([&](QDialog *dialog) {
        options = qobject_cast<QFileDialog *>(dialog)->options();
        dialog->reject();
    });
    QVERIFY(Vela::getExistingDirectory(nullptr, QString(), folder.path()).isEmpty());
    QCOMPARE(options, QFileDialog::Options(QFileDialog::ShowDirsOnly));
    answerer.chooseFiles({folder.path()});
    QCOMPARE(Vela::getExistingDirectory(nullptr, QString(), folder.path()), folder.path());
    QVERIFY(answerer.isDone());
}

void TestFileUtils::copyTakesTheWholeFile_data()
{
    QTest::addColumn<int>("size");
    for (const int size : {0, 1, 0x20000 - 1, 0x20000, 0x20000 + 1, 300000})
        QTest::addRow("%d bytes", size) << size;
}

void TestFileUtils::copyTakesTheWholeFile()
{
    QFETCH(int, size);
    QByteArray content(size, '\0');
    for (int i = 0; i < size; ++i)
        content[i] = char(i * 31 + i / 251);
    MemoryArchive from;
    MemoryArchive to;
    from.put(QStringLiteral("/a"), content);
    to.put(QStringLiteral("/b"), QByteArrayLiteral("longer than nothing"));
    QVERIFY(Vela::copyFile(from, QStringLiteral("/a"), to, QStringLiteral("/b")));
    QCOMPARE(to.content(QStringLiteral("/b")), content);
    QCOMPARE(from.content(QStringLiteral("/a")), content);
    QCOMPARE(from.openDevices + to.openDevices, 0);

    // Within one archive, too.
    QVERIFY(Vela::copyFile(from, QStringLiteral("/a"), from, QStringLiteral("/c")));
    QCOMPARE(from.content(QStringLiteral("/c")), content);
}

void TestFileUtils::copyOntoTheSameNameOpensNothing()
{
    MemoryArchive from;
    MemoryArchive to;
    from.put(QStringLiteral("/a"), QByteArrayLiteral("new"));
    to.put(QStringLiteral("/a"), QByteArrayLiteral("old"));
    QVERIFY(!Vela::copyFile(from, QStringLiteral("/a"), to, QStringLiteral("/a")));
    QVERIFY(from.calls.isEmpty());
    QVERIFY(to.calls.isEmpty());
    QCOMPARE(to.content(QStringLiteral("/a")), QByteArrayLiteral("old"));
}

void TestFileUtils::failedCopyLeavesNothingOpenOrBehind()
{
    MemoryArchive from;
    MemoryArchive to;
    QVERIFY(!Vela::copyFile(from, QStringLiteral("/none"), to, QStringLiteral("/b")));
    QVERIFY(to.fileNames().isEmpty());

    from.put(QStringLiteral("/a"), QByteArrayLiteral("new"));
    to.readOnly = true;
    QVERIFY(!Vela::copyFile(from, QStringLiteral("/a"), to, QStringLiteral("/b")));
    QCOMPARE(from.openDevices + to.openDevices, 0);
}

void TestFileUtils::copyOfAStuckSourceEnds()
{
    StuckArchive from;
    MemoryArchive to;
    QVERIFY(Vela::copyFile(from, QStringLiteral("/a"), to, QStringLiteral("/b")));
    QCOMPARE(to.openDevices, 0);
}

void TestFileUtils::caseIsFixedPartByPart_data()
{
    QTest::addColumn<QString>("base");
    QTest::addColumn<QString>("path");
    QTest::addColumn<QString>("fixed");
    const auto row = [](const char *title, const char *base, const char *path, const char *fixed) {
        QTest::newRow(title) << QString::fromLatin1(base) << QString::fromLatin1(path)
                             << QString::fromLatin1(fixed);
    };
    row("as written", "/game/", "Chars/Kim/kim.def", "/game/Chars/Kim/kim.def");
    row("every part", "/game/", "chars/KIM/Kim.DEF", "/game/Chars/Kim/kim.def");
    row("base without a separator", "/game", "chars/KIM/Kim.DEF", "/game/Chars/Kim/kim.def");
    row("file not there", "/game/", "chars/kim/ken.def", "/game/Chars/Kim/ken.def");
    row("folder not there", "/game/", "stages/KIM/kim.def", "/game/stages/KIM/kim.def");
    row("a file is no folder", "/game/", "README/x", "/game/README/x");
    row("a folder is no file", "/game/", "chars", "/game/chars");
    row("one part", "/game/", "readme", "/game/ReadMe");
    // Of two spellings the first in the order of names.
    row("two spellings", "/game/", "TWO.TXT", "/game/TWO.txt");
}

void TestFileUtils::caseIsFixedPartByPart()
{
    QFETCH(QString, base);
    QFETCH(QString, path);
    MemoryArchive archive;
    for (const char *name :
         {"/game/Chars/Kim/kim.def", "/game/ReadMe", "/game/two.txt", "/game/TWO.txt"})
        archive.put(QLatin1String(name), QByteArray());
    QTEST(Vela::fixFileCase(base, archive, path), "fixed");
}

void TestFileUtils::caseOfTheDiskIsFound()
{
    QTemporaryDir folder;
    QVERIFY(QDir(folder.path()).mkpath(QStringLiteral("Sprites/Hero")));
    const QString file = folder.filePath(QStringLiteral("Sprites/Hero/Walk1.PNG"));
    touch(file);
    const QString base = folder.path() + QLatin1Char('/');
    auto &disk = Vela::FileSystemArchive::instance();
    QCOMPARE(Vela::fixFileCase(base, disk, QStringLiteral("sprites/HERO/walk1.png")), file);
    QCOMPARE(Vela::fixFileCase(base, disk, QStringLiteral("Sprites/Hero/Walk1.PNG")), file);
}

void TestFileUtils::relativePaths_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<QString>("base");
    QTest::addColumn<QString>("relative");
    const auto row = [](const char *title, const char *path, const char *base,
                        const char *relative) {
        QTest::newRow(title) << QString::fromLatin1(path) << QString::fromLatin1(base)
                             << QString::fromLatin1(relative);
    };
    row("inside", "/a/b/c.png", "/a/b", "c.png");
    row("inside, base with a separator", "/a/b/c.png", "/a/b/", "c.png");
    row("deeper", "/a/b/c/d.png", "/a/b", "c/d.png");
    row("beside", "/a/c/d.png", "/a/b", "../c/d.png");
    row("two up", "/a/x.png", "/a/b/c", "../../x.png");
    row("same beginning of a name", "/a/bcd/x.png", "/a/bc", "../bcd/x.png");
    row("the folder itself", "/a/b", "/a/b", "../b");
    row("backslashes", "C:\\game\\spr\\x.png", "C:\\game\\snd", "../spr/x.png");
    row("mixed", "C:\\game/spr\\x.png", "C:/game\\spr", "x.png");
    row("root", "/a/x.png", "/", "/a/x.png");
    row("no base", "/a/x.png", "", "/a/x.png");
    row("relative path at the root", "a\\x.png", "/", "a/x.png");
    row("nothing common but the root", "/a/x.png", "/b/c", "../../a/x.png");
    row("empty path", "", "/a", "../");
}

void TestFileUtils::relativePaths()
{
    QFETCH(QString, path);
    QFETCH(QString, base);
    QTEST(Vela::absolutePathToRelative(path, base), "relative");
}

void TestFileUtils::extensionsInUpperCase_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QByteArray>("extension");
    QTest::newRow("plain") << QStringLiteral("/a/kim.png") << QByteArrayLiteral("PNG");
    QTest::newRow("last of two") << QStringLiteral("kim.tar.gz") << QByteArrayLiteral("GZ");
    QTest::newRow("none") << QStringLiteral("/a.b/kim") << QByteArray("");
    QTest::newRow("Latin-1") << QStringLiteral("x.\u00e9") << QByteArrayLiteral("\xc9");
    QTest::newRow("beyond Latin-1") << QStringLiteral("x.\u0436") << QByteArrayLiteral("?");
}

void TestFileUtils::extensionsInUpperCase()
{
    QFETCH(QString, name);
    QTEST(Vela::fileExtension(name), "extension");
}

void TestFileUtils::randomStringsHaveOnlyLettersAndDigits()
{
    QVERIFY(Vela::randomString(0).isEmpty());
    QVERIFY(Vela::randomString(-3).isEmpty());
    const QString text = Vela::randomString(5000);
    QCOMPARE(text.size(), 5000);
    const QRegExp allowed(QStringLiteral("[A-Za-z0-9]+"));
    QVERIFY(allowed.exactMatch(text));
    // 5000 draws from 62 characters miss one of them with a chance below 1e-33.
    QSet<QChar> used;
    for (const QChar character : text)
        used.insert(character);
    QCOMPARE(used.size(), 62);
    QVERIFY(Vela::randomString(20) != Vela::randomString(20));
}

void TestFileUtils::skippingAsksInPiecesOf256_data()
{
    QTest::addColumn<unsigned int>("count");
    QTest::addColumn<qint64>("held");
    QTest::addColumn<QVector<qint64>>("asked");
    QTest::addColumn<qint64>("left");
    QTest::newRow("nothing") << 0u << qint64(500) << QVector<qint64>{} << qint64(500);
    QTest::newRow("300") << 300u << qint64(500) << QVector<qint64>{256, 44} << qint64(200);
    QTest::newRow("256") << 256u << qint64(500) << QVector<qint64>{256} << qint64(244);
    QTest::newRow("past the end") << 600u << qint64(100) << QVector<qint64>{256, 256, 88}
                                  << qint64(0);
}

void TestFileUtils::skippingAsksInPiecesOf256()
{
    QFETCH(unsigned int, count);
    QFETCH(qint64, held);
    CountingDevice device(held);
    Vela::skipRead(&device, count);
    QTEST(device.asked, "asked");
    QTEST(device.left, "left");
}

QTEST_MAIN(TestFileUtils)

#include "tst_fileutils.moc"
