// SPDX-License-Identifier: MIT
#include "frame/filesystemarchive.h"
#include "frame/fileutils.h"
#include "support/archivesuite.h"
#include "support/dialoganswerer.h"
#include "support/limits_unix.h"

#include <QAbstractButton>
#include <QElapsedTimer>
#include <QProcess>
#include <QRegularExpression>
#include <QStandardPaths>
#include <QTemporaryDir>

#include <cerrno>
#include <functional>
#include <memory>
#include <sys/syscall.h>
#include <unistd.h>

using ArchiveSuite::list;
using ArchiveSuite::read;
using ArchiveSuite::write;
using Vela::FileSystemArchive;

namespace {

/// What the system is made to do in this process.
struct SystemFaults
{
    QByteArray folderInsteadOf; ///< once this file is removed, a folder takes its name
    bool syncFails = false;
    QStringList calls; ///< "sync" and "remove" with a file's name without its folder
    bool isWatching = false;
};

SystemFaults faults;

void note(const char *call, const QByteArray &path)
{
    if (faults.isWatching)
        faults.calls.append(QLatin1String(call)
                            + QFile::decodeName(path).section(QLatin1Char('/'), -1));
}

} // namespace

// These two stand before the system's own for the libraries of this program as well.

extern "C" Q_DECL_EXPORT int unlink(const char *path) noexcept
{
    note("remove ", path);
    const int result = int(syscall(SYS_unlink, path));
    if (result == 0 && faults.folderInsteadOf == path)
        syscall(SYS_mkdir, path, 0700);
    return result;
}

extern "C" Q_DECL_EXPORT int fsync(int descriptor)
{
    const QByteArray link = "/proc/self/fd/" + QByteArray::number(descriptor);
    note("sync ", QFile::encodeName(QFile::symLinkTarget(QFile::decodeName(link))));
    if (faults.syncFails) {
        errno = EIO;
        return -1;
    }
    return int(syscall(SYS_fsync, descriptor));
}

namespace {

const QString target = QStringLiteral("hero.act");

/// What happens to a device, and to its temporary file, before it is closed.
using Act = std::function<void(QIODevice *, const QString &)>;

} // namespace

Q_DECLARE_METATYPE(Act)

class TestFileSystemArchive : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void anyArchive_data();
    void anyArchive();
    void hasNoNameAndIsNeverReadOnly();
    void entriesAreWithoutLinksAndDots();

    void overwritingGoesThroughATemporaryFile();
    void newFilesAreWrittenDirectly();
    void appendingKeepsTheOldContent_data();
    void appendingKeepsTheOldContent();
    void modesThatAskForAFileOrForNone();
    void permissionsStay();
    void leftOverFilesAreNotOverwritten();
    void contentIsOnTheDiskBeforeTheTargetGoes();
    void devicesThatTheCallerClosedAreCommitted();
    void targetsThatAreGoneAreNoHindrance();

    void unwritableTargetsGiveNothing_data();
    void unwritableTargetsGiveNothing();
    void foldersThatCannotBeMadeGiveNothing();

    void failedWritesLeaveTheOldFile_data();
    void failedWritesLeaveTheOldFile();
    void failedWritesLeaveNoHalfOfANewFile();

    void heldTargetsAreAskedAbout_data();
    void heldTargetsAreAskedAbout();
    void readOnlyFoldersAtCommitAreAskedAbout();
    void failedRenamesAreAskedAbout_data();
    void failedRenamesAreAskedAbout();
    void failedDiscardsAreAskedAbout_data();
    void failedDiscardsAreAskedAbout();

private:
    QString path(const QString &name = target) const;
    QString temporaryName() const;
    QIODevice *openForWriting(const QByteArray &content,
                              QIODevice::OpenMode mode = QIODevice::WriteOnly);
    void verifyQuestion(const DialogAnswerer::Dialog &dialog, const QString &title,
                        const QString &text);

    FileSystemArchive &m_archive = FileSystemArchive::instance();
    std::unique_ptr<QTemporaryDir> m_folder;
};

