// SPDX-License-Identifier: MIT
#include "lantern/spooldevice.h"
#include "lantern/zipextension.h"

#include "support/archivesuite.h"
#include "support/recordinghost.h"

#include <QDirIterator>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>

#include <memory>

using Lantern::ZipExtension;
using Vela::Archive;
using Vela::Extension;

class tst_ZipArchive : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void archives_data();
    void archives();
    void otherProgramsReadWhatIsWritten();
    void whatOtherProgramsWriteIsRead();
    void manyAndLargeEntriesComeBack();
    void theSameFilesGiveTheSameArchive();
    void filesThatAreStillPackedCanBeUsed();
    void spoolsAreRandomAccess();
    void theTargetAppearsWhole();
    void anArchiveThatIsNotWholeLeavesTheTarget();
    void refusedPathsCannotBeWritten_data();
    void refusedPathsCannotBeWritten();
    void unsafeEntriesAreLeftOut_data();
    void unsafeEntriesAreLeftOut();
    void brokenArchivesAreRefused_data();
    void brokenArchivesAreRefused();
    void everyCutAndEveryFlippedByteIsHarmless();
    void readersChangeNothing();

private:
    Archive *write(const char *name) const;
    Archive *read(const char *name) const;
    QString path(const char *name) const;
    QByteArray sample();

    std::unique_ptr<QTemporaryDir> m_folder;
};

namespace {

QByteArray bytes(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

void store(const QString &path, const QByteArray &data)
{
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly));
    QCOMPARE(file.write(data), qint64(data.size()));
}

// Bytes that do not pack, the same in every run.
QByteArray noise(int size)
{
    QByteArray data(size, Qt::Uninitialized);
    quint32 state = 12345;
    for (char &byte : data) {
        state = state * 1664525 + 1013904223;
        byte = char(state >> 24);
    }
    return data;
}

// Runs a program in a folder; returns what it printed, or null if it failed.
QByteArray run(const QString &folder, const QString &program, const QStringList &arguments)
{
    QProcess process;
    process.setWorkingDirectory(folder);
    process.start(program, arguments);
    if (!process.waitForFinished(60000) || process.exitCode() != 0)
        return QByteArray();
    return process.readAllStandardOutput() + '\n';
}

QStringList listAll(const Archive &archive, const QString &folder)
{
    QStringList result;
    const QStringList names = archive.entries(folder, QDir::AllEntries, QDir::Name);
    for (const QString &name : names) {
        const QString path = folder + QLatin1Char('/') + name;
        if (archive.fileExists(path))
            result.append(path.mid(1));
        else
            result += listAll(archive, path);
    }
    return result;
}

// A stored entry, for archives made by hand: names and sizes are what the caller says.
struct Stored
{
    QByteArray name;
    QByteArray data;
    quint32 declaredSize;
    quint16 method = 0;
    quint16 flags = 0;
    quint32 attributes = 0;
};

void number(QByteArray &out, quint32 value, int size)
{
    for (int i = 0; i < size; ++i)
        out.append(char(value >> (8 * i)));
}

quint32 crcOf(const QByteArray &data)
{
    quint32 crc = 0xFFFFFFFF;
    for (const char byte : data) {
        crc ^= quint8(byte);
        for (int bit = 0; bit < 8; ++bit)
            crc = crc >> 1 ^ (crc & 1 ? 0xEDB88320 : 0);
    }
    return ~crc;
}

void common(QByteArray &out, const Stored &entry)
{
    number(out, 20, 2);
    number(out, entry.flags, 2);
    number(out, entry.method, 2);
    number(out, 0x5A000000, 4);
    number(out, crcOf(entry.data), 4);
    number(out, quint32(entry.data.size()), 4);
    number(out, entry.declaredSize, 4);
    number(out, quint32(entry.name.size()), 2);
    number(out, 0, 2);
}

QByteArray handMade(const QList<Stored> &entries)
{
    QByteArray out;
    QByteArray directory;
    for (const Stored &entry : entries) {
        const int offset = out.size();
        out += "PK\3\4";
        common(out, entry);
        out += entry.name + entry.data;
        directory += "PK\1\2";
        number(directory, 3 << 8 | 20, 2);
        common(directory, entry);
        number(directory, 0, 2);
        number(directory, 0, 2);
        number(directory, 0, 2);
        number(directory, entry.attributes, 4);
        number(directory, quint32(offset), 4);
        directory += entry.name;
    }
    const int start = out.size();
    out += directory + "PK\5\6";
    number(out, 0, 4);
    number(out, quint32(entries.size()), 2);
    number(out, quint32(entries.size()), 2);
    number(out, quint32(directory.size()), 4);
    number(out, quint32(start), 4);
    number(out, 0, 2);
    return out;
}

