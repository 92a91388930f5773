// SPDX-License-Identifier: MIT
#include "image/otherprogram.h"
#include "image/pipe.h"
#include "image/samplepixels.h"

#include "engine/extensionmanager.h"
#include "image/gifimage.h"
#include "image/imageextension.h"
#include "image/imageformats.h"

#include <QBuffer>
#include <QtEndian>

using namespace Vela;

namespace {

constexpr QSize oddSize(15, 7);

QByteArray hex(const char *digits)
{
    return QByteArray::fromHex(digits);
}

// A device that does not open.
class DeadDevice : public QBuffer
{
public:
    bool open(OpenMode) override
    {
        return false;
    }
};

struct PcxFile
{
    int bits = 8;
    int planes = 1;
    int width = 1;
    int height = 1;
    int lineLength = 1;

    QByteArray header() const
    {
        QByteArray bytes(128, '\0');
        bytes[0] = 10;
        bytes[1] = 5;
        bytes[3] = char(bits);
        const auto setWord = [&bytes](int at, int value) {
            qToLittleEndian(quint16(value), bytes.data() + at);
        };
        setWord(4, 3);
        setWord(6, 4);
        setWord(8, 3 + width - 1);
        setWord(10, 4 + height - 1);
        for (int i = 0; i < 48; ++i)
            bytes[16 + i] = char(i);
        bytes[65] = char(planes);
        setWord(66, lineLength);
        return bytes;
    }
};

QImage loaded(const QByteArray &bytes, const char *format)
{
    QBuffer buffer;
    buffer.setData(bytes);
    buffer.open(QIODevice::ReadOnly);
    QImage image;
    loadImage(&buffer, format, image);
    return image;
}

QByteArray saved(const QImage &image, const char *format)
{
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    return saveImage(&buffer, format, image) ? buffer.data() : QByteArray();
}

QByteArray row(const QImage &image, int y)
{
    return QByteArray(reinterpret_cast<const char *>(image.constScanLine(y)),
                      image.width() * image.depth() / 8);
}

// An image of the format with runs and single pixels, in a few of its many colours.
QImage sample(QImage::Format format, QSize size)
{
    SamplePixels::Random random(7);
    const bool isMono = format == QImage::Format_Mono;
    QImage image = SamplePixels::make(random, SamplePixels::Tiles, size, isMono ? 2 : 256);
    QVector<QRgb> colors{qRgb(250, 240, 10), qRgb(20, 30, 40)};
    while (!isMono && colors.size() < 256)
        colors.append(qRgba(SamplePixels::below(random, 256), SamplePixels::below(random, 256),
                            SamplePixels::below(random, 256),
                            format == QImage::Format_ARGB32 ? colors.size() : 255));
    image.setColorTable(colors);
    return isMono ? image.convertToFormat(format, colors, Qt::AvoidDither)
                  : image.convertToFormat(format);
}

// The most virtual memory that this process has had, in bytes; 0 where that is not known.
qint64 peakMemory()
{
    QFile file(QStringLiteral("/proc/self/status"));
    if (!file.open(QIODevice::ReadOnly))
        return 0;
    const QByteArray text = file.readAll();
    const int at = text.indexOf("VmPeak:") + 7;
    return text.mid(at, text.indexOf(" kB", at) - at).trimmed().toLongLong() * 1024;
}

class TestLoader : public ImageLoader
{
    const char *m_format;
    int m_width;

public:
    TestLoader(const char *format, int width)
        : m_format(format)
        , m_width(width)
    {
    }
    void release() override
    {
        delete this;
    }
    const char *format() const override
    {
        return m_format;
    }
    const char *identifier() const override
    {
        return m_format;
    }
    bool load(QIODevice *, QImage &image) override
    {
        image = QImage(m_width, 1, QImage::Format_RGB32);
        return true;
    }
};

class TestSaver : public ImageSaver
{
public:
    void release() override
    {
        delete this;
    }
    const char *format() const override
    {
        return "ABC";
    }
    const char *identifier() const override
    {
        return "";
    }
    bool save(const QImage &image, QIODevice *device) override
    {
        return device->write(QByteArray::number(image.width())) > 0;
    }
};

} // namespace

