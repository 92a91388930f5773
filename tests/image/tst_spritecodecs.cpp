// SPDX-License-Identifier: MIT
#include "image/pipe.h"
#include "image/plainlz5.h"
#include "image/samplepixels.h"

#include "image/imageformats.h"
#include "image/runmarks_p.h"

#include <cstring>
#include <limits>

using Load = bool (*)(QImage &, QIODevice *);
Q_DECLARE_METATYPE(Load)
using Save = bool (*)(const QImage &, QIODevice *);
Q_DECLARE_METATYPE(Save)

namespace {

// What no load has written.
constexpr uchar Untouched = 0xEE;

QByteArray hex(const char *digits)
{
    return QByteArray::fromHex(digits);
}

QImage blank(int width, int height, QImage::Format format = QImage::Format_Indexed8)
{
    QImage image(width, height, format);
    if (!image.isNull())
        std::memset(image.bits(), Untouched, size_t(image.sizeInBytes()));
    return image;
}

QImage imageOf(const QByteArray &pixels, int width)
{
    QImage image = blank(width, pixels.size() / width);
    for (int i = 0; i < pixels.size(); ++i)
        image.scanLine(i / width)[i % width] = uchar(pixels[i]);
    return image;
}

QByteArray allBytes(const QImage &image)
{
    return QByteArray(reinterpret_cast<const char *>(image.constBits()), int(image.sizeInBytes()));
}

bool saveWithCopies(const QImage &image, QIODevice *device)
{
    return Vela::saveLZ5(image, device, true);
}

bool saveWithoutCopies(const QImage &image, QIODevice *device)
{
    return Vela::saveLZ5(image, device, false);
}

QByteArray saved(Save save, const QImage &image)
{
    QBuffer buffer;
    return save(image, &buffer) ? buffer.data() : QByteArrayLiteral("failed");
}

bool isRun(uchar byte)
{
    return (byte & 0xC0) == 0x40;
}

struct Loaded
{
    QByteArray pixels;
    bool result = true;
    int taken = 0; // bytes of the stream
};

// The format read byte by byte, up to a number of pixels.
Loaded plainRLE8(const QByteArray &stream, int room)
{
    Loaded loaded;
    while (loaded.pixels.size() < room && loaded.taken < stream.size()) {
        const uchar first = uchar(stream[loaded.taken++]);
        if (isRun(first) && loaded.taken == stream.size()) {
            loaded.result = false;
        } else if (isRun(first)) {
            loaded.pixels.append(QByteArray(first & 63, stream[loaded.taken++]));
        } else {
            loaded.pixels.append(char(first));
        }
    }
    loaded.pixels.truncate(room);
    return loaded;
}

// Loads a stream and compares with the plain reader, from a buffer or some bytes at a time.
bool loadsRLE8(const QByteArray &stream, int width, int height, int atOnce = 0)
{
    const Loaded expected = plainRLE8(stream, width * height);
    QByteArray bytes = stream;
    QBuffer buffer(&bytes);
    Pipe pipe(stream, atOnce);
    QIODevice &device = atOnce ? static_cast<QIODevice &>(pipe) : buffer;
    QImage image = blank(width, height);
    const bool result = device.open(QIODevice::ReadOnly) && Vela::loadRLE8(image, &device);

    QImage wanted = blank(width, height);
    for (int i = 0; i < expected.pixels.size(); ++i)
        wanted.scanLine(i / width)[i % width] = uchar(expected.pixels[i]);
    return result == expected.result && allBytes(image) == allBytes(wanted)
        && device.readAll() == stream.mid(expected.taken);
}

// Any bytes, of which one in so many begins a run if it is no value. Most runs are short; a value
// looks like another run as often.
QByteArray randomRuns(SamplePixels::Random &random, int size, int oneIn)
{
    QByteArray stream(size, 0);
    for (char &byte : stream) {
        const int longest = SamplePixels::below(random, 8) == 0 ? 64 : 12;
        const int plain = SamplePixels::below(random, 0xC0);
        byte = char(SamplePixels::below(random, oneIn) == 0
                        ? 0x40 + SamplePixels::below(random, longest)
                        : (plain < 0x40 ? plain : plain + 0x40));
    }
    return stream;
}

} // namespace

