// SPDX-License-Identifier: MIT
#include "contentfiles.h"
#include "lantern/spritesfile.h"

#include "frame/checksum.h"
#include "frame/filesystemarchive.h"
#include "project/message.h"

#include <QDataStream>
#include <QFile>
#include <QPainter>
#include <QRandomGenerator>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>
#include <QtEndian>

#include <functional>
#include <limits>
#include <memory>

using Lantern::SpritesFile;
using Vela::FileSystemArchive;
using Vela::ProjectFile;
using Vela::RGBA;
using Vela::ShareMode;
using Vela::Sprite;
using Vela::SubItem;

namespace {

using Held = HeldFile<SpritesFile>;

QVariant id(int group, int image)
{
    return QVariant::fromValue(SubItem{group, image});
}

QVector<QRgb> rampTable(int step)
{
    QVector<QRgb> table(256);
    for (int i = 0; i < 256; ++i)
        table[i] = qRgba(i, i * step & 255, 255 - i, i == 0 ? 0 : 255);
    return table;
}

// Indices below \a colors in the manner of noise, which no codec makes smaller by much.
QImage noise(int width, int height, int colors, quint32 seed)
{
    QRandomGenerator random(seed);
    QImage image(width, height, QImage::Format_Indexed8);
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x)
            image.scanLine(y)[x] = uchar(random.bounded(colors));
    }
    image.setColorTable(rampTable(1));
    return image;
}

QImage colored(int width, int height, QRgb color)
{
    QImage image(width, height, QImage::Format_ARGB32);
    image.fill(color);
    image.setPixel(0, 0, qRgba(1, 2, 3, 4));
    return image;
}

// All that users see of a file, to compare states with.
QStringList contentOf(const SpritesFile &file)
{
    QStringList lines;
    for (unsigned int i = 0; i < file.count(); ++i) {
        const Sprite &sprite = *file.at(i);
        const QImage image = sprite.image();
        QByteArray pixels;
        for (int y = 0; y < image.height(); ++y)
            pixels.append(reinterpret_cast<const char *>(image.constScanLine(y)),
                          image.width() * image.depth() / 8);
        lines << QStringLiteral("%1 at %2: %3 %4x%5 palette %6 axis %7,%8 pixels %9")
                     .arg(i)
                     .arg(sprite.index())
                     .arg(sprite.property(QStringLiteral("Identifier")).toString())
                     .arg(image.width())
                     .arg(image.height())
                     .arg(sprite.palette() ? int(sprite.palette()->index()) : -1)
                     .arg(sprite.axis().x())
                     .arg(sprite.axis().y())
                     .arg(Vela::CRC32(pixels.constData(), size_t(pixels.size())));
    }
    for (unsigned int i = 0; i < file.palettes()->count(); ++i) {
        RGBA table[256];
        file.palettes()->at(i)->colorTable(table);
        lines << QStringLiteral("palette %1 %2")
                     .arg(i)
                     .arg(Vela::CRC32(reinterpret_cast<const char *>(table), sizeof table));
    }
    return lines;
}

