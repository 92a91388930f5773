// SPDX-License-Identifier: MIT
#include "sound/soundsample.h"

#include <QTest>
#include <QtEndian>

#include <cmath>
#include <limits>
#include <vector>

using namespace Vela;

namespace {

constexpr double pi = 3.141592653589793;

QByteArray hex(const char *digits)
{
    return QByteArray::fromHex(digits);
}

// A tone whose frequency rises evenly from 20 Hz to a highest one, and which fades in and out. Some
// silence follows.
struct Sweep
{
    double highest;
    double duration; // seconds

    double at(double time) const
    {
        const double turns = 20 * time + (highest - 20) * time * time / (2 * duration);
        const double fade = std::min(1.0, 20 * std::min(time, duration - time) / duration);
        return 0.5 * std::sin(2 * pi * turns) * 0.5 * (1 - std::cos(pi * std::max(0.0, fade)));
    }
    SoundSample sampled(quint32 frequency) const
    {
        SoundSample sound = {{1, 32, frequency, quint32((duration + 0.1) * frequency)}, {}};
        sound.data.resize(int(sound.samples) * 4);
        for (quint32 i = 0; i < sound.samples; ++i)
            qToLittleEndian(qint32(std::lround(at(double(i) / frequency) * 2147483648.0)),
                            sound.data.data() + i * 4);
        return sound;
    }
};

double value32(const SoundSample &sound, quint32 i)
{
    return qFromLittleEndian<qint32>(sound.data.constData() + i * 4) / 2147483648.0;
}

} // namespace

class TestResample : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aSampleIsANumber_data();
    void aSampleIsANumber();
    void aScaledSampleIsClipped_data();
    void aScaledSampleIsClipped();
    void precisionsAndChannels_data();
    void precisionsAndChannels();
    void framesFollowTheFrequencies_data();
    void framesFollowTheFrequencies();
    void noiseStaysLow_data();
    void noiseStaysLow();
    void overshootIsClipped();
    void whatCannotBeDoneChangesNothing_data();
    void whatCannotBeDoneChangesNothing();
};

void TestResample::aSampleIsANumber_data()
{
    QTest::addColumn<int>("precision");
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<double>("value");
    QTest::addRow("8 low") << 8 << hex("00") << -1.0;
    QTest::addRow("8 centre") << 8 << hex("80") << 0.0;
    QTest::addRow("8 high") << 8 << hex("ff") << 0.9921875;
    QTest::addRow("16 low") << 16 << hex("0080") << -1.0;
    QTest::addRow("16 half") << 16 << hex("0040") << 0.5;
    QTest::addRow("16 high") << 16 << hex("ff7f") << 32767.0 / 32768;
    QTest::addRow("20 low") << 20 << hex("000080") << -1.0;
    QTest::addRow("24 order") << 24 << hex("563412") << 0x123456 / 8388608.0;
    QTest::addRow("24 high") << 24 << hex("ffff7f") << 8388607.0 / 8388608;
    QTest::addRow("24 least") << 24 << hex("ffffff") << -1.0 / 8388608;
    QTest::addRow("32 low") << 32 << hex("00000080") << -1.0;
    QTest::addRow("32 order") << 32 << hex("00785634") << 0x34567800 / 2147483648.0;
}

void TestResample::aSampleIsANumber()
{
    QFETCH(int, precision);
    QFETCH(QByteArray, bytes);
    QFETCH(double, value);
    const auto bits = static_cast<unsigned short>(precision);
    QCOMPARE(decodeSample(bytes.constData(), bits), float(value));
    QByteArray written(bytes.size() + 1, '\x5A');
    encodeSample(float(value), written.data(), bits);
    QCOMPARE(written, bytes + '\x5A');
    QCOMPARE(sampleSize(bits), bytes.size());
}

void TestResample::aScaledSampleIsClipped_data()
{
    QTest::addColumn<int>("precision");
    QTest::addColumn<QByteArray>("in");
    QTest::addColumn<float>("factor");
    QTest::addColumn<QByteArray>("out");
    QTest::addRow("8 doubled") << 8 << hex("8a") << 2.0F << hex("94");
    QTest::addRow("8 clipped above") << 8 << hex("f0") << 2.0F << hex("ff");
    QTest::addRow("8 clipped below") << 8 << hex("10") << 2.0F << hex("00");
    QTest::addRow("8 towards zero") << 8 << hex("7d") << 0.5F << hex("7f");
    QTest::addRow("16 clipped above") << 16 << hex("204e") << 2.0F << hex("ff7f");
    QTest::addRow("16 turned") << 16 << hex("0080") << -1.0F << hex("ff7f");
    QTest::addRow("16 towards zero") << 16 << hex("fdff") << 0.5F << hex("ffff");
    QTest::addRow("20 clipped below") << 20 << hex("0000c0") << 4.0F << hex("000080");
    QTest::addRow("24 halved") << 24 << hex("000040") << 0.5F << hex("000020");
    QTest::addRow("24 clipped above") << 24 << hex("ffff7f") << 1.5F << hex("ffff7f");
    QTest::addRow("32 clipped above") << 32 << hex("00000060") << 2.0F << hex("ffffff7f");
    QTest::addRow("32 clipped below") << 32 << hex("000000a0") << 3e9F << hex("00000080");
    QTest::addRow("32 turned") << 32 << hex("00000040") << -1.0F << hex("000000c0");
}

