// SPDX-License-Identifier: MIT
#pragma once

#include "sound/samplebounds_p.h"

#include <array>
#include <vector>

namespace Vela {

/// The frames of a sound, which somebody else keeps.
struct SampleView
{
    const char *data;
    quint32 frames;
    quint32 frameSize; ///< bytes
    quint16 channels;
    quint16 precision;

    const char *frame(quint32 index) const
    {
        return data + std::size_t(index) * frameSize;
    }
};

/// Finds the lowest and the highest sample of any range of frames in time that hardly depends on
/// its length: from the bounds of blocks of frames, and of chunks of blocks.
///
/// A chunk knows where it begins, and its blocks count from there. So an edit renews the chunks
/// that it touches, and what lies behind only moves.
class WaveformPyramid
{
public:
    struct Bounds
    {
        std::array<float, SampleBounds::MaxLanes> low;
        std::array<float, SampleBounds::MaxLanes> high;
    };

    /// Notes that frames have changed. Takes no look at them yet.
    void replace(quint32 from, quint32 removed, quint32 inserted);
    /// Looks at all frames that have changed. \a sound stays in use until the next call.
    void repair(const SampleView &sound);
    /// Returns the bounds of a range, which has to hold a frame. Ranges asked for in ascending
    /// order are found fastest.
    Bounds bounds(quint32 from, quint32 to);

private:
    struct Rows
    {
        BoundsRows at(std::size_t position)
        {
            return {low.data() + position, high.data() + position};
        }

        std::vector<char> low;
        std::vector<char> high;
    };

    std::size_t chunkAt(quint32 frame) const;
    void reset(const SampleView &sound);
    void renew(std::size_t chunk);
    void mergeFrames(quint32 from, quint32 to, SampleBounds &bounds) const;
    void mergeRows(Rows &rows, std::size_t from, std::size_t to, SampleBounds &bounds) const;
    bool isWithin(Rows &rows, std::size_t row, const SampleBounds &bounds) const;
    void mergePart(std::size_t chunk, quint32 from, quint32 to, SampleBounds &bounds);

    SampleView m_sound = {};
    const BoundsFormat *m_format = nullptr;
    SampleShape m_shape = {};
    std::size_t m_rowSize = 0; // bytes
    quint32 m_blockFrames = 0;
    quint32 m_chunkFrames = 0;

    std::vector<quint32> m_first; // of each chunk, and behind the last the end of the sound
    std::vector<char> m_known;    // whether the bounds of that chunk are those of its frames
    bool m_allKnown = false;
    Rows m_chunks;
    Rows m_blocks; // as many for each chunk as the largest has
    std::size_t m_lastChunk = 0;
};

} // namespace Vela