// A file as the format's page tells it, written without the code that is tested.
QByteArray handmadeFile()
{
    QByteArray palette(1024, 0);
    palette.replace(0, 8, QByteArray("\x08\0\x7F\0\x08\0\0\0", 8)); // also the head of an image
    palette.replace(4 * 5, 4, QByteArray("\x10\x20\x30\xFF", 4));   // colour 5
    const QByteArray rawHead("\2\0\1\0\x08\0\0\0", 8);
    const QByteArray raw = rawHead + QByteArray("\5\x40", 2);
    // A pixel of colour 5, then two of colour 3.
    const QByteArray rle5Head("\3\0\1\0\x08\0\0\0", 8);
    const QByteArray rle5 = rle5Head + QByteArray("\0\x80\5\1\x80\3", 6);
    const QByteArray rle5Plain = rle5Head + QByteArray("\5\3\3", 3);

    QByteArray file;
    QDataStream out(&file, QIODevice::WriteOnly);
    out.setByteOrder(QDataStream::LittleEndian);
    out.writeRawData("LSPR", 4);
    out << quint16(1) << quint16(0) << quint32(3) << quint32(1) << quint32(2);
    const auto crc = [](const QByteArray &data) {
        return Vela::CRC32(data.constData(), size_t(data.size()));
    };
    qint64 offset = 20 + 3 * 24 + 12 + 2 * 24 + 4;
    out << offset << quint32(1024) << crc(palette) << quint16(0) << quint16(0) << quint16(0)
        << quint16(0);
    offset += 1024;
    out << offset << quint32(raw.size()) << crc(raw) << quint16(0) << quint16(2) << quint16(1)
        << quint16(8);
    offset += raw.size();
    out << offset << quint32(rle5.size()) << crc(rle5Plain) << quint16(3) << quint16(3)
        << quint16(1) << quint16(8);
    out << qint32(7) << qint32(1) << quint32(0);
    out << qint32(0) << qint32(1) << qint32(2) << qint32(-3) << quint32(0) << quint32(1);
    out << qint32(0) << qint32(2) << qint32(0) << qint32(0) << quint32(0xFFFFFFFF) << quint32(2);
    out << crc(file);
    return file + palette + raw + rle5;
}

} // namespace

class tst_Sprites : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void readsAFileMadeByHand();
    void imagesComeBackAsTheyWere_data();
    void imagesComeBackAsTheyWere();
    void equalDataIsStoredOnce();
    void equalContentMakesEqualBytes();
    void everyStepCanBeTakenBack();
    void readingAgainIsAStepOfUndo();
    void modesSettleThePalette();
    void palettesAreRemovedWithCare();
    void cropAndSplit();
    void identifiers();
    void brokenFilesStayAsTheyAre();
    void largeFilesAreReadInTheBackground();
    void aFileReplacedUnderneathGivesNoGarbage();
};

void tst_Sprites::readsAFileMadeByHand()
{
    const Held file = fileOf<SpritesFile>(handmadeFile());
    QCOMPARE(file->count(), 2u);
    QCOMPARE(file->palettes()->count(), 1u);
    QCOMPARE(file->palettes()->find(0, id(7, 1)), 0);
    Sprite *const first = file->at(0);
    QCOMPARE(first->identifier(), (SubItem{0, 1}));
    QCOMPARE(first->axis(), QPoint(2, -3));
    QCOMPARE(first->palette(), file->palettes()->at(0));
    QCOMPARE(int(first->imageProperties().width), 2);
    QCOMPARE(first->image().size(), QSize(2, 1));
    QCOMPARE(first->image().pixelIndex(1, 0), 0x40);
    QCOMPARE(first->image().color(5), qRgba(0x10, 0x20, 0x30, 0xFF));
    const QImage second = file->at(1)->image();
    QCOMPARE(second.pixelIndex(0, 0), 5);
    QCOMPARE(second.pixelIndex(1, 0), 3);
    QCOMPARE(second.pixelIndex(2, 0), 3);
    QCOMPARE(file->at(1)->palette(), nullptr);
    // Without a change it is passed on as it is.
    MemoryArchive archive({{QStringLiteral("/f.sprites"), handmadeFile()}});
    const Held unchanged(new SpritesFile);
    QVERIFY(unchanged->fromFile(archive, QStringLiteral("/f.sprites"), 0, nullptr));
    unchanged->at(0)->setAxis({9, 9});
    QVERIFY(bytesOf(*unchanged) != handmadeFile());
    unchanged->undo();
    QCOMPARE(bytesOf(*unchanged), handmadeFile());
    // What is written has the encodings that this program gives, and is the same again from then
    // on.
    const QStringList content = contentOf(*file);
    const QByteArray saved = bytesOf(*file);
    QCOMPARE(int(saved.at(20 + 2 * 24 + 16)), 0); // what was RLE5
    const Held again = fileOf<SpritesFile>(saved);
    QCOMPARE(contentOf(*again), content);
    QCOMPARE(bytesOf(*again), saved);
}