/// Each test begins with one file.
void TestFileSystemArchive::init()
{
    m_folder = std::make_unique<QTemporaryDir>();
    QVERIFY(m_folder->isValid());
    QVERIFY(write(m_archive, path(), "old"));
}

void TestFileSystemArchive::cleanup()
{
    faults = SystemFaults();
    m_folder.reset();
}

QString TestFileSystemArchive::path(const QString &name) const
{
    return m_folder->filePath(name);
}

/// Returns the name of the only file beside the target; empty if there is none.
QString TestFileSystemArchive::temporaryName() const
{
    QStringList names = list(m_archive, m_folder->path());
    names.removeAll(target);
    return names.size() == 1 ? names.first() : QString();
}

QIODevice *TestFileSystemArchive::openForWriting(const QByteArray &content,
                                                 QIODevice::OpenMode mode)
{
    QIODevice *device = m_archive.openFile(path(), mode);
    if (device)
        device->write(content);
    return device;
}

void TestFileSystemArchive::anyArchive_data()
{
    ArchiveSuite::addRows();
}

void TestFileSystemArchive::anyArchive()
{
    QFETCH(ArchiveSuite::Case, run);
    run(m_archive, path(QStringLiteral("root")));
}

void TestFileSystemArchive::hasNoNameAndIsNeverReadOnly()
{
    QCOMPARE(m_archive.name(), QString());
    QCOMPARE(m_archive.path(), QString());
    QVERIFY(!m_archive.isReadOnly());

    // The one object stays, however often it is given back.
    m_archive.release();
    QCOMPARE(read(m_archive, path()), QByteArray("old"));
    m_archive.addRef();
}

void TestFileSystemArchive::entriesAreWithoutLinksAndDots()
{
    QVERIFY(QFile::link(path(), path(QStringLiteral("link"))));
    for (const QDir::Filters filters :
         {QDir::Filters(QDir::NoFilter), QDir::AllEntries | QDir::System})
        QCOMPARE(m_archive.entries(m_folder->path(), filters, QDir::Name), QStringList{target});
}

void TestFileSystemArchive::overwritingGoesThroughATemporaryFile()
{
    auto *device = qobject_cast<QFileDevice *>(openForWriting("new content"));
    QVERIFY(device);
    QVERIFY(device->flush());
    const QString temporary = temporaryName();
    QVERIFY2(QRegularExpression(QStringLiteral("^hero\\.act[A-Za-z0-9]{6}$"))
                 .match(temporary)
                 .hasMatch(),
             qPrintable(temporary));
    QCOMPARE(read(m_archive, path(temporary)), QByteArray("new content"));
    QCOMPARE(read(m_archive, path()), QByteArray("old"));

    m_archive.closeFile(device);
    QCOMPARE(list(m_archive, m_folder->path()), QStringList{target});
    QCOMPARE(read(m_archive, path()), QByteArray("new content"));
}

void TestFileSystemArchive::newFilesAreWrittenDirectly()
{
    QVERIFY(m_archive.removeFile(path()));
    QIODevice *device = openForWriting("new");
    QCOMPARE(list(m_archive, m_folder->path()), QStringList{target});
    m_archive.closeFile(device);
    QCOMPARE(list(m_archive, m_folder->path()), QStringList{target});
}

void TestFileSystemArchive::appendingKeepsTheOldContent_data()
{
    QTest::addColumn<int>("mode");
    QTest::newRow("writing") << int(QIODevice::WriteOnly | QIODevice::Append);
    QTest::newRow("alone") << int(QIODevice::Append);
}

void TestFileSystemArchive::appendingKeepsTheOldContent()
{
    QFETCH(int, mode);
    m_archive.discardFile(openForWriting(" and lost", QIODevice::OpenMode(mode)));
    QCOMPARE(read(m_archive, path()), QByteArray("old"));
    m_archive.closeFile(openForWriting(" and new", QIODevice::OpenMode(mode)));
    QCOMPARE(read(m_archive, path()), QByteArray("old and new"));
}

