// SPDX-License-Identifier: MIT
#include "image/imageformats.h"
#include "image/spritecodec_p.h"

#include <QtEndian>

#include <utility>

namespace Vela {

namespace {

constexpr int Colors = 32;
constexpr int FarthestCopy = 1024;
constexpr int LongestCopy = 258;
constexpr int FarthestShortCopy = 256;
constexpr int LongestShortCopy = 64;
constexpr int LongestShortRun = 7;
constexpr int LongestRun = 263;

struct Copy
{
    int distance = 0;
    int length = 0; ///< 0 if there is no copy

    bool isShort() const
    {
        return distance <= FarthestShortCopy && length <= LongestShortCopy;
    }
};

/// Positions of equal keys, each linked to the one before. Links reach twice as far as a copy.
template <size_t Keys>
class Chains
{
public:
    Chains()
    {
        m_newest.fill(-1);
    }
    void add(size_t key, qsizetype position)
    {
        m_older[index(position)] = std::exchange(m_newest[key], position);
    }
    qsizetype olderThan(qsizetype position) const
    {
        return m_older[index(position)];
    }

private:
    static size_t index(qsizetype position)
    {
        return size_t(position) % (2 * FarthestCopy);
    }

    std::array<qsizetype, Keys> m_newest;
    std::array<qsizetype, 2 * FarthestCopy> m_older;
};

/// What a copy of the pixels at one place has to be like.
class CopyRules
{
public:
    CopyRules(const uchar *pixels, int limit)
        : m_first(limit > 0 ? runLength(pixels, limit) : 0)
        , m_limit(limit)
    {
        if (m_first == limit)
            return;
        // A copy up to the end of the second run has one change, up to that of the third has two.
        m_second = endOfRun(pixels, m_first);
        const int third = m_second < limit ? endOfRun(pixels, m_second) : limit;
        const bool longRun = m_first >= LongRun || m_second - m_first >= LongRun;
        m_worthLong = longRun ? m_second + 1 : qMin(m_second + LongRun, third + 1);
    }
    /// Returns whether no copy can hold a change of colour.
    bool isOneColor() const
    {
        return m_first == m_limit;
    }
    /// Returns where the colour changes first.
    int change() const
    {
        return m_first;
    }
    int limit() const
    {
        return m_limit;
    }
    /// Returns the least length that is worth it at \a distance.
    int worth(int distance) const
    {
        return distance <= FarthestShortCopy ? m_second : m_worthLong;
    }
    /// A copy over a short distance is long enough for a short packet at the end of the second run,
    /// which the end of the image is, too. A long packet takes three changes, or two changes and a
    /// long run.
    bool isWorth(const Copy &copy) const
    {
        return copy.length >= (copy.isShort() ? m_second : m_worthLong);
    }

private:
    static constexpr int LongRun = 8;

    int endOfRun(const uchar *pixels, int start) const
    {
        return start + runLength(pixels + start, m_limit - start);
    }

    int m_first;
    int m_limit;
    int m_second = 0;
    int m_worthLong = 0;
};

/// Finds earlier pixels that are worth a copy. Such a copy holds a change of colour, so its source
/// has the same change between the same two colours at the same place: only the changes are
/// chained, by their two colours and by the pixels around them.
class CopyFinder
{
public:
    CopyFinder(const uchar *pixels, qsizetype size)
        : m_pixels(pixels)
        , m_size(size)
    {
    }

    /// Returns the nearest of the longest copies for the pixels at \a position, which never
    /// decreases from call to call.
    Copy find(qsizetype position);

private:
    static constexpr int Around = 8;
    static constexpr int HashBits = 10;

    void chainUpTo(qsizetype last);
    template <size_t Keys>
    Copy longest(const Chains<Keys> &chains, qsizetype position, const CopyRules &rules,
                 int enough) const;

