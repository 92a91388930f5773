// SPDX-License-Identifier: MIT
#pragma once

#include "frame/export.h"

#include <QByteArray>

namespace Vela {

/// Form and length of a sound.
struct SampleInfo
{
    quint16 channels = 0;
    quint16 precision = 1; ///< bits of a sample: 8, 16, 20, 24 or 32
    quint32 frequency = 0; ///< frames per second
    quint32 samples = 0;   ///< number of frames, that is samples of each channel
};

/// A sound in memory.
struct SoundSample : SampleInfo
{
    /// What a player does with a sound.
    enum State { Playing = 0, Looping = 1, Paused = 2, Stopped = 3 };

    /// The frames, channel by channel in each: samples in little-endian order, of 8 bits unsigned
    /// and centred on 128, of more bits signed. Samples of 20 and 24 bits take three bytes.
    QByteArray data;
};

/// What soundFileExtension() returns.
enum SoundExtensionType {
    AllSounds = 0,  ///< the patterns of all sounds, to follow a label
    LoadSounds = 1, ///< a filter for each format that can be read
    SaveSounds = 2  ///< a filter for each format that can be written
};

/// Returns the bytes that a sample of \a precision bits takes.
constexpr int sampleSize(unsigned short precision)
{
    return (precision + 7) / 8;
}

/// Returns the bytes that a frame of a sound takes.
constexpr int frameSize(const SampleInfo &info)
{
    return info.channels * sampleSize(info.precision);
}

/// Returns whether both have the same form and length.
constexpr bool isSame(const SampleInfo &a, const SampleInfo &b)
{
    return a.channels == b.channels && a.precision == b.precision && a.frequency == b.frequency
        && a.samples == b.samples;
}

/// Tells whether decodeSample() and its like know samples of so many bits.
constexpr bool isKnownPrecision(unsigned int bits)
{
    return bits == 8 || bits == 16 || bits == 20 || bits == 24 || bits == 32;
}

// One sample of \a precision bits, in the bytes that SoundSample::data has for it. What is written
// is rounded towards zero; where it takes three bytes that is at 32 bits, of which the lowest eight
// are cut off.

/// Returns a sample as a number from -1 to just below 1.
VELA_EXPORT float decodeSample(const void *sample, unsigned short precision);
/// Writes a number as a sample. Nothing is clipped: \a value has to be from -1 to below 1.
VELA_EXPORT void encodeSample(float value, void *sample, unsigned short precision);
/// Writes the sample \a in times \a factor, clipped. Both may be the same.
VELA_EXPORT void scaleSample(void *out, const void *in, float factor, unsigned short precision);

/// Gives a sound the frequency, the channels and the precision of \a target; how many frames it
/// has then follows from the frequencies. One channel becomes two; the first two become one.
/// Returns false, and leaves the sound as it was, where that cannot be done.
VELA_EXPORT bool resampleSound(SoundSample &sound, SampleInfo target);

} // namespace Vela
