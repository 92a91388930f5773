// SPDX-License-Identifier: MIT
#include "image/otherprogram.h"
#include "image/samplepixels.h"

#include "image/gifimage.h"
#include "image/imageformats.h"

#include <QBuffer>
#include <QTemporaryDir>

using namespace Vela;

namespace {

constexpr QSize oddSize(15, 7);

QByteArray hex(const char *digits)
{
    return QByteArray::fromHex(digits);
}

// A file of 3x2 pixels with the colours black, red, green and blue, and its one image.
const char *const screen = "474946383961 03000200 910200 000000 ff0000 00ff00 0000ff";
const char *const image012321 = "2c 00000000 03000200 00 02 04 44341205 00";

GIFImage read(const QByteArray &bytes, bool *whole = nullptr)
{
    QBuffer buffer;
    buffer.setData(bytes);
    GIFImage gif;
    const bool result = gif.load(&buffer);
    if (whole)
        *whole = result;
    return gif;
}

QByteArray written(GIFImage gif)
{
    QBuffer buffer;
    return gif.save(&buffer) ? buffer.data() : QByteArray();
}

QByteArray animated(const QVector<AnimImageFrame> &frames, float scale = 1, float velocity = 1,
                    bool sharedPalette = false, bool loop = false)
{
    QBuffer buffer;
    return saveGIF(&buffer, frames, scale, velocity, sharedPalette, loop) ? buffer.data()
                                                                          : QByteArray();
}

QImage indexed(QSize size, int colors, uint seed)
{
    SamplePixels::Random random(seed);
    QImage image = SamplePixels::make(random, SamplePixels::Noise, size, colors);
    QVector<QRgb> table;
    while (table.size() < colors)
        table.append(qRgb(int(seed % 256), 255 - table.size(), table.size()));
    image.setColorTable(table);
    return image;
}

GIFImage::SubImage frameOf(const QImage &image, float delay = 0)
{
    GIFImage::SubImage frame;
    frame.image = image;
    for (const QRgb color : image.colorTable())
        frame.colorMap.append({quint8(qRed(color)), quint8(qGreen(color)), quint8(qBlue(color))});
    frame.delay = delay;
    return frame;
}

// Returns a frame as it is to be seen on its own.
QImage shown(const GIFImage &gif, int index)
{
    const GIFImage::SubImage &frame = gif.images().at(index);
    QVector<QRgb> colors;
    for (const RGB color : frame.colorMap.isEmpty() ? gif.globalColorMap() : frame.colorMap)
        colors.append(qRgb(color.r, color.g, color.b));
    if (frame.transparent >= 0)
        colors[frame.transparent] = 0;
    QImage image = frame.image;
    image.setColorTable(colors);
    return image.convertToFormat(QImage::Format_ARGB32);
}

// Returns the control blocks of a file: flags, delay, transparent colour.
QList<QByteArray> controls(const QByteArray &file)
{
    QList<QByteArray> found;
    const QByteArray mark = hex("21f904");
    for (int at = file.indexOf(mark); at >= 0; at = file.indexOf(mark, at + 8))
        found.append(file.mid(at + 3, 4).toHex());
    return found;
}

QImage wholeImage(QSize size, QRgb color, QImage::Format format = QImage::Format_ARGB32)
{
    QImage image(size, format);
    image.fill(color);
    return image;
}

} // namespace

class TestGif : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void blocksBecomeMembers();
    void transparentColor_data();
    void transparentColor();
    void earlyEndKeepsWholeImages_data();
    void earlyEndKeepsWholeImages();
    void earlyEndKeepsFirstPixels();
    void pixelsOfABit();
    void readsWhatOthersWrite_data();
    void readsWhatOthersWrite();
    void localColorsOfOthers();
    void othersReadWhatIsWritten_data();
    void othersReadWhatIsWritten();
    void singleImageHasNoControl();
    void delaysCarryTheirFractions();
    void whatDoesNotFitIsRefused();
    void anchorsComeTogether();
    void paletteOfEachFrameOrTheFirst();
    void trueColorsAreQuantised();
    void mixedFramesTakeTheSharedColors();
    void globalColorsServeFramesWithoutOwn();
};