class TestSpriteCodecs : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void loads_data();
    void loads();
    void saves_data();
    void saves();
    void colorsThatDoNotFit();
    void wideFormats();
    void narrowFormats();
    void devices();
    void writeFailures();
    void randomLZ5_data();
    void randomLZ5();
    void randomRLE8();
    void runMarks();
    void anyRuns();
    void everyEndOfRuns();
    void everyCutOfAStream();
};

// The pixels behind what was decoded stay as they are.
void TestSpriteCodecs::loads_data()
{
    QTest::addColumn<Load>("load");
    QTest::addColumn<int>("width");
    QTest::addColumn<int>("height");
    QTest::addColumn<QByteArray>("stream");
    QTest::addColumn<QByteArray>("pixels");
    QTest::addColumn<bool>("result");
    QTest::addColumn<int>("left"); // bytes that nobody read

    const Load lz5 = Vela::loadLZ5;
    const auto row = [](const char *name, Load load, const QSize &size, const char *stream,
                        const QByteArray &pixels, bool result, int left) {
        QTest::newRow(name) << load << size.width() << size.height() << hex(stream)
                            << QByteArray::fromHex(pixels) << result << left;
    };
    row("LZ5: runs over rows of odd width", lz5, {3, 3}, "00 65 C3", "050505 030303 030303", true,
        0);
    row("LZ5: long run, colour of five bits", lz5, {4, 2}, "00 1F 00", "1F1F1F1F 1F1F1F1F", true,
        0);
    row("LZ5: run beyond the end, rest unread", lz5, {3, 1}, "00 21 E2 FF FF", "010202", true, 2);
    row("LZ5: copy beyond the end, rest unread", lz5, {2, 2}, "04 21 22 3F 01 77", "0102 0102",
        true, 1);
    row("LZ5: overlapping copy, distance 3", lz5, {15, 1}, "08 21 22 23 0B 02",
        "010203 010203010203010203010203", true, 0);
    row("LZ5: overlapping copy, distance 1", lz5, {13, 1}, "02 21 0B 00",
        "01 010101010101010101010101", true, 0);
    row("LZ5: long copy", lz5, {7, 1}, "04 21 22 00 01 02", "0102 0102010201", true, 0);
    row("LZ5: set of four around runs", lz5, {15, 1},
        "A8 21 22 23 01 02 24 01 02 25 01 02 02 26 81 27", "010203 010204 010205 010206 010207",
        true, 0);
    row("LZ5: distance in the bits of four, then a new set", lz5, {234, 1},
        "F8 21 02 D5 23 C1 00 81 00 41 00 02 01 00",
        "01" + QByteArray(221, 2).toHex() + "03 030303030303 010202 0202", true, 0);
    row("LZ5: ends between packets", lz5, {4, 1}, "00 21 22", "0102EEEE", true, 0);
    row("LZ5: ends behind the flags", lz5, {2, 1}, "FF", "EEEE", true, 0);
    row("LZ5: nothing at all", lz5, {2, 1}, "", "EEEE", true, 0);
    row("LZ5: cut in a long run", lz5, {9, 1}, "00 21 02", "01EEEEEEEEEEEEEEEE", false, 0);
    row("LZ5: cut in a short copy", lz5, {3, 1}, "02 21 01", "01EEEE", false, 0);
    row("LZ5: cut in a long copy", lz5, {3, 1}, "02 21 00 00", "01EEEE", false, 0);
    row("LZ5: copy from before the start", lz5, {3, 1}, "02 21 01 01 22", "01EEEE", false, 1);
    row("LZ5: empty image reads nothing", lz5, {0, 0}, "00 21", "", true, 2);

    const Load rle8 = Vela::loadRLE8;
    row("RLE8: runs over rows of odd width", rle8, {3, 2}, "45 FF 80", "FFFFFF FFFF80", true, 0);
    row("RLE8: single values of every kind", rle8, {5, 1}, "00 3F 41 40 80 C1", "003F4080C1", true,
        0);
    row("RLE8: run of none", rle8, {2, 1}, "40 07 01 02", "0102", true, 0);
    row("RLE8: run beyond the end, rest unread", rle8, {3, 1}, "7F 09 01", "090909", true, 1);
    row("RLE8: ends between packets", rle8, {3, 1}, "42 09", "0909EE", true, 0);
    row("RLE8: cut in a run", rle8, {3, 1}, "09 42", "09EEEE", false, 0);
    row("RLE8: longest run", rle8, {63, 1}, "7F 01", QByteArray(63, 1).toHex(), true, 0);

    const Load rle5 = Vela::loadRLE5;
    row("RLE5: colour byte and data", rle5, {5, 2}, "01 E2 FF 23 84", "1F1F030304 04040404EE", true,
        0);
    row("RLE5: no colour byte, no data", rle5, {3, 1}, "01 60 00 80 05", "000005", true, 0);
    row("RLE5: data beyond the end, rest unread", rle5, {3, 1}, "00 03 E1 02 03", "000101", true,
        2);
    row("RLE5: ends between groups", rle5, {3, 1}, "00 00", "00EEEE", true, 0);
    row("RLE5: cut in front of the colour", rle5, {3, 1}, "00 80", "EEEEEE", false, 0);
    row("RLE5: cut in the data", rle5, {3, 1}, "00 02 01", "0001EE", false, 0);
}