void tst_Sprites::imagesComeBackAsTheyWere_data()
{
    QTest::addColumn<QImage>("image");
    QTest::newRow("few colours") << noise(33, 17, 4, 1);
    QTest::newRow("many colours") << noise(17, 33, 256, 2);
    QImage plain(300, 200, QImage::Format_Indexed8);
    plain.setColorTable(rampTable(3));
    plain.fill(9);
    QTest::newRow("one colour") << plain;
    QTest::newRow("alpha") << colored(21, 9, qRgba(200, 100, 50, 128));
    QTest::newRow("opaque") << colored(64, 64, qRgb(9, 8, 7)).convertToFormat(QImage::Format_RGB32);
}

void tst_Sprites::imagesComeBackAsTheyWere()
{
    QFETCH(QImage, image);
    Held file(new SpritesFile);
    QVERIFY(file->add(id(1, 2), image, ShareMode::Share));
    QCOMPARE(file->at(0)->image(), image);
    const Held again = fileOf<SpritesFile>(bytesOf(*file));
    QCOMPARE(again->at(0)->image(), image);
    QCOMPARE(again->at(0)->imageProperties().format, image.format());
}

void tst_Sprites::equalDataIsStoredOnce()
{
    Held file(new SpritesFile);
    const QImage image = noise(64, 64, 32, 3);
    Sprite *const first = file->add(id(0, 0), image, ShareMode::Share);
    QVERIFY(!first->imageIsShared());
    const int alone = bytesOf(*file).size();
    QVERIFY(file->add(id(0, 1), image, ShareMode::Share)->imageIsShared());
    QVERIFY(first->imageIsShared());
    QCOMPARE(file->palettes()->count(), 1u);
    QCOMPARE(bytesOf(*file).size(), alone + 24);
    Sprite *const own = file->add(id(0, 2), image, ShareMode::NoShare);
    QVERIFY(!own->imageIsShared());
    QVERIFY(bytesOf(*file).size() > alone + 2 * 24 + 64 * 64 / 2);
    // A change of one leaves the other as it is.
    first->setImage(noise(8, 8, 8, 4));
    QCOMPARE(file->at(1)->image(), image);
    QVERIFY(!file->at(1)->imageIsShared());
}

void tst_Sprites::equalContentMakesEqualBytes()
{
    Held straight(new SpritesFile);
    straight->add(id(0, 0), noise(20, 20, 16, 1), ShareMode::Share);
    straight->add(id(0, 1), colored(10, 10, 0xFF00FF00), ShareMode::Share);

    Held detour(new SpritesFile);
    detour->add(id(5, 5), noise(9, 9, 9, 9), ShareMode::Share);
    const RGBA table[256] = {{1, 2, 3, 4}};
    detour->palettes()->add(table, QVariant(), ShareMode::Share);
    detour->add(id(0, 1), colored(10, 10, 0xFF00FF00), ShareMode::Share);
    detour->remove(0);
    detour->palettes()->clear();
    detour->insert(0, id(9, 9), noise(20, 20, 16, 1), ShareMode::Share);
    detour->at(0)->setIdentifier({0, 0});
    detour->at(0)->palette()->setProperty(QStringLiteral("Identifier"), QStringLiteral("0,0"));
    QCOMPARE(contentOf(*detour), contentOf(*straight));
    QCOMPARE(bytesOf(*detour), bytesOf(*straight));
    QCOMPARE(bytesOf(*fileOf<SpritesFile>(bytesOf(*straight))), bytesOf(*straight));
}

