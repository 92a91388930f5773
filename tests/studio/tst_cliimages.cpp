// SPDX-License-Identifier: MIT
#include "image/otherprogram.h"
#include "studio/clirun.h"
#include "studio/smallgame.h"
#include "support/limits_unix.h"

#include <QJsonArray>
#include <QTemporaryDir>
#include <QtEndian>
#include <QtTest>

using namespace CliRun;
using SmallGame::readFile;
using SmallGame::writeFile;

namespace {

const char magick[] = "convert-im6.q16 ";

/// Returns what ImageMagick prints for the words of a call.
QByteArray magickRun(const QString &words, const QByteArray &input = QByteArray())
{
    return OtherProgram(QLatin1String(magick) + words).run(input);
}

/// Writes an image of a format by ImageMagick. \a pixels has three bytes a pixel, or four.
bool makeImage(const QString &file, QSize size, const QByteArray &pixels, const QString &more = {})
{
    const bool hasAlpha = pixels.size() == size.width() * size.height() * 4;
    const QString words =
        QStringLiteral("-size %1x%2 -depth 8 %3:- %4 %5")
            .arg(size.width())
            .arg(size.height())
            .arg(hasAlpha ? QStringLiteral("rgba") : QStringLiteral("rgb"), more, file);
    magickRun(words.simplified(), pixels);
    return QFile::exists(file);
}

/// Returns the pixels of an image as ImageMagick sees them, three bytes each.
QByteArray rgbOf(const QString &file)
{
    return magickRun(file + QStringLiteral(" -depth 8 rgb:-"));
}

QByteArray rgbaOf(const QString &file)
{
    return magickRun(file + QStringLiteral(" -depth 8 rgba:-"));
}

/// Returns pixels out of letters: r, g, b, w and k (black) are colours, a blank is see-through.
QByteArray pixelsOf(const QByteArray &letters, bool withAlpha)
{
    QByteArray result;
    for (char letter : letters) {
        const bool white = letter == 'w';
        result.append(white || letter == 'r' ? '\xff' : '\0');
        result.append(white || letter == 'g' ? '\xff' : '\0');
        result.append(white || letter == 'b' ? '\xff' : '\0');
        if (withAlpha)
            result.append(letter == ' ' ? '\0' : '\xff');
    }
    return result;
}

/// Returns an image whose colours are those of \a letters, with as many pixels as \a indices.
QImage indexedImage(const QByteArray &letters, QSize size, const QByteArray &indices)
{
    const QByteArray colors = pixelsOf(letters, true);
    QImage image(size, QImage::Format_Indexed8);
    for (int i = 0; i < letters.size(); ++i) {
        const auto at = [&](int channel) { return uchar(colors.at(4 * i + channel)); };
        image.setColor(i, qRgba(at(0), at(1), at(2), at(3)));
    }
    for (int i = 0; i < indices.size(); ++i)
        image.setPixel(i % size.width(), i / size.width(), uint(indices.at(i) - '0'));
    return image;
}

/// Returns the indices of an image as digits, row by row.
QByteArray indicesOf(const QImage &image)
{
    QByteArray result;
    for (int i = 0; image.format() == QImage::Format_Indexed8 && i < image.width() * image.height();
         ++i)
        result.append(char('0' + image.pixelIndex(i % image.width(), i / image.width())));
    return result;
}

/// Returns an ACT file that begins, as palettes count, with the colours of \a letters.
QByteArray actOf(const QByteArray &letters)
{
    QByteArray result(768, '\0');
    const QByteArray colors = pixelsOf(letters, false);
    for (int i = 0; i < letters.size(); ++i)
        result.replace(765 - 3 * i, 3, colors.mid(3 * i, 3));
    return result;
}

QByteArray swatchFile()
{
    QByteArray result("\0\1\0\2", 4);                           // version and number of colours
    result += QByteArray("\0\0\xff\xff\0\0\0\0\0\0", 10);       // red
    return result + QByteArray("\0\0\0\0\xff\xff\0\0\0\0", 10); // green
}

QByteArray exchangeFile()
{
    QByteArray result("ASEF\0\1\0\0\0\0\0\2", 12);
    for (const float green : {0.0F, 1.0F}) {
        QByteArray block("\0\0RGB ", 6); // the name is empty
        for (float value : {1 - green, green, 0.0F}) {
            uchar bytes[4];
            qToBigEndian(value, bytes);
            block.append(reinterpret_cast<const char *>(bytes), 4);
        }
        block.append("\0\2", 2);
        uchar length[4];
        qToBigEndian(quint32(block.size()), length);
        result +=
            QByteArray("\0\1", 2) + QByteArray(reinterpret_cast<const char *>(length), 4) + block;
    }
    return result;
}

QByteArray riffFile()
{
    QByteArray colors(1024, '\0');
    // The last colour of the file is the first of the palette.
    colors.replace(255 * 4, 3, "\xff\0\0", 3);
    colors.replace(254 * 4, 3, "\0\xff\0", 3);
    return QByteArray("RIFF\x10\4\0\0PAL data\x08\4\0\0\0\3\0\1", 24) + colors;
}

} // namespace

class TestCliImages : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();

    void imagesBecomeOtherFormats_data();
    void imagesBecomeOtherFormats();
    void palettesBecomeAct_data();
    void palettesBecomeAct();
    void geometry_data();
    void geometry();
    void palettesStayInTheirOrder();
    void offsetsGoAlong();
    void lostTransparencyIsTold();
    void imagesAreFittedToPalettes();
    void colorsAreReduced_data();
    void colorsAreReduced();
    void whatCannotBeIsRefused_data();
    void whatCannotBeIsRefused();
    void theCommandsHaveHelp();
    void theInputIsReplacedAtOnce();
    void fullDisksAreTold();

    void spritesComeAndGo();
    void manyImagesKeepTheirOrder();
    void spritesAreReplacedInTheirPlace();
    void badSpritesAreTold();

    void animationsBecomeGifs();
    void gifsThatCannotBeAreRefused();

