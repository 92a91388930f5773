// SPDX-License-Identifier: MIT
#include "image/imageoperations.h"
#include "image/nearestcolor_p.h"
#include "image/pixels_p.h"

#include <QtEndian>

#include <algorithm>
#include <array>
#include <limits>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace Vela {

namespace {

/// Finds the nearest entries of a palette, alpha included.
class Matcher
{
public:
    explicit Matcher(const RGBA *palette)
        : m_cells(palette, opaqueDistances(palette).data())
        , m_cache(lowestAlpha(palette))
    {
        for (std::size_t i = 0; i < 256; ++i) {
            const RGBA entry = palette[i];
            m_entries[i] = {entry.b, entry.g, entry.r, entry.a};
        }
        m_transparent = lowestAlpha(palette);
    }

    unsigned char find(QRgb color)
    {
        return m_cache.find(color, [this](QRgb rgb) {
            const int alpha = qAlpha(rgb);
            if (alpha == 0)
                return m_transparent;
            return alpha == 255 ? findOpaque(rgb) : findTranslucent(rgb);
        });
    }

private:
    using Entry = std::array<qint16, 4>; ///< blue, green, red, alpha

    static std::array<int, 256> opaqueDistances(const RGBA *palette)
    {
        std::array<int, 256> distances;
        std::transform(palette, palette + 256, distances.begin(),
                       [](RGBA entry) { return (255 - entry.a) * (255 - entry.a); });
        return distances;
    }

    static unsigned char lowestAlpha(const RGBA *palette)
    {
        return static_cast<unsigned char>(
            std::min_element(palette, palette + 256, [](RGBA a, RGBA b) { return a.a < b.a; })
            - palette);
    }

    unsigned char findOpaque(QRgb color);
    unsigned char findTranslucent(QRgb color) const;

