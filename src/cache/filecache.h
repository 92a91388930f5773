// SPDX-License-Identifier: MIT
#pragma once

#include "cache/streamcache.h"

#include <QMetaType>
#include <QString>

namespace Vela {

/// Each stream is a file of its own, in its codec's form. An item's source is an ItemInfo or a file
/// name.
class VELA_EXPORT FileCache : public StreamCache
{
public:
    /// A codec that knows the encodings of files.
    class VELA_EXPORT FileCodec : public StreamCache::Codec
    {
    public:
        /// Returns the encoding of files with that suffix, which has no dot.
        virtual unsigned int encodingOf(const QString &suffix) const = 0;
    };

    /// Where an item's file is, and what its codec is told.
    struct ItemInfo
    {
        ItemInfo() = default;
        ItemInfo(const QString &name, void *data = nullptr)
            : fileName(name)
            , codecData(data)
        {
        }

        QString fileName;
        void *codecData = nullptr;
    };

    class VELA_EXPORT Item : public StreamCache::Item
    {
    public:
        Item(FileCache *cache, const ItemInfo &info);

        /// Returns the file's bytes; empty if it cannot be read.
        QByteArray rawData() override;
        /// Writes the file. Returns false for the encoding 0, which no file has, and for a file
        /// that cannot be written.
        bool setRawData(const QByteArray &data, unsigned int encoding, void *codecData,
                        unsigned int crc) override;

        QString fileName() const;
        /// Returns whether the file holds anything.
        bool isValid() const;
        bool remove();
        bool rename(const QString &fileName);

    private:
        QString m_fileName;
    };

    explicit FileCache(FileCodec *codec);

    FileCodec *codec() const;
    Type type() const override;
    StreamCache::Item *newItem(const QVariant &source) override;
};

} // namespace Vela

Q_DECLARE_METATYPE(Vela::FileCache::ItemInfo)
