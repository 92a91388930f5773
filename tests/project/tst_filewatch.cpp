// SPDX-License-Identifier: MIT
#include "frame/filesystemarchive.h"
#include "project/filewatchobject.h"
#include "support/dialoganswerer.h"
#include "support/memoryarchive.h"
#include "support/recordinghost.h"

#include <QAbstractButton>
#include <QFile>
#include <QTemporaryDir>
#include <QtTest>
#include <functional>
#include <memory>

using namespace Vela;

namespace {

const QString enableKey = QStringLiteral("enable_file_watcher");
const QString askKey = QStringLiteral("showmsg_reload_file");

/// The changes that the watcher has met, taken from its debug log: they show that a change was
/// dealt with where nothing else is to be seen.
QStringList changesMet;

void noteChanges(QtMsgType type, const QMessageLogContext &, const QString &message)
{
    if (type == QtDebugMsg && message.startsWith(QLatin1String("File modified:")))
        changesMet.append(message.section(QLatin1Char('"'), 1, 1));
    else
        fprintf(stderr, "%s\n", qPrintable(message));
}

Archive &disk()
{
    return FileSystemArchive::instance();
}

/// A document that is read, written and renamed as the library's own are.
class Document : public FileWatchObject
{
public:
    explicit Document(const QString &path = QString())
    {
        if (!path.isEmpty())
            load(disk(), path, false);
    }

    void load(Archive &archive, const QString &path, bool copy)
    {
        fileLoaded(archive, path, copy);
        if (!copy)
            name = path;
    }

    void save(const QString &path, bool copy = false)
    {
        QIODevice *const device = disk().openFile(path, QIODevice::WriteOnly);
        fileSaved(disk(), path, copy);
        device->write("saved\n");
        disk().closeFile(device);
        if (!copy)
            name = path;
    }

    QString watchedFileName() const override
    {
        return name;
    }
    void reload() override
    {
        ++reloads;
        // A copy, because it may end this document.
        const std::function<void()> act = onReload;
        if (act)
            act();
    }

    QString name;
    int reloads = 0;
    std::function<void()> onReload;
};

} // namespace

class tst_FileWatch : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();
    void cleanup();
    void cleanupTestCase();

    void changeReloadsWithoutHost();
    void settingDecides_data();
    void settingDecides();
    void questionNamesFile();
    void ownSaveIsLeftOut();
    void newFileIsWatchedFromItsFirstSave();
    void copyChangesNothing();
    void removedFileIsWatchedAgainOnceSaved();
    void replacedFileStaysWatched();
    void disabledWatcherKeepsIgnoreFlags();
    void pauseSkipsOneChange();
    void changeDuringPauseIsNotMetAfterIt();
    void pathIsDroppedWithItsLastObject();
    void documentMovesBetweenFiles();
    void otherArchiveIsNotWatched();
    void failedLoadLeavesOneWatch();
    void changeDuringQuestionAsksOnce();
    void documentDiesDuringQuestion();
    void documentLeavesFileDuringQuestion();
    void allDocumentsDieDuringQuestion();
    void documentDiesInReloadOfAnother();
    void lastDocumentEndsItselfInReload();

private:
    QString path(const char *name) const;
    void write(const QString &file) const;
    /// Changes a file as another program does, and waits until the watcher has dealt with it.
    void change(const QString &file) const;

    std::unique_ptr<QTemporaryDir> folder;
    std::unique_ptr<RecordingHost> host;
    QString file;
};

QString tst_FileWatch::path(const char *name) const
{
    return folder->filePath(QString::fromLatin1(name));
}

void tst_FileWatch::write(const QString &name) const
{
    QFile device(name);
    QVERIFY(device.open(QIODevice::WriteOnly | QIODevice::Append));
    device.write("more\n");
}

void tst_FileWatch::change(const QString &name) const
{
    const int met = changesMet.count(name);
    write(name);
    QTRY_COMPARE(changesMet.count(name), met + 1);
}

void tst_FileWatch::initTestCase()
{
    qInstallMessageHandler(noteChanges);
}

