// SPDX-License-Identifier: MIT
#include "image/pixelscaling.h"

#include <algorithm>
#include <array>
#include <vector>

// Each source pixel is compared with its eight neighbours, and those neighbours that touch at its
// corners with each other: twelve yes or no, the key of the pixel. The published tables say for
// each of the 256 patterns of neighbours how every target pixel is mixed. Two facts make them
// small. They are symmetric: what holds for the top left corner holds, mirrored, for the other
// three, and within a corner across its diagonal. And the three filters tell the same situations of
// a corner apart, here called shapes, and differ only in the weights of each.

namespace Vela {

namespace {

// ---- Keys ----

/// The bits of a key, set where two pixels differ: the centre and the neighbour named, or, in a
/// cut, the two neighbours beside the corner named. The order is the one that keyAt() puts
/// together.
enum KeyBit {
    TopLeft,
    TopLeftCut,
    Top,
    TopRightCut,
    TopRight,
    BottomLeftCut,
    BottomLeft,
    Bottom,
    BottomRight,
    BottomRightCut,
    Left,
    Right,
    KeyBits
};

constexpr int KeyCount = 1 << KeyBits;

/// For each bit of a turned key the bit it comes from.
using Turn = std::array<KeyBit, KeyBits>;

constexpr Turn MirrorAcross = {TopRight,   TopRightCut,    Top,         TopLeftCut,
                               TopLeft,    BottomRightCut, BottomRight, Bottom,
                               BottomLeft, BottomLeftCut,  Right,       Left};
constexpr Turn MirrorDown = {BottomLeft,  BottomLeftCut, Bottom,  BottomRightCut,
                             BottomRight, TopLeftCut,    TopLeft, Top,
                             TopRight,    TopRightCut,   Left,    Right};
constexpr Turn SwapAxes = {TopLeft,     TopLeftCut,     Left,     BottomLeftCut,
                           BottomLeft,  TopRightCut,    TopRight, Right,
                           BottomRight, BottomRightCut, Top,      Bottom};

bool differs(int key, KeyBit bit)
{
    return key >> bit & 1;
}

int turned(int key, const Turn &turn)
{
    int result = 0;
    for (int bit = 0; bit < KeyBits; ++bit)
        result |= int(differs(key, turn[size_t(bit)])) << bit;
    return result;
}

/// Compares a key with the nine pixels of \a pattern, row by row: '#' differs from the centre, '.'
/// does not, anything else is free.
bool matches(int key, const char *pattern)
{
    constexpr std::array<KeyBit, 9> places = {TopLeft, Top,        TopRight, Left,       KeyBits,
                                              Right,   BottomLeft, Bottom,   BottomRight};
    for (size_t i = 0; i < places.size(); ++i) {
        if (pattern[i] == (differs(key, places[i]) ? '.' : '#'))
            return false;
    }
    return true;
}

// ---- Shapes ----

/// What the source looks like at the top left corner of a pixel, or, in half of the cases, what its
/// reflection across the diagonal does. Where it leans to a side that is the left one.
enum Shape {
    Even,       ///< Above and left go on in the centre's colour.
    WallAtLeft, ///< Only above does.
    NookAtLeft, ///< Above and the diagonal do.
    Spur,       ///< Only the diagonal does.
    Sharp,      ///< Nothing does.
    Round,      ///< A colour comes round the corner.
    Blunt,      ///< The same with less of a curve.
    Dent,       ///< The same into a straight side.
    Slope,      ///< The tip of a line of slope two.
    SlopeFoot,  ///< Where that line leaves the centre, at its left.
    ShapeCount
};

/// Of a target pixel, sixteenths from three neighbours. The centre gives the rest.
struct Mix
{
    quint8 diagonal;
    quint8 top;
    quint8 left;
};

/// Places of the target pixels of a corner, in the filters where they are.
enum Place { Corner2, Corner3, Corner4, AlongTop4, AlongLeft4, Inner4, PlaceCount };

using Mixes = std::array<Mix, PlaceCount>;

// A row for each shape, with its places in their order.
constexpr std::array<Mixes, ShapeCount> ShapeMixes = {{
    {{{0, 4, 4}, {0, 4, 4}, {0, 4, 4}, {0, 4, 2}, {0, 2, 4}, {0, 2, 2}}},
    {{{0, 4, 0}, {0, 4, 0}, {0, 6, 0}, {0, 6, 0}, {0, 2, 0}, {0, 2, 0}}},
    {{{4, 4, 0}, {4, 0, 0}, {6, 0, 0}, {2, 4, 0}, {4, 0, 0}, {2, 0, 0}}},
    {{{4, 0, 0}, {4, 0, 0}, {6, 0, 0}, {4, 0, 0}, {4, 0, 0}, {2, 0, 0}}},
    {{{0, 0, 0}, {0, 0, 0}, {0, 0, 0}, {0, 0, 0}, {0, 0, 0}, {0, 0, 0}}},
    {{{0, 4, 4}, {0, 7, 7}, {0, 8, 8}, {0, 8, 0}, {0, 0, 8}, {0, 0, 0}}},
    {{{0, 2, 2}, {0, 4, 4}, {0, 4, 4}, {0, 4, 0}, {0, 0, 4}, {0, 0, 0}}},
    {{{0, 1, 1}, {0, 4, 4}, {0, 4, 4}, {0, 0, 0}, {0, 0, 0}, {0, 0, 0}}},
    {{{0, 6, 6}, {0, 8, 8}, {0, 8, 8}, {0, 8, 4}, {0, 6, 10}, {0, 2, 2}}},
    {{{0, 2, 4}, {0, 4, 4}, {0, 0, 4}, {0, 6, 0}, {0, 0, 12}, {0, 2, 0}}},
}};

/// A shape, and whether its axes are swapped.
struct Corner
{
    Shape shape;
    bool swapped;
};

/// The shape of the corners that match a pattern, and the one where the cut given differs.
struct ShapeRule
{
    const char *pattern;
    Shape shape;
    KeyBit cut = KeyBits;
    Shape cutShape = Sharp;
};

/// The first that matches decides, each rule standing for its reflection across the diagonal too.
/// Together they take every pattern; a search for a short list that does so put them in this order.
constexpr ShapeRule ShapeRules[] = {
    {"..*#o****", NookAtLeft},
    {"*.*.o****", Even},
    {"*.**o**.*", WallAtLeft},
    {"*.*#o**##", WallAtLeft},
    {"##.#o**#*", Round, TopLeftCut, Sharp},
    {"#.*#o.**.", SlopeFoot, BottomLeftCut, WallAtLeft},
    {"####o*#**", Dent, TopLeftCut, Sharp},
    {".##*o##**", Spur},
    {".#*#o#*.#", Blunt, TopLeftCut, Spur},
    {".###o**#.", Blunt, TopLeftCut, Spur},
    {"#.*#o#.#.", WallAtLeft},
    {"***#o..#.", Round, TopLeftCut, Sharp},
    {"##.#o*#.*", Slope, TopLeftCut, Sharp},
    {".###o#.**", Spur},
    {"**.*o*#.*", Slope, TopLeftCut, Spur},
    {"#..#o*##.", WallAtLeft},
    {"#.*#o###.", SlopeFoot, BottomLeftCut, WallAtLeft},
    {".*.#o*..*", Round, TopLeftCut, Spur},
    {".#*#o****", Blunt, TopLeftCut, Spur},
    {"***#o...*", Round, TopLeftCut, Sharp},
};

/// Returns the shape at the top left corner.
Corner cornerOf(int key)
{
    const int swappedKey = turned(key, SwapAxes);
    for (const ShapeRule &rule : ShapeRules) {
        for (const bool swapped : {false, true}) {
            const int turnedKey = swapped ? swappedKey : key;
            if (matches(turnedKey, rule.pattern))
                return {differs(turnedKey, rule.cut) ? rule.cutShape : rule.shape, swapped};
        }
    }
    Q_UNREACHABLE();
}

/// For each key the shape at the top left corner.
using Corners = std::array<Corner, KeyCount>;

/// Returns the sixteenths that the middle of the top edge, which only hq3x has, takes from above.
int topEdgeOf(int key, const Corners &corners)
{
    if (!differs(key, Top))
        return 4;
    // Between two curves the edge stays, but for a pixel open to one lower corner only.
    if (matches(key, "####o###."))
        return differs(key, TopLeftCut) ? 0 : 2;
    if (matches(key, "####o#.##"))
        return differs(key, TopRightCut) ? 0 : 2;
    if (matches(key, "####o#***") || matches(key, ".#.#o#***"))
        return 0;
    const auto fromCorner = [&](int turnedKey) {
        const Corner corner = corners[size_t(turnedKey)];
        switch (corner.shape) {
        case Round:
            return 2;
        case Slope:
            return corner.swapped ? 12 : 4;
        default:
            return 0;
        }
    };
    return std::max(fromCorner(key), fromCorner(turned(key, MirrorAcross)));
}

// ---- Tables ----

/// Corners and edges are listed as top left, top right, bottom left, bottom right, and top, bottom,
/// left, right.
struct KeyEntry
{
    /// Index into Tables::mixes.
    std::array<quint8, 4> corners;
    /// Sixteenths of the neighbour.
    std::array<quint8, 4> edges;
};

struct Tables
{
    std::array<KeyEntry, KeyCount> keys;
    std::array<Mixes, 2 * ShapeCount> mixes;
};

Mixes withAxesSwapped(const Mixes &mixes)
{
    Mixes result = mixes;
    std::swap(result[AlongTop4], result[AlongLeft4]);
    for (Mix &mix : result)
        std::swap(mix.top, mix.left);
    return result;
}

Tables makeTables()
{
    Tables tables;
    for (size_t i = 0; i < ShapeCount; ++i) {
        tables.mixes[2 * i] = ShapeMixes[i];
        tables.mixes[2 * i + 1] = withAxesSwapped(ShapeMixes[i]);
    }
    Corners corners;
    for (int key = 0; key < KeyCount; ++key)
        corners[size_t(key)] = cornerOf(key);
    const auto corner = [&](int turnedKey) {
        const Corner found = corners[size_t(turnedKey)];
        return quint8(2 * found.shape + int(found.swapped));
    };
    const auto edge = [&](int turnedKey) { return quint8(topEdgeOf(turnedKey, corners)); };
    for (int key = 0; key < KeyCount; ++key) {
        const int across = turned(key, MirrorAcross);
        const int down = turned(key, MirrorDown);
        tables.keys[size_t(key)] = {
            {corner(key), corner(across), corner(down), corner(turned(across, MirrorDown))},
            {edge(key), edge(down), edge(turned(key, SwapAxes)), edge(turned(across, SwapAxes))}};
    }
    return tables;
}

const Tables &sharedTables()
{
    static const Tables tables = makeTables();
    return tables;
}

// ---- Comparing ----

/// Returns the brightness and two differences of colour, ten bits each. Alpha takes no part.
quint32 yuvOf(quint32 pixel)
{
    const int r = pixel >> 16 & 255;
    const int g = pixel >> 8 & 255;
    const int b = pixel & 255;
    const int y = (299 * r + 587 * g + 114 * b) / 1000;
    const int u = (-169 * r - 331 * g + 500 * b) / 1000 + 128;
    const int v = (500 * r - 419 * g - 81 * b) / 1000 + 128;
    return quint32(y << 20 | u << 10 | v);
}

/// Tells whether two colours are further apart than 48 in brightness, or 7 or 6 in colour. Each
/// field of a difference keeps its top bit as long as it is not below the negative of its limit.
bool yuvDiffers(quint32 a, quint32 b)
{
    constexpr quint32 kept = 1u << 29 | 1u << 19 | 1u << 9;
    constexpr quint32 limits = 48 << 20 | 7 << 10 | 6;
    return (((a + (kept | limits)) - b) & ((b + (kept | limits)) - a) & kept) != kept;
}

/// What differs between two rows at a column, the diagonals to the next one.
enum Link { Straight = 1, Falling = 2, Rising = 4 };

/// Pixels with sixteen bits a channel, so that mixing four channels is arithmetic on one number.
using WidePixel = quint64;

WidePixel widened(quint32 pixel)
{
    return (pixel & 0x00ff00ffu) | quint64(pixel & 0xff00ff00u) << 24;
}

quint32 narrowed(WidePixel pixel)
{
    return (pixel & 0x00ff00ffu) | (pixel >> 24 & 0xff00ff00u);
}

/// A row of the source. The first and the last pixel stand once more outside of it.
struct Line
{
    explicit Line(int width)
        : pixels(size_t(width) + 2)
        , yuv(pixels.size())
        , beside(pixels.size())
        , below(pixels.size())
    {
    }

