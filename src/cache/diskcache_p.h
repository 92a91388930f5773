// SPDX-License-Identifier: MIT
#pragma once

#include "cache/diskcache.h"

#include <QReadWriteLock>
#include <QTemporaryFile>
#include <array>
#include <map>

namespace Vela {

class DiskItem : public PackedCache::Item
{
public:
    explicit DiskItem(DiskCache *cache);
    ~DiskItem() override;

protected:
    QByteArray readPacked() override;
    bool storePacked(const QByteArray &packed) override;

private:
    friend class DiskCachePrivate;

    DiskCache *const m_cache;
    // Guarded by the cache's lock.
    qint64 m_offset = -1; // in the temporary file; -1 without bytes in it
    quint32 m_length = 0;
};

/// The temporary file is the packed streams one behind the other, with gaps where streams have gone
/// or moved on. A stream is always written behind all others. When the gaps have grown larger than
/// the streams these are moved together, so that a byte stored is moved once on average, however
/// many streams there are.
class DiskCachePrivate
{
public:
    DiskCachePrivate();

    /// Returns fewer bytes if the file cannot be read. Call it with the lock held, on the thread
    /// that owns the cache or for writing.
    QByteArray readHere(qint64 offset, quint32 length);
    /// The same on any thread.
    QByteArray readElsewhere(qint64 offset, quint32 length) const;
    /// Gives the item other bytes, which may be none. Returns false, with the item as it was, if
    /// they could not be written. Call it with the lock held for writing.
    bool store(DiskItem *item, const QByteArray &packed);

    QReadWriteLock lock; // not recursive; taken before the cache's mutex

private:
    void compact();
    bool move(qint64 from, qint64 to, quint32 length);
    bool write(const char *data, qint64 offset, qint64 length);

    QTemporaryFile m_file;
    QString m_fileName;
    std::map<qint64, DiskItem *> m_items; // by their offset
    qint64 m_used = 0;                    // end of the last stream
    qint64 m_live = 0;                    // bytes of the streams
    std::array<char, 32768> m_buffer;     // for moving
};

} // namespace Vela