void TestResample::aScaledSampleIsClipped()
{
    QFETCH(int, precision);
    QFETCH(QByteArray, in);
    QFETCH(float, factor);
    QFETCH(QByteArray, out);
    QByteArray bytes = in + '\x5A';
    scaleSample(bytes.data(), bytes.constData(), factor, static_cast<unsigned short>(precision));
    QCOMPARE(bytes, out + '\x5A');
}

void TestResample::precisionsAndChannels_data()
{
    QTest::addColumn<QByteArray>("in");
    QTest::addColumn<QVector<int>>("from"); // channels, precision
    QTest::addColumn<QVector<int>>("to");
    QTest::addColumn<QByteArray>("out");
    using Form = QVector<int>;
    QTest::addRow("16 to 24") << hex("0080 0000 ff7f") << Form{1, 16} << Form{1, 24}
                              << hex("000080 000000 00ff7f");
    QTest::addRow("24 to 32") << hex("000080 563412") << Form{1, 24} << Form{1, 32}
                              << hex("00000080 00563412");
    QTest::addRow("32 to 20") << hex("00000080 00563412") << Form{1, 32} << Form{1, 20}
                              << hex("000080 563412");
    // 255 / 127.5 - 1 is 1; 0 is -1.
    QTest::addRow("8 to 16") << hex("00 ff") << Form{1, 8} << Form{1, 16} << hex("0080 ff7f");
    QTest::addRow("8 to 24") << hex("00 ff") << Form{1, 8} << Form{1, 24} << hex("000080 ffff7f");
    // (0 + 1) * 127.5 is 127; 0.5 gives 191.
    QTest::addRow("16 to 8") << hex("0080 0000 0040") << Form{1, 16} << Form{1, 8} << hex("007fbf");
    QTest::addRow("to mono") << hex("0010 0030 00f0 0000") << Form{2, 16} << Form{1, 16}
                             << hex("0020 00f8");
    QTest::addRow("three to mono")
        << hex("0010 0030 0070") << Form{3, 16} << Form{1, 16} << hex("0020");
    QTest::addRow("to stereo") << hex("0010 00f0") << Form{1, 16} << Form{2, 24}
                               << hex("000010 000010 0000f0 0000f0");
    QTest::addRow("as it is") << hex("01020304 05060708") << Form{1, 32} << Form{1, 32}
                              << hex("01020304 05060708");
    QTest::addRow("nothing") << QByteArray() << Form{1, 8} << Form{2, 16} << QByteArray();
}

void TestResample::precisionsAndChannels()
{
    QFETCH(QByteArray, in);
    QFETCH(QVector<int>, from);
    QFETCH(QVector<int>, to);
    QFETCH(QByteArray, out);
    SoundSample sound = {{quint16(from[0]), quint16(from[1]), 22050, 0}, in};
    sound.samples = quint32(in.size() / frameSize(sound));
    const quint32 frames = sound.samples;
    QVERIFY(resampleSound(sound, {quint16(to[0]), quint16(to[1]), 22050, 12345}));
    QCOMPARE(sound.data, out);
    QCOMPARE(sound.samples, frames);
    QCOMPARE(int(sound.channels), to[0]);
    QCOMPARE(int(sound.precision), to[1]);
    QCOMPARE(sound.frequency, 22050U);
}

void TestResample::framesFollowTheFrequencies_data()
{
    QTest::addColumn<int>("from");
    QTest::addColumn<int>("to");
    QTest::addColumn<int>("channels");
    QTest::addRow("up") << 44100 << 48000 << 1;
    QTest::addRow("down") << 48000 << 44100 << 2;
    QTest::addRow("far up") << 8000 << 192000 << 2;
    QTest::addRow("far down") << 192000 << 8000 << 1;
}

void TestResample::framesFollowTheFrequencies()
{
    QFETCH(int, from);
    QFETCH(int, to);
    QFETCH(int, channels);
    SoundSample sound = {{quint16(channels), 16, quint32(from), 5001}, {}};
    sound.data.fill('\0', 5001 * channels * 2);
    QVERIFY(resampleSound(sound, {quint16(channels), 24, quint32(to), 0}));
    const double most = 5001.0 * to / from;
    QVERIFY(sound.samples <= most && sound.samples > most - 2);
    QCOMPARE(sound.data, QByteArray(int(sound.samples) * channels * 3, '\0'));
    QCOMPARE(sound.frequency, quint32(to));
}