class TestImageFormats : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void headersTellSizeAndFormat_data();
    void headersTellSizeAndFormat();
    void pcxPacketsBecomePixels_data();
    void pcxPacketsBecomePixels();
    void pcxPaletteStandsAtTheEnd_data();
    void pcxPaletteStandsAtTheEnd();
    void damagedPcxGivesNoImage();
    void pcxIsWrittenAsTold();
    void readsWhatOthersWrite_data();
    void readsWhatOthersWrite();
    void othersReadWhatIsWritten_data();
    void othersReadWhatIsWritten();
    void paletteSurvives_data();
    void paletteSurvives();
    void endsOfLinesAreZero();
    void shortBitmapsAreBlack();
    void devicesNeedNotGoBack_data();
    void devicesNeedNotGoBack();
    void codecsOpenDevicesAndImagesDoNot();
    void headersTakeNoMemory_data();
    void headersTakeNoMemory();
    void extensionsAddFormats();
};

void TestImageFormats::headersTellSizeAndFormat_data()
{
    QTest::addColumn<QByteArray>("format");
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<QSize>("size");
    QTest::addColumn<int>("imageFormat");
    const QSize none(0, 0);
    const auto bmp = [](const char *bits) -> QByteArray {
        return hex("424d000000000000000036000000 28000000 03000000 feffffff 0100") + hex(bits)
            + QByteArray(24, '\0');
    };
    const auto png = [](int type) -> QByteArray {
        return hex("89504e470d0a1a0a 0000000d 49484452 00000102 00000003 08") + char(type);
    };
    QTest::newRow("top-down bmp") << QByteArray("BMP") << bmp("1800") << QSize(3, 2) << 4;
    QTest::newRow("bmp of 32 bits") << QByteArray("BMP") << bmp("2000") << QSize(3, 2) << 5;
    QTest::newRow("bmp of 4 bits") << QByteArray("BMP") << bmp("0400") << QSize(3, 2) << 0;
    QTest::newRow("short bmp") << QByteArray("BMP") << bmp("1800").left(53) << none << 3;
    const int formats[] = {3, 3, 4, 3, 3, 3, 5};
    for (int type = 0; type < 7; ++type)
        QTest::addRow("png of type %d", type)
            << QByteArray("PNG") << png(type) << QSize(258, 3) << formats[type];
    QTest::newRow("no png") << QByteArray("PNG") << png(2).replace("PNG", "PNX") << none << 3;
    QTest::newRow("no header") << QByteArray("PNG") << png(2).replace("IHDR", "IDAT") << none << 3;
    QTest::newRow("pcx") << QByteArray("PCX") << PcxFile{8, 3, 300, 200, 300}.header()
                         << QSize(300, 200) << 4;
    QTest::newRow("pcx of 5 bits")
        << QByteArray("PCX") << PcxFile{5, 1, 3, 2, 4}.header() << QSize(3, 2) << 3;
    QTest::newRow("pcx of 4 bits")
        << QByteArray("PCX") << PcxFile{1, 4, 3, 2, 4}.header() << QSize(3, 2) << 0;
    QTest::newRow("other pcx") << QByteArray("PCX") << hex("0a03").leftJustified(128, '\0') << none
                               << 3;
    QTest::newRow("gif of 8 bits")
        << QByteArray("GIF") << hex("474946383961 0a01 0500 f70000") << QSize(266, 5) << 3;
    QTest::newRow("gif of 2 bits")
        << QByteArray("GIF") << hex("474946383761 0a01 0500 810000") << QSize(266, 5) << 0;
    QTest::newRow("no gif") << QByteArray("GIF") << hex("474946393961 0a01 0500 f70000") << none
                            << 3;
    QTest::newRow("other word") << QByteArray("TGA") << bmp("1800") << none << 3;
}

