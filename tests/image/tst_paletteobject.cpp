// SPDX-License-Identifier: MIT
#include "image/paletteobject.h"

#include "image/plainindex.h"

#include <QTest>

#include <cstring>
#include <functional>
#include <random>

using namespace Vela;

namespace {

using Mutation = std::function<void(PaletteObject &)>;

// A palette whose entries are all different: entry i is (i, 255 - i, 7) with alpha 100.
struct Fixture
{
    Fixture()
    {
        for (int i = 0; i < 256; ++i)
            table[i] = {quint8(i), quint8(255 - i), 7, 100};
    }

    RGBA table[256];
    PaletteObject palette{&table};
};

// A mask of the given entries.
struct Mask
{
    Mask(std::initializer_list<int> entries)
    {
        for (int entry : entries)
            selected[entry] = true;
    }

    bool selected[256] = {};
};

RGBA gray(int value, int alpha = 255)
{
    const auto channel = quint8(value);
    return {channel, channel, channel, quint8(alpha)};
}

QByteArray bytesOf(const RGBA (&table)[256])
{
    return QByteArray(reinterpret_cast<const char *>(table), sizeof table);
}

} // namespace

Q_DECLARE_METATYPE(Mutation)
Q_DECLARE_METATYPE(Vela::RGBA)

namespace Vela {

// For the messages of failed comparisons.
char *toString(const RGBA &color)
{
    return QTest::toString(QString::asprintf("%d,%d,%d,%d", color.r, color.g, color.b, color.a));
}

} // namespace Vela

class TestPaletteObject : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void signalsSurroundChanges_data();
    void signalsSurroundChanges();
    void listenerMayRepointTheObject();
    void readsEntries();
    void effects_data();
    void effects();
    void onlySelectedEntriesChange();
    void addRGBClamps();
    void addHueSaturation_data();
    void addHueSaturation();
    void gradients_data();
    void gradients();
    void addColorsFillsFromTheEnd();
    void indexDecidesTiesByAlpha();
    void indexFollowsChangesOfTheTable();
    void sortByTonesChainsAndExchanges();
    void switchColorsReverses();
    void clearDuplicatedKeepsTheLast();
};

void TestPaletteObject::signalsSurroundChanges_data()
{
    QTest::addColumn<Mutation>("mutation");
    QTest::addColumn<int>("signalPairs");

    const auto row = [](const char *name, int signalPairs, const Mutation &mutation) {
        QTest::newRow(name) << mutation << signalPairs;
    };
    static const RGBA zeros[256] = {};
    static const Mask nothing{};
    row("fromPalette", 1, [](PaletteObject &p) { p.fromPalette(zeros); });
    row("setColor", 1, [](PaletteObject &p) { p.setColor(7, RGBA()); });
    row("setColor of none", 1, [](PaletteObject &p) { p.setColor(nothing.selected, RGBA()); });
    row("addRGB", 1, [](PaletteObject &p) { p.addRGB(nullptr, 1, 2, 3); });
    row("addHueSaturation", 1, [](PaletteObject &p) { p.addHueSaturation(nullptr, 1, 2); });
    row("addColors", 1, [](PaletteObject &p) { p.addColors(zeros); });
    row("addColors, its own", 1, [](PaletteObject &p) { p.addColors(p.palette()); });
    row("applyEffect", 1, [](PaletteObject &p) { p.applyEffect(DarkenEffect, nullptr); });
    row("unknown effect", 1,
        [](PaletteObject &p) { p.applyEffect(RGBPaletteEffect(15), nullptr); });
    row("gradient", 1, [](PaletteObject &p) { p.gradient(nullptr, RGBA(), RGBA()); });
    row("gradient of none", 1, [](PaletteObject &p) { p.gradient(nothing.selected, RGBA(), {}); });
    row("gradient of a range", 1, [](PaletteObject &p) { p.gradient(3, RGBA(), 9, RGBA()); });
    row("gradient of no range", 0, [](PaletteObject &p) { p.gradient(9, RGBA(), 9, RGBA()); });
    row("gradient backwards", 0, [](PaletteObject &p) { p.gradient(9, RGBA(), 3, RGBA()); });
    row("sortByTones", 1, [](PaletteObject &p) { p.sortByTones(); });
    row("switchColors", 1, [](PaletteObject &p) { p.switchColors(nullptr, true); });
    row("clearDuplicated", 1, [](PaletteObject &p) { p.clearDuplicated(RGB()); });
    row("empty", 0, [](PaletteObject &p) { p.empty(); });
    row("fromFile without a file", 0, [](PaletteObject &p) { p.fromFile(nullptr, "ACT"); });
}

