// SPDX-License-Identifier: MIT
#pragma once

#include "sound/soundplayer.h"
#include "sound/soundsample.h"

#include <QElapsedTimer>
#include <QObject>
#include <QThreadPool>
#include <QTimer>
#include <atomic>
#include <memory>

namespace Studio {

/// Plays one sound and tells how far it is. The device is opened when the first one is played, and
/// a sound is made ready for it on another thread.
class SoundPlayback : public QObject
{
    Q_OBJECT

public:
    explicit SoundPlayback(QObject *parent = nullptr);
    ~SoundPlayback() override;

    /// Plays the frames of a sound from \a from to in front of \a to, of which there is one at
    /// least, in place of what played before.
    void play(const Vela::SoundSample &sample, unsigned int from, unsigned int to, bool loop);
    void stop();
    /// Returns whether a sound plays or is made ready for that.
    bool isPlaying() const;
    /// From 0 to 100; that of what plays changes at once.
    void setVolume(int volume);

Q_SIGNALS:
    /// The frame of the sound that is heard now, measured by the clock.
    void moved(unsigned int frame);
    /// Playing has begun or has ended.
    void changed();
    /// The sound has ended before it began: there is nothing to play it on.
    void failed();

private:
    /// What the other thread makes; null until then, or if it cannot be made.
    using Buffer = std::shared_ptr<std::atomic<Vela::SoundBuffer *>>;

    void start(const Buffer &buffer);
    void follow();

    QThreadPool m_pool; ///< of one thread, as a long sound takes much memory
    std::unique_ptr<Vela::SoundPlayer> m_player;
    Buffer m_buffer; ///< what plays; it goes in front of the player
    int m_turn = 0;  ///< counts what was to be played, and what was stopped
    bool m_isPlaying = false;
    Vela::SampleInfo m_info; ///< of what plays
    unsigned int m_from = 0; ///< its first frame in the sound
    bool m_loop = false;
    int m_volume = 100;
    QTimer m_following;
    QElapsedTimer m_clock;
};

} // namespace Studio
