// SPDX-License-Identifier: MIT
#include "sound/samplebytes_p.h"

#include <samplerate.h>

#include <memory>
#include <new>

namespace Vela {

namespace {

// Interleaved frames as numbers from -1 to 1.
class FloatFrames
{
public:
    FloatFrames() = default;
    // Holds undefined values; is null where memory does not suffice.
    FloatFrames(qint64 frames, int channels)
        : m_values(new (std::nothrow) float[size_t(frames * channels)])
        , m_frames(frames)
        , m_channels(channels)
    {
    }

    bool isNull() const
    {
        return !m_values;
    }
    float *values() const
    {
        return m_values.get();
    }
    qint64 frames() const
    {
        return m_frames;
    }
    qint64 count() const
    {
        return m_frames * m_channels;
    }

    static FloatFrames decoded(const SoundSample &sound);
    // Returns what a converter of frequencies makes of it, null if that fails.
    FloatFrames resampled(double ratio) const;
    bool setChannels(int channels);
    void encode(unsigned short precision, QByteArray *bytes) const;

private:
    std::unique_ptr<float[]> m_values;
    qint64 m_frames = 0;
    int m_channels = 0;
};

FloatFrames FloatFrames::decoded(const SoundSample &sound)
{
    FloatFrames result(sound.samples, sound.channels);
    if (result.isNull())
        return result;
    const char *from = sound.data.constData();
    float *const to = result.values();
    const qint64 count = result.count();
    switch (sound.precision) {
    case 8:
        for (qint64 i = 0; i < count; ++i)
            to[i] = float(uchar(from[i]) / 127.5 - 1.0);
        break;
    case 16:
        src_short_to_float_array(reinterpret_cast<const short *>(from), to, int(count));
        break;
    case 32:
        src_int_to_float_array(reinterpret_cast<const int *>(from), to, int(count));
        break;
    default:
        for (qint64 i = 0; i < count; ++i, from += 3)
            to[i] = float(SampleBytes<3>::load(from) * 256) * 4.656613e-10F;
        break;
    }
    return result;
}

FloatFrames FloatFrames::resampled(double ratio) const
{
    FloatFrames result(qint64(double(m_frames) * ratio), m_channels);
    if (result.isNull())
        return result;
    SRC_DATA job = {};
    job.data_in = values();
    job.data_out = result.values();
    job.input_frames = m_frames;
    job.output_frames = result.m_frames;
    job.src_ratio = ratio;
    if (src_simple(&job, SRC_SINC_BEST_QUALITY, m_channels) != 0)
        return {};
    result.m_frames = job.output_frames_gen;
    return result;
}

bool FloatFrames::setChannels(int channels)
{
    if (m_channels == channels)
        return true;
    if (channels == 1 && m_channels > 1) {
        for (qint64 i = 0; i < m_frames; ++i) {
            const float *const frame = values() + i * m_channels;
            m_values[size_t(i)] = (frame[0] + frame[1]) * 0.5F;
        }
        m_channels = channels;
        return true;
    }
    if (channels != 2 || m_channels != 1)
        return false;
    FloatFrames result(m_frames, channels);
    if (result.isNull())
        return false;
    for (qint64 i = 0; i < m_frames; ++i)
        result.values()[2 * i] = result.values()[2 * i + 1] = values()[i];
    *this = std::move(result);
    return true;
}

// The converter of frequencies can overshoot, so the ends of the range hold.
void FloatFrames::encode(unsigned short precision, QByteArray *bytes) const
{
    char *to = bytes->data();
    const float *const from = values();
    switch (precision) {
    case 8:
        for (qint64 i = 0; i < count(); ++i)
            to[i] = char(uchar((qBound(-1.0F, from[i], 1.0F) + 1.0) * 127.5));
        break;
    case 16:
        src_float_to_short_array(from, reinterpret_cast<short *>(to), int(count()));
        break;
    case 32:
        src_float_to_int_array(from, reinterpret_cast<int *>(to), int(count()));
        break;
    default:
        for (qint64 i = 0; i < count(); ++i, to += 3)
            SampleBytes<3>::store(clipped(from[i] * FullScale, INT32_MIN, INT32_MAX) >> 8, to);
        break;
    }
}

} // namespace

bool resampleSound(SoundSample &sound, SampleInfo target)
{
    if (!isKnownPrecision(sound.precision) || !isKnownPrecision(target.precision)
        || sound.channels == 0 || qint64(sound.samples) * frameSize(sound) > sound.data.size())
        return false;
    const bool keepsFrequency = target.frequency == sound.frequency;
    if (keepsFrequency && target.channels == sound.channels && target.precision == sound.precision)
        return true;
    const double ratio = keepsFrequency ? 1 : double(target.frequency) / sound.frequency;
    if (!src_is_valid_ratio(ratio)
        || qint64(sound.samples * ratio) * frameSize(target) > LargestData)
        return false;

    FloatFrames frames = FloatFrames::decoded(sound);
    if (!keepsFrequency && !frames.isNull())
        frames = frames.resampled(ratio);
    if (frames.isNull() || !frames.setChannels(target.channels))
        return false;
    QByteArray data(int(frames.count()) * sampleSize(target.precision), Qt::Uninitialized);
    frames.encode(target.precision, &data);
    static_cast<SampleInfo &>(sound) = target;
    sound.samples = quint32(frames.frames());
    sound.data = data;
    return true;
}

} // namespace Vela