void TestSpriteCodecs::loads()
{
    QFETCH(Load, load);
    QFETCH(int, width);
    QFETCH(int, height);
    QFETCH(QByteArray, stream);
    QFETCH(QByteArray, pixels);
    QFETCH(bool, result);
    QFETCH(int, left);

    QImage image = blank(width, height);
    QBuffer buffer(&stream);
    QCOMPARE(load(image, &buffer), result);
    QCOMPARE(SamplePixels::joined(image).toHex(' '), pixels.toHex(' '));
    QCOMPARE(buffer.bytesAvailable(), qint64(left));
    for (int y = 0; y < height; ++y) {
        for (int x = width; x < image.bytesPerLine(); ++x)
            QCOMPARE(image.constScanLine(y)[x], Untouched);
    }

    // The same out of a device that gives three bytes at a time.
    Pipe pipe(stream);
    QVERIFY(pipe.open(QIODevice::ReadOnly));
    QImage piped = blank(width, height);
    QCOMPARE(load(piped, &pipe), result);
    QCOMPARE(allBytes(piped), allBytes(image));
    QCOMPARE(pipe.readAll(), stream.right(left));
}

void TestSpriteCodecs::saves_data()
{
    QTest::addColumn<Save>("save");
    QTest::addColumn<int>("width");
    QTest::addColumn<QByteArray>("pixels");
    QTest::addColumn<QByteArray>("stream");

    const auto row = [](const char *name, Save save, int width, const QByteArray &pixels,
                        const char *stream) {
        QTest::newRow(name) << save << width << QByteArray::fromHex(pixels) << hex(stream);
    };
    const Save lz5 = saveWithCopies;
    row("LZ5: empty image", lz5, 1, "", "");
    row("LZ5: run of eight", lz5, 8, "05 05 05 05 05 05 05 05", "00 05 00");
    row("LZ5: longest run and one more", lz5, 264, QByteArray(264, 1).toHex(), "00 01 FF 21");
    row("LZ5: run of seven, then a copy", lz5, 13, "010203 04040404040404 010203",
        "10 21 22 23 E4 02 09");
    row("LZ5: longer run is cut where a copy begins", lz5, 14, "04010203 0404040404040404 0102",
        "20 24 21 22 23 E4 02 0A");
    row("LZ5: one change, another colour follows", lz5, 3, "010203 010204", "08 21 22 23 01 02 24");
    row("LZ5: one change, the same colour follows", lz5, 3, "010203 010202", "00 21 22 23 21 42");
    row("LZ5: set of four around runs", lz5, 3, "010203 010204 010205 010206 010207",
        "A8 21 22 23 01 02 24 01 02 25 01 02 02 26 81 27");
    row("LZ5: farthest copy, flags of the last group", lz5, 1029,
        "0102030405" + QByteArray(1019, 0).toHex() + "0102030405",
        "00 21 22 23 24 25 00 FF 00 FF 00 FF 02 00 DE C0 FF 02");
    row("LZ5: beyond the farthest copy", lz5, 1030,
        "0102030405" + QByteArray(1020, 0).toHex() + "0102030405",
        "00 21 22 23 24 25 00 FF 00 FF 00 FF 00 00 DF 21 22 23 24 25");
    row("LZ5: without copies", saveWithoutCopies, 3, "010203 010203", "00 21 22 23 21 22 23");

    const Save rle8 = Vela::saveRLE8;
    row("RLE8: empty image", rle8, 1, "", "");
    row("RLE8: runs over rows of odd width", rle8, 3, "FFFFFF FFFF80", "45 FF 80");
    row("RLE8: single values of every kind", rle8, 5, "003F4080C1", "00 3F 41 40 80 C1");
    row("RLE8: longest run and one more", rle8, 64, QByteArray(64, 0x40).toHex(), "7F 40 41 40");
}

