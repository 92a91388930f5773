// SPDX-License-Identifier: MIT
#include "sound/soundformats.h"

#include "engine/tryextensions_p.h"
#include "image/devicebytes_p.h"
#include "sound/soundextension.h"

namespace Vela {

namespace {

constexpr struct
{
    const char *format;
    SoundSample (*load)(QIODevice *device);
    bool (*save)(const SoundSample &sample, QIODevice *device); // null if there is none
} codecs[] = {
    {"WAV", soundFromWAV, soundToWAV},
    {"OGG", soundFromOGG, soundToOGG},
    {"FLAC", soundFromFLAC, soundToFLAC},
    {"MP3", soundFromMP3, nullptr},
};

} // namespace

const char *soundFileExtension(SoundExtensionType type)
{
    switch (type) {
    case AllSounds:
        return " (*.wav *.ogg *.flac *.mp3);;";
    case LoadSounds:
        return "WAVEform audio format (*.wav);;Ogg Vorbis (*.ogg);;"
               "Free Lossless Audio Codec (*.flac);;MPEG-1/2 Audio Layer 3 (*.mp3)";
    case SaveSounds:
        return "WAVEform audio format (*.wav);;Ogg Vorbis (*.ogg);;"
               "Free Lossless Audio Codec (*.flac)";
    }
    return nullptr;
}

bool loadSound(QIODevice *device, const char *format, SoundSample &sample)
{
    if (!openDevice(device, QIODevice::ReadOnly))
        return false;
    sample = SoundSample();
    for (const auto &codec : codecs) {
        if (qstrcmp(codec.format, format) == 0) {
            sample = codec.load(device);
            return !sample.data.isEmpty();
        }
    }
    tryExtensions<SoundLoader>(Extension::SoundLoader, format,
                               [&](SoundLoader *loader) { return loader->load(device, sample); });
    return !sample.data.isEmpty();
}

bool saveSound(QIODevice *device, const char *format, const SoundSample &sample)
{
    if (!openDevice(device, QIODevice::WriteOnly))
        return false;
    for (const auto &codec : codecs) {
        if (codec.save && qstrcmp(codec.format, format) == 0)
            return codec.save(sample, device);
    }
    return tryExtensions<SoundSaver>(Extension::SoundSaver, format, [&](SoundSaver *saver) {
        return saver->save(sample, device);
    });
}

} // namespace Vela
