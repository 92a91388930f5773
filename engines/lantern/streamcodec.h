// SPDX-License-Identifier: MIT
#pragma once

#include "cache/streamcache.h"

#include <QByteArray>

namespace Lantern {

/// Encodes the streams of one kind of files for the stream cache and for the files. The encoding 0
/// is the plain data itself. It is a part of its store.
class StreamCodec : public Vela::StreamCache::Codec
{
public:
    void release() override;

    /// Returns the encoding that files are written with. Where its outcome is not smaller than the
    /// plain data, 0 stands in its place.
    virtual unsigned int preferredEncoding(const QByteArray &plain) const = 0;
    /// Encodes plain data. Returns false if that makes it no smaller.
    bool encodeSmaller(unsigned int encoding, const QByteArray &plain, QByteArray &raw);
    /// Returns whether the encoding stands for other data than what was encoded. Such streams stay
    /// in files as they are.
    virtual bool isLossy(unsigned int encoding) const;
};

} // namespace Lantern