    void read(const quint32 *source)
    {
        const size_t width = pixels.size() - 2;
        for (size_t x = 0; x < width; ++x) {
            pixels[x + 1] = widened(source[x]);
            yuv[x + 1] = x > 0 && source[x] == source[x - 1] ? yuv[x] : yuvOf(source[x]);
        }
        pixels.front() = pixels[1];
        pixels.back() = pixels[width];
        yuv.front() = yuv[1];
        yuv.back() = yuv[width];
        for (size_t x = 0; x <= width; ++x)
            beside[x] = yuvDiffers(yuv[x], yuv[x + 1]);
    }

    void compareWith(const Line &next)
    {
        for (size_t x = 0; x + 1 < pixels.size(); ++x) {
            below[x] = quint8(yuvDiffers(yuv[x], next.yuv[x]) * Straight
                              | yuvDiffers(yuv[x], next.yuv[x + 1]) * Falling
                              | yuvDiffers(yuv[x + 1], next.yuv[x]) * Rising);
        }
    }

    std::vector<WidePixel> pixels;
    std::vector<quint32> yuv;
    /// Whether a pixel differs from the next one.
    std::vector<quint8> beside;
    /// The Link bits to the row below.
    std::vector<quint8> below;
};

// ---- Mixing ----

/// Three rows, and what differs between them.
struct Rows
{
    const Line &above;
    const Line &centre;
    const Line &below;

