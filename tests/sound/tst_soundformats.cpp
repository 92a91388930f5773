// SPDX-License-Identifier: MIT
#include "image/otherprogram.h"
#include "sound/samplesound.h"
#include "sound/soundfile.h"

#include "engine/extensionmanager.h"
#include "sound/soundextension.h"
#include "sound/soundformats.h"

#include <QBuffer>
#include <QTemporaryDir>

using namespace SoundFile;
using namespace Vela;

Q_DECLARE_METATYPE(Vela::SampleInfo)

namespace {

const char *const formats[] = {"WAV", "OGG", "FLAC", "MP3"};

// A device that cannot go back, such as a pipe; it gives and takes a few bytes at a time, and takes
// so many only.
class Pipe : public QIODevice
{
public:
    QByteArray bytes;
    int room = INT_MAX;

    explicit Pipe(const QByteArray &content = QByteArray())
        : bytes(content)
    {
        open(ReadWrite);
    }
    bool isSequential() const override
    {
        return true;
    }
    qint64 bytesAvailable() const override
    {
        return bytes.size() + QIODevice::bytesAvailable();
    }

protected:
    qint64 readData(char *to, qint64 most) override
    {
        const int count = int(qMin<qint64>(most, qMin(bytes.size(), 700)));
        std::copy_n(bytes.constData(), count, to);
        bytes.remove(0, count);
        return count;
    }
    qint64 writeData(const char *from, qint64 count) override
    {
        if (bytes.size() + count > room)
            return -1;
        bytes.append(from, int(count));
        return count;
    }
};

// A device that does not open.
class DeadDevice : public QBuffer
{
public:
    bool open(OpenMode) override
    {
        return false;
    }
};

// Returns the largest difference of two sounds of 16 bits, a large one if they differ in length.
int largestStep(const QByteArray &a, const QByteArray &b)
{
    if (a.size() != b.size() || a.isEmpty()) {
        qWarning("%d bytes against %d", a.size(), b.size());
        return INT_MAX;
    }
    int step = 0;
    for (int i = 0; i + 1 < a.size(); i += 2)
        step = qMax(step,
                    qAbs(qFromLittleEndian<qint16>(a.constData() + i)
                         - qFromLittleEndian<qint16>(b.constData() + i)));
    return step;
}

// Puts the form of a sound in the place of the words of a command:
// RATE, CHANNELS, BITS, SIGN (of sox and flac) and RAW (of ffmpeg).
QString command(const QByteArray &words, SampleInfo info)
{
    const bool isByte = info.precision == 8;
    return QString::fromLatin1(words)
        .replace(QLatin1String("RATE"), QString::number(info.frequency))
        .replace(QLatin1String("CHANNELS"), QString::number(info.channels))
        .replace(QLatin1String("BITS"), QString::number(info.precision))
        .replace(QLatin1String("SIGN"), QLatin1String(isByte ? "unsigned" : "signed"))
        .replace(QLatin1String("RAW"),
                 isByte ? QStringLiteral("u8") : QStringLiteral("s%1le").arg(info.precision));
}

constexpr char soxRaw[] = "-t raw -r RATE -c CHANNELS -b BITS -e SIGN -";
constexpr char ffmpegRaw[] = "-f RAW -ar RATE -ac CHANNELS";
constexpr char flacRaw[] = "--force-raw-format --endian=little --sign=SIGN";

class Silence : public SoundLoader
{
public:
    const char *format() const override
    {
        return "TST";
    }
    const char *identifier() const override
    {
        return "silence";
    }
    void release() override
    {
        delete this;
    }
    bool load(QIODevice *device, SoundSample &sample) override
    {
        sample.data = device->readAll();
        return !sample.data.isEmpty();
    }
};

template <int Id>
class Saver : public SoundSaver
{
public:
    const char *format() const override
    {
        return Id == 0 ? "NOT" : Id == 1 ? "TST" : "MP3";
    }
    const char *identifier() const override
    {
        return format();
    }
    void release() override
    {
        delete this;
    }
    bool save(const SoundSample &sample, QIODevice *device) override
    {
        return Id != 0 && device->write(sample.data) == sample.data.size();
    }
};

} // namespace

