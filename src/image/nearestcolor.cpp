// SPDX-License-Identifier: MIT
#include "image/nearestcolor_p.h"

#include <algorithm>
#include <limits>
#include <numeric>

namespace Vela {

namespace {

/// The rule of nearestColor() for entries that are offered in ascending order.
class Nearest
{
public:
    explicit Nearest(RGBA color)
        : m_color(color)
    {
    }

    void offer(int index, RGBA entry)
    {
        const int red = entry.r - m_color.r;
        const int green = entry.g - m_color.g;
        const int blue = entry.b - m_color.b;
        const int distance = red * red + green * green + blue * blue;
        const int alpha = entry.a - m_color.a;
        if (distance < m_distance || (distance == m_distance && alpha < m_alpha)) {
            m_distance = distance;
            m_alpha = static_cast<quint8>(alpha);
            m_index = index;
        }
    }

    unsigned char index() const
    {
        return static_cast<unsigned char>(m_index);
    }

private:
    RGBA m_color;
    int m_distance = std::numeric_limits<int>::max();
    int m_alpha = 255; ///< the difference of the entry taken last, as a byte
    int m_index = 0;
};

} // namespace

unsigned char nearestColor(const RGBA *palette, RGBA color)
{
    Nearest nearest(color);
    for (int i = 0; i < 256; ++i)
        nearest.offer(i, palette[i]);
    return nearest.index();
}

NearestCells::NearestCells(const RGBA *palette, const int *extra)
    : m_large(std::size_t(1) << 3 * LargeBits)
    , m_small(std::size_t(1) << 3 * SmallBits)
    , m_indices(256)
{
    for (std::size_t i = 0; i < 256; ++i)
        m_entries[i] = {{palette[i].r, palette[i].g, palette[i].b}, extra ? extra[i] : 0};
    std::iota(m_indices.begin(), m_indices.end(), quint8(0));
}

const NearestCells::Cell &NearestCells::makeSmall(QRgb color)
{
    Cell &large = m_large[cellOf(color, LargeBits)];
    if (!large.count)
        large = make({0, 256}, color, LargeBits);
    Cell &small = m_small[cellOf(color, SmallBits)];
    small = make(large, color, SmallBits);
    return small;
}

/// Leaves an entry out if another one, that which is nearest to the middle of the cell, is nearer
/// to every colour of the cell. How much nearer it is changes evenly along each channel, so that
/// the corner on the side of the entry decides.
NearestCells::Cell NearestCells::make(Cell from, QRgb color, int bits)
{
    const int size = 1 << (8 - bits);
    const int low[3] = {qRed(color) & -size, qGreen(color) & -size, qBlue(color) & -size};
    const auto distance = [&](quint8 index) {
        const Entry &entry = m_entries[index];
        int sum = entry.extra;
        for (int i = 0; i < 3; ++i) {
            const int difference = entry.channels[i] - low[i] - size / 2;
            sum += difference * difference;
        }
        return sum;
    };
    const quint8 *list = m_indices.data() + from.start;
    const Entry &middle = m_entries[*std::min_element(
        list, list + from.count, [&](quint8 a, quint8 b) { return distance(a) < distance(b); })];
    const auto isCandidate = [&](const Entry &entry) {
        int lead = middle.extra - entry.extra;
        for (int i = 0; i < 3; ++i) {
            const int difference = entry.channels[i] - middle.channels[i];
            const int corner = difference > 0 ? low[i] + size - 1 : low[i];
            lead += difference * (2 * corner - entry.channels[i] - middle.channels[i]);
        }
        return lead >= 0;
    };

    Cell cell;
    cell.start = quint32(m_indices.size());
    for (quint32 i = 0; i < from.count; ++i) {
        const quint8 index = m_indices[from.start + i];
        if (isCandidate(m_entries[index]))
            m_indices.push_back(index);
    }
    while ((m_indices.size() - cell.start) % 4 != 0)
        m_indices.push_back(m_indices.back());
    cell.count = quint32(m_indices.size()) - cell.start;
    return cell;
}

PaletteIndex::PaletteIndex(const RGBA *palette)
    : m_cells(palette, nullptr)
    , m_cache(nearestColor(palette, RGBA()))
{
    std::copy(palette, palette + 256, m_palette.begin());
}

unsigned char PaletteIndex::find(RGBA color)
{
    return m_cache.find(toRgb(color), [this, color](QRgb rgb) {
        Nearest nearest(color);
        const Candidates candidates = m_cells.candidates(rgb);
        for (int i = 0; i < candidates.count; ++i) {
            const quint8 index = candidates.indices[i];
            nearest.offer(index, m_palette[index]);
        }
        return nearest.index();
    });
}

} // namespace Vela
