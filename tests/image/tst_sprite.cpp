// SPDX-License-Identifier: MIT
#include "image/sprite.h"

#include <QTest>

#include <climits>

using namespace Vela;

namespace {

// A sprite with nothing but an image, which remembers how it was set.
class TestedSprite : public Sprite
{
public:
    explicit TestedSprite(const QImage &image)
        : m_image(image)
    {
    }

    using Sprite::setImage;

    QVariant property(const QString &) const override
    {
        return {};
    }
    void setProperty(const QString &, const QVariant &) override
    {
    }
    unsigned int index() const override
    {
        return 0;
    }
    Sprites *parent() const override
    {
        return nullptr;
    }
    Sprite *duplicate() const override
    {
        return nullptr;
    }
    void crop() override
    {
    }
    void splitRGB() override
    {
    }
    bool isEmpty() const override
    {
        return m_image.isNull();
    }
    SubItem identifier() const override
    {
        return {};
    }
    void setIdentifier(SubItem) override
    {
    }
    QImage image() const override
    {
        return m_image;
    }
    ImageInfo imageProperties() const override
    {
        return {};
    }
    bool imageIsShared() const override
    {
        return false;
    }
    void setImage(const QImage &, bool, PaletteMode, Palette *, ShareMode) override
    {
    }
    void setImage(const QImage &image, ShareMode share) override
    {
        m_image = image;
        shareMode = share;
    }
    Palette *palette() const override
    {
        return nullptr;
    }
    void setPalette(Palette *) override
    {
    }
    QPoint axis() const override
    {
        return {};
    }
    void setAxis(QPoint) override
    {
    }

    ShareMode shareMode = ShareMode::NoShare;

private:
    QImage m_image;
};

// An image of 3 by 2 pixels that are all different where the format can tell so many apart.
QImage smallImage(QImage::Format format)
{
    QImage image(3, 2, QImage::Format_ARGB32);
    for (int i = 0; i < 6; ++i)
        image.setPixel(i % 3, i / 3, i % 2 ? qRgba(250, 40 * i, 8, 255) : qRgba(0, 8 * i, 16, 255));
    return image.convertToFormat(format);
}

} // namespace

class TestSprite : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void parsesSubItems_data();
    void parsesSubItems();
    void baseHasOnePropertyAndSharesImages();
    void alignedPutsAxesTogether_data();
    void alignedPutsAxesTogether();
    void alignedKeepsIndices();
    void alignedRefusesWhatDoesNotFit_data();
    void alignedRefusesWhatDoesNotFit();
};

void TestSprite::parsesSubItems_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<bool>("isValid");
    QTest::addColumn<int>("group");
    QTest::addColumn<int>("image");

    const auto row = [](const char *text, bool isValid, int group, int image) {
        QTest::newRow(*text ? text : "empty")
            << QString::fromLatin1(text) << isValid << group << image;
    };
    row("12,34", true, 12, 34);
    row(" -12 ,\t34 ", true, -12, 34);
    row("2147483647,-2147483648", true, INT_MAX, INT_MIN);
    // -1 is what was there before.
    row("", false, -1, -1);
    row("12", false, -1, -1);
    row("12,34,56", false, -1, -1);
    row("12,34,", false, -1, -1);
    row("x,34", false, -1, -1);
    row(",34", false, -1, -1);
    row("2147483648,34", false, -1, -1);
    row("0x10,34", false, -1, -1);
    row("12,x", false, 12, -1);
    row("12,", false, 12, -1);
    row("12,3 4", false, 12, -1);
}

void TestSprite::parsesSubItems()
{
    QFETCH(const QString, text);
    QFETCH(const bool, isValid);

    SubItem item{-1, -1};
    QCOMPARE(SubItem::parse(text, item), isValid);
    QTEST(item.group, "group");
    QTEST(item.image, "image");
}

void TestSprite::baseHasOnePropertyAndSharesImages()
{
    TestedSprite sprite{QImage()};
    QCOMPARE(sprite.propertyNames(), QStringList{QStringLiteral("Identifier")});
    const QImage image = smallImage(QImage::Format_ARGB32);
    sprite.setImage(image);
    QCOMPARE(sprite.image(), image);
    QCOMPARE(sprite.shareMode, ShareMode::Share);
}

