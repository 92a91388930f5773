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

bool SoundReader::Source::isCancelled() const
{
    return m_cancelled;
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
    const auto source = std::make_shared<Source>(device);
    m_source = source;
    m_progress.start();
    auto *const watcher = new QFutureWatcher<Vela::SoundSample>(this);
    // The slot keeps the source, so that its end comes on this thread.
    connect(watcher, &QFutureWatcherBase::finished, this, [this, watcher, source] {
        watcher->deleteLater();
        if (source->isCancelled())
            return;
        m_progress.stop();
        m_source.reset();
        Q_EMIT finished(watcher->result());
    });
    watcher->setFuture(QtConcurrent::run([input = source.get(), format] {
        Vela::SoundSample sample;
        Vela::loadSound(input, format.constData(), sample);
        return sample;
    }));
}

void SoundReader::cancel()
{
    m_progress.stop();
    if (m_source)
        m_source->cancel();
    m_source.reset();
}

} // namespace Studio