void TestFileSystemArchive::modesThatAskForAFileOrForNone()
{
    QVERIFY(!m_archive.openFile(path(), QIODevice::WriteOnly | QIODevice::NewOnly));
    m_archive.closeFile(openForWriting("new", QIODevice::WriteOnly | QIODevice::ExistingOnly));
    QCOMPARE(read(m_archive, path()), QByteArray("new"));
}

void TestFileSystemArchive::permissionsStay()
{
    const QFile::Permissions permissions = QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner
        | QFile::ReadUser | QFile::WriteUser | QFile::ExeUser;
    QVERIFY(QFile::setPermissions(path(), permissions));
    m_archive.closeFile(openForWriting("new"));
    QCOMPARE(QFile::permissions(path()), permissions);
}

/// The names of temporary files repeat from one run of a program to the next. A file that an
/// interrupted save left behind may hold the only complete content.
void TestFileSystemArchive::leftOverFilesAreNotOverwritten()
{
    QT_WARNING_PUSH
    QT_WARNING_DISABLE_DEPRECATED
    qsrand(7);
    const QString leftOver = target + Vela::randomString(6);
    QVERIFY(write(m_archive, path(leftOver), "left over"));
    qsrand(7);
    QT_WARNING_POP
    m_archive.closeFile(openForWriting("new"));
    QCOMPARE(read(m_archive, path(leftOver)), QByteArray("left over"));
    QCOMPARE(read(m_archive, path()), QByteArray("new"));
}

/// After a loss of power, the name of a file may be on the disk without its content.
void TestFileSystemArchive::contentIsOnTheDiskBeforeTheTargetGoes()
{
    QIODevice *device = openForWriting("new");
    const QString temporary = temporaryName();
    faults.isWatching = true;
    m_archive.closeFile(device);
    QCOMPARE(faults.calls,
             QStringList({QStringLiteral("sync ") + temporary,
                          QStringLiteral("sync ") + QFileInfo(m_folder->path()).fileName(),
                          QStringLiteral("remove ") + target}));
}

void TestFileSystemArchive::devicesThatTheCallerClosedAreCommitted()
{
    QIODevice *device = openForWriting("new");
    faults.isWatching = true;
    device->close();
    QVERIFY(faults.calls.value(0).startsWith(QStringLiteral("sync ") + target));
    m_archive.closeFile(device);
    QCOMPARE(read(m_archive, path()), QByteArray("new"));
    QCOMPARE(temporaryName(), QString());
}

/// Another program removed the file during the save: nothing stands in the way of the new content.
void TestFileSystemArchive::targetsThatAreGoneAreNoHindrance()
{
    QIODevice *device = openForWriting("new");
    QVERIFY(QFile::remove(path()));
    m_archive.closeFile(device);
    QCOMPARE(read(m_archive, path()), QByteArray("new"));
    QCOMPARE(temporaryName(), QString());
}

void TestFileSystemArchive::unwritableTargetsGiveNothing_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<int>("filePermissions");
    QTest::addColumn<int>("folderPermissions");
    QTest::newRow("file is read-only") << target << 0x4444 << 0x7777;
    QTest::newRow("folder is read-only") << target << 0x6666 << 0x5555;
    QTest::newRow("file is a running program") << QStringLiteral("running") << 0x7777 << 0x7777;
    // The longest name of a file is 255 bytes.
    QTest::newRow("no room for a longer name")
        << QString(250, QLatin1Char('n')) << 0x6666 << 0x7777;
}