void TestPaletteObject::signalsSurroundChanges()
{
    QFETCH(const Mutation, mutation);
    QFETCH(const int, signalPairs);

    Fixture f;
    const QByteArray before = bytesOf(f.table);
    QVector<QByteArray> whenChanging;
    QVector<QByteArray> whenChanged;
    connect(&f.palette, &PaletteObject::changing, this,
            [&] { whenChanging.append(bytesOf(f.table)); });
    connect(&f.palette, &PaletteObject::changed, this,
            [&] { whenChanged.append(bytesOf(f.table)); });
    mutation(f.palette);
    QCOMPARE(whenChanging, QVector<QByteArray>(signalPairs, before));
    QCOMPARE(whenChanged, QVector<QByteArray>(signalPairs, bytesOf(f.table)));
}

// An editor with a history copies the table to a new state on changing() and goes on there.
void TestPaletteObject::listenerMayRepointTheObject()
{
    Fixture f;
    RGBA next[256] = {};
    connect(&f.palette, &PaletteObject::changing, this, [&] {
        f.palette.toPalette(next);
        f.palette = &next;
    });
    const QByteArray before = bytesOf(f.table);
    f.palette.setColor(5, gray(1));
    f.palette.addRGB(Mask{6}.selected, 0, 0, 1);
    QCOMPARE(bytesOf(f.table), before);
    QCOMPARE(next[5], gray(1));
    QCOMPARE(next[6], (RGBA{6, 249, 8, 100}));
}

void TestPaletteObject::readsEntries()
{
    Fixture f;
    const RGBA expected{200, 55, 7, 100};
    QCOMPARE(f.palette.at(200), expected);
    QCOMPARE(f.palette[200], expected);
    QCOMPARE(f.palette.colorAt(200), QColor(200, 55, 7, 100));
    QCOMPARE(&f.palette.palette(), &f.table);
    f.palette.empty();
    QCOMPARE(bytesOf(f.table), QByteArray(1024, '\0'));
}

void TestPaletteObject::effects_data()
{
    QTest::addColumn<RGBA>("color");
    QTest::addColumn<int>("effect");
    QTest::addColumn<RGBA>("expected");

    // Sum 360, average 120.
    const RGBA dark{10, 100, 250, 7};
    const RGBA ofDark[16] = {dark,
                             {250, 100, 10, 7},
                             {10, 250, 100, 7},
                             {100, 10, 250, 7},
                             {10, 250, 100, 7},
                             {100, 10, 250, 7},
                             {250, 100, 10, 7},
                             {42, 132, 255, 7},
                             {0, 68, 218, 7},
                             {120, 120, 120, 7},
                             {220, 60, 0, 7},
                             {90, 0, 120, 7},
                             {170, 170, 170, 7},
                             {138, 228, 255, 7},
                             {0, 0, 122, 7},
                             dark};
    for (int effect = 0; effect < 16; ++effect)
        QTest::addRow("dark %d", effect) << dark << effect << ofDark[effect];
    // Sum 662, average 220: both divisions leave a rest.
    const RGBA bright{200, 221, 241, 0};
    QTest::newRow("bright sepia") << bright << 10 << RGBA{255, 110, 0, 0};
    QTest::newRow("bright violet") << bright << 11 << RGBA{115, 0, 170, 0};
    QTest::newRow("bright flat") << bright << 12 << RGBA{170, 170, 170, 0};
    QTest::newRow("flat below the middle") << gray(127) << 12 << gray(177);
    QTest::newRow("flat at the middle") << gray(128) << 12 << gray(78);
}

void TestPaletteObject::effects()
{
    QFETCH(const RGBA, color);
    QFETCH(const int, effect);
    QFETCH(const RGBA, expected);

    Fixture f;
    f.table[9] = color;
    f.palette.applyEffect(RGBPaletteEffect(effect), nullptr);
    QCOMPARE(f.table[9], expected);
}

