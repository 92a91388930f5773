// SPDX-License-Identifier: MIT
#pragma once

#include "cache/streamcache.h"

#include <QFuture>
#include <QMetaType>
#include <QObject>
#include <QString>

namespace Vela {

/// Reads streams out of one large file in the background, into another cache. An item that is not
/// loaded yet reads its bytes from the file itself.
class VELA_EXPORT AsyncFileCache : public QObject, public StreamCache
{
    Q_OBJECT

public:
    class VELA_EXPORT Item : public StreamCache::Item
    {
    public:
        /// The region of the file that holds the stream, in bytes, and what is known of it.
        struct Info
        {
            qint64 offset = 0;
            quint32 size = 0;
            quint32 crc = 0; ///< of the plain data; 0 if it is not known
            quint32 encoding = 0;
            void *codecData = nullptr;
        };

        /// Waits for the load.
        ~Item() override;

        QByteArray rawData() override;
        /// Waits for the load, then stores in the target's item.
        bool setRawData(const QByteArray &data, unsigned int encoding, void *codecData,
                        unsigned int crc) override;

        void waitForDataReady();

    protected:
        /// Binds the item to one of the target's, whose reference it takes over.
        void setItem(StreamCache::Item *item);

    private:
        friend class AsyncFileCache;

        Item(AsyncFileCache *cache, StreamCache::Item *loaded);
        Item(AsyncFileCache *cache, const Info &info);

        std::atomic<StreamCache::Item *> m_loaded{nullptr};
        const QString m_fileName;
        const qint64 m_offset = 0;
        QFuture<void> m_future;
    };

    /// Takes \a target over, which the streams go to. \a codec stays the caller's.
    AsyncFileCache(Codec *codec, StreamCache *target);
    ~AsyncFileCache() override;

    /// Returns the type of the target.
    Type type() const override;
    /// The source is an Item::Info, or nothing for an empty item.
    StreamCache::Item *newItem(const QVariant &source) override;

    QString fileName() const;
    /// Deletes all items, then takes another file.
    void setFileName(const QString &fileName);
    /// Adds an item and begins to load it.
    Item *addAsyncItem(const Item::Info &info);

Q_SIGNALS:
    /// Emitted on a thread of the global pool, or on the one that waits for the load, also to
    /// delete the item. A receiver called directly must not wait for the item or store in it; a
    /// queued call may come when the item is gone.
    void itemLoaded(const Vela::AsyncFileCache::Item *item);

private:
    void load(Item *item);

    StreamCache *const m_target;
    QString m_fileName; // guarded by the mutex of the list
};

} // namespace Vela

Q_DECLARE_METATYPE(const Vela::AsyncFileCache::Item *)
Q_DECLARE_METATYPE(Vela::AsyncFileCache::Item::Info)
