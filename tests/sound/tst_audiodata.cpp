// SPDX-License-Identifier: MIT
#include "sound/audiodata.h"
#include "sound/samplesound.h"
#include "support/limits_unix.h"
#include "support/recordinghost.h"

#include <QDir>
#include <QFile>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>
#include <QUndoStack>
#include <random>
#include <vector>

#if defined(__SANITIZE_ADDRESS__)
// The sanitizer's own; compilers come without its header.
extern "C" std::size_t __sanitizer_get_current_allocated_bytes();
#endif

using Vela::AudioData;
using Vela::SampleInfo;
using Vela::SoundSample;

namespace {

// Frames of 8-bit mono, one letter each.
SoundSample letters(const char *frames)
{
    const QByteArray data(frames);
    return {{1, 8, 8000, quint32(data.size())}, data};
}

void set(AudioData &audio, const char *frames, unsigned int start = 0, unsigned int end = 0)
{
    audio.setSample(letters(frames));
    audio.select(start, end);
}

// Pages of this process that are its own: the kernel counts shared ones apart. The address
// sanitizer holds back what is freed, and counts the rest itself.
qint64 privateMemory()
{
#if defined(__SANITIZE_ADDRESS__)
    return qint64(__sanitizer_get_current_allocated_bytes());
#else
    QFile file(QStringLiteral("/proc/self/statm"));
    if (!file.open(QIODevice::ReadOnly))
        return -1;
    const QList<QByteArray> pages = file.readAll().split(' ');
    return (pages.at(1).toLongLong() - pages.at(2).toLongLong()) * 4096;
#endif
}

/// What an AudioData has to be: the whole sound after each step.
struct Model
{
    std::vector<QByteArray> steps;
    std::size_t now = 0;

    void edit(const QByteArray &to)
    {
        steps.resize(++now);
        steps.push_back(to);
    }
};

} // namespace