Stored plain(const QByteArray &name, const QByteArray &data = "x")
{
    return {name, data, quint32(data.size())};
}

} // namespace

void tst_ZipArchive::init()
{
    m_folder = std::make_unique<QTemporaryDir>();
    QVERIFY(m_folder->isValid());
}

QString tst_ZipArchive::path(const char *name) const
{
    return m_folder->filePath(QString::fromUtf8(name));
}

Archive *tst_ZipArchive::write(const char *name) const
{
    return ZipExtension().openArchive(path(name), Extension::WriteMode);
}

Archive *tst_ZipArchive::read(const char *name) const
{
    return ZipExtension().openArchive(path(name), Extension::ReadMode);
}

void tst_ZipArchive::archives_data()
{
    ArchiveSuite::addRows();
}

void tst_ZipArchive::archives()
{
    QFETCH(ArchiveSuite::Case, run);
    Archive *const archive = write("suite.zip");
    QVERIFY(archive);
    run(*archive, QStringLiteral("/root"));
    archive->release();
    QVERIFY(QFile::exists(path("suite.zip")));
}

void tst_ZipArchive::otherProgramsReadWhatIsWritten()
{
    const QString name = QString::fromUtf8("\xe7\xb5\xb5/M\xc3\xbchle.txt");
    const QByteArray data = noise(300000) + QByteArray(300000, 'a');
    Archive *const archive = write("ours.zip");
    QVERIFY(archive);
    QVERIFY(ArchiveSuite::write(*archive, name, "old"));
    QVERIFY(ArchiveSuite::write(*archive, name, "wheel"));
    // A path of a backup begins with the archive's root.
    QVERIFY(ArchiveSuite::write(*archive, QStringLiteral("/b/data.bin"), data));
    QVERIFY(ArchiveSuite::write(*archive, QStringLiteral("gone.txt"), "gone"));
    QVERIFY(ArchiveSuite::write(*archive, QStringLiteral("empty"), QByteArray()));
    QVERIFY(archive->removeFile(QStringLiteral("gone.txt")));
    QCOMPARE(archive->name(), QStringLiteral("ours.zip"));
    QCOMPARE(archive->path(), path("ours.zip"));
    archive->release();

    QVERIFY(run(m_folder->path(), QStringLiteral("unzip"),
                {QStringLiteral("-t"), QStringLiteral("ours.zip")})
                .contains("No errors"));
    QVERIFY(!run(m_folder->path(), QStringLiteral("unzip"),
                 {QStringLiteral("-q"), QStringLiteral("ours.zip"), QStringLiteral("-d"),
                  QStringLiteral("out")})
                 .isNull());
    QStringList found;
    QDirIterator it(path("out"), QDir::Files, QDirIterator::Subdirectories);
    while (it.hasNext())
        found.append(it.next().mid(path("out").size() + 1));
    found.sort();
    QCOMPARE(found, (QStringList{QStringLiteral("b/data.bin"), QStringLiteral("empty"), name}));
    QCOMPARE(bytes(path("out/") + name), QByteArray("wheel"));
    QCOMPARE(bytes(path("out/b/data.bin")), data);
}

void tst_ZipArchive::whatOtherProgramsWriteIsRead()
{
    const QByteArray text = QByteArray("meadow ").repeated(50000);
    QVERIFY(QDir(m_folder->path()).mkpath(QStringLiteral("in/sub/deeper")));
    store(path("in/sub/deeper/text.txt"), text);
    store(path("in/sub/noise.bin"), noise(100000));
    store(path("in/M\xc3\xbchle"), "x");
    QVERIFY(!run(path("in"), QStringLiteral("zip"),
                 {QStringLiteral("-q"), QStringLiteral("-r"), QStringLiteral("../theirs.zip"),
                  QStringLiteral(".")})
                 .isNull());
    Archive *const archive = read("theirs.zip");
    QVERIFY(archive);
    QCOMPARE(listAll(*archive, QString()),
             (QStringList{QString::fromUtf8("M\xc3\xbchle"), QStringLiteral("sub/deeper/text.txt"),
                          QStringLiteral("sub/noise.bin")}));
    // Two at once, and again.
    QIODevice *const first =
        archive->openFile(QStringLiteral("sub/noise.bin"), QIODevice::ReadOnly);
    QVERIFY(first);
    QCOMPARE(ArchiveSuite::read(*archive, QStringLiteral("/sub/deeper/text.txt")), text);
    QCOMPARE(first->readAll(), noise(100000));
    archive->closeFile(first);
    QCOMPARE(ArchiveSuite::read(*archive, QStringLiteral("sub/noise.bin")), noise(100000));
    archive->release();
}

