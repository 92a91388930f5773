// SPDX-License-Identifier: MIT
#include "frame/checksum.h"

#include <QtEndian>
#include <array>
#include <utility>

namespace Vela {

namespace {

// The data is taken in blocks of several words. The bytes of a word are looked up independently of
// each other, and each word of the block has a checksum of its own, which is carried to the same
// word of the next block, so that the words do not wait for each other either. M. E. Kounavis and
// F. L. Berry, "A Systematic Approach to Building High Performance, Software-based, CRC
// Generators", 2005; A. Kadatch and B. Jenkins, "Everything we know about CRC but afraid to
// forget", 2010.
template <typename Crc>
class SlicedCrc
{
public:
    explicit SlicedCrc(Crc polynomial)
    {
        for (unsigned int i = 0; i < 256; ++i) {
            Crc crc = i;
            for (int bit = 0; bit < 8; ++bit)
                crc = (crc >> 1) ^ ((crc & 1) != 0 ? polynomial : 0);
            m_byte[i] = crc;
        }
        for (unsigned int i = 0; i < 256; ++i) {
            Crc crc = m_byte[i];
            for (std::size_t behind = 1; behind < blockSize; ++behind) {
                crc = step(crc, 0);
                if (behind >= blockSize - wordSize)
                    m_carry[blockSize - 1 - behind][i] = crc;
            }
        }
    }

    Crc operator()(const unsigned char *data, std::size_t length) const
    {
        Crc crc = ~Crc(0);
        if (length >= 2 * blockSize) {
            std::array<Crc, wordCount> carried{crc};
            for (; length >= 2 * blockSize; data += blockSize, length -= blockSize)
                carried = nextBlock(carried, data, Words());
            // The last block puts the checksums together.
            crc = 0;
            for (std::size_t word = 0; word < wordCount; ++word)
                crc = bytewise(crc ^ carried[word], data + wordSize * word, wordSize);
            data += blockSize;
            length -= blockSize;
        }
        return bytewise(crc, data, length);
    }

private:
    static constexpr std::size_t wordSize = 8;
    static constexpr std::size_t wordCount = 4;
    static constexpr std::size_t blockSize = wordCount * wordSize;

    using Words = std::make_index_sequence<wordCount>;
    using Bytes = std::make_index_sequence<wordSize>;

    Crc step(Crc crc, unsigned char byte) const
    {
        return m_byte[(byte ^ crc) & 255] ^ (crc >> 8);
    }

    Crc bytewise(Crc crc, const unsigned char *data, std::size_t length) const
    {
        for (; length > 0; ++data, --length)
            crc = step(crc, *data);
        return crc;
    }

    // Written without loops, which are not unrolled at every level of optimisation.
    template <std::size_t... word>
    std::array<Crc, wordCount> nextBlock(const std::array<Crc, wordCount> &carried,
                                         const unsigned char *data,
                                         std::index_sequence<word...>) const
    {
        return {
            carry(qFromLittleEndian<quint64>(data + wordSize * word) ^ carried[word], Bytes())...};
    }

    template <std::size_t... byte>
    Crc carry(quint64 word, std::index_sequence<byte...>) const
    {
        return (m_carry[byte][(word >> (8 * byte)) & 255] ^ ...);
    }

    std::array<Crc, 256> m_byte;
    // The checksum of a byte of a word, carried over all that lies before the same word of the next
    // block.
    std::array<std::array<Crc, 256>, wordSize> m_carry;
};

} // namespace

quint32 CRC32(const char *data, std::size_t length)
{
    static const SlicedCrc<quint32> crc(0xEDB88320);
    return crc(reinterpret_cast<const unsigned char *>(data), length);
}

quint64 CRC64(const unsigned char *data, std::size_t length)
{
    static const SlicedCrc<quint64> crc(Q_UINT64_C(0x95AC9329AC4BC9B5));
    return crc(data, length);
}

} // namespace Vela