void TestGif::blocksBecomeMembers()
{
    bool whole = false;
    const QByteArray loop = hex("21ff0b 4e45545343415045322e30 03 010000 00");
    const QByteArray file = hex(screen) + loop + hex(image012321) + hex("3b");
    GIFImage gif = read(file + "rest", &whole);
    QVERIFY(whole);
    QVERIFY(gif.canLoop());
    QCOMPARE(QSize(gif.width(), gif.height()), QSize(3, 2));
    QCOMPARE(gif.globalColorMap(),
             (QVector<RGB>{{0, 0, 0}, {255, 0, 0}, {0, 255, 0}, {0, 0, 255}}));
    QCOMPARE(gif.images().size(), 1);
    const GIFImage::SubImage &frame = gif.images().constFirst();
    QCOMPARE(frame.image.format(), QImage::Format_Indexed8);
    QCOMPARE(QByteArray(reinterpret_cast<const char *>(frame.image.constScanLine(1)), 3),
             hex("030201"));
    QVERIFY(frame.colorMap.isEmpty());
    QCOMPARE(int(frame.transparent), 2);
    // Of several images each has its place, and the screen its size.
    QByteArray moved = hex(image012321);
    moved[1] = 4;
    moved[3] = 5;
    gif = read(hex(screen) + moved + moved + hex("3b"), &whole);
    QVERIFY(whole && !gif.canLoop());
    QCOMPARE(gif.images().size(), 2);
    QCOMPARE(int(gif.images().at(1).left), 4);
    QCOMPARE(int(gif.images().at(1).top), 5);
    QCOMPARE(QSize(gif.width(), gif.height()), QSize(3, 2));
    // Only the image itself counts where it is alone.
    QCOMPARE(int(read(hex(screen).replace(6, 1, "\x09") + hex(image012321) + hex("3b")).width()),
             3);
    QVERIFY(!gif.load(new QBuffer(this)));
    QVERIFY(gif.images().isEmpty() && gif.globalColorMap().isEmpty() && gif.width() == 0);
}

void TestGif::transparentColor_data()
{
    QTest::addColumn<QByteArray>("control");
    QTest::addColumn<int>("transparent");
    QTest::newRow("the background") << QByteArray() << 2;
    QTest::newRow("of a control") << hex("21f904 01 0000 01 00") << 1;
    QTest::newRow("none") << hex("21f904 00 0000 01 00") << -1;
    QTest::newRow("not in the table") << hex("21f904 01 0000 c8 00") << 200;
}

void TestGif::transparentColor()
{
    QFETCH(QByteArray, control);
    QFETCH(int, transparent);
    QByteArray file = hex(screen) + control + hex(image012321) + hex("3b");
    QCOMPARE(int(read(file).images().constFirst().transparent), transparent);
    QBuffer buffer(&file);
    buffer.open(QIODevice::ReadOnly);
    QImage image;
    QVERIFY(loadImage(&buffer, "GIF", image));
    QCOMPARE(image.colorCount(), 4);
    for (int i = 0; i < 4; ++i)
        QCOMPARE(qAlpha(image.color(i)), i == transparent ? 0 : 255);
}

void TestGif::earlyEndKeepsWholeImages_data()
{
    QTest::addColumn<QByteArray>("behind");
    const QByteArray image = hex(image012321);
    QTest::newRow("nothing") << QByteArray();
    QTest::newRow("half a descriptor") << image.left(6);
    QTest::newRow("no image") << image.mid(0, 5) + hex("00000000") + image.mid(9);
    QTest::newRow("no block") << hex("ff");
    QTest::newRow("hollow image") << image.mid(0, 5) + hex("ffffffff") + image.mid(9);
}

void TestGif::earlyEndKeepsWholeImages()
{
    QFETCH(QByteArray, behind);
    bool whole = true;
    const GIFImage gif = read(hex(screen) + hex(image012321) + behind, &whole);
    QVERIFY(!whole);
    QCOMPARE(gif.images().size(), 1);
    QCOMPARE(gif.images().constFirst().image.pixelIndex(2, 0), 2);
}