void tst_ZipArchive::manyAndLargeEntriesComeBack()
{
    const QByteArray large = noise(1 << 20).repeated(20);
    QVERIFY(large.size() > Lantern::SpoolDevice::memoryLimit);
    Archive *archive = write("many.zip");
    QVERIFY(archive);
    QVERIFY(ArchiveSuite::write(*archive, QStringLiteral("large.bin"), large));
    for (int i = 0; i < 2000; ++i)
        QVERIFY(ArchiveSuite::write(*archive, QStringLiteral("f%1/%2.txt").arg(i % 7).arg(i),
                                    QByteArray::number(i)));
    archive->release();

    archive = read("many.zip");
    QVERIFY(archive);
    QCOMPARE(listAll(*archive, QString()).size(), 2001);
    QCOMPARE(ArchiveSuite::read(*archive, QStringLiteral("f3/1333.txt")), QByteArray("1333"));
    QVERIFY(ArchiveSuite::read(*archive, QStringLiteral("large.bin")) == large);
    archive->release();
}

// Enough for the queue to fill, so that all threads pack.
void tst_ZipArchive::theSameFilesGiveTheSameArchive()
{
    const QByteArray source = noise(1 << 20);
    for (const char *const name : {"first.zip", "second.zip"}) {
        Archive *const archive = write(name);
        QVERIFY(archive);
        for (int i = 0; i < 400; ++i) {
            const int size = i % 2 ? 250000 : i;
            QVERIFY(ArchiveSuite::write(*archive, QString::number(i), source.mid(i, size)));
        }
        archive->release();
    }
    // Name, size, packed size and checksum, without the times.
    const auto listing = [this](const char *name) {
        const QByteArray text = run(m_folder->path(), QStringLiteral("unzip"),
                                    {QStringLiteral("-v"), QString::fromLatin1(name)});
        QStringList lines;
        for (const QString &line : QString::fromUtf8(text).split(QLatin1Char('\n')).mid(1)) {
            QStringList words = line.split(QLatin1Char(' '), Qt::SkipEmptyParts);
            if (words.size() == 8)
                lines.append(words.mid(0, 4).join(QLatin1Char(' ')) + words.mid(6).join(QString()));
        }
        return lines;
    };
    const QStringList first = listing("first.zip");
    QCOMPARE(first.filter(QStringLiteral("Defl")).size(), 400);
    QCOMPARE(listing("second.zip"), first);

    Archive *const archive = read("second.zip");
    QVERIFY(archive);
    for (const int i : {0, 1, 2, 199, 398, 399})
        QVERIFY(ArchiveSuite::read(*archive, QString::number(i))
                == source.mid(i, i % 2 ? 250000 : i));
    archive->release();
}

void tst_ZipArchive::filesThatAreStillPackedCanBeUsed()
{
    Archive *archive = write("used.zip");
    QVERIFY(archive);
    const QByteArray data = noise(3000000);
    const QString old = QStringLiteral("old");
    for (int i = 0; i < 4; ++i)
        QVERIFY(ArchiveSuite::write(*archive, QString::number(i), data.mid(i)));
    QVERIFY(ArchiveSuite::write(*archive, old, data));
    QVERIFY(ArchiveSuite::read(*archive, old) == data);
    QVERIFY(ArchiveSuite::write(*archive, old, data.mid(7)));
    QVERIFY(archive->renameFile(old, QStringLiteral("new")));
    QVERIFY(archive->removeFile(QStringLiteral("2")));
    archive->release();

    archive = read("used.zip");
    QVERIFY(archive);
    QCOMPARE(listAll(*archive, QString()).join(QLatin1Char(' ')), QStringLiteral("0 1 3 new"));
    QVERIFY(ArchiveSuite::read(*archive, QStringLiteral("new")) == data.mid(7));
    QVERIFY(ArchiveSuite::read(*archive, QStringLiteral("3")) == data.mid(3));
    archive->release();

    // What is still waiting is dropped with an archive that cannot be written.
    RecordingHost host;
    archive = write("dropped.zip");
    QVERIFY(archive);
    for (int i = 0; i < 4; ++i)
        QVERIFY(ArchiveSuite::write(*archive, QString::number(i), data));
    QVERIFY(archive->openFile(old, QIODevice::WriteOnly));
    archive->release();
    QVERIFY(!QFile::exists(path("dropped.zip")));
    QCOMPARE(host.logged.size(), 1);
}

