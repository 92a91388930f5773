// SPDX-License-Identifier: MIT
#pragma once

#include "sound/soundsample.h"

#include <QtEndian>

#include <limits>

namespace Vela {

/// The most bytes that a sound has: what a byte array holds.
constexpr int LargestData = std::numeric_limits<int>::max() - 64;

/// Returns the number of frames that a sound has in truth.
inline int wholeFrames(const SoundSample &sample)
{
    const int size = frameSize(sample);
    return size > 0 ? int(qMin<qint64>(sample.samples, sample.data.size() / size)) : 0;
}

/// Returns the precision for samples of so many bits, which stand in the upper bits of whole bytes.
constexpr quint16 storedPrecision(quint32 bits)
{
    return quint16(bits == 20 ? bits : (bits + 7) / 8 * 8);
}

/// What stands for 1 in samples of 32 bits.
constexpr float FullScale = 2147483648.0F;

/// Rounds towards zero, to the nearest end where the value is out of range.
inline qint32 clipped(float value, qint32 lowest, qint32 highest)
{
    // As a float the highest of 32 bits becomes a number that is one too large.
    if (value >= float(highest))
        return highest;
    return value > float(lowest) ? qint32(value) : lowest;
}

/// One sample in the bytes of SoundSample::data, as a signed number of so many bytes.
template <int Bytes>
struct SampleBytes;

template <>
struct SampleBytes<1>
{
    static constexpr int Size = 1;
    static qint32 load(const char *from)
    {
        return uchar(*from) - 128;
    }
    static void store(qint32 value, char *to)
    {
        *to = char(value + 128);
    }
};

template <>
struct SampleBytes<2>
{
    static constexpr int Size = 2;
    static qint32 load(const char *from)
    {
        return qFromLittleEndian<qint16>(from);
    }
    static void store(qint32 value, char *to)
    {
        qToLittleEndian(qint16(value), to);
    }
};

template <>
struct SampleBytes<3>
{
    static constexpr int Size = 3;
    static qint32 load(const char *from)
    {
        return qFromLittleEndian<quint16>(from) | qint32(static_cast<signed char>(from[2])) * 65536;
    }
    static void store(qint32 value, char *to)
    {
        qToLittleEndian(quint16(value), to);
        to[2] = char(value >> 16);
    }
};

template <>
struct SampleBytes<4>
{
    static constexpr int Size = 4;
    static qint32 load(const char *from)
    {
        return qFromLittleEndian<qint32>(from);
    }
    static void store(qint32 value, char *to)
    {
        qToLittleEndian(value, to);
    }
};

/// Calls \a job with the SampleBytes that samples of \a precision bits have, and returns what it
/// returns; false where there are none.
template <typename Job>
bool withSampleBytes(unsigned short precision, Job job)
{
    switch (sampleSize(precision)) {
    case 1:
        return job(SampleBytes<1>());
    case 2:
        return job(SampleBytes<2>());
    case 3:
        return job(SampleBytes<3>());
    case 4:
        return job(SampleBytes<4>());
    default:
        return false;
    }
}

} // namespace Vela