// The pixels behind the end are 0, whatever was in memory.
void TestGif::earlyEndKeepsFirstPixels()
{
    const QByteArray image = hex(image012321);
    bool whole = true;
    const GIFImage gif = read(hex(screen) + image.left(11) + hex("02 4434"), &whole);
    QVERIFY(!whole);
    QCOMPARE(gif.images().size(), 1);
    const QImage &pixels = gif.images().constFirst().image;
    QCOMPARE(pixels.pixelIndex(2, 0), 2);
    QCOMPARE(pixels.pixelIndex(0, 1), 3);
    QCOMPARE(pixels.pixelIndex(1, 1), 0);
}

void TestGif::pixelsOfABit()
{
    QImage image(11, 3, QImage::Format_Mono);
    image.setColorTable({qRgb(1, 2, 3), qRgb(4, 5, 6)});
    image.fill(0);
    for (const QPoint point : {QPoint(0, 0), QPoint(9, 0), QPoint(10, 1), QPoint(8, 2)})
        image.setPixel(point, 1);
    GIFImage gif(11, 3, false);
    gif.images().append(frameOf(image));
    const QByteArray file = written(gif);
    const GIFImage again = read(file);
    QCOMPARE(again.images().constFirst().image.format(), QImage::Format_Mono);
    QCOMPARE(shown(again, 0), image.convertToFormat(QImage::Format_ARGB32));
    // A resolution of a bit in spite of more colours does not cost the pixels.
    const QByteArray poor = hex(screen).replace(10, 1, "\x81") + hex(image012321) + hex("3b");
    QCOMPARE(read(poor).images().constFirst().image.format(), QImage::Format_Indexed8);
    QCOMPARE(read(poor).images().constFirst().image.pixelIndex(0, 1), 3);
    // Bytes that are written with a resolution of a bit are bits when they come back.
    const QImage bytes = image.convertToFormat(QImage::Format_Indexed8);
    GIFImage two(11, 3, false);
    two.images().append(frameOf(bytes));
    QCOMPARE(shown(read(written(two)), 0), bytes.convertToFormat(QImage::Format_ARGB32));
}

void TestGif::readsWhatOthersWrite_data()
{
    QTest::addColumn<QString>("command");
    const QString convert = QStringLiteral("convert-im6.q16 -size 15x7 -depth 8 gray:- %1 gif:-");
    QTest::newRow("ImageMagick") << convert.arg(QStringLiteral("-interlace none"));
    QTest::newRow("ImageMagick, interlaced") << convert.arg(QStringLiteral("-interlace GIF"));
    QTest::newRow("netpbm") << QStringLiteral("pamtogif -quiet");
    QTest::newRow("netpbm, interlaced") << QStringLiteral("pamtogif -quiet -interlace");
    QTest::newRow("ffmpeg") << QStringLiteral(
        "ffmpeg -v error -f rawvideo -pixel_format gray -video_size 15x7 -i - -f gif -");
}

void TestGif::readsWhatOthersWrite()
{
    QFETCH(QString, command);
    const OtherProgram program(command);
    SKIP_IF_MISSING(program);
    SamplePixels::Random random(5);
    const QImage levels = SamplePixels::make(random, SamplePixels::Noise, oddSize, 16);
    QByteArray input;
    if (command.startsWith(QLatin1String("pam")))
        input = "P5 15 7 255\n";
    QImage expected(oddSize, QImage::Format_RGB32);
    for (int y = 0; y < oddSize.height(); ++y) {
        for (int x = 0; x < oddSize.width(); ++x) {
            const int level = levels.constScanLine(y)[x] * 17;
            input.append(char(level));
            expected.setPixel(x, y, qRgb(level, level, level));
        }
    }
    bool whole = false;
    const GIFImage gif = read(program.run(input), &whole);
    QVERIFY(whole);
    QImage image = gif.images().constFirst().image;
    QVector<QRgb> colors;
    for (const RGB color : gif.globalColorMap())
        colors.append(qRgb(color.r, color.g, color.b));
    image.setColorTable(colors);
    QCOMPARE(image.convertToFormat(QImage::Format_RGB32), expected);
}

