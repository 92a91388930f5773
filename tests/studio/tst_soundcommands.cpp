// SPDX-License-Identifier: MIT
#include "image/otherprogram.h"
#include "studio/clirun.h"
#include "studio/smallgame.h"

#include <QJsonArray>
#include <QTemporaryDir>
#include <QtTest>

using namespace CliRun;
using SmallGame::readFile;
using SmallGame::writeFile;

namespace {

QStringList words(const QByteArray &text)
{
    return QString::fromUtf8(text).split(QLatin1Char(' '), Qt::SkipEmptyParts);
}

QStringList lines(const char *text)
{
    return linesOf(QString::fromUtf8(text));
}

/// Returns the samples of a file as ffmpeg sees them, with 32 bits.
QByteArray samplesOf(const QString &file)
{
    return OtherProgram(QStringLiteral("ffmpeg -v error -i - -f s32le -")).run(readFile(file));
}

/// Returns what ffprobe says of a file: codec, rate and channels, then bits where they are its own.
QByteArray formOf(const QString &file)
{
    const OtherProgram probe(
        QStringLiteral("ffprobe -v error -of csv=p=0:nk=1 -show_entries "
                       "stream=codec_name,sample_rate,channels,bits_per_raw_sample -"));
    return probe.run(readFile(file)).trimmed();
}

/// Has sox write a sound of noise, the same each time. \a form is one of its options.
bool makeSound(const QString &file, const char *form, int frames = 1000)
{
    const QFileInfo info(file);
    const QString plain = info.path() + QStringLiteral("/new.") + info.suffix();
    const QString call = QStringLiteral("sox -V1 -D -R %1 -n %1 %2 synth %3s whitenoise vol 0.5");
    QDir().mkpath(info.path());
    OtherProgram(call.arg(QString::fromUtf8(form), plain).arg(frames)).run({});
    return QFile::rename(plain, file);
}

} // namespace

class TestSoundCommands : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();

    void soundsBecomeOtherFormats();
    void theInputIsReplacedAtOnce();
    void formsAreTold();
    void collectionsComeAndGo();
    void soundsAreReplacedInTheirPlace();
    void whatCannotBeIsRefused();

private:
    /// Runs the program with "@/" for the folder of the test, and with files of it behind.
    Result vela(const QByteArray &call, const QStringList &files = {}) const
    {
        QStringList arguments = words(call);
        arguments.replaceInStrings(QStringLiteral("@"), m_folder);
        for (const QString &file : files)
            arguments.append(path(file));
        return run(arguments);
    }
    QString path(const QString &name) const
    {
        return m_folder + QLatin1Char('/') + name;
    }
    QString path(const char *name) const
    {
        return path(QString::fromUtf8(name));
    }
    /// Returns the lines of a result with one blank between their columns.
    QStringList rowsOf(const Result &result) const
    {
        QStringList rows = linesOf(QString(result.out).replace(m_folder, QStringLiteral("@")));
        return rows.replaceInStrings(QRegularExpression(QStringLiteral(" +")), QStringLiteral(" "));
    }

    std::unique_ptr<QTemporaryDir> m_temporary;
    QString m_folder;
};

void TestSoundCommands::init()
{
    for (const char *program : {"sox", "ffmpeg", "ffprobe"})
        SKIP_IF_MISSING(OtherProgram(QString::fromUtf8(program)));
    m_temporary = std::make_unique<QTemporaryDir>();
    QVERIFY(m_temporary->isValid());
    m_folder = m_temporary->path();
}