void tst_Sprites::everyStepCanBeTakenBack()
{
    Held file(new SpritesFile);
    RGBA table[256] = {};
    table[7] = {7, 8, 9, 255};
    const std::function<void()> steps[] = {
        [&] { file->add(id(0, 0), noise(12, 12, 12, 1), ShareMode::Share); },
        [&] { file->add(QVariant(), noise(5, 9, 200, 2), ShareMode::Share); },
        [&] { file->palettes()->add(table, id(3, 3), ShareMode::Share); },
        [&] { file->at(0)->setPalette(file->palettes()->at(1)); },
        [&] {
            file->at(1)->setAxis({4, 5});
        },
        [&] { file->at(1)->duplicate(); },
        [&] { file->move(0, 2); },
        [&] { file->palettes()->move(0, 1); },
        [&] {
            table[8] = {1, 1, 1, 255};
            file->palettes()->at(0)->setColorTable(table, ShareMode::NoShare);
        },
        [&] { file->palettes()->remove(1); },
        [&] { file->at(0)->splitRGB(); },
        [&] { file->remove(1); },
        [&] {
            file->beginChange();
            file->at(0)->setImage(colored(3, 3, 0xFF123456));
            file->add(id(8, 8), colored(4, 4, 0xFF654321), ShareMode::Share);
            file->remove(file->count() - 1);
            file->endChange();
        },
        [&] { file->clear(); },
    };
    QList<QStringList> states{contentOf(*file)};
    for (const auto &step : steps) {
        QSignalSpy modified(file.get(), &SpritesFile::modified);
        step();
        QCOMPARE(modified.size(), 1);
        states.append(contentOf(*file));
        QVERIFY(states.at(states.size() - 1) != states.at(states.size() - 2));
    }
    QVERIFY(file->isModified());
    for (int round = 0; round < 2; ++round) {
        for (int i = states.size() - 2; i >= 0; --i) {
            file->undo();
            QCOMPARE(contentOf(*file), states.at(i));
        }
        QVERIFY(!file->isModified());
        for (int i = 1; i < states.size(); ++i) {
            file->redo();
            QCOMPARE(contentOf(*file), states.at(i));
        }
    }
    // Scripts may still have what is no longer there.
    file->undo();
    Sprite *const last = file->at(file->count() - 1);
    file->clear();
    QCOMPARE(last->duplicate()->index(), 0u);
    QCOMPARE(file->at(0)->palette(), nullptr);
    // Somebody who hears of a step may make another one.
    file->undo();
    const auto onModified = QObject::connect(file.get(), &SpritesFile::modified, file.get(), [&] {
        if (!file->undoStack().canRedo() || file->selected() == 1)
            return;
        file->setSelected(1);
        file->at(0)->setAxis({77, 77});
    });
    file->undo();
    QObject::disconnect(onModified);
    QCOMPARE(file->at(0)->axis(), QPoint(77, 77));
    QVERIFY(!file->undoStack().canRedo());
    file->undo();
    QVERIFY(file->at(0)->axis() != QPoint(77, 77));
    file->clear();
    QCOMPARE(file->selected(), 0u);
    // What changes nothing is no step.
    const int count = file->undoStack().count();
    file->add(id(1, 1), QImage(), ShareMode::Share)->setAxis({0, 0});
    QCOMPARE(file->undoStack().count(), count + 1);
}

