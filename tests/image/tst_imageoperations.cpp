// SPDX-License-Identifier: MIT
#include "plainmatch.h"

#include "image/imageoperations.h"
#include "image/nearestcolor_p.h"
#include "image/pixelscaling.h"

#include <QRandomGenerator>
#include <QTest>

#include <algorithm>
#include <limits>

using namespace Vela;

namespace {

using Picture = QStringList; ///< rows of characters

constexpr QImage::Format plainFormats[] = {QImage::Format_Indexed8, QImage::Format_RGB32,
                                           QImage::Format_ARGB32};

/// A character's code as a pixel: an index, or a colour whose lowest byte it is.
QImage toImage(const Picture &picture, QImage::Format format)
{
    QImage image(picture.first().size(), picture.size(), format);
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            const auto code = uchar(picture[y][x].toLatin1());
            if (format == QImage::Format_Indexed8)
                image.scanLine(y)[x] = code;
            else
                reinterpret_cast<QRgb *>(image.scanLine(y))[x] = 0xff123400 | code;
        }
    }
    return image;
}

Picture toPicture(const QImage &image)
{
    Picture picture;
    for (int y = 0; y < image.height(); ++y) {
        picture.append(QString());
        for (int x = 0; x < image.width(); ++x) {
            const uchar code = image.format() == QImage::Format_Indexed8
                ? image.constScanLine(y)[x]
                : uchar(reinterpret_cast<const QRgb *>(image.constScanLine(y))[x]);
            picture.last().append(QLatin1Char(char(code)));
        }
    }
    return picture;
}

QImage colors(std::initializer_list<QRgb> list, QImage::Format format = QImage::Format_ARGB32)
{
    QImage image(int(list.size()), 1, format);
    std::copy(list.begin(), list.end(), reinterpret_cast<QRgb *>(image.scanLine(0)));
    return image;
}

/// The indices of the first row.
QVector<int> indices(const QImage &image)
{
    return QVector<int>(image.constScanLine(0), image.constScanLine(0) + image.width());
}

struct Colors
{
    RGBA palette[256] = {};

    explicit Colors(std::initializer_list<RGBA> first = {}, RGBA rest = {})
    {
        std::fill(std::begin(palette), std::end(palette), rest);
        std::copy(first.begin(), first.end(), palette);
    }
};

quint8 byteOf(QRandomGenerator &random)
{
    return quint8(random.bounded(256));
}

/// Palettes in which the nearest entry is decided in different ways.
Colors samplePalette(int kind, QRandomGenerator &random)
{
    Colors sample;
    for (int i = 0; i < 256; ++i) {
        const auto grey = quint8(i);
        const RGBA noise{byteOf(random), byteOf(random), byteOf(random), byteOf(random)};
        const RGBA entries[] = {
            {noise.r, noise.g, noise.b, 255},
            noise,
            {grey, grey, grey, quint8(i == 0 ? 0 : 255)},
            {quint8(i % 6 * 51), quint8(i / 6 % 6 * 51), quint8(i / 36 * 36), 255},
            {quint8(100 + noise.r % 8), quint8(noise.g % 16), quint8(noise.b % 4), noise.a},
            {quint8(noise.r / 64 * 85), quint8(noise.g / 128 * 255), 7, quint8(noise.a / 2 * 2)},
            {40, 50, 60, 70}};
        sample.palette[i] = entries[kind];
    }
    return sample;
}
constexpr int SamplePalettes = 7;

/// A colour of the palette now and then, or one near to it, or any.
QRgb sampleColor(const Colors &sample, QRandomGenerator &random)
{
    const RGBA entry = sample.palette[random.bounded(256)];
    constexpr int alphas[] = {0, 1, 127, 128, 254, 255, 255, 255};
    const int alpha = alphas[random.bounded(8)];
    switch (random.bounded(3)) {
    case 0:
        return qRgba(entry.r, entry.g, entry.b, alpha);
    case 1:
        return qRgba(entry.r ^ random.bounded(16), entry.g ^ random.bounded(16),
                     entry.b ^ random.bounded(16), alpha);
    default:
        return qRgba(byteOf(random), byteOf(random), byteOf(random), alpha);
    }
}

} // namespace

