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
    m_pool.setMaxThreadCount(1);
    m_following.setInterval(Interval);
    m_following.setTimerType(Qt::PreciseTimer);
    connect(&m_following, &QTimer::timeout, this, &SoundPlayback::follow);
}

SoundPlayback::~SoundPlayback()
{
    const auto watchers = findChildren<QFutureWatcherBase *>();
    for (QFutureWatcherBase *watcher : watchers) {
        watcher->cancel();
        watcher->waitForFinished();
        delete watcher; // its buffer goes in front of the player
    }
}

void SoundPlayback::play(const Vela::SoundSample &sample, unsigned int from, unsigned int to,
                         bool loop)
{
    if (!m_player)
        m_player = std::make_unique<Vela::SoundPlayer>(1);
    stop();
    m_info = sample;
    m_info.samples = to - from;
    m_from = from;
    m_loop = loop;
    m_isPlaying = true;
    // The slot keeps the buffer, so that its end comes on this thread and in front of the player's.
    Vela::SoundPlayer *const player = m_player.get();
    const Buffer kept(new std::atomic<Vela::SoundBuffer *>(nullptr),
                      [player](std::atomic<Vela::SoundBuffer *> *buffer) {
                          player->freeBuffer(*buffer);
                          delete buffer;
                      });
    auto *const watcher = new QFutureWatcher<void>(this);
    connect(watcher, &QFutureWatcherBase::finished, this, [this, watcher, kept, turn = ++m_turn] {
        watcher->deleteLater();
        if (turn == m_turn)
            start(kept);
    });
    watcher->setFuture(QtConcurrent::run(&m_pool, [=, info = m_info, buffer = kept.get()] {
        const int frame = int(Vela::frameSize(info));
        const Vela::SoundSample part = {
            info, sample.data.mid(int(from) * frame, int(info.samples) * frame)};
        *buffer = player->createBuffer(part);
    }));
    Q_EMIT changed();
}

void SoundPlayback::start(const Buffer &buffer)
{
    m_buffer = buffer;
    const bool isTaken = m_player->play(buffer->load(), m_loop, float(m_volume)) == Voice;
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
    const auto watchers = findChildren<QFutureWatcherBase *>();
    for (QFutureWatcherBase *watcher : watchers)
        watcher->cancel(); // what was not begun is not made ready any more
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
        m_from
        + quint32(m_loop ? frame % m_info.samples : std::min<qint64>(frame, m_info.samples)));
}

} // namespace Studio
