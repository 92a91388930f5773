// SPDX-License-Identifier: MIT
#pragma once

#include "cache/streamcache.h"

namespace Vela {

/// A cache that compresses the streams which no codec has made compact.
class VELA_EXPORT PackedCache : public StreamCache
{
public:
    class VELA_EXPORT Item : public StreamCache::Item
    {
    public:
        QByteArray rawData() override;
        bool setRawData(const QByteArray &data, unsigned int encoding, void *codecData,
                        unsigned int crc) override;

    protected:
        explicit Item(PackedCache *cache);

        virtual QByteArray readPacked() = 0;
        virtual bool storePacked(const QByteArray &packed) = 0;
    };

protected:
    explicit PackedCache(Codec *codec);
};

/// Keeps the packed streams in memory. The source of an item plays no part.
class VELA_EXPORT MemoryCache : public PackedCache
{
public:
    class Item;

    explicit MemoryCache(Codec *codec);

    Type type() const override;
    StreamCache::Item *newItem(const QVariant &source) override;
};

} // namespace Vela
