// SPDX-License-Identifier: MIT
#pragma once

#include "frame/export.h"

#include <QString>
#include <memory>

namespace sf {
class SoundBuffer;
}

namespace Vela {

struct SoundSample;
class SoundPlayerPrivate;

/// A block of 16-bit samples ready for playing.
using SoundBuffer = sf::SoundBuffer;

/// Plays sounds: a fixed number of voices for short ones, and one stream for music. Volumes are
/// from 0 to 100. A voice's index counts from 0; as an argument a negative one means all voices,
/// and one past the last does nothing. Main thread only, but for createBuffer(); the music is read
/// on a thread of its own.
class VELA_EXPORT SoundPlayer
{
public:
    explicit SoundPlayer(unsigned int voices);
    /// Stops everything.
    ~SoundPlayer();

    /// Returns a buffer with the sound, converted to 16 bits, or null if it holds no frames or
    /// cannot be converted. It is the caller's, who gives it back with freeBuffer(). Of a long
    /// sound this takes a while: another thread may do it.
    SoundBuffer *createBuffer(const SoundSample &sample) const;
    /// \a buffer may be null. A voice that plays it falls silent.
    void freeBuffer(SoundBuffer *buffer) const;

    /// Plays a sound on the first free voice and returns that voice's index, or -1 if no voice is
    /// free or the sound cannot be played: nothing waits, and no voice is cut off.
    int play(const SoundSample &sample, bool loop, float volume);
    /// The same for a buffer that stays the caller's, and has to live until the voice has stopped.
    int play(const SoundBuffer *buffer, bool loop, float volume);

    void pause(int voice);
    /// Goes on with what pause() has stopped.
    void resume(int voice);
    void stop(int voice);
    void setVolume(int voice, float volume);
    /// A paused voice is playing. False for an index that is no voice.
    bool isPlaying(int voice) const;

    /// Opens a file of music in place of the one before. Returns false if it cannot be read;
    /// startMusic() does nothing then.
    bool openMusic(const QString &fileName);
    void startMusic();
    void pauseMusic();
    void stopMusic();
    void setMusicVolume(float volume);
    /// Paused music is playing.
    bool isMusicPlaying() const;

private:
    Q_DISABLE_COPY(SoundPlayer)

    const std::unique_ptr<SoundPlayerPrivate> d;
};

} // namespace Vela