    int keyAt(size_t x) const
    {
        return above.below[x - 1] >> 1 | above.below[x] << Top
            | (centre.below[x - 1] >> 1) << BottomLeftCut | centre.below[x] << Bottom
            | centre.beside[x - 1] << Left | centre.beside[x] << Right;
    }
};

/// The target pixels of one source pixel: Factor rows, \a stride pixels apart.
template <int Factor>
class Block
{
public:
    Block(quint32 *pixels, qptrdiff stride)
        : m_pixels(pixels)
        , m_stride(stride)
    {
    }

    void set(int x, int y, WidePixel pixel)
    {
        m_pixels[y * m_stride + x] = narrowed(pixel);
    }

    void fill(WidePixel pixel)
    {
        for (int y = 0; y < Factor; ++y)
            std::fill_n(m_pixels + y * m_stride, Factor, narrowed(pixel));
    }

private:
    quint32 *m_pixels;
    qptrdiff m_stride;
};

/// What a pixel is mixed from: itself, and the differences of three neighbours from it. Those
/// borrow from channel to channel, which is undone in the sum, where no channel is below 0.
struct Ingredients
{
    WidePixel centre;
    WidePixel diagonal;
    WidePixel top;
    WidePixel left;

    WidePixel mixed(const Mix &mix) const
    {
        return (16 * centre + mix.diagonal * diagonal + mix.top * top + mix.left * left) >> 4;
    }
};

/// Sets the pixels of one corner, of which \a X and \a Y, 0 or 1, say where it is.
template <int Factor, int X, int Y>
void setCorner(Block<Factor> &block, const Ingredients &ingredients, const Mixes &mixes)
{
    const auto set = [&](int x, int y, Place place) {
        block.set(X ? Factor - 1 - x : x, Y ? Factor - 1 - y : y, ingredients.mixed(mixes[place]));
    };
    if constexpr (Factor == 4) {
        set(0, 0, Corner4);
        set(1, 0, AlongTop4);
        set(0, 1, AlongLeft4);
        set(1, 1, Inner4);
    } else {
        set(0, 0, Factor == 2 ? Corner2 : Corner3);
    }
}

template <int Factor>
void scalePixel(Block<Factor> block, const Rows &rows, size_t x, const Tables &tables)
{
    const WidePixel *above = rows.above.pixels.data() + x;
    const WidePixel *centre = rows.centre.pixels.data() + x;
    const WidePixel *below = rows.below.pixels.data() + x;
    const WidePixel topLeft = above[-1] - *centre;
    const WidePixel top = above[0] - *centre;
    const WidePixel topRight = above[1] - *centre;
    const WidePixel left = centre[-1] - *centre;
    const WidePixel right = centre[1] - *centre;
    const WidePixel bottomLeft = below[-1] - *centre;
    const WidePixel bottom = below[0] - *centre;
    const WidePixel bottomRight = below[1] - *centre;
    if (!(topLeft | top | topRight | left | right | bottomLeft | bottom | bottomRight)) {
        block.fill(*centre);
        return;
    }

    const KeyEntry &entry = tables.keys[size_t(rows.keyAt(x))];
    setCorner<Factor, 0, 0>(block, {*centre, topLeft, top, left}, tables.mixes[entry.corners[0]]);
    setCorner<Factor, 1, 0>(block, {*centre, topRight, top, right}, tables.mixes[entry.corners[1]]);
    setCorner<Factor, 0, 1>(block, {*centre, bottomLeft, bottom, left},
                            tables.mixes[entry.corners[2]]);
    setCorner<Factor, 1, 1>(block, {*centre, bottomRight, bottom, right},
                            tables.mixes[entry.corners[3]]);
    if constexpr (Factor == 3) {
        const auto edge = [&](size_t i, WidePixel neighbour) {
            return (16 * *centre + entry.edges[i] * neighbour) >> 4;
        };
        block.set(1, 0, edge(0, top));
        block.set(1, 2, edge(1, bottom));
        block.set(0, 1, edge(2, left));
        block.set(2, 1, edge(3, right));
        block.set(1, 1, *centre);
    }
}

template <int Factor>
void scale(const quint32 *source, int width, int height, quint32 *target, qptrdiff targetStride)
{
    const Tables &tables = sharedTables();
    std::array<Line, 3> lines = {Line(width), Line(width), Line(width)};
    const auto lineAt = [&](int y) -> Line & { return lines[size_t(y + 1) % 3]; };
    const auto read = [&](int y) {
        lineAt(y).read(source + qptrdiff(qBound(0, y, height - 1)) * width);
        if (y >= 0)
            lineAt(y - 1).compareWith(lineAt(y));
    };
    read(-1);
    read(0);
    for (int y = 0; y < height; ++y) {
        read(y + 1);
        const Rows rows = {lineAt(y - 1), lineAt(y), lineAt(y + 1)};
        quint32 *row = target + y * Factor * targetStride;
        for (int x = 0; x < width; ++x)
            scalePixel<Factor>({row + x * Factor, targetStride}, rows, size_t(x) + 1, tables);
    }
}

} // namespace

void scaleHQ(int factor, const quint32 *source, int width, int height, quint32 *target,
             int targetRowBytes)
{
    if (width <= 0 || height <= 0)
        return;
    const qptrdiff stride = targetRowBytes / qptrdiff(sizeof(quint32));
    switch (factor) {
    case 2:
        return scale<2>(source, width, height, target, stride);
    case 3:
        return scale<3>(source, width, height, target, stride);
    case 4:
        return scale<4>(source, width, height, target, stride);
    }
}

} // namespace Vela