void TestImageFormats::headersTellSizeAndFormat()
{
    QFETCH(QByteArray, format);
    QFETCH(QByteArray, bytes);
    QFETCH(int, imageFormat);
    QBuffer buffer(&bytes);
    QCOMPARE(int(imageInfoFromFile(&buffer, format.constData()).width), 0);
    buffer.open(QIODevice::ReadOnly);
    const ImageInfo info = imageInfoFromFile(&buffer, format.constData());
    QTEST(QSize(info.width, info.height), "size");
    QCOMPARE(int(info.format), imageFormat);
}

void TestImageFormats::pcxPacketsBecomePixels_data()
{
    QTest::addColumn<QByteArray>("header");
    QTest::addColumn<QByteArray>("packets");
    QTest::addColumn<QByteArray>("first");
    QTest::addColumn<QByteArray>("last");
    QTest::addColumn<int>("rest");
    QTest::newRow("padded lines") << PcxFile{8, 1, 3, 2, 4}.header() << hex("0102bf2e 04c1c0062e")
                                  << hex("0102bf") << hex("04c006") << 0;
    QTest::newRow("run over lines") << PcxFile{8, 1, 3, 3, 4}.header() << hex("01 ca05 07 99")
                                    << hex("010505") << hex("050505") << 1;
    QTest::newRow("run over lines shorter than itself")
        << PcxFile{8, 1, 2, 20, 2}.header() << hex("01 e605 07 99") << hex("0105") << hex("0507")
        << 0;
    QTest::newRow("run over the end") << PcxFile{8, 1, 3, 1, 3}.header() << hex("01 ff05 99")
                                      << hex("010505") << hex("010505") << 1;
    QTest::newRow("empty run") << PcxFile{8, 1, 3, 1, 3}.header() << hex("01 c099 02 03")
                               << hex("010203") << hex("010203") << 0;
    QTest::newRow("short lines") << PcxFile{8, 1, 3, 2, 2}.header() << hex("01020304")
                                 << hex("010200") << hex("030400") << 0;
    QTest::newRow("5 bits") << PcxFile{5, 1, 2, 1, 2}.header() << hex("1f01 99") << hex("1f01")
                            << hex("1f01") << 1;
    QTest::newRow("3 planes") << PcxFile{8, 3, 2, 2, 3}.header()
                              << hex("010203 040506 070809 c511c422") << hex("0704010008050200")
                              << hex("2211110022111100") << 0;
    QTest::newRow("4 planes, odd and padded")
        << PcxFile{8, 4, 1, 1, 2}.header() << hex("012e 022e 032e 042e 99") << hex("03020104")
        << hex("03020104") << 1;
}

void TestImageFormats::pcxPacketsBecomePixels()
{
    QFETCH(QByteArray, header);
    QFETCH(QByteArray, packets);
    QFETCH(int, rest);
    QBuffer buffer;
    buffer.setData(header + packets);
    // Open in advance, so that the first bytes of a device can be something else.
    buffer.open(QIODevice::ReadOnly);
    QImage image(5, 5, QImage::Format_RGB32);
    bool hasPalette = true;
    QVERIFY(loadPCX(image, &buffer, &hasPalette));
    QTEST(row(image, 0), "first");
    QTEST(row(image, image.height() - 1), "last");
    QCOMPARE(hasPalette, header.at(3) == 5);
    // One byte is read in search of a palette.
    const bool seeks = image.format() == QImage::Format_Indexed8 && header.at(3) == 8;
    QCOMPARE(int(buffer.bytesAvailable()), seeks ? 0 : rest);
}