void TestFileSystemArchive::unwritableTargetsGiveNothing()
{
    QFETCH(QString, name);
    QFETCH(int, filePermissions);
    QFETCH(int, folderPermissions);
    const QString program = QStandardPaths::findExecutable(QStringLiteral("sleep"));
    if (name != target)
        QVERIFY(QFile::copy(program, path(name)));
    const QByteArray content = read(m_archive, path(name));
    const QStringList before = list(m_archive, m_folder->path());
    QVERIFY(QFile::setPermissions(path(name), QFile::Permissions(filePermissions)));
    QVERIFY(QFile::setPermissions(m_folder->path(), QFile::Permissions(folderPermissions)));

    QProcess process;
    if (filePermissions == 0x7777) {
        process.start(path(name), {QStringLiteral("60")});
        QVERIFY(process.waitForStarted());
    }
    {
        const OrdinaryUser user;
        if (!user.isOrdinary)
            QSKIP("can't give up the rights of root");
        QCOMPARE(m_archive.isWritable(path(name)), filePermissions != 0x4444);
        QVERIFY(!m_archive.openFile(path(name), QIODevice::WriteOnly));
        QVERIFY(!m_archive.openFile(path(name), QIODevice::ReadWrite));
    }
    QVERIFY(QFile::setPermissions(m_folder->path(), QFile::Permissions(0x7777)));
    QCOMPARE(list(m_archive, m_folder->path()), before);
    QCOMPARE(read(m_archive, path(name)), content);
    process.kill();
    process.waitForFinished();
}

void TestFileSystemArchive::foldersThatCannotBeMadeGiveNothing()
{
    QVERIFY(!write(m_archive, path() + QStringLiteral("/inside/a.txt"), "new"));
    QVERIFY(!write(m_archive, QStringLiteral("/proc/vela/a.txt"), "new"));
    QVERIFY(!write(m_archive, QString(), "new"));
    QCOMPARE(read(m_archive, path()), QByteArray("old"));
    QCOMPARE(list(m_archive, m_folder->path()), QStringList{target});
}

/// Ways in which new content doesn't reach the disk, and a part of the reason that the user reads.
void TestFileSystemArchive::failedWritesLeaveTheOldFile_data()
{
    QTest::addColumn<Act>("act");
    QTest::addColumn<QString>("reason");
    const auto row = [](const char *name, const char *reason, const Act &act) {
        QTest::newRow(name) << act << QString::fromUtf8(reason);
    };
    row("disk full within one write", "File too large", [](QIODevice *device, const QString &) {
        const FullDisk disk(100000);
        // "new" is there already.
        QCOMPARE(device->write(QByteArray(150000, 'n')), qint64(99997));
    });
    row("disk full, then room again", "File too large", [](QIODevice *device, const QString &) {
        {
            const FullDisk disk(100000);
            device->write(QByteArray(150000, 'n'));
        }
        QCOMPARE(device->write("the end"), qint64(7));
    });
    row("content is lost on its way", "Input/output error",
        [](QIODevice *, const QString &) { faults.syncFails = true; });
    row("temporary file is removed", "temporary file is missing",
        [](QIODevice *, const QString &temporary) { QVERIFY(QFile::remove(temporary)); });
}

void TestFileSystemArchive::failedWritesLeaveTheOldFile()
{
    QFETCH(Act, act);
    QFETCH(QString, reason);
    QIODevice *device = openForWriting("new");
    act(device, path(temporaryName()));

    DialogAnswerer dialogs;
    dialogs.answer(QMessageBox::Ok);
    QVERIFY(!m_archive.commitFile(device));
    QCOMPARE(dialogs.dialogs.size(), 1);
    QCOMPARE(dialogs.dialogs[0].title, QStringLiteral("File error!"));
    QCOMPARE(dialogs.dialogs[0].icon, QMessageBox::Critical);
    const QString text = dialogs.dialogs[0].text;
    QVERIFY2(text.contains(path()) && text.contains(reason), qPrintable(text));

    QCOMPARE(list(m_archive, m_folder->path()), QStringList{target});
    QCOMPARE(read(m_archive, path()), QByteArray("old"));
}

