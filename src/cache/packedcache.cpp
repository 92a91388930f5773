// SPDX-License-Identifier: MIT
#include "cache/packedcache.h"

namespace Vela {

PackedCache::PackedCache(Codec *codec)
    : StreamCache(codec)
{
}

PackedCache::Item::Item(PackedCache *cache)
    : StreamCache::Item(cache)
{
}

QByteArray PackedCache::Item::rawData()
{
    const QByteArray packed = readPacked();
    return encoding() == 0 && !packed.isEmpty() ? qUncompress(packed) : packed;
}

bool PackedCache::Item::setRawData(const QByteArray &data, unsigned int encoding, void *codecData,
                                   unsigned int crc)
{
    const unsigned int oldSize = size();
    const unsigned int oldEncoding = this->encoding();
    void *const oldCodecData = this->codecData();
    const unsigned int oldCrc = this->crc();
    StreamCache::Item::setRawData(data, encoding, codecData, crc);
    if (storePacked(encoding == 0 && !data.isEmpty() ? qCompress(data, -1) : data))
        return true;
    describe(oldSize, oldEncoding, oldCodecData, oldCrc);
    return false;
}

class MemoryCache::Item : public PackedCache::Item
{
public:
    explicit Item(MemoryCache *cache)
        : PackedCache::Item(cache)
        , m_cache(cache)
    {
    }

protected:
    QByteArray readPacked() override
    {
        const QMutexLocker guard(&m_cache->mutex());
        return m_packed;
    }

    bool storePacked(const QByteArray &packed) override
    {
        const QMutexLocker guard(&m_cache->mutex());
        m_packed = packed;
        return true;
    }

private:
    MemoryCache *const m_cache;
    QByteArray m_packed; // guarded by the cache's mutex
};

MemoryCache::MemoryCache(Codec *codec)
    : PackedCache(codec)
{
}

StreamCache::Type MemoryCache::type() const
{
    return Memory;
}

StreamCache::Item *MemoryCache::newItem(const QVariant &)
{
    return new Item(this);
}

} // namespace Vela
