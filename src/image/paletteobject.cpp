// SPDX-License-Identifier: MIT
#include "image/paletteobject.h"

#include "image/nearestcolor_p.h"

#include <algorithm>
#include <cstring>

namespace Vela {

namespace {

constexpr int colorCount = 256;

// Emits changing() now and changed() at the end of its block. A listener may point the object at
// another table on changing(), so the table is looked up behind it.
class Change
{
public:
    explicit Change(PaletteObject *object)
        : m_object(object)
    {
        Q_EMIT m_object->changing();
    }
    ~Change()
    {
        Q_EMIT m_object->changed();
    }

private:
    Q_DISABLE_COPY(Change)

    PaletteObject *m_object;
};

bool isSelected(const bool *mask, int index)
{
    return !mask || mask[index];
}

template <typename Function>
void changeSelected(PaletteObject *object, const bool *mask, Function function)
{
    const Change change(object);
    RGBA(&table)[colorCount] = object->palette();
    for (int i = 0; i < colorCount; ++i) {
        if (isSelected(mask, i))
            function(table[i]);
    }
}

quint8 toByte(int value)
{
    return static_cast<quint8>(qBound(0, value, 255));
}

void addToChannels(RGBA &color, int red, int green, int blue)
{
    color.r = toByte(color.r + red);
    color.g = toByte(color.g + green);
    color.b = toByte(color.b + blue);
}

void setChannels(RGBA &color, int red, int green, int blue)
{
    color = {toByte(red), toByte(green), toByte(blue), color.a};
}

void applyEffectTo(RGBA &color, RGBPaletteEffect effect)
{
    const int sum = color.r + color.g + color.b;
    const int average = sum / 3;
    const int flat = average < 128 ? average + 50 : average - 50;
    switch (effect) {
    case SwapRedBlueEffect:
    case SwapBlueRedEffect:
        return std::swap(color.r, color.b);
    case SwapGreenBlueEffect:
    case SwapBlueGreenEffect:
        return std::swap(color.g, color.b);
    case SwapRedGreenEffect:
    case SwapGreenRedEffect:
        return std::swap(color.r, color.g);
    case BrightenEffect:
        return addToChannels(color, 32, 32, 32);
    case DarkenEffect:
        return addToChannels(color, -32, -32, -32);
    case GrayscaleEffect:
        return setChannels(color, average, average, average);
    case SepiaEffect:
        return setChannels(color, average + 100, average / 2, 0);
    case VioletEffect:
        return setChannels(color, sum / 12 + 60, 0, sum / 6 + 60);
    case FlattenEffect:
        return setChannels(color, flat, flat, flat);
    case WhitenEffect:
        return addToChannels(color, 128, 128, 128);
    case BlackenEffect:
        return addToChannels(color, -128, -128, -128);
    }
}

// The colour number step of count ones that lead from one to the other.
RGBA gradientStep(RGBA from, RGBA to, int step, int count)
{
    if (count == 1)
        return from;
    const auto channel = [step, count](int first, int last) {
        return static_cast<quint8>(first + step * (last - first) / (count - 1));
    };
    return {channel(from.r, to.r), channel(from.g, to.g), channel(from.b, to.b),
            channel(from.a, to.a)};
}

int rgbDistance(RGBA a, RGBA b)
{
    const int red = a.r - b.r;
    const int green = a.g - b.g;
    const int blue = a.b - b.b;
    return red * red + green * green + blue * blue;
}

} // namespace

/// Finds colours in a table that its owner may change at any time.
///
/// A PaletteIndex answers many times as fast as a scan, but to get there it can work as long as
/// thousands of scans do where the colours have little in common. So it comes only behind many
/// scans. Comparing the whole table takes a small part of the time of a scan.
struct PaletteObject::KeptIndex
{
    static constexpr int ScanCount = 1024;

    unsigned char find(const RGBA (&palette)[256], RGBA color)
    {
        if (std::memcmp(palette, table, sizeof table) != 0) {
            std::copy(std::begin(palette), std::end(palette), table);
            scans = 0;
            index.reset();
        }
        if (scans < ScanCount) {
            ++scans;
            return nearestColor(table, color);
        }
        if (!index)
            index = std::make_unique<PaletteIndex>(table);
        return index->find(color);
    }

