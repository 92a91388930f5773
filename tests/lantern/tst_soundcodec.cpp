// SPDX-License-Identifier: MIT
#include "lantern/soundcodec.h"
#include "lantern/soundnames.h"
#include "lantern/soundtable.h"

#include "frame/checksum.h"

#include <QBuffer>
#include <QRandomGenerator>
#include <QTest>
#include <QtEndian>

#include <cmath>

using namespace Lantern;
using Vela::SampleInfo;
using Vela::SoundSample;

namespace {

SampleInfo infoOf(int channels, int precision, quint32 frequency, quint32 frames)
{
    return {quint16(channels), quint16(precision), frequency, frames};
}

// Noise, then silence.
QByteArray noise(const SampleInfo &info, bool usesSpareBits = false)
{
    QRandomGenerator random(info.channels * 100u + info.precision);
    QByteArray data(int(info.samples) * frameSize(info), 0);
    for (int i = 0; i < data.size() / 2; ++i)
        data[i] = char(random.bounded(256)
                       & (info.precision == 20 && !usesSpareBits && i % 3 == 0 ? 0xF0 : 0xFF));
    return data;
}

// The tables of two streams and three sounds, as the format's page tells them.
QByteArray handmadeTables()
{
    return QByteArray::fromHex(
        // the head
        "4c534e440100010002000000030000000d000000"
        // raw, 2 channels, 8 bits, 8000 a second, 2 frames; the CRC is 77
        "7300000000000000100000004d000000000002000800401f000002000000"
        // Ogg, 1 channel, 16 bits, 44100 a second, 999 frames
        "8300000000000000280000000000000002000100100044ac0000e7030000"
        // two with the second stream, and an empty one between them
        "0400010000000500ffffffff040001000000"
        // stepZoë1step
        "737465705a6fc3ab3173746570"
        "5682fb77");
}

bool readTables(QByteArray tables, bool mend, SoundTable &table)
{
    const int end = tables.size() - 4;
    if (mend)
        qToLittleEndian(Vela::CRC32(tables.constData(), size_t(end)), tables.data() + end);
    QBuffer file;
    file.setData(tables + QByteArray(56, 'x'));
    file.open(QIODevice::ReadOnly);
    QString error;
    return table.read(file, error) && error.isEmpty() && file.pos() == tables.size();
}

} // namespace

class tst_SoundCodec : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void flacIsExact();
    void oggTellsWhatItDecodesTo();
    void brokenStreamsAreRefused();
    void plainFormsHaveWholeFrames();
    void names();
    void tables();

private:
    SoundCodec m_codec;
};

void tst_SoundCodec::flacIsExact()
{
    for (const int precision : {8, 16, 20, 24, 32}) {
        for (const int channels : {1, 2, 5, 8}) {
            const SampleInfo info = infoOf(channels, precision, 44101, 5000);
            const QByteArray plain = plainSound(info, noise(info));
            QByteArray raw, again, back;
            QVERIFY(m_codec.encode(Flac, nullptr, plain, raw));
            QVERIFY(m_codec.encodeSmaller(m_codec.preferredEncoding(plain), plain, again));
            QCOMPARE(again, raw);
            QVERIFY(m_codec.decode(Flac, nullptr, raw, back));
            QCOMPARE(back, plain);
        }
    }
    for (const SampleInfo &refused :
         {infoOf(2, 20, 8000, 100), infoOf(9, 16, 8000, 100), infoOf(1, 16, 4000000000u, 100)}) {
        QByteArray raw;
        const QByteArray plain = plainSound(refused, noise(refused, true));
        QVERIFY(!plain.isEmpty() && !m_codec.encode(Flac, nullptr, plain, raw));
    }
}