/// Small writes stay in the device's buffer, so that only the last step meets the full disk.
void TestFileSystemArchive::failedWritesLeaveNoHalfOfANewFile()
{
    DialogAnswerer dialogs;
    for (const QString &name : {target, QStringLiteral("new.act")}) {
        QIODevice *device = m_archive.openFile(path(name), QIODevice::WriteOnly);
        QCOMPARE(device->write(QByteArray(1000, 'n')), qint64(1000));
        dialogs.answer(QMessageBox::Ok);
        const FullDisk disk(100);
        m_archive.closeFile(device);
    }
    QCOMPARE(dialogs.dialogs.size(), 2);
    QVERIFY(dialogs.dialogs[1].text.contains(path(QStringLiteral("new.act"))));
    QVERIFY(dialogs.dialogs[1].text.contains(QLatin1String("File too large")));
    QCOMPARE(list(m_archive, m_folder->path()), QStringList{target});
    QCOMPARE(read(m_archive, path()), QByteArray("old"));

    // Who drops a device has asked for what happens, and isn't told of failed writes.
    QIODevice *device = openForWriting("");
    {
        const FullDisk disk(100000);
        device->write(QByteArray(150000, 'n'));
    }
    m_archive.discardFile(device);
    QCOMPARE(dialogs.dialogs.size(), 2);
    QCOMPARE(list(m_archive, m_folder->path()), QStringList{target});
}

void TestFileSystemArchive::verifyQuestion(const DialogAnswerer::Dialog &dialog,
                                           const QString &title, const QString &text)
{
    QCOMPARE(dialog.title, title);
    QCOMPARE(dialog.text, text.arg(path()));
    QCOMPARE(dialog.icon, QMessageBox::Question);
    QCOMPARE(dialog.buttons.size(), 2);
}

namespace {

const QString replaceTitle = QStringLiteral("File error!");
const QString replaceText = QStringLiteral(
    "Can't replace contents of file '%1'. Do you want to try again?\nObs.: You can delete the file "
    "and rename the temporary one manually. Seems that something is preventing the file to be "
    "replaced.");
const QString renameTitle = QStringLiteral("File rename error!");
const QString renameText = QStringLiteral(
    "Can't rename temporary file to '%1'. Do you want to try again?\nObs.: You can rename it "
    "manually. Seems that something is preventing the file to be renamed.");
const QString removeTitle = QStringLiteral("File remove error!");
const QString removeText = QStringLiteral(
    "Can't remove temporary file to '%1'. Do you want to try again?\nObs.: You can remove it "
    "manually. Seems that something is preventing the file to be removed.");

/// Ten failures, each followed by 200 ms.
constexpr qint64 questionPause = 2000;

/// Adds rows for the questions: how many Yes come in vain, and whether a last Yes, given when the
/// hindrance is gone, ends them instead of a No.
void addAnswers()
{
    QTest::addColumn<int>("vainYes");
    QTest::addColumn<bool>("lastYes");
    QTest::newRow("No") << 0 << false;
    QTest::newRow("Yes, No") << 1 << false;
    QTest::newRow("Yes when it is free") << 0 << true;
}

/// Queues the answers of such a row.
void answer(DialogAnswerer &dialogs, const std::function<void()> &setFree)
{
    QFETCH(int, vainYes);
    QFETCH(bool, lastYes);
    for (int i = 0; i < vainYes; ++i)
        dialogs.answer(QMessageBox::Yes);
    if (!lastYes) {
        dialogs.answer(QMessageBox::No);
        return;
    }
    dialogs.handle([setFree](QDialog *dialog) {
        setFree();
        QTest::mouseClick(qobject_cast<QMessageBox *>(dialog)->button(QMessageBox::Yes),
                          Qt::LeftButton);
    });
}

/// Puts a folder where a file was: no program can remove it as a file, not even root's.
void putFolderInPlaceOf(const QString &path)
{
    QVERIFY(QFile::remove(path));
    QVERIFY(QDir().mkdir(path));
}

} // namespace

void TestFileSystemArchive::heldTargetsAreAskedAbout_data()
{
    addAnswers();
}

