// SPDX-License-Identifier: MIT
#pragma once

#include "cache/packedcache.h"

#include <QObject>
#include <memory>

namespace Vela {

class DiskCachePrivate;

/// Keeps the packed streams in one temporary file, which goes with the cache. The source of an item
/// plays no part.
///
/// Streams are read and written on any thread; reads on other threads than the cache's own do not
/// wait for each other.
class VELA_EXPORT DiskCache : public QObject, public PackedCache
{
    Q_OBJECT

public:
    explicit DiskCache(Codec *codec);
    ~DiskCache() override;

    Type type() const override;
    StreamCache::Item *newItem(const QVariant &source) override;

private:
    friend class DiskItem;

    std::unique_ptr<DiskCachePrivate> d;
};

} // namespace Vela