class TestImageOperations : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void adaptWeighsAlpha();
    void adaptTakesAlphaOfTheTableFromTheImage();
    void adaptReadsEveryFormat();
    void adaptEqualsThePlainScan();
    void nearestColorBreaksTies();
    void paletteIndexEqualsThePlainScan();
    void cropRectFindsVisiblePixels_data();
    void cropRectFindsVisiblePixels();
    void cropRectStaysWithinItsBounds();
    void cropCutsOnlyWhenThereIsSomethingToCut();
    void nearestCopiesPixelsAtFixedPointPlaces_data();
    void nearestCopiesPixelsAtFixedPointPlaces();
    void bilinearTruncatesEachStep();
    void bilinearIndexesGoThroughThePalette();
    void filtersEnlargeBeforeTheyResize_data();
    void filtersEnlargeBeforeTheyResize();
    void hqUsesTheGivenPalette();
    void emptyAndUnknownResizeToNothing();
    void rotateTakesTheNearestPixel_data();
    void rotateTakesTheNearestPixel();
    void rotateRefusesWhatCannotBe();
    void otherFormatsAreConverted();
};

void TestImageOperations::adaptWeighsAlpha()
{
    // Entry 1 is black, 2 white, 3 red; all others are far from what is asked for.
    const Colors sample({{9, 9, 9, 40}, {0, 0, 0, 255}, {255, 255, 255, 255}, {255, 0, 0, 255}},
                        {0, 255, 0, 20});
    QImage image = colors({0xff000000, 0xfff0f0f0, 0xffff2020,
                           0x00ffffff, // alpha alone: 20 is the nearest to 0
                           0x1effffff, // 40 and 20 are equally near to 30, so that colours decide
                           0x80808080});
    // 0x80808080: 128 * 3 * 119^2 / 255 + 88^2 = 29068 to entry 0, to black 128 * 3 * 128^2 / 255
    // + 127^2 = 40801, to green 128 * (2 * 128^2 + 127^2) / 255 + 108^2 = 36208.
    adaptImageToPalette(image, sample.palette);
    // 0x1effffff: 30 * 3 * 246^2 / 255 + 100 = 21458 to entry 0, green 30 * 2 * 255^2 / 255 + 100 =
    // 15400.
    QCOMPARE(indices(image), QVector<int>({1, 2, 3, 4, 4, 0}));

    // A difference that truncation hides: 1 * 254 / 255 and 0 are the same, and the first one wins.
    const Colors near({{15, 5, 2, 1}, {0, 0, 0, 1}}, {255, 255, 255, 255});
    QImage faint = colors({0x01000000, 0xff000000});
    adaptImageToPalette(faint, near.palette);
    QCOMPARE(indices(faint), QVector<int>({0, 1}));
}

void TestImageOperations::adaptTakesAlphaOfTheTableFromTheImage()
{
    const Colors sample({{1, 2, 3, 4}, {5, 6, 7, 255}});
    const QRgb solid = qRgb(1, 2, 3);
    const QRgb own = qRgba(1, 2, 3, 4);
    QImage indexed(1, 1, QImage::Format_Indexed8);
    indexed.fill(0);
    indexed.setColorTable({0xff010203});
    QImage indexedAlpha = indexed;
    indexedAlpha.setColorTable({0xff010203, 0xfe000000});
    const QPair<QImage, QRgb> cases[] = {
        {colors({0xff010203}), own},
        {colors({0xff010203}, QImage::Format_RGB32), solid},
        {colors({0x80010203}, QImage::Format_ARGB32_Premultiplied), solid},
        {indexed, solid},
        {indexedAlpha, own},
    };
    for (const auto &[source, first] : cases) {
        QImage image = source;
        adaptImageToPalette(image, sample.palette);
        QCOMPARE(image.format(), QImage::Format_Indexed8);
        QCOMPARE(image.size(), source.size());
        QCOMPARE(image.colorCount(), 256);
        QCOMPARE(image.color(0), first);
        QCOMPARE(image.color(1), qRgb(5, 6, 7));
    }
}

