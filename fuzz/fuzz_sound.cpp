// SPDX-License-Identifier: MIT
// Reads arbitrary bytes as a sound of one format: the sound has the frames that it says, no more
// than the input can account for, and what was read can be written and read again.
#include "require.h"

#include "sound/soundformats.h"

#include <QBuffer>

#include <cstdint>

namespace {

// What an encoder of a format makes of silence: a frame of FLAC with 65535 samples of each of eight
// channels takes about 40 bytes.
constexpr qint64 largestRatio = 65535 * 8 * 4 / 40;
// Silence that a WAV file promises.
constexpr qint64 mostSilence = 16 * 1024 * 1024;

constexpr size_t mostInput = 4096;
constexpr int mostToWrite = 100000;

Vela::SoundSample again(const Vela::SoundSample &sound, const char *format)
{
    QBuffer buffer;
    if (!Vela::saveSound(&buffer, format, sound))
        return {};
    buffer.close();
    Vela::SoundSample read;
    Vela::loadSound(&buffer, format, read);
    return read;
}

void checkLossless(const Vela::SoundSample &sound, const char *format)
{
    const Vela::SoundSample read = again(sound, format);
    // Not each format has all channels and frequencies.
    if (read.channels == 0)
        return;
    require(read.channels == sound.channels && read.precision == sound.precision);
    require(read.frequency == sound.frequency && read.samples == sound.samples);
    // In three bytes 20 bits leave some over, as the last frame may.
    const int size = int(sound.samples) * frameSize(sound);
    require(sound.precision == 20 || read.data.left(size) == sound.data.left(size));
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const QByteArray bytes(reinterpret_cast<const char *>(data), int(qMin(size, mostInput)));
    QBuffer buffer;
    buffer.setData(bytes);
    Vela::SoundSample sound;
    require(Vela::loadSound(&buffer, VELA_SOUND_FORMAT, sound) != sound.data.isEmpty());
    require(sound.data.isEmpty() || sound.channels > 0);
    require(qint64(sound.samples) * frameSize(sound) <= sound.data.size());
    require(sound.data.size() <= mostSilence + largestRatio * bytes.size());
    buffer.seek(0);
    Vela::soundInfoFromWAV(&buffer);
    // The number of frames in a WAV file takes a frequency.
    if (sound.samples == 0 || sound.frequency == 0 || sound.data.size() > mostToWrite)
        return 0;
    checkLossless(sound, "WAV");
    checkLossless(sound, "FLAC");
    return 0;
}
