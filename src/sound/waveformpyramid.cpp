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
// So many frames of any kind fill whole registers.
constexpr quint32 wholeFrames = 16;

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
    m_blockFrames = std::max<quint32>(blockBytes / sound.frameSize / wholeFrames, 1) * wholeFrames;
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

/// Tells whether the bounds would stay as they are with all that a row stands for.
bool WaveformPyramid::isWithin(Rows &rows, std::size_t row, const SampleBounds &bounds) const
{
    return m_format->isWithin(rows.at(row * m_rowSize), m_shape, bounds);
}

/// Frames of one chunk, of which not all count.
void WaveformPyramid::mergePart(std::size_t chunk, quint32 from, quint32 to, SampleBounds &bounds)
{
    if (isWithin(m_chunks, chunk, bounds))
        return;
    const quint32 first = m_first[chunk];
    const bool toEnd = to == m_first[chunk + 1];
    const quint32 fromBlock = (from - first + m_blockFrames - 1) / m_blockFrames;
    const quint32 toBlock = (to - first + (toEnd ? m_blockFrames - 1 : 0)) / m_blockFrames;
    const std::size_t block = chunk * chunkBlocks;
    if (fromBlock < toBlock)
        mergeRows(m_blocks, block + fromBlock, block + toBlock, bounds);
    // What lies in front of the whole blocks, and behind them.
    const quint32 wholeFrom = std::min(first + fromBlock * m_blockFrames, to);
    const quint32 wholeTo = toEnd ? to : std::max(first + toBlock * m_blockFrames, wholeFrom);
    if (from < wholeFrom && !isWithin(m_blocks, block + fromBlock - 1, bounds))
        mergeFrames(from, wholeFrom, bounds);
    if (wholeTo < to && !isWithin(m_blocks, block + toBlock, bounds))
        mergeFrames(wholeTo, to, bounds);
}

WaveformPyramid::Bounds WaveformPyramid::bounds(quint32 from, quint32 to)
{
    if (from < m_first[m_lastChunk])
        m_lastChunk = chunkAt(from);
    while (m_first[m_lastChunk + 1] <= from)
        ++m_lastChunk;

    // The whole chunks first: often they leave nothing to be found in the others.
    SampleBounds bounds = m_format->nothing;
    const std::size_t begin = m_lastChunk + (from > m_first[m_lastChunk] ? 1 : 0);
    std::size_t end = begin;
    while (end < m_known.size() && m_first[end + 1] <= to)
        ++end;
    mergeRows(m_chunks, begin, end, bounds);
    if (begin > m_lastChunk)
        mergePart(m_lastChunk, from, std::min(to, m_first[begin]), bounds);
    if (m_first[end] < to)
        mergePart(end, m_first[end], to, bounds);

    Bounds decoded = {};
    for (unsigned int lane = 0; lane < m_shape.lanes; ++lane) {
        decoded.low[lane] = m_format->decode(bounds.low + lane * m_format->sampleBytes);
        decoded.high[lane] = m_format->decode(bounds.high + lane * m_format->sampleBytes);
    }
    return decoded;
}

} // namespace Vela