private:
    /// Runs the program with "@" for the folder of the test.
    Result vela(const QString &call) const
    {
        return run(call, m_folder);
    }
    QString path(const QString &name) const
    {
        return m_folder + QLatin1Char('/') + name;
    }
    /// Writes the project that the animations are of.
    bool makeGame();

    std::unique_ptr<QTemporaryDir> m_temporary;
    QString m_folder;
};

void TestCliImages::init()
{
    SKIP_IF_MISSING(OtherProgram(QString::fromUtf8(magick)));
    m_temporary = std::make_unique<QTemporaryDir>();
    QVERIFY(m_temporary->isValid());
    m_folder = m_temporary->path();
}

void TestCliImages::imagesBecomeOtherFormats_data()
{
    QTest::addColumn<QString>("from");
    QTest::addColumn<QString>("to");
    QTest::addColumn<bool>("hasPalette");
    const char *const formats[] = {"png", "bmp", "gif", "pcx"};
    for (const char *from : formats) {
        for (const char *to : formats) {
            for (const bool hasPalette : {true, false}) {
                if (hasPalette || (qstrcmp(from, "gif") != 0 && qstrcmp(to, "gif") != 0))
                    QTest::addRow("%s to %s%s", from, to, hasPalette ? " with a palette" : "")
                        << QString::fromUtf8(from) << QString::fromUtf8(to) << hasPalette;
            }
        }
    }
}

void TestCliImages::imagesBecomeOtherFormats()
{
    QFETCH(QString, from);
    QFETCH(QString, to);
    QFETCH(bool, hasPalette);
    QByteArray pixels = pixelsOf("rgbwkkwbgrrrwwwbgbgbgk", false).left(21 * 3);
    if (!hasPalette) {
        for (int i = 0; i < pixels.size(); ++i)
            pixels[i] = char(i * 4);
    }
    const QString type =
        hasPalette ? QStringLiteral("-type Palette") : QStringLiteral("-type TrueColor");
    QVERIFY(makeImage(path(QStringLiteral("in.") + from), {7, 3}, pixels, type));
    const Result result = vela(QStringLiteral("convert @/in.%1 @/out.%2").arg(from, to.toUpper()));
    QVERIFY2(result.code == 0, qPrintable(result.err));
    const QString out = path(QStringLiteral("out.") + to.toUpper());
    QCOMPARE(result.out, out + QLatin1Char('\n'));
    QCOMPARE(result.err, QString());
    QCOMPARE(rgbOf(out), pixels);
    const OtherProgram identify(QStringLiteral("identify-im6.q16 -format %m ") + out);
    QVERIFY(identify.run({}).startsWith(to.toUpper().toUtf8()));
}

void TestCliImages::palettesBecomeAct_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QByteArray>("content");
    QTest::newRow("ACT") << "p.act" << actOf("rg");
    QTest::newRow("ACO") << "p.aco" << swatchFile();
    QTest::newRow("ASE") << "p.ase" << exchangeFile();
    QTest::newRow("RIFF") << "p.pal" << riffFile();
    QTest::newRow("JASC") << "p.PAL"
                          << QByteArray("JASC-PAL\r\n0100\r\n2\r\n255 0 0\r\n0 255 0\r\n");
    QTest::newRow("Painter") << "p.txt"
                             << QByteArray("ROWS 1\nCOLS 2\nR:255, G:0, B:0\nR:0, G:255, B:0\n");
    QTest::newRow("image") << "p.png" << QByteArray();
}

void TestCliImages::palettesBecomeAct()
{
    QFETCH(QString, name);
    QFETCH(QByteArray, content);
    if (content.isEmpty())
        QVERIFY(indexedImage("rg", {2, 1}, "01").save(path(name)));
    else
        QVERIFY(writeFile(path(name), content));
    const Result result = vela(QStringLiteral("convert @/%1 @/out.act --quiet").arg(name));
    QVERIFY2(result.code == 0, qPrintable(result.err));
    QCOMPARE(result.out, QString());
    QCOMPARE(readFile(path(QStringLiteral("out.act"))), actOf("rg"));
}

void TestCliImages::geometry_data()
{
    QTest::addColumn<QString>("options");
    QTest::addColumn<QString>("peer");
    QTest::newRow("larger") << "--scale 10x9"
                            << "-sample 200%x300%";
    QTest::newRow("cut") << "--crop"
                         << "-crop 2x2+1+1 +repage";
    QTest::newRow("turned") << "--rotate 90"
                            << "-rotate 90";
    QTest::newRow("turned back") << "--rotate -90"
                                 << "-rotate 270";
    QTest::newRow("upside down") << "--rotate 180"
                                 << "-rotate 180";
    QTest::newRow("all, in the order of the help")
        << "--rotate 90 --filter nearest --scale 4x6 --crop"
        << "-crop 2x2+1+1 +repage -sample 4x6! -rotate 90";
    for (const char *filter : {"bilinear", "hq-nearest", "hq-bilinear"})
        QTest::newRow(filter)
            << QStringLiteral("--scale 5x3 --filter %1").arg(QString::fromUtf8(filter))
            << QString();
}

void TestCliImages::geometry()
{
    QFETCH(QString, options);
    QFETCH(QString, peer);
    QVERIFY(makeImage(path(QStringLiteral("in.png")), {5, 3}, pixelsOf("      rg   bw  ", true)));
    const Result result = vela(QStringLiteral("convert @/in.png @/out.png ") + options);
    QVERIFY2(result.code == 0, qPrintable(result.err));
    const QStringList words{path(QStringLiteral("in.png")), peer,
                            QStringLiteral("-depth 8 rgba:-")};
    const QByteArray expected = magickRun(words.join(QLatin1Char(' ')).simplified());
    QVERIFY(!expected.isEmpty());
    QCOMPARE(rgbaOf(path(QStringLiteral("out.png"))), expected);
}