    const uchar *m_pixels;
    qsizetype m_size;
    qsizetype m_chained = 1;
    Chains<Colors * Colors> m_pairs;
    /// The last pixel before the change and those behind it.
    Chains<1 << HashBits> m_surroundings;
};

void CopyFinder::chainUpTo(qsizetype last)
{
    for (; m_chained <= last; ++m_chained) {
        const uchar *const before = m_pixels + m_chained - 1;
        if (before[0] == before[1])
            continue;
        m_pairs.add(size_t(before[0] * Colors + before[1]), m_chained);
        if (m_size - m_chained < Around - 1)
            continue;
        // Multiplicative hashing after Knuth, with 2^64 by the golden ratio.
        const quint64 hash = qFromLittleEndian<quint64>(before) * 0x9E3779B97F4A7C15;
        m_surroundings.add(size_t(hash >> (64 - HashBits)), m_chained);
    }
}

// Returns the nearest of the longest copies of a chain, and looks for none longer than is enough.
template <size_t Keys>
Copy CopyFinder::longest(const Chains<Keys> &chains, qsizetype position, const CopyRules &rules,
                         int enough) const
{
    Copy best;
    const uchar *const to = m_pixels + position;
    const qsizetype change = position + rules.change();
    const qsizetype oldest = qMax<qsizetype>(rules.change(), change - FarthestCopy);
    for (qsizetype from = chains.olderThan(change); from >= oldest; from = chains.olderThan(from)) {
        const int distance = int(change - from);
        const int needed = qMax(best.length + 1, rules.worth(distance));
        if (needed > enough)
            break;
        if (to[needed - 1] != to[needed - 1 - distance])
            continue;
        const Copy copy = {distance, equalBytes(to, to - distance, rules.limit())};
        if (copy.length >= needed && rules.isWorth(copy))
            best = copy;
    }
    return best;
}

Copy CopyFinder::find(qsizetype position)
{
    const int limit = int(qMin<qsizetype>(LongestCopy, m_size - position));
    const CopyRules rules(m_pixels + position, limit);
    if (rules.isOneColor())
        return {};
    chainUpTo(position + rules.change());

    // Every copy that reaches over the surroundings of the change is in their chain.
    const int known = rules.change() - 1 + Around;
    if (known <= limit) {
        const Copy copy = longest(m_surroundings, position, rules, limit);
        if (copy.length >= known)
            return copy;
    }
    return longest(m_pairs, position, rules, qMin(limit, known - 1));
}

/// Makes the bytes of the packets.
class PacketWriter
{
public:
    void addRun(uchar color, int length)
    {
        beginPacket(0);
        if (length <= LongestShortRun) {
            m_bytes.push_back(uchar(length << 5 | color));
        } else {
            m_bytes.push_back(color);
            m_bytes.push_back(uchar(length - 8));
        }
    }
    void addCopy(const Copy &copy)
    {
        beginPacket(1);
        if (copy.isShort()) {
            addShortCopy(uint(copy.distance - 1), uint(copy.length - 1));
        } else {
            m_bytes.push_back(uchar((copy.distance - 1) >> 8 << 6));
            m_bytes.push_back(uchar(copy.distance - 1));
            m_bytes.push_back(uchar(copy.length - 3));
        }
    }
    const std::vector<uchar> &bytes() const
    {
        return m_bytes;
    }

private:
    void beginPacket(uint flag)
    {
        if (m_flagBit == 8) {
            m_flagBit = 0;
            m_flags = m_bytes.size();
            m_bytes.push_back(0);
        }
        m_bytes[m_flags] = uchar(m_bytes[m_flags] | flag << m_flagBit++);
    }
    // The last of four takes its distance apart and puts it into the first bytes of all four.
    void addShortCopy(uint distance, uint length)
    {
        m_shortCopies[m_shortCount++] = m_bytes.size();
        m_bytes.push_back(uchar(length));
        if (m_shortCount < m_shortCopies.size()) {
            m_bytes.push_back(uchar(distance));
            return;
        }
        for (size_t i = 0; i < m_shortCount; ++i)
            m_bytes[m_shortCopies[i]] |= uchar(distance << 2 * i & 0xC0);
        m_shortCount = 0;
    }

    std::vector<uchar> m_bytes;
    size_t m_flags = 0; ///< where the flag byte of the present group is
    int m_flagBit = 8;
    std::array<size_t, 4> m_shortCopies;
    size_t m_shortCount = 0;
};

std::vector<uchar> encodeLZ5(const uchar *pixels, qsizetype size, bool useLz)
{
    CopyFinder finder(pixels, size);
    PacketWriter writer;
    for (qsizetype position = 0; position < size;) {
        const Copy copy = useLz ? finder.find(position) : Copy();
        if (copy.length > 0) {
            writer.addCopy(copy);
            position += copy.length;
            continue;
        }
        const int limit = int(qMin<qsizetype>(LongestRun, size - position));
        int run = runLength(pixels + position, limit);
        // A longer run is cut where a copy follows the first seven pixels, which is then found
        // again.
        if (useLz && run > LongestShortRun && finder.find(position + LongestShortRun).length > 0)
            run = LongestShortRun;
        writer.addRun(pixels[position], run);
        position += run;
    }
    return writer.bytes();
}

// Returns whether all colours fit into five bits.
bool fits(const uchar *pixels, qsizetype size)
{
    quint64 bits = 0;
    qsizetype i = 0;
    for (; size - i >= Step; i += Step)
        bits |= qFromLittleEndian<quint64>(pixels + i);
    for (; i < size; ++i)
        bits |= pixels[i];
    return (bits & 0xE0E0E0E0E0E0E0E0) == 0;
}

} // namespace

bool saveLZ5(const QImage &image, QIODevice *device, bool useLz)
{
    const qsizetype rowLength = image.width();
    if (rowLength > image.bytesPerLine())
        return false;
    const JoinedRows pixels(image, rowLength);
    if (!fits(pixels.data(), pixels.size()))
        return false;
    return openDevice(device, QIODevice::WriteOnly)
        && writeBytes(device, encodeLZ5(pixels.data(), pixels.size(), useLz));
}

} // namespace Vela
