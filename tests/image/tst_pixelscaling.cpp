// SPDX-License-Identifier: MIT
#include "image/pixelscaling.h"

#include "image/plainepx.h"

#include <QDirIterator>
#include <QLinearGradient>
#include <QPainter>
#include <QProcess>
#include <QRandomGenerator>
#include <QStandardPaths>
#include <QTest>

using namespace Vela;

namespace {

QImage randomImage(QSize size, QImage::Format format, const QVector<uint> &values, uint seed)
{
    QImage image(size, format);
    QRandomGenerator random(seed);
    for (int y = 0; y < size.height(); ++y) {
        for (int x = 0; x < size.width(); ++x) {
            const uint value = values[random.bounded(values.size())];
            if (format == QImage::Format_Indexed8)
                image.scanLine(y)[x] = uchar(value);
            else
                reinterpret_cast<uint *>(image.scanLine(y))[x] = value;
        }
    }
    return image;
}

QImage scaledHQ(const QImage &image, int factor)
{
    QImage target(image.size() * factor, QImage::Format_ARGB32);
    scaleHQ(factor, reinterpret_cast<const quint32 *>(image.constBits()), image.width(),
            image.height(), reinterpret_cast<quint32 *>(target.bits()), target.bytesPerLine());
    return target;
}

// A picture with one character a pixel, whose code is the index.
QImage fromText(const QByteArray &text)
{
    const QByteArrayList rows = text.split('/');
    QImage image(rows.first().size(), rows.size(), QImage::Format_Indexed8);
    for (int y = 0; y < rows.size(); ++y)
        std::copy(rows[y].begin(), rows[y].end(), image.scanLine(y));
    return image;
}

// The bytes of the pixels.
QByteArray toText(const QImage &image)
{
    QByteArrayList rows;
    for (int y = 0; y < image.height(); ++y) {
        rows << QByteArray(reinterpret_cast<const char *>(image.constScanLine(y)),
                           image.width() * image.depth() / 8);
    }
    return rows.join('/');
}

// ---- Pictures for the comparison with another program ----

QImage noise(int colors, bool opaque)
{
    QRandomGenerator random(uint(colors) + 40);
    QVector<uint> values;
    for (int i = 0; i < colors; ++i)
        values << (random.generate() | (opaque ? 0xff000000 : 0));
    return randomImage({301, 203}, QImage::Format_ARGB32, values, uint(colors));
}

// Colours close to the limits of what counts as different, which is not transitive there: nearly
// every key of the filter occurs.
QImage closeColors()
{
    QRandomGenerator random(9);
    QVector<uint> values;
    for (int i = 0; i < 300; ++i) {
        const int gray = 70 + random.bounded(5) * 24 + random.bounded(4);
        values << qRgb(gray + random.bounded(5), gray, gray + random.bounded(5));
    }
    return randomImage({701, 403}, QImage::Format_ARGB32, values, 10);
}

QImage gradient()
{
    QImage image(255, 160, QImage::Format_ARGB32);
    QLinearGradient colors(0, 0, 255, 160);
    colors.setStops(
        {{0, Qt::transparent}, {0.3, Qt::red}, {0.6, QColor(20, 200, 90)}, {1, Qt::blue}});
    QPainter painter(&image);
    painter.setCompositionMode(QPainter::CompositionMode_Source);
    painter.fillRect(image.rect(), colors);
    return image;
}

// Shapes and letters without smooth edges.
QImage drawing()
{
    QImage image(240, 180, QImage::Format_ARGB32);
    image.fill(0);
    QPainter painter(&image);
    painter.setPen(QPen(Qt::black, 1));
    for (int i = 0; i < 60; ++i) {
        painter.setBrush(QColor::fromHsv(i * 47 % 360, 180, 220));
        painter.drawEllipse(i * 53 % 220, i * 31 % 160, 5 + i % 23, 5 + i * 7 % 19);
        painter.drawLine(i * 19 % 240, 0, i * 71 % 240, 180);
    }
    QFont font(QStringLiteral("serif"), 14);
    font.setStyleStrategy(QFont::NoAntialias);
    painter.setFont(font);
    painter.setPen(Qt::white);
    painter.drawText(image.rect(), Qt::TextWordWrap,
                     QStringLiteral("The quick brown fox 0123456789"));
    return image;
}

// The sprites of the example, one beside the other.
QImage spriteSheet()
{
    QImage sheet(512, 256, QImage::Format_ARGB32);
    sheet.fill(0);
    QPainter painter(&sheet);
    painter.setCompositionMode(QPainter::CompositionMode_Source);
    QDirIterator files(qEnvironmentVariable("VELA_SOURCE_DIR") + QStringLiteral("/examples/meadow"),
                       {QStringLiteral("*.png")}, QDir::Files, QDirIterator::Subdirectories);
    for (int i = 0; files.hasNext(); ++i)
        painter.drawImage(i % 8 * 64, i / 8 * 64, QImage(files.next()));
    return sheet;
}

// What ffmpeg's filter makes of an image, or null.
QImage filtered(const QImage &image, const QString &filter, int factor)
{
    const auto sizeText = QStringLiteral("%1x%2").arg(image.width()).arg(image.height());
    const QString raw = QStringLiteral("rawvideo"), pixels = QStringLiteral("bgra");
    QProcess process;
    process.start(QStringLiteral("ffmpeg"),
                  {QStringLiteral("-loglevel"), QStringLiteral("error"), QStringLiteral("-f"), raw,
                   QStringLiteral("-pix_fmt"), pixels, QStringLiteral("-s"), sizeText,
                   QStringLiteral("-i"), QStringLiteral("-"), QStringLiteral("-vf"),
                   QStringLiteral("%1=%2").arg(filter).arg(factor), QStringLiteral("-f"), raw,
                   QStringLiteral("-pix_fmt"), pixels, QStringLiteral("-")});
    process.write(reinterpret_cast<const char *>(image.constBits()), image.sizeInBytes());
    process.closeWriteChannel();
    process.waitForFinished();
    const QByteArray output = process.readAllStandardOutput();
    QImage result(image.size() * factor, QImage::Format_ARGB32);
    if (output.size() != result.sizeInBytes())
        return {};
    std::copy(output.begin(), output.end(), result.bits());
    return result;
}

} // namespace

class PixelScalingTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void epxByHand_data();
    void epxByHand();
    void epxEqualsThePlainWay_data();
    void epxEqualsThePlainWay();
    void epxRefusesWhatItCannotScale();
    void hqByHand_data();
    void hqByHand();
    void hqLeavesThePaddingAlone_data();
    void hqLeavesThePaddingAlone();
    void equalsFfmpeg_data();
    void equalsFfmpeg();
};

void PixelScalingTest::epxByHand_data()
{
    QTest::addColumn<int>("factor");
    QTest::addColumn<QByteArray>("source");
    QTest::addColumn<QByteArray>("expected");

    QTest::newRow("one pixel") << 2 << QByteArray("x") << QByteArray("xx/xx");
    QTest::newRow("one pixel, threefold") << 3 << QByteArray("x") << QByteArray("xxx/xxx/xxx");
    QTest::newRow("diagonal") << 2 << QByteArray("..#/.#./#..")
                              << QByteArray("....##/...#.#/..###./.###../#.#.../##....");
    // Corners outside of the image count as the pixel, so that no edge changes.
    QTest::newRow("border, threefold")
        << 3 << QByteArray("#./..") << QByteArray("###.../###.../##..../....../....../......");
    // The top edge of the middle pixel goes with the top left corner, as the pixel at the top right
    // differs, and the left edge does not.
    QTest::newRow("edge, threefold")
        << 3 << QByteArray(".#o/#../...")
        << QByteArray("...###ooo/...###ooo/..#..#ooo/#####..../###....../###....../"
                      "........./........./.........");
}

void PixelScalingTest::epxByHand()
{
    QFETCH(int, factor);
    QFETCH(QByteArray, source);
    QTEST(toText(scaleEPX(fromText(source), factor)), "expected");
}

void PixelScalingTest::epxEqualsThePlainWay_data()
{
    QTest::addColumn<QImage::Format>("format");
    QTest::addColumn<int>("factor");
    QTest::newRow("indices, twofold") << QImage::Format_Indexed8 << 2;
    QTest::newRow("indices, threefold") << QImage::Format_Indexed8 << 3;
    QTest::newRow("colours, twofold") << QImage::Format_ARGB32 << 2;
    QTest::newRow("colours, threefold") << QImage::Format_ARGB32 << 3;
}

void PixelScalingTest::epxEqualsThePlainWay()
{
    QFETCH(QImage::Format, format);
    QFETCH(int, factor);
    // Colours that differ in one channel only, alpha among them.
    const QVector<uint> values = {0x10000001, 0x10000002, 0x90000001};
    for (int width = 1; width <= 40; ++width) {
        for (int height = 1; height <= 6; ++height) {
            const QImage image = randomImage({width, height}, format, values, uint(width));
            QImage scaled = scaleEPX(image, factor);
            QCOMPARE(scaled.format(), format);
            QVERIFY(scaled.colorTable().isEmpty());
            QCOMPARE(toText(scaled), toText(PlainEPX(image).scaled(factor)));
        }
    }
}

