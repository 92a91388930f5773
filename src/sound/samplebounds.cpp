// SPDX-License-Identifier: MIT
#include "sound/samplebounds_p.h"

#include "sound/samplebytes_p.h"

#include <algorithm>
#include <cstring>
#include <numeric>
#include <utility>

#if defined(__SSE2__)
#include <immintrin.h>
#define VELA_WIDE __attribute__((target("avx2")))
#endif

// Everything here compares samples as numbers, and decodes the two bounds at the end only. That
// gives the bounds of the decoded samples: decodeSample() never falls where the number rises. It is
// a shift of the number by a constant and a product with a positive one, each rounded to the
// nearest value, and rounding keeps the order. So the decoded lowest number is a decoded sample,
// and no decoded sample is lower; the same from above.
//
// Numbers of more than 16 bits are compared as floats, as which they are decoded, too: what they
// are multiplied with is a power of two, so that it makes no difference to round before it.

namespace Vela {

namespace {

/// Samples in the byte order of files that are taken one by one.
template <typename T>
struct Single
{
    using Value = T;
    using Vector = T;
    static constexpr unsigned int bytes = sizeof(T);
    static constexpr unsigned int count = 1;
    static constexpr bool isWide = false;

    static T one(const char *sample)
    {
        return qFromLittleEndian<T>(sample);
    }
    static T load(const char *sample)
    {
        return one(sample);
    }
    static T lower(T a, T b)
    {
        return std::min(a, b);
    }
    static T higher(T a, T b)
    {
        return std::max(a, b);
    }
};

#if defined(__SSE2__)
/// Samples of which as many are taken at once as a register holds.
template <typename T>
struct Register : Single<T>
{
    using Vector = __m128i;
    static constexpr unsigned int count = sizeof(__m128i) / sizeof(T);

    static __m128i load(const char *samples)
    {
        return _mm_loadu_si128(reinterpret_cast<const __m128i *>(samples));
    }

    /// Brings all frames of a register, of which each takes so many bytes, together in its first.
    template <__m128i (*Choose)(__m128i, __m128i)>
    static __m128i fold(__m128i samples, unsigned int frameBytes)
    {
        if (frameBytes <= 8)
            samples = Choose(samples, _mm_srli_si128(samples, 8));
        if (frameBytes <= 4)
            samples = Choose(samples, _mm_srli_si128(samples, 4));
        if (frameBytes <= 2)
            samples = Choose(samples, _mm_srli_si128(samples, 2));
        if (frameBytes <= 1)
            samples = Choose(samples, _mm_srli_si128(samples, 1));
        return samples;
    }
};

struct Bytes : Register<quint8>
{
    static __m128i lower(__m128i a, __m128i b)
    {
        return _mm_min_epu8(a, b);
    }
    static __m128i higher(__m128i a, __m128i b)
    {
        return _mm_max_epu8(a, b);
    }
};

struct Shorts : Register<qint16>
{
    static __m128i lower(__m128i a, __m128i b)
    {
        return _mm_min_epi16(a, b);
    }
    static __m128i higher(__m128i a, __m128i b)
    {
        return _mm_max_epi16(a, b);
    }
};

struct Floats : Register<float>
{
    static __m128i lower(__m128i a, __m128i b)
    {
        return _mm_castps_si128(_mm_min_ps(_mm_castsi128_ps(a), _mm_castsi128_ps(b)));
    }
    static __m128i higher(__m128i a, __m128i b)
    {
        return _mm_castps_si128(_mm_max_ps(_mm_castsi128_ps(a), _mm_castsi128_ps(b)));
    }
};
#else
using Bytes = Single<quint8>;
using Shorts = Single<qint16>;
using Floats = Single<float>;
#endif

struct Longs : Floats
{
    static float one(const char *sample)
    {
        return float(qFromLittleEndian<qint32>(sample));
    }
    static Vector load(const char *samples)
    {
#if defined(__SSE2__)
        return _mm_castps_si128(_mm_cvtepi32_ps(Floats::load(samples)));
#else
        return one(samples);
#endif
    }
};

/// Three bytes, taken as the upper ones of a number.
struct Packed : Floats
{
    static constexpr unsigned int bytes = 3;