void tst_Sprites::readingAgainIsAStepOfUndo()
{
    MemoryArchive archive;
    const QString name = QStringLiteral("/a.sprites");
    Held file(new SpritesFile);
    file->add(id(0, 0), noise(4, 4, 4, 1), ShareMode::Share);
    QVERIFY(file->toFile(archive, name, 0, nullptr));
    QVERIFY(!file->isModified());
    const QByteArray first = archive.content(name);

    Held opened(new SpritesFile);
    opened->attach(archive, name);
    QVERIFY(!opened->isLoaded());
    QSignalSpy modified(opened.get(), &SpritesFile::modified);
    QCOMPARE(opened->count(), 1u);
    QVERIFY(modified.isEmpty());
    QVERIFY(!opened->undoStack().canUndo());
    const QStringList before = contentOf(*opened);
    file->add(id(0, 1), noise(4, 4, 4, 2), ShareMode::Share);
    QVERIFY(file->toFile(archive, name, 0, nullptr));
    opened->reload();
    QCOMPARE(opened->count(), 2u);
    QVERIFY(!opened->isModified());
    opened->undo();
    QCOMPARE(contentOf(*opened), before);
    QVERIFY(opened->isModified());
    QCOMPARE(bytesOf(*opened), first);
    // The images of that state are found again, too.
    QVERIFY(opened->add(id(0, 2), noise(4, 4, 4, 1), ShareMode::Share)->imageIsShared());
    // Behind a file that has not been asked for its content there is no other state.
    Held late(new SpritesFile);
    late->attach(archive, name);
    late->reload();
    QCOMPARE(late->count(), 2u);
    QVERIFY(!late->undoStack().canUndo());
}

void tst_Sprites::modesSettleThePalette()
{
    Held file(new SpritesFile);
    RGBA table[256] = {};
    table[0] = {0, 0, 0, 0};
    table[1] = {250, 0, 0, 255};
    table[2] = {0, 0, 250, 255};
    Vela::Palette *const given = file->palettes()->add(table, id(1, 0), ShareMode::Share);
    Sprite *const sprite = file->add(id(0, 0), QImage(), ShareMode::Share);
    QVERIFY(sprite->isEmpty());
    sprite->setAxis({4, 6});

    sprite->setImage(noise(8, 8, 8, 1), true, Sprite::Ignore, nullptr, ShareMode::Share);
    QCOMPARE(sprite->palette(), nullptr);
    QCOMPARE(file->palettes()->count(), 1u);

    sprite->setImage(noise(8, 8, 8, 2), true, Sprite::OwnPalette, nullptr, ShareMode::Share);
    QCOMPARE(file->palettes()->count(), 2u);
    QCOMPARE(sprite->palette(), file->palettes()->at(1));
    sprite->setImage(noise(16, 4, 8, 3), false, Sprite::OwnPalette, nullptr, ShareMode::Share);
    QCOMPARE(file->palettes()->count(), 2u);
    QCOMPARE(sprite->axis(), QPoint(8, 3));

    QImage red(2, 1, QImage::Format_ARGB32);
    red.setPixel(0, 0, qRgb(255, 10, 10));
    red.setPixel(1, 0, qRgba(0, 0, 0, 0));
    sprite->setImage(red, true, Sprite::AdaptImage, given, ShareMode::Share);
    QCOMPARE(sprite->palette(), given);
    QCOMPARE(sprite->image().pixelIndex(0, 0), 1);
    QCOMPARE(sprite->image().pixelIndex(1, 0), 0);

    sprite->setImage(noise(4, 4, 4, 5), true, Sprite::SwapPalette, given, ShareMode::Share);
    RGBA now[256];
    QVERIFY(given->colorTable(now));
    QCOMPARE(Vela::toRgb(now[9]), rampTable(1).at(9));
    QCOMPARE(file->palettes()->count(), 2u);

    // An image that is too large for a file changes nothing at all.
    QImage wide = noise(70000, 1, 4, 6);
    wide.setColor(3, qRgb(1, 1, 1));
    const int steps = file->undoStack().count();
    sprite->setImage(wide, true, Sprite::OwnPalette, nullptr, ShareMode::Share);
    QVERIFY(!file->add(id(9, 9), wide, ShareMode::Share));
    QCOMPARE(file->palettes()->count(), 2u);
    QCOMPARE(file->undoStack().count(), steps);
}