void TestImageFormats::pcxPaletteStandsAtTheEnd_data()
{
    QTest::addColumn<QByteArray>("behind");
    QTest::addColumn<bool>("found");
    QTest::addColumn<int>("rest");
    QByteArray colors;
    for (int i = 0; i < 256; ++i)
        colors.append(char(i)).append(char(255 - i)).append(char(7));
    QTest::newRow("at once") << '\x0C' + colors << true << 0;
    QTest::newRow("behind more") << QByteArray(1000, '\x0C') + '\x0C' + colors << true << 0;
    QTest::newRow("other mark") << '\x0D' + colors << false << 768;
    QTest::newRow("short") << '\x0C' + colors.left(767) << false << 767;
    QTest::newRow("nothing") << QByteArray() << false << 0;
}

void TestImageFormats::pcxPaletteStandsAtTheEnd()
{
    QFETCH(QByteArray, behind);
    QFETCH(bool, found);
    QFETCH(int, rest);
    QBuffer buffer;
    buffer.setData(PcxFile{8, 1, 2, 1, 2}.header() + hex("ff01") + behind);
    QImage image;
    bool hasPalette = !found;
    QVERIFY(loadPCX(image, &buffer, &hasPalette));
    QCOMPARE(hasPalette, found);
    QCOMPARE(image.colorCount(), 256);
    QCOMPARE(image.color(15), found ? qRgb(15, 240, 7) : qRgb(45, 46, 47));
    QCOMPARE(image.color(16), found ? qRgb(16, 239, 7) : qRgb(0, 0, 0));
    QCOMPARE(image.color(255), found ? qRgb(255, 0, 7) : qRgb(0, 0, 0));
    QCOMPARE(int(buffer.bytesAvailable()), rest);
}

void TestImageFormats::damagedPcxGivesNoImage()
{
    const QImage before(5, 5, QImage::Format_RGB32);
    const auto load = [&before](const QByteArray &bytes, bool *untouched) {
        QBuffer buffer;
        buffer.setData(bytes);
        QImage image = before;
        const bool result = loadPCX(image, &buffer, nullptr);
        *untouched = image.cacheKey() == before.cacheKey();
        return result || (!*untouched && !image.isNull());
    };
    bool untouched = false;
    const QByteArray header = PcxFile{8, 1, 3, 3, 3}.header();
    for (const char *packets : {"", "010203040506 0708", "c403 c2"})
        QVERIFY2(!load(header + hex(packets), &untouched) && !untouched, packets);
    QVERIFY(!load(PcxFile{8, 1, 3, 3, 0}.header() + QByteArray(50, 'a'), &untouched) && !untouched);
    const QByteArray pixels(100, 'a');
    const QByteArray bad[] = {
        QByteArray(header).replace(0, 1, "\x0B") + pixels,
        QByteArray(header).replace(1, 1, "\x03") + pixels,
        PcxFile{4, 1, 3, 3, 3}.header() + pixels,
        PcxFile{1, 8, 3, 3, 3}.header() + pixels,
        PcxFile{8, 1, 0, 3, 3}.header() + pixels,
        header.left(60),
    };
    for (const QByteArray &bytes : bad)
        QVERIFY2(!load(bytes, &untouched) && untouched, bytes.toHex().constData());
}

void TestImageFormats::pcxIsWrittenAsTold()
{
    QImage image(67, 2, QImage::Format_Indexed8);
    image.setColorTable({qRgb(1, 2, 3), qRgb(4, 5, 6)});
    image.fill(1);
    for (int x = 64; x < 67; ++x)
        image.scanLine(0)[x] = x == 65 ? 0xBF : 0xC0;
    QBuffer buffer;
    QVERIFY(savePCX(image, &buffer));
    QByteArray expected = hex("0a0501080000000042000100").leftJustified(128, '\0');
    expected.replace(65, 5, hex("0143000100"));
    // Runs of 63 and 1, single values with and without a mark; the second row does not go on.
    expected += hex("ff01 01 c1c0 bf c1c0 ff01 c401 0c 010203 040506") + QByteArray(254 * 3, '\0');
    QCOMPARE(buffer.data().toHex(), expected.toHex());

    QImage colors(2, 1, QImage::Format_ARGB32);
    colors.setPixel(0, 0, qRgba(1, 2, 3, 4));
    colors.setPixel(1, 0, qRgba(1, 6, 7, 8));
    QCOMPARE(saved(colors, "PCX").mid(128), hex("c201 0206 0307 0408"));
    QVERIFY(saved(colors.convertToFormat(QImage::Format_Mono), "PCX").isEmpty());
}