    static float one(const char *sample)
    {
        return float(SampleBytes<3>::load(sample) * 256);
    }
    static Vector load(const char *samples)
    {
#if defined(__SSE2__)
        // Two samples are in the first of the eight bytes, and two in the last of the others.
        const __m128i front = _mm_loadl_epi64(reinterpret_cast<const __m128i *>(samples));
        const __m128i back = _mm_loadl_epi64(reinterpret_cast<const __m128i *>(samples + 4));
        const __m128i numbers = _mm_unpacklo_epi64(
            _mm_unpacklo_epi32(_mm_slli_epi64(front, 8), _mm_srli_epi64(front, 16)),
            _mm_unpacklo_epi32(_mm_srli_epi64(back, 8), _mm_srli_epi64(back, 32)));
        return _mm_castps_si128(_mm_cvtepi32_ps(_mm_and_si128(numbers, _mm_set1_epi32(~0xff))));
#else
        return one(samples);
#endif
    }
};

#if defined(VELA_WIDE)
// For processors with registers of twice the size: eight samples as whole numbers, which need not
// become floats before the lowest and the highest are found.
struct WideLongs : Longs
{
    static constexpr bool isWide = true;

    VELA_WIDE static __m256i loadWide(const char *samples)
    {
        return _mm256_loadu_si256(reinterpret_cast<const __m256i *>(samples));
    }
};

struct WidePacked : Packed
{
    static constexpr bool isWide = true;

    VELA_WIDE static __m256i loadWide(const char *samples)
    {
        // Four samples are in the first of the sixteen bytes, and four in the last of the others.
        const __m256i places =
            _mm256_setr_epi8(-1, 0, 1, 2, -1, 3, 4, 5, -1, 6, 7, 8, -1, 9, 10, 11, //
                             -1, 4, 5, 6, -1, 7, 8, 9, -1, 10, 11, 12, -1, 13, 14, 15);
        const __m256i front = _mm256_castsi128_si256(Floats::load(samples));
        const __m128i back = Floats::load(samples + 8);
        return _mm256_shuffle_epi8(_mm256_inserti128_si256(front, back, 1), places);
    }
};
#endif

/// Samples of bounds, to work with.
template <typename T>
struct Values
{
    explicit Values(const SampleBounds &row)
    {
        qFromLittleEndian<T>(row.low, SampleBounds::MaxLanes, low);
        qFromLittleEndian<T>(row.high, SampleBounds::MaxLanes, high);
    }
    void store(SampleBounds &row) const
    {
        qToLittleEndian<T>(low, SampleBounds::MaxLanes, row.low);
        qToLittleEndian<T>(high, SampleBounds::MaxLanes, row.high);
    }
    void take(std::size_t lane, T lowest, T highest)
    {
        low[lane] = std::min(low[lane], lowest);
        high[lane] = std::max(high[lane], highest);
    }

