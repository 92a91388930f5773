// SPDX-License-Identifier: MIT
#include "cache/streamcache.h"

#include "cache/diskcache.h"
#include "cache/filecache.h"
#include "frame/checksum.h"
#include "frame/interface.h"

#include <algorithm>
#include <cstring>
#include <optional>

namespace Vela {

namespace {

unsigned int crcOf(const QByteArray &data)
{
    return CRC32(data.constData(), std::size_t(data.size()));
}

bool sameBytes(const QByteArray &a, const QByteArray &b)
{
    return !a.isEmpty() && a.size() == b.size()
        && std::memcmp(a.constData(), b.constData(), std::size_t(a.size())) == 0;
}

StreamCache::Type chosenType()
{
    const Interface *host = Interface::instance();
    const int chosen = host ? host->option(QStringLiteral("cache_type"), QVariant()).toInt() : 0;
    return chosen < StreamCache::Disk ? StreamCache::Memory : StreamCache::Disk;
}

} // namespace

StreamCache *StreamCache::instance(Codec *codec, Type type)
{
    switch (type == Default ? chosenType() : type) {
    case Disk:
        return new DiskCache(codec);
    case Files:
        return new FileCache(dynamic_cast<FileCache::FileCodec *>(codec));
    default:
        return new MemoryCache(codec);
    }
}

StreamCache::StreamCache(Codec *codec)
    : m_codec(codec)
{
}

StreamCache::~StreamCache()
{
    clear();
}

void StreamCache::release()
{
    delete this;
}

StreamCache::Codec *StreamCache::codec() const
{
    return m_codec;
}

QMutex &StreamCache::mutex() const
{
    return m_mutex;
}

StreamCache::Item *StreamCache::addItem(const QVariant &source)
{
    Item *item = newItem(source);
    const QMutexLocker guard(&m_mutex);
    item->m_place = ++m_lastPlace;
    m_items.append(item);
    m_byCrc[{item->m_crc, item->m_place}] = item;
    return item;
}

void StreamCache::removeItem(Item *item)
{
    item->release();
}

void StreamCache::remove(Item *item)
{
    const QMutexLocker guard(&m_mutex);
    if (item->m_place == 0)
        return;
    m_byCrc.erase({item->m_crc, item->m_place});
    // The places grow along the list.
    m_items.erase(std::lower_bound(
        m_items.begin(), m_items.end(), item->m_place,
        [](const Item *listed, quint64 place) { return listed->m_place < place; }));
    item->m_place = 0;
}

void StreamCache::setCrc(Item *item, unsigned int crc)
{
    const QMutexLocker guard(&m_mutex);
    if (item->m_place != 0) {
        m_byCrc.erase({item->m_crc, item->m_place});
        m_byCrc[{crc, item->m_place}] = item;
    }
    item->m_crc = crc;
}

void StreamCache::clear()
{
    QList<Item *> items;
    {
        const QMutexLocker guard(&m_mutex);
        items.swap(m_items);
        m_byCrc.clear();
        for (Item *item : qAsConst(items))
            item->m_place = 0;
    }
    // Without the mutex: an item may wait for a load, which needs it.
    while (!items.isEmpty())
        delete items.takeLast();
}

// Returns the next item of the list behind that place whose checksum is \a crc or not known, or
// null.
StreamCache::Item *StreamCache::nextCandidate(unsigned int crc, quint64 place) const
{
    const QMutexLocker guard(&m_mutex);
    Item *next = nullptr;
    for (const unsigned int group : {0U, crc}) {
        const auto it = m_byCrc.upper_bound({group, place});
        if (it != m_byCrc.end() && it->first.first == group
            && (!next || it->second->m_place < next->m_place))
            next = it->second;
    }
    return next;
}

StreamCache::Item *StreamCache::find(const QByteArray &data, const Item *exclude)
{
    const unsigned int crc = crcOf(data);
    quint64 place = 0;
    // The checksum of a candidate may become known, which moves it in the index but not in the
    // list.
    while (Item *item = nextCandidate(crc, place)) {
        place = item->m_place;
        if (item != exclude && isEqual(item, data, crc))
            return item;
    }
    return nullptr;
}

// An item with its plain data, which is read when it is needed first.
class StreamCache::Compared
{
public:
    explicit Compared(Item *item)
        : m_item(item)
    {
    }

