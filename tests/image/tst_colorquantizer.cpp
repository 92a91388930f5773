// SPDX-License-Identifier: MIT
#include "image/colorquantizer.h"

#include <QImage>
#include <QRandomGenerator>
#include <QTest>

#include <algorithm>

using namespace Vela;

namespace {

using Colors = QVector<QRgb>;

QImage row(const Colors &colors)
{
    QImage image(colors.size(), 1, QImage::Format_ARGB32);
    std::copy(colors.begin(), colors.end(), reinterpret_cast<QRgb *>(image.scanLine(0)));
    return image;
}

/// The entries that count. All behind them must be zero.
Colors table(ColorQuantizer &quantizer)
{
    RGBA entries[256];
    std::fill(std::begin(entries), std::end(entries), RGBA{1, 2, 3, 4});
    quantizer.getColorTable(entries);
    Colors colors;
    for (int i = 0; i < quantizer.colorCount(); ++i)
        colors.append(toRgb(entries[i]));
    const bool isEmpty = std::all_of(entries + colors.size(), std::end(entries),
                                     [](RGBA entry) { return entry == RGBA(); });
    return isEmpty ? colors : Colors{0xdeadbeef};
}

} // namespace

class TestColorQuantizer : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void tableIsWorkedOutByHand_data();
    void tableIsWorkedOutByHand();
    void imagesAccumulate();
    void neverHoldsTooManyColors();
    void keepsTheMeanOfManyPixels();
    void readsEveryFormat();
    void boundsItsParameters();
};

void TestColorQuantizer::tableIsWorkedOutByHand_data()
{
    QTest::addColumn<int>("maxColors");
    QTest::addColumn<int>("colorBits");
    QTest::addColumn<Colors>("colors");
    QTest::addColumn<Colors>("expected");
    const QRgb black = 0xff000000;
    const QRgb white = 0xffffffff;
    const QRgb green = 0xff00ff00;
    const QRgb dark = 0xff400000;  // a leaf beside black where two levels count
    const QRgb light = 0xffbfffff; // a leaf beside white

    QTest::newRow("nothing") << 8 << 8 << Colors{} << Colors{};
    QTest::newRow("in the tree's order")
        << 8 << 8 << Colors{white, 0xff0000ff, 0xffff0000, green, black, white}
        << Colors{black, 0xff0000ff, green, 0xffff0000, white};
    QTest::newRow("means of a leaf, alpha too")
        << 8 << 1 << Colors{0x00000000, 0x81010203, 0x0a7f0000, 0xff800000}
        << Colors{0x2e2a0001, 0xff800000};
    // The third colour is one too many. White's node is the latest of level 1, but has one leaf;
    // then black's node takes its two leaves in.
    QTest::newRow("until few enough")
        << 2 << 2 << Colors{black, white, dark} << Colors{0xff200000, white};
    // The latest node of the deepest level goes first: white's.
    QTest::newRow("latest node first")
        << 3 << 2 << Colors{black, dark, white, light} << Colors{black, dark, 0xffdfffff};
    QTest::newRow("latest node first, the other way")
        << 3 << 2 << Colors{white, light, black, dark} << Colors{0xff200000, light, white};
    // Level 1 has no node left, and the root takes all four pixels in.
    QTest::newRow("down to the root")
        << 2 << 2 << Colors{black, white, dark, green} << Colors{0xff4f7f3f};
    QTest::newRow("one color") << 1 << 8 << Colors{0xff000001, 0xff000003, 0xff000004}
                               << Colors{0xff000002};
    // A node that is a leaf now takes later colours in without new nodes.
    QTest::newRow("leaf stays a leaf")
        << 2 << 2 << Colors{black, white, dark, dark, black, dark} << Colors{0xff260000, white};
}

void TestColorQuantizer::tableIsWorkedOutByHand()
{
    QFETCH(int, maxColors);
    QFETCH(int, colorBits);
    QFETCH(Colors, colors);
    QFETCH(Colors, expected);
    ColorQuantizer quantizer(maxColors, colorBits);
    QVERIFY(quantizer.processImage(colors.isEmpty() ? QImage() : row(colors)));
    QCOMPARE(table(quantizer), expected);
}

void TestColorQuantizer::imagesAccumulate()
{
    ColorQuantizer quantizer(256, 8);
    QVERIFY(quantizer.processImage(row({0xff000000, 0xff0000ff})));
    QVERIFY(quantizer.processImage(row({0xff0000ff, 0xff00ff00})));
    QCOMPARE(table(quantizer), Colors({0xff000000, 0xff0000ff, 0xff00ff00}));
}

void TestColorQuantizer::neverHoldsTooManyColors()
{
    QRandomGenerator random(4);
    for (int maxColors : {1, 2, 16, 255, 256}) {
        for (int colorBits : {1, 3, 8}) {
            ColorQuantizer quantizer(maxColors, colorBits);
            for (int i = 0; i < 3; ++i) {
                QImage image(100, 40, QImage::Format_ARGB32);
                random.fillRange(reinterpret_cast<quint32 *>(image.bits()), 4000);
                quantizer.processImage(image);
                QVERIFY(quantizer.colorCount() >= 1);
                QVERIFY(quantizer.colorCount() <= maxColors);
                QCOMPARE(table(quantizer).size(), quantizer.colorCount());
            }
        }
    }
}

/// Sums of 255 do not fit into 32 bits beyond 2^24 pixels.
void TestColorQuantizer::keepsTheMeanOfManyPixels()
{
    QImage image(4096, 1024, QImage::Format_ARGB32);
    image.fill(0xfffefdfc);
    ColorQuantizer quantizer(4, 8);
    for (int i = 0; i < 5; ++i)
        quantizer.processImage(image);
    QCOMPARE(table(quantizer), Colors{0xfffefdfc});
}

void TestColorQuantizer::readsEveryFormat()
{
    for (int format = QImage::Format_Invalid + 1; format < QImage::NImageFormats; ++format) {
        if (format == QImage::Format_Alpha8)
            continue;
        ColorQuantizer quantizer(4, 8);
        quantizer.processImage(
            row({0xffffffff, 0xff000000}).convertToFormat(QImage::Format(format)));
        QCOMPARE(table(quantizer), Colors({0xff000000, 0xffffffff}));
    }
}

void TestColorQuantizer::boundsItsParameters()
{
    QImage image(64, 64, QImage::Format_ARGB32);
    QRandomGenerator random(5);
    random.fillRange(reinterpret_cast<quint32 *>(image.bits()), 4096);
    ColorQuantizer many(100000, 100);
    many.processImage(image);
    QVERIFY(table(many).size() <= 256);
    ColorQuantizer few(-1, -1);
    few.processImage(image);
    QCOMPARE(table(few).size(), 1);
}

QTEST_GUILESS_MAIN(TestColorQuantizer)
#include "tst_colorquantizer.moc"