void TestGif::localColorsOfOthers()
{
    const OtherProgram gifsicle(QStringLiteral("gifsicle --no-warnings --info -"));
    SKIP_IF_MISSING(gifsicle);
    // Two files of 200 colours each do not share a table.
    QTemporaryDir folder;
    QVector<QImage> images;
    QString command = QStringLiteral("gifsicle --no-warnings --loopcount=forever");
    for (const uint seed : {1U, 2U}) {
        images.append(indexed(QSize(20, 15), 200, seed));
        images.last().setColor(7, qRgba(1, 2, 3, 0));
        QFile file(folder.filePath(QStringLiteral("%1.gif").arg(seed)));
        QVERIFY(file.open(QIODevice::ReadWrite) && saveImage(&file, "GIF", images.last()));
        images.last().setColor(7, 0);
        command += QLatin1String(" -t#010203 ") + file.fileName();
    }
    bool whole = false;
    const GIFImage gif = read(OtherProgram(command).run(QByteArray()), &whole);
    QVERIFY(whole && gif.canLoop());
    QCOMPARE(gif.images().size(), 2);
    QVERIFY(!gif.images().at(1).colorMap.isEmpty());
    for (int i = 0; i < 2; ++i) {
        QCOMPARE(shown(gif, i), images[i].convertToFormat(QImage::Format_ARGB32));
    }
}

void TestGif::othersReadWhatIsWritten_data()
{
    QTest::addColumn<QString>("command");
    QTest::newRow("ImageMagick") << QStringLiteral(
        "convert-im6.q16 gif:- -coalesce -depth 8 rgba:-");
    QTest::newRow("ffmpeg") << QStringLiteral("ffmpeg -v error -f gif -i - -vsync passthrough "
                                              "-f rawvideo -pix_fmt rgba -");
}

void TestGif::othersReadWhatIsWritten()
{
    QFETCH(QString, command);
    const OtherProgram program(command);
    SKIP_IF_MISSING(program);
    for (const QSize size : {oddSize, QSize(301, 40)}) {
        GIFImage gif(quint16(size.width()), quint16(size.height()), true);
        QByteArray expected;
        for (const int colors : {256, 3, 17}) {
            QImage image = indexed(size, colors, uint(colors));
            image.setColor(1, 0);
            gif.images().append(frameOf(image, 10));
            gif.images().last().transparent = 1;
            // The other programs give no colour to what is transparent.
            expected += rgbaBytes(image.convertToFormat(QImage::Format_ARGB32));
        }
        const QByteArray pixels = program.run(written(gif));
        QCOMPARE(pixels.size(), expected.size());
        for (int i = 0; i < pixels.size(); i += 4) {
            if (expected[i + 3] == '\0' && pixels[i + 3] == '\0')
                continue;
            QCOMPARE(pixels.mid(i, 4), expected.mid(i, 4));
        }
    }
}

void TestGif::singleImageHasNoControl()
{
    const QImage image = indexed(oddSize, 16, 1);
    for (const int transparent : {-1, 0, 5}) {
        GIFImage gif(15, 7, false);
        gif.images().append(frameOf(image));
        gif.globalColorMap() = gif.images().constFirst().colorMap;
        gif.images().first().colorMap.clear();
        gif.images().first().transparent = qint16(transparent);
        const QByteArray file = written(gif);
        QVERIFY(file.startsWith("GIF89a") && controls(file).isEmpty());
        QCOMPARE(int(file.at(11)), qMax(transparent, 0));
        QCOMPARE(int(read(file).images().constFirst().transparent), qMax(transparent, 0));
    }
}