void tst_FileWatch::cleanupTestCase()
{
    qInstallMessageHandler(nullptr);
}

void tst_FileWatch::init()
{
    folder = std::make_unique<QTemporaryDir>();
    host = std::make_unique<RecordingHost>();
    host->options.insert(enableKey, true);
    changesMet.clear();
    file = path("file.txt");
    write(file);
}

void tst_FileWatch::cleanup()
{
    host.reset();
    folder.reset();
}

void tst_FileWatch::changeReloadsWithoutHost()
{
    host.reset();
    Document document(file);
    change(file);
    QCOMPARE(document.reloads, 1);
}

void tst_FileWatch::settingDecides_data()
{
    QTest::addColumn<QVariant>("enabled");
    QTest::addColumn<QVariant>("ask");
    QTest::addColumn<int>("answer"); // NoButton: no question
    QTest::addColumn<int>("reloads");
    const int none = QMessageBox::NoButton;
    const int yes = QMessageBox::Yes;
    const int no = QMessageBox::No;
    QTest::newRow("on, never asked") << QVariant(true) << QVariant() << none << 1;
    QTest::newRow("on, always") << QVariant(true) << QVariant(1) << none << 1;
    QTest::newRow("on, never") << QVariant(true) << QVariant(2) << none << 0;
    QTest::newRow("on, ask, yes") << QVariant(true) << QVariant(0) << yes << 1;
    QTest::newRow("on, ask, no") << QVariant(true) << QVariant(0) << no << 0;
    QTest::newRow("off") << QVariant(false) << QVariant(1) << none << 0;
    QTest::newRow("unset") << QVariant() << QVariant(1) << none << 0;
}

void tst_FileWatch::settingDecides()
{
    QFETCH(QVariant, enabled);
    QFETCH(QVariant, ask);
    QFETCH(int, answer);
    QFETCH(int, reloads);

    host->options.clear();
    if (enabled.isValid())
        host->options.insert(enableKey, enabled);
    if (ask.isValid())
        host->options.insert(askKey, ask);
    DialogAnswerer user;
    if (answer != QMessageBox::NoButton)
        user.answer(static_cast<QMessageBox::StandardButton>(answer));

    Document first(file);
    Document second(file);
    change(file);
    QCOMPARE(first.reloads, reloads);
    QCOMPARE(second.reloads, reloads);
    QVERIFY2(user.isDone(), qPrintable(user.unexpected.join(QLatin1Char('\n'))));
}

void tst_FileWatch::questionNamesFile()
{
    host->options.insert(askKey, 0);
    DialogAnswerer user;
    user.answer(QMessageBox::No);
    Document document(file);
    change(file);

    QCOMPARE(user.dialogs.size(), 1);
    const DialogAnswerer::Dialog &question = user.dialogs.first();
    QCOMPARE(question.title, QStringLiteral("File modified"));
    QCOMPARE(question.text,
             QStringLiteral("The file '%1' has been modified. Do you want to reload all other "
                            "instances of this file now?")
                 .arg(file));
    QCOMPARE(question.defaultButton, QMessageBox::Yes);
}

void tst_FileWatch::ownSaveIsLeftOut()
{
    Document writer(file);
    Document reader(file);
    writer.save(file);
    QTRY_COMPARE(reader.reloads, 1);
    QCOMPARE(writer.reloads, 0);

    change(file);
    QCOMPARE(writer.reloads, 1);
    QCOMPARE(reader.reloads, 2);
}

void tst_FileWatch::newFileIsWatchedFromItsFirstSave()
{
    const QString fresh = path("new/file.txt");
    Document document;
    document.save(fresh);
    QTRY_COMPARE(changesMet.count(fresh), 1);
    QCOMPARE(document.reloads, 0);
    change(fresh);
    QCOMPARE(document.reloads, 1);
}

void tst_FileWatch::copyChangesNothing()
{
    const QString other = path("copy.txt");
    write(other);
    Document document(file);
    Document onOther(other);
    document.load(disk(), other, true);
    document.save(other, true);
    QTRY_COMPARE(onOther.reloads, 1);
    QCOMPARE(document.reloads, 0);

    change(file);
    QCOMPARE(document.reloads, 1);
}