void TestCliImages::palettesStayInTheirOrder()
{
    const QByteArray letters = "rg bw";
    const QImage image = indexedImage(letters, {2, 2}, "0214");
    QVERIFY(image.save(path(QStringLiteral("in.png"))));
    const struct
    {
        const char *options;
        QSize size;
        const char *indices;
    } rows[] = {
        {"--scale 4x2", {4, 2}, "00221144"},
        {"--scale 4x4 --filter bilinear --rotate 360", {4, 4}, nullptr},
        {"--scale 4x4 --filter epx-nearest", {4, 4}, nullptr},
        {"--scale 5x5 --filter epx-bilinear", {5, 5}, nullptr},
        {"--scale 4x6 --filter hq-nearest", {4, 6}, nullptr},
        {"--scale 8x8 --filter hq-bilinear", {8, 8}, nullptr},
        {"--rotate 90", {2, 2}, "1042"},
        {"--rotate 450", {2, 2}, "1042"},
        {"--rotate 45", {2, 2}, nullptr},
        {"--colors 5", {2, 2}, "0214"},
    };
    for (const auto &row : rows) {
        const Result result =
            vela(QStringLiteral("convert @/in.png @/out.png ") + QString::fromUtf8(row.options));
        QVERIFY2(result.code == 0, qPrintable(result.err));
        const QImage out(path(QStringLiteral("out.png")));
        QCOMPARE(out.format(), QImage::Format_Indexed8);
        QCOMPARE(out.size(), row.size);
        QCOMPARE(out.colorTable(), image.colorTable());
        if (row.indices)
            QCOMPARE(indicesOf(out), QByteArray(row.indices));
    }
    // The transparent colour of a GIF is the same one, too.
    QCOMPARE(vela(QStringLiteral("convert @/in.png @/out.gif")).code, 0);
    QCOMPARE(vela(QStringLiteral("convert @/out.gif @/out.png")).code, 0);
    QCOMPARE(rgbaOf(path(QStringLiteral("out.png"))), rgbaOf(path(QStringLiteral("in.png"))));
    QCOMPARE(vela(QStringLiteral("convert @/out.gif @/out.act")).code, 0);
    QCOMPARE(readFile(path(QStringLiteral("out.act"))), actOf(letters));

    // It has one only: all others become that.
    QVERIFY(indexedImage("r  g", {4, 1}, "0123").save(path(QStringLiteral("in.png"))));
    QCOMPARE(vela(QStringLiteral("convert @/in.png @/out.gif")).code, 0);
    QCOMPARE(vela(QStringLiteral("convert @/out.gif @/out.png")).code, 0);
    QCOMPARE(indicesOf(QImage(path(QStringLiteral("out.png")))), QByteArray("0113"));
    QCOMPARE(rgbaOf(path(QStringLiteral("out.png"))), pixelsOf("r  g", true));
}

// The axis of a sprite is told by the offset, which stays on its pixel.
void TestCliImages::offsetsGoAlong()
{
    QImage image = indexedImage(" r", {4, 3}, "000001100000");
    image.setOffset({-2, -1});
    QVERIFY(image.save(path(QStringLiteral("in.png"))));
    const struct
    {
        const char *options;
        QPoint offset;
    } rows[] = {
        {"", {-2, -1}},
        {"--crop", {-1, 0}},
        {"--scale 8x9", {-4, -3}},
        {"--rotate 90", {-1, -2}},
        {"--rotate -90", {-1, -1}},
        {"--rotate 180", {-1, -1}},
        {"--crop --scale 4x2 --rotate 90", {-1, -2}},
        {"--rotate 45", {0, 0}},
        {"--colors 2", {-2, -1}},
        {"--palette @/in.png", {-2, -1}},
    };
    for (const auto &row : rows) {
        const Result result =
            vela(QStringLiteral("convert @/in.png @/out.png ") + QString::fromUtf8(row.options));
        QVERIFY2(result.code == 0, qPrintable(result.err));
        QCOMPARE(QImage(path(QStringLiteral("out.png"))).offset(), row.offset);
    }
}

void TestCliImages::lostTransparencyIsTold()
{
    QImage image = indexedImage(" r", {2, 1}, "01");
    QVERIFY(image.save(path(QStringLiteral("first.png"))));
    image.setColor(1, qRgba(255, 0, 0, 100));
    QVERIFY(image.save(path(QStringLiteral("partial.png"))));
    QVERIFY(indexedImage("r ", {2, 1}, "01").save(path(QStringLiteral("second.png"))));
    const struct
    {
        const char *names;
        const char *warning;
    } rows[] = {
        {"first.png @/out.bmp", "a BMP holds no transparency"},
        {"second.png @/out.pcx", "a PCX with a palette holds no transparency"},
        {"partial.png @/out.gif", "a GIF holds no partial transparency"},
        // The first color of a sprite is not seen anyway.
        {"first.png @/out.pcx", nullptr},
        {"second.png @/out.gif", nullptr},
        {"partial.png @/out.png", nullptr},
    };
    for (const auto &row : rows) {
        const Result result =
            vela(QStringLiteral("convert @/%1").arg(QString::fromUtf8(row.names)));
        QCOMPARE(result.code, 0);
        QCOMPARE(!result.err.isEmpty(), row.warning != nullptr);
        QVERIFY2(result.err.contains(QString::fromUtf8(row.warning)), row.names);
    }
    QCOMPARE(vela(QStringLiteral("convert @/first.png @/out.bmp -q")).err, QString());
}

