// SPDX-License-Identifier: MIT
#pragma once

#include "frame/export.h"

#include <QtGlobal>

#include <cstddef>

namespace Vela {

/// The lowest and the highest sample of each channel, in numbers whose kind is the format's. Only
/// so many channels are looked at.
struct SampleBounds
{
    static constexpr unsigned int MaxLanes = 8;

    alignas(16) char low[MaxLanes * sizeof(float)];
    alignas(16) char high[MaxLanes * sizeof(float)];
};

/// Rows of bounds: the lowest samples side by side in one place, the highest in another.
struct BoundsRows
{
    char *low;
    char *high;
};

/// Where the samples are that count: the first \a lanes of each frame.
struct SampleShape
{
    std::size_t stride; ///< bytes from frame to frame
    unsigned int lanes;
    unsigned int registers; ///< that hold whole frames; 0 if there are other samples between
};

/// Finds bounds in samples of one precision.
struct VELA_EXPORT BoundsFormat
{
    unsigned int precision;
    unsigned int sampleBytes;   ///< of one in a row
    unsigned int registerCount; ///< samples
    SampleBounds nothing;       ///< the bounds of no frames

    /// Widens the bounds by \a count frames.
    void (*mergeFrames)(const char *frames, std::size_t count, const SampleShape &shape,
                        SampleBounds &bounds);
    /// The same by rows, which have no gaps.
    void (*mergeRows)(BoundsRows rows, std::size_t count, const SampleShape &shape,
                      SampleBounds &bounds);
    /// Tells whether the bounds already hold a row.
    bool (*isWithin)(BoundsRows row, const SampleShape &shape, const SampleBounds &bounds);
    /// Writes a row for each \a size frames, of which the last may be fewer.
    void (*summarize)(const char *frames, std::size_t count, std::size_t size,
                      const SampleShape &shape, BoundsRows rows);
    /// What decodeSample() gives for a sample of a row.
    float (*decode)(const char *sample);

    /// \a precision is one that decodeSample() knows.
    static const BoundsFormat &of(unsigned int precision);
    /// The same, without what only some processors can do.
    static const BoundsFormat &plain(unsigned int precision);

    std::size_t rowSize(const SampleShape &shape) const
    {
        return shape.lanes * sampleBytes;
    }
    SampleShape shapeOf(unsigned int channels, std::size_t frameSize) const;
};

} // namespace Vela