void TestImageOperations::adaptReadsEveryFormat()
{
    const Colors sample({{255, 0, 0, 255}, {0, 0, 0, 255}, {255, 255, 255, 255}}, {0, 255, 0, 255});
    QImage indexed(3, 1, QImage::Format_Indexed8);
    indexed.setColorTable({0xffffffff, 0xffff0000});
    for (int i = 0; i < 3; ++i)
        indexed.scanLine(0)[i] = uchar(i); // the last one is not in the table: black
    adaptImageToPalette(indexed, sample.palette);
    QCOMPARE(indices(indexed), QVector<int>({2, 0, 1}));

    for (int format = QImage::Format_Invalid + 1; format < QImage::NImageFormats; ++format) {
        if (format == QImage::Format_Alpha8 || format == QImage::Format_Indexed8)
            continue;
        QImage image = colors({0xffffffff, 0xff000000}).convertToFormat(QImage::Format(format));
        adaptImageToPalette(image, sample.palette);
        QCOMPARE(indices(image), QVector<int>({2, 1}));
    }
    QImage none;
    adaptImageToPalette(none, sample.palette);
    QVERIFY(none.isNull());
}

void TestImageOperations::adaptEqualsThePlainScan()
{
    QRandomGenerator random(1);
    for (int kind = 0; kind < SamplePalettes; ++kind) {
        const Colors sample = samplePalette(kind, random);
        QImage image(161, 120, QImage::Format_ARGB32);
        for (int y = 0; y < image.height(); ++y) {
            for (int x = 0; x < image.width(); ++x)
                image.setPixel(x, y, sampleColor(sample, random));
        }
        const QImage expected = PlainMatch::matched(image, sample.palette);
        adaptImageToPalette(image, sample.palette);
        image.setColorTable({});
        QVERIFY2(image == expected, qPrintable(QString::number(kind)));
    }
}

void TestImageOperations::nearestColorBreaksTies()
{
    const RGBA far{255, 255, 255, 255};
    const RGBA color{10, 20, 30, 100};
    const auto find = [&](std::initializer_list<RGBA> entries) {
        return int(nearestColor(Colors(entries, far).palette, color));
    };
    QCOMPARE(find({far, {10, 20, 33, 100}, {10, 20, 28, 0}}), 2);
    QCOMPARE(find({{10, 20, 30, 150}, {10, 20, 30, 120}, {10, 20, 30, 120}}), 1);
    // -10 is kept as the byte 246, so that a difference of 100 is less.
    QCOMPARE(find({{10, 20, 30, 90}, {10, 20, 30, 200}}), 1);
    QCOMPARE(find({{10, 20, 30, 120}, {10, 20, 30, 200}}), 0);
    // Of a colour further away nothing is kept.
    QCOMPARE(find({{10, 20, 31, 100}, {10, 20, 30, 255}, {10, 20, 30, 254}}), 2);
}

void TestImageOperations::paletteIndexEqualsThePlainScan()
{
    QRandomGenerator random(2);
    for (int kind = 0; kind < SamplePalettes; ++kind) {
        const Colors sample = samplePalette(kind, random);
        PaletteIndex index(sample.palette);
        for (int i = 0; i < 20000; ++i) {
            const RGBA color = toRGBA(sampleColor(sample, random));
            QCOMPARE(index.find(color), nearestColor(sample.palette, color));
        }
    }
}