void TestSpriteCodecs::saves()
{
    QFETCH(Save, save);
    QFETCH(int, width);
    QFETCH(QByteArray, pixels);
    QFETCH(QByteArray, stream);
    QCOMPARE(saved(save, imageOf(pixels, width)).toHex(' '), stream.toHex(' '));
}

// Five bits hold no more; nothing is written and the device stays closed.
void TestSpriteCodecs::colorsThatDoNotFit()
{
    QBuffer buffer;
    QVERIFY(!Vela::saveLZ5(imageOf(hex("01 1F 20"), 3), &buffer, true));
    QVERIFY(!Vela::saveLZ5(imageOf(hex("01 01 01 80 01 01 01 01 1F"), 9), &buffer, false));
    QVERIFY(!buffer.isOpen());
    QCOMPARE(saved(saveWithCopies, imageOf(hex("01 1F"), 2)), hex("00 21 3F"));
}

// LZ5 and RLE5 take a byte a pixel whatever the format; RLE8 takes 24 bits of a pixel that has no
// alpha.
void TestSpriteCodecs::wideFormats()
{
    QByteArray stream = hex("46 AA 01 02 03 04 05 06 07 08");
    QBuffer buffer(&stream);
    QImage rgb = blank(2, 2, QImage::Format_RGB32);
    QVERIFY(Vela::loadRLE8(rgb, &buffer));
    QCOMPARE(allBytes(rgb), hex("AAAAAAAAAAAA EEEE 010203040506 EEEE"));
    QCOMPARE(buffer.bytesAvailable(), 2);

    for (const QImage::Format format :
         {QImage::Format_ARGB32, QImage::Format_ARGB32_Premultiplied}) {
        QImage argb = blank(2, 1, format);
        buffer.seek(2);
        QVERIFY(Vela::loadRLE8(argb, &buffer));
        QCOMPARE(allBytes(argb), hex("0102030405060708"));
        QCOMPARE(saved(Vela::saveRLE8, argb), hex("01 02 03 04 05 06 07 08"));
    }
    QCOMPARE(saved(Vela::saveRLE8, rgb), hex("46 AA 42 EE 01 02 03 04 05 06 42 EE"));

    QByteArray lz5 = hex("00 41 42");
    QBuffer lz5Buffer(&lz5);
    QImage wide = blank(2, 2, QImage::Format_RGB32);
    QVERIFY(Vela::loadLZ5(wide, &lz5Buffer));
    QCOMPARE(allBytes(wide), hex("0101 EEEEEEEEEEEE 0202 EEEEEEEEEEEE"));
}

// A row of bits has no room for a byte a pixel.
void TestSpriteCodecs::narrowFormats()
{
    QByteArray stream = hex("00 41 42");
    QBuffer buffer(&stream);
    QImage bits = blank(40, 2, QImage::Format_Mono);
    const QByteArray before = allBytes(bits);
    QVERIFY(!Vela::loadLZ5(bits, &buffer));
    QVERIFY(!Vela::loadRLE5(bits, &buffer));
    QVERIFY(Vela::loadRLE8(bits, &buffer)); // no bits in the table, so nothing to read
    QCOMPARE(allBytes(bits), before);
    QCOMPARE(buffer.pos(), 0);
    QCOMPARE(saved(saveWithCopies, bits), QByteArrayLiteral("failed"));
    bits.fill(1);
    QCOMPARE(saved(Vela::saveRLE8, bits), hex("4A FF"));
}

