// SPDX-License-Identifier: MIT
#include "image/pixels_p.h"
#include "image/pixelscaling.h"

#include <array>

#ifdef __SSE2__
#include <emmintrin.h>
#endif

// The rules are written once, for a value that is one pixel or as many side by side as a register
// holds. A comparison gives a mask: all bits of a pixel or none.

namespace Vela {

namespace {

/// One pixel.
template <typename Pixel>
struct One
{
    static constexpr int count = 1;

    static One read(const Pixel *pixels)
    {
        return {*pixels};
    }

    /// Writes the columns of one target row.
    template <size_t Factor>
    static void write(Pixel *target, const std::array<One, Factor> &columns)
    {
        for (size_t i = 0; i < Factor; ++i)
            target[i] = columns[i].value;
    }

    friend One equal(One a, One b)
    {
        return {a.value == b.value ? Pixel(~Pixel(0)) : Pixel(0)};
    }

    friend One operator|(One a, One b)
    {
        return {Pixel(a.value | b.value)};
    }

    friend One operator&(One a, One b)
    {
        return {Pixel(a.value & b.value)};
    }

    /// \a a where \a mask has no bits.
    friend One without(One a, One mask)
    {
        return {Pixel(a.value & ~mask.value)};
    }

    Pixel value;
};

#ifdef __SSE2__
/// Pixels side by side.
template <typename Pixel>
struct Many
{
    static constexpr int count = int(sizeof(__m128i) / sizeof(Pixel));

    static Many read(const Pixel *pixels)
    {
        return {_mm_loadu_si128(reinterpret_cast<const __m128i *>(pixels))};
    }

    static void write(Pixel *target, const std::array<Many, 2> &columns)
    {
        const __m128i a = columns[0].value;
        const __m128i b = columns[1].value;
        constexpr bool bytes = sizeof(Pixel) == 1;
        store(target, bytes ? _mm_unpacklo_epi8(a, b) : _mm_unpacklo_epi32(a, b));
        store(target + count, bytes ? _mm_unpackhi_epi8(a, b) : _mm_unpackhi_epi32(a, b));
    }

    static void write(Pixel *target, const std::array<Many, 3> &columns)
    {
        if constexpr (sizeof(Pixel) == 1)
            writeBytes(target, columns);
        else
            writeWords(target, columns[0].value, columns[1].value, columns[2].value);
    }

    static void writeBytes(Pixel *target, const std::array<Many, 3> &columns)
    {
        std::array<std::array<Pixel, count>, 3> pixels;
        for (size_t i = 0; i < 3; ++i)
            store(pixels[i].data(), columns[i].value);
        for (size_t x = 0; x < count; ++x) {
            for (size_t i = 0; i < 3; ++i)
                target[3 * x + i] = pixels[i][x];
        }
    }

    static void writeWords(Pixel *target, __m128i a, __m128i b, __m128i c)
    {
        const __m128i nextA = _mm_srli_si128(a, 4);
        const __m128i a0b0 = _mm_unpacklo_epi32(a, b);
        const __m128i c0a1 = _mm_unpacklo_epi32(c, nextA);
        const __m128i b1c1 = _mm_unpacklo_epi32(_mm_srli_si128(b, 4), _mm_srli_si128(c, 4));
        const __m128i a2b2 = _mm_unpackhi_epi32(a, b);
        const __m128i c2a3 = _mm_unpackhi_epi32(c, nextA);
        const __m128i b3c3 = _mm_srli_si128(_mm_unpackhi_epi32(b, c), 8);
        store(target, _mm_unpacklo_epi64(a0b0, c0a1));
        store(target + count, _mm_unpacklo_epi64(b1c1, a2b2));
        store(target + 2 * count, _mm_unpacklo_epi64(c2a3, b3c3));
    }

    static void store(Pixel *target, __m128i pixels)
    {
        _mm_storeu_si128(reinterpret_cast<__m128i *>(target), pixels);
    }

    friend Many equal(Many a, Many b)
    {
        return {sizeof(Pixel) == 1 ? _mm_cmpeq_epi8(a.value, b.value)
                                   : _mm_cmpeq_epi32(a.value, b.value)};
    }

    friend Many operator|(Many a, Many b)
    {
        return {_mm_or_si128(a.value, b.value)};
    }

    friend Many operator&(Many a, Many b)
    {
        return {_mm_and_si128(a.value, b.value)};
    }

    friend Many without(Many a, Many mask)
    {
        return {_mm_andnot_si128(mask.value, a.value)};
    }

    __m128i value;
};
#else
template <typename Pixel>
using Many = One<Pixel>;
#endif

template <typename Value>
Value choose(Value mask, Value a, Value b)
{
    return (a & mask) | without(b, mask);
}

/// A pixel and its neighbours, named as where the rules were published:
///
///     A B C
///     D E F
///     G H I
template <typename Value>
struct Around
{
    Value a, b, c, d, e, f, g, h, i;
};

/// The target pixels of one source pixel, row by row.
template <typename Value, size_t Factor>
using Block = std::array<std::array<Value, Factor>, Factor>;

/// Which sides that meet at a corner are equal, where opposite sides are not.
template <typename Value>
struct Corners
{
    explicit Corners(const Around<Value> &p)
    {
        const Value plain = equal(p.b, p.h) | equal(p.d, p.f);
        topLeft = without(equal(p.d, p.b), plain);
        topRight = without(equal(p.b, p.f), plain);
        bottomLeft = without(equal(p.d, p.h), plain);
        bottomRight = without(equal(p.h, p.f), plain);
    }