class TestSoundFormats : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void losslessFilesOfOthers_data();
    void losslessFilesOfOthers();
    void lossyFilesOfOthers_data();
    void lossyFilesOfOthers();
    void othersReadOurLosslessFiles_data();
    void othersReadOurLosslessFiles();
    void othersReadOurVorbis_data();
    void othersReadOurVorbis();
    void filesAreAsSmallAsThoseOfOthers();
    void streamsInARow();
    void losslessFilesKeepAllPrecisions_data();
    void losslessFilesKeepAllPrecisions();
    void vorbisScalesEachPrecision();
    void vorbisHasTheSerialNumberOfItsCaller();
    void anyDeviceWillDo_data();
    void anyDeviceWillDo();
    void damagedFiles_data();
    void damagedFiles();
    void lengthOfFlacIsNotBelieved();
    void whatCannotBeWritten();
    void extensionsAddFormats();
};

void TestSoundFormats::losslessFilesOfOthers_data()
{
    QTest::addColumn<QString>("words");
    QTest::addColumn<QString>("format");
    QTest::addColumn<SampleInfo>("info");
    const auto add = [](const char *name, const QByteArray &words, const QByteArray &format,
                        const QVector<int> &precisions) {
        for (const int precision : precisions) {
            for (const quint32 rate : {8000U, 44100U, 192000U}) {
                for (const int channels : {1, 2}) {
                    const SampleInfo info = {quint16(channels), quint16(precision), rate, 3002};
                    QTest::addRow("%s %s %d bits %u Hz %d channels", name, format.constData(),
                                  precision, rate, channels)
                        << command(words, info) << QString::fromLatin1(format) << info;
                }
            }
        }
    };
    const QByteArray ffmpeg = QByteArray("ffmpeg -v error ") + ffmpegRaw + " -i - ";
    const QByteArray sox = QByteArray("sox -V1 -D ") + soxRaw;
    const QByteArray flac =
        QByteArray("flac -s -c --channels=CHANNELS --bps=BITS --sample-rate=RATE ") + flacRaw;
    add("ffmpeg", ffmpeg + "-metadata comment=data -write_bext 1 -c:a pcm_RAW -f wav -", "WAV",
        {8, 16, 24, 32});
    add("sox", sox + " --comment data -t wav -", "WAV", {8, 16, 24, 32});
    add("ffmpeg", ffmpeg + "-f flac -", "FLAC", {16, 24});
    add("sox", sox + " -t flac -", "FLAC", {8, 16, 24});
    add("flac", flac + " --lax -5 -", "FLAC", {8, 16, 24, 32});
}

void TestSoundFormats::losslessFilesOfOthers()
{
    QFETCH(QString, words);
    QFETCH(QString, format);
    QFETCH(SampleInfo, info);
    const OtherProgram program(words);
    SKIP_IF_MISSING(program);
    const SoundSample sound = SampleSound::noise(info);
    QVERIFY(loaded(program.run(sound.data), format.toLatin1().constData()) == sound);
}