void TestImageOperations::cropRectFindsVisiblePixels_data()
{
    QTest::addColumn<Picture>("picture");
    QTest::addColumn<int>("margin");
    QTest::addColumn<QRect>("rect");
    const Picture dot{QStringLiteral("....."), QStringLiteral("...#."), QStringLiteral(".....")};
    const Picture corners{QStringLiteral("...#"), QStringLiteral("...."), QStringLiteral("#...")};
    const Picture nested{QStringLiteral("......"), QStringLiteral("..#..."),
                         QStringLiteral(".#.##."), QStringLiteral("...#..")};
    QTest::newRow("dot") << dot << 0 << QRect(3, 1, 1, 1);
    QTest::newRow("negative margin") << dot << -5 << QRect(3, 1, 1, 1);
    QTest::newRow("margin") << dot << 1 << QRect(2, 0, 3, 3);
    QTest::newRow("clamped margin") << dot << 2 << QRect(1, 0, 4, 3);
    QTest::newRow("huge margin") << dot << std::numeric_limits<int>::max() << QRect(0, 0, 5, 3);
    QTest::newRow("corners") << corners << 0 << QRect(0, 0, 4, 3);
    QTest::newRow("nested") << nested << 0 << QRect(1, 1, 4, 3);
    QTest::newRow("nothing") << Picture{QStringLiteral("..")} << 3 << QRect();
}

void TestImageOperations::cropRectFindsVisiblePixels()
{
    QFETCH(Picture, picture);
    QFETCH(int, margin);
    QFETCH(QRect, rect);

    // By the first pixel.
    QImage indexed = toImage(picture, QImage::Format_Indexed8);
    QCOMPARE(cropImageRect(indexed, margin), rect);
    const QImage solid = toImage(picture, QImage::Format_RGB32);
    QCOMPARE(cropImageRect(solid, margin), rect);
    QCOMPARE(cropImageRect(solid.convertToFormat(QImage::Format_ARGB32_Premultiplied), margin),
             rect);

    // By alpha; the colours of what is transparent play no part.
    QImage transparent = toImage(picture, QImage::Format_ARGB32);
    for (int y = 0; y < transparent.height(); ++y) {
        for (int x = 0; x < transparent.width(); ++x) {
            if (picture[y][x] == QLatin1Char('.'))
                transparent.setPixel(x, y, QRgb(x + y));
        }
    }
    QCOMPARE(cropImageRect(transparent, margin), rect);

    // By the table; what it does not have is visible.
    QVector<QRgb> table(1 + '.', 0xff000000);
    table['.'] = 0x00ffffff;
    table['#'] = 0x01ffffff;
    indexed.setColorTable(table);
    QCOMPARE(cropImageRect(indexed, margin), rect);
    table['.'] = 0xffffffff;
    table['#'] = 0;
    indexed.setColorTable(table);
    QImage inverted = toImage(picture, QImage::Format_Indexed8);
    for (int y = 0; y < inverted.height(); ++y) {
        for (int x = 0; x < inverted.width(); ++x)
            inverted.scanLine(y)[x] = picture[y][x] == QLatin1Char('.') ? '#' : 200;
    }
    inverted.setColorTable(table);
    QCOMPARE(cropImageRect(inverted, margin), rect);
}

void TestImageOperations::cropRectStaysWithinItsBounds()
{
    QCOMPARE(cropImageRect(QImage(), 1), QRect());
    QCOMPARE(cropImageRect(QImage(4, 4, QImage::Format_RGB16), 1), QRect());
    QImage wide(150001, 1, QImage::Format_Indexed8);
    wide.fill(0);
    wide.scanLine(0)[150000] = 1;
    QCOMPARE(cropImageRect(wide, 0), QRect(QPoint(100000, 0), QPoint(150000, 0)));
}

void TestImageOperations::cropCutsOnlyWhenThereIsSomethingToCut()
{
    const Picture picture{QStringLiteral("...."), QStringLiteral(".ab."), QStringLiteral("....")};
    QImage image = toImage(picture, QImage::Format_RGB32);
    const QImage whole = image;
    QPoint offset(-7, -7);
    QVERIFY(!cropImage(image, &offset, 1));
    QVERIFY(!cropImage(image, &offset, 9));
    QCOMPARE(image, whole);
    QCOMPARE(offset, QPoint(-7, -7));
    QVERIFY(cropImage(image, &offset, 0));
    QCOMPARE(offset, QPoint(1, 1));
    QCOMPARE(toPicture(image), Picture{QStringLiteral("ab")});
    image = whole;
    QVERIFY(cropImage(image, nullptr, 0));
    QCOMPARE(image.size(), QSize(2, 1));
    QImage empty(5, 5, QImage::Format_ARGB32);
    empty.fill(0x00ffffff);
    QVERIFY(!cropImage(empty, &offset, 0));
    QCOMPARE(empty.size(), QSize(5, 5));
}