void TestCliImages::imagesAreFittedToPalettes()
{
    QVERIFY(writeFile(path(QStringLiteral("p.pal")),
                      "JASC-PAL\n0100\n4\n255 0 255\n0 0 0\n250 0 0\n0 0 200\n"));
    QVERIFY(indexedImage("rw b", {2, 1}, "01").save(path(QStringLiteral("p.png"))));
    QByteArray magenta("\xff\0\xff\xff", 4);
    QVERIFY(makeImage(path(QStringLiteral("in.png")), {5, 1}, pixelsOf("krb ", true) + magenta));
    QVERIFY(makeImage(path(QStringLiteral("solid.png")), {2, 1}, pixelsOf("k", true) + magenta));
    const struct
    {
        const char *image;
        const char *palette;
        const char *indices;
        int transparent;
    } rows[] = {
        // Where something is see-through the colour 0 is for that alone.
        {"in.png", "p.pal", "12302", 0},
        {"solid.png", "p.pal", "10", -1},
        // A palette with a transparent colour keeps it where it is.
        {"in.png", "p.png", "00320", 2},
    };
    for (const auto &row : rows) {
        const Result result =
            vela(QStringLiteral("convert --palette @/%1 @/%2 @/out.png")
                     .arg(QString::fromUtf8(row.palette), QString::fromUtf8(row.image)));
        QVERIFY2(result.code == 0, qPrintable(result.err));
        const QImage out(path(QStringLiteral("out.png")));
        QCOMPARE(out.colorCount(), 4);
        // Magenta is as near to red as to blue; so is black.
        QCOMPARE(indicesOf(out), QByteArray(row.indices));
        for (int i = 0; i < 4; ++i)
            QCOMPARE(qAlpha(out.color(i)), i == row.transparent ? 0 : 255);
    }
}

void TestCliImages::colorsAreReduced_data()
{
    QTest::addColumn<bool>("hasAlpha");
    QTest::addColumn<int>("colors");
    QTest::newRow("opaque") << false << 8;
    QTest::newRow("two") << false << 2;
    QTest::newRow("see-through") << true << 8;
    QTest::newRow("see-through, one colour left") << true << 2;
    QTest::newRow("all") << true << 256;
}

void TestCliImages::colorsAreReduced()
{
    QFETCH(bool, hasAlpha);
    QFETCH(int, colors);
    QByteArray pixels;
    for (int i = 0; i < 64; ++i) {
        pixels.append(char(i * 4)).append(char(255 - i * 2)).append(char(i % 8 * 30));
        if (hasAlpha)
            pixels.append(i % 3 ? '\xff' : '\0');
    }
    QVERIFY(makeImage(path(QStringLiteral("in.png")), {8, 8}, pixels,
                      QStringLiteral("-define png:color-type=%1").arg(hasAlpha ? 6 : 2)));
    const QString call = QStringLiteral("convert @/in.png @/%1 --colors %2");
    QCOMPARE(vela(call.arg(QStringLiteral("out.gif")).arg(colors)).code, 0);
    QCOMPARE(vela(call.arg(QStringLiteral("out.png")).arg(colors)).code, 0);
    const QImage out(path(QStringLiteral("out.png")));
    QVERIFY(out.colorCount() <= colors);
    QCOMPARE(qAlpha(out.color(0)), hasAlpha ? 0 : 255);
    const QByteArray png = rgbaOf(path(QStringLiteral("out.png")));
    QCOMPARE(rgbOf(path(QStringLiteral("out.gif"))), rgbOf(path(QStringLiteral("out.png"))));
    if (hasAlpha) {
        QCOMPARE(vela(QStringLiteral("convert @/out.gif @/back.png")).code, 0);
        QCOMPARE(rgbaOf(path(QStringLiteral("back.png"))), png);
    }
    for (int i = 0; i < 64; ++i)
        QCOMPARE(png.at(4 * i + 3), hasAlpha && i % 3 == 0 ? '\0' : '\xff');
    if (colors == 256) {
        for (int i = 0; i < 64; ++i) {
            if (i % 3)
                QCOMPARE(png.mid(4 * i, 4), pixels.mid(4 * i, 4));
        }
    }
}

void TestCliImages::whatCannotBeIsRefused_data()
{
    QTest::addColumn<QString>("call");
    QTest::addColumn<QString>("reason");
    QTest::newRow("unknown to read") << "convert @/in.xyz @/out.png"
                                     << "in.xyz: is of no format";
    QTest::newRow("unknown to write") << "convert @/in.png @/out.jpeg"
                                      << "out.jpeg: is of no format";
    QTest::newRow("no suffix") << "convert @/in.png @/out"
                               << "out: is of no format";
    QTest::newRow("missing") << "convert @/none.png @/out.png"
                             << "none.png: ";
    QTest::newRow("folder") << "convert @/sub.png @/out.png"
                            << "sub.png: is a folder";
    QTest::newRow("broken") << "convert @/broken.png @/out.png"
                            << "broken.png: is no PNG image";
    QTest::newRow("no room for it") << "convert @/in.png @/none/out.png"
                                    << "none/out.png: ";
    QTest::newRow("colours as GIF") << "convert @/in.png @/out.gif"
                                    << "--colors or --palette";
    QTest::newRow("colours as a palette") << "convert @/in.png @/out.act"
                                          << "has no palette";
    QTest::newRow("palette as an image") << "convert @/p.act @/out.png"
                                         << "cannot be written as an image";
    QTest::newRow("palette to scale") << "convert @/p.act @/out.act --scale 2x2"
                                      << "p.act: is a palette";
    QTest::newRow("short palette") << "convert @/short.act @/out.act"
                                   << "short.act: is no ACT palette";
    QTest::newRow("palette of colours") << "convert @/in.png @/out.png --palette @/in.png"
                                        << "in.png: has no palette";
    QTest::newRow("palette to write") << "convert @/in.png @/out.aco --colors 3"
                                      << "out.aco: is of no format";
    QTest::newRow("filter alone") << "convert @/in.png @/out.png --filter nearest"
                                  << "--filter needs --scale";
    QTest::newRow("filter") << "convert @/in.png @/out.png --scale 2x2 --filter best"
                            << "--filter needs one of";
    QTest::newRow("size") << "convert @/in.png @/out.png --scale 2x"
                          << "--scale needs";
    QTest::newRow("nothing") << "convert @/in.png @/out.png --scale 0x2"
                             << "--scale needs";
    QTest::newRow("too large") << "convert @/in.png @/out.png --scale 65535x65535"
                               << "out.png: would be too large";
    QTest::newRow("too large for its format")
        << "convert @/in.png @/out.gif --colors 2 --scale 65536x1"
        << "--scale needs";
    QTest::newRow("angle") << "convert @/in.png @/out.png --rotate right"
                           << "--rotate needs";
    QTest::newRow("one colour") << "convert @/in.png @/out.png --colors 1"
                                << "--colors needs";
    QTest::newRow("both") << "convert @/in.png @/out.png --colors 4 --palette @/p.act"
                          << "together";
    QTest::newRow("foreign option") << "convert @/in.png @/out.png --once"
                                    << "no option --once";
    QTest::newRow("half a command") << "sprites"
                                    << "export, import";
    QTest::newRow("unknown half") << "sprites dance @/in.png"
                                  << "list, export, import";
}

