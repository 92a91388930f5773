// SPDX-License-Identifier: MIT
#include "sound/samplesound.h"
#include "sound/soundformats.h"
#include "sound/soundplayer.h"

#include <SFML/Audio/SoundBuffer.hpp>

#include <QElapsedTimer>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>

using Vela::SoundPlayer;
using Vela::SoundSample;

namespace {

// Tones of so many milliseconds.
SoundSample tones(quint32 length)
{
    return SampleSound::tones(2, 8000, 8 * length);
}

} // namespace

class TestSoundPlayer : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void buffersHoldTheFrames()
    {
        const SoundPlayer player(1);
        const SoundSample sound = tones(100);
        Vela::SoundBuffer *buffer = player.createBuffer(sound);
        QVERIFY(buffer);
        QCOMPARE(buffer->getChannelCount(), 2U);
        QCOMPARE(buffer->getSampleRate(), 8000U);
        QCOMPARE(QByteArray(reinterpret_cast<const char *>(buffer->getSamples()),
                            int(buffer->getSampleCount() * 2)),
                 sound.data);
        player.freeBuffer(buffer);
        player.freeBuffer(nullptr);
    }

    void buffersHave16Bits()
    {
        const SoundPlayer player(0);
        Vela::SoundBuffer *buffer =
            player.createBuffer({{1, 8, 8000, 3}, QByteArray("\0\x80\xff", 3)});
        QVERIFY(buffer);
        QCOMPARE(buffer->getSampleCount(), sf::Uint64(3));
        QCOMPARE(buffer->getSamples()[0], sf::Int16(-32768));
        QVERIFY(qAbs(buffer->getSamples()[1]) <= 256); // half a step of 8 bits
        QCOMPARE(buffer->getSamples()[2], sf::Int16(32767));
        player.freeBuffer(buffer);
    }

    void soundsThatCannotBePlayed()
    {
        SoundPlayer player(1);
        SoundSample lying = tones(10);
        lying.samples = 1000000;
        Vela::SoundBuffer *buffer = player.createBuffer(lying);
        QCOMPARE(buffer ? buffer->getSampleCount() : 0, sf::Uint64(160));
        player.freeBuffer(buffer);
        for (const SoundSample &sound : {SoundSample(), SoundSample{{2, 16, 8000, 5}, {}},
                                         SoundSample{{0, 16, 8000, 5}, "0123456789"}})
            QCOMPARE(player.play(sound, false, 100), -1);
        QCOMPARE(player.play(static_cast<const Vela::SoundBuffer *>(nullptr), false, 100), -1);
        QCOMPARE(SoundPlayer(0).play(tones(10), false, 100), -1);
    }

    // No voice is cut off for another sound, and one that has ended is used again.
    void voicesAreUsedInOrder()
    {
        SoundPlayer player(2);
        QCOMPARE(player.play(tones(20), true, 100), 0);
        QCOMPARE(player.play(tones(20), true, 100), 1);
        QCOMPARE(player.play(tones(20), false, 100), -1);
        player.stop(1);
        QCOMPARE(player.play(tones(20), false, 100), 1);
        QTRY_VERIFY(!player.isPlaying(1));
        QVERIFY(player.isPlaying(0)); // in a loop
        QCOMPARE(player.play(tones(20), true, 100), 1);
        player.stop(0);
        QVERIFY(!player.isPlaying(0));
        QCOMPARE(player.play(tones(20), true, 100), 0);
        player.stop(-1);
        QVERIFY(!player.isPlaying(0) && !player.isPlaying(1));
        for (const int voice : {-1, 2, 1000})
            QVERIFY(!player.isPlaying(voice));
        player.stop(2);
        player.setVolume(2, 10);
        player.setVolume(-1, 10);
    }

    void callersBuffersStayTheirs()
    {
        SoundPlayer player(1);
        Vela::SoundBuffer *buffer = player.createBuffer(tones(5000));
        for (int i = 0; i < 2; ++i) {
            QCOMPARE(player.play(buffer, false, 50), 0);
            player.stop(0);
            QCOMPARE(player.play(tones(5000), false, 50), 0);
            player.stop(0);
        }
        QCOMPARE(player.play(buffer, true, 50), 0);
        QCOMPARE(buffer->getSampleCount(), sf::Uint64(80000));
        player.freeBuffer(buffer);
        QVERIFY(!player.isPlaying(0));
    }

    // A paused sound is playing, and does not go on.
    void pausesAndResumes()
    {
        for (const int voice : {0, -1}) {
            SoundPlayer player(2);
            player.resume(voice); // starts nothing
            QVERIFY(!player.isPlaying(0));
            QCOMPARE(player.play(tones(200), false, 100), 0);
            player.pause(voice);
            QCOMPARE(player.play(tones(200), false, 100), 1);
            QTRY_VERIFY(!player.isPlaying(1)); // it has been long enough for both
            QVERIFY(player.isPlaying(0));
            QElapsedTimer timer;
            timer.start();
            player.resume(voice);
            QTRY_VERIFY(!player.isPlaying(0));
            QVERIFY(timer.elapsed() > 50);
            player.resume(voice); // it has ended
            QVERIFY(!player.isPlaying(0));
        }
    }

    void music()
    {
        QTemporaryDir folder;
        const QString name = folder.filePath(QStringLiteral("music.wav"));
        QFile file(name);
        QVERIFY(file.open(QIODevice::WriteOnly));
        QVERIFY(Vela::saveSound(&file, "WAV", tones(300)));
        file.close();

        SoundPlayer player(0);
        player.startMusic();
        QVERIFY(!player.isMusicPlaying());
        QVERIFY(!player.openMusic(folder.filePath(QStringLiteral("none.wav"))));
        player.startMusic();
        QVERIFY(!player.isMusicPlaying());
        player.setMusicVolume(30);
        QVERIFY(player.openMusic(name));
        QVERIFY(!player.isMusicPlaying());
        player.startMusic();
        QVERIFY(player.isMusicPlaying());
        player.pauseMusic();
        QVERIFY(player.isMusicPlaying());
        player.stopMusic();
        QVERIFY(!player.isMusicPlaying());
        player.startMusic();
        QTRY_VERIFY(!player.isMusicPlaying()); // at its end
        player.startMusic();
        QVERIFY(!player.openMusic(folder.filePath(QStringLiteral("none.wav"))));
        player.startMusic();
        QVERIFY(!player.isMusicPlaying());
        QVERIFY(player.openMusic(name));
        player.startMusic(); // and it ends with the player
    }
};

QTEST_GUILESS_MAIN(TestSoundPlayer)
#include "tst_soundplayer.moc"
