// SPDX-License-Identifier: MIT
#include "engine/extensionmanager.h"
#include "image/imageextension.h"
#include "image/paletteobject.h"

#include <QBuffer>
#include <QImage>
#include <QSignalSpy>
#include <QTest>
#include <QtEndian>

#include <cstring>
#include <limits>
#include <memory>

using namespace Vela;

namespace {

// Tells a table as colours in hexadecimal digits, red to alpha; "3x" stands in front of what comes
// three times in a row.
QByteArray describe(const RGBA (&table)[256])
{
    QByteArrayList parts;
    for (int i = 0, next = 0; i < 256; i = next) {
        while (next < 256 && table[next] == table[i])
            ++next;
        const QByteArray color(reinterpret_cast<const char *>(&table[i]), 4);
        const QByteArray count = next - i > 1 ? QByteArray::number(next - i) + 'x' : QByteArray();
        parts.append(count + color.toHex());
    }
    return parts.join(' ');
}

QByteArray repeated(const QByteArray &bytes, int count)
{
    return bytes.repeated(count);
}

QByteArray hex(const QByteArray &digits)
{
    return QByteArray::fromHex(digits);
}

template <typename T>
QByteArray bigEndian(T value)
{
    QByteArray bytes(sizeof value, '\0');
    qToBigEndian(value, bytes.data());
    return bytes;
}

// A RIFF file of one chunk with that size in its header.
QByteArray riff(quint32 chunkSize, const QByteArray &entries)
{
    QByteArray size(4, '\0');
    qToLittleEndian(chunkSize, size.data());
    return "RIFF" + repeated("?", 4) + "PAL data" + size + hex("0003 0001") + entries;
}

// A swatch exchange file that promises that many blocks.
QByteArray swatches(qint32 count, const QByteArray &blocks)
{
    return "ASEF" + hex("0001 0000") + bigEndian(count) + blocks;
}

// A colour block with the name "é", which takes two units with the zero behind it.
QByteArray swatch(const char *model, const QVector<float> &channels)
{
    QByteArray fields = hex("0002 00e9 0000") + model;
    for (float channel : channels) {
        quint32 bits = 0;
        std::memcpy(&bits, &channel, sizeof bits);
        fields += bigEndian(bits);
    }
    fields += hex("0002");
    return hex("0001") + bigEndian(quint32(fields.size())) + fields;
}

// An image of one pixel in an image format of Qt.
QByteArray imageFile(const char *format, const QVector<QRgb> &colors)
{
    QImage image(1, 1, colors.isEmpty() ? QImage::Format_RGB32 : QImage::Format_Indexed8);
    image.setColorTable(colors);
    image.fill(0);
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    image.save(&buffer, format);
    return buffer.data();
}

// An image of one pixel and two colours. The first bits of the flags tell the resolution of
// colours.
QByteArray gifFile(const QByteArray &flags)
{
    return "GIF89a" + hex("01000100" + flags + "0000 010203 0a0b0c")
        + hex("2c 0000 0000 0100 0100 00  02 02 4401 00  3b");
}

// Both ways of the word "TXT": the first entry is written, and read into the second one.
class TextLoader : public PaletteLoader
{
public:
    void release() override
    {
        delete this;
    }
    const char *format() const override
    {
        return "TXT";
    }
    const char *identifier() const override
    {
        return "";
    }
    bool load(QIODevice *device, RGBA (&palette)[256]) override
    {
        return device->read(reinterpret_cast<char *>(&palette[1]), 4) == 4;
    }
};

class TextSaver : public PaletteSaver
{
public:
    void release() override
    {
        delete this;
    }
    const char *format() const override
    {
        return "TXT";
    }
    const char *identifier() const override
    {
        return "";
    }
    bool save(const RGBA (&palette)[256], QIODevice *device) override
    {
        return device->write(reinterpret_cast<const char *>(&palette[0]), 4) == 4;
    }
};

// A device that takes only so many bytes.
class SmallDevice : public QIODevice
{
public:
    explicit SmallDevice(qint64 space)
        : m_space(space)
    {
        open(WriteOnly);
    }

protected:
    qint64 readData(char *, qint64) override
    {
        return -1;
    }
    qint64 writeData(const char *, qint64 size) override
    {
        return qMin(size, m_space);
    }

private:
    qint64 m_space;
};

} // namespace