void TestCliImages::whatCannotBeIsRefused()
{
    QFETCH(QString, call);
    QFETCH(QString, reason);
    QVERIFY(makeImage(path(QStringLiteral("in.png")), {2, 2}, pixelsOf("rgbw", false),
                      QStringLiteral("-type TrueColor -define png:color-type=2")));
    QVERIFY(writeFile(path(QStringLiteral("in.xyz")), "?"));
    QVERIFY(writeFile(path(QStringLiteral("broken.png")), "\x89PNG\r\n"));
    QVERIFY(writeFile(path(QStringLiteral("p.act")), actOf("rgb")));
    QVERIFY(writeFile(path(QStringLiteral("short.act")), actOf("rgb").left(700)));
    QVERIFY(QDir(m_folder).mkdir(QStringLiteral("sub.png")));
    const auto before = SmallGame::tree(m_folder);
    const Result result = vela(call);
    QCOMPARE(result.code, 2);
    QCOMPARE(result.out, QString());
    QVERIFY2(result.err.contains(reason), qPrintable(result.err));
    QCOMPARE(SmallGame::tree(m_folder), before);
}

void TestCliImages::theCommandsHaveHelp()
{
    const QString page = QString::fromUtf8(
        readFile(fromEnvironment("VELA_SOURCE_DIR") + QStringLiteral("/docs/vela.1")));
    for (const char *usage : {"convert IN OUT", "sprites list FILE", "sprites export FILE FOLDER",
                              "sprites import FILE IMAGE...", "gif PROJECT ID OUT",
                              "sound convert IN OUT", "sound info FILE...", "sounds list FILE",
                              "sounds export FILE FOLDER", "sounds import FILE SOUND..."}) {
        const QString text = QString::fromUtf8(usage);
        const QString name = text.section(QRegularExpression(QStringLiteral(" (?=[A-Z])")), 0, 0);
        QVERIFY2(vela(QStringLiteral("help")).out.contains(QStringLiteral("\n  ") + text), usage);
        QVERIFY2(page.contains(QStringLiteral(".BI \"%1 \" ").arg(name)), usage);
        const Result result = vela(QStringLiteral("help ") + name);
        QCOMPARE(result.code, 0);
        QVERIFY(result.out.startsWith(QStringLiteral("Usage: vela ") + text));
        QCOMPARE(vela(name + QStringLiteral(" --help")).out, result.out);
    }
}

void TestCliImages::theInputIsReplacedAtOnce()
{
    const QString file = path(QStringLiteral("in.png"));
    QVERIFY(makeImage(file, {2, 1}, pixelsOf("rg", false)));
    const QByteArray before = readFile(file);
    const Result dry = vela(QStringLiteral("convert @/in.png @/in.png --scale 4x1 --dry-run"));
    QCOMPARE(dry.code, 0);
    QCOMPARE(dry.out, file + QLatin1Char('\n'));
    QCOMPARE(readFile(file), before);
    QCOMPARE(vela(QStringLiteral("convert @/in.png @/in.png --scale 4x1")).code, 0);
    QCOMPARE(rgbOf(file), pixelsOf("rrgg", false));
    QCOMPARE(QDir(m_folder).entryList(QDir::Files | QDir::Hidden),
             QStringList(QStringLiteral("in.png")));
}

void TestCliImages::fullDisksAreTold()
{
    const QString out = path(QStringLiteral("out.bmp"));
    QVERIFY(makeImage(path(QStringLiteral("in.png")), {40, 40}, QByteArray(4800, 'x')));
    QVERIFY(writeFile(out, "before"));
    {
        // Such a file stays in the buffer until its end.
        const FullDisk disk(1024);
        const Result result = vela(QStringLiteral("convert @/in.png @/out.bmp"));
        QCOMPARE(result.code, 2);
        QVERIFY2(result.err.contains(QStringLiteral("out.bmp: File too large")),
                 qPrintable(result.err));
    }
    QCOMPARE(readFile(out), QByteArray("before"));
    QCOMPARE(QDir(m_folder).entryList(QDir::Files | QDir::Hidden).size(), 2);
}