    RGBA table[256]; ///< the colours that the scans and the index belong to
    int scans = 0;
    std::unique_ptr<PaletteIndex> index;
};

PaletteObject::PaletteObject(RGBA (*palette)[256])
    : m_palette(palette)
    , m_index(std::make_unique<KeptIndex>())
{
}

PaletteObject::~PaletteObject() = default;

PaletteObject &PaletteObject::operator=(RGBA (*palette)[256])
{
    m_palette = palette;
    return *this;
}

RGBA (&PaletteObject::palette())[256]
{
    return *m_palette;
}

RGBA PaletteObject::at(unsigned char index) const
{
    return (*m_palette)[index];
}

RGBA PaletteObject::operator[](unsigned char index) const
{
    return at(index);
}

QColor PaletteObject::colorAt(unsigned char index) const
{
    return QColor::fromRgba(toRgb(at(index)));
}

void PaletteObject::toPalette(RGBA (&palette)[256]) const
{
    std::memmove(palette, *m_palette, sizeof palette);
}

unsigned char PaletteObject::index(RGBA color) const
{
    return m_index->find(*m_palette, color);
}

void PaletteObject::fromPalette(const RGBA *palette)
{
    const Change change(this);
    std::memmove(*m_palette, palette, sizeof *m_palette);
}

void PaletteObject::setColor(unsigned char index, RGBA color)
{
    const Change change(this);
    (*m_palette)[index] = color;
}

void PaletteObject::setColor(const bool *mask, RGBA color)
{
    changeSelected(this, mask, [color](RGBA &entry) { entry = color; });
}

void PaletteObject::addRGB(const bool *mask, short red, short green, short blue)
{
    changeSelected(this, mask, [=](RGBA &entry) { addToChannels(entry, red, green, blue); });
}

void PaletteObject::addHueSaturation(const bool *mask, short hue, short saturation)
{
    changeSelected(this, mask, [=](RGBA &entry) {
        const QColor color(entry.r, entry.g, entry.b);
        const QColor changed =
            QColor::fromHsl(qBound(0, color.hslHue() + hue, 359),
                            toByte(color.hslSaturation() + saturation), color.lightness());
        entry = toRGBA(changed.rgba());
    });
}

void PaletteObject::addColors(const RGBA *colors)
{
    const Change change(this);
    RGBA(&table)[colorCount] = *m_palette;
    int slot = colorCount;
    for (int i = 0; i < colorCount; ++i) {
        const RGBA color = colors[i];
        if (std::find(std::begin(table), std::end(table), color) == std::end(table))
            table[--slot] = color;
    }
}

void PaletteObject::applyEffect(RGBPaletteEffect effect, const bool *mask)
{
    changeSelected(this, mask, [effect](RGBA &entry) { applyEffectTo(entry, effect); });
}

void PaletteObject::gradient(const bool *mask, RGBA from, RGBA to)
{
    int count = 0;
    for (int i = 0; i < colorCount; ++i)
        count += isSelected(mask, i);
    int step = 0;
    changeSelected(this, mask,
                   [=, &step](RGBA &entry) { entry = gradientStep(from, to, step++, count); });
}

void PaletteObject::gradient(unsigned char first, RGBA from, unsigned char last, const RGBA &to)
{
    if (first >= last)
        return;
    bool mask[colorCount] = {};
    std::fill(mask + first, mask + last, true);
    gradient(mask, from, to);
}

void PaletteObject::sortByTones()
{
    const Change change(this);
    RGBA(&table)[colorCount] = *m_palette;
    for (int place = 1; place < colorCount - 1; ++place) {
        const RGBA previous = table[place - 1];
        const auto nearest =
            std::min_element(table + place, std::end(table), [previous](RGBA a, RGBA b) {
                return rgbDistance(a, previous) < rgbDistance(b, previous);
            });
        std::swap(table[place], *nearest);
    }
}

void PaletteObject::switchColors(const bool *mask, bool keepEndAlpha)
{
    const Change change(this);
    RGBA(&table)[colorCount] = *m_palette;
    int low = 0;
    int high = colorCount - 1;
    while (low < high) {
        if (!isSelected(mask, low))
            ++low;
        else if (!isSelected(mask, high))
            --high;
        else
            std::swap(table[low++], table[high--]);
    }
    if (keepEndAlpha)
        std::swap(table[0].a, table[colorCount - 1].a);
}

void PaletteObject::clearDuplicated(RGB fill)
{
    const Change change(this);
    RGBA(&table)[colorCount] = *m_palette;
    for (int i = 1; i < colorCount; ++i) {
        int j = i - 1;
        while (j > 0 && table[j] != table[i])
            --j;
        if (j > 0)
            table[j] = {fill.r, fill.g, fill.b, 255};
    }
}

void PaletteObject::empty()
{
    std::fill(std::begin(*m_palette), std::end(*m_palette), RGBA());
}

} // namespace Vela
