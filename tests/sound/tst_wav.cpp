// SPDX-License-Identifier: MIT
#include "sound/soundfile.h"

#include <QTemporaryFile>
#include <QtEndian>

using namespace SoundFile;
using namespace Vela;

namespace {

QByteArray number(quint32 value, int size)
{
    QByteArray bytes(4, '\0');
    qToLittleEndian(value, bytes.data());
    return bytes.left(size);
}

QByteArray chunk(const char *id, const QByteArray &content)
{
    return id + number(quint32(content.size()), 4) + content;
}

QByteArray formatChunk(int code, SampleInfo info)
{
    const auto frame = quint32(frameSize(info));
    return chunk("fmt ",
                 number(quint32(code), 2) + number(info.channels, 2) + number(info.frequency, 4)
                     + number(info.frequency * frame, 4) + number(frame, 2)
                     + number(info.precision, 2));
}

// The form of a format that names its code behind all else; \a rest of the name is 14 bytes.
QByteArray extensibleChunk(int code, SampleInfo info, const QByteArray &rest)
{
    return chunk("fmt ",
                 formatChunk(0xFFFE, info).mid(8) + number(22, 2) + number(info.precision, 2)
                     + number(3, 4) + number(quint32(code), 2) + rest);
}

QByteArray wave(const QByteArray &chunks)
{
    return chunk("RIFF", "WAVE" + chunks);
}

} // namespace

class TestWav : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void isWrittenByteByByte();
    void isRead_data();
    void isRead();
    void falseSizes_data();
    void falseSizes();
    void framesEndWithTheFile();
    void moreThanAByteArrayHolds();
};

void TestWav::isWrittenByteByByte()
{
    const SoundSample sound = {{2, 24, 0x5622, 2}, QByteArray("abcdefghijkl")};
    QCOMPARE(saved(sound, "WAV").toHex(),
             QByteArray("524946463000000057415645666d7420100000000100020022560000cc04020006001800"
                        "646174610c000000")
                 + sound.data.toHex());
    // What the fields of the header do not hold is refused.
    QCOMPARE(saved({{16384, 32, 8000, 0}, {}}, "WAV"), QByteArray());
    QCOMPARE(saved({{2, 16, 0x40000000, 0}, {}}, "WAV"), QByteArray());
}

void TestWav::isRead_data()
{
    QTest::addColumn<QByteArray>("file");
    QTest::addColumn<int>("samples"); // -1 if there is no sound
    const SampleInfo info = {2, 16, 8000, 3};
    const QByteArray format = formatChunk(1, info);
    const QByteArray data = chunk("data", "0123456789AB");
    const QByteArray junk = chunk("JUNK", QByteArray(70000, 'j'));
    QTest::addRow("plain") << wave(format + data) << 3;
    QTest::addRow("other id") << "RIFX" + wave(format + data).mid(4) << 3;
    QTest::addRow("other form") << wave(format + data).replace("WAVE", "WAVX") << -1;
    QTest::addRow("float") << wave(formatChunk(3, info) + data) << -1;
    const QByteArray ofRiff = QByteArray::fromHex("000000001000800000aa00389b71");
    QTest::addRow("extensible") << wave(extensibleChunk(1, info, ofRiff) + data) << 3;
    QTest::addRow("extensible float") << wave(extensibleChunk(3, info, ofRiff) + data) << -1;
    QTest::addRow("extensible, not of RIFF")
        << wave(extensibleChunk(1, info, QByteArray(14, '\0')) + data) << -1;
    QTest::addRow("no format") << wave(data) << -1;
    QTest::addRow("other chunks") << wave(format + chunk("LIST", "the data's comment") + data) << 3;
    QTest::addRow("odd chunk") << wave(format + chunk("LIST", "odd") + '\0'
                                       + chunk("LIST", "the data's comment") + data)
                               << 3;
    QTest::addRow("odd chunk, not filled up") << wave(format + chunk("LIST", "odd") + data) << 3;
    QTest::addRow("format behind") << wave(chunk("bext", "abcd") + format + data) << 3;
    QTest::addRow("frames far behind") << wave(junk + format + junk + data) << 3;
    QTest::addRow("format chunk with false size")
        << wave(QByteArray(format).replace(4, 4, number(0x12345, 4)) + data) << 3;
    QTest::addRow("size of 0") << wave(format + data).replace(4, 4, number(0, 4)) << 3;
    QTest::addRow("more behind") << wave(format + data + chunk("LIST", "comment")) << 3;
    // Without the word, what follows the format counts as the chunk of frames.
    QTest::addRow("other word") << wave(format + chunk("DATA", "0123456789AB")) << 3;
    // The first word is the one that counts, then, also in another chunk.
    QTest::addRow("word in a chunk of false size")
        << wave(format + "LIST" + number(0xFFFFFFF0, 4) + data) << 3;
    QTest::addRow("no byte rate") << wave(QByteArray(format).replace(16, 4, number(0, 4)) + data)
                                  << 0;
    QTest::addRow("no channel") << wave(formatChunk(1, {0, 16, 8000, 0}) + data) << -1;
    QTest::addRow("12 bits") << wave(formatChunk(1, {2, 12, 8000, 0}) + data) << 3;
    QTest::addRow("no bits") << wave(formatChunk(1, {2, 0, 8000, 0}) + data) << -1;
    QTest::addRow("40 bits") << wave(formatChunk(1, {2, 40, 8000, 0}) + data) << -1;
    QTest::addRow("only a header") << wave(QByteArray()) << -1;
    QTest::addRow("nothing") << QByteArray() << -1;
}