void TestPaletteObject::onlySelectedEntriesChange()
{
    const Mask mask{0, 128, 255};
    const Mutation mutations[] = {
        [&](PaletteObject &p) { p.setColor(mask.selected, gray(9)); },
        [&](PaletteObject &p) { p.addRGB(mask.selected, 10, 10, 10); },
        [&](PaletteObject &p) { p.addHueSaturation(mask.selected, 90, -50); },
        [&](PaletteObject &p) { p.applyEffect(GrayscaleEffect, mask.selected); },
        [&](PaletteObject &p) { p.gradient(mask.selected, gray(9), gray(90)); },
    };
    for (const Mutation &mutate : mutations) {
        Fixture f;
        mutate(f.palette);
        for (int i = 0; i < 256; ++i) {
            const RGBA before{quint8(i), quint8(255 - i), 7, 100};
            QCOMPARE(f.table[i] == before, !mask.selected[i]);
        }
    }
}

void TestPaletteObject::addRGBClamps()
{
    Fixture f;
    f.palette.addRGB(nullptr, 10, -10, 300);
    QCOMPARE(f.table[0], (RGBA{10, 245, 255, 100}));
    QCOMPARE(f.table[250], (RGBA{255, 0, 255, 100}));
    f.palette.addRGB(nullptr, -32768, 32767, -249);
    QCOMPARE(f.table[250], (RGBA{0, 255, 6, 100}));
}

// The expected channels come from Python's colorsys.hls_to_rgb(hue / 360, lightness / 255,
// saturation / 255).
void TestPaletteObject::addHueSaturation_data()
{
    QTest::addColumn<RGBA>("color");
    QTest::addColumn<int>("hue");
    QTest::addColumn<int>("saturation");
    QTest::addColumn<RGBA>("expected");

    // Red has the lightness 128, which a channel of 1 stands for.
    const RGBA red{255, 0, 0, 3};
    QTest::newRow("to green") << red << 120 << 0 << RGBA{1, 255, 1, 255};
    QTest::newRow("to blue") << red << 240 << 0 << RGBA{1, 1, 255, 255};
    QTest::newRow("not below 0 degrees") << red << -200 << 0 << RGBA{255, 1, 1, 255};
    QTest::newRow("not beyond 359 degrees") << red << 400 << 0 << RGBA{255, 1, 5, 255};
    QTest::newRow("without saturation") << red << 0 << -300 << gray(128);
    // Grey has no hue, which counts as -1.
    QTest::newRow("grey becomes red") << gray(128) << 1 << 300 << RGBA{255, 1, 1, 255};
}

void TestPaletteObject::addHueSaturation()
{
    QFETCH(const RGBA, color);
    QFETCH(const int, hue);
    QFETCH(const int, saturation);
    QFETCH(const RGBA, expected);

    Fixture f;
    f.table[9] = color;
    f.palette.addHueSaturation(Mask{9}.selected, short(hue), short(saturation));
    QCOMPARE(f.table[9], expected);
}

void TestPaletteObject::gradients_data()
{
    QTest::addColumn<Mutation>("mutation");
    QTest::addColumn<QVector<int>>("entries"); // index, red, green, blue, alpha; and so on

    const RGBA from{0, 10, 255, 100};
    const RGBA to{10, 0, 5, 100};
    const auto row = [](const char *name, const Mutation &mutation, const QVector<int> &entries) {
        QTest::newRow(name) << mutation << entries;
    };
    // 10 / 3 is 3, 20 / 3 is 6, -250 / 3 is -83, -500 / 3 is -166.
    const QVector<int> steps{2,  0,   10,  255, 100, 3, 3,   7, 172, 100, 5, 6,  4,
                             89, 100, 255, 10,  0,   5, 100, 4, 4,   251, 7, 100};
    row(
        "over a mask",
        [=](PaletteObject &p) {
            p.gradient(Mask{2, 3, 5, 255}.selected, from, to);
        },
        steps);
    row("over a range", [=](PaletteObject &p) { p.gradient(2, from, 6, to); },
        {1, 1, 254, 7,  100, 2, 0,  10, 255, 100, 3, 3, 7,   172, 100,
         4, 6, 4,   89, 100, 5, 10, 0,  5,   100, 6, 6, 249, 7,   100});
    row("over one entry", [=](PaletteObject &p) { p.gradient(Mask{8}.selected, from, to); },
        {8, 0, 10, 255, 100});
    row("over a range of one entry", [=](PaletteObject &p) { p.gradient(254, from, 255, to); },
        {254, 0, 10, 255, 100, 255, 255, 0, 7, 100});
    // 255 * 128 / 254 is 128.5.
    row("of all four channels over the longest range",
        [=](PaletteObject &p) { p.gradient(0, RGBA(), 255, gray(255)); },
        {0, 0, 0, 0, 0, 128, 128, 128, 128, 128, 254, 255, 255, 255, 255, 255, 255, 0, 7, 100});
    // The colour is an entry of the table that changes on the way.
    row("to an entry of itself",
        [=](PaletteObject &p) { p.gradient(2, gray(0), 6, p.palette()[2]); },
        {2, 0, 0, 0, 255, 5, 2, 253, 7, 100});
}