    alignas(16) std::array<Entry, 256> m_entries;
    NearestCells m_cells;
    ColorCache m_cache;
    unsigned char m_transparent;
};

/// The lowest of the distances times 256 plus index is the answer.
unsigned char Matcher::findOpaque(QRgb color)
{
    const Candidates candidates = m_cells.candidates(color);
#if defined(__SSE2__)
    const __m128i zero = _mm_setzero_si128();
    const __m128i pixel = _mm_unpacklo_epi8(_mm_cvtsi32_si128(int(color)), zero);
    const __m128i wanted = _mm_unpacklo_epi64(pixel, pixel);
    const auto entry = [this](quint8 index) {
        return _mm_loadl_epi64(reinterpret_cast<const __m128i *>(&m_entries[index]));
    };
    // The sums of two channels each: of blue and green, of red and alpha, of two entries.
    const auto distances = [&](quint8 first, quint8 second) {
        const __m128i difference =
            _mm_sub_epi16(_mm_unpacklo_epi64(entry(first), entry(second)), wanted);
        return _mm_castsi128_ps(_mm_madd_epi16(difference, difference));
    };
    const auto lowest = [](__m128i a, __m128i b) {
        const __m128i lower = _mm_cmplt_epi32(a, b);
        return _mm_or_si128(_mm_and_si128(lower, a), _mm_andnot_si128(lower, b));
    };
    __m128i best = _mm_set1_epi32(std::numeric_limits<int>::max());
    for (int i = 0; i < candidates.count; i += 4) {
        const quint8 *list = candidates.indices + i;
        const __m128 low = distances(list[0], list[1]);
        const __m128 high = distances(list[2], list[3]);
        const __m128i distance =
            _mm_add_epi32(_mm_castps_si128(_mm_shuffle_ps(low, high, _MM_SHUFFLE(2, 0, 2, 0))),
                          _mm_castps_si128(_mm_shuffle_ps(low, high, _MM_SHUFFLE(3, 1, 3, 1))));
        const __m128i bytes = _mm_cvtsi32_si128(qFromUnaligned<int>(list));
        const __m128i index = _mm_unpacklo_epi16(_mm_unpacklo_epi8(bytes, zero), zero);
        best = lowest(best, _mm_or_si128(_mm_slli_epi32(distance, 8), index));
    }
    best = lowest(best, _mm_shuffle_epi32(best, _MM_SHUFFLE(1, 0, 3, 2)));
    best = lowest(best, _mm_shuffle_epi32(best, _MM_SHUFFLE(2, 3, 0, 1)));
    return static_cast<unsigned char>(_mm_cvtsi128_si32(best));
#else
    int best = std::numeric_limits<int>::max();
    for (int i = 0; i < candidates.count; ++i) {
        const quint8 index = candidates.indices[i];
        const Entry &entry = m_entries[index];
        const int red = qRed(color) - entry[2];
        const int green = qGreen(color) - entry[1];
        const int blue = qBlue(color) - entry[0];
        const int alpha = 255 - entry[3];
        const int distance = red * red + green * green + blue * blue + alpha * alpha;
        best = std::min(best, distance << 8 | index);
    }
    return static_cast<unsigned char>(best);
#endif
}

/// Compares the distances times 255, without their truncation; then the first entry of the lowest
/// truncated distance is the answer.
unsigned char Matcher::findTranslucent(QRgb color) const
{
    const int red = qRed(color);
    const int green = qGreen(color);
    const int blue = qBlue(color);
    const int alpha = qAlpha(color);
    std::array<int, 256> distances;
    for (std::size_t i = 0; i < 256; ++i) {
        const Entry &entry = m_entries[i];
        const int r = red - entry[2];
        const int g = green - entry[1];
        const int b = blue - entry[0];
        const int a = alpha - entry[3];
        distances[i] = alpha * (r * r + g * g + b * b) + 255 * a * a;
    }
    int lowest = std::numeric_limits<int>::max();
    for (int distance : distances)
        lowest = std::min(lowest, distance);
    const int bound = (lowest / 255 + 1) * 255;
    const auto first = std::find_if(distances.begin(), distances.end(),
                                    [bound](int distance) { return distance < bound; });
    return static_cast<unsigned char>(first - distances.begin());
}

/// \a colorOf gives the colour of a pixel of the image.
template <typename Pixel, typename ColorOf>
QImage matched(const QImage &image, const RGBA *palette, ColorOf colorOf)
{
    QImage target = makeImage(image.size(), QImage::Format_Indexed8);
    if (target.isNull())
        return target;
    Matcher matcher(palette);
    for (int y = 0; y < image.height(); ++y) {
        const Pixel *source = constPixels<Pixel>(image, y);
        std::transform(source, source + image.width(), pixels<uchar>(target, y),
                       [&](Pixel pixel) { return matcher.find(colorOf(pixel)); });
    }
    return target;
}

/// Returns the colours of a Format_Indexed8 image; what its table does not have is black.
QVector<QRgb> wholeColorTable(const QImage &image)
{
    QVector<QRgb> table = image.colorTable();
    while (table.size() < 256)
        table.append(qRgb(0, 0, 0));
    return table;
}

} // namespace

void adaptImageToPalette(QImage &image, const RGBA *palette)
{
    bool opaque = image.format() != QImage::Format_ARGB32;
    QImage target;
    if (image.format() == QImage::Format_Indexed8) {
        const QVector<QRgb> colors = wholeColorTable(image);
        opaque = std::all_of(colors.begin(), colors.end(),
                             [](QRgb color) { return qAlpha(color) == 255; });
        target = matched<uchar>(image, palette,
                                [table = colors.constData()](uchar index) { return table[index]; });
    } else {
        target = matched<QRgb>(image.convertToFormat(QImage::Format_ARGB32), palette,
                               [](QRgb color) { return color; });
    }
    QVector<QRgb> table(256);
    std::transform(palette, palette + 256, table.begin(), [opaque](RGBA entry) {
        return opaque ? qRgb(entry.r, entry.g, entry.b) : toRgb(entry);
    });
    target.setColorTable(table);
    image = target;
}

} // namespace Vela
