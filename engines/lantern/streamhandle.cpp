// SPDX-License-Identifier: MIT
#include "lantern/streamhandle.h"

#include "frame/checksum.h"

namespace Lantern {

namespace {

unsigned int checksum(const QByteArray &data)
{
    return Vela::CRC32(data.constData(), size_t(data.size()));
}

// What an item of the cache carries along.
struct Mark
{
    StreamKind kind;
    bool keepsEncoding;
};

void *markOf(StreamKind kind, bool keepsEncoding)
{
    static Mark marks[] = {{StreamKind::Image, false},   {StreamKind::Image, true},
                           {StreamKind::Palette, false}, {StreamKind::Palette, true},
                           {StreamKind::Sound, false},   {StreamKind::Sound, true}};
    return &marks[2 * int(kind) + int(keepsEncoding)];
}

} // namespace

StreamStore::StreamStore(std::unique_ptr<StreamCodec> codec, const QString &fileName,
                         bool isPreferred)
    : m_codec(std::move(codec))
    , m_cache(new Vela::AsyncFileCache(
          m_codec.get(), Vela::StreamCache::instance(m_codec.get(), Vela::StreamCache::Default)))
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
    info.codecData = markOf(kind, m_isPreferred);
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
    return keep(raw, encoding, markOf(kind, m_isPreferred), crc);
}

StreamRef StreamStore::addPlain(const QByteArray &plain, StreamKind kind)
{
    QByteArray raw;
    const unsigned int encoding = encode(plain, kind, raw);
    return keep(raw, encoding, markOf(kind, true), checksum(plain));
}

StreamRef StreamStore::addEncoded(const QByteArray &plain, unsigned int encoding, StreamKind kind)
{
    QByteArray raw = plain;
    if (encoding != 0 && !m_codec->encodeSmaller(encoding, plain, raw))
        return nullptr;
    const unsigned int crc = m_codec->isLossy(encoding) ? 0 : checksum(plain);
    return keep(raw, encoding, markOf(kind, true), crc);
}

StreamRef StreamStore::keep(const QByteArray &raw, unsigned int encoding, void *mark,
                            unsigned int crc)
{
    const StreamRef stream = add(QVariant());
    return stream->fromRawData(raw, encoding, mark, crc) ? stream : nullptr;
}

// Encodes plain data as files are to hold it. Returns the encoding.
unsigned int StreamStore::encode(const QByteArray &plain, StreamKind kind, QByteArray &raw)
{
    const unsigned int encoding =
        kind == StreamKind::Palette ? 0 : m_codec->preferredEncoding(plain);
    if (m_codec->encodeSmaller(encoding, plain, raw))
        return encoding;
    raw = plain;
    return 0;
}

StreamRef StreamStore::findTwin(const QByteArray &plain, StreamKind kind)
{
    Vela::StreamCache::Item *const twin = m_cache->find(plain, nullptr);
    if (!twin || static_cast<const Mark *>(twin->codecData())->kind != kind)
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
    return known == 0 || checksum(data) == known ? data : QByteArray();
}

unsigned int StreamHandle::plainCrc() const
{
    if (m_store->m_codec->isLossy(encoding()))
        return 0;
    return crc() == 0 ? checksum(plain()) : crc();
}

// Streams of other programs get the encoding that this one would have given them, so that equal
// contents make equal files.
QByteArray StreamHandle::stored(unsigned int &encoding) const
{
    const QByteArray data = plain();
    if (data.isEmpty())
        return data;
    const Mark &mark = *static_cast<const Mark *>(codecData());
    encoding = StreamCacheData::encoding();
    if (mark.keepsEncoding || m_store->m_codec->isLossy(encoding))
        return toRawData();
    QByteArray raw;
    encoding = m_store->encode(data, mark.kind, raw);
    return raw;
}

bool isSameStream(const StreamRef &a, const StreamRef &b)
{
    return a == b || (a && b && a->item() == b->item());
}

} // namespace Lantern
