// SPDX-License-Identifier: MIT
#include "studio/windowfixture.h"

#include "studio/window/structuredock.h"
#include "studio/window/textplaces.h"

#include <QElapsedTimer>
#include <QProgressBar>

#include <limits>

using namespace Studio;

namespace {

constexpr int FileCount = 5000;
constexpr int AnimationCount = 10000;
constexpr qint64 LongestSilence = 100; // ms
constexpr int Rounds = 4;

/// A game of many scripts in equal projects, each of which has one message.
void writeLargeGame(const QString &folder, int projects)
{
    QByteArray game = "[game]\nname = Large\n[projects]\n";
    for (int project = 0; project < projects; ++project) {
        const QString name = QStringLiteral("part%1").arg(project);
        QByteArray main = "[project]\nname = Part\nkind = shared\n[files]\n";
        for (int i = 0; i < FileCount / projects; ++i) {
            const QString script = QStringLiteral("folder%1/script%2.script").arg(i / 50).arg(i);
            main += "scripts = " + script.toUtf8() + '\n';
            SmallGame::writeFile(folder + QLatin1Char('/') + name + QLatin1Char('/') + script,
                                 "[script s]\nat 1 wait " + QByteArray::number(i) + '\n');
        }
        main += "banana = " + QByteArray::number(project) + '\n';
        SmallGame::writeFile(QStringLiteral("%1/%2/%2.lantern").arg(folder, name), main);
        game += "open = " + name.toUtf8() + '/' + name.toUtf8() + ".lantern\n";
    }
    SmallGame::writeFile(folder + QStringLiteral("/game.lantern"), game);
}

/// Measures the longest time that the event loop did not come round.
class Heartbeat : public QObject
{
public:
    Heartbeat()
    {
        m_time.start();
        connect(&m_timer, &QTimer::timeout, this, [this] { beat(); });
        m_timer.start(0);
    }

    void beat()
    {
        longest = qMax(longest, m_time.restart());
    }

    qint64 longest = 0;

private:
    QElapsedTimer m_time;
    QTimer m_timer;
};

} // namespace

class TestWindowLoad : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void largeProjectLeavesTheWindowAwake_data();
    void largeProjectLeavesTheWindowAwake();
    void typingInALargeTextLeavesTheWindowAwake();

private:
    qint64 longestSilence(int projects);
};

void TestWindowLoad::largeProjectLeavesTheWindowAwake_data()
{
    QTest::addColumn<int>("projects");
    QTest::newRow("many projects") << 10;
    QTest::newRow("one project") << 1;
}

void TestWindowLoad::largeProjectLeavesTheWindowAwake()
{
    QFETCH(int, projects);
    // Another program can hold up this one at any time: the best of several rounds counts.
    qint64 silence = std::numeric_limits<qint64>::max();
    for (int round = 0; round < Rounds && silence > LongestSilence; ++round) {
        const qint64 longest = longestSilence(projects);
        QVERIFY(!QTest::currentTestFailed());
        qInfo("The longest silence was %lld ms.", longest);
        silence = qMin(silence, longest);
    }
    QVERIFY2(silence <= LongestSilence, qPrintable(QString::number(silence)));
}

/// Opens a large project, reads all of it and walks through its tree.
qint64 TestWindowLoad::longestSilence(int projects)
{
    const auto fail = [](const char *what) {
        QTest::qFail(what, __FILE__, __LINE__);
        return qint64(0);
    };
    WindowFixture f;
    // As in the program: it lets events through while a project opens.
    f.host->setProgressProvider(std::make_unique<DialogProgress>([&f] { return f.window.get(); }));
    const QString folder = f.path(QStringLiteral("large"));
    writeLargeGame(folder, projects);
    if (!QTest::qWaitForWindowActive(f.window.get()))
        return fail("the window does not come up");

    Heartbeat heart;
    if (!f.window->openProject(folder))
        return fail("the project does not open");
    const auto *progress = f.find<QProgressBar>("readProgress");
    const QAbstractItemModel *messages = f.find<QTreeView>("messages")->model();
    if (!QTest::qWaitFor([&] { return progress->isVisible(); })
        || !QTest::qWaitFor([&] { return progress->isHidden(); }, 60000)
        || !QTest::qWaitFor([&] { return messages->rowCount() == projects; }))
        return fail("the files are not read to the end");
    if (f.window->files().count() <= FileCount)
        return fail("files are missing");

    auto *tree = f.find<QTreeView>("projectTree");
    tree->expandAll();
    tree->scrollToBottom();
    if (!f.clickFile(QStringLiteral("part0/folder9/script499.script")))
        return fail("a file cannot be chosen");
    QCoreApplication::processEvents();
    return heart.longest;
}

// The tree and the messages, of which there is one in each animation, follow each key.
void TestWindowLoad::typingInALargeTextLeavesTheWindowAwake()
{
    WindowFixture f;
    QByteArray lines;
    for (int i = 0; i < AnimationCount; ++i)
        lines += "[animation a" + QByteArray::number(i) + "]\nframe idle : 8\nbanana\n";
    QVERIFY(SmallGame::writeFile(f.inMeadow("rowan/rowan.motion"), lines));
    QVERIFY(QTest::qWaitForWindowActive(f.window.get()));
    QVERIFY(f.window->openProject(f.meadow()));
    QVERIFY(f.clickFile(QStringLiteral("rowan/rowan.motion")));
    const QAbstractItemModel *messages = f.find<QTreeView>("messages")->model();
    QTRY_VERIFY_WITH_TIMEOUT(messages->rowCount() >= AnimationCount, 60000);
    f.find<StructureDock>("structureDock")->raise();
    auto *text = f.find<QPlainTextEdit>("codeEditor");
    Studio::goToPlace(*text, lines.count('\n') / 2, 0);
    QCoreApplication::processEvents();

    qint64 silence = std::numeric_limits<qint64>::max();
    for (int round = 0; round < Rounds && silence > LongestSilence; ++round) {
        Heartbeat heart;
        for (int key = 0; key < 40; ++key) {
            QTest::keyClick(text, key % 8 == 7 ? Qt::Key_Return : Qt::Key_X);
            QTest::qWait(20);
        }
        qInfo("The longest silence was %lld ms.", heart.longest);
        silence = qMin(silence, heart.longest);
    }
    QVERIFY2(silence <= LongestSilence, qPrintable(QString::number(silence)));
}

QTEST_MAIN(TestWindowLoad)
#include "tst_windowload.moc"