void TestImageOperations::nearestCopiesPixelsAtFixedPointPlaces_data()
{
    QTest::addColumn<QString>("row");
    QTest::addColumn<QString>("result");
    // Steps of 28087 / 65536; the places 0, 28087, 56174, 84261, 112348, 140435, 168522.
    QTest::newRow("3 to 7") << QStringLiteral("abc") << QStringLiteral("aaabbcc");
    // 2 * 163841 is more than 5.
    QTest::newRow("5 to 2") << QStringLiteral("abcde") << QStringLiteral("ac");
    QTest::newRow("4 to 4") << QStringLiteral("abcd") << QStringLiteral("abcd");
    QTest::newRow("2 to 4") << QStringLiteral("ab") << QStringLiteral("aabb");
    // (65536 / 400 + 1) * 399 is more than 65536: it would lie behind the source.
    QTest::newRow("1 to 400") << QStringLiteral("a") << QString(400, QLatin1Char('a'));
}

void TestImageOperations::nearestCopiesPixelsAtFixedPointPlaces()
{
    QFETCH(QString, row);
    QFETCH(QString, result);
    for (QImage::Format format : plainFormats) {
        const QImage across = resizeImageNearest(toImage({row}, format), {result.size(), 2});
        QCOMPARE(across.format(), format);
        QCOMPARE(toPicture(across), Picture({result, result}));
        const QImage down = resizeImageNearest(
            toImage(row.split(QString(), Qt::SkipEmptyParts), format), {1, result.size()});
        QCOMPARE(toPicture(down).join(QString()), result);
    }
}

void TestImageOperations::bilinearTruncatesEachStep()
{
    Colors unused;
    const QImage row = colors({0x00ff1000, 0xff00f0ff});
    const QImage wide = resizeImageBilinear(row, {4, 1}, unused.palette);
    QCOMPARE(wide.format(), QImage::Format_ARGB32);
    QCOMPARE(wide, colors({0x00ff1000, 0x7f7f807f, 0xff00f0ff, 0xff00f0ff}));

    // 1.5 and 2.5 are truncated to 1 and 2 before the two are mixed: 1, not 2.
    QImage square(2, 2, QImage::Format_RGB32);
    square.setPixel(0, 0, 0xff000001);
    square.setPixel(1, 0, 0xff000002);
    square.setPixel(0, 1, 0xff000002);
    square.setPixel(1, 1, 0xff000003);
    const QImage large = resizeImageBilinear(square, {4, 4}, unused.palette);
    constexpr uint blue[4][4] = {{1, 1, 2, 2}, {1, 1, 2, 2}, {2, 2, 3, 3}, {2, 2, 3, 3}};
    for (int y = 0; y < 4; ++y) {
        for (int x = 0; x < 4; ++x)
            QCOMPARE(large.pixel(x, y), 0xff000000 | blue[y][x]);
    }
    QCOMPARE(resizeImageBilinear(row, {1, 1}, unused.palette), colors({0x00ff1000}));
    // 5 to 2: at 0 and 2.5.
    QCOMPARE(resizeImageBilinear(colors({0, 9, 10, 21, 30}), {2, 1}, unused.palette),
             colors({0, 15}));
}