class TestPaletteFiles : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void reads_data();
    void reads();
    void refuses_data();
    void refuses();
    void unreadableDevicesAreRefused();
    void longTextsAreNotReadIntoMemory();
    void writes();

private:
    std::unique_ptr<ExtensionManager> m_extensions;
};

void TestPaletteFiles::initTestCase()
{
    m_extensions = std::make_unique<ExtensionManager>(QString());
    QVERIFY(ExtensionManager::add(new TextLoader));
    QVERIFY(ExtensionManager::add(new TextSaver));
}

void TestPaletteFiles::reads_data()
{
    QTest::addColumn<QByteArray>("word");
    QTest::addColumn<QByteArray>("file");
    QTest::addColumn<QByteArray>("expected");

    const auto row = [](const char *name, const char *word, const QByteArray &file,
                        const char *expected) {
        QTest::newRow(name) << QByteArray(word) << file << QByteArray(expected);
    };

    const QByteArray act = hex("010203") + repeated(hex("0a0b0c"), 254) + hex("fdfeff");
    row("ACT", "ACT", act, "fdfeffff 254x0a0b0cff 010203ff");
    row("ACT with more behind", "ACT", act + hex("0100ffff"), "fdfeffff 254x0a0b0cff 010203ff");

    // 0xffff / 257 is 255, 0x8080 / 257 is 128, 0x8180 / 257 is 128, too.
    row("ACO, RGB and a space without a rule", "ACO",
        hex("0001 0003  0000 ffff 8180 0100 0000  0007 1111 2222 3333 4444  0000 8080 0000 0101 "
            "0000"),
        "ff8000ff 800001ff 254x000000ff");
    // 120 degrees are 21906, and 119.5 are 21815; 0x807f is no whole 128.
    row("ACO, HSB", "ACO",
        hex("0001 0004  0001 5592 ffff ffff 0000  0001 0000 0000 8080 0000"
            " 0001 ffff ffff ffff 0000  0001 5592 ffff 807f 0000"),
        "00ff00ff 808080ff ff0004ff 007f00ff 252x000000ff");
    // 0xffff is no ink: cyan; black; red from magenta and yellow; half of the black ink.
    row("ACO, CMYK", "ACO",
        hex("0001 0004  0002 0000 ffff ffff ffff  0002 ffff ffff ffff 0000"
            " 0002 ffff 0000 0000 ffff  0002 ffff ffff ffff 8080"),
        "00ffffff 000000ff ff0000ff 808080ff 252x000000ff");
    // White; black; 5000 / 39.2157 is a little less than 127.5; 19 and 20 give 0.48 and 0.51; more
    // than black.
    row("ACO, grey", "ACO",
        hex("0001 0006  0008 0000 0000 0000 0000  0008 2710 0000 0000 0000"
            " 0008 1388 0000 0000 0000  0008 0013 0000 0000 0000"
            " 0008 0014 0000 0000 0000  0008 ffff 0000 0000 0000"),
        "ffffffff 000000ff 808080ff ffffffff fefefeff 251x000000ff");
    row("ACO, only the first section", "ACO",
        hex("0001 0001 0000 0101 0202 0303 0000  0002 0001 0000 ffff ffff ffff 0000"),
        "010203ff 255x000000ff");
    row("ACO without colours", "ACO", hex("0001 0000"), "256x000000ff");
    row("ACO, no more than the table takes", "ACO",
        hex("0001 ffff") + repeated(hex("0000 0101 0202 0303 0000"), 256) + "cut", "256x010203ff");

    // A chunk of 1028 bytes holds 256 entries, of which the last is not read.
    row("RIFF of 256 colours", "PAL",
        riff(1028, hex("01020300") + repeated(hex("0a0b0c04"), 254) + hex("fdfeff00")),
        "000000ff 254x0a0b0cff 010203ff");
    row("RIFF, the largest", "PAL",
        riff(1032, hex("01020300") + repeated(hex("0a0b0c04"), 254) + hex("fdfeff00")),
        "fdfeffff 254x0a0b0cff 010203ff");
    row("RIFF, a part of a colour", "PAL", riff(14, hex("010203040506")),
        "254x000000ff 050600ff 010203ff");
    row("RIFF without colours", "PAL", riff(8, ""), "256x000000ff");
    row("RIFF by another word", "ZZZ", riff(12, hex("01020304")), "255x000000ff 010203ff");

    row("JASC", "PAL", "JASC-PAL\r\n0100\r\n256\r\n1 2 3\r\n300 0 999\r\n4\t5 6 7\r\n",
        "010203ff ff00ffff 04050607 253x00000000");
    row("JASC, lines that do not match keep their place", "PAL",
        "JASC-PAL\r\n0100\r\nno number\r\n1  2 3\r\n 1 2 3\r\n1 2 3 \r\n1 2\r\n1 2 3 4 5\r\n"
        "1000 2 3\r\n-1 2 3\r\n7 8 9 400",
        "7x00000000 070809ff 248x00000000");
    row("JASC without colours", "PAL", "JASC-PAL\r\n0100", "256x00000000");
    row("JASC, line ends of other systems", "PAL", "JASC-PAL\n0100\n16\n1 2 3\n4 5 6\n",
        "010203ff 040506ff 254x00000000");
    row("JASC, other line ends inside of lines", "PAL",
        "JASC-PAL\r\n0100\r\n16\r\n1 2\n3\r\n4 5 6\n\r\n7 8 9\r\n",
        "010203ff 00000000 070809ff 253x00000000");
    row("JASC, no more than the table takes", "PAL",
        "JASC-PAL\r\n0100\r\n300\r\n" + repeated("1 2 3\r\n", 256) + repeated("4 5 6\r\n", 44),
        "256x010203ff");

    row("Painter", "TXT",
        "ROWS 1\nCOLS 3\nR:1, G:2, B:3  HV:0\nR: 300,G: 5,B: 6\nR:1, G:2\n R:1, G:2, B:3\n"
        "R:7, G:8, B:9 A:10\r\nR:7,G:8,B:9A: 999",
        "010203ff ff0506ff 0708090a 070809ff 252x00000000");
    row("Painter without colours", "TXT", "ROWS", "256x00000000");
    row("Painter, no more than the table takes", "TXT",
        "ROWS\n" + repeated("R:1,G:2,B:3\n", 256) + "R:4,G:5,B:6", "256x010203ff");

    const float nan = std::numeric_limits<float>::quiet_NaN();
    const QByteArray group = hex("c001 ffffffff 0002 0041 0000");
    const QByteArray groupEnd = hex("c002 00000000");
    row("swatch exchange", "ASE",
        // 0.5 * 255 is 127.5, 0.499 * 255 is 127.2.
        swatches(6,
                 group + swatch("RGB ", {1, 0.5F, 0}) + swatch("Gray", {0.499F}) + groupEnd
                     + swatch("LAB ", {50, 0, 0}) + swatch("CMYK", {0, 1, 1, 0})),
        "ff8000ff 7f7f7fff ff0000ff 253x00000000");
    row("swatch exchange, numbers out of bounds", "ASE",
        swatches(2, swatch("RGB ", {-1, 3e38F, nan}) + swatch("Gray", {1.001F})),
        "00ff00ff ffffffff 254x00000000");
    row("swatch exchange, other blocks", "ASE",
        swatches(4,
                 hex("1234 00000003 ffffff  c002 00000004 00010041  0000 00000000")
                     + swatch("Gray", {0})),
        "000000ff 255x00000000");
    row("swatch exchange, more than promised", "ASE",
        swatches(1, swatch("Gray", {0}) + swatch("Gray", {1})), "000000ff 255x00000000");
    row("swatch exchange without blocks", "ASE", swatches(0, "x"), "256x00000000");
    row("swatch exchange, fewer than no blocks", "ASE", swatches(-1, "x"), "256x00000000");
    row("swatch exchange, no more than the table takes", "ASE",
        swatches(1000, repeated(swatch("Gray", {1}), 256) + "cut"), "256xffffffff");

    row("extension", "TXT", hex("01020304"), "00000000 01020304 254x00000000");

    const QVector<QRgb> three{qRgb(1, 2, 3), qRgb(4, 5, 6), qRgba(7, 8, 9, 0)};
    row("PNG", "PNG", imageFile("PNG", three), "010203ff 040506ff 07080900 253x000000ff");
    // The background, entry 0, is the transparent one.
    row("GIF", "GIF", gifFile("f0"), "01020300 0a0b0cff 254x000000ff");
    const QByteArray pcxHeader = hex("0a05 01 08 0000 0000 0000 0000 4800 4800")
        + repeated(hex("00"), 49) + hex("01 0200 0100") + repeated(hex("00"), 58);
    row("PCX", "PCX",
        pcxHeader + hex("0100 0c 010203") + repeated(hex("0a0b0c"), 254) + hex("fdfeff"),
        "010203ff 254x0a0b0cff fdfeffff");
}