void TestImageFormats::readsWhatOthersWrite_data()
{
    QTest::addColumn<QString>("command");
    QTest::addColumn<QString>("pixels");
    const char *const commands[][2] = {
        {"rgb", "convert-im6.q16 -size 15x7 -depth 8 rgb:- pcx:-"},
        {"rgba", "convert-im6.q16 -size 15x7 -depth 8 rgba:- pcx:-"},
        {"gray", "convert-im6.q16 -size 15x7 -depth 8 gray:- -type palette pcx:-"},
        {"rgb",
         "ffmpeg -v error -f rawvideo -pixel_format rgb24 -video_size 15x7 -i - -c:v pcx "
         "-f image2pipe -"},
        {"gray",
         "ffmpeg -v error -f rawvideo -pixel_format gray -video_size 15x7 -i - -c:v pcx "
         "-f image2pipe -"},
        {"ppm", "ppmtopcx -quiet -8bit"},
        {"ppm", "ppmtopcx -quiet -24bit"},
        {"ppm", "ppmtobmp -quiet"},
        {"ppm", "ppmtobmp -quiet -os2"},
        {"rgb", "convert-im6.q16 -size 15x7 -depth 8 rgb:- bmp:-"},
        {"rgba", "convert-im6.q16 -size 15x7 -depth 8 rgba:- bmp:-"},
        {"gray", "convert-im6.q16 -size 15x7 -depth 8 gray:- -type palette -compress RLE bmp3:-"},
        {"bits", "convert-im6.q16 -size 15x7 -depth 8 gray:- -monochrome bmp:-"},
        {"bits",
         "convert-im6.q16 -size 15x7 -depth 8 gray:- -define png:bit-depth=1 "
         "-define png:color-type=0 png:-"},
        {"gray",
         "convert-im6.q16 -size 15x7 -depth 8 gray:- -define png:bit-depth=2 "
         "-define png:color-type=0 png:-"},
        {"gray",
         "convert-im6.q16 -size 15x7 -depth 8 gray:- -define png:bit-depth=16 "
         "-define png:color-type=0 png:-"},
        {"gray",
         "convert-im6.q16 -size 15x7 -depth 8 gray:- -define png:bit-depth=4 "
         "-define png:color-type=3 -interlace PNG png:-"},
        {"rgb", "convert-im6.q16 -size 15x7 -depth 8 rgb:- -define png:color-type=2 png:-"},
        {"rgb", "convert-im6.q16 -size 15x7 -depth 8 rgb:- -define png:color-type=3 png:-"},
        {"grayalpha", "convert-im6.q16 -size 15x7 -depth 8 rgba:- -define png:color-type=4 png:-"},
        {"rgba",
         "convert-im6.q16 -size 15x7 -depth 8 rgba:- -interlace PNG "
         "-define png:color-type=6 png:-"},
    };
    for (const auto &command : commands)
        QTest::addRow("%s: %s", command[0], command[1])
            << QString::fromLatin1(command[1]) << QString::fromLatin1(command[0]);
}