void TestResample::noiseStaysLow_data()
{
    QTest::addColumn<int>("from");
    QTest::addColumn<int>("to");
    QTest::addRow("CD to DAT") << 44100 << 48000;
    QTest::addRow("DAT to CD") << 48000 << 44100;
    QTest::addRow("doubled") << 48000 << 96000;
    QTest::addRow("halved") << 96000 << 48000;
    QTest::addRow("from 8 kHz") << 8000 << 44100;
}

void TestResample::noiseStaysLow()
{
    QFETCH(int, from);
    QFETCH(int, to);
    // The pass band, where the filter is flat, ends at 93 percent of half the lower frequency.
    const int lower = std::min(from, to);
    const Sweep sweep = {0.93 * 0.5 * lower, 88200.0 / lower};
    SoundSample sound = sweep.sampled(quint32(from));
    QVERIFY(resampleSound(sound, {1, 32, quint32(to), 0}));
    double signal = 0;
    double noise = 0;
    for (quint32 i = 0; i < sound.samples; ++i) {
        const double ideal = sweep.at(double(i) / to);
        signal += ideal * ideal;
        noise += std::pow(value32(sound, i) - ideal, 2);
    }
    const double ratio = 10 * std::log10(signal / noise);
    QVERIFY2(ratio > 120, qPrintable(QString::number(ratio)));
}

// A square wave at full scale overshoots where its steps are smoothed.
void TestResample::overshootIsClipped()
{
    for (const quint16 precision : {8, 16, 24, 32}) {
        SoundSample sound = {{1, 16, 11025, 2000}, {}};
        for (int i = 0; i < 2000; ++i)
            sound.data += i / 50 % 2 == 0 ? hex("ff7f") : hex("0080");
        QVERIFY(resampleSound(sound, {1, precision, 48000, 0}));
        const int size = sampleSize(precision);
        // 218 frames make one step; its middle is far from both ends.
        for (int i = 1; i < 30; ++i) {
            const int at = int((i + 0.5) * 50 * 48000 / 11025);
            const float value = decodeSample(sound.data.constData() + at * size, precision);
            QVERIFY(i % 2 == 0 ? value > 0.95F : value < -0.95F);
            for (int near = at - 100; near < at + 100; ++near) {
                const float other = decodeSample(sound.data.constData() + near * size, precision);
                QVERIFY(i % 2 == 0 ? other > 0.5F : other < -0.5F);
            }
        }
    }
}

void TestResample::whatCannotBeDoneChangesNothing_data()
{
    QTest::addColumn<QVector<int>>("from"); // channels, precision, frequency, samples
    QTest::addColumn<QVector<int>>("to");
    using Form = QVector<int>;
    QTest::addRow("no frequency") << Form{1, 16, 0, 4} << Form{1, 16, 8000};
    QTest::addRow("to no frequency") << Form{1, 16, 8000, 4} << Form{1, 16, 0};
    QTest::addRow("too far") << Form{1, 16, 100, 4} << Form{1, 16, 25700};
    QTest::addRow("to no channel") << Form{1, 16, 8000, 4} << Form{0, 16, 8000};
    QTest::addRow("to three channels") << Form{1, 16, 8000, 4} << Form{3, 16, 8000};
    QTest::addRow("no such precision") << Form{1, 16, 8000, 4} << Form{1, 12, 8000};
    QTest::addRow("of no such precision") << Form{1, 12, 8000, 4} << Form{1, 16, 8000};
    QTest::addRow("fewer bytes than frames") << Form{1, 16, 8000, 5} << Form{1, 8, 8000};
    QTest::addRow("empty") << Form{0, 1, 0, 0} << Form{1, 8, 8000};
}

void TestResample::whatCannotBeDoneChangesNothing()
{
    QFETCH(QVector<int>, from);
    QFETCH(QVector<int>, to);
    const QByteArray data = hex("0102030405060708");
    SoundSample sound = {{quint16(from[0]), quint16(from[1]), quint32(from[2]), quint32(from[3])},
                         data};
    QVERIFY(!resampleSound(sound, {quint16(to[0]), quint16(to[1]), quint32(to[2]), 0}));
    QCOMPARE(sound.data, data);
    QCOMPARE(int(sound.channels), from[0]);
    QCOMPARE(int(sound.precision), from[1]);
    QCOMPARE(int(sound.frequency), from[2]);
    QCOMPARE(int(sound.samples), from[3]);
}

QTEST_APPLESS_MAIN(TestResample)
#include "tst_resample.moc"