void TestPaletteFiles::reads()
{
    QFETCH(const QByteArray, word);
    QFETCH(QByteArray, file);

    RGBA table[256] = {};
    PaletteObject palette(&table);
    QSignalSpy changing(&palette, &PaletteObject::changing);
    QSignalSpy changed(&palette, &PaletteObject::changed);
    QBuffer buffer(&file);
    QVERIFY(buffer.open(QIODevice::ReadOnly));
    QVERIFY(palette.fromFile(&buffer, word.constData()));
    QTEST(describe(table), "expected");
    QCOMPARE(changing.count(), 1);
    QCOMPARE(changed.count(), 1);
}

void TestPaletteFiles::refuses_data()
{
    QTest::addColumn<QByteArray>("word");
    QTest::addColumn<QByteArray>("file");

    const auto row = [](const char *name, const char *word, const QByteArray &file) {
        QTest::newRow(name) << QByteArray(word) << file;
    };
    row("ACT cut", "ACT", repeated("x", 767));
    row("ACT by a small word", "act", repeated("x", 768));
    row("ACO of version 2", "ACO", hex("0002 0001 0000 0101 0202 0303 0000"));
    row("ACO cut in the header", "ACO", hex("0001 00"));
    row("ACO cut in a colour", "ACO", hex("0001 0002  0000 0101 0202 0303 0000  0000 0101 02"));
    row("RIFF of another type", "PAL", riff(8, "").replace("PAL ", "WAVE"));
    row("RIFF beyond 256 colours", "PAL", riff(1033, repeated("x", 2000)));
    row("RIFF of a negative size", "PAL", riff(7, repeated("x", 2000)));
    row("RIFF cut in the colours", "PAL", riff(16, hex("01020304 010203")));
    row("RIFF cut in the header", "PAL", riff(8, "").left(19));
    row("RIFF, four bytes", "PAL", "RIFF");
    row("JASC of another version", "PAL", "JASC-PAL\r\n0200\r\n1\r\n1 2 3\r\n");
    row("JASC of another name", "PAL", "JASC-PAR\r\n0100\r\n1\r\n1 2 3\r\n");
    row("JASC of one line", "PAL", "JASC-PAL");
    row("JASC with mixed line ends", "PAL", "JASC-PAL\n0100\r\n1\r\n1 2 3\r\n");
    row("swatch exchange 1.1", "ASE", "ASEF" + hex("0001 0001 00000000"));
    row("swatch exchange 2.0", "ASE", "ASEF" + hex("0002 0000 00000000"));
    row("swatch exchange cut in the header", "ASE", "ASEF" + hex("0001 0000 0000"));
    row("swatch exchange cut in a colour", "ASE",
        swatches(2, swatch("Gray", {0}) + swatch("RGB ", {0, 0, 0}).chopped(3)));
    row("swatch exchange without the last type", "ASE",
        swatches(1, swatch("Gray", {0}).chopped(2)));
    row("swatch exchange, name behind the end", "ASE",
        swatches(1, hex("0001 00000010 ffff") + repeated("x", 30)));
    row("swatch exchange, group name behind the end", "ASE",
        swatches(2, hex("c001 00000002 ffff")));
    row("swatch exchange, block behind the end", "ASE",
        swatches(2, hex("0005 ffffffff 00") + repeated("x", 30)));
    row("swatch exchange, more blocks than bytes", "ASE",
        swatches(0x7fffffff, repeated(hex("0000 00000000"), 10)));
    row("nothing", "PAL", "");
    row("no known signature", "PAL", "what is this?");
    row("extension that fails", "TXT", "abc");
    row("true colour", "PNG", imageFile("PNG", {}));
    row("monochrome", "GIF", gifFile("80"));
    row("no image", "PNG", "what is this?");
}