void tst_FileWatch::removedFileIsWatchedAgainOnceSaved()
{
    host->options.insert(askKey, 0);
    DialogAnswerer user;
    Document writer(file);
    Document reader(file);
    QFile::remove(file);
    QTRY_COMPARE(changesMet.count(file), 1);

    // Somebody else makes it again: nobody looks any more.
    const QString sentinel = path("sentinel.txt");
    write(sentinel);
    Document other(sentinel);
    host->options.insert(askKey, 1);
    write(file);
    change(sentinel);
    QCOMPARE(changesMet.count(file), 1);

    QFile::remove(file);
    writer.save(file);
    QTRY_COMPARE(reader.reloads, 1);
    QCOMPARE(writer.reloads, 0);
    change(file);
    QCOMPARE(writer.reloads, 1);
    QCOMPARE(reader.reloads, 2);
}

void tst_FileWatch::replacedFileStaysWatched()
{
    Document document(file);
    for (int round = 1; round <= 3; ++round) {
        QIODevice *const device = disk().openFile(file, QIODevice::WriteOnly);
        QVERIFY(device);
        device->write("replaced\n");
        disk().closeFile(device);
        QTRY_COMPARE(document.reloads, round);
    }
}

void tst_FileWatch::disabledWatcherKeepsIgnoreFlags()
{
    Document document(file);
    document.pauseWatch(true);
    host->options.insert(enableKey, false);
    change(file);
    QCOMPARE(document.reloads, 0);

    host->options.insert(enableKey, true);
    change(file);
    QCOMPARE(document.reloads, 0);
    change(file);
    QCOMPARE(document.reloads, 1);
}

void tst_FileWatch::pauseSkipsOneChange()
{
    Document document(file);
    document.pauseWatch(true);
    change(file);
    QCOMPARE(document.reloads, 0);
    change(file);
    QCOMPARE(document.reloads, 1);

    document.pauseWatch(true);
    document.pauseWatch(false);
    change(file);
    QCOMPARE(document.reloads, 2);
}

/// A restored backup replaces the file and has it read again, all within one event; the watcher
/// hears of it only after the pause.
void tst_FileWatch::changeDuringPauseIsNotMetAfterIt()
{
    host->options.insert(askKey, 0);
    DialogAnswerer user;
    Document document(file);
    document.pauseWatch(true);
    QIODevice *const device = disk().openFile(file, QIODevice::WriteOnly);
    QVERIFY(device && device->write("restored\n") > 0);
    disk().closeFile(device);
    document.load(disk(), file, false);
    document.pauseWatch(false);
    QTRY_COMPARE(changesMet.count(file), 1);
    QCOMPARE(document.reloads, 0);
    QVERIFY(user.dialogs.isEmpty());

    host->options.insert(askKey, 1);
    change(file);
    QCOMPARE(document.reloads, 1);
}

void tst_FileWatch::pathIsDroppedWithItsLastObject()
{
    const QString sentinel = path("sentinel.txt");
    write(sentinel);
    Document other(sentinel);
    auto first = std::make_unique<Document>(file);
    auto second = std::make_unique<Document>(file);

    first.reset();
    change(file);
    QCOMPARE(second->reloads, 1);

    second.reset();
    write(file);
    change(sentinel);
    QCOMPARE(changesMet.count(file), 1);
}

void tst_FileWatch::documentMovesBetweenFiles()
{
    const QString target = path("target.txt");
    write(target);
    Document document(file);
    document.load(disk(), target, false);
    write(file);
    change(target);
    QCOMPARE(changesMet, QStringList(target));
    QCOMPARE(document.reloads, 1);

    // An empty name ends the watch.
    Document sentinel(file);
    document.load(disk(), QString(), false);
    write(target);
    change(file);
    QCOMPARE(document.reloads, 1);
    QCOMPARE(sentinel.reloads, 1);
}