void tst_SoundCodec::oggTellsWhatItDecodesTo()
{
    const auto tone = [](quint32 frame) { return 0.5F * std::sin(float(frame) * 0.1F); };
    for (const int precision : {8, 16, 20, 24, 32}) {
        for (const quint32 frames : {1u, 1023u, 9001u}) {
            const SampleInfo info = infoOf(precision == 8 ? 6 : 2, precision, 22050, frames);
            QByteArray data(int(frames) * frameSize(info), 0);
            for (quint32 i = 0; i < frames * info.channels; ++i)
                Vela::encodeSample(tone(i / info.channels),
                                   data.data() + i * quint32(Vela::sampleSize(info.precision)),
                                   info.precision);
            QByteArray raw, again, back;
            QVERIFY(m_codec.encode(Ogg, nullptr, plainSound(info, data), raw));
            QVERIFY(m_codec.encode(Ogg, nullptr, plainSound(info, data), again));
            QCOMPARE(again, raw);
            QVERIFY(m_codec.decode(Ogg, nullptr, raw, back));
            const SoundSample sound = soundFromPlain(back);
            QVERIFY(sound.precision == 16 && sound.channels == info.channels);
            QVERIFY(sound.frequency == 22050 && sound.samples == frames);
            for (quint32 i = 0; frames > 9000 && i < frames * info.channels; ++i) {
                const float heard = Vela::decodeSample(sound.data.constData() + i * 2, 16);
                QVERIFY(std::abs(heard - tone(i / info.channels)) < 0.05F);
            }
        }
    }
}

void tst_SoundCodec::brokenStreamsAreRefused()
{
    const SampleInfo info = infoOf(2, 16, 22050, 3000);
    const QByteArray silence = plainSound(infoOf(1, 8, 8000, 100000), QByteArray(100000, '\x80'));
    for (const unsigned int encoding : {Flac, Ogg}) {
        QByteArray raw, back("as it was");
        QVERIFY(m_codec.encode(encoding, nullptr, plainSound(info, noise(info)), raw));
        for (int size = 0; size < raw.size(); size += size < 60 ? 1 : 211)
            QVERIFY(!m_codec.decode(encoding, nullptr, raw.left(size), back));
        QVERIFY(!m_codec.decode(encoding == Flac ? Ogg : Flac, nullptr, raw, back));
        QVERIFY(!m_codec.decode(99, nullptr, raw, back));
        // A head that says something else than the stream.
        for (int bit = 0; bit < 12 * 8; ++bit) {
            QByteArray changed = raw;
            changed[bit / 8] = char(changed.at(bit / 8) ^ 1 << bit % 8);
            QVERIFY(!m_codec.decode(encoding, nullptr, changed, back));
        }
        // Much more than is said comes of few bytes.
        QVERIFY(m_codec.encode(encoding, nullptr, silence, raw) && raw.size() < 20000);
        raw[9] = 0;
        QVERIFY(!m_codec.decode(encoding, nullptr, raw, back));
        QCOMPARE(back, QByteArray("as it was"));
    }
}

void tst_SoundCodec::plainFormsHaveWholeFrames()
{
    const QByteArray data("abcdefghijk");
    const QByteArray plain = plainSound(infoOf(2, 16, 8000, 3), data);
    QCOMPARE(plain, QByteArray("\2\0\x10\0\x40\x1f\0\0\2\0\0\0abcdefgh", 20));
    QCOMPARE(soundFromPlain(plain).data, data.left(8));
    QVERIFY(soundFromPlain(plain + 'x').data.isEmpty());
    QVERIFY(soundFromPlain(plain.left(19)).data.isEmpty());
    for (const SampleInfo &none :
         {infoOf(0, 8, 8000, 1), infoOf(1, 12, 8000, 1), infoOf(1, 8, 0, 1), infoOf(1, 8, 8000, 0),
          infoOf(12, 8, 8000, 9)})
        QVERIFY(plainSound(none, data).isEmpty());
    // 256 MB with the head.
    QVERIFY(isSound(infoOf(2, 16, 44100, 67108861)) && !isSound(infoOf(2, 16, 44100, 67108862)));
    QVERIFY(!isSound(infoOf(65535, 32, 44100, 0xFFFFFFFF)));
}