void TestPaletteFiles::refuses()
{
    QFETCH(const QByteArray, word);
    QFETCH(QByteArray, file);
    const QByteArray before = file;

    RGBA table[256] = {};
    PaletteObject palette(&table);
    palette.setColor(nullptr, {1, 2, 3, 4});
    QSignalSpy changing(&palette, &PaletteObject::changing);
    QSignalSpy changed(&palette, &PaletteObject::changed);
    QBuffer buffer(&file);
    // A reader that goes behind the end must not make the file longer, either.
    QVERIFY(buffer.open(QIODevice::ReadWrite));
    QVERIFY(!palette.fromFile(&buffer, word.constData()));
    QCOMPARE(file, before);
    QCOMPARE(describe(table), QByteArray("256x01020304"));
    QCOMPARE(changing.count() + changed.count(), 0);
}

void TestPaletteFiles::unreadableDevicesAreRefused()
{
    RGBA table[256] = {};
    PaletteObject palette(&table);
    QByteArray file(768, 'x');
    QBuffer buffer(&file);
    QVERIFY(!palette.fromFile(&buffer, "ACT"));
    QVERIFY(!palette.toFile(&buffer, "ACT"));
    QVERIFY(buffer.open(QIODevice::WriteOnly));
    QVERIFY(!palette.fromFile(&buffer, "ACT"));
    buffer.close();
    QVERIFY(buffer.open(QIODevice::ReadOnly));
    QVERIFY(!palette.toFile(&buffer, "ACT"));
    QVERIFY(!palette.fromFile(&buffer, nullptr));
    QVERIFY(!palette.toFile(nullptr, "ACT"));
}

