// SPDX-License-Identifier: MIT
#pragma once

#include "cache/filecache.h"

#include <algorithm>
#include <atomic>

/// Keeps the data backwards behind a byte that holds the encoding. It refuses empty data.
class BackwardsCodec : public Vela::FileCache::FileCodec
{
public:
    void release() override
    {
    }

    bool decode(unsigned int encoding, void *, const QByteArray &raw, QByteArray &data) override
    {
        ++decoded;
        if (raw.isEmpty() || raw.at(0) != char(encoding))
            return false;
        data.resize(raw.size() - 1);
        std::reverse_copy(raw.cbegin() + 1, raw.cend(), data.begin());
        return true;
    }

    bool encode(unsigned int encoding, void *, const QByteArray &data, QByteArray &raw) override
    {
        raw = encoded(encoding, data);
        return !data.isEmpty();
    }

    unsigned int encodingOf(const QString &suffix) const override
    {
        return suffix == QLatin1String("back") ? 7 : 0;
    }

    static QByteArray encoded(unsigned int encoding, const QByteArray &data)
    {
        QByteArray raw(data.size() + 1, char(encoding));
        std::reverse_copy(data.cbegin(), data.cend(), raw.begin() + 1);
        return raw;
    }

    std::atomic<int> decoded{0};
};

/// Keeps the streams as they are, and counts how often they are read.
class PlainCache : public Vela::StreamCache
{
public:
    class Item : public Vela::StreamCache::Item
    {
    public:
        explicit Item(PlainCache *cache)
            : Vela::StreamCache::Item(cache)
            , m_plainCache(cache)
        {
        }

        QByteArray rawData() override
        {
            ++m_plainCache->reads;
            return m_raw;
        }

        bool setRawData(const QByteArray &data, unsigned int encoding, void *codecData,
                        unsigned int crc) override
        {
            m_raw = data;
            return Vela::StreamCache::Item::setRawData(data, encoding, codecData, crc);
        }

    private:
        PlainCache *const m_plainCache;
        QByteArray m_raw;
    };

    explicit PlainCache(Codec *codec)
        : StreamCache(codec)
    {
    }

    ~PlainCache() override
    {
        clear();
    }

    Type type() const override
    {
        return Memory;
    }

    Item *newItem(const QVariant &) override
    {
        return new Item(this);
    }

    int reads = 0;
};