void tst_Sprites::palettesAreRemovedWithCare()
{
    Held file(new SpritesFile);
    RGBA table[256] = {};
    for (int i = 0; i < 4; ++i) {
        table[1].r = quint8(i == 2 ? 0 : i); // the third is equal to the first
        Vela::Palette *const own = file->palettes()->add(table, QVariant(), ShareMode::Share);
        file->add(id(0, i), noise(4, 4, 4, quint32(i)), ShareMode::Share)->setPalette(own);
    }
    file->palettes()->removeDuplicates();
    QCOMPARE(file->at(2)->palette(), file->at(0)->palette());
    QCOMPARE(file->at(3)->palette()->index(), file->at(1)->palette()->index() + 1);
    // One that the images brought along is used by nobody.
    const unsigned int count = file->palettes()->count();
    file->palettes()->clearUnused();
    QCOMPARE(file->palettes()->count(), count - 1);
    file->palettes()->remove(file->at(1)->palette()->index());
    QCOMPARE(file->at(1)->palette(), nullptr);
    QCOMPARE(file->at(1)->image().color(200), qRgb(200, 200, 200));
}

void tst_Sprites::cropAndSplit()
{
    Held file(new SpritesFile);
    QImage image(20, 10, QImage::Format_ARGB32);
    image.fill(0);
    QPainter(&image).fillRect(5, 2, 3, 4, QColor(10, 20, 30));
    Sprite *const sprite = file->add(id(2, 0), image, ShareMode::Share);
    sprite->setAxis({10, 9});
    sprite->crop();
    QCOMPARE(sprite->image().size(), QSize(3, 4));
    QCOMPARE(sprite->axis(), QPoint(5, 7));
    const int steps = file->undoStack().count();
    sprite->splitRGB();
    QCOMPARE(file->undoStack().count(), steps + 1);
    QCOMPARE(file->count(), 4u);
    const QRgb channels[] = {qRgb(10, 0, 0), qRgb(0, 20, 0), qRgb(0, 0, 30)};
    for (unsigned int i = 0; i < 3; ++i) {
        QCOMPARE(file->at(i + 1)->image().pixel(1, 1), channels[i]);
        QCOMPARE(file->at(i + 1)->axis(), QPoint(5, 7));
        QCOMPARE(file->at(i + 1)->identifier(), (SubItem{2, int(i) + 1}));
    }
}

void tst_Sprites::identifiers()
{
    Held file(new SpritesFile);
    for (const char *text : {"3,4", "-1_2", " 5 , 6 "})
        QVERIFY(file->add(QString::fromLatin1(text), QImage(), ShareMode::Share));
    QCOMPARE(file->find(0, QStringLiteral("3_4")), 0);
    QCOMPARE(file->find(0, QStringLiteral("-1,2")), 1);
    QCOMPARE(file->find(0, id(5, 6)), 2);
    QCOMPARE(file->find(1, QStringLiteral("3,4")), -1);
    QCOMPARE(file->find(0, QStringLiteral("3")), -1);
    QVERIFY(file->compare(1, 0) < 0);
    QVERIFY(file->compare(2, 0) > 0);
    RGBA table[256] = {};
    Vela::Palette *const last =
        file->palettes()->add(table, id(3, std::numeric_limits<int>::max()), ShareMode::Share);
    QCOMPARE(last->duplicate()->property(QStringLiteral("Identifier")),
             QVariant(QStringLiteral("3,0")));
    // The next number of the last group.
    QCOMPARE(file->add(QStringLiteral("walk"), QImage(), ShareMode::Share)->identifier(),
             (SubItem{5, 7}));
}

