// SPDX-License-Identifier: MIT
#include "cache/asyncfilecache.h"

#include <QFile>
#include <QtConcurrent>
#include <algorithm>
#include <optional>

namespace Vela {

namespace {

// Takes no more memory than the file has bytes there. Returns nothing if these cannot be read.
std::optional<QByteArray> readRegion(const QString &fileName, qint64 offset, qint64 size)
{
    QFile file(fileName);
    if (offset < 0 || !file.open(QIODevice::ReadOnly | QIODevice::Unbuffered))
        return std::nullopt;
    const qint64 length = std::min(size, file.size() - offset);
    if (length <= 0)
        return QByteArray();
    const QByteArray bytes = file.seek(offset) ? file.read(length) : QByteArray();
    return bytes.size() == length ? std::make_optional(bytes) : std::nullopt;
}

} // namespace

AsyncFileCache::Item::Item(AsyncFileCache *cache, StreamCache::Item *loaded)
    : StreamCache::Item(cache)
{
    setItem(loaded);
}

AsyncFileCache::Item::Item(AsyncFileCache *cache, const Info &info)
    : StreamCache::Item(cache)
    , m_fileName(cache->fileName())
    , m_offset(info.offset)
{
    describe(info.size, info.encoding, info.codecData, info.crc);
}

AsyncFileCache::Item::~Item()
{
    waitForDataReady();
    if (StreamCache::Item *loaded = m_loaded)
        loaded->release();
}

QByteArray AsyncFileCache::Item::rawData()
{
    if (StreamCache::Item *loaded = m_loaded)
        return loaded->rawData();
    return readRegion(m_fileName, m_offset, size()).value_or(QByteArray());
}

bool AsyncFileCache::Item::setRawData(const QByteArray &data, unsigned int encoding,
                                      void *codecData, unsigned int crc)
{
    waitForDataReady();
    StreamCache::Item *loaded = m_loaded;
    if (!loaded || !loaded->setRawData(data, encoding, codecData, crc))
        return false;
    describe(loaded->size(), loaded->encoding(), loaded->codecData(), loaded->crc());
    return true;
}

void AsyncFileCache::Item::waitForDataReady()
{
    m_future.waitForFinished();
}

void AsyncFileCache::Item::setItem(StreamCache::Item *item)
{
    describe(item->size(), item->encoding(), item->codecData(), item->crc());
    m_loaded = item;
}

AsyncFileCache::AsyncFileCache(Codec *codec, StreamCache *target)
    : StreamCache(codec)
    , m_target(target)
{
    qRegisterMetaType<const Item *>();
    qRegisterMetaType<Item::Info>();
}

AsyncFileCache::~AsyncFileCache()
{
    // While the loads still find the target and the signal.
    clear();
    m_target->release();
}

StreamCache::Type AsyncFileCache::type() const
{
    return m_target->type();
}

StreamCache::Item *AsyncFileCache::newItem(const QVariant &source)
{
    if (!source.isValid())
        return new Item(this, m_target->addItem(QVariant()));
    auto *item = new Item(this, source.value<Item::Info>());
    item->m_future = QtConcurrent::run(this, &AsyncFileCache::load, item);
    return item;
}

// Runs on a thread of the pool, or on the one that waits for it. The item outlives it, as its
// destructor waits.
void AsyncFileCache::load(Item *item)
{
    const std::optional<QByteArray> bytes =
        readRegion(item->m_fileName, item->m_offset, item->size());
    if (bytes) {
        StreamCache::Item *loaded = m_target->addItem(QVariant());
        if (loaded->setRawData(*bytes, item->encoding(), item->codecData(), item->crc())) {
            item->setItem(loaded);
            Q_EMIT itemLoaded(item);
        } else {
            loaded->release();
        }
    }
}

QString AsyncFileCache::fileName() const
{
    const QMutexLocker guard(&mutex());
    return m_fileName;
}

void AsyncFileCache::setFileName(const QString &fileName)
{
    clear();
    const QMutexLocker guard(&mutex());
    m_fileName = fileName;
}

AsyncFileCache::Item *AsyncFileCache::addAsyncItem(const Item::Info &info)
{
    return static_cast<Item *>(addItem(QVariant::fromValue(info)));
}

} // namespace Vela