void tst_ZipArchive::spoolsAreRandomAccess()
{
    Lantern::SpoolDevice device;
    QVERIFY(device.open(QIODevice::ReadWrite));
    const QByteArray block = noise(1 << 20);
    for (int i = 0; i < 17; ++i)
        QCOMPARE(device.write(block), qint64(block.size()));
    QCOMPARE(device.size(), qint64(17) << 20);
    QVERIFY(device.seek(5));
    QCOMPARE(device.write("here"), qint64(4));
    QVERIFY(device.seek(4));
    QCOMPARE(device.read(6), QByteArray(block.mid(4, 1) + "here" + block.mid(9, 1)));
    QVERIFY(!device.seek(device.size() + 1));
    QVERIFY(device.isWhole());
}

void tst_ZipArchive::theTargetAppearsWhole()
{
    store(path("new.zip"), "an older archive");
    Archive *const archive = write("new.zip");
    QVERIFY(archive);
    QVERIFY(ArchiveSuite::write(*archive, QStringLiteral("a"), "a"));
    archive->flush();
    QCOMPARE(bytes(path("new.zip")), QByteArray("an older archive"));
    archive->release();
    QVERIFY(bytes(path("new.zip")).startsWith("PK"));
    QCOMPARE(QDir(m_folder->path()).entryList(QDir::AllEntries | QDir::NoDotAndDotDot),
             QStringList{QStringLiteral("new.zip")});

    // Folders are made; what cannot be written gives no archive.
    Archive *const below = write("backup/deep/x.zip");
    QVERIFY(below);
    below->release();
    QVERIFY(QFile::exists(path("backup/deep/x.zip")));
    QVERIFY(!write("new.zip/x.zip"));
    QVERIFY(!write("backup"));
}

void tst_ZipArchive::anArchiveThatIsNotWholeLeavesTheTarget()
{
    RecordingHost host;
    Archive *const archive = write("half.zip");
    QVERIFY(archive);
    QVERIFY(ArchiveSuite::write(*archive, QStringLiteral("a"), "a"));
    QIODevice *const open = archive->openFile(QStringLiteral("b"), QIODevice::WriteOnly);
    QVERIFY(open);
    open->write("half of ");
    archive->release();
    QVERIFY(QDir(m_folder->path()).isEmpty());
    QCOMPARE(host.logged.size(), 1);
    QVERIFY(host.logged.at(0).contains(path("half.zip")));
}

void tst_ZipArchive::refusedPathsCannotBeWritten_data()
{
    QTest::addColumn<QString>("name");
    for (const char *name : {"../x", "a/../../x", "..", "", "/", "a\\b", "C:/x", "/C:/x", "//../x"})
        QTest::newRow(name) << QString::fromLatin1(name);
    QTest::newRow("NUL") << QString(QStringLiteral("a") + QChar(0));
    QTest::newRow("too deep") << QStringLiteral("a/").repeated(101) + QLatin1Char('x');
    QTest::newRow("too long") << QString(70000, QLatin1Char('x'));
}

void tst_ZipArchive::refusedPathsCannotBeWritten()
{
    QFETCH(QString, name);
    Archive *const archive = write("refused.zip");
    QVERIFY(archive);
    QVERIFY(!archive->openFile(name, QIODevice::WriteOnly));
    QVERIFY(!archive->fileExists(name));
    archive->release();
}

void tst_ZipArchive::unsafeEntriesAreLeftOut_data()
{
    QTest::addColumn<QByteArray>("zip");

    const auto row = [](const char *title, const Stored &entry) {
        QTest::newRow(title) << handMade({plain("good.txt"), entry, plain("sub/fine.txt")});
    };
    for (const char *name :
         {"../x", "a/../../x", "/x", "C:\\x", "c:x", "..\\x", "a/../b", "./x", "a//b", ".."})
        row(name, plain(name));
    row("NUL in the name", plain(QByteArray("a\0b", 3)));
    row("no name", plain(QByteArray()));
    row("a second one of the name", plain("good.txt", "other"));
    row("a folder of that name is a file", plain("good.txt/x"));
    row("too deep", plain(QByteArray("a/").repeated(30000) + 'x'));
    row("link", {"link", "/etc/passwd", 11, 0, 0, 0xA1FF0000});
    row("encrypted", {"secret", "xxxxxxxxxxxxx", 13, 0, 1, 0});
    row("a method that nobody knows", {"odd", "x", 1, 99, 0, 0});
    row("more than it can hold", {"bomb", "\3", 4000000000U, 8, 0, 0});
    row("stored, with another size", {"bomb", "x", 1000000, 0, 0, 0});
}