void TestPaletteFiles::longTextsAreNotReadIntoMemory()
{
    RGBA table[256] = {};
    PaletteObject palette(&table);
    QByteArray file = "ROWS\n" + QByteArray(16 * 1024 * 1024, '\n');
    QBuffer buffer(&file);
    QVERIFY(buffer.open(QIODevice::ReadOnly));
    QVERIFY(!palette.fromFile(&buffer, "TXT"));
}

void TestPaletteFiles::writes()
{
    RGBA table[256] = {};
    table[0] = {1, 2, 3, 4};
    table[255] = {253, 254, 255, 0};
    PaletteObject palette(&table);
    const auto written = [&palette](const char *word, bool isOk) {
        QBuffer buffer;
        buffer.open(QIODevice::WriteOnly);
        return palette.toFile(&buffer, word) == isOk ? buffer.data() : QByteArray("wrong");
    };
    QCOMPARE(written("ACT", true), hex("fdfeff") + repeated(hex("000000"), 254) + hex("010203"));
    QCOMPARE(written("TXT", true), hex("01020304"));
    QCOMPARE(written("ACO", false), QByteArray());
    QCOMPARE(written(nullptr, false), QByteArray());
    SmallDevice device(767);
    QVERIFY(!palette.toFile(&device, "ACT"));
}

QTEST_MAIN(TestPaletteFiles)
#include "tst_palettefiles.moc"