void TestSoundFormats::lossyFilesOfOthers_data()
{
    QTest::addColumn<QString>("encoder");
    QTest::addColumn<QString>("decoder");
    QTest::addColumn<QString>("format");
    QTest::addColumn<SampleInfo>("info");
    const auto add = [](const char *name, const QByteArray &encoder, const QByteArray &decoder,
                        const QByteArray &format, const QVector<quint32> &rates) {
        for (const quint32 rate : rates) {
            for (const quint16 channels : {1, 2}) {
                const SampleInfo info = {channels, 16, rate, 140001};
                QTest::addRow("%s %u Hz %d channels", name, rate, channels)
                    << command(encoder, info) << command(decoder, info)
                    << QString::fromLatin1(format) << info;
            }
        }
    };
    const QByteArray ffmpegInput = QByteArray("ffmpeg -v error ") + ffmpegRaw + " -i - ";
    const QByteArray ffmpeg = "ffmpeg -v error -i - -f s16le -";
    const QByteArray oggdec = "oggdec -Q -R -o - -";
    const QByteArray oggenc = "oggenc -Q -r -B 16 -C CHANNELS -R RATE -q 5 -o - -";
    add("oggenc to ffmpeg", oggenc, ffmpeg, "OGG", {8000, 44100, 192000});
    add("oggenc to oggdec", oggenc, oggdec, "OGG", {22050, 96000});
    add("ffmpeg to oggdec", ffmpegInput + "-c:a libvorbis -f ogg -", oggdec, "OGG", {8000, 48000});
    add("sox to oggdec", QByteArray("sox -V1 -D ") + soxRaw + " -t ogg -", oggdec, "OGG", {44100});
    // With tags in front of and behind the frames, which lame leaves out.
    add("ffmpeg to ffmpeg", ffmpegInput + "-metadata title=data -write_id3v1 1 -f mp3 -", ffmpeg,
        "MP3", {32000, 44100});
    add("sox to ffmpeg", QByteArray("sox -V1 -D ") + soxRaw + " -t mp3 -", ffmpeg, "MP3", {48000});
    const QByteArray lame = "lame --quiet -r -s RATE --resample RATE --signed --bitwidth 16";
    const QByteArray mono = lame + " -m m";
    for (const char *const mode : {"-b 64", "-V 2"}) {
        for (const int channels : {1, 2}) {
            for (const quint32 rate : {8000U, 22050U, 44100U, 48000U}) {
                const SampleInfo info = {quint16(channels), 16, rate, 140001};
                QTest::addRow("lame %s %u Hz %d channels", mode, rate, channels)
                    << command((channels == 1 ? mono : lame) + ' ' + mode + " - -", info)
                    << QString::fromLatin1(ffmpeg) << QStringLiteral("MP3") << info;
            }
        }
    }
}

void TestSoundFormats::lossyFilesOfOthers()
{
    QFETCH(QString, encoder);
    QFETCH(QString, decoder);
    QFETCH(QString, format);
    QFETCH(SampleInfo, info);
    const OtherProgram from(encoder);
    const OtherProgram to(decoder);
    SKIP_IF_MISSING(from);
    SKIP_IF_MISSING(to);
    const QByteArray file =
        from.run(SampleSound::tones(info.channels, info.frequency, info.samples).data);
    const SoundSample sound = loaded(file, format.toLatin1().constData());
    QCOMPARE(sound.channels, info.channels);
    QCOMPARE(sound.frequency, info.frequency);
    QCOMPARE(int(sound.precision), 16);
    QVERIFY(isWhole(sound));
    if (format == QLatin1String("OGG"))
        QCOMPARE(sound.samples, info.samples);
    const int step = largestStep(sound.data, to.run(file));
    QVERIFY2(step <= 1, qPrintable(QString::number(step)));
}

void TestSoundFormats::othersReadOurLosslessFiles_data()
{
    QTest::addColumn<QString>("words");
    QTest::addColumn<QString>("format");
    QTest::addColumn<SampleInfo>("info");
    const auto add = [](const char *words, const char *format, const QVector<int> &precisions) {
        for (const int precision : precisions) {
            for (const int channels : {1, 2}) {
                const SampleInfo info = {quint16(channels), quint16(precision), 96001, 25001};
                const QByteArray name(words);
                QTest::addRow("%s %s %d bits %d channels", name.left(name.indexOf(' ')).constData(),
                              format, precision, channels)
                    << command(words, info) << QString::fromLatin1(format) << info;
            }
        }
    };
    const QVector<int> all = {8, 16, 24, 32};
    add("ffmpeg -v error -i - -c:a pcm_RAW -f RAW -", "WAV", all);
    add("sox -V1 -D -t wav - -t raw -e SIGN -b BITS -", "WAV", all);
    add("flac -s -d -c --force-raw-format --endian=little --sign=SIGN -", "FLAC", all);
    add("ffmpeg -v error -i - -c:a pcm_RAW -f RAW -", "FLAC", {16, 24});
    add("sox -V1 -D -t flac - -t raw -e SIGN -b BITS -", "FLAC", {8, 16, 24});
}

void TestSoundFormats::othersReadOurLosslessFiles()
{
    QFETCH(QString, words);
    QFETCH(QString, format);
    QFETCH(SampleInfo, info);
    const OtherProgram program(words);
    SKIP_IF_MISSING(program);
    const SoundSample sound = SampleSound::noise(info);
    QVERIFY(program.run(saved(sound, format.toLatin1().constData())) == sound.data);
}