void tst_ZipArchive::unsafeEntriesAreLeftOut()
{
    QFETCH(QByteArray, zip);
    store(path("unsafe.zip"), zip);
    Archive *const archive = read("unsafe.zip");
    QVERIFY(archive);
    QCOMPARE(listAll(*archive, QString()),
             (QStringList{QStringLiteral("good.txt"), QStringLiteral("sub/fine.txt")}));
    QCOMPARE(ArchiveSuite::read(*archive, QStringLiteral("good.txt")), QByteArray("x"));
    QCOMPARE(ArchiveSuite::read(*archive, QStringLiteral("sub/fine.txt")), QByteArray("x"));
    QVERIFY(!archive->openFile(QStringLiteral("../x"), QIODevice::ReadOnly));
    archive->release();
}

QByteArray tst_ZipArchive::sample()
{
    Archive *const archive = write("sample.zip");
    ArchiveSuite::write(*archive, QStringLiteral("a.txt"), QByteArray("meadow ").repeated(20));
    ArchiveSuite::write(*archive, QStringLiteral("b/c.txt"), noise(60));
    archive->release();
    return bytes(path("sample.zip"));
}

void tst_ZipArchive::brokenArchivesAreRefused_data()
{
    QTest::addColumn<QByteArray>("zip");
    QTest::newRow("nothing") << QByteArray();
    QTest::newRow("text") << QByteArray("This is no archive.").repeated(100);
    QTest::newRow("only a beginning") << QByteArray("PK\3\4");
    // Two entries whose bytes are the same ones, as in an archive that unpacks without end.
    QByteArray twice = handMade({plain("a", noise(1000)), plain("b", QByteArray(1000, 'b'))});
    twice.remove(twice.indexOf(QByteArray(1000, 'b')), 1000);
    QTest::newRow("sizes that the file does not have") << twice;
}

void tst_ZipArchive::brokenArchivesAreRefused()
{
    QFETCH(QByteArray, zip);
    store(path("broken.zip"), zip);
    QVERIFY(!read("broken.zip"));
    QVERIFY(!read("missing.zip"));
}

void tst_ZipArchive::everyCutAndEveryFlippedByteIsHarmless()
{
    const QByteArray whole = sample();
    const QByteArray first = QByteArray("meadow ").repeated(20);
    QVERIFY(whole.size() > 100);
    for (int i = 0; i < 2 * whole.size(); ++i) {
        QByteArray broken = whole;
        if (i < whole.size())
            broken.truncate(i);
        else
            broken[i - whole.size()] = char(~broken.at(i - whole.size()));
        store(path("broken.zip"), broken);
        Archive *const archive = read("broken.zip");
        if (i < whole.size())
            QVERIFY2(!archive, qPrintable(QStringLiteral("%1 of %2").arg(i).arg(whole.size())));
        if (!archive)
            continue;
        // What is handed out is whole.
        const QStringList names = listAll(*archive, QString());
        for (const QString &name : names) {
            const QByteArray content = ArchiveSuite::read(*archive, name);
            QVERIFY2(content == first || content == noise(60) || content == "(can't be read)",
                     qPrintable(QString::number(i - whole.size())));
        }
        archive->release();
    }
}

void tst_ZipArchive::readersChangeNothing()
{
    const QByteArray whole = sample();
    Archive *const archive = read("sample.zip");
    QVERIFY(archive);
    QVERIFY(archive->isReadOnly());
    QVERIFY(!archive->isWritable(QStringLiteral("new")));
    QVERIFY(!archive->openFile(QStringLiteral("new"), QIODevice::WriteOnly));
    QVERIFY(!archive->openFile(QStringLiteral("a.txt"), QIODevice::ReadWrite));
    QVERIFY(!archive->removeFile(QStringLiteral("a.txt")));
    QVERIFY(!archive->renameFile(QStringLiteral("a.txt"), QStringLiteral("new")));
    QVERIFY(archive->directoryExists(QStringLiteral("b")));
    QVERIFY(archive->directoryExists(QString()));
    QVERIFY(!archive->directoryExists(QStringLiteral("a.txt")));
    archive->release();
    QCOMPARE(bytes(path("sample.zip")), whole);
}

QTEST_MAIN(tst_ZipArchive)
#include "tst_ziparchive.moc"