void TestGif::delaysCarryTheirFractions()
{
    GIFImage gif(15, 7, true);
    for (const float delay : {1.5F, 1.5F, 0.25F, 300.75F, 1e9F, -3.0F})
        gif.images().append(frameOf(indexed(oddSize, 4, 1), delay));
    gif.images()[1].transparent = 3;
    const QByteArray file = written(gif);
    QVERIFY(file.contains(hex("21ff0b4e45545343415045322e300301000000")));
    // 1.5, 0.5 + 1.5, 0.25, 0.25 + 300.75, what there is room for, nothing.
    QCOMPARE(controls(file),
             (QList<QByteArray>{"000100ff", "09020003", "000000ff", "002d01ff", "00ffffff",
                                "000000ff"}));
    QVERIFY(read(file).canLoop());
    const AnimImageFrame second{indexed(oddSize, 4, 1), 0, 0, 60};
    QCOMPARE(controls(animated({second, second})), (QList<QByteArray>{"006400ff", "006400ff"}));
    QCOMPARE(controls(animated({second, second}, 1, 2)),
             (QList<QByteArray>{"003200ff", "003200ff"}));
}

void TestGif::whatDoesNotFitIsRefused()
{
    const QImage image = indexed(oddSize, 4, 1);
    QVERIFY(written(GIFImage(3, 3, true)).isEmpty());
    const QImage wide = wholeImage(QSize(65536, 1), 0, QImage::Format_Indexed8);
    for (const QImage &wrong : {QImage(), image.convertToFormat(QImage::Format_RGB32), wide}) {
        GIFImage gif(15, 7, false);
        gif.images().append(frameOf(image));
        gif.images().append(frameOf(wrong));
        QVERIFY(written(gif).isEmpty());
    }
    QVERIFY(animated({}).isEmpty());
    QVERIFY(animated({{QImage(), 0, 0, 1}}).isEmpty());
    QVERIFY(!saveGIF(nullptr, {{image, 0, 0, 1}}, 1, 1, false, false));
    QVERIFY(animated({{image, 0, 0, 1}}, 1e9F).isEmpty());
    QVERIFY(animated({{image, 0, 0, 1}, {image, 70000, 0, 1}}).isEmpty());
}

void TestGif::anchorsComeTogether()
{
    const QVector<AnimImageFrame> frames{{indexed(QSize(4, 3), 4, 1), 1, 3, 1},
                                         {QImage(), 1000, 1000, 1},
                                         {indexed(QSize(2, 5), 4, 1), 2, 0, 1}};
    // Left 2, top 3, right 3, bottom 5.
    GIFImage gif = read(animated(frames));
    QCOMPARE(QSize(gif.width(), gif.height()), QSize(5, 8));
    QCOMPARE(gif.images().size(), 2);
    QCOMPARE(QPoint(gif.images().at(0).left, gif.images().at(0).top), QPoint(1, 0));
    QCOMPARE(QPoint(gif.images().at(1).left, gif.images().at(1).top), QPoint(0, 3));
    QCOMPARE(gif.images().at(1).image.size(), QSize(2, 5));
    gif = read(animated(frames, 1.5F));
    QCOMPARE(QSize(gif.width(), gif.height()), QSize(7, 12));
    QCOMPARE(gif.images().at(1).image.size(), QSize(3, 8));
    QCOMPARE(QPoint(gif.images().at(1).left, gif.images().at(1).top), QPoint(0, 4));
    QCOMPARE(read(animated(frames, -2)).images().at(1).image.size(), QSize(2, 5));
}

void TestGif::paletteOfEachFrameOrTheFirst()
{
    QImage first = indexed(oddSize, 16, 1);
    first.setColor(3, qRgba(9, 9, 9, 0));
    QImage second = indexed(oddSize, 16, 2);
    const QVector<AnimImageFrame> frames{{first, 0, 0, 1}, {second, 0, 0, 1}};
    const GIFImage own = read(animated(frames));
    QVERIFY(own.globalColorMap().isEmpty());
    QCOMPARE(int(own.images().at(0).transparent), 3);
    QCOMPARE(int(own.images().at(1).transparent), -1);
    QCOMPARE(shown(own, 1), second.convertToFormat(QImage::Format_ARGB32));
    const GIFImage shared = read(animated(frames, 1, 1, true, true));
    QVERIFY(shared.canLoop());
    QCOMPARE(shared.globalColorMap().size(), 16);
    QVERIFY(shared.images().at(1).colorMap.isEmpty());
    QCOMPARE(int(shared.images().at(1).transparent), 3);
    second.setColorTable(first.colorTable());
    second.setColor(3, 0);
    QCOMPARE(shown(shared, 1), second.convertToFormat(QImage::Format_ARGB32));
}

