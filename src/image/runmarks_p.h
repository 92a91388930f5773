// SPDX-License-Identifier: MIT
#pragma once

#include <QtEndian>

#ifdef __SSE2__
#include <emmintrin.h>
#endif

namespace Vela {

/// Bytes of a stream of runs that are looked at together.
constexpr int Block = 64;

/// Returns a bit for each byte of a block whose top two bits are 01, the first byte in bit 0. This
/// is for processors without vectors.
inline quint64 markedBytesOfWords(const uchar *block)
{
    quint64 marked = 0;
    for (int i = 0; i < Block; i += 8) {
        const quint64 word = qFromLittleEndian<quint64>(block + i);
        const quint64 marks = word & ~(word >> 1) & 0x4040404040404040;
        // The factor takes the mark of byte n to bit 56 + n.
        marked |= (marks >> 6) * 0x0102040810204080 >> 56 << i;
    }
    return marked;
}

#ifdef __SSE2__
/// The same, sixteen bytes at once.
inline quint64 markedBytes(const uchar *block)
{
    quint64 marked = 0;
    for (int i = 0; i < Block; i += 16) {
        const __m128i bytes = _mm_loadu_si128(reinterpret_cast<const __m128i *>(block + i));
        const __m128i top = _mm_and_si128(bytes, _mm_set1_epi8(char(0xC0)));
        const __m128i marks = _mm_cmpeq_epi8(top, _mm_set1_epi8(0x40));
        marked |= quint64(uint(_mm_movemask_epi8(marks))) << i;
    }
    return marked;
}
#else
inline quint64 markedBytes(const uchar *block)
{
    return markedBytesOfWords(block);
}
#endif

/// Returns which of the \a marked bytes begin a run, where the first byte of the block is no value
/// of a run. Of marked bytes in a row the first, third and so on begin one, the others are values.
/// One subtraction tells them apart in all rows, since its borrow ends with each row. This is how
/// the JSON parser simdjson finds escaped characters.
inline quint64 runStarts(quint64 marked)
{
    constexpr quint64 OddBits = 0xAAAAAAAAAAAAAAAA;
    return (((marked << 1 | OddBits) - marked) ^ OddBits) & marked;
}

} // namespace Vela
