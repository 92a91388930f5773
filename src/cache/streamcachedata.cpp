// SPDX-License-Identifier: MIT
#include "cache/streamcache.h"

namespace Vela {

StreamCacheData::StreamCacheData(StreamCache::Item *item)
    : m_item(item)
{
}

StreamCacheData::~StreamCacheData()
{
    if (m_item)
        m_item->release();
}

void StreamCacheData::release()
{
    if (--m_refCount == 0)
        free();
}

void StreamCacheData::addRef()
{
    ++m_refCount;
}

int StreamCacheData::refCount() const
{
    return m_refCount;
}

StreamCache::Item *StreamCacheData::item() const
{
    return m_item;
}

StreamCache *StreamCacheData::cache() const
{
    return m_item ? m_item->cache() : nullptr;
}

unsigned int StreamCacheData::crc() const
{
    return m_item ? m_item->crc() : 0;
}

unsigned int StreamCacheData::encoding() const
{
    return m_item ? m_item->encoding() : 0;
}

void *StreamCacheData::codecData() const
{
    return m_item ? m_item->codecData() : nullptr;
}

bool StreamCacheData::isEmpty() const
{
    return !m_item || m_item->size() == 0;
}

void StreamCacheData::reset()
{
    fromData(QByteArray(), 0, nullptr, 0);
}

bool StreamCacheData::fromData(const QByteArray &data, unsigned int encoding, void *codecData,
                               unsigned int crc)
{
    return m_item && m_item->setData(data, encoding, codecData, crc);
}

bool StreamCacheData::fromRawData(const QByteArray &data, unsigned int encoding, void *codecData,
                                  unsigned int crc)
{
    return m_item && m_item->setRawData(data, encoding, codecData, crc);
}

QByteArray StreamCacheData::toData() const
{
    return m_item ? m_item->data() : QByteArray();
}

QByteArray StreamCacheData::toRawData() const
{
    return m_item ? m_item->rawData() : QByteArray();
}

bool StreamCacheData::isEqualTo(StreamCache::Item *item) const
{
    if (!m_item || !item)
        return m_item == item;
    return m_item->isEqualTo(item);
}

bool StreamCacheData::isEqualToData(const QByteArray &data, unsigned int crc) const
{
    return m_item && m_item->isEqualTo(data, crc);
}

void StreamCacheData::itemSwap(StreamCache::Item *item)
{
    if (item == m_item || (item && m_item && item->cache() != m_item->cache()))
        return;
    if (m_item)
        m_item->release();
    m_item = item;
    if (m_item)
        m_item->addRef();
}

void StreamCacheData::createItem(StreamCache *cache, const QVariant &source)
{
    if (m_item)
        m_item->release();
    m_item = cache->addItem(source);
}

} // namespace Vela
