// SPDX-License-Identifier: MIT
#include "studio/colors.h"
#include "studio/controls.h"
#include "studio/settings.h"
#include "studio/window/fileview.h"
#include "studio/window/settingsdialog.h"
#include "studio/window/soundruler.h"
#include "studio/window/soundsview.h"
#include "studio/window/soundview.h"
#include "studio/window/soundwaveform.h"
#include "studio/window/soundwords.h"
#include "studio/windowfixture.h"

#include "engine/engine.h"
#include "engine/engineextension.h"
#include "engine/extensionmanager.h"
#include "frame/filesystemarchive.h"
#include "project/project.h"
#include "sound/samplesound.h"
#include "sound/sound.h"
#include "sound/soundformats.h"
#include "sound/sounds.h"

#include <QLabel>
#include <QPainter>
#include <QScrollBar>
#include <QToolButton>
#include <QWheelEvent>

using SampleSound::tones;
using Studio::timeWords;
using Selection = QPair<quint32, quint32>;

namespace {

constexpr quint32 rate = 8000;
constexpr quint32 longest = 10 * rate;
const char soundsName[] = "rowan/test.sounds";
const char waveName[] = "rowan/long.wav";
const char brokenName[] = "rowan/broken.flac";

/// Writes a file of sounds as the engine does.
bool writeSounds(const QString &name)
{
    const auto &extensions = Vela::ExtensionManager::list(Vela::Extension::EngineProvider);
    Vela::Engine *engine = static_cast<Vela::EngineExtension *>(extensions.value(0))->engine();
    Vela::ProjectFile *file = engine->createFile(Vela::Project::Sounds, nullptr);
    auto *sounds = dynamic_cast<Vela::Sounds *>(file);
    const auto add = [sounds](const char *identifier, const Vela::SoundSample &sample) {
        sounds->add(QString::fromUtf8(identifier), sample, Vela::ShareMode::Share);
    };
    add("bell", tones(2, 44100, 103635));
    add("my step", tones(1, rate, rate));
    add("nothing", {});
    add("wind", tones(1, 22050, 2205));
    const bool written = file->toFile(Vela::FileSystemArchive::instance(), name, 0, nullptr);
    file->release();
    return written;
}

/// Puts the files that the tests look at into the meadow, and their names into a main file.
bool writeFiles(const WindowFixture &f)
{
    QFile text(f.inMeadow("rowan/rowan.lantern"));
    QFile wave(f.inMeadow(waveName));
    return text.open(QIODevice::Append) && text.write("\n[files]\nsounds = test.sounds\n") > 0
        && text.write("sounds = long.wav\nsounds = broken.flac\n") > 0
        && Vela::saveSound(&wave, "WAV", tones(2, rate, longest))
        && SmallGame::writeFile(f.inMeadow(brokenName), "fLaC but no more of it")
        && writeSounds(f.inMeadow(soundsName));
}

} // namespace