void TestSoundFormats::othersReadOurVorbis_data()
{
    QTest::addColumn<QString>("words");
    QTest::addColumn<int>("channels");
    QTest::addColumn<int>("frequency");
    for (const int frequency : {8000, 44100, 192000}) {
        for (const int channels : {1, 2}) {
            for (const char *const words :
                 {"ffmpeg -v error -i - -f s16le -", "oggdec -Q -R -o - -"})
                QTest::addRow("%.6s %d Hz %d channels", words, frequency, channels)
                    << QString::fromLatin1(words) << channels << frequency;
        }
    }
}

void TestSoundFormats::othersReadOurVorbis()
{
    QFETCH(QString, words);
    QFETCH(int, channels);
    QFETCH(int, frequency);
    const OtherProgram program(words);
    SKIP_IF_MISSING(program);
    const SoundSample sound = SampleSound::tones(quint16(channels), quint32(frequency), 140001);
    const QByteArray read = program.run(saved(sound, "OGG"));
    QCOMPARE(read.size(), sound.data.size());
    double signal = 0;
    double noise = 0;
    for (int i = 0; i < read.size(); i += 2) {
        const double value = qFromLittleEndian<qint16>(sound.data.constData() + i);
        signal += value * value;
        noise += std::pow(value - qFromLittleEndian<qint16>(read.constData() + i), 2);
    }
    QVERIFY2(signal > 100 * noise, qPrintable(QString::number(signal / noise)));
}

// The quality of Ogg Vorbis is 0.4, and FLAC is compressed as well as it can be.
void TestSoundFormats::filesAreAsSmallAsThoseOfOthers()
{
    const SoundSample sound = SampleSound::tones(2, 44100, 400001);
    for (const QString &words :
         {QStringLiteral("oggenc -Q -r -B 16 -C 2 -R 44100 -q 4 -o - -"),
          QStringLiteral("flac -s -c -8 --no-padding --channels=2 --bps=16 --sample-rate=44100 "
                         "--force-raw-format --endian=little --sign=signed -")}) {
        const OtherProgram program(words);
        SKIP_IF_MISSING(program);
        const int theirs = program.run(sound.data).size();
        const int ours =
            saved(sound, words.startsWith(QLatin1String("ogg")) ? "OGG" : "FLAC").size();
        QVERIFY2(qAbs(ours - theirs) < theirs / 50,
                 qPrintable(QStringLiteral("%1 against %2").arg(ours).arg(theirs)));
    }
}

// A file of Ogg Vorbis may have one stream behind the other. Another number of channels ends it.
void TestSoundFormats::streamsInARow()
{
    // Noise takes several pages: libvorbisfile passes over streams of one.
    const SoundSample stereo = SampleSound::noise({2, 16, 22050, 20000});
    const SoundSample mono = SampleSound::noise({1, 16, 22050, 20000});
    QBuffer buffer;
    for (const SoundSample &sound : {stereo, stereo, mono})
        QVERIFY(soundToOGG(sound, &buffer, int(buffer.size())));
    const SoundSample sound = loaded(buffer.data(), "OGG");
    QVERIFY(isWhole(sound));
    QCOMPARE(int(sound.channels), 2);
    QCOMPARE(sound.samples, 40000U);
}

void TestSoundFormats::losslessFilesKeepAllPrecisions_data()
{
    QTest::addColumn<SampleInfo>("info");
    for (const int precision : {8, 16, 20, 24, 32}) {
        for (const int channels : {1, 2, 5}) {
            QTest::addRow("%d bits %d channels", precision, channels)
                << SampleInfo{quint16(channels), quint16(precision), 11025, 1234};
        }
    }
}

void TestSoundFormats::losslessFilesKeepAllPrecisions()
{
    QFETCH(SampleInfo, info);
    SoundSample sound = SampleSound::noise(info);
    // Of three bytes 20 bits are the upper ones.
    for (int i = 0; info.precision == 20 && i < sound.data.size(); i += 3)
        sound.data[i] = char(uchar(sound.data[i]) & 0xF0);
    for (const char *const format : {"WAV", "FLAC"})
        QVERIFY(loaded(saved(sound, format), format) == sound);
}

