// SPDX-License-Identifier: MIT
#include "cache/diskcache_p.h"

#include <QThread>
#include <algorithm>

namespace Vela {

DiskItem::DiskItem(DiskCache *cache)
    : PackedCache::Item(cache)
    , m_cache(cache)
{
}

DiskItem::~DiskItem()
{
    const QWriteLocker guard(&m_cache->d->lock);
    m_cache->d->store(this, QByteArray());
}

QByteArray DiskItem::readPacked()
{
    DiskCachePrivate &d = *m_cache->d;
    const QReadLocker guard(&d.lock);
    if (m_offset < 0)
        return QByteArray();
    const bool here = QThread::currentThread() == m_cache->thread();
    const QByteArray packed =
        here ? d.readHere(m_offset, m_length) : d.readElsewhere(m_offset, m_length);
    return quint32(packed.size()) == m_length ? packed : QByteArray();
}

bool DiskItem::storePacked(const QByteArray &packed)
{
    const QWriteLocker guard(&m_cache->d->lock);
    return m_cache->d->store(this, packed);
}

DiskCachePrivate::DiskCachePrivate()
{
    // Without a buffer, which would keep what a full disk has refused and write it later, in the
    // place of something else. The name is asked for here, as this is what makes a file that others
    // can open.
    QFile &file = m_file; // a QTemporaryFile lets nobody choose the mode
    if (file.open(QIODevice::ReadWrite | QIODevice::Unbuffered))
        m_fileName = m_file.fileName();
}

QByteArray DiskCachePrivate::readHere(qint64 offset, quint32 length)
{
    return m_file.seek(offset) ? m_file.read(length) : QByteArray();
}

QByteArray DiskCachePrivate::readElsewhere(qint64 offset, quint32 length) const
{
    QFile file(m_fileName);
    if (!file.open(QIODevice::ReadOnly | QIODevice::Unbuffered) || !file.seek(offset))
        return QByteArray();
    return file.read(length);
}

bool DiskCachePrivate::store(DiskItem *item, const QByteArray &packed)
{
    if (!packed.isEmpty() && !write(packed.constData(), m_used, packed.size()))
        return false;
    if (item->m_offset >= 0)
        m_items.erase(item->m_offset);
    m_live += packed.size() - qint64(item->m_length);
    item->m_length = quint32(packed.size());
    item->m_offset = -1;
    if (!packed.isEmpty()) {
        item->m_offset = m_used;
        m_items.emplace_hint(m_items.end(), m_used, item);
        m_used += packed.size();
    }
    if (m_used - m_live > m_live)
        compact();
    return true;
}

// Moves the streams to the front of the file, in their order.
void DiskCachePrivate::compact()
{
    std::map<qint64, DiskItem *> moved;
    m_used = 0;
    for (const auto &[offset, item] : m_items) {
        if (!move(offset, m_used, item->m_length)) {
            if (m_used + item->m_length > offset) { // overwritten in part: lost with the disk
                m_live -= item->m_length;
                item->m_offset = -1;
                item->m_length = 0;
                continue;
            }
            m_used = offset; // it stays where it is
        }
        item->m_offset = m_used;
        moved.emplace_hint(moved.end(), m_used, item);
        m_used += item->m_length;
    }
    m_items.swap(moved);
}

// Moves towards the front; the two places may overlap.
bool DiskCachePrivate::move(qint64 from, qint64 to, quint32 length)
{
    if (from == to)
        return true;
    for (quint32 done = 0; done < length;) {
        const qint64 step = std::min<qint64>(length - done, qint64(m_buffer.size()));
        if (!m_file.seek(from + done) || m_file.read(m_buffer.data(), step) != step
            || !write(m_buffer.data(), to + done, step))
            return false;
        done += quint32(step);
    }
    return true;
}

bool DiskCachePrivate::write(const char *data, qint64 offset, qint64 length)
{
    return m_file.isOpen() && m_file.seek(offset) && m_file.write(data, length) == length;
}

DiskCache::DiskCache(Codec *codec)
    : PackedCache(codec)
    , d(std::make_unique<DiskCachePrivate>())
{
}

DiskCache::~DiskCache()
{
    // While the items still find their file.
    clear();
}

StreamCache::Type DiskCache::type() const
{
    return Disk;
}

StreamCache::Item *DiskCache::newItem(const QVariant &)
{
    return new DiskItem(this);
}

} // namespace Vela
