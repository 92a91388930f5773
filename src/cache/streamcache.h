// SPDX-License-Identifier: MIT
#pragma once

#include "frame/object.h"

#include <QByteArray>
#include <QList>
#include <QMutex>
#include <QVariant>
#include <atomic>
#include <map>
#include <utility>

namespace Vela {

/// A store of byte streams, many of which may be equal. Holders refer to the streams through
/// StreamCacheData; items die by their count, and all of them with the cache.
///
/// Workers may add and release items of one cache at the same time. find() is for the time when
/// nobody does.
class VELA_EXPORT StreamCache : public Object
{
public:
    enum Type {
        Default = 0, ///< an argument of instance() only: the setting "cache_type" decides
        Memory = 1,  ///< packed in memory
        Disk = 2,    ///< packed in one temporary file
        Files = 3    ///< each in a file of its own
    };

    class Codec;
    class Item;

    /// Returns a new cache of that type, which is the caller's. \a codec may be null and stays the
    /// caller's; for Files it has to be a FileCache::FileCodec.
    static StreamCache *instance(Codec *codec, Type type);

    /// Deletes the cache.
    void release() override;
    ~StreamCache() override;

    virtual Type type() const = 0;
    /// Makes an item that is not in the list yet. What \a source means is the cache's business.
    virtual Item *newItem(const QVariant &source) = 0;

    Codec *codec() const;

    /// Makes an item and enters it in the list. Its one reference is the caller's.
    Item *addItem(const QVariant &source);
    /// Gives up one reference on the item, as Item::release() does.
    void removeItem(Item *item);
    /// Returns the first item in list order, but \a exclude, whose plain data equals \a data, or
    /// null. Takes no reference on it. Empty data is never found.
    Item *find(const QByteArray &data, const Item *exclude);
    /// Compares the plain data. Two different items without data are not equal.
    bool isEqual(Item *a, Item *b);
    /// \a crc is the CRC32 of \a data. Empty data equals nothing.
    bool isEqual(Item *item, const QByteArray &data, unsigned int crc);
    /// Deletes all items, whoever refers to them.
    void clear();

protected:
    explicit StreamCache(Codec *codec);

    /// Guards the list of items, and what a derived class wants to guard with it.
    QMutex &mutex() const;

private:
    Q_DISABLE_COPY(StreamCache)

    class Compared;

    Item *nextCandidate(unsigned int crc, quint64 place) const;
    void remove(Item *item);
    void setCrc(Item *item, unsigned int crc);

    Codec *const m_codec;
    QList<Item *> m_items;
    // The same items by their checksum, then by their place in the list.
    std::map<std::pair<unsigned int, quint64>, Item *> m_byCrc;
    quint64 m_lastPlace = 0;
    mutable QMutex m_mutex;
};

/// Turns plain data into the form that the cache keeps, and back. It is called from whatever
/// thread asks for the data.
class VELA_EXPORT StreamCache::Codec : public Object
{
public:
    /// Returns false if \a raw is no stream of that encoding.
    virtual bool decode(unsigned int encoding, void *codecData, const QByteArray &raw,
                        QByteArray &data) = 0;
    /// Returns false if \a data cannot take that encoding.
    virtual bool encode(unsigned int encoding, void *codecData, const QByteArray &data,
                        QByteArray &raw) = 0;
};

/// One stream of a cache. It is counted, beginning at 1; the count may change on any thread.
class VELA_EXPORT StreamCache::Item : public Object
{
public:
    /// At the last reference the item leaves its cache and is deleted.
    void release() override;
    ~Item() override;

    /// Returns the stream as it is kept: in the codec's form if encoding() is not 0.
    virtual QByteArray rawData() = 0;
    /// Keeps a stream that has that encoding already. \a crc is that of the plain data; 0 if it is
    /// not known. Returns false if the stream could not be kept.
    virtual bool setRawData(const QByteArray &data, unsigned int encoding, void *codecData,
                            unsigned int crc);

    void addRef();
    int refCount() const;
    StreamCache *cache() const;
    /// Returns the length of the stream of rawData() in bytes.
    unsigned int size() const;
    /// Returns the CRC32 of the plain data; 0 if nobody has asked for it yet.
    unsigned int crc() const;
    /// Returns 0 if rawData() is the plain data; other values are the codec's.
    unsigned int encoding() const;
    /// Returns what the codec wants to know of this stream. The item does not own it.
    void *codecData() const;

    /// Returns the plain data; empty if it could not be read or decoded.
    QByteArray data();
    /// Encodes and keeps plain data. Returns false, with the item as it was, if the codec fails, or
    /// if the stream could not be kept.
    bool setData(const QByteArray &data, unsigned int encoding, void *codecData, unsigned int crc);
    bool isEqualTo(Item *other);
    bool isEqualTo(const QByteArray &data, unsigned int crc);

protected:
    explicit Item(StreamCache *cache);

    /// Notes what the stream is, without a look at it. \a crc is 0 if it is not known.
    void describe(unsigned int size, unsigned int encoding, void *codecData, unsigned int crc);

private:
    Q_DISABLE_COPY(Item)
    friend class StreamCache;

    std::atomic<unsigned int> m_size{0};
    std::atomic<unsigned int> m_crc{0}; // written under the cache's mutex
    std::atomic<int> m_refCount{1};
    std::atomic<unsigned int> m_encoding{0};
    std::atomic<void *> m_codecData{nullptr};
    StreamCache *const m_cache;
    quint64 m_place = 0; // grows along the list; 0 outside; guarded by the cache's mutex
};

/// A counted handle on an item, which a sprite or a sound holds. It begins at a count of 1.
class VELA_EXPORT StreamCacheData : public Object
{
public:
    /// Takes the caller's reference on \a item over, which may be null.
    explicit StreamCacheData(StreamCache::Item *item);

    void release() override;
    ~StreamCacheData() override;

protected:
    /// Destroys the handle; called when its count has reached 0.
    virtual void free() = 0;

public:
    void addRef();
    int refCount() const;
    StreamCache::Item *item() const;
    /// These four are null or 0 without an item.
    StreamCache *cache() const;
    unsigned int crc() const;
    unsigned int encoding() const;
    void *codecData() const;
    bool isEmpty() const;

    /// Empties the item. It stays the handle's.
    void reset();
    /// Stores plain data in the item, as Item::setData() does; false without an item.
    bool fromData(const QByteArray &data, unsigned int encoding, void *codecData, unsigned int crc);
    /// Stores a stream that has its encoding already; false without an item.
    bool fromRawData(const QByteArray &data, unsigned int encoding, void *codecData,
                     unsigned int crc);
    QByteArray toData() const;
    QByteArray toRawData() const;

    /// Two handles without an item are equal.
    bool isEqualTo(StreamCache::Item *item) const;
    bool isEqualToData(const QByteArray &data, unsigned int crc) const;
    /// Changes over to a twin: takes a reference on \a item and gives up the one on its own. Does
    /// nothing if the two belong to different caches.
    void itemSwap(StreamCache::Item *item);

protected:
    /// Gives up the item, and adds a new one to \a cache in its place.
    void createItem(StreamCache *cache, const QVariant &source);

private:
    Q_DISABLE_COPY(StreamCacheData)

    StreamCache::Item *m_item;
    std::atomic<int> m_refCount{1};
};

} // namespace Vela