void TestFileSystemArchive::heldTargetsAreAskedAbout()
{
    QFETCH(int, vainYes);
    QFETCH(bool, lastYes);
    QIODevice *device = openForWriting("new");
    putFolderInPlaceOf(path());

    DialogAnswerer dialogs;
    answer(dialogs, [this] { QDir().rmdir(path()); });
    QElapsedTimer timer;
    timer.start();
    QCOMPARE(m_archive.commitFile(device), lastYes);
    QCOMPARE(dialogs.dialogs.size(), vainYes + 1);
    QVERIFY(timer.elapsed() >= questionPause * dialogs.dialogs.size());
    for (const auto &dialog : qAsConst(dialogs.dialogs))
        verifyQuestion(dialog, replaceTitle, replaceText);

    // What held the name stays in place, and the temporary file is gone either way.
    QCOMPARE(list(m_archive, m_folder->path()), QStringList{target});
    QCOMPARE(QFileInfo(path()).isDir(), !lastYes);
    if (lastYes)
        QCOMPARE(read(m_archive, path()), QByteArray("new"));
}

/// The folder becomes read-only during the save: neither file can be removed, and both stay.
void TestFileSystemArchive::readOnlyFoldersAtCommitAreAskedAbout()
{
    QIODevice *device = openForWriting("new");
    const QString temporary = temporaryName();
    QVERIFY(QFile::setPermissions(m_folder->path(), QFile::Permissions(0x5555)));
    DialogAnswerer dialogs;
    {
        const OrdinaryUser user;
        if (!user.isOrdinary)
            QSKIP("can't give up the rights of root");
        dialogs.answer(QMessageBox::No);
        dialogs.answer(QMessageBox::No);
        m_archive.closeFile(device);
    }
    QVERIFY(QFile::setPermissions(m_folder->path(), QFile::Permissions(0x7777)));
    QCOMPARE(dialogs.dialogs.size(), 2);
    verifyQuestion(dialogs.dialogs[0], replaceTitle, replaceText);
    verifyQuestion(dialogs.dialogs[1], removeTitle, removeText);
    QCOMPARE(read(m_archive, path()), QByteArray("old"));
    QCOMPARE(read(m_archive, path(temporary)), QByteArray("new"));
}

void TestFileSystemArchive::failedRenamesAreAskedAbout_data()
{
    addAnswers();
}

/// Another program takes the target's name between its removal and the renaming.
void TestFileSystemArchive::failedRenamesAreAskedAbout()
{
    QFETCH(int, vainYes);
    QFETCH(bool, lastYes);
    QIODevice *device = openForWriting("new");
    const QString temporary = temporaryName();
    faults.folderInsteadOf = QFile::encodeName(path());

    DialogAnswerer dialogs;
    answer(dialogs, [this] { QDir().rmdir(path()); });
    QElapsedTimer timer;
    timer.start();
    QCOMPARE(m_archive.commitFile(device), lastYes);
    QCOMPARE(dialogs.dialogs.size(), vainYes + 1);
    QVERIFY(timer.elapsed() >= questionPause * dialogs.dialogs.size());
    for (const auto &dialog : qAsConst(dialogs.dialogs))
        verifyQuestion(dialog, renameTitle, renameText);

    // The content is never lost: after a No it stays under its own name.
    QCOMPARE(temporaryName(), lastYes ? QString() : temporary);
    QCOMPARE(read(m_archive, path(lastYes ? target : temporary)), QByteArray("new"));
}

void TestFileSystemArchive::failedDiscardsAreAskedAbout_data()
{
    addAnswers();
}

void TestFileSystemArchive::failedDiscardsAreAskedAbout()
{
    QFETCH(int, vainYes);
    QFETCH(bool, lastYes);
    QIODevice *device = openForWriting("new");
    const QString temporary = temporaryName();
    putFolderInPlaceOf(path(temporary));

    DialogAnswerer dialogs;
    answer(dialogs, [&] { QDir().rmdir(path(temporary)); });
    m_archive.discardFile(device);
    QCOMPARE(dialogs.dialogs.size(), vainYes + 1);
    for (const auto &dialog : qAsConst(dialogs.dialogs))
        verifyQuestion(dialog, removeTitle, removeText);
    QCOMPARE(temporaryName(), lastYes ? QString() : temporary);
    QCOMPARE(read(m_archive, path()), QByteArray("old"));
}

QTEST_MAIN(TestFileSystemArchive)
#include "tst_filesystemarchive.moc"