void tst_SoundCodec::names()
{
    const QString longest(100, QLatin1Char('n'));
    for (const QString &name :
         {QStringLiteral("Zoë's 2. step, soft"), QStringLiteral("\U0001F514"), longest})
        QVERIFY2(isSoundName(name), qPrintable(name));
    QStringList refused{QString(), longest + QLatin1Char('n'), QString(QChar(0xD800))};
    for (const char *text : {" a", "a ", ".a", "a.", "a\tb", "a\x7f", "a/b", "a\\b", "a:b", "a*b",
                             "a?b", "a\"b", "a<b", "a>b", "a|b"})
        refused.append(QString::fromLatin1(text));
    for (const QString &name : qAsConst(refused))
        QVERIFY2(!isSoundName(name), qPrintable(name));

    QStringList used{longest};
    const auto isUsed = [&used](const QString &name) { return used.contains(name); };
    for (const char *name : {"sound", "sound-2", "sound-3"}) {
        used.append(freeSoundName(QStringLiteral("a/b"), isUsed));
        QCOMPARE(used.last(), QString::fromLatin1(name));
    }
    QCOMPARE(freeSoundName(QStringLiteral("bell"), isUsed), QStringLiteral("bell"));
    QCOMPARE(freeSoundName(longest, isUsed), longest.left(98) + QStringLiteral("-2"));
}

void tst_SoundCodec::tables()
{
    const QByteArray whole = handmadeTables();
    SoundTable table;
    QVERIFY(readTables(whole, false, table));
    QVERIFY(table.isPreferred && table.streams.size() == 2 && table.sounds.size() == 3);
    QVERIFY(table.streams.at(0).crc == 77 && table.streams.at(1).size == 40);
    QVERIFY(table.streams.at(1).encoding == Ogg && table.streams.at(1).info.frequency == 44100);
    QCOMPARE(table.sounds.at(1).name, QStringLiteral("Zoë1"));
    QVERIFY(table.sounds.at(1).stream == SoundTable::None && table.sounds.at(2).stream == 1);
    QCOMPARE(table.original, whole);
    QCOMPARE(table.write(), whole);

    SoundTable broken;
    for (int bit = 0; bit < whole.size() * 8; ++bit) {
        QByteArray bytes = whole;
        bytes[bit / 8] = char(bytes.at(bit / 8) ^ 1 << bit % 8);
        QVERIFY(!readTables(bytes, false, broken));
        QVERIFY(!readTables(whole.left(bit / 8), false, broken));
        // With a right checksum it may be read, and then it makes sense.
        SoundTable other;
        if (!readTables(bytes, true, other))
            continue;
        for (const SoundTable::Stream &stream : qAsConst(other.streams))
            QVERIFY(isSound(stream.info) && stream.offset >= whole.size()
                    && stream.offset + stream.size <= whole.size() + 56);
        for (const SoundTable::Sound &sound : qAsConst(other.sounds))
            QVERIFY(isSoundName(sound.name)
                    && (sound.stream == SoundTable::None || sound.stream < 2));
    }
    // The counts, an encoding, the length of a name, and two names.
    const QHash<int, QByteArray> changes{{8, "\xff\xff\xff\xff"},
                                         {12, "\xff\xff\xff\xff"},
                                         {16, "\xff\xff\xff\xff"},
                                         {36, "\3"},
                                         {80, "\5"},
                                         {98, "/"},
                                         {104, "A"}};
    for (auto it = changes.begin(); it != changes.end(); ++it) {
        QByteArray bytes = whole;
        QVERIFY(!readTables(bytes.replace(it.key(), it->size(), *it), true, broken));
    }
    QVERIFY(broken.streams.isEmpty() && broken.sounds.isEmpty());
}

QTEST_GUILESS_MAIN(tst_SoundCodec)
#include "tst_soundcodec.moc"