void tst_FileWatch::otherArchiveIsNotWatched()
{
    MemoryArchive archive;
    Document sentinel(file);
    Document fromArchive;
    fromArchive.load(archive, file, false);
    Document leftDisk(file);
    leftDisk.load(archive, file, false);
    change(file);
    QCOMPARE(fromArchive.reloads, 0);
    QCOMPARE(leftDisk.reloads, 0);
    QCOMPARE(sentinel.reloads, 1);

    // Back on the disk it counts once.
    leftDisk.load(disk(), file, false);
    change(file);
    QCOMPARE(leftDisk.reloads, 1);
}

/// A load announces the file that it then cannot read; the document keeps its name and is loaded
/// again from the old one, which another document still watches.
void tst_FileWatch::failedLoadLeavesOneWatch()
{
    const QString unreadable = path("unreadable.txt");
    write(unreadable);
    Document other(file);
    auto document = std::make_unique<Document>(file);
    document->fileLoaded(disk(), unreadable, false);
    document->load(disk(), file, false);

    change(file);
    QCOMPARE(document->reloads, 1);
    document.reset();
    write(unreadable);
    change(file);
    QCOMPARE(changesMet.count(unreadable), 0);
    QCOMPARE(other.reloads, 2);
}

void tst_FileWatch::changeDuringQuestionAsksOnce()
{
    host->options.insert(askKey, 0);
    DialogAnswerer user;
    user.handle([this](QDialog *dialog) {
        change(file);
        qobject_cast<QMessageBox *>(dialog)->button(QMessageBox::Yes)->click();
    });
    Document document(file);
    write(file);
    QTRY_COMPARE(document.reloads, 1);
    QCOMPARE(user.dialogs.size(), 1);
    QCOMPARE(changesMet.count(file), 2);

    // The next change asks again.
    user.answer(QMessageBox::Yes);
    change(file);
    QCOMPARE(document.reloads, 2);
}

void tst_FileWatch::documentDiesDuringQuestion()
{
    host->options.insert(askKey, 0);
    Document stays(file);
    auto goes = std::make_unique<Document>(file);
    DialogAnswerer user;
    user.handle([&goes](QDialog *dialog) {
        goes.reset();
        qobject_cast<QMessageBox *>(dialog)->button(QMessageBox::Yes)->click();
    });
    write(file);
    QTRY_COMPARE(stays.reloads, 1);
    QVERIFY(!goes);
}

void tst_FileWatch::documentLeavesFileDuringQuestion()
{
    const QString target = path("target.txt");
    write(target);
    host->options.insert(askKey, 0);
    Document leaves(file);
    Document stays(file);
    DialogAnswerer user;
    user.handle([&](QDialog *dialog) {
        leaves.load(disk(), target, false);
        qobject_cast<QMessageBox *>(dialog)->button(QMessageBox::Yes)->click();
    });
    write(file);
    QTRY_COMPARE(stays.reloads, 1);
    QCOMPARE(leaves.reloads, 0);
}

void tst_FileWatch::allDocumentsDieDuringQuestion()
{
    host->options.insert(askKey, 0);
    auto document = std::make_unique<Document>(file);
    DialogAnswerer user;
    user.handle([&document](QDialog *dialog) {
        document.reset();
        qobject_cast<QMessageBox *>(dialog)->button(QMessageBox::Yes)->click();
    });
    write(file);
    QTRY_VERIFY(!document);

    host->options.insert(askKey, 1);
    Document next(file);
    change(file);
    QCOMPARE(next.reloads, 1);
}

void tst_FileWatch::documentDiesInReloadOfAnother()
{
    Document first(file);
    auto second = std::make_unique<Document>(file);
    first.onReload = [&second] { second.reset(); };
    change(file);
    QCOMPARE(first.reloads, 1);
    QVERIFY(!second);
    change(file);
    QCOMPARE(first.reloads, 2);
}

void tst_FileWatch::lastDocumentEndsItselfInReload()
{
    Document *document = new Document(file);
    document->onReload = [&document] {
        delete document;
        document = nullptr;
    };
    write(file);
    QTRY_VERIFY(!document);
}

QTEST_MAIN(tst_FileWatch)
#include "tst_filewatch.moc"