// A constant value of each precision keeps the level that the formulas give it: of one byte the
// unsigned one out of 255, of three bytes half of it.
void TestSoundFormats::vorbisScalesEachPrecision()
{
    const struct
    {
        quint16 precision;
        const char *sample; // in hexadecimal digits
        int level;
    } rows[] = {
        {8, "99", 19660},         {16, "0040", 16384},   {20, "000040", 8192},
        {24, "000040", 8192},     {24, "0000c0", -8192}, {32, "00000040", 16384},
        {32, "000000c0", -16384},
    };
    for (const auto &row : rows) {
        const SoundSample sound = {{1, row.precision, 8000, 20000},
                                   QByteArray::fromHex(row.sample).repeated(20000)};
        const SoundSample again = loaded(saved(sound, "OGG"), "OGG");
        QCOMPARE(again.samples, 20000U);
        const int level = qFromLittleEndian<qint16>(again.data.constData() + 20000);
        QVERIFY2(qAbs(level - row.level) < 700, qPrintable(QString::number(level)));
    }
}

void TestSoundFormats::vorbisHasTheSerialNumberOfItsCaller()
{
    const SoundSample sound = SampleSound::tones(2, 22050, 5000);
    QBuffer buffers[2];
    for (QBuffer &buffer : buffers)
        QVERIFY(Vela::soundToOGG(sound, &buffer, 0x12345678));
    QCOMPARE(buffers[0].data(), buffers[1].data());
    constexpr int serialAt = 14; // in the header of a page
    QCOMPARE(qFromLittleEndian<qint32>(buffers[0].data().constData() + serialAt), 0x12345678);
}

void TestSoundFormats::anyDeviceWillDo_data()
{
    QTest::addColumn<QByteArray>("format");
    QTest::addColumn<QByteArray>("file");
    const SoundSample sound = SampleSound::tones(2, 22050, 20000);
    for (const char *const format : {"WAV", "OGG", "FLAC"})
        QTest::addRow("%s", format) << QByteArray(format) << saved(sound, format);
    const OtherProgram lame(QStringLiteral("lame --quiet -r -s 22.05 --signed --bitwidth 16 - -"));
    if (!lame.isMissing())
        QTest::addRow("MP3") << QByteArray("MP3") << lame.run(sound.data);
}

void TestSoundFormats::anyDeviceWillDo()
{
    QFETCH(QByteArray, format);
    QFETCH(QByteArray, file);
    const SoundSample sound = loaded(file, format.constData());
    QVERIFY(sound.samples >= 20000);

    Pipe pipe(file);
    SoundSample piped;
    QVERIFY(loadSound(&pipe, format.constData(), piped));
    QVERIFY(piped == sound);

    // Among other things, from where it stands.
    QBuffer buffer;
    buffer.setData("before" + file);
    QVERIFY(buffer.open(QIODevice::ReadOnly) && buffer.seek(6));
    SoundSample inside;
    QVERIFY(loadSound(&buffer, format.constData(), inside));
    QVERIFY(inside == sound);

    if (format == "MP3")
        return;
    Pipe written;
    QVERIFY(saveSound(&written, format.constData(), sound));
    QVERIFY(loaded(written.bytes, format.constData()).samples == sound.samples);
    QBuffer behind;
    QVERIFY(behind.open(QIODevice::WriteOnly));
    behind.write("before");
    QVERIFY(saveSound(&behind, format.constData(), sound));
    behind.write("after");
    QVERIFY(behind.data().startsWith("before") && behind.data().endsWith("after"));
    const QByteArray between = behind.data().mid(6).chopped(5);
    QVERIFY(loaded(between, format.constData()).samples == sound.samples);
    if (format != "OGG")
        QVERIFY(between == saved(sound, format.constData()));

    DeadDevice dead;
    QVERIFY(!loadSound(&dead, format.constData(), piped));
    QVERIFY(!saveSound(&dead, format.constData(), sound));
}

void TestSoundFormats::damagedFiles_data()
{
    anyDeviceWillDo_data();
}