void TestSoundCommands::soundsBecomeOtherFormats()
{
    for (const char *name : {"in.wav", "in.flac", "in.mp3"})
        QVERIFY(makeSound(path(name), "-r 44100 -b 24 -c 2"));
    const QByteArray input = samplesOf(path("in.wav"));
    QCOMPARE(input.size(), 1000 * 2 * 4);
    const struct
    {
        const char *call;
        const char *out;
        const char *form;
        int frames; // 0 for those of the input, bit by bit, -1 for at least as many
    } rows[] = {
        {"@/in.wav", "O.Flac", "flac,44100,2,24", 0},
        {"@/in.flac", "o.wav", "pcm_s24le,44100,2,24", 0},
        {"@/in.wav --bits 32", "o.wav", "pcm_s32le,44100,2,32", 0},
        {"@/in.wav --bits 8", "o.wav", "pcm_u8,44100,2,N/A", 1000},
        {"@/in.wav --bits 20", "o.flac", "flac,44100,2,20", 1000},
        {"--channels 1 @/in.wav", "o.wav", "pcm_s24le,44100,1,24", 1000},
        {"@/in.wav --rate 22050", "o.flac", "flac,22050,2,24", 500},
        {"@/in.mp3 --rate 88200 --bits 16 --channels 2", "o.wav", "pcm_s16le,88200,2,N/A", -1},
        {"@/in.wav --bits 16", "o.ogg", "vorbis,44100,2,N/A", -1},
    };
    for (const auto &row : rows) {
        const QString name = QString::fromUtf8(row.out);
        const Result result = vela(QByteArray("sound convert ") + row.call, {name});
        QVERIFY2(result.code == 0, qPrintable(result.err));
        QCOMPARE(result.out, path(name) + QLatin1Char('\n'));
        const QByteArray form = formOf(path(name));
        QCOMPARE(form, QByteArray(row.form));
        const QByteArray samples = samplesOf(path(name));
        if (row.frames == 0)
            QCOMPARE(samples, input);
        else if (row.frames > 0)
            QCOMPARE(samples.size(), 4 * row.frames * form.split(',').at(2).toInt());
        else
            QVERIFY2(samples.size() >= input.size(), row.call);
    }
}

void TestSoundCommands::theInputIsReplacedAtOnce()
{
    QVERIFY(makeSound(path("in.wav"), "-r 8000 -b 16 -c 1"));
    const QByteArray before = readFile(path("in.wav"));
    const QJsonObject dry = json(vela("sound convert @/in.wav @/in.wav --channels 2 -n --json"));
    QCOMPARE(dry,
             (QJsonObject{{QStringLiteral("path"), path("in.wav")},
                          {QStringLiteral("size"), 44 + 4000},
                          {QStringLiteral("written"), false}}));
    QCOMPARE(readFile(path("in.wav")), before);
    const Result result = vela("sound convert @/in.wav @/in.wav --channels 2 --quiet");
    QCOMPARE(result.code, 0);
    QCOMPARE(result.out + result.err, QString());
    QCOMPARE(samplesOf(path("in.wav")).size(), 1000 * 2 * 4);
    // There is room for a part only.
    const QByteArray stereo = readFile(path("in.wav"));
    QProcess shell;
    shell.start(QStringLiteral("sh"),
                {QStringLiteral("-c"), QStringLiteral("ulimit -f 8; exec \"$0\" \"$@\""), program(),
                 QStringLiteral("sound"), QStringLiteral("convert"), path("in.wav"), path("in.wav"),
                 QStringLiteral("--bits"), QStringLiteral("32")});
    QVERIFY(shell.waitForFinished());
    QCOMPARE(shell.exitCode(), 2);
    QVERIFY(shell.readAllStandardError().contains("in.wav: File too large"));
    QCOMPARE(readFile(path("in.wav")), stereo);
    QCOMPARE(SmallGame::tree(m_folder).size(), 1);
}

void TestSoundCommands::formsAreTold()
{
    QVERIFY(makeSound(path("a b.wav"), "-r 8000 -b 8 -c 1", 12));
    QVERIFY(makeSound(path("音.flac"), "-r 48000 -b 24 -c 3"));
    QVERIFY(makeSound(path("c.ogg"), "-r 44100 -b 16 -c 2", 44100));
    QVERIFY(writeFile(path("bad.ogg"), "OggS"));
    const QStringList files = lines("a b.wav\n音.flac\nbad.ogg\nc.ogg");
    const Result result = vela("sound info", files);
    QCOMPARE(result.code, 2);
    QVERIFY2(result.err.contains(QLatin1String("bad.ogg: is no OGG sound")),
             qPrintable(result.err));
    // 12 frames are 1.5 ms, 1000 of 48000 a second are 20.8 ms.
    QCOMPARE(rowsOf(result),
             lines("@/a b.wav WAV 2 ms 8000 Hz 8 bits 1 channel 12 frames\n"
                   "@/音.flac FLAC 21 ms 48000 Hz 24 bits 3 channels 1000 frames\n"
                   "@/c.ogg OGG 1000 ms 44100 Hz 16 bits 2 channels 44100 frames"));
    const QJsonObject object = json(vela("sound info --json", files));
    const QJsonObject flac = object[QStringLiteral("sounds")].toArray().at(1).toObject();
    QCOMPARE(string(flac, "path"), path(files.at(1)));
    QCOMPARE(string(flac, "format"), QStringLiteral("FLAC"));
    QCOMPARE(flac[QStringLiteral("channels")].toInt(), 3);
}