class TestSoundsView : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        f = std::make_unique<WindowFixture>();
        QVERIFY(writeFiles(*f));
    }

    void cleanup()
    {
        f.reset();
    }

    void listShowsAllAndTheChosenOne()
    {
        show(soundsName);
        QCOMPARE(rows(),
                 (QStringList{QStringLiteral("bell|0:02.350|44.1 kHz, 16 bits, stereo"),
                              QStringLiteral("my step|0:01.000|8 kHz, 16 bits, mono"),
                              QStringLiteral("nothing|0:00.000|empty"),
                              QStringLiteral("wind|0:00.100|22.05 kHz, 16 bits, mono")}));
        QCOMPARE(f->find<QLabel>("fileNote")->text(), QStringLiteral("Sounds: 4"));
        f->press(Qt::Key_End);
        const auto *sounds = f->window->findChild<Studio::SoundsView *>();
        QCOMPARE(sounds->currentSound()->index(), 3u);
        QCOMPARE(f->window->view().propertyItem(), sounds->currentSound());
        QTRY_COMPARE(wave()->audio().info().samples, 2205u);
        f->press(Qt::Key_Up);
        QTRY_COMPARE(wave()->words(), QStringLiteral("The sound is empty."));
        // The list has the key that plays, too, also while the sound is not decoded yet.
        f->press(Qt::Key_Home);
        f->press(Qt::Key_Space);
        QVERIFY(view()->playback().isPlaying());
        QCOMPARE(wave()->audio().info().samples, 103635u);
        f->press(Qt::Key_Space);
        QVERIFY(!view()->playback().isPlaying());
    }

    void longSoundsOfAFileComeLater()
    {
        show(soundsName);
        auto *sounds = f->window->findChild<Studio::SoundsView *>()->currentSound()->parent();
        const Vela::SoundSample first = tones(2, 44100, 600000);
        const Vela::SoundSample second = tones(1, 44100, 1200000);
        sounds->add(QStringLiteral("zz first"), first, Vela::ShareMode::Share);
        sounds->add(QStringLiteral("zz second"), second, Vela::ShareMode::Share);
        list()->setCurrentIndex(list()->model()->index(4, 0));
        QTRY_COMPARE(wave()->audio().data(), first.data);
        // One goes while it is being decoded, and comes back.
        list()->setCurrentIndex(list()->model()->index(5, 0));
        QCOMPARE(wave()->words(), QStringLiteral("\u2026"));
        QCoreApplication::processEvents(); // now it is
        sounds->remove(5);
        QTRY_COMPARE(wave()->audio().data(), first.data);
        list()->setCurrentIndex(list()->model()->index(4, 0));
        f->trigger("undo");
        list()->setCurrentIndex(list()->model()->index(5, 0));
        QTRY_COMPARE(wave()->audio().data(), second.data);
        // What is to be played before it is decoded plays then, unless that is taken back.
        list()->setCurrentIndex(list()->model()->index(4, 0));
        f->press(Qt::Key_Return);
        QVERIFY(!view()->hasSound());
        QTRY_VERIFY(view()->playback().isPlaying());
        QTest::keyEvent(QTest::Press, list(), Qt::Key_Return);
        QVERIFY(!view()->playback().isPlaying());
        list()->setCurrentIndex(list()->model()->index(5, 0));
        f->press(Qt::Key_Space);
        f->press(Qt::Key_Space);
        QTRY_VERIFY(view()->hasSound());
        QVERIFY(!view()->playback().isPlaying());
    }

    void undoOfTheFileComesThrough()
    {
        show(soundsName);
        f->click(list(), list()->model()->index(1, 0));
        QTRY_COMPARE(wave()->audio().info().samples, rate);
        auto *sounds = f->window->findChild<Studio::SoundsView *>();
        const Vela::SoundSample other = tones(1, rate, 500);
        QVERIFY(sounds->currentSound()->setSample(other, other.data));
        QCOMPARE(rows().at(1), QStringLiteral("my step|0:00.063|8 kHz, 16 bits, mono"));
        QTRY_COMPARE(wave()->audio().info().samples, 500u);
        QTRY_VERIFY(f->window->isWindowModified());
        sounds->currentSound()->parent()->remove(3);
        QCOMPARE(rows().size(), 3);
        QCOMPARE(list()->currentIndex().row(), 1);
        f->trigger("undo");
        QCOMPARE(rows().size(), 4);
        f->trigger("undo");
        QTRY_COMPARE(wave()->audio().info().samples, rate);
        QTRY_VERIFY(!f->window->isWindowModified());
        sounds->currentSound()->parent()->clear();
        QTRY_COMPARE(wave()->words(), QStringLiteral("There is no sound in the file."));
    }

    void singleFileIsShown()
    {
        show(waveName);
        QTRY_COMPARE(wave()->audio().data(), tones(2, rate, longest).data);
        QVERIFY(f->find<QLabel>("fileNote")
                    ->text()
                    .startsWith(QLatin1String("0:10.000, 8 kHz, 16 bits, stereo, ")));
        QVERIFY(f->clickFile(QLatin1String(brokenName)));
        QTRY_COMPARE(wave()->words(), QStringLiteral("The sound cannot be decoded."));
        QVERIFY(!f->host->action("play")->isEnabled());
        QVERIFY(QFile::remove(f->inMeadow(waveName)));
        QVERIFY(f->clickFile(QLatin1String(waveName)));
        QCOMPARE(f->find<QLabel>("noPreview")->text(), QStringLiteral("The file cannot be read."));
    }

    void wheelAndButtonsMoveTheView()
    {
        showLong();
        const double fitting = wave()->waveform().zoom();
        QCOMPARE(qRound(wave()->xOf(longest)), wave()->viewport()->width());
        const double frame = wave()->frameAt(200);
        turnWheel(5 * 120);
        QVERIFY(wave()->waveform().zoom() > 4 * fitting);
        QVERIFY(qAbs(wave()->xOf(frame) - 200) <= 1);
        // The middle button takes the sound along.
        const double dragged = wave()->frameAt(300);
        drag(300, 260, Qt::MiddleButton);
        QVERIFY(qAbs(wave()->xOf(dragged) - 260) <= 1);
        QCOMPARE(wave()->horizontalScrollBar()->value(), int(wave()->waveform().offset()));
        wave()->horizontalScrollBar()->setValue(0);
        QCOMPARE(wave()->waveform().offset(), 0u);
        f->press(Qt::Key_0, Qt::ControlModifier);
        QCOMPARE(wave()->waveform().zoom(), 1.0);
        f->press(Qt::Key_9, Qt::ControlModifier);
        QCOMPARE(wave()->waveform().zoom(), fitting);
        turnWheel(-120); // all of it is as much as there is
        QCOMPARE(wave()->waveform().zoom(), fitting);
    }

    void farFramesArePainted()
    {
        Vela::SoundSample sound{{1, 8, rate, 40000000}, QByteArray(40000000, '\x80')};
        showLong();
        view()->setSample(sound);
        wave()->selectAll();
        turnWheel(60 * 120);
        QCOMPARE(wave()->waveform().zoom(), 64.0);
        const QImage image = wave()->viewport()->grab().toImage();
        QCOMPARE(image.pixelColor(image.width() / 2, image.height() - 10),
                 Studio::Colors(f->host->settings()).color(QStringLiteral("sound_selection")));
    }

    void mouseAndKeysSelect()
    {
        showLong();
        drag(100, 250);
        QCOMPARE(selection(), Selection(at(100), at(250)));
        QVERIFY(child<QLabel>("soundSelection")
                    ->text()
                    .contains(timeWords(wave()->audio().info(), at(250))));
        drag(250, wave()->viewport()->width() + 50); // the end is reached
        QCOMPARE(selection(), Selection(at(250), longest));
        f->press(Qt::Key_Escape);
        QCOMPARE(selection(), Selection(at(250), at(250)));
        QTest::mouseClick(wave()->viewport(), Qt::LeftButton, {}, QPoint(40, 40));
        QCOMPARE(selection(), Selection(at(40), at(40)));
        f->press(Qt::Key_End, Qt::ShiftModifier);
        QCOMPARE(selection(), Selection(at(40), longest));
        f->press(Qt::Key_A, Qt::ControlModifier);
        QCOMPARE(selection(), Selection(0, longest));
        f->press(Qt::Key_Home);
        f->press(Qt::Key_0, Qt::ControlModifier);
        f->press(Qt::Key_Right);
        f->press(Qt::Key_Right, Qt::ShiftModifier);
        QCOMPARE(selection(), Selection(1, 2));
        f->press(Qt::Key_End); // the view goes along
        QCOMPARE(selection(), Selection(longest - 1, longest - 1));
        QVERIFY(wave()->xOf(longest - 1) < wave()->viewport()->width());
    }

    void playsAndStops()
    {
        showLong();
        const Studio::SoundPlayback &playback = view()->playback();
        QSignalSpy moved(&playback, &Studio::SoundPlayback::moved);
        f->press(Qt::Key_Space);
        QVERIFY(playback.isPlaying());
        QTRY_VERIFY(moved.size() > 2);
        QVERIFY(moved.last().first().toUInt() > moved.first().first().toUInt());
        f->press(Qt::Key_Space);
        QVERIFY(!playback.isPlaying());
        // A short selection ends by itself; in a loop it comes again.
        wave()->select(rate, rate + 400);
        f->trigger("play");
        QTRY_VERIFY(!playback.isPlaying());
        child<QToolButton>("loopSound")->click();
        child<QToolButton>("playSound")->click();
        moved.clear();
        const auto goesOn = [](const QVariantList &a, const QVariantList &b) {
            return a.first().toUInt() < b.first().toUInt();
        };
        QTRY_VERIFY(!std::is_sorted(moved.begin(), moved.end(), goesOn));
        QVERIFY(std::all_of(moved.begin(), moved.end(), [](const QVariantList &place) {
            return place.first().toUInt() >= rate && place.first().toUInt() < rate + 400;
        }));
        child<QToolButton>("stopSound")->click();
        QVERIFY(!playback.isPlaying());
        // Another file, and silence.
        f->trigger("play");
        QVERIFY(f->clickFile(QStringLiteral("rowan/rowan.motion")));
        QVERIFY(!playback.isPlaying() && !f->host->action("play")->isEnabled());
    }

    void viewFollowsTheHead()
    {
        showLong();
        f->press(Qt::Key_0, Qt::ControlModifier);
        wave()->horizontalScrollBar()->setValue(0);
        for (const quint32 frame : {0U, rate, rate * 2, rate}) { // a loop begins anew
            wave()->setPlayHead(frame);
            QCOMPARE(wave()->waveform().offset(), frame);
        }
        wave()->horizontalScrollBar()->setValue(0); // the user looks at something else
        wave()->setPlayHead(rate + 1);
        QCOMPARE(wave()->waveform().offset(), 0U);
    }

    void tabGoesThroughTheParts()
    {
        show(soundsName);
        QTRY_VERIFY(view()->hasSound());
        for (const char *name : {"soundList", "soundWaveform", "playSound", "loopSound"}) {
            QCOMPARE(QApplication::focusWidget()->objectName(), QLatin1String(name));
            f->press(Qt::Key_Tab);
        }
        QCOMPARE(QApplication::focusWidget(), child<Studio::VolumeSlider>("soundVolume")->slider());
    }

    void volumeIsASetting()
    {
        showLong();
        auto *slider = child<Studio::VolumeSlider>("soundVolume")->slider();
        QCOMPARE(slider->value(), 100);
        slider->setFocus();
        f->press(Qt::Key_Home);
        QCOMPARE(f->host->option(QStringLiteral("snd_volume"), 50).toInt(), 0);
        Studio::SettingsDialog dialog(*f->host, nullptr);
        auto *page = dialog.findChild<Studio::VolumeSlider *>(QStringLiteral("snd_volume"));
        QCOMPARE(page->value(), 0);
        QTest::keyClick(page->slider(), Qt::Key_End);
        QCOMPARE(slider->value(), 100);
    }

    void rulerCutsNoWords()
    {
        QImage image(20, 20, QImage::Format_RGB32);
        image.fill(Qt::white);
        QPainter painter(&image);
        Studio::drawTimeRuler(painter, image.rect(), 0, 0.01);
        painter.end();
        int dark = 0;
        for (int x = 0; x < image.width(); ++x)
            dark += image.pixelColor(x, 10) != QColor(Qt::white);
        QCOMPARE(dark, 1); // the mark of 0:00
    }

    void timesInWords()
    {
        QCOMPARE(timeWords(59.9996), QStringLiteral("1:00.000"));
        QCOMPARE(timeWords(3661.25, 0), QStringLiteral("1:01:01"));
        QCOMPARE(timeWords({2, 16, 0, 10}, 10), QStringLiteral("0:10.000")); // no rate
    }