void TestCliImages::spritesComeAndGo()
{
    const QImage indexed = indexedImage("kr w", {3, 2}, "012310");
    QImage placed = indexed;
    placed.setOffset({-2, 3});
    QVERIFY(placed.save(path(QStringLiteral("3_-1.png"))));
    QVERIFY(indexed.save(path(QStringLiteral("0_4.bmp"))));
    QVERIFY(makeImage(path(QStringLiteral("tree.png")), {2, 2}, pixelsOf("rg b", true),
                      QStringLiteral("-define png:color-type=6")));
    const Result dry = vela(QStringLiteral("sprites import @/a.sprites @/tree.png --dry-run"));
    QCOMPARE(dry.code, 0);
    QCOMPARE(dry.out, path(QStringLiteral("a.sprites\n")));
    QVERIFY(!QFile::exists(path(QStringLiteral("a.sprites"))));

    // Images without numbers come last: none may take the numbers of another.
    const Result result =
        vela(QStringLiteral("sprites import @/a.sprites @/tree.png @/3_-1.png @/0_4.bmp"));
    QVERIFY2(result.code == 0, qPrintable(result.err));
    QCOMPARE(linesOf(result.out).size(), 3);
    QVERIFY(linesOf(result.out).last().startsWith(QStringLiteral("0_5 ")));
    QCOMPARE(linesOf(vela(QStringLiteral("sprites list @/a.sprites")).out),
             (QStringList{QStringLiteral("3_-1  3x2  8 bits   axis 2,-3  palette 0"),
                          QStringLiteral("0_4   3x2  8 bits   axis 0,0   palette 1"),
                          QStringLiteral("0_5   2x2  32 bits  axis 0,0   -")}));
    const QJsonObject list = json(vela(QStringLiteral("sprites list --json @/a.sprites")));
    QCOMPARE(string(list, "path"), path(QStringLiteral("a.sprites")));
    QCOMPARE(list[QStringLiteral("palettes")].toInt(), 2);
    const QJsonObject first = list[QStringLiteral("sprites")].toArray().first().toObject();
    QCOMPARE(first,
             (QJsonObject{{QStringLiteral("group"), 3},
                          {QStringLiteral("image"), -1},
                          {QStringLiteral("width"), 3},
                          {QStringLiteral("height"), 2},
                          {QStringLiteral("depth"), 8},
                          {QStringLiteral("x"), 2},
                          {QStringLiteral("y"), -3},
                          {QStringLiteral("palette"), 0}}));

    const Result written = vela(QStringLiteral("sprites export @/a.sprites @/out/png"));
    QVERIFY2(written.code == 0, qPrintable(written.err));
    QCOMPARE(linesOf(written.out),
             (QStringList{path(QStringLiteral("out/png/3_-1.png")),
                          path(QStringLiteral("out/png/0_4.png")),
                          path(QStringLiteral("out/png/0_5.png"))}));
    QCOMPARE(rgbaOf(path(QStringLiteral("out/png/3_-1.png"))),
             rgbaOf(path(QStringLiteral("3_-1.png"))));
    QCOMPARE(rgbaOf(path(QStringLiteral("out/png/0_5.png"))), pixelsOf("rg b", true));

    // Files without any opacity are taken, too.
    QVERIFY(makeImage(path(QStringLiteral("0_9.pcx")), {2, 1}, pixelsOf("rb", false),
                      QStringLiteral("-type TrueColor")));
    QCOMPARE(vela(QStringLiteral("sprites import @/c.sprites @/0_9.pcx")).code, 0);
    QCOMPARE(vela(QStringLiteral("sprites export @/c.sprites @/out")).code, 0);
    QCOMPARE(rgbOf(path(QStringLiteral("out/0_9.png"))), pixelsOf("rb", false));

    // The images make the same file again, axes included.
    QCOMPARE(vela(QStringLiteral("sprites import @/b.sprites @/out/png/3_-1.png "
                                 "@/out/png/0_4.png @/out/png/0_5.png -q"))
                 .code,
             0);
    QCOMPARE(readFile(path(QStringLiteral("b.sprites"))),
             readFile(path(QStringLiteral("a.sprites"))));

    // What a format does not hold is told, and all others are written.
    const Result gif = vela(QStringLiteral("sprites export @/a.sprites @/out --format gif"));
    QCOMPARE(gif.code, 2);
    QVERIFY(gif.err.contains(QStringLiteral("0_5.gif: a GIF holds")));
    QCOMPARE(linesOf(gif.out).size(), 2);
    QCOMPARE(rgbOf(path(QStringLiteral("out/3_-1.gif"))), rgbOf(path(QStringLiteral("3_-1.png"))));

    // So is lost transparency, which is no failure; the second sprite came as a BMP, without any.
    const Result bmp = vela(QStringLiteral("sprites export @/a.sprites @/out --format bmp --json"));
    QCOMPARE(bmp.code, 0);
    QCOMPARE(linesOf(bmp.err).size(), 2);
    QVERIFY(bmp.err.contains(QStringLiteral("warning: %1: a BMP holds no transparency")
                                 .arg(path(QStringLiteral("out/0_5.bmp")))));
    const QJsonArray files{QStringLiteral("3_-1.bmp"), QStringLiteral("0_4.bmp"),
                           QStringLiteral("0_5.bmp")};
    QCOMPARE(json(bmp)[QStringLiteral("files")].toArray(), files);
}