class TestAudioData : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    // With ten frames.
    void selects_data()
    {
        QTest::addColumn<unsigned int>("start");
        QTest::addColumn<unsigned int>("end");
        QTest::addColumn<unsigned int>("expectedStart");
        QTest::addColumn<unsigned int>("expectedEnd");
        QTest::newRow("inside") << 2U << 7U << 2U << 7U;
        QTest::newRow("backwards") << 7U << 2U << 7U << 2U;
        QTest::newRow("end") << 0U << 10U << 0U << 9U;
        QTest::newRow("past the end") << 0U << 11U << 0U << 10U;
        QTest::newRow("start at the end") << 10U << 3U << 9U << 3U;
        QTest::newRow("start past the end") << 11U << 3U << 10U << 3U;
        QTest::newRow("both past the end") << 12U << 12U << 10U << 9U;
    }

    void selects()
    {
        QFETCH(unsigned int, start);
        QFETCH(unsigned int, end);
        QFETCH(unsigned int, expectedStart);
        QFETCH(unsigned int, expectedEnd);
        AudioData audio;
        set(audio, "0123456789");
        QSignalSpy spy(&audio, &AudioData::selectionChanged);
        audio.select(start, end);
        QCOMPARE(audio.selectionStart(), expectedStart);
        QCOMPARE(audio.selectionEnd(), expectedEnd);
        QCOMPARE(spy, (QList<QList<QVariant>>{{expectedStart, expectedEnd}}));
        unsigned int low = 0;
        unsigned int high = 0;
        audio.selection(low, high);
        QCOMPARE(low, qMin(expectedStart, expectedEnd));
        QCOMPARE(high, qMax(expectedStart, expectedEnd));
    }

    void nothingIsSelectedWithoutFrames()
    {
        AudioData audio;
        audio.select(3, 5);
        QCOMPARE(audio.selectionEnd(), 0U);
        QVERIFY(audio.selectedBytes().isEmpty());
        QVERIFY(!audio.replaceSelection("x")); // no form of frames is known
        audio.undo();
        audio.setSample(letters(""));
        QVERIFY(audio.replaceSelection("xy"));
        QCOMPARE(audio.data(), QByteArray("xy"));
    }

    void replaces_data()
    {
        QTest::addColumn<unsigned int>("start");
        QTest::addColumn<unsigned int>("end");
        QTest::addColumn<QByteArray>("bytes");
        QTest::addColumn<QByteArray>("expected"); // null: refused
        QTest::addColumn<int>("commands");        // in the one step; 0: it is no macro
        QTest::newRow("same length")
            << 2U << 4U << QByteArray("xy") << QByteArray("01xy456789") << 0;
        QTest::newRow("longer") << 4U << 2U << QByteArray("xyz") << QByteArray("01xyz456789") << 2;
        QTest::newRow("shorter") << 2U << 8U << QByteArray("x") << QByteArray("01x89") << 2;
        QTest::newRow("remove") << 2U << 4U << QByteArray() << QByteArray("01456789") << 0;
        QTest::newRow("remove all") << 0U << 11U << QByteArray() << QByteArray("") << 0;
        QTest::newRow("insert") << 2U << 2U << QByteArray("x") << QByteArray("01x23456789") << 0;
        QTest::newRow("insert nothing") << 2U << 2U << QByteArray() << QByteArray() << 0;
    }

    void replaces()
    {
        QFETCH(unsigned int, start);
        QFETCH(unsigned int, end);
        QFETCH(QByteArray, bytes);
        QFETCH(QByteArray, expected);
        QFETCH(int, commands);
        AudioData audio;
        set(audio, "0123456789", start, end);
        QSignalSpy spy(&audio, &AudioData::sampleChanged);
        QCOMPARE(audio.replaceSelection(bytes), !expected.isNull());
        QCOMPARE(spy.count(), expected.isNull() ? 0 : 1);
        QCOMPARE(audio.undoStack()->count(), expected.isNull() ? 0 : 1);
        if (expected.isNull())
            expected = "0123456789";
        else
            QCOMPARE(audio.undoStack()->command(0)->childCount(), commands);
        QCOMPARE(audio.data(), expected);
        QCOMPARE(audio.info().samples, quint32(expected.size()));
        QVERIFY(audio.selectionStart() <= audio.info().samples);
        QVERIFY(audio.selectionEnd() <= audio.info().samples);
        audio.undo();
        QCOMPARE(audio.data(), QByteArray("0123456789"));
        audio.redo();
        QCOMPARE(audio.data(), expected);
    }

    void takesWholeFramesOnly()
    {
        AudioData audio;
        audio.setSample({{2, 16, 8000, 3}, "abcdefghijkl"});
        QCOMPARE(audio.frameSize(), 4U);
        audio.select(1, 2);
        for (const char *bytes : {"xyz", "vwxyz"})
            QVERIFY(!audio.replaceSelection(bytes));
        audio.select(1, 1);
        QVERIFY(!audio.replaceSelection("xyz"));
        QCOMPARE(audio.data(), QByteArray("abcdefghijkl"));
        QVERIFY(!audio.undoStack()->canUndo());
        QVERIFY(audio.replaceSelection("ABCD"));
        QCOMPARE(audio.data(), QByteArray("abcdABCDefghijkl"));
    }

    // What a caller claims about a sound is not trusted.
    void takesTheFramesThatAreThere()
    {
        AudioData audio;
        QSignalSpy before(&audio, &AudioData::sampleAboutToChange);
        audio.setSample({{2, 16, 8000, 1000}, "abcdefghij"});
        QCOMPARE(before.count(), 1);
        QCOMPARE(audio.info().samples, 2U);
        QCOMPARE(audio.data(), QByteArray("abcdefgh"));
        audio.setSample({{2, 20, 8000, 1}, "abcdefghij"});
        QCOMPARE(audio.frameSize(), 6U);
        QCOMPARE(audio.data(), QByteArray("abcdef"));
        for (const SampleInfo &info : {SampleInfo{2, 12, 8000, 2}, SampleInfo{0, 16, 8000, 2}}) {
            audio.setSample({info, "abcdefghij"});
            QCOMPARE(audio.info().samples, 0U);
            QVERIFY(audio.data().isEmpty());
        }
    }

    void anotherSoundEndsTheHistory()
    {
        AudioData audio;
        set(audio, "abc", 0, 2);
        QVERIFY(audio.replaceSelection("x"));
        audio.select(1, 2);
        QSignalSpy changed(&audio, &AudioData::sampleChanged);
        QSignalSpy selected(&audio, &AudioData::selectionChanged);
        audio.setSample({{2, 16, 8000, 2}, "abcdefgh"});
        QCOMPARE(changed.count(), 1);
        QCOMPARE(selected, (QList<QList<QVariant>>{{0U, 0U}}));
        QVERIFY(!audio.undoStack()->canUndo());
        audio.undo();
        QCOMPARE(audio.data(), QByteArray("abcdefgh"));
        QCOMPARE(audio.selectionEnd(), 0U);
    }

    // The caller's copy of the data stays what it was.
    void editsItsOwnCopy()
    {
        const SoundSample sound = letters("0123456789");
        AudioData audio;
        audio.setSample(sound);
        audio.select(2, 4);
        audio.dragSelection(5);
        QVERIFY(audio.replaceSelection("xy"));
        QCOMPARE(sound.data, QByteArray("0123456789"));
    }

    void moves_data()
    {
        QTest::addColumn<unsigned int>("position");
        QTest::addColumn<QByteArray>("expected");
        QTest::newRow("right") << 4U << QByteArray("0145236789");
        QTest::newRow("by one") << 3U << QByteArray("0142356789");
        QTest::newRow("left") << 0U << QByteArray("2301456789");
        QTest::newRow("to the end") << 8U << QByteArray("0145678923");
        QTest::newRow("past the end") << 100U << QByteArray("0145678923");
        QTest::newRow("nowhere") << 2U << QByteArray("0123456789");
    }

    // Dragged there on a way round, or at once.
    void moves()
    {
        QFETCH(unsigned int, position);
        QFETCH(QByteArray, expected);
        for (const bool dragged : {true, false}) {
            AudioData audio;
            set(audio, "0123456789", 2, 4);
            QSignalSpy spy(&audio, &AudioData::sampleChanged);
            if (dragged) {
                for (unsigned int to : {7U, 1U, 0U, 8U, position}) {
                    audio.dragSelection(to);
                    QCOMPARE(audio.selectedBytes(), QByteArray("23"));
                }
                QCOMPARE(audio.data(), expected);
                QCOMPARE(spy.count(), 0);
            }
            audio.moveSelection(position);
            QCOMPARE(audio.data(), expected);
            QCOMPARE(audio.selectedBytes(), QByteArray("23"));
            const int steps = expected == "0123456789" ? 0 : 1;
            QCOMPARE(audio.undoStack()->count(), steps);
            QCOMPARE(spy.count(), steps);
            audio.undo();
            QCOMPARE(audio.data(), QByteArray("0123456789"));
            audio.redo();
            QCOMPARE(audio.data(), expected);
        }
    }

    // Whatever comes in the middle of a drag meets the sound that its steps know.
    void dragEndsBeforeOtherWork()
    {
        AudioData audio;
        set(audio, "0123456789", 2, 4);
        QVERIFY(audio.replaceSelection("xyz")); // 01xyz456789
        audio.select(0, 2);
        audio.dragSelection(6);
        audio.undo();
        QCOMPARE(audio.data(), QByteArray("0123456789"));
        audio.dragSelection(6);
        audio.redo();
        QCOMPARE(audio.data(), QByteArray("01xyz456789"));
        audio.dragSelection(6);
        audio.select(0, 1);
        QCOMPARE(audio.data(), QByteArray("01xyz456789"));
        audio.dragSelection(3);
        QVERIFY(audio.replaceSelection(QByteArray()));
        QCOMPARE(audio.data(), QByteArray("1xyz456789"));
    }

    void randomEdits_data()
    {
        QTest::addColumn<int>("cacheType");
        QTest::newRow("memory") << 1;
        QTest::newRow("disk") << 2;
    }

    void randomEdits()
    {
        QFETCH(int, cacheType);
        RecordingHost host;
        host.options.insert(QStringLiteral("cache_type"), cacheType);
        AudioData audio;
        std::mt19937 random(7);
        const auto below = [&](int limit) { return int(random() % unsigned(limit)); };
        SoundSample sound = SampleSound::noise({2, 24, 44100, 200});
        audio.setSample(sound);
        Model model = {{sound.data}, 0};
        // Follows the parts that are said to have changed.
        QByteArray followed = sound.data;
        bool whole = true;
        connect(&audio, &AudioData::framesReplaced, &audio,
                [&](unsigned int from, unsigned int removed, unsigned int inserted) {
                    followed.replace(int(from * 6), int(removed * 6),
                                     QByteArray(int(inserted * 6), '?'));
                });
        connect(&audio, &AudioData::sampleChanged, &audio, [&] {
            whole = whole && followed.size() == audio.data().size();
            for (int i = 0; i < followed.size(); ++i)
                whole = whole && (followed.at(i) == '?' || followed.at(i) == audio.data().at(i));
            followed = audio.data();
        });

        for (int i = 0; i < 5000; ++i) {
            const int frames = int(audio.info().samples);
            const int choice = below(10);
            if (choice < 2 && model.now > 0) {
                audio.undo();
                --model.now;
            } else if (choice < 4 && model.now + 1 < model.steps.size()) {
                audio.redo();
                ++model.now;
            } else {
                const int start = frames > 0 ? below(frames) : 0;
                const int end = frames > 0 ? qMin(start + below(40), frames - 1) : 0;
                audio.select(unsigned(end), unsigned(start));
                QByteArray expected = model.steps[model.now];
                const int position = start * 6;
                const int length = (end - start) * 6;
                if (choice == 9) {
                    const QByteArray moved = expected.mid(position, length);
                    const int to = below(frames + 1);
                    expected.remove(position, length);
                    expected.insert(qMin(to * 6, expected.size()), moved);
                    audio.moveSelection(unsigned(to));
                } else {
                    const int kept = choice == 8 ? end - start : frames > 400 ? 0 : below(60);
                    QByteArray bytes(kept * 6, Qt::Uninitialized);
                    for (char &byte : bytes)
                        byte = char(random());
                    expected.replace(position, length, bytes);
                    audio.replaceSelection(bytes);
                }
                if (audio.undoStack()->index() != int(model.now))
                    model.edit(expected);
            }
            QCOMPARE(audio.undoStack()->index(), int(model.now));
            QCOMPARE(audio.undoStack()->count(), int(model.steps.size()) - 1);
            if (audio.data() != model.steps[model.now] || !whole)
                QFAIL(qPrintable(QStringLiteral("step %1").arg(i)));
        }
        while (audio.undoStack()->canUndo())
            audio.undo();
        QCOMPARE(audio.data(), sound.data);
        while (audio.undoStack()->canRedo())
            audio.redo();
        QCOMPARE(audio.data(), model.steps.back());
    }

    // 600 edits of 200 kB.
    void historyIsNotInMemory()
    {
        RecordingHost host;
        host.options.insert(QStringLiteral("cache_type"), 2);
        AudioData audio;
        audio.setSample(SampleSound::noise({2, 16, 44100, 500000}));
        const QByteArray bytes = SampleSound::noise({2, 16, 44100, 50000}).data;
        const auto edit = [&](unsigned int i) {
            audio.select(i * 100, i * 100 + 50000 + i % 2);
            audio.replaceSelection(bytes);
        };
        edit(0);
        edit(1);
        const qint64 before = privateMemory();
        for (unsigned int i = 2; i < 600; ++i)
            edit(i);
        QCOMPARE(audio.undoStack()->count(), 600);
        QVERIFY(privateMemory() - before < 8 << 20);
        for (int i = 0; i < 100; ++i)
            audio.undo();
        QVERIFY(privateMemory() - before < 8 << 20);
    }

    // Bytes that the disk does not take stay in memory.
    void fullDiskLosesNothing()
    {
        RecordingHost host;
        host.options.insert(QStringLiteral("cache_type"), 2);
        AudioData audio;
        const SoundSample sound = SampleSound::noise({1, 16, 44100, 100000});
        audio.setSample(sound);
        audio.select(0, 90000);
        {
            const FullDisk limit(4096);
            QVERIFY(audio.replaceSelection(QByteArray()));
            QCOMPARE(audio.data(), sound.data.mid(180000));
            audio.undo();
            QCOMPARE(audio.data(), sound.data);
            audio.redo();
        }
        audio.undo();
        QCOMPARE(audio.data(), sound.data);
    }

    // The steps before still fit, then.
    void whatTheDiskHasLostIsSilence()
    {
        const QTemporaryDir folder;
        const QByteArray usual = qgetenv("TMPDIR");
        qputenv("TMPDIR", QFile::encodeName(folder.path()));
        RecordingHost host;
        host.options.insert(QStringLiteral("cache_type"), 2);
        AudioData narrow;
        AudioData wide;
        qputenv("TMPDIR", usual);
        narrow.setSample({{1, 8, 8000, 4}, "abcd"});
        wide.setSample({{1, 16, 8000, 4}, "abcdefgh"});
        for (AudioData *const audio : {&narrow, &wide}) {
            audio->select(0, 2);
            QVERIFY(audio->replaceSelection(QByteArray()));
        }
        const QFileInfoList files = QDir(folder.path()).entryInfoList(QDir::Files);
        QCOMPARE(files.size(), 2);
        for (const QFileInfo &file : files)
            QVERIFY(QFile::resize(file.filePath(), 0));
        narrow.undo();
        QCOMPARE(narrow.data(),
                 QByteArray("\x80\x80"
                            "cd"));
        wide.undo();
        QCOMPARE(wide.data(), QByteArray("\0\0\0\0efgh", 8));
    }

    // The undo stack tells of its steps in the middle of an edit.
    void dataIsWholeAtAnyTime()
    {
        AudioData audio;
        set(audio, "0123456789", 2, 6);
        QList<QByteArray> seen;
        const auto look = [&] { seen.append(audio.data()); };
        connect(audio.undoStack(), &QUndoStack::indexChanged, &audio, look);
        connect(&audio, &AudioData::framesReplaced, &audio, look);
        QVERIFY(audio.replaceSelection("xy"));
        QCOMPARE(seen, (QList<QByteArray>{"016789", "01xy6789", "01xy6789"}));
        audio.undo();
        QCOMPARE(seen.mid(3), (QList<QByteArray>{"016789", "0123456789", "0123456789"}));
        disconnect(&audio, nullptr, &audio, nullptr);
        seen.clear();
        audio.select(0, 0);
        audio.undoStack()->beginMacro(QString());
        for (const char *bytes : {"xyz", "vw"}) {
            audio.select(1, 2);
            QVERIFY(audio.replaceSelection(bytes));
        }
        audio.undoStack()->endMacro();
        audio.undo();
        QCOMPARE(seen, (QList<QByteArray>{"0vwyz23456789", "0123456789"}));
    }

    void moreThanMemoryTakesIsRefused()
    {
        AudioData audio;
        // The same bytes count as the sound's and as the new ones, and are not touched.
        const QByteArray large(1 << 30, Qt::Uninitialized);
        audio.setSample({{8, 32, 192000, 1U << 25}, large});
        QCOMPARE(audio.info().samples, 1U << 25);
        QVERIFY(!audio.replaceSelection(large));
        QVERIFY(!audio.undoStack()->canUndo());
        QCOMPARE(audio.data().constData(), large.constData());
    }
};

QTEST_GUILESS_MAIN(TestAudioData)
#include "tst_audiodata.moc"