void TestSprite::alignedPutsAxesTogether_data()
{
    QTest::addColumn<int>("format");
    QTest::addColumn<QPoint>("axis");
    QTest::addColumn<QPoint>("corner");

    const QPoint leftTop(9, 4); // the right and bottom stand in the test
    for (QImage::Format format : {QImage::Format_ARGB32, QImage::Format_RGB32, QImage::Format_RGB16,
                                  QImage::Format_RGB888, QImage::Format_Mono}) {
        const auto row = [format](const char *name, QPoint axis, QPoint corner) {
            QTest::addRow("%s, format %d", name, format) << int(format) << axis << corner;
        };
        row("inside", {1, 1}, {8, 3});
        row("first corner", leftTop, {0, 0});
        row("outside of the image", {-1, 0}, {10, 4});
    }
}

void TestSprite::alignedPutsAxesTogether()
{
    QFETCH(const int, format);
    QFETCH(const QPoint, axis);
    QFETCH(const QPoint, corner);

    const TestedSprite sprite(smallImage(QImage::Format(format)));
    const QImage image = sprite.aligned(axis, {9, 4}, {4, 2});
    QCOMPARE(image.size(), QSize(13, 6));
    QCOMPARE(int(image.format()), format);
    const QRect covered(corner, QSize(3, 2));
    const bool isIndexed = format == QImage::Format_Mono;
    for (int y = 0; y < 6; ++y) {
        for (int x = 0; x < 13; ++x) {
            if (covered.contains(x, y))
                QCOMPARE(image.pixel(x, y), sprite.image().pixel(QPoint(x, y) - corner));
            else if (isIndexed)
                QCOMPARE(image.pixelIndex(x, y), 0);
            else
                QCOMPARE(image.pixel(x, y) & 0xffffff, 0u);
        }
    }
    // The whole line is clear, with the opacity of the pixels and what fills it up.
    const QByteArray firstLine(reinterpret_cast<const char *>(image.constBits()),
                               image.bytesPerLine());
    QCOMPARE(firstLine == QByteArray(image.bytesPerLine(), '\0'), corner.y() > 0);
}

void TestSprite::alignedKeepsIndices()
{
    QImage source(2, 1, QImage::Format_Indexed8);
    source.setColorTable({qRgba(1, 2, 3, 4), qRgb(5, 6, 7), qRgb(8, 9, 10)});
    source.scanLine(0)[0] = 2;
    source.scanLine(0)[1] = 200; // outside of the table
    const QImage image = TestedSprite(source).aligned({0, 0}, {1, 1}, {2, 1});
    QCOMPARE(image.colorTable(), source.colorTable());
    QCOMPARE(QByteArray(reinterpret_cast<const char *>(image.constScanLine(0)), 3),
             QByteArray::fromHex("000000"));
    QCOMPARE(QByteArray(reinterpret_cast<const char *>(image.constScanLine(1)), 3),
             QByteArray::fromHex("0002c8"));
}

// An axis that does not belong to the set must not write outside of the image.
void TestSprite::alignedRefusesWhatDoesNotFit_data()
{
    QTest::addColumn<QPoint>("axis");
    QTest::addColumn<QPoint>("leftTop");
    QTest::addColumn<QPoint>("rightBottom");

    const auto row = [](const char *name, QPoint axis, QPoint leftTop, QPoint rightBottom) {
        QTest::newRow(name) << axis << leftTop << rightBottom;
    };
    row("left", {2, 0}, {1, 1}, {9, 9});
    row("top", {0, 2}, {1, 1}, {9, 9});
    row("right", {0, 0}, {1, 1}, {2, 9});
    row("bottom", {0, 0}, {1, 1}, {9, 1});
    row("no size", {0, 0}, {0, 0}, {0, 0});
    row("negative size", {0, 0}, {5, 5}, {-9, -9});
    row("more than 2 GiB", {0, 0}, {0, 0}, {30000, 30000});
    row("largest numbers", {INT_MIN, INT_MIN}, {INT_MAX, INT_MAX}, {INT_MAX, INT_MAX});
    row("largest size", {0, 0}, {INT_MAX, INT_MAX}, {INT_MAX, INT_MAX});
    row("smallest numbers", {INT_MAX, INT_MAX}, {INT_MIN, INT_MIN}, {INT_MIN, INT_MIN});
}

void TestSprite::alignedRefusesWhatDoesNotFit()
{
    QFETCH(const QPoint, axis);
    QFETCH(const QPoint, leftTop);
    QFETCH(const QPoint, rightBottom);

    const TestedSprite sprite(smallImage(QImage::Format_ARGB32));
    QVERIFY(sprite.aligned(axis, leftTop, rightBottom).isNull());
    QVERIFY(TestedSprite(QImage()).aligned({0, 0}, {1, 1}, {9, 9}).isNull());
}

QTEST_GUILESS_MAIN(TestSprite)
#include "tst_sprite.moc"