void TestCliImages::manyImagesKeepTheirOrder()
{
    QStringList call{QStringLiteral("sprites"), QStringLiteral("import"),
                     path(QStringLiteral("a.sprites"))};
    for (int i = 0; i < 150; ++i) {
        QImage image(1 + i % 7, 1 + i / 7, QImage::Format_RGB32);
        image.fill(qRgb(i, 2 * i % 256, 0));
        const QString name = path(QStringLiteral("%1_0.png").arg(149 - i));
        QVERIFY(image.save(name));
        call.append(name);
    }
    QCOMPARE(run(call).code, 0);
    const QJsonArray sprites =
        json(vela(QStringLiteral("sprites list --json @/a.sprites")))[QStringLiteral("sprites")]
            .toArray();
    QCOMPARE(sprites.size(), 150);
    QCOMPARE(linesOf(vela(QStringLiteral("sprites export @/a.sprites @/out")).out).size(), 150);
    for (int i = 0; i < 150; ++i) {
        QCOMPARE(sprites.at(i)[QStringLiteral("group")].toInt(), 149 - i);
        const QImage image(path(QStringLiteral("out/%1_0.png").arg(149 - i)));
        QCOMPARE(image.size(), QSize(1 + i % 7, 1 + i / 7));
        QCOMPARE(image.pixel(0, 0), qRgb(i, 2 * i % 256, 0));
    }
}

void TestCliImages::spritesAreReplacedInTheirPlace()
{
    QImage image = indexedImage("kr", {2, 2}, "0110");
    image.setOffset({-1, -1});
    QVERIFY(image.save(path(QStringLiteral("0_0.png"))));
    QVERIFY(image.save(path(QStringLiteral("0_1.png"))));
    QCOMPARE(vela(QStringLiteral("sprites import @/a.sprites @/0_0.png @/0_1.png")).code, 0);
    QVERIFY(indexedImage("kg", {3, 1}, "011").save(path(QStringLiteral("0_0.png"))));
    QCOMPARE(vela(QStringLiteral("sprites import @/a.sprites @/0_0.png")).code, 0);
    QCOMPARE(linesOf(vela(QStringLiteral("sprites list @/a.sprites")).out),
             (QStringList{QStringLiteral("0_0  3x1  8 bits  axis 1,1  palette 1"),
                          QStringLiteral("0_1  2x2  8 bits  axis 1,1  palette 0")}));
    QCOMPARE(vela(QStringLiteral("sprites export @/a.sprites @/out")).code, 0);
    QCOMPARE(rgbOf(path(QStringLiteral("out/0_0.png"))), pixelsOf("kgg", false));
    // The palette goes with the last sprite that used it.
    QVERIFY(indexedImage("kg", {1, 1}, "1").save(path(QStringLiteral("0_1.png"))));
    const QJsonObject imported =
        json(vela(QStringLiteral("sprites import @/a.sprites @/0_1.png --json")));
    const QJsonObject expected{
        {QStringLiteral("path"), path(QStringLiteral("a.sprites"))},
        {QStringLiteral("sprites"),
         QJsonArray{QJsonObject{{QStringLiteral("identifier"), QStringLiteral("0_1")},
                                {QStringLiteral("file"), path(QStringLiteral("0_1.png"))}}}},
        {QStringLiteral("written"), true}};
    QCOMPARE(imported, expected);
    const QJsonObject list = json(vela(QStringLiteral("sprites list --json @/a.sprites")));
    QCOMPARE(list[QStringLiteral("palettes")].toInt(), 1);
    for (int i = 0; i < 2; ++i)
        QCOMPARE(
            list[QStringLiteral("sprites")].toArray().at(i)[QStringLiteral("palette")].toInt(-1),
            0);
}

void TestCliImages::badSpritesAreTold()
{
    QVERIFY(indexedImage("kr", {2, 1}, "01").save(path(QStringLiteral("0_1.png"))));
    QVERIFY(writeFile(path(QStringLiteral("bad.png")), "no image"));
    QVERIFY(writeFile(path(QStringLiteral("other.sprites")), "no sprites"));
    QVERIFY(
        writeFile(path(QStringLiteral("sub/0_1.png")), readFile(path(QStringLiteral("0_1.png")))));
    const auto before = SmallGame::tree(m_folder);
    const struct
    {
        const char *call;
        const char *reason;
    } rows[] = {
        {"sprites list @/none.sprites", "none.sprites: there is no such file"},
        {"sprites list @/sub", "sub: is not a file"},
        {"sprites list @/other.sprites", "other.sprites"},
        {"sprites list @/0_1.png", "0_1.png: no engine has sprites files"},
        {"sprites import @/other.sprites @/0_1.png", "other.sprites"},
        {"sprites import @/new.png @/0_1.png", "new.png: no engine has sprites files"},
        {"sprites import @/new.sprites @/bad.png", "bad.png: is no PNG image"},
        {"sprites import @/new.sprites @/0_1.png @/sub/0_1.png", "sub/0_1.png: a second image"},
        {"sprites export @/other.sprites @/out", "other.sprites"},
        {"sprites export @/other.sprites @/out --format svg", "--format needs"},
        {"sprites import @/new.sprites", "usage: vela sprites import FILE IMAGE..."},
    };
    for (const auto &row : rows) {
        const Result result = vela(QString::fromUtf8(row.call));
        QVERIFY2(result.code == 2, row.call);
        QVERIFY2(result.err.contains(QString::fromUtf8(row.reason)), qPrintable(result.err));
        QCOMPARE(SmallGame::tree(m_folder), before);
    }
    // One bad image does not keep the others out.
    const Result result = vela(QStringLiteral("sprites import @/a.sprites @/bad.png @/0_1.png"));
    QCOMPARE(result.code, 2);
    QCOMPARE(linesOf(vela(QStringLiteral("sprites list @/a.sprites")).out).size(), 1);
}