void TestImageFormats::readsWhatOthersWrite()
{
    QFETCH(QString, command);
    QFETCH(QString, pixels);
    const OtherProgram program(command);
    SKIP_IF_MISSING(program);
    // Four levels for each channel that the input has: colours that any of the formats can hold.
    SamplePixels::Random random(3);
    QByteArray input = pixels == QLatin1String("ppm") ? QByteArray("P6 15 7 255\n") : QByteArray();
    QByteArray expected;
    for (int i = 0; i < oddSize.width() * oddSize.height(); ++i) {
        const auto level = [&random] { return char(SamplePixels::below(random, 4) * 85); };
        QByteArray pixel(4, '\xFF');
        const bool isGray = pixels != QLatin1String("rgb") && pixels != QLatin1String("rgba")
            && pixels != QLatin1String("ppm");
        pixel[0] =
            pixels == QLatin1String("bits") ? char(-SamplePixels::below(random, 2)) : level();
        pixel[1] = isGray ? char(pixel[0]) : level();
        pixel[2] = isGray ? char(pixel[0]) : level();
        if (pixels.endsWith(QLatin1String("a")) || pixels == QLatin1String("grayalpha"))
            pixel[3] = char(SamplePixels::below(random, 3) * 85 + 85);
        expected += pixel;
        const bool hasAlpha =
            pixels == QLatin1String("rgba") || pixels == QLatin1String("grayalpha");
        input += pixel.left(hasAlpha ? 4 : isGray ? 1 : 3);
    }
    const QByteArray file = program.run(input);
    const char *const format = command.contains(QLatin1String("pcx")) ? "PCX"
        : command.contains(QLatin1String("bmp"))                      ? "BMP"
                                                                      : "PNG";
    QCOMPARE(loaded(file, format).size(), oddSize);
    QCOMPARE(rgbaBytes(loaded(file, format)).toHex(), expected.toHex());
}

void TestImageFormats::othersReadWhatIsWritten_data()
{
    QTest::addColumn<QByteArray>("format");
    QTest::addColumn<int>("imageFormat");
    QTest::addColumn<QString>("command");
    const auto add = [](const char *format, std::initializer_list<QImage::Format> imageFormats) {
        const QString lower = QString::fromLatin1(format).toLower();
        for (const QImage::Format imageFormat : imageFormats) {
            QTest::addRow("%s %d by ImageMagick", format, imageFormat)
                << QByteArray(format) << int(imageFormat)
                << QStringLiteral("convert-im6.q16 %1:- -depth 8 rgba:-").arg(lower);
            // It knows no PCX of four planes and drops the alpha of a BMP.
            if (imageFormat != QImage::Format_ARGB32 || lower == QLatin1String("png"))
                QTest::addRow("%s %d by ffmpeg", format, imageFormat)
                    << QByteArray(format) << int(imageFormat)
                    << QStringLiteral(
                           "ffmpeg -v error -f %1_pipe -frame_size 1000000 -i - -f rawvideo "
                           "-pix_fmt rgba -")
                           .arg(lower);
        }
    };
    add("PCX", {QImage::Format_Indexed8, QImage::Format_RGB32, QImage::Format_ARGB32});
    add("PNG",
        {QImage::Format_Mono, QImage::Format_Indexed8, QImage::Format_RGB32,
         QImage::Format_ARGB32});
    add("BMP", {QImage::Format_Mono, QImage::Format_Indexed8, QImage::Format_RGB32});
}

void TestImageFormats::othersReadWhatIsWritten()
{
    QFETCH(QByteArray, format);
    QFETCH(int, imageFormat);
    QFETCH(QString, command);
    const OtherProgram program(command);
    SKIP_IF_MISSING(program);
    for (const QSize size : {oddSize, QSize(333, 41)}) {
        const QImage image = sample(QImage::Format(imageFormat), size);
        const QByteArray file = saved(image, format.constData());
        QVERIFY(!file.isEmpty());
        QCOMPARE(rgbaImage(program.run(file), size), rgbaImage(rgbaBytes(image), size));
        QCOMPARE(loaded(file, format.constData()).convertToFormat(QImage::Format_ARGB32),
                 image.convertToFormat(QImage::Format_ARGB32));
    }
}