// In and out again, the frames stay the same to the last bit, and the sounds in their order.
void TestSoundCommands::collectionsComeAndGo()
{
    const char *const forms[] = {"-r 11025 -b 24", "-b 16 -c 2", "-r 8000 -b 8"};
    QStringList names = lines("two words.wav\n飛ぶ・音.flac\nv1.2.wav");
    for (int i = 20; i > 0; --i)
        names.append(QStringLiteral("%1.%2").arg(i).arg(QLatin1String(i % 2 ? "wav" : "flac")));
    for (int i = 0; i < names.size(); ++i)
        QVERIFY(makeSound(path(names.at(i)), forms[i % 3], 1000 + i));
    QCOMPARE(rowsOf(vela("sounds import @/a.sounds -n", names)), words("@/a.sounds"));
    QVERIFY(!QFile::exists(path("a.sounds")));
    const QJsonObject imported = json(vela("sounds import @/a.sounds --json", names));
    QCOMPARE(string(imported, "path"), path("a.sounds"));
    QVERIFY(imported[QStringLiteral("written")].toBool());
    const QJsonArray list =
        json(vela("sounds list @/a.sounds --json"))[QStringLiteral("sounds")].toArray();
    QCOMPARE(list.size(), names.size());
    const QJsonObject dry = json(vela("sounds export @/a.sounds @/o/wav -n --json"));
    QCOMPARE(string(dry, "path"), path("o/wav"));
    QVERIFY(!QFile::exists(path("o")));

    for (const char *format : {"wav", "flac"}) {
        const QByteArray call = QByteArray("sounds export @/a.sounds @/o/FORMAT --format FORMAT");
        const Result result = vela(QByteArray(call).replace("FORMAT", format));
        QVERIFY2(result.code == 0, qPrintable(result.err));
        QStringList files;
        for (int i = 0; i < names.size(); ++i) {
            const QString name = QFileInfo(names.at(i)).completeBaseName();
            files.append(QStringLiteral("o/%1/%2.%1").arg(QLatin1String(format), name));
            QCOMPARE(linesOf(result.out).value(i), path(files.last()));
            QCOMPARE(string(list.at(i), "identifier"), name);
            QCOMPARE(list.at(i)[QStringLiteral("frames")].toInt(), 1000 + i);
            QCOMPARE(list.at(i)[QStringLiteral("bits")].toInt(), 24 - i % 3 * 8);
        }
        for (int i = 0; i < 6; ++i) {
            QCOMPARE(samplesOf(path(files.at(i))), samplesOf(path(names.at(i))));
            QCOMPARE(formOf(path(files.at(i))).split(',').mid(1, 2),
                     formOf(path(names.at(i))).split(',').mid(1, 2));
        }
        // What came out makes the same file again.
        const QByteArray before = readFile(path("a.sounds"));
        QCOMPARE(vela("sounds import @/a.sounds -q", files).out, QString());
        QCOMPARE(readFile(path("a.sounds")), before);
    }
}

void TestSoundCommands::soundsAreReplacedInTheirPlace()
{
    QVERIFY(makeSound(path("nul.wav"), "-r 8000 -b 16 -c 1"));
    QVERIFY(makeSound(path("b.wav"), "-r 8000 -b 16 -c 2"));
    QVERIFY(makeSound(path("sub/NUL.flac"), "-r 44100 -b 24 -c 1", 50));
    QVERIFY(writeFile(path("bad.wav"), "no sound"));
    // One bad sound does not keep the others out.
    const Result result = vela("sounds import @/x.sounds @/nul.wav @/bad.wav @/b.wav");
    QCOMPARE(result.code, 2);
    QCOMPARE(rowsOf(result), lines("nul @/nul.wav\nb @/b.wav"));
    QVERIFY(result.err.contains(QLatin1String("bad.wav: is no WAV sound")));
    // A link stays one.
    QVERIFY(QFile::link(QStringLiteral("x.sounds"), path("link.sounds")));
    QCOMPARE(vela("sounds import @/link.sounds @/sub/NUL.flac").code, 0);
    QVERIFY(QFileInfo(path("link.sounds")).isSymLink());
    QCOMPARE(rowsOf(vela("sounds list @/x.sounds")),
             lines("nul 1 ms 44100 Hz 24 bits 1 channel 50 frames\n"
                   "b 125 ms 8000 Hz 16 bits 2 channels 1000 frames"));
    // Not every disk takes each name for a file.
    QCOMPARE(rowsOf(vela("sounds export @/x.sounds @/out --format ogg")),
             words("@/out/_nul.ogg @/out/b.ogg"));
    QCOMPARE(formOf(path("out/b.ogg")), QByteArray("vorbis,8000,2,N/A"));
    // No sound takes each name.
    QVERIFY(QFile::rename(path("b.wav"), path("b?.wav")));
    const Result renamed = vela("sounds import @/x.sounds @/b?.wav @/nul.wav");
    QCOMPARE(rowsOf(renamed), lines("sound @/b?.wav\nnul @/nul.wav"));
    QCOMPARE(linesOf(renamed.err).size(), 1);
    QVERIFY(renamed.err.contains(QLatin1String("b?.wav: no sound can have this name")));
}