    bool hasData() const
    {
        return m_data.has_value();
    }

    const QByteArray &data()
    {
        if (!m_data)
            m_data = m_item->data();
        return *m_data;
    }

    unsigned int crc()
    {
        unsigned int crc = m_item->crc();
        if (crc == 0) {
            crc = crcOf(data());
            // Not asked for again, as a load that ends now may reset it.
            m_item->cache()->setCrc(m_item, crc);
        }
        return crc;
    }

private:
    Item *const m_item;
    std::optional<QByteArray> m_data;
};

bool StreamCache::isEqual(Item *a, Item *b)
{
    if (a == b)
        return true;
    Compared first(a);
    Compared second(b);
    if (first.crc() != second.crc())
        return false;
    if (!first.hasData() && !second.hasData() && a->encoding() == b->encoding())
        return sameBytes(a->rawData(), b->rawData());
    return sameBytes(first.data(), second.data());
}

bool StreamCache::isEqual(Item *item, const QByteArray &data, unsigned int crc)
{
    Compared compared(item);
    return compared.crc() == crc && sameBytes(compared.data(), data);
}

StreamCache::Item::Item(StreamCache *cache)
    : m_cache(cache)
{
}

StreamCache::Item::~Item() = default;

void StreamCache::Item::release()
{
    if (--m_refCount != 0)
        return;
    m_cache->remove(this);
    delete this;
}

void StreamCache::Item::addRef()
{
    ++m_refCount;
}

int StreamCache::Item::refCount() const
{
    return m_refCount;
}

StreamCache *StreamCache::Item::cache() const
{
    return m_cache;
}

unsigned int StreamCache::Item::size() const
{
    return m_size;
}

unsigned int StreamCache::Item::crc() const
{
    return m_crc;
}

unsigned int StreamCache::Item::encoding() const
{
    return m_encoding;
}

void *StreamCache::Item::codecData() const
{
    return m_codecData;
}

void StreamCache::Item::describe(unsigned int size, unsigned int encoding, void *codecData,
                                 unsigned int crc)
{
    m_size = size;
    m_encoding = encoding;
    m_codecData = codecData;
    m_cache->setCrc(this, crc);
}

bool StreamCache::Item::setRawData(const QByteArray &data, unsigned int encoding, void *codecData,
                                   unsigned int crc)
{
    if (crc == 0 && encoding == 0)
        crc = crcOf(data);
    describe(unsigned(data.size()), encoding, codecData, crc);
    return true;
}

QByteArray StreamCache::Item::data()
{
    const QByteArray raw = rawData();
    const unsigned int form = encoding();
    Codec *codec = m_cache->codec();
    if (form == 0 || !codec)
        return raw;
    QByteArray data;
    return codec->decode(form, codecData(), raw, data) ? data : QByteArray();
}

bool StreamCache::Item::setData(const QByteArray &data, unsigned int encoding, void *codecData,
                                unsigned int crc)
{
    if (crc == 0)
        crc = crcOf(data);
    Codec *codec = m_cache->codec();
    if (encoding == 0 || !codec)
        return setRawData(data, 0, codecData, crc);
    QByteArray raw;
    return codec->encode(encoding, codecData, data, raw)
        && setRawData(raw, encoding, codecData, crc);
}

bool StreamCache::Item::isEqualTo(Item *other)
{
    return m_cache->isEqual(this, other);
}

bool StreamCache::Item::isEqualTo(const QByteArray &data, unsigned int crc)
{
    return m_cache->isEqual(this, data, crc);
}

} // namespace Vela