void TestSpriteCodecs::devices()
{
    QTemporaryDir folder;
    QFile missing(folder.filePath(QStringLiteral("no/file")));
    QImage image = blank(3, 1);
    const QImage before = image;
    for (const Load load : {Vela::loadLZ5, Vela::loadRLE5, Vela::loadRLE8})
        QVERIFY(!load(image, &missing));
    QCOMPARE(image, before);
    for (const Save save : {Save(saveWithCopies), Save(Vela::saveRLE8)})
        QVERIFY(!save(image.copy(0, 0, 0, 0), &missing));
    QBuffer unused;
    QVERIFY(!Vela::saveRLE5(image, &unused));
    QVERIFY(!unused.isOpen());

    // A stream in the middle of a file, which the caller reads on.
    QFile file(folder.filePath(QStringLiteral("file")));
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write(hex("FFFF 00 21 42") + QByteArray(100000, 'x'));
    file.close();
    QVERIFY(file.open(QIODevice::ReadOnly));
    file.seek(2);
    QVERIFY(Vela::loadLZ5(image, &file));
    QCOMPARE(SamplePixels::joined(image), hex("010202"));
    QCOMPARE(file.pos(), 5);
    QCOMPARE(file.readAll(), QByteArray(100000, 'x'));
}

void TestSpriteCodecs::writeFailures()
{
    const QImage image = imageOf(hex("01 02 03 04"), 4);
    for (const Save save : {Save(saveWithCopies), Save(Vela::saveRLE8)}) {
        Pipe pipe;
        pipe.room = 2;
        QVERIFY(!save(image, &pipe));
    }
}

void TestSpriteCodecs::randomLZ5_data()
{
    QTest::addColumn<int>("kind");
    QTest::newRow("runs") << int(SamplePixels::Runs);
    QTest::newRow("noise") << int(SamplePixels::Noise);
    QTest::newRow("dithered") << int(SamplePixels::Dithered);
    QTest::newRow("tiles") << int(SamplePixels::Tiles);
}

void TestSpriteCodecs::randomLZ5()
{
    QFETCH(int, kind);
    SamplePixels::Random random(5);
    for (int i = 0; i < 2500; ++i) {
        const int largest = 1 + SamplePixels::below(random, 65);
        const QSize size(SamplePixels::below(random, largest),
                         SamplePixels::below(random, largest));
        const QImage image = SamplePixels::make(random, SamplePixels::Kind(kind), size, i % 32 + 1);
        const QByteArray pixels = SamplePixels::joined(image);
        for (const Save save : {saveWithCopies, saveWithoutCopies}) {
            QByteArray stream = saved(save, image);
            QVERIFY2(stream == PlainLZ5::encode(pixels, save == saveWithCopies),
                     qPrintable(QStringLiteral("image %1").arg(i)));
            QImage loaded = blank(size.width(), size.height());
            QBuffer buffer(&stream);
            QVERIFY(Vela::loadLZ5(loaded, &buffer));
            QCOMPARE(SamplePixels::joined(loaded), pixels);
            QVERIFY(buffer.atEnd());
        }
    }
}

void TestSpriteCodecs::randomRLE8()
{
    SamplePixels::Random random(8);
    for (int i = 0; i < 10000; ++i) {
        const QSize size(SamplePixels::below(random, 65), SamplePixels::below(random, 65));
        const auto kind = SamplePixels::Kind(i % SamplePixels::KindCount);
        const QImage image = SamplePixels::make(random, kind, size, 1 << i % 9);
        QByteArray stream = saved(Vela::saveRLE8, image);
        QImage loaded = blank(size.width(), size.height());
        QBuffer buffer(&stream);
        QVERIFY(Vela::loadRLE8(loaded, &buffer));
        QCOMPARE(SamplePixels::joined(loaded), SamplePixels::joined(image));
        QVERIFY(buffer.atEnd());
    }
}