    Value topLeft, topRight, bottomLeft, bottomRight;
};

template <typename Value>
void expand(const Around<Value> &p, Block<Value, 2> &block)
{
    const Corners<Value> corners(p);
    block[0] = {choose(corners.topLeft, p.d, p.e), choose(corners.topRight, p.f, p.e)};
    block[1] = {choose(corners.bottomLeft, p.d, p.e), choose(corners.bottomRight, p.f, p.e)};
}

template <typename Value>
void expand(const Around<Value> &p, Block<Value, 3> &block)
{
    const Corners<Value> corners(p);
    // An edge goes with the corner at an end of it unless the centre goes on past the other end.
    const auto edge = [&](Value side, Value firstCorner, Value pastSecond, Value secondCorner,
                          Value pastFirst) {
        return choose(without(firstCorner, equal(p.e, pastSecond))
                          | without(secondCorner, equal(p.e, pastFirst)),
                      side, p.e);
    };
    block[0] = {choose(corners.topLeft, p.d, p.e),
                edge(p.b, corners.topLeft, p.c, corners.topRight, p.a),
                choose(corners.topRight, p.f, p.e)};
    block[1] = {edge(p.d, corners.topLeft, p.g, corners.bottomLeft, p.a), p.e,
                edge(p.f, corners.topRight, p.i, corners.bottomRight, p.c)};
    block[2] = {choose(corners.bottomLeft, p.d, p.e),
                edge(p.h, corners.bottomLeft, p.i, corners.bottomRight, p.g),
                choose(corners.bottomRight, p.f, p.e)};
}

/// One enlargement of an image with pixels of the type Pixel.
template <typename Pixel, size_t Factor>
class Enlargement
{
public:
    Enlargement(const QImage &source, QImage &target)
        : m_source(source)
        , m_width(source.width())
        , m_height(source.height())
        , m_target(target.bits())
        , m_targetRowBytes(target.bytesPerLine())
    {
    }

    void run()
    {
        for (int y = 0; y < m_height; ++y) {
            setAtBorder(0, y);
            int x = 1;
            if (y > 0 && y < m_height - 1) {
                x = setInside<Many<Pixel>>(x, y);
                x = setInside<One<Pixel>>(x, y);
            }
            for (; x < m_width; ++x)
                setAtBorder(x, y);
        }
    }

private:
    const Pixel *sourceRow(int y) const
    {
        return reinterpret_cast<const Pixel *>(m_source.constScanLine(y));
    }

    /// A neighbour outside of the image counts as the pixel itself.
    void setAtBorder(int x, int y)
    {
        const auto at = [&](int dx, int dy) -> One<Pixel> {
            const bool inside = x + dx >= 0 && x + dx < m_width && y + dy >= 0 && y + dy < m_height;
            return {inside ? sourceRow(y + dy)[x + dx] : sourceRow(y)[x]};
        };
        setBlock<One<Pixel>>(x, y,
                             {at(-1, -1), at(0, -1), at(1, -1), at(-1, 0), at(0, 0), at(1, 0),
                              at(-1, 1), at(0, 1), at(1, 1)});
    }

    /// Goes on from \a x as long as a whole value is inside of the border, and returns where it
    /// stopped.
    template <typename Value>
    int setInside(int x, int y)
    {
        const Pixel *above = sourceRow(y - 1);
        const Pixel *row = sourceRow(y);
        const Pixel *below = sourceRow(y + 1);
        for (; x + Value::count < m_width; x += Value::count) {
            setBlock<Value>(
                x, y,
                {Value::read(above + x - 1), Value::read(above + x), Value::read(above + x + 1),
                 Value::read(row + x - 1), Value::read(row + x), Value::read(row + x + 1),
                 Value::read(below + x - 1), Value::read(below + x), Value::read(below + x + 1)});
        }
        return x;
    }

    template <typename Value>
    void setBlock(int x, int y, const Around<Value> &around)
    {
        Block<Value, Factor> block;
        expand(around, block);
        for (size_t i = 0; i < Factor; ++i) {
            uchar *row = m_target + (qptrdiff(y) * Factor + i) * m_targetRowBytes;
            Value::write(reinterpret_cast<Pixel *>(row) + x * Factor, block[i]);
        }
    }

    const QImage &m_source;
    int m_width;
    int m_height;
    uchar *m_target;
    qptrdiff m_targetRowBytes;
};

template <typename Pixel>
void enlarge(const QImage &source, QImage &target, int factor)
{
    if (factor == 2)
        Enlargement<Pixel, 2>(source, target).run();
    else
        Enlargement<Pixel, 3>(source, target).run();
}

} // namespace

QImage scaleEPX(const QImage &image, int factor)
{
    if (factor != 2 && factor != 3)
        return {};
    QImage target = makeEnlargedImage(image.size(), factor, image.format());
    if (target.isNull())
        return {};
    switch (image.depth()) {
    case 8:
        enlarge<quint8>(image, target, factor);
        return target;
    case 32:
        enlarge<quint32>(image, target, factor);
        return target;
    default:
        return {};
    }
}

} // namespace Vela