void TestPaletteObject::gradients()
{
    QFETCH(const Mutation, mutation);
    QFETCH(const QVector<int>, entries);

    Fixture f;
    mutation(f.palette);
    for (int i = 0; i < entries.size(); i += 5) {
        const auto channel = [&](int n) { return quint8(entries.at(i + n)); };
        QCOMPARE(f.table[entries.at(i)], (RGBA{channel(1), channel(2), channel(3), channel(4)}));
    }
}

void TestPaletteObject::addColorsFillsFromTheEnd()
{
    Fixture f;
    RGBA colors[256];
    f.palette.toPalette(colors);
    // One new colour twice, one that differs by its alpha only, and one that was entry 255, which
    // the first new colour took away.
    std::swap(colors[255], colors[9]);
    colors[3] = colors[4] = gray(50);
    colors[6].a = 1;
    f.palette.addColors(colors);
    QCOMPARE(f.table[255], gray(50));
    QCOMPARE(f.table[254], (RGBA{6, 249, 7, 1}));
    QCOMPARE(f.table[253], (RGBA{255, 0, 7, 100}));
    // Entries 253 and 254 come behind their loss, too.
    QCOMPARE(f.table[252], (RGBA{253, 2, 7, 100}));
    QCOMPARE(f.table[251], (RGBA{254, 1, 7, 100}));
    QCOMPARE(f.table[250], (RGBA{250, 5, 7, 100}));

    // Nothing in common: the whole table in reverse.
    Fixture other;
    for (int i = 0; i < 256; ++i)
        colors[i] = gray(i);
    other.palette.addColors(colors);
    for (int i = 0; i < 256; ++i)
        QCOMPARE(other.table[i], gray(255 - i));
}

void TestPaletteObject::indexDecidesTiesByAlpha()
{
    Fixture f;
    QCOMPARE(f.palette.index(RGBA{40, 215, 7, 0}), 40);
    QCOMPARE(f.palette.index(RGBA{40, 215, 90, 0}), 40);
    QCOMPARE(f.palette.index(RGBA{0, 0, 0, 0}), 127); // 127² + 128², as has 128
    // The alpha differences of equal colours, with that of a colour taken kept as a byte.
    f.palette.setColor(nullptr, gray(0));
    const auto indexOf = [&f](std::initializer_list<int> alphas) {
        int i = 3;
        for (int alpha : alphas)
            f.table[i++] = gray(200, alpha);
        return int(f.palette.index(gray(199, 100)));
    };
    QCOMPARE(indexOf({50, 50}), 4);            // -50, kept as 206; -50
    QCOMPARE(indexOf({150, 120}), 4);          // 50, 20
    QCOMPARE(indexOf({120, 150}), 3);          // 20, then 50
    QCOMPARE(indexOf({120, 120}), 3);          // equal
    QCOMPARE(indexOf({110, 90, 255, 240}), 6); // 10; -10, kept as 246; 155; 140
    QCOMPARE(indexOf({50, 255, 90, 240}), 6);  // -50, kept as 206; 155; -10, as 246; 140
    QCOMPARE(indexOf({50, 255, 255, 255}), 4); // -50, kept as 206; 155; 155 does not beat it
}

