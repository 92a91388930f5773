// SPDX-License-Identifier: MIT
#include "sound/waveformpyramid_p.h"

#include <algorithm>
#include <cstring>

namespace Vela {

namespace {

// Small enough that the two ends of a range, which are looked at frame by frame, are read fast;
// large enough that its bounds cost little beside its frames.
constexpr quint32 blockBytes = 1024;
constexpr quint32 chunkBlocks = 16;

/// Makes room for \a count elements in the place of those from \a begin to \a end.
template <typename T>
void resizeRange(std::vector<T> &list, std::size_t begin, std::size_t end, std::size_t count)
{
    const auto at = [&list](std::size_t index) { return list.begin() + std::ptrdiff_t(index); };
    if (count < end - begin)
        list.erase(at(begin + count), at(end));
    else
        list.insert(at(end), count - (end - begin), T());
}

} // namespace

std::size_t WaveformPyramid::chunkAt(quint32 frame) const
{
    const auto behind = std::upper_bound(m_first.begin(), m_first.end() - 1, frame);
    return std::size_t(behind - m_first.begin()) - 1;
}

void WaveformPyramid::replace(quint32 from, quint32 removed, quint32 inserted)
{
    m_allKnown = false;
    if (m_known.empty() || from > m_first.back() || removed > m_first.back() - from)
        return m_known.clear(); // repair() begins anew
    std::size_t begin = chunkAt(from);
    std::size_t end = begin + 1;
    while (m_first[end] < from + removed)
        ++end;
    // A small rest goes to a neighbour, so that the chunks do not become many.
    const auto frames = [&] { return m_first[end] - m_first[begin] - removed + inserted; };
    if (frames() < m_chunkFrames / 2 && end < m_known.size())
        ++end;
    else if (frames() < m_chunkFrames / 2 && begin > 0)
        --begin;

    const quint32 first = m_first[begin];
    const quint64 total = frames();
    const std::size_t count = std::size_t((total + m_chunkFrames - 1) / m_chunkFrames);
    resizeRange(m_first, begin, end, count);
    resizeRange(m_known, begin, end, count);
    for (std::vector<char> *rows : {&m_chunks.low, &m_chunks.high})
        resizeRange(*rows, begin * m_rowSize, end * m_rowSize, count * m_rowSize);
    for (std::vector<char> *rows : {&m_blocks.low, &m_blocks.high})
        resizeRange(*rows, begin * m_rowSize * chunkBlocks, end * m_rowSize * chunkBlocks,
                    count * m_rowSize * chunkBlocks);
    for (std::size_t i = 0; i < count; ++i) {
        m_first[begin + i] = first + quint32(total * i / count);
        m_known[begin + i] = false;
    }
    for (std::size_t i = begin + count; i < m_first.size(); ++i)
        m_first[i] += inserted - removed;
}

void WaveformPyramid::reset(const SampleView &sound)
{
    m_format = &BoundsFormat::of(sound.precision);
    m_shape = m_format->shapeOf(sound.channels, sound.frameSize);
    m_rowSize = m_format->rowSize(m_shape);
    m_blockFrames = std::max<quint32>(blockBytes / sound.frameSize, 16);
    m_chunkFrames = m_blockFrames * chunkBlocks;
    const std::size_t count = (sound.frames + std::size_t(m_chunkFrames) - 1) / m_chunkFrames;
    m_first.resize(count + 1);
    for (std::size_t i = 0; i < count; ++i)
        m_first[i] = quint32(i * m_chunkFrames);
    m_first[count] = sound.frames;
    m_known.assign(count, false);
    for (Rows *rows : {&m_chunks, &m_blocks}) {
        const std::size_t size = m_rowSize * count * (rows == &m_blocks ? chunkBlocks : 1);
        rows->low.resize(size);
        rows->high.resize(size);
    }
}

void WaveformPyramid::repair(const SampleView &sound)
{
    const bool fits = !m_known.empty() && m_first.back() == sound.frames
        && m_sound.channels == sound.channels && m_sound.precision == sound.precision;
    m_sound = sound;
    if (fits && m_allKnown)
        return;
    if (!fits)
        reset(sound);
    for (std::size_t chunk = 0; chunk < m_known.size(); ++chunk)
        if (!m_known[chunk])
            renew(chunk);
    m_allKnown = true;
    m_lastChunk = 0;
}

void WaveformPyramid::renew(std::size_t chunk)
{
    const quint32 first = m_first[chunk];
    const quint32 count = m_first[chunk + 1] - first;
    const std::size_t block = chunk * chunkBlocks;
    m_format->summarize(m_sound.frame(first), count, m_blockFrames, m_shape,
                        m_blocks.at(block * m_rowSize));
    SampleBounds bounds = m_format->nothing;
    mergeRows(m_blocks, block, block + (count + m_blockFrames - 1) / m_blockFrames, bounds);
    const BoundsRows row = m_chunks.at(chunk * m_rowSize);
    std::memcpy(row.low, bounds.low, m_rowSize);
    std::memcpy(row.high, bounds.high, m_rowSize);
    m_known[chunk] = true;
}

void WaveformPyramid::mergeFrames(quint32 from, quint32 to, SampleBounds &bounds) const
{
    m_format->mergeFrames(m_sound.frame(from), to - from, m_shape, bounds);
}

void WaveformPyramid::mergeRows(Rows &rows, std::size_t from, std::size_t to,
                                SampleBounds &bounds) const
{
    m_format->mergeRows(rows.at(from * m_rowSize), to - from, m_shape, bounds);
}

/// Frames of one chunk, of which not all count.
void WaveformPyramid::mergePart(std::size_t chunk, quint32 from, quint32 to, SampleBounds &bounds)
{
    const quint32 first = m_first[chunk];
    const quint32 fromBlock = (from - first + m_blockFrames - 1) / m_blockFrames;
    const bool toEnd = to == m_first[chunk + 1];
    const quint32 toBlock = (to - first + (toEnd ? m_blockFrames - 1 : 0)) / m_blockFrames;
    if (fromBlock >= toBlock)
        return mergeFrames(from, to, bounds);
    mergeFrames(from, first + fromBlock * m_blockFrames, bounds);
    mergeRows(m_blocks, chunk * chunkBlocks + fromBlock, chunk * chunkBlocks + toBlock, bounds);
    if (!toEnd)
        mergeFrames(first + toBlock * m_blockFrames, to, bounds);
}

/// Asks for what the end of a range will need.
void WaveformPyramid::fetchEnd(quint32 end, std::size_t chunk)
{
    if (end >= m_first.back() || end < m_first[chunk])
        return;
    while (m_first[chunk + 1] <= end)
        ++chunk;
    const quint32 block = (end - m_first[chunk]) / m_blockFrames;
    fetch(m_sound.frame(m_first[chunk] + block * m_blockFrames), m_blockFrames * m_shape.stride);
    const BoundsRows rows = m_blocks.at(chunk * chunkBlocks * m_rowSize);
    fetch(rows.low, chunkBlocks * m_rowSize);
    fetch(rows.high, chunkBlocks * m_rowSize);
}

WaveformPyramid::Bounds WaveformPyramid::bounds(quint32 from, quint32 to)
{
    if (from < m_first[m_lastChunk])
        m_lastChunk = chunkAt(from);
    while (m_first[m_lastChunk + 1] <= from)
        ++m_lastChunk;

    SampleBounds bounds = m_format->nothing;
    std::size_t chunk = m_lastChunk;
    if (from > m_first[chunk] || to < m_first[chunk + 1]) {
        mergePart(chunk, from, std::min(to, m_first[chunk + 1]), bounds);
        ++chunk;
    }
    std::size_t behind = chunk;
    while (behind < m_known.size() && m_first[behind + 1] <= to)
        ++behind;
    mergeRows(m_chunks, chunk, behind, bounds);
    if (m_first[behind] < to)
        mergePart(behind, m_first[behind], to, bounds);

    fetchEnd(to + (to - from), behind);
    Bounds decoded = {};
    for (unsigned int lane = 0; lane < m_shape.lanes; ++lane) {
        decoded.low[lane] = m_format->decode(bounds.low + lane * m_format->sampleBytes);
        decoded.high[lane] = m_format->decode(bounds.high + lane * m_format->sampleBytes);
    }
    return decoded;
}

} // namespace Vela