void TestWav::isRead()
{
    QFETCH(QByteArray, file);
    QFETCH(int, samples);
    const SoundSample sound = loaded(file, "WAV");
    QBuffer buffer(&file);
    const SampleInfo info = soundInfoFromWAV(&buffer);
    if (samples < 0) {
        QVERIFY(sound == SoundSample());
        // The words around the format are not looked at.
        QCOMPARE(int(info.channels), file.contains("WAVX") ? 2 : 0);
        return;
    }
    QCOMPARE(sound.data, QByteArray("0123456789AB"));
    QCOMPARE(int(sound.samples), samples);
    QCOMPARE(int(sound.channels), 2);
    QCOMPARE(int(sound.precision), 16);
    QCOMPARE(sound.frequency, 8000U);
    QVERIFY((SoundSample{info, sound.data} == sound));
}

void TestWav::falseSizes_data()
{
    QTest::addColumn<quint32>("claimed");
    QTest::addColumn<int>("size");
    QTest::addRow("fewer") << 4U << 4;
    QTest::addRow("cut off") << 20000U << 20000;
    QTest::addRow("piped") << 0xFFFFFFFFU << 8;
    QTest::addRow("piped, less a header") << 0xFFFFFFD3U << 8;
    QTest::addRow("piped, signed") << 0x7FFFF000U << 8;
    QTest::addRow("out of proportion") << 0x40000000U << 8;
}

void TestWav::falseSizes()
{
    QFETCH(quint32, claimed);
    QFETCH(int, size);
    const QByteArray head = formatChunk(1, {2, 16, 44100, 0}) + "data" + number(claimed, 4);
    for (const quint32 riffSize : {qMax(claimed, claimed + 36), 0U, 0xFFFFFFFFU}) {
        QByteArray file = "RIFF" + number(riffSize, 4) + "WAVE" + head + "012345678";
        const SoundSample sound = loaded(file, "WAV");
        QCOMPARE(sound.data, QByteArray("012345678").leftJustified(size, '\0', true));
        QVERIFY(isWhole(sound) && sound.data.capacity() < 70000);
        QBuffer buffer(&file);
        QCOMPARE(soundInfoFromWAV(&buffer).samples, sound.samples);
    }
}

// What follows behind the size that the file has of itself is not part of it.
void TestWav::framesEndWithTheFile()
{
    const QByteArray head = wave(formatChunk(1, {2, 16, 8000, 0}) + "data" + number(8, 4) + "0123");
    QCOMPARE(loaded(head + "4567", "WAV").data, QByteArray("0123\0\0\0\0", 8));
}

void TestWav::moreThanAByteArrayHolds()
{
    QTemporaryFile large;
    QVERIFY(large.open());
    large.write("RIFF" + number(3000000000U, 4) + "WAVE" + formatChunk(1, {1, 16, 8000, 0}) + "data"
                + number(2900000000U, 4));
    QVERIFY(large.resize(3000000000LL) && large.seek(0));
    SoundSample none;
    QVERIFY(!loadSound(&large, "WAV", none));
    QVERIFY(large.seek(0));
    QCOMPARE(int(soundInfoFromWAV(&large).channels), 0);
}

QTEST_APPLESS_MAIN(TestWav)
#include "tst_wav.moc"
