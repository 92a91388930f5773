// SPDX-License-Identifier: MIT
#include "lantern/streamhandle.h"

#include "frame/checksum.h"

namespace Lantern {

namespace {

// What an item of the cache carries along.
void *markOf(StreamKind kind)
{
    static char palette;
    return kind == StreamKind::Palette ? &palette : nullptr;
}

} // namespace

StreamStore::StreamStore(const QString &fileName, bool isPreferred)
    : m_cache(new Vela::AsyncFileCache(
        &m_codec, Vela::StreamCache::instance(&m_codec, Vela::StreamCache::Default)))
    , m_isPreferred(isPreferred)
{
    m_cache->setFileName(fileName);
}

StreamStore::~StreamStore()
{
    m_cache->release();
}

StreamRef StreamStore::newHandle()
{
    return {new StreamHandle(shared_from_this()), [](StreamHandle *handle) { handle->release(); }};
}

StreamRef StreamStore::add(const QVariant &source)
{
    const StreamRef stream = newHandle();
    stream->createItem(m_cache, source);
    return stream;
}

StreamRef StreamStore::addLate(Vela::AsyncFileCache::Item::Info info, StreamKind kind)
{
    info.codecData = markOf(kind);
    const StreamRef stream = add(QVariant::fromValue(info));
    m_late.push_back(stream);
    return stream;
}

void StreamStore::finishLoads()
{
    for (const std::weak_ptr<StreamHandle> &late : m_late) {
        if (const StreamRef stream = late.lock())
            static_cast<Vela::AsyncFileCache::Item *>(stream->item())->waitForDataReady();
    }
    m_late.clear();
}

StreamRef StreamStore::addRaw(const QByteArray &raw, unsigned int encoding, StreamKind kind,
                              unsigned int crc)
{
    const StreamRef stream = add(QVariant());
    return stream->fromRawData(raw, encoding, markOf(kind), crc) ? stream : nullptr;
}

StreamRef StreamStore::addPlain(const QByteArray &plain, unsigned int encoding, StreamKind kind)
{
    const StreamRef stream = add(QVariant());
    QByteArray raw;
    if (m_codec.encodeSmaller(encoding, plain, raw)) {
        const unsigned int crc = Vela::CRC32(plain.constData(), size_t(plain.size()));
        return stream->fromRawData(raw, encoding, markOf(kind), crc) ? stream : nullptr;
    }
    return stream->fromData(plain, Raw, markOf(kind), 0) ? stream : nullptr;
}

StreamRef StreamStore::findTwin(const QByteArray &plain, StreamKind kind)
{
    Vela::StreamCache::Item *const twin = m_cache->find(plain, nullptr);
    if (!twin || twin->codecData() != markOf(kind))
        return nullptr;
    const StreamRef stream = newHandle();
    stream->itemSwap(twin);
    return stream;
}

StreamHandle::StreamHandle(std::shared_ptr<StreamStore> store)
    : StreamCacheData(nullptr)
    , m_store(std::move(store))
{
}

// The item goes before its cache.
void StreamHandle::free()
{
    const std::shared_ptr<StreamStore> store = m_store;
    delete this;
}

// Bytes that are read late may come from a file that another program has replaced meanwhile.
QByteArray StreamHandle::plain() const
{
    const QByteArray data = toData();
    const unsigned int known = crc();
    const bool isIntact = known == 0 || Vela::CRC32(data.constData(), size_t(data.size())) == known;
    return isIntact ? data : QByteArray();
}

// Streams of other programs get the encoding that this one would have given them, so that equal
// contents make equal files.
QByteArray StreamHandle::stored(unsigned int &encoding) const
{
    const QByteArray data = plain();
    encoding = StreamCacheData::encoding();
    if (data.isEmpty() || m_store->m_isPreferred)
        return data.isEmpty() ? data : toRawData();
    QByteArray raw;
    encoding = preferredEncoding(data);
    if (m_store->m_codec.encodeSmaller(encoding, data, raw))
        return raw;
    encoding = Raw;
    return data;
}

bool StreamHandle::sharesWith(const StreamHandle &other) const
{
    return item() == other.item();
}

} // namespace Lantern