void TestImageFormats::paletteSurvives_data()
{
    QTest::addColumn<bool>("hasAlpha");
    QTest::newRow("PNG") << true;
    QTest::newRow("GIF") << true;
    QTest::newRow("PCX") << false;
    QTest::newRow("BMP") << false;
}

// Unused and equal colours stay, in their order.
void TestImageFormats::paletteSurvives()
{
    QFETCH(bool, hasAlpha);
    QImage image = sample(QImage::Format_Indexed8, oddSize);
    QVector<QRgb> colors = image.colorTable();
    colors[9] = colors[200];
    if (hasAlpha)
        colors[5] &= RGB_MASK;
    image.setColorTable(colors);
    const char *const format = QTest::currentDataTag();
    const QImage again = loaded(saved(image, format), format);
    QCOMPARE(again.format(), QImage::Format_Indexed8);
    QCOMPARE(again.colorTable(), colors);
    for (int y = 0; y < image.height(); ++y)
        QCOMPARE(row(again, y), row(image, y));
}

void TestImageFormats::endsOfLinesAreZero()
{
    // A bitmap whose padding is not zero.
    const QByteArray indexed =
        hex("424d 00000000 00000000 3e000000 28000000 03000000 01000000 0100 "
            "0800 00000000 00000000 00000000 00000000 02000000 00000000 "
            "22222200 11111100 010001 ee");
    const QImage image = loaded(indexed, "BMP");
    QCOMPARE(image.bytesPerLine(), 4);
    QCOMPARE(QByteArray(reinterpret_cast<const char *>(image.constBits()), 4), hex("01000100"));
    // Pixels of a bit keep the last of them.
    QByteArray mono = indexed;
    mono.replace(28, 1, "\x01").replace(62, 4, hex("ffffffff"));
    const QImage bits = loaded(mono, "BMP");
    QCOMPARE(bits.format(), QImage::Format_Mono);
    QCOMPARE(QByteArray(reinterpret_cast<const char *>(bits.constBits()), 4), hex("e0000000"));
}

// What a bitmap lacks, its upper rows, is black, whatever was in memory.
void TestImageFormats::shortBitmapsAreBlack()
{
    for (const QImage::Format format : {QImage::Format_RGB32, QImage::Format_Indexed8}) {
        QImage image = sample(format, QSize(5, 40));
        if (format == QImage::Format_Indexed8)
            image.setColor(0, qRgb(0, 0, 0));
        const QByteArray file = saved(image, "BMP");
        const int rowSize = format == QImage::Format_RGB32 ? 16 : 8;
        const QImage part = loaded(file.left(file.size() - 30 * rowSize), "BMP");
        QCOMPARE(part.size(), image.size());
        QCOMPARE(part.copy(0, 30, 5, 10), image.copy(0, 30, 5, 10));
        QImage black(QSize(5, 30), QImage::Format_RGB32);
        black.fill(Qt::black);
        QCOMPARE(part.copy(0, 0, 5, 30).convertToFormat(QImage::Format_RGB32), black);
    }
}

void TestImageFormats::devicesNeedNotGoBack_data()
{
    QTest::addColumn<QByteArray>("rest");
    QTest::newRow("PNG") << QByteArray();
    QTest::newRow("BMP") << QByteArray();
    QTest::newRow("GIF") << QByteArray("more");
    QTest::newRow("PCX") << QByteArray("more");
}

void TestImageFormats::devicesNeedNotGoBack()
{
    QFETCH(QByteArray, rest);
    const char *const format = QTest::currentDataTag();
    const bool isGif = qstrcmp(format, "GIF") == 0;
    const QImage image =
        sample(isGif ? QImage::Format_Indexed8 : QImage::Format_RGB32, QSize(40, 30));
    const QByteArray file = saved(image, format) + rest;
    QCOMPARE(loaded(file, format).size(), image.size());
    Pipe pipe(file, 100);
    QVERIFY(pipe.open(QIODevice::ReadOnly));
    QImage again;
    QVERIFY(loadImage(&pipe, format, again));
    QCOMPARE(again, loaded(file, format));
    QCOMPARE(pipe.readAll(), rest);
}

