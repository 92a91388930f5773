// SPDX-License-Identifier: MIT
#include "frame/filesystemarchive.h"
#include "savecontent.h"
#include "support/archivesuite.h"

#include <QProcess>
#include <QRandomGenerator>
#include <QTemporaryDir>

using ArchiveSuite::read;

/// A program that saves is killed at any moment: the old or the new content must then be complete
/// on the disk, under the file's own name or under a temporary one.
class TestSaveKill : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void savesSurviveAKill();

private:
    int runUntilKilled(int number, int milliseconds);
    void verifyFolder(int saved);
    int bringBack();

    QTemporaryDir m_folder;
    const QString m_path = m_folder.filePath(QStringLiteral("saved.bin"));
    int m_interrupted = 0; ///< kills that left a temporary file
    int m_missing = 0;     ///< kills that left a temporary file only
};

void TestSaveKill::initTestCase()
{
    QVERIFY(m_folder.isValid());
    auto &archive = Vela::FileSystemArchive::instance();
    QVERIFY(ArchiveSuite::write(archive, m_path, SaveContent::make(0)));
}

/// Lets the child save from a number on and kills it some time after its first save. Returns the
/// last number that the child called saved; -1 if it could not run.
int TestSaveKill::runUntilKilled(int number, int milliseconds)
{
    QProcess child;
    child.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    child.start(QCoreApplication::applicationDirPath() + QStringLiteral("/saveloop"),
                {m_path, QString::number(number)});
    if (!child.waitForReadyRead())
        return -1;
    if (child.waitForFinished(milliseconds))
        return -1;
    child.kill();
    child.waitForFinished();
    const QList<QByteArray> lines = child.readAllStandardOutput().split('\n');
    // Behind the last line end stands nothing.
    return lines.value(lines.size() - 2, "-1").toInt();
}

/// What one kill may leave: the target with the last saved content or the next one, and beside it
/// at most one temporary file, complete or not; or no target and a complete temporary file.
void TestSaveKill::verifyFolder(int saved)
{
    auto &archive = Vela::FileSystemArchive::instance();
    QStringList names = ArchiveSuite::list(archive, m_folder.path());
    const bool hasTarget = names.removeOne(QFileInfo(m_path).fileName());
    QVERIFY(names.size() <= 1);
    QVERIFY(hasTarget || names.size() == 1);
    const QString survivor = hasTarget ? m_path : m_folder.filePath(names.first());
    const int number = SaveContent::number(read(archive, survivor));
    QVERIFY2(number == saved + 1 || (hasTarget && number == saved),
             qPrintable(QStringLiteral("%1 holds %2 after save %3")
                            .arg(survivor, QString::number(number), QString::number(saved))));
    m_interrupted += names.size();
    m_missing += hasTarget ? 0 : 1;
}

/// Puts the folder in order as a user would, and returns the number that now stands in the file.
int TestSaveKill::bringBack()
{
    auto &archive = Vela::FileSystemArchive::instance();
    const QStringList names = ArchiveSuite::list(archive, m_folder.path());
    for (const QString &name : names) {
        const QString path = m_folder.filePath(name);
        if (path != m_path && (archive.fileExists(m_path) || !archive.renameFile(path, m_path)))
            archive.removeFile(path);
    }
    return SaveContent::number(read(archive, m_path));
}

void TestSaveKill::savesSurviveAKill()
{
    const quint32 seed = QRandomGenerator::global()->generate();
    QRandomGenerator random(seed);
    int number = 0;
    for (int kill = 0; kill < 200; ++kill) {
        const int milliseconds = random.bounded(60);
        const int saved = runUntilKilled(number + 1, milliseconds);
        const QByteArray moment = "seed " + QByteArray::number(seed) + ", kill "
            + QByteArray::number(kill) + " after " + QByteArray::number(milliseconds) + " ms";
        QVERIFY2(saved > number, moment.constData());
        verifyFolder(saved);
        if (QTest::currentTestFailed())
            QFAIL(moment.constData());
        number = bringBack();
    }
    // The kills hit the saves themselves, and not only the time between two of them.
    QVERIFY(m_interrupted > 20);
    QVERIFY(m_missing > 0);
    qInfo("%d kills within a save, %d of them without a file under its own name", m_interrupted,
          m_missing);
}

QTEST_GUILESS_MAIN(TestSaveKill)
#include "tst_savekill.moc"