private:
    Studio::SoundView *view() const
    {
        return f->window->view().soundView();
    }
    Studio::SoundWaveform *wave() const
    {
        return view()->waveform();
    }
    QTreeView *list() const
    {
        return f->find<QTreeView>("soundList");
    }
    template <typename Widget>
    Widget *child(const char *name) const
    {
        return view()->findChild<Widget *>(QLatin1String(name));
    }

    void show(const char *name) const
    {
        QVERIFY(f->open({QLatin1String(name)}) && view());
        f->window->view().focusText();
    }
    void showLong() const
    {
        show(waveName);
        QTRY_VERIFY(view()->hasSound());
    }
    QStringList rows() const
    {
        QStringList texts;
        const QAbstractItemModel *model = list()->model();
        for (int row = 0; row < model->rowCount(); ++row) {
            QStringList columns;
            for (int column = 0; column < model->columnCount(); ++column)
                columns += model->index(row, column).data().toString();
            texts += columns.join(QLatin1Char('|'));
        }
        return texts;
    }

    quint32 at(int x) const
    {
        return quint32(wave()->frameAt(x));
    }
    Selection selection() const
    {
        return {wave()->audio().selectionStart(), wave()->audio().selectionEnd()};
    }
    void drag(int from, int to, Qt::MouseButton button = Qt::LeftButton) const
    {
        QTest::mousePress(wave()->viewport(), button, {}, QPoint(from, 40));
        QMouseEvent move(QEvent::MouseMove, QPointF(to, 40), Qt::NoButton, button, {});
        QApplication::sendEvent(wave()->viewport(), &move);
        QTest::mouseRelease(wave()->viewport(), button, {}, QPoint(to, 40));
    }
    void turnWheel(int turn) const
    {
        const QPoint place(200, 60);
        QWheelEvent event(place, wave()->viewport()->mapToGlobal(place), {}, {0, turn}, {}, {},
                          Qt::NoScrollPhase, false);
        QApplication::sendEvent(wave()->viewport(), &event);
    }

    std::unique_ptr<WindowFixture> f;
};

QTEST_MAIN(TestSoundsView)
#include "tst_soundsview.moc"
