// SPDX-License-Identifier: MIT
#include "studio/window/soundreader.h"

#include "sound/soundformats.h"

#include <QFutureWatcher>
#include <QtConcurrent>

#include <algorithm>

namespace Studio {

namespace {

constexpr int ProgressInterval = 100; // ms

} // namespace

SoundReader::Source::Source(const std::shared_ptr<QIODevice> &device)
    : m_device(device)
    , m_size(device->size())
{
    open(QIODevice::ReadOnly | QIODevice::Unbuffered);
}

qint64 SoundReader::Source::size() const
{
    return m_size;
}

bool SoundReader::Source::seek(qint64 position)
{
    return QIODevice::seek(position) && m_device->seek(position);
}

int SoundReader::Source::percent() const
{
    return m_size > 0 ? int(std::min<qint64>(100 * m_read / m_size, 100)) : 0;
}

void SoundReader::Source::cancel()
{
    m_cancelled = true;
}

qint64 SoundReader::Source::readData(char *data, qint64 most)
{
    if (m_cancelled)
        return -1;
    const qint64 count = m_device->read(data, most);
    m_read = m_device->pos();
    return count;
}

qint64 SoundReader::Source::writeData(const char *, qint64)
{
    return -1;
}

SoundReader::SoundReader(QObject *parent)
    : QObject(parent)
{
    m_progress.setInterval(ProgressInterval);
    connect(&m_progress, &QTimer::timeout, this,
            [this] { Q_EMIT progressed(m_source->percent()); });
}

SoundReader::~SoundReader()
{
    cancel();
    const auto watchers = findChildren<QFutureWatcherBase *>();
    for (QFutureWatcherBase *watcher : watchers)
        watcher->waitForFinished();
}

void SoundReader::read(const std::shared_ptr<QIODevice> &device, const QByteArray &format)
{
    cancel();
    m_source = std::make_shared<Source>(device);
    m_progress.start();
    start([source = m_source, format] {
        Vela::SoundSample sample;
        Vela::loadSound(source.get(), format.constData(), sample);
        return sample;
    });
}

void SoundReader::read(const Vela::Sound::Reader &reader)
{
    cancel();
    start(reader);
}

void SoundReader::start(const Vela::Sound::Reader &reader)
{
    // The slot keeps what is read from, so that its end comes on this thread.
    const auto kept = std::make_shared<Vela::Sound::Reader>(reader);
    auto *const watcher = new QFutureWatcher<Vela::SoundSample>(this);
    connect(watcher, &QFutureWatcherBase::finished, this, [this, watcher, kept, turn = m_turn] {
        watcher->deleteLater();
        if (turn != m_turn)
            return;
        cancel();
        Q_EMIT finished(watcher->result());
    });
    watcher->setFuture(QtConcurrent::run([job = kept.get()] { return (*job)(); }));
}

void SoundReader::cancel()
{
    ++m_turn;
    m_progress.stop();
    if (m_source)
        m_source->cancel();
    m_source.reset();
    const auto watchers = findChildren<QFutureWatcherBase *>();
    for (QFutureWatcherBase *watcher : watchers)
        watcher->cancel(); // what was not begun is not decoded any more
}

} // namespace Studio