void TestSoundCommands::whatCannotBeIsRefused()
{
    QVERIFY(makeSound(path("in1.wav"), "-r 8000 -b 16"));
    QVERIFY(makeSound(path("in3.wav"), "-b 16 -c 3"));
    QVERIFY(makeSound(path("in9.wav"), "-b 16 -c 9"));
    QVERIFY(makeSound(path("float.wav"), "-e float"));
    for (const char *name : {"a.xyz", "bad.wav", "bad.flac", "bad.sounds"})
        QVERIFY(writeFile(path(name), "nothing that could be heard"));
    QCOMPARE(vela("sounds import @/in.sounds @/in1.wav").code, 0);
    QVERIFY(makeSound(path("o/in1.wav/sub.wav"), "-b 16"));
    const auto before = SmallGame::tree(m_folder);
    const struct
    {
        const char *call;
        const char *reason;
    } rows[] = {
        {"sound", "convert, info"},
        {"sound convert @/in1.wav @/o.mp3", "o.mp3: is of no format of sounds that can be written"},
        {"sound convert @/a.xyz @/o.wav", "a.xyz: is of no format of sounds that can be read"},
        {"sound convert @/in1.wav @/none/o.wav", "none/o.wav: its folder is not there"},
        {"sound convert @/in1.wav @/none/o.wav -n", "none/o.wav: its folder is not there"},
        {"sound convert @/in1.wav @/o/in1.wav -n", "in1.wav: is a folder"},
        {"sounds export @/in.sounds @/o -n", "in1.wav: is a folder"},
        {"sounds export @/in.sounds @/in1.wav/o -n", "in1.wav/o: the folder cannot be made"},
        {"sounds import @/none/o.sounds @/in1.wav -n", "o.sounds: its folder is not there"},
        {"sounds import @/none/o.sounds @/in1.wav", "o.sounds: its folder is not there"},
        {"sound convert @/float.wav @/o.wav", "float.wav: is no WAV sound of integer samples"},
        {"sound convert @/bad.flac @/o.wav", "bad.flac: is no FLAC sound"},
        // The options come first: nothing is read in vain.
        {"sound convert @/none.wav @/o.wav --bits 12", "--bits needs one of"},
        {"sound convert @/none.wav @/o.wav --rate 0", "--rate needs"},
        {"sound convert @/none.wav @/o.ogg --bits 24", "--bits: OGG"},
        {"sound convert @/none.wav @/o.ogg --rate 200001", "--rate: OGG holds 200000 frames"},
        {"sound convert @/in3.wav @/o.wav --channels 2", "o.wav: 3 channels can become one"},
        {"sound convert @/in1.wav @/o.wav --rate 31", "one is more than 256 times the other"},
        {"sound convert @/in9.wav @/o.flac", "o.flac: FLAC holds 8 channels at most"},
        {"sound info @/none.wav @/bad.wav", "none.wav: "},
        {"sounds list @/none.sounds", "none.sounds: there is no such file"},
        {"sounds list @/in1.wav", "in1.wav: no engine has sounds files of such a name"},
        {"sounds list @/bad.sounds", "bad.sounds"},
        {"sounds export @/bad.sounds @/o --format mp3", "--format needs"},
        {"sounds import @/o.wav @/in1.wav", "o.wav: no engine has sounds files"},
        {"sounds import @/o.sounds @/bad.wav", "bad.wav: is no WAV sound"},
        {"sounds import @/o.sounds @/in1.wav @/no/IN1.ogg", "IN1.ogg: a second file of the sound"},
    };
    for (const auto &row : rows) {
        const Result result = vela(row.call);
        QVERIFY2(result.code == 2 && result.out.isEmpty(), row.call);
        QVERIFY2(result.err.contains(QString::fromUtf8(row.reason)), qPrintable(result.err));
        QCOMPARE(SmallGame::tree(m_folder), before);
    }
}

QTEST_GUILESS_MAIN(TestSoundCommands)
#include "tst_soundcommands.moc"