// Which bytes of a block begin a run, by either way of finding the marks.
void TestSpriteCodecs::runMarks()
{
    SamplePixels::Random random(9);
    for (int i = 0; i < 40000; ++i) {
        const QByteArray bytes = randomRuns(random, Vela::Block, 1 + i % 12);
        quint64 marked = 0;
        quint64 starts = 0;
        bool isValue = false;
        for (int n = 0; n < Vela::Block; ++n) {
            const bool isMark = isRun(uchar(bytes[n]));
            isValue = isMark && !isValue; // of the next byte
            marked |= quint64(isMark) << n;
            starts |= quint64(isValue) << n;
        }
        const auto block = reinterpret_cast<const uchar *>(bytes.constData());
        QCOMPARE(Vela::markedBytes(block), marked);
        QCOMPARE(Vela::markedBytesOfWords(block), marked);
        QCOMPARE(Vela::runStarts(marked), starts);
    }
}

// Streams that no writer makes: runs of none, values that look like runs, stretches of any length,
// more or less than the image holds.
void TestSpriteCodecs::anyRuns()
{
    SamplePixels::Random random(10);
    for (int i = 0; i < 20000; ++i) {
        const QByteArray stream =
            randomRuns(random, SamplePixels::below(random, 1 << i % 12), 1 + i % 17);
        const int width = 1 + SamplePixels::below(random, 70);
        const int height = 1 + SamplePixels::below(random, 70);
        const int atOnce = i % 4 == 0 ? 1 + SamplePixels::below(random, 400) : 0;
        QVERIFY2(loadsRLE8(stream, width, height, atOnce),
                 qPrintable(QStringLiteral("stream %1").arg(i)));
    }
    // More than is read from the device at once.
    for (const int oneIn : {1, 3, 100})
        QVERIFY(loadsRLE8(randomRuns(random, 200000, oneIn), 1001, 999));
}

// The end of the stream and that of the image, each at every place of some blocks.
void TestSpriteCodecs::everyEndOfRuns()
{
    SamplePixels::Random random(11);
    for (const int oneIn : {1, 2, 5, 30}) {
        const QByteArray stream = randomRuns(random, 270, oneIn);
        const int count = plainRLE8(stream, std::numeric_limits<int>::max()).pixels.size();
        for (int size = 0; size <= stream.size(); ++size)
            QVERIFY2(loadsRLE8(stream.left(size), 41, count / 41 + 1),
                     qPrintable(QStringLiteral("%1, cut at %2").arg(oneIn).arg(size)));
        for (int width = 1; width <= count; ++width)
            QVERIFY2(loadsRLE8(stream, width, 1),
                     qPrintable(QStringLiteral("%1, width %2").arg(oneIn).arg(width)));
    }
}

// What came before the cut is there, and nothing else.
void TestSpriteCodecs::everyCutOfAStream()
{
    SamplePixels::Random random(1);
    const QImage image = SamplePixels::make(random, SamplePixels::Tiles, {33, 20}, 9);
    const QByteArray pixels = SamplePixels::joined(image);
    const std::pair<Save, Load> codecs[] = {{saveWithCopies, Vela::loadLZ5},
                                            {Vela::saveRLE8, Vela::loadRLE8}};
    for (const auto &[save, load] : codecs) {
        const QByteArray stream = saved(save, image);
        Pipe pipe(stream);
        QVERIFY(pipe.open(QIODevice::ReadOnly));
        QImage piped = blank(image.width(), image.height());
        QVERIFY(load(piped, &pipe));
        QCOMPARE(SamplePixels::joined(piped), pixels);
        int before = 0;
        for (int size = 0; size < stream.size(); ++size) {
            QByteArray part = stream.left(size);
            QBuffer buffer(&part);
            QImage loaded = blank(image.width(), image.height());
            load(loaded, &buffer);
            QVERIFY(buffer.atEnd());
            const QByteArray seen = SamplePixels::joined(loaded);
            const int count =
                int(std::find(seen.begin(), seen.end(), char(Untouched)) - seen.begin());
            QVERIFY(count >= before && count < pixels.size());
            QCOMPARE(seen, pixels.left(count) + QByteArray(pixels.size() - count, char(Untouched)));
            before = count;
        }
    }
}

QTEST_APPLESS_MAIN(TestSpriteCodecs)
#include "tst_spritecodecs.moc"
