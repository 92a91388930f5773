// SPDX-License-Identifier: MIT
#pragma once

#include "sound/soundsample.h"

#include <QtEndian>

#include <cmath>
#include <random>

/// Sounds that tests and benchmarks read and write.
namespace SampleSound {

/// Noise at full scale.
inline Vela::SoundSample noise(Vela::SampleInfo info)
{
    Vela::SoundSample sound = {info, {}};
    std::mt19937 random(info.channels * 1000 + info.precision);
    sound.data.resize(int(info.samples) * frameSize(info));
    for (char &byte : sound.data)
        byte = char(random());
    return sound;
}

/// Tones of 16 bits at half scale: two in the first channel, one of them only in the others.
inline Vela::SoundSample tones(quint16 channels, quint32 frequency, quint32 frames)
{
    constexpr double turn = 6.283185307179586;
    Vela::SoundSample sound = {{channels, 16, frequency, frames}, {}};
    sound.data.resize(int(frames) * frameSize(sound));
    for (quint32 i = 0; i < frames; ++i) {
        for (quint32 c = 0; c < channels; ++c) {
            const double time = turn * i / frequency;
            const double value = std::sin(330 * time) + (c == 0 ? std::sin(1100 * time) : 0);
            qToLittleEndian(qint16(std::lround(8000 * value)),
                            sound.data.data() + (i * channels + c) * 2);
        }
    }
    return sound;
}

} // namespace SampleSound