// The owner of the table may change it without a word, also behind the object's back.
void TestPaletteObject::indexFollowsChangesOfTheTable()
{
    std::mt19937 random(5);
    // Few values make equal distances, and near colours fall on the same places of a cache.
    const auto randomColor = [&random](unsigned mask) {
        const unsigned number = random() & mask;
        return RGBA{quint8(number), quint8(number >> 8), quint8(number >> 16),
                    quint8(number >> 24)};
    };
    Fixture f;
    RGBA other[256] = {};
    for (unsigned mask : {0xffffffffU, 0xe0e0e0e0U, 0xff0000c0U, 0x0f0f0f0fU}) {
        for (RGBA &color : f.table)
            color = randomColor(mask);
        for (int calls : {5000, 10, 3000}) {
            for (int i = 0; i < calls; ++i) {
                const RGBA color = randomColor(i % 2 ? mask : 0xffffffffU);
                QCOMPARE(int(f.palette.index(color)), plainIndex(f.table, color));
            }
            f.table[random() % 256] = randomColor(mask);
        }
        f.palette = &other;
        QCOMPARE(int(f.palette.index(gray(3))), plainIndex(other, gray(3)));
        f.palette = &f.table;
    }
}

void TestPaletteObject::sortByTonesChainsAndExchanges()
{
    Fixture f;
    f.palette.setColor(nullptr, gray(250, 0));
    // The alpha tells the two of 90 apart. 60 and 40 are equally near to 50, and 60 comes first.
    const RGBA before[] = {gray(50),    gray(90, 1), gray(90, 2),
                           gray(60, 3), gray(40, 4), gray(0, 5)};
    std::copy(std::begin(before), std::end(before), f.table);
    f.palette.sortByTones();
    // 60 exchanges with 90/1, then 40 (20 from 60) with 90/2, then 0 (40 from 40) with 90/1.
    const RGBA after[] = {gray(50), gray(60, 3), gray(40, 4), gray(0, 5), gray(90, 2), gray(90, 1)};
    for (int i = 0; i < 6; ++i)
        QCOMPARE(f.table[i], after[i]);
    QCOMPARE(f.table[6], gray(250, 0));

    f.palette.setColor(nullptr, gray(9));
    for (int i = 0; i < 256; ++i)
        f.table[i].a = quint8(i);
    f.palette.sortByTones();
    for (int i = 0; i < 256; ++i)
        QCOMPARE(f.table[i], gray(9, i));
}

void TestPaletteObject::switchColorsReverses()
{
    const auto reds = [](const Fixture &f, std::initializer_list<int> entries) {
        QVector<int> result;
        for (int entry : entries)
            result.append(f.table[entry].r);
        return result;
    };
    Fixture all;
    all.table[0].a = 11;
    all.table[255].a = 22;
    all.palette.switchColors(nullptr, true);
    for (int i = 0; i < 256; ++i)
        QCOMPARE(int(all.table[i].r), 255 - i);
    QCOMPARE(int(all.table[0].a), 11);
    QCOMPARE(int(all.table[255].a), 22);
    all.palette.switchColors(nullptr, false);
    QCOMPARE(all.table[0], (RGBA{0, 255, 7, 22}));

    Fixture some;
    some.palette.switchColors(Mask{0, 3, 4, 200, 255}.selected, false);
    QCOMPARE(reds(some, {0, 1, 3, 4, 200, 255}), (QVector<int>{255, 1, 200, 4, 3, 0}));

    // One entry has nothing to exchange with; the alpha of the ends does not ask for the mask.
    for (int single : {0, 77, 255}) {
        Fixture f;
        f.table[0].a = 11;
        f.palette.switchColors(Mask{single}.selected, false);
        QCOMPARE(reds(f, {0, 77, 255}), (QVector<int>{0, 77, 255}));
        f.palette.switchColors(Mask{single}.selected, true);
        QCOMPARE(f.table[0], (RGBA{0, 255, 7, 100}));
        QCOMPARE(f.table[255], (RGBA{255, 0, 7, 11}));
    }
}

void TestPaletteObject::clearDuplicatedKeepsTheLast()
{
    Fixture f;
    for (int i : {0, 3, 7, 9, 255})
        f.table[i] = gray(200);
    f.table[30] = gray(200, 254);
    f.palette.clearDuplicated({1, 2, 3});
    const RGBA filled{1, 2, 3, 255};
    for (int i : {3, 7, 9})
        QCOMPARE(f.table[i], filled);
    QCOMPARE(f.table[0], gray(200));
    QCOMPARE(f.table[255], gray(200));
    QCOMPARE(f.table[30], gray(200, 254));
    QCOMPARE(f.table[2], (RGBA{2, 253, 7, 100}));
}

QTEST_GUILESS_MAIN(TestPaletteObject)
#include "tst_paletteobject.moc"
