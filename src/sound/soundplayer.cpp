// SPDX-License-Identifier: MIT
#include "sound/soundplayer.h"

#include "sound/samplebytes_p.h"

#include <SFML/Audio/Music.hpp>
#include <SFML/Audio/Sound.hpp>
#include <SFML/Audio/SoundBuffer.hpp>
#include <SFML/System/Err.hpp>

#include <algorithm>
#include <vector>

namespace Vela {

namespace {

struct Voice
{
    std::unique_ptr<SoundBuffer> buffer; // null if what plays is not the voice's own
    sf::Sound sound;                     // goes first, as it refers to the buffer
};

/// Keeps SFML from writing to the standard error stream: who plays is told by what is returned.
struct Silence
{
    Silence()
    {
        sf::err().rdbuf(nullptr);
    }
};

} // namespace

class SoundPlayerPrivate
{
public:
    explicit SoundPlayerPrivate(unsigned int count)
        : voices(count)
    {
    }

    /// Calls \a act with the voice of that index, or with each if it is negative.
    template <typename Act>
    void each(int index, Act act)
    {
        if (index >= 0) {
            if (std::size_t(index) < voices.size())
                act(voices[std::size_t(index)].sound);
            return;
        }
        for (Voice &voice : voices)
            act(voice.sound);
    }

    int play(const SoundBuffer &buffer, std::unique_ptr<SoundBuffer> own, bool loop, float volume)
    {
        const auto voice = std::find_if(voices.begin(), voices.end(), [](const Voice &other) {
            return other.sound.getStatus() == sf::Sound::Stopped;
        });
        if (voice == voices.end())
            return -1;
        voice->sound.stop();
        voice->buffer = std::move(own);
        voice->sound.setBuffer(buffer);
        voice->sound.setLoop(loop);
        voice->sound.setVolume(volume);
        voice->sound.play();
        return int(voice - voices.begin());
    }

    Silence silence; // before SFML is asked for anything
    std::vector<Voice> voices;
    bool musicOpen = false;
    sf::Music music;
};

SoundPlayer::SoundPlayer(unsigned int voices)
    : d(std::make_unique<SoundPlayerPrivate>(voices))
{
}

SoundPlayer::~SoundPlayer()
{
    stopMusic();
    stop(-1);
}

SoundBuffer *SoundPlayer::createBuffer(const SoundSample &sample) const
{
    SoundSample sound = sample;
    SampleInfo target = sample;
    target.precision = 16;
    if (sound.precision != 16 && !resampleSound(sound, target))
        return nullptr;
    const auto frames = sf::Uint64(wholeFrames(sound));
    auto buffer = std::make_unique<SoundBuffer>();
    if (frames == 0
        || !buffer->loadFromSamples(reinterpret_cast<const sf::Int16 *>(sound.data.constData()),
                                    frames * sound.channels, sound.channels, sound.frequency))
        return nullptr;
    return buffer.release();
}

void SoundPlayer::freeBuffer(SoundBuffer *buffer) const
{
    delete buffer;
}

int SoundPlayer::play(const SoundSample &sample, bool loop, float volume)
{
    std::unique_ptr<SoundBuffer> own(createBuffer(sample));
    const SoundBuffer *buffer = own.get();
    return buffer ? d->play(*buffer, std::move(own), loop, volume) : -1;
}

int SoundPlayer::play(const SoundBuffer *buffer, bool loop, float volume)
{
    return buffer ? d->play(*buffer, nullptr, loop, volume) : -1;
}

void SoundPlayer::pause(int voice)
{
    d->each(voice, [](sf::Sound &sound) {
        if (sound.getStatus() == sf::Sound::Playing)
            sound.pause();
    });
}

void SoundPlayer::resume(int voice)
{
    d->each(voice, [](sf::Sound &sound) {
        if (sound.getStatus() == sf::Sound::Paused)
            sound.play();
    });
}

void SoundPlayer::stop(int voice)
{
    d->each(voice, [](sf::Sound &sound) { sound.stop(); });
}

void SoundPlayer::setVolume(int voice, float volume)
{
    d->each(voice, [volume](sf::Sound &sound) { sound.setVolume(volume); });
}

bool SoundPlayer::isPlaying(int voice) const
{
    return voice >= 0 && std::size_t(voice) < d->voices.size()
        && d->voices[std::size_t(voice)].sound.getStatus() != sf::Sound::Stopped;
}

bool SoundPlayer::openMusic(const QString &fileName)
{
    d->musicOpen = d->music.openFromFile(fileName.toLocal8Bit().toStdString());
    return d->musicOpen;
}

void SoundPlayer::startMusic()
{
    if (d->musicOpen)
        d->music.play();
}

void SoundPlayer::pauseMusic()
{
    if (d->music.getStatus() == sf::Music::Playing)
        d->music.pause();
}

void SoundPlayer::stopMusic()
{
    d->music.stop();
}

void SoundPlayer::setMusicVolume(float volume)
{
    d->music.setVolume(volume);
}

bool SoundPlayer::isMusicPlaying() const
{
    return d->musicOpen && d->music.getStatus() != sf::Music::Stopped;
}

} // namespace Vela