void TestGif::trueColorsAreQuantised()
{
    // Few colours stay as they are, and all that is nearly transparent becomes transparent.
    QImage image = wholeImage(QSize(6, 4), qRgb(255, 0, 0));
    image.setPixel(0, 0, qRgba(0, 255, 0, 127));
    image.setPixel(1, 0, qRgba(0, 255, 0, 128));
    image.setPixel(2, 0, qRgba(3, 2, 1, 0));
    image.setPixel(3, 0, qRgb(0, 0, 0));
    const QImage opaque = wholeImage(QSize(6, 4), qRgb(0, 0, 255), QImage::Format_RGB32);
    const QImage small = opaque.convertToFormat(QImage::Format_RGB888);
    for (const bool sharedPalette : {false, true}) {
        const GIFImage gif = read(
            animated({{image, 0, 0, 1}, {opaque, 0, 0, 1}, {small, 0, 0, 1}, {QImage(), 0, 0, 1}},
                     1, 1, sharedPalette));
        QCOMPARE(gif.images().size(), 3);
        QCOMPARE(gif.globalColorMap().size(), 256);
        QVERIFY(gif.images().at(0).colorMap.isEmpty());
        QCOMPARE(int(gif.images().at(2).transparent), 0);
        image.setPixel(0, 0, 0);
        image.setPixel(1, 0, qRgb(0, 255, 0));
        image.setPixel(2, 0, 0);
        QCOMPARE(shown(gif, 0), image);
        QCOMPARE(shown(gif, 1), opaque.convertToFormat(QImage::Format_ARGB32));
        QCOMPARE(shown(gif, 2), opaque.convertToFormat(QImage::Format_ARGB32));
    }
}

void TestGif::mixedFramesTakeTheSharedColors()
{
    const QImage palette = indexed(oddSize, 16, 1);
    QImage colors = wholeImage(oddSize, palette.color(5));
    colors.setPixel(2, 2, palette.color(9));
    colors.setPixel(3, 3, qRgb(0, 0, 0));
    // Alone, the frame makes its own palette; its colour 0 is for what is transparent.
    const GIFImage own = read(animated({{palette, 0, 0, 1}, {colors, 0, 0, 1}}));
    QCOMPARE(int(own.images().at(1).transparent), 0);
    QCOMPARE(shown(own, 1), colors);
    const GIFImage shared = read(animated({{palette, 0, 0, 1}, {colors, 0, 0, 1}}, 1, 1, true));
    QCOMPARE(int(shared.images().at(1).transparent), -1);
    QCOMPARE(shared.images().at(1).image.pixelIndex(0, 0), 5);
    QCOMPARE(shared.images().at(1).image.pixelIndex(2, 2), 9);
    // The darkest of the 16, and not the black of a table that has room for 256.
    QCOMPARE(shared.images().at(1).image.pixelIndex(3, 3), 15);
}

void TestGif::globalColorsServeFramesWithoutOwn()
{
    const QImage first = indexed(oddSize, 32, 1);
    const QImage second = indexed(oddSize, 16, 2);
    GIFImage gif(15, 7, false);
    gif.images() = {frameOf(first), frameOf(second)};
    gif.globalColorMap() = gif.images().at(1).colorMap;
    gif.images()[1].colorMap.clear();
    const GIFImage again = read(written(gif));
    QCOMPARE(shown(again, 0), first.convertToFormat(QImage::Format_ARGB32));
    QCOMPARE(shown(again, 1), second.convertToFormat(QImage::Format_ARGB32));
}

QTEST_GUILESS_MAIN(TestGif)
#include "tst_gif.moc"