    T low[SampleBounds::MaxLanes];
    T high[SampleBounds::MaxLanes];
};

template <typename T>
SampleBounds boundsOfNothing()
{
    SampleBounds row;
    for (unsigned int lane = 0; lane < SampleBounds::MaxLanes; ++lane) {
        qToLittleEndian(std::numeric_limits<T>::max(), row.low + lane * sizeof(T));
        qToLittleEndian(std::numeric_limits<T>::lowest(), row.high + lane * sizeof(T));
    }
    return row;
}

/// Calls \a job for 0 to below \a Count, each a constant: so a compiler keeps the elements of an
/// array in registers.
template <std::size_t... Index, typename Job>
void each(std::index_sequence<Index...>, [[maybe_unused]] Job job)
{
    (job(std::integral_constant<std::size_t, Index>()), ...);
}

template <std::size_t Count, typename Job>
void each(Job job)
{
    each(std::make_index_sequence<Count>(), job);
}

/// Takes the lowest and the highest samples in registers that hold whole frames.
template <class Samples>
void mergeFolded(typename Samples::Vector low, typename Samples::Vector high, unsigned int lanes,
                 SampleBounds &row)
{
    using Vector = typename Samples::Vector;
    const unsigned int frameBytes = lanes * unsigned(sizeof(typename Samples::Value));
    auto *const rowLow = reinterpret_cast<Vector *>(row.low);
    auto *const rowHigh = reinterpret_cast<Vector *>(row.high);
    *rowLow = Samples::lower(*rowLow, Samples::template fold<Samples::lower>(low, frameBytes));
    *rowHigh = Samples::higher(*rowHigh, Samples::template fold<Samples::higher>(high, frameBytes));
}

/// Takes samples side by side as long as they fill \a Count registers, which hold whole frames.
/// The lowest are looked for in the one place and the highest in the other. Returns how many
/// samples have been taken.
template <class Samples, bool Same, unsigned int Count>
std::size_t mergeRegisters(const char *lows, const char *highs, std::size_t samples,
                           unsigned int lanes, SampleBounds &row)
{
    using Vector = typename Samples::Vector;
    constexpr std::size_t period = Samples::count * Count;
    constexpr std::size_t size = Samples::count * Samples::bytes;
    if (samples < period)
        return 0;
    Vector low[Count];
    Vector high[Count];
    each<Count>([&](auto i) {
        low[i] = Samples::load(lows + i * size);
        high[i] = Samples::load(highs + i * size);
    });
    std::size_t taken = period;
    for (; taken + period <= samples; taken += period) {
        lows += Count * size;
        highs += Count * size;
        each<Count>([&](auto i) {
            const Vector next = Samples::load(lows + i * size);
            low[i] = Samples::lower(low[i], next);
            high[i] = Samples::higher(high[i], Same ? next : Samples::load(highs + i * size));
        });
    }
    if constexpr (Samples::count > 1 && (Count == 1 || Count == 4)) {
        // Each register holds whole frames.
        each<Count - 1>([&](auto i) {
            low[0] = Samples::lower(low[0], low[i + 1]);
            high[0] = Samples::higher(high[0], high[i + 1]);
        });
        mergeFolded<Samples>(low[0], high[0], lanes, row);
    } else {
        typename Samples::Value lowest[period];
        typename Samples::Value highest[period];
        std::memcpy(lowest, low, sizeof(low));
        std::memcpy(highest, high, sizeof(high));
        Values<typename Samples::Value> values(row);
        for (std::size_t i = 0, lane = 0; i < period; ++i) {
            values.take(lane, lowest[i], highest[i]);
            lane = lane + 1 == lanes ? 0 : lane + 1;
        }
        values.store(row);
    }
    return taken;
}

#if defined(VELA_WIDE)
/// The same in one place, and with eight samples at once. A frame has one, two or four.
template <class Samples>
VELA_WIDE std::size_t mergeWide(const char *frames, std::size_t samples, unsigned int lanes,
                                SampleBounds &row)
{
    if (samples < 8)
        return 0;
    __m256i low = Samples::loadWide(frames);
    __m256i high = low;
    std::size_t taken = 8;
    for (; taken + 8 <= samples; taken += 8) {
        const __m256i next = Samples::loadWide(frames + taken * Samples::bytes);
        low = _mm256_min_epi32(low, next);
        high = _mm256_max_epi32(high, next);
    }
    const __m128i lowest =
        _mm_min_epi32(_mm256_castsi256_si128(low), _mm256_extracti128_si256(low, 1));
    const __m128i highest =
        _mm_max_epi32(_mm256_castsi256_si128(high), _mm256_extracti128_si256(high, 1));
    mergeFolded<Floats>(_mm_castps_si128(_mm_cvtepi32_ps(lowest)),
                        _mm_castps_si128(_mm_cvtepi32_ps(highest)), lanes, row);
    return taken;
}
#endif

/// \a Same says that \a lows and \a highs are one.
template <class Samples, bool Same>
void merge(const char *lows, const char *highs, std::size_t count, const SampleShape &shape,
           SampleBounds &row)
{
    const std::size_t samples = count * shape.lanes;
    const auto merged = [&](auto registers, std::size_t from) {
        return from
            + mergeRegisters<Samples, Same, decltype(registers)::value>(
                   lows + from * Samples::bytes, highs + from * Samples::bytes, samples - from,
                   shape.lanes, row);
    };
    std::size_t taken = 0;
    switch (shape.registers) {
    case 1:
        taken = merged(std::integral_constant<unsigned int, 4>(), 0);
        taken = merged(std::integral_constant<unsigned int, 1>(), taken);
        break;
    case 2:
        taken = merged(std::integral_constant<unsigned int, 2>(), 0);
        break;
    case 3:
        taken = merged(std::integral_constant<unsigned int, 3>(), 0);
        break;
    case 5:
        taken = merged(std::integral_constant<unsigned int, 5>(), 0);
        break;
    case 7:
        taken = merged(std::integral_constant<unsigned int, 7>(), 0);
        break;
    default:
        break;
    }
    if (taken == samples)
        return;
    Values<typename Samples::Value> values(row);
    lows += taken * Samples::bytes;
    highs += taken * Samples::bytes;
    for (; taken < samples; taken += shape.lanes, lows += shape.stride, highs += shape.stride)
        for (unsigned int lane = 0; lane < shape.lanes; ++lane)
            values.take(lane, Samples::one(lows + lane * Samples::bytes),
                        Samples::one(highs + lane * Samples::bytes));
    values.store(row);
}

template <class Samples>
void mergeFrames(const char *frames, std::size_t count, const SampleShape &shape,
                 SampleBounds &bounds)
{
#if defined(VELA_WIDE)
    if constexpr (Samples::isWide) {
        if (shape.registers == 1) {
            const std::size_t taken =
                mergeWide<Samples>(frames, count * shape.lanes, shape.lanes, bounds) / shape.lanes;
            frames += taken * shape.stride;
            count -= taken;
        }
    }
#endif
    merge<Samples, true>(frames, frames, count, shape, bounds);
}

template <class Samples>
void mergeRows(BoundsRows rows, std::size_t count, const SampleShape &shape, SampleBounds &bounds)
{
    const SampleShape dense = {shape.lanes * sizeof(typename Samples::Value), shape.lanes,
                               shape.lanes / std::gcd(shape.lanes, Samples::count)};
    merge<Samples, false>(rows.low, rows.high, count, dense, bounds);
}

template <typename T>
bool isWithin(BoundsRows row, const SampleShape &shape, const SampleBounds &bounds)
{
    for (std::size_t at = 0; at < shape.lanes * sizeof(T); at += sizeof(T))
        if (qFromLittleEndian<T>(row.low + at) < qFromLittleEndian<T>(bounds.low + at)
            || qFromLittleEndian<T>(row.high + at) > qFromLittleEndian<T>(bounds.high + at))
            return false;
    return true;
}

/// Copies a row; the usual sizes without a call.
void copyRow(char *to, const char *from, std::size_t size)
{
    switch (size) {
    case 2:
        std::memcpy(to, from, 2);
        break;
    case 4:
        std::memcpy(to, from, 4);
        break;
    case 8:
        std::memcpy(to, from, 8);
        break;
    default:
        std::memcpy(to, from, size);
    }
}

template <class Samples>
void summarize(const char *frames, std::size_t count, std::size_t size, const SampleShape &shape,
               BoundsRows rows)
{
    const SampleBounds nothing = boundsOfNothing<typename Samples::Value>();
    const std::size_t rowSize = shape.lanes * sizeof(typename Samples::Value);
    for (std::size_t from = 0; from < count; from += size) {
        SampleBounds row = nothing;
        const char *const block = frames + from * shape.stride;
        mergeFrames<Samples>(block, std::min(size, count - from), shape, row);
        copyRow(rows.low, row.low, rowSize);
        copyRow(rows.high, row.high, rowSize);
        rows.low += rowSize;
        rows.high += rowSize;
    }
}

template <unsigned int Precision>
float decodeNarrow(const char *sample)
{
    return decodeSample(sample, Precision);
}

template <unsigned int Precision>
float decodeWide(const char *sample)
{
    const float value = qFromLittleEndian<float>(sample);
    char bytes[4];
    // Samples that are rounded up to 2147483648 are decoded to 1 like the highest number.
    qToLittleEndian(value < 2147483648.0F ? qint32(value) : std::numeric_limits<qint32>::max(),
                    bytes);
    return decodeSample(Precision == 32 ? bytes : bytes + 1, Precision);
}

/// \a Samples are those of the sound, and \a Kept those of rows.
template <class Samples, class Kept, unsigned int Precision>
BoundsFormat makeFormat(float (*decoder)(const char *))
{
    using Value = typename Samples::Value;
    return {Precision,
            sizeof(Value),
            Kept::count,
            boundsOfNothing<Value>(),
            mergeFrames<Samples>,
            mergeRows<Kept>,
            isWithin<Value>,
            summarize<Samples>,
            decoder};
}

template <class ThreeBytes, class FourBytes>
const BoundsFormat &formatOf(unsigned int precision)
{
    static const BoundsFormat formats[] = {
        makeFormat<Bytes, Bytes, 8>(decodeNarrow<8>),
        makeFormat<Shorts, Shorts, 16>(decodeNarrow<16>),
        makeFormat<ThreeBytes, Floats, 20>(decodeWide<20>),
        makeFormat<ThreeBytes, Floats, 24>(decodeWide<24>),
        makeFormat<FourBytes, Floats, 32>(decodeWide<32>),
    };
    return *std::find_if(std::begin(formats), std::end(formats) - 1,
                         [precision](const BoundsFormat &f) { return f.precision == precision; });
}

} // namespace

const BoundsFormat &BoundsFormat::of(unsigned int precision)
{
#if defined(VELA_WIDE)
    static const bool hasWide = __builtin_cpu_supports("avx2") != 0;
    if (hasWide)
        return formatOf<WidePacked, WideLongs>(precision);
#endif
    return plain(precision);
}

const BoundsFormat &BoundsFormat::plain(unsigned int precision)
{
    return formatOf<Packed, Longs>(precision);
}

SampleShape BoundsFormat::shapeOf(unsigned int channels, std::size_t frameSize) const
{
    const unsigned int lanes = std::min(channels, SampleBounds::MaxLanes);
    return {frameSize, lanes, lanes == channels ? lanes / std::gcd(lanes, registerCount) : 0};
}

} // namespace Vela