void TestImageOperations::bilinearIndexesGoThroughThePalette()
{
    Colors sample({{0, 0, 0, 255}, {200, 0, 0, 255}, {90, 0, 0, 255}, {105, 0, 0, 0}},
                  {0, 255, 255, 255});
    QImage image(2, 1, QImage::Format_Indexed8);
    image.scanLine(0)[0] = 0;
    image.scanLine(0)[1] = 1;
    const QImage wide = resizeImageBilinear(image, {4, 1}, sample.palette);
    QCOMPARE(wide.format(), QImage::Format_Indexed8);
    QCOMPARE(indices(wide), QVector<int>({0, 3, 1, 1}));
}

void TestImageOperations::filtersEnlargeBeforeTheyResize_data()
{
    QTest::addColumn<QSize>("size");
    QTest::addColumn<int>("times");
    const auto row = [](QSize size, int times) {
        QTest::addRow("%d by %d", size.width(), size.height()) << size << times;
    };
    // The source has 6 by 5 pixels.
    row({6, 5}, 2);
    row({2, 2}, 2);
    row({12, 10}, 2);
    row({13, 5}, 3);
    row({6, 11}, 3);
    row({18, 15}, 3);
    row({19, 1}, 4);
    row({1, 16}, 4);
    row({24, 20}, 4);
    row({60, 50}, 4);
}

void TestImageOperations::filtersEnlargeBeforeTheyResize()
{
    QFETCH(QSize, size);
    QFETCH(int, times);
    QRandomGenerator random(3);
    Colors sample = samplePalette(0, random);
    QImage source(6, 5, QImage::Format_ARGB32);
    for (int i = 0; i < 30; ++i)
        source.setPixel(i % 6, i / 6, sampleColor(sample, random) | 0xff000000);

    const auto check = [&](const QImage &enlarged, ImageResizeFilter nearest) {
        const auto bilinear = ImageResizeFilter(nearest + 1);
        const bool same = enlarged.size() == size;
        QCOMPARE(resizeImage(source, size, sample.palette, nearest),
                 same ? enlarged : resizeImageNearest(enlarged, size));
        QCOMPARE(resizeImage(source, size, sample.palette, bilinear),
                 same ? enlarged : resizeImageBilinear(enlarged, size, sample.palette));
    };
    check(times == 4 ? scaleEPX(scaleEPX(source, 2), 2) : scaleEPX(source, times),
          EpxNearestFilter);
    QImage smooth(source.size() * times, QImage::Format_ARGB32);
    scaleHQ(times, reinterpret_cast<const quint32 *>(source.constBits()), 6, 5,
            reinterpret_cast<quint32 *>(smooth.bits()), smooth.bytesPerLine());
    check(smooth, HqNearestFilter);
}

void TestImageOperations::hqUsesTheGivenPalette()
{
    // The image's own table plays no part.
    Colors sample({{255, 0, 0, 255}, {0, 0, 0, 255}, {255, 255, 255, 255}}, {0, 255, 0, 255});
    QImage image(3, 3, QImage::Format_Indexed8);
    image.setColorTable(QVector<QRgb>(256, 0xff00ff00));
    image.fill(2);
    for (const QSize size : {QSize(6, 6), QSize(9, 9), QSize(12, 12), QSize(7, 5), QSize(1, 30)}) {
        for (ImageResizeFilter filter : {HqNearestFilter, HqBilinearFilter}) {
            const QImage large = resizeImage(image, size, sample.palette, filter);
            QCOMPARE(large.size(), size);
            QCOMPARE(large.format(), QImage::Format_Indexed8);
            for (int y = 0; y < size.height(); ++y) {
                const uchar *row = large.constScanLine(y);
                QVERIFY(std::all_of(row, row + size.width(), [](uchar i) { return i == 2; }));
            }
        }
    }
}

