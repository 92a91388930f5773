// SPDX-License-Identifier: MIT
#pragma once

#include "frame/export.h"
#include "image/rgba.h"

#include <array>
#include <vector>

namespace Vela {

/// Returns the nearest of 256 entries by red, green and blue; where several are equally near, alpha
/// decides, then the lower index.
VELA_EXPORT unsigned char nearestColor(const RGBA *palette, RGBA color);

/// Indices of a palette in ascending order. The last one is repeated until there are a multiple of
/// four.
struct Candidates
{
    const quint8 *indices;
    int count;
};

/// For each cell of the colour space, the entries of a palette that can be the nearest to one of
/// its colours. The distance is the sum of the squared differences of red, green and blue and of a
/// number of the entry's own.
///
/// Cells come into being when they are asked for: large ones out of the whole palette, small ones
/// out of the large one around them.
class NearestCells
{
public:
    /// \a extra has a number for each of the 256 entries; null stands for zeros.
    NearestCells(const RGBA *palette, const int *extra);

    /// Valid until the next call.
    Candidates candidates(QRgb color)
    {
        const Cell &cell = m_small[cellOf(color, SmallBits)];
        return cell.count ? listOf(cell) : listOf(makeSmall(color));
    }

private:
    static constexpr int LargeBits = 3;
    static constexpr int SmallBits = 4;

    struct Cell
    {
        quint32 start = 0;
        quint32 count = 0; ///< 0 before the cell is made
    };
    struct Entry
    {
        int channels[3];
        int extra;
    };

    static std::size_t cellOf(QRgb color, int bits)
    {
        const int shift = 8 - bits;
        return std::size_t(((qRed(color) >> shift) << bits | qGreen(color) >> shift) << bits
                           | qBlue(color) >> shift);
    }
    Candidates listOf(const Cell &cell) const
    {
        return {m_indices.data() + cell.start, int(cell.count)};
    }
    const Cell &makeSmall(QRgb color);
    Cell make(Cell from, QRgb color, int bits);

    std::array<Entry, 256> m_entries;
    std::vector<Cell> m_large;
    std::vector<Cell> m_small;
    std::vector<quint8> m_indices; ///< the lists of all cells; the whole palette is the first
};

/// The answers for the colours that were asked for last.
class ColorCache
{
public:
    /// \a zero is the answer for the colour 0.
    explicit ColorCache(unsigned char zero)
        : m_answers(Size, {0, zero})
    {
    }

    template <typename Search>
    unsigned char find(QRgb color, Search search)
    {
        Answer &answer = m_answers[(color * 0x9E3779B1U) >> (32 - Bits)];
        if (answer.color != color)
            answer = {color, search(color)};
        return answer.index;
    }

private:
    static constexpr int Bits = 12;
    static constexpr std::size_t Size = std::size_t(1) << Bits;

    struct Answer
    {
        QRgb color;
        unsigned char index;
    };
    std::vector<Answer> m_answers;
};

/// Answers nearestColor() for many colours of one palette.
class VELA_EXPORT PaletteIndex
{
public:
    /// Copies the 256 entries.
    explicit PaletteIndex(const RGBA *palette);

    unsigned char find(RGBA color);

private:
    std::array<RGBA, 256> m_palette;
    NearestCells m_cells;
    ColorCache m_cache;
};

} // namespace Vela