void TestImageFormats::codecsOpenDevicesAndImagesDoNot()
{
    QImage image = sample(QImage::Format_RGB32, oddSize);
    QBuffer buffer;
    QVERIFY(!saveImage(&buffer, "PNG", image) && !buffer.isOpen());
    QVERIFY(savePNG(image, &buffer) && buffer.isOpen());
    buffer.close();
    QImage again;
    QVERIFY(!loadImage(&buffer, "PNG", again) && !buffer.isOpen());
    QVERIFY(loadPNG(again, &buffer) && buffer.isOpen());
    QCOMPARE(again, image);
    DeadDevice dead;
    QVERIFY(!savePNG(image, &dead) && !savePCX(image, &dead));
    QVERIFY(!loadPNG(again, &dead) && !loadPCX(again, &dead, nullptr) && !GIFImage().load(&dead));
    QCOMPARE(again, image);
}

void TestImageFormats::headersTakeNoMemory_data()
{
    QTest::addColumn<QByteArray>("bytes");
    const auto bmp = [](const char *compression, const char *bits) -> QByteArray {
        return hex("424d 00000000 00000000 36000000 28000000 803e0000 803e0000 0100") + hex(bits)
            + hex(compression) + QByteArray(20, '\0') + QByteArray(2000, '\0');
    };
    QTest::newRow("BMP") << bmp("00000000", "1800");
    QTest::newRow("BMP of runs") << bmp("01000000", "0800");
    QTest::newRow("BMP upside down") << bmp("00000000", "2000").replace(22, 4, hex("80c1ffff"));
    // 16000x16000 with check sums that are right, and no more than a beginning of pixels.
    QTest::newRow("PNG") << hex(
        "89504e470d0a1a0a 0000000d 49484452 00003e80 00003e80 0806000000 417edfde "
        "0000000b 49444154 789c6360c00400001400 01 7dfe1eee");
    QTest::newRow("PCX") << PcxFile{8, 4, 16000, 16000, 16000}.header() + QByteArray(4000, '\xFF');
    QTest::newRow("PCX of short lines")
        << PcxFile{8, 1, 16000, 16000, 1}.header() + QByteArray(4000, '\xFF');
    QTest::newRow("GIF") << hex("474946383961 0a000a00 800000 000000ffffff 2c 00000000 803e803e 00 "
                                "02 02 4c01 00 3b");
}

void TestImageFormats::headersTakeNoMemory()
{
    QFETCH(QByteArray, bytes);
    const qint64 before = peakMemory();
    QVERIFY(loaded(bytes, QByteArray(QTest::currentDataTag()).left(3).constData()).isNull());
    QVERIFY2(peakMemory() - before < 100 * 1024 * 1024, "a header took memory");
}

void TestImageFormats::extensionsAddFormats()
{
    ExtensionManager manager{QString()};
    for (auto *loader : {new TestLoader("ABC", 3), new TestLoader("XYZ", 4)})
        QVERIFY(ExtensionManager::add(loader));
    QVERIFY(ExtensionManager::add(new TestSaver));
    QCOMPARE(loaded("x", "XYZ").width(), 4);
    QVERIFY(loaded("x", "QQQ").isNull());
    const QImage image(12, 1, QImage::Format_RGB32);
    QCOMPARE(saved(image, "ABC"), QByteArray("12"));
    QVERIFY(saved(image, "XYZ").isEmpty());
    QVERIFY(!imageFileExtension(ImageExtensionType(6)));
}

QTEST_GUILESS_MAIN(TestImageFormats)
#include "tst_imageformats.moc"