void TestImageOperations::emptyAndUnknownResizeToNothing()
{
    Colors sample;
    const QImage image = colors({0xffff0000, 0xff00ff00});
    for (int filter = 0; filter < 6; ++filter) {
        const auto chosen = ImageResizeFilter(filter);
        for (const QSize size : {QSize(), QSize(0, 5), QSize(5, 0), QSize(-3, 5)})
            QVERIFY(resizeImage(image, size, sample.palette, chosen).isNull());
        QVERIFY(resizeImage(QImage(), {5, 5}, sample.palette, chosen).isNull());
        QVERIFY(resizeImage(image, {1 << 30, 1 << 30}, sample.palette, chosen).isNull());
        QCOMPARE(resizeImage(image, {5, 3}, sample.palette, chosen).size(), QSize(5, 3));
    }
    for (int filter : {6, 7, -1})
        QVERIFY(resizeImage(image, {5, 5}, sample.palette, ImageResizeFilter(filter)).isNull());
}

void TestImageOperations::rotateTakesTheNearestPixel_data()
{
    QTest::addColumn<float>("radians");
    QTest::addColumn<QString>("result");
    // Worked out by another program in 32-bit floats.
    QTest::newRow("0") << 0.0F << QStringLiteral("abcd efgh ijkl");
    QTest::newRow("quarter") << float(M_PI / 2) << QStringLiteral(".ie .jb .gc lhd");
    QTest::newRow("eighth") << float(M_PI / 4) << QStringLiteral(".aaa ieab iifc .jkg");
    QTest::newRow("half") << float(M_PI) << QStringLiteral(".lk. .hgf .dcb");
    QTest::newRow("back") << -0.5F << QStringLiteral("abcd aabg aefk");
    QTest::newRow("2.5") << 2.5F << QStringLiteral("..ii .jfe lgfa hdcb");
}

void TestImageOperations::rotateTakesTheNearestPixel()
{
    QFETCH(float, radians);
    QFETCH(QString, result);
    const Picture picture{QStringLiteral("abcd"), QStringLiteral("efgh"), QStringLiteral("ijkl")};
    for (QImage::Format format : plainFormats) {
        const uint fill = format == QImage::Format_Indexed8 ? 0xabcdef00 | '.' : 0xff123400 | '.';
        const QImage turned = rotateImage(toImage(picture, format), radians, fill);
        QCOMPARE(turned.format(), format);
        QCOMPARE(toPicture(turned), result.split(QLatin1Char(' ')));
    }
    const QImage sharp = rotateImage(colors({0x11223344}), 0, 0x55667788);
    QCOMPARE(sharp.pixel(0, 0), 0x11223344U);
    QCOMPARE(rotateImage(toImage(picture, QImage::Format_ARGB32), float(M_PI / 4), 0x55667788)
                 .pixel(0, 0),
             0x55667788U);
}

void TestImageOperations::rotateRefusesWhatCannotBe()
{
    QVERIFY(rotateImage(QImage(), 1, 0).isNull());
    const QImage image = colors({0xffffffff});
    for (double radians : {qInf(), -qInf(), qQNaN()})
        QVERIFY(rotateImage(image, float(radians), 0).isNull());
    // Turned by an eighth this would have 5 * 10^10 pixels.
    QImage line(300000, 1, QImage::Format_ARGB32);
    line.fill(0);
    QVERIFY(rotateImage(line, float(M_PI / 4), 0).isNull());
}

void TestImageOperations::otherFormatsAreConverted()
{
    Colors sample;
    for (int number = QImage::Format_Invalid + 1; number < QImage::NImageFormats; ++number) {
        const auto format = QImage::Format(number);
        QImage white(3, 2, QImage::Format_ARGB32);
        white.fill(0xffffffff);
        const QImage image = white.convertToFormat(format);
        const auto isWhite = [&](const QImage &result, QSize size) {
            return result.size() == size
                && (result.depth() == 8 || format == QImage::Format_Alpha8
                    || result.pixel(size.width() - 1, size.height() - 1) == 0xffffffff);
        };
        QVERIFY(isWhite(rotateImage(image, 0, 0), {3, 2}));
        for (int filter = 0; filter < 6; ++filter)
            QVERIFY(isWhite(resizeImage(image, {5, 7}, sample.palette, ImageResizeFilter(filter)),
                            {5, 7}));
    }
}

QTEST_GUILESS_MAIN(TestImageOperations)
#include "tst_imageoperations.moc"