// Wherever a file ends, and whatever a byte becomes, there is a sound with frames as it says, and
// none is longer than it was.
void TestSoundFormats::damagedFiles()
{
    QFETCH(QByteArray, format);
    QFETCH(QByteArray, file);
    const quint32 samples = loaded(file, format.constData()).samples;
    for (int size = 0; size < file.size(); size += size < 200 ? 7 : 3571) {
        const SoundSample sound = loaded(file.left(size), format.constData());
        QVERIFY(isWhole(sound) && sound.samples <= samples + 4096);
    }
    for (const char *const other : formats) {
        if (format != other)
            QVERIFY(isWhole(loaded(file, other)));
    }
    std::mt19937 random(9);
    for (int i = 0; i < 60; ++i) {
        QByteArray damaged = file;
        const auto range = quint32(i < 40 ? 120 : file.size());
        damaged[int(random() % range)] = char(random());
        const SoundSample sound = loaded(damaged, format.constData());
        QVERIFY(sound.data.capacity() < 40000000);
    }
}

// A FLAC file that says it has 2^36 - 1 frames, in the low 36 bits before the checksum.
void TestSoundFormats::lengthOfFlacIsNotBelieved()
{
    const SoundSample sound = SampleSound::noise({1, 16, 8000, 500});
    QByteArray file = saved(sound, "FLAC");
    constexpr int lengthAt = 4 + 4 + 13;
    file[lengthAt] = char(file[lengthAt] | 0x0F);
    file.replace(lengthAt + 1, 4, "\xFF\xFF\xFF\xFF");
    const SoundSample again = loaded(file, "FLAC");
    QVERIFY(again == sound);
    QVERIFY(again.data.capacity() < 10000);
}

void TestSoundFormats::whatCannotBeWritten()
{
    const SoundSample sound = SampleSound::tones(2, 8000, 30000);
    for (const char *const format : {"WAV", "OGG", "FLAC"}) {
        const int size = saved(sound, format).size();
        for (const int room : {0, 43, size / 2, size - 1}) {
            Pipe pipe;
            pipe.room = room;
            QVERIFY(!saveSound(&pipe, format, sound));
        }
    }
    for (const SampleInfo info :
         {SampleInfo{0, 16, 8000, 9}, SampleInfo{1, 16, 0, 9}, SampleInfo()}) {
        for (const char *const format : {"OGG", "FLAC"}) {
            QBuffer buffer;
            QVERIFY(!saveSound(&buffer, format, {info, QByteArray(18, '\0')}));
        }
    }
    // Frames that are not there are not written.
    SoundSample tooLong = sound;
    tooLong.samples = 1000000;
    for (const char *const format : {"OGG", "FLAC"})
        QCOMPARE(loaded(saved(tooLong, format), format).samples, 30000U);
}

void TestSoundFormats::extensionsAddFormats()
{
    const SoundSample sound = SampleSound::noise({1, 8, 8000, 10});
    QBuffer buffer;
    QVERIFY(!saveSound(&buffer, "MP3", sound));
    QVERIFY(!saveSound(&buffer, "TST", sound));
    SoundSample again = sound;
    QVERIFY(!loadSound(&buffer, "TST", again) && !loadSound(&buffer, nullptr, again));
    buffer.close();

    const QTemporaryDir folder;
    const ExtensionManager manager(folder.path());
    QVERIFY(ExtensionManager::add(new Silence) && ExtensionManager::add(new Saver<0>));
    QVERIFY(!saveSound(&buffer, "NOT", sound));
    buffer.close();
    QVERIFY(ExtensionManager::add(new Saver<1>) && ExtensionManager::add(new Saver<2>));
    for (const char *const format : {"TST", "MP3"}) {
        buffer.setData(QByteArray());
        QVERIFY(saveSound(&buffer, format, sound));
        QCOMPARE(buffer.data(), sound.data);
        buffer.close();
    }
    QVERIFY(loadSound(&buffer, "TST", again));
    QCOMPARE(again.data, sound.data);
    QVERIFY(soundFileExtension(SoundExtensionType(3)) == nullptr);
}

QTEST_GUILESS_MAIN(TestSoundFormats)
#include "tst_soundformats.moc"