void tst_Sprites::brokenFilesStayAsTheyAre()
{
    const QByteArray whole = handmadeFile();
    const int tables = 20 + 3 * 24 + 12 + 2 * 24 + 4;
    QList<QByteArray> broken{QByteArray()};
    for (int size = 1; size < whole.size(); size += size < tables ? 1 : 97)
        broken.append(whole.left(size));
    // One stream in the place of another, with a checksum that is right.
    QByteArray folded = whole;
    folded.replace(20 + 2 * 24, 12, whole.mid(20, 12));
    const quint32_le crc(Vela::CRC32(folded.constData(), size_t(tables) - 4));
    folded.replace(tables - 4, 4, reinterpret_cast<const char *>(&crc), 4);
    broken.append(folded);
    for (int at = 0; at < tables; ++at) {
        broken.append(whole);
        broken.last()[at] = char(broken.last().at(at) ^ 0x41);
    }
    MemoryArchive archive;
    const QString name = QStringLiteral("/b.sprites");
    for (const QByteArray &bytes : qAsConst(broken)) {
        archive.put(name, bytes);
        Held file(new SpritesFile);
        file->attach(archive, name);
        QCOMPARE(file->count(), 0u);
        QCOMPARE(file->messages()->count(Vela::Message::Error), 1);
        QVERIFY(!file->isModified());
        QCOMPARE(bytesOf(*file), bytes);
        QVERIFY(!Held(new SpritesFile)->fromFile(archive, name, 0, nullptr));
        // A change does not put an end to what may be mended yet.
        file->add(id(0, 0), QImage(), ShareMode::Share);
        QVERIFY(!file->toFile(archive, name, 0, nullptr));
        QCOMPARE(archive.content(name), bytes);
        QVERIFY(file->toFile(archive, QStringLiteral("/c.sprites"), 0, nullptr));
        QVERIFY(file->toFile(archive, QStringLiteral("/c.sprites"), 0, nullptr));
    }
}

void tst_Sprites::largeFilesAreReadInTheBackground()
{
    QTemporaryDir folder;
    const QString name = folder.filePath(QStringLiteral("large.sprites"));
    FileSystemArchive &disk = FileSystemArchive::instance();
    Held file(new SpritesFile);
    for (int i = 0; i < 300; ++i)
        file->add(id(i, 0), noise(80, 80, 250, quint32(i % 250)), ShareMode::Share);
    QVERIFY(file->toFile(disk, name, 0, nullptr));
    QVERIFY(QFile(name).size() > 1024 * 1024);
    const QStringList content = contentOf(*file);

    Held large(new SpritesFile);
    QVERIFY(saveWhileLoading(*large, name, 7) && !large->isModified());
    large->undo();
    QCOMPARE(contentOf(*large), content);
    QVERIFY(large->at(250)->imageIsShared());
}

void tst_Sprites::aFileReplacedUnderneathGivesNoGarbage()
{
    QTemporaryDir folder;
    const QString name = folder.filePath(QStringLiteral("large.sprites"));
    FileSystemArchive &disk = FileSystemArchive::instance();
    Held file(new SpritesFile);
    for (int i = 0; i < 200; ++i)
        file->add(id(i, 0), noise(90, 90, 250, quint32(i)), ShareMode::Share);
    QVERIFY(file->toFile(disk, name, 0, nullptr));
    Held large(new SpritesFile);
    QVERIFY(large->fromFile(disk, name, 0, nullptr));
    QFile other(name);
    QVERIFY(other.resize(0));
    QThreadPool::globalInstance()->waitForDone();
    // Each image is what it was, or none, as its reading came in time or not. So are the colours.
    RGBA table[256];
    const bool hasColors = large->palettes()->at(0)->colorTable(table);
    bool isLost = !hasColors;
    for (unsigned int i = 0; i < large->count(); ++i) {
        const QImage image = large->at(i)->image();
        QImage known = file->at(i)->image();
        if (!hasColors)
            known.setColorTable(image.colorTable());
        isLost = isLost || image.isNull();
        QVERIFY(image.isNull() || image == known);
    }
    large->at(0)->setAxis({1, 1});
    QCOMPARE(large->toFile(disk, name, 0, nullptr), !isLost);
}

QTEST_MAIN(tst_Sprites)
#include "tst_sprites.moc"
