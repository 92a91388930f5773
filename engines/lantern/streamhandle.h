// SPDX-License-Identifier: MIT
#pragma once

#include "lantern/streamcodec.h"

#include "cache/asyncfilecache.h"

#include <memory>
#include <vector>

namespace Lantern {

class StreamHandle;

/// What a stream holds. The bytes of one kind may look like those of another.
enum class StreamKind { Image, Palette, Sound };

/// Shared by everything that has the stream, and given up with the last of it.
using StreamRef = std::shared_ptr<StreamHandle>;

/// The streams of a file, and of what has been made since it was read. It lives as long as any of
/// its handles.
class StreamStore : public std::enable_shared_from_this<StreamStore>
{
public:
    /// Streams that are loaded late come from \a fileName on the disk. \a isPreferred tells whether
    /// the streams of the file have the encodings that they are to be written with.
    StreamStore(std::unique_ptr<StreamCodec> codec, const QString &fileName, bool isPreferred);
    ~StreamStore();

    /// Returns a stream that is loaded in the background, from a region of the file.
    StreamRef addLate(Vela::AsyncFileCache::Item::Info info, StreamKind kind);
    /// Waits for the streams that are still being loaded. To be called before their file changes.
    void finishLoads();
    /// Returns a stream of the file's bytes, which have their encoding already. \a crc is of the
    /// plain data.
    StreamRef addRaw(const QByteArray &raw, unsigned int encoding, StreamKind kind,
                     unsigned int crc);
    /// Returns a stream of plain data, with the preferred encoding if that makes it smaller; null
    /// if it cannot be kept.
    StreamRef addPlain(const QByteArray &plain, StreamKind kind);
    /// Returns a stream of plain data with that encoding, which files keep; null if it makes the
    /// data no smaller, or if it cannot be kept.
    StreamRef addEncoded(const QByteArray &plain, unsigned int encoding, StreamKind kind);
    /// Returns a stream that shares the bytes of the first one with that plain data; null if there
    /// is none, or one of another kind.
    StreamRef findTwin(const QByteArray &plain, StreamKind kind);

private:
    Q_DISABLE_COPY(StreamStore)
    friend class StreamHandle;

    StreamRef newHandle();
    StreamRef add(const QVariant &source);
    StreamRef keep(const QByteArray &raw, unsigned int encoding, void *mark, unsigned int crc);
    unsigned int encode(const QByteArray &plain, StreamKind kind, QByteArray &raw);

    const std::unique_ptr<StreamCodec> m_codec;
    Vela::AsyncFileCache *const m_cache;
    const bool m_isPreferred;
    std::vector<std::weak_ptr<StreamHandle>> m_late; ///< those that may still be loading
};

/// A handle on a stream of a store.
class StreamHandle : public Vela::StreamCacheData
{
public:
    /// Returns the plain data; empty if it cannot be had, or is no longer what it was.
    QByteArray plain() const;
    /// Returns the checksum of the plain data for files; 0 for an encoding that not everybody
    /// decodes to the same bits.
    unsigned int plainCrc() const;
    /// Returns the stream as files are to hold it, with its encoding; empty if it cannot be had.
    QByteArray stored(unsigned int &encoding) const;

private:
    friend class StreamStore;

    explicit StreamHandle(std::shared_ptr<StreamStore> store);
    void free() override;

    std::shared_ptr<StreamStore> m_store;
};

/// Returns whether both stand for the same bytes of a cache, or for none.
bool isSameStream(const StreamRef &a, const StreamRef &b);

} // namespace Lantern