void PixelScalingTest::epxRefusesWhatItCannotScale()
{
    QVERIFY(scaleEPX(QImage(), 2).isNull());
    QVERIFY(scaleEPX(QImage(3, 3, QImage::Format_Mono), 2).isNull());
    QVERIFY(scaleEPX(QImage(3, 3, QImage::Format_ARGB32), 4).isNull());
    QVERIFY(scaleEPX(QImage(30000, 30000, QImage::Format_Indexed8), 2).isNull());
}

void PixelScalingTest::hqByHand_data()
{
    QTest::addColumn<int>("factor");
    QTest::addColumn<QVector<int>>("expected");
    QTest::addColumn<int>("right");

    // Grays of two pixels, 100 at the left. 48 apart, they are mixed by quarters and eighths, and
    // one more makes an edge.
    QTest::newRow("mixed by 2") << 2 << QVector<int>{100, 110, 130, 140} << 140;
    QTest::newRow("mixed by 3") << 3 << QVector<int>{100, 100, 110, 130, 140, 140} << 140;
    QTest::newRow("mixed by 4") << 4 << QVector<int>{100, 100, 105, 110, 130, 135, 140, 140} << 140;
    QTest::newRow("near the limit") << 2 << QVector<int>{100, 112, 136, 148} << 148;
    QTest::newRow("past the limit") << 2 << QVector<int>{100, 100, 149, 149} << 149;
}

void PixelScalingTest::hqByHand()
{
    QFETCH(int, factor);
    QFETCH(QVector<int>, expected);
    QFETCH(int, right);
    // Alpha is not compared, and is mixed like the colours: it is the gray here.
    const auto gray = [](int value) { return qRgba(value, value, value, value); };
    for (const bool upright : {false, true}) {
        QImage image(upright ? QSize(1, 2) : QSize(2, 1), QImage::Format_ARGB32);
        image.setPixel(0, 0, gray(100));
        image.setPixel(image.width() - 1, image.height() - 1, gray(right));
        const QImage scaled = scaledHQ(image, factor);
        for (int i = 0; i < expected.size(); ++i) {
            for (int j = 0; j < factor; ++j)
                QCOMPARE(upright ? scaled.pixel(j, i) : scaled.pixel(i, j), gray(expected[i]));
        }
    }
}

void PixelScalingTest::hqLeavesThePaddingAlone_data()
{
    QTest::addColumn<QSize>("size");
    QTest::newRow("nothing") << QSize(0, 3);
    QTest::newRow("one pixel") << QSize(1, 1);
    QTest::newRow("column") << QSize(1, 5);
    QTest::newRow("row") << QSize(5, 1);
    QTest::newRow("more") << QSize(4, 3);
}

void PixelScalingTest::hqLeavesThePaddingAlone()
{
    QFETCH(QSize, size);
    constexpr quint32 color = 0x80402010;
    constexpr quint32 untouched = 0x12345678;
    const QVector<quint32> source(size.width() * size.height(), color);
    for (const int factor : {2, 3, 4}) {
        const int columns = size.width() * factor + 3;
        QVector<quint32> target((size.height() * factor + 1) * columns, untouched);
        scaleHQ(factor, source.constData(), size.width(), size.height(), target.data(),
                columns * 4);
        for (int i = 0; i < target.size(); ++i) {
            const bool inside =
                i % columns < size.width() * factor && i / columns < size.height() * factor;
            QCOMPARE(target[i], inside ? color : untouched);
        }
    }
}

void PixelScalingTest::equalsFfmpeg_data()
{
    if (QStandardPaths::findExecutable(QStringLiteral("ffmpeg")).isEmpty())
        QSKIP("ffmpeg is not installed: the filters are not compared with its own.");
    QTest::addColumn<QImage>("image");
    for (const int colors : {2, 3, 5, 8})
        QTest::addRow("%d colours", colors) << noise(colors, true);
    QTest::newRow("translucent colours") << noise(5, false);
    QTest::newRow("close colours") << closeColors();
    QTest::newRow("gradient") << gradient();
    QTest::newRow("shapes and letters") << drawing();
    QTest::newRow("sprites") << spriteSheet();
}

void PixelScalingTest::equalsFfmpeg()
{
    QFETCH(QImage, image);
    for (const int factor : {2, 3, 4})
        QCOMPARE(scaledHQ(image, factor), filtered(image, QStringLiteral("hqx"), factor));
    QCOMPARE(scaleEPX(image, 2), filtered(image, QStringLiteral("epx"), 2));
    // At a corner outside of the image ffmpeg reads the nearest pixel of the border and not the
    // centre, which the threefold rules tell apart.
    const QImage scaled = scaleEPX(image, 3);
    const QRect inside = scaled.rect().adjusted(3, 3, -3, -3);
    QCOMPARE(scaled.copy(inside), filtered(image, QStringLiteral("epx"), 3).copy(inside));
}

QTEST_MAIN(PixelScalingTest)
#include "tst_pixelscaling.moc"