bool TestCliImages::makeGame()
{
    QMap<QString, QByteArray> files = SmallGame::files();
    files[QStringLiteral("hero/hero.lantern")] +=
        "sprites = art.sprites\nanimations = hero.motion\n";
    files[QStringLiteral("hero/hero.motion")] =
        "[animation walk]\n"
        "frame 0_0 : 6\n"
        "frame 0_0 : 0\n"
        "frame 0_1 : 12, x = 1, y = -1\n"
        "frame 0_0 : 30, flip = h\n"
        "frame none : 9\n"
        "[animation big]\nframe 0_0 : 6, scale = 2\nframe 0_1 : forever\nframe 0_0 : 6\n"
        "[animation turned]\nframe 0_0 : 6, angle = 10\n"
        "[animation lost]\nframe 9_9 : 6\n"
        "[animation nothing]\nframe none : 0\n"
        "[animation wide]\nframe 0_0 : 6, scale = 60000\n"
        "[animation far]\nframe 0_0 : 6, x = 999999999\nframe 0_0 : 6\n"
        "[animation alone]\nframe idle : 6\n";
    // The axis of the first sprite stands on its left pixel, that of the second above it.
    QImage first = indexedImage("kgr", {2, 1}, "12");
    QImage second = indexedImage("kgr", {1, 1}, "2");
    second.setOffset({0, 1});
    return SmallGame::write(m_folder, files) && first.save(path(QStringLiteral("0_0.png")))
        && second.save(path(QStringLiteral("0_1.png")))
        && vela(QStringLiteral("sprites import @/hero/art.sprites @/0_0.png @/0_1.png")).code == 0;
}

void TestCliImages::animationsBecomeGifs()
{
    QVERIFY(makeGame());
    // By hand, from the axis: red and green stand at 0 and 1 of the row 0. The second frame stands
    // one below its axis, moved by 1, -1: at 1, 0. The third has its axis on its pixel: green at 0,
    // red at -1. So the picture reaches from -1 to 1 in one row.
    const struct
    {
        const char *options;
        const char *delays; ///< in hundredths of a second
        int scale;
        bool loops;
    } rows[] = {
        {"", "10|20|50|15|", 1, true},
        {"--shared-palette --once", "10|20|50|15|", 1, false},
        {"--scale 2 --speed 0.5 --file hero/hero.motion", "20|40|100|30|", 2, true},
    };
    for (const auto &row : rows) {
        const Result result =
            vela(QStringLiteral("gif @ walk @/walk.gif ") + QString::fromUtf8(row.options));
        QVERIFY2(result.code == 0, qPrintable(result.err));
        QCOMPARE(result.out, path(QStringLiteral("walk.gif\n")));
        const QString file = path(QStringLiteral("walk.gif"));
        QCOMPARE(OtherProgram(QStringLiteral("identify-im6.q16 -format %T| ") + file).run({}),
                 QByteArray(row.delays));
        QCOMPARE(readFile(file).contains("NETSCAPE2.0"), row.loops);
        QByteArray expected;
        for (const char *picture : {" gr", "  r", "rg ", "   "}) {
            for (int y = 0; y < row.scale; ++y) {
                for (const char *letter = picture; *letter; ++letter)
                    expected += pixelsOf(QByteArray(row.scale, *letter), true);
            }
        }
        QByteArray shown = rgbaOf(file + QStringLiteral(" -coalesce"));
        for (int i = 0; i + 3 < shown.size(); i += 4) {
            if (shown.at(i + 3) == 0)
                shown.replace(i, 3, "\0\0\0", 3);
        }
        QCOMPARE(shown.toHex(' '), expected.toHex(' '));
    }
    // A frame that never ends is the last one; nothing comes behind it or begins again.
    QCOMPARE(vela(QStringLiteral("gif @ big @/big.gif")).code, 0);
    const QByteArray info = OtherProgram(QStringLiteral("identify-im6.q16 -format %g| ")
                                         + path(QStringLiteral("big.gif")))
                                .run({});
    QCOMPARE(info.count('|'), 2);
    QVERIFY2(info.startsWith("4x"), info.constData());
    QVERIFY(!readFile(path(QStringLiteral("big.gif"))).contains("NETSCAPE2.0"));

    const Result turned = vela(QStringLiteral("gif @ turned @/turned.gif --json"));
    QCOMPARE(turned.code, 0);
    QCOMPARE(json(turned)[QStringLiteral("size")].toInt(),
             readFile(path(QStringLiteral("turned.gif"))).size());
    QVERIFY(turned.err.contains(QStringLiteral("warning: ")));
    QCOMPARE(vela(QStringLiteral("gif @ turned @/dry.gif --dry-run --quiet")).out, QString());
    QVERIFY(!QFile::exists(path(QStringLiteral("dry.gif"))));
}

void TestCliImages::gifsThatCannotBeAreRefused()
{
    QVERIFY(makeGame());
    const auto before = SmallGame::tree(m_folder);
    const struct
    {
        const char *call;
        const char *reason;
    } rows[] = {
        {"gif @ fly @/o.gif", "fly: there is no such animation"},
        {"gif @ lost @/o.gif", "line 14: no sprites file has the sprite 9_9"},
        {"gif @ alone @/o.gif", "an image that is a file of its own is not shown"},
        {"gif @ nothing @/o.gif", "no frame that shows something"},
        {"gif @ wide @/o.gif", "line 18: the frame is too large"},
        {"gif @ far @/o.gif", "too large for a GIF"},
        {"gif @ walk @/o.gif --scale 0", "--scale needs"},
        {"gif @ walk @/o.gif --speed fast", "--speed needs"},
        {"gif @ walk @/none/o.gif", "none/o.gif"},
        {"gif @ walk @/o.png", "o.png: is no name of a GIF"},
        {"gif @/none walk @/o.gif", "none"},
    };
    for (const auto &row : rows) {
        const Result result = vela(QString::fromUtf8(row.call));
        QVERIFY2(result.code == 2, row.call);
        QVERIFY2(result.err.contains(QString::fromUtf8(row.reason)), qPrintable(result.err));
        QCOMPARE(SmallGame::tree(m_folder), before);
    }
}

QTEST_GUILESS_MAIN(TestCliImages)
#include "tst_cliimages.moc"
