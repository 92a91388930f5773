// SPDX-License-Identifier: MIT
#include "studio/window/soundplayback.h"

#include <QFutureWatcher>
#include <QtConcurrent>

#include <algorithm>

namespace Studio {

namespace {

constexpr int Voice = 0;
constexpr int Interval = 16; // ms between two places of the head

/// A device that is there plays at least so long before a sound can have ended: a part of its
/// buffer, in seconds.
constexpr double ShortestTold = 0.1;

} // namespace

SoundPlayback::SoundPlayback(QObject *parent)
    : QObject(parent)
{
    m_following.setInterval(Interval);
    m_following.setTimerType(Qt::PreciseTimer);
    connect(&m_following, &QTimer::timeout, this, &SoundPlayback::follow);
}

SoundPlayback::~SoundPlayback()
{
    const auto watchers = findChildren<QFutureWatcherBase *>();
    for (QFutureWatcherBase *watcher : watchers) {
        watcher->waitForFinished();
        delete watcher; // its buffer goes in front of the player
    }
}

void SoundPlayback::play(const Vela::SoundSample &sample, bool loop)
{
    if (!m_player)
        m_player = std::make_unique<Vela::SoundPlayer>(1);
    stop();
    m_info = sample;
    m_loop = loop;
    m_isPlaying = true;
    auto *const watcher = new QFutureWatcher<Buffer>(this);
    connect(watcher, &QFutureWatcherBase::finished, this, [this, watcher, turn = ++m_turn] {
        watcher->deleteLater();
        if (turn == m_turn)
            start(watcher->result());
    });
    watcher->setFuture(QtConcurrent::run([player = m_player.get(), sample] {
        return Buffer(player->createBuffer(sample),
                      [player](Vela::SoundBuffer *buffer) { player->freeBuffer(buffer); });
    }));
    Q_EMIT changed();
}

void SoundPlayback::start(const Buffer &buffer)
{
    m_buffer = buffer;
    const bool isTaken = m_player->play(buffer.get(), m_loop, float(m_volume)) == Voice;
    m_clock.start();
    m_following.start();
    // Without a device a sound has ended at once.
    if (isTaken
        && (m_player->isPlaying(Voice) || m_info.samples <= ShortestTold * m_info.frequency))
        return;
    stop();
    Q_EMIT failed();
}

void SoundPlayback::stop()
{
    if (!m_isPlaying)
        return;
    ++m_turn;
    m_isPlaying = false;
    m_following.stop();
    m_player->stop(Voice);
    m_buffer.reset();
    Q_EMIT changed();
}

bool SoundPlayback::isPlaying() const
{
    return m_isPlaying;
}

void SoundPlayback::setVolume(int volume)
{
    m_volume = volume;
    if (m_player)
        m_player->setVolume(Voice, float(volume));
}

void SoundPlayback::follow()
{
    if (!m_player->isPlaying(Voice))
        return stop();
    const qint64 frame = m_clock.nsecsElapsed() / 1000 * m_info.frequency / 1000000;
    Q_EMIT moved(
        quint32(m_loop ? frame % m_info.samples : std::min<qint64>(frame, m_info.samples)));
}

} // namespace Studio
