// SPDX-License-Identifier: MIT
#include "lantern/packedfiles.h"

#include "lantern/spooldevice.h"

#include <QThread>

#include <memory>
#include <system_error>

namespace Lantern {

namespace {

constexpr int blockSize = 128 * 1024;

// How much may wait in memory. Two files that are as large as memory takes keep two threads busy.
constexpr qint64 memoryLimit = 2 * SpoolDevice::memoryLimit;

// No zlib header: the archive has its own.
constexpr int rawWindow = -MAX_WBITS;

Bytef *bytes(QByteArray &block)
{
    return reinterpret_cast<Bytef *>(block.data());
}

quint32 checksum(const QByteArray &block, int length, quint32 before)
{
    return quint32(crc32(before, reinterpret_cast<const Bytef *>(block.constData()), uInt(length)));
}

bool packAtOnce(z_stream *stream, QByteArray &source, QByteArray &packed)
{
    if (!stream)
        return false;
    packed.resize(int(deflateBound(stream, uLong(source.size()))));
    stream->next_in = bytes(source);
    stream->avail_in = uInt(source.size());
    stream->next_out = bytes(packed);
    stream->avail_out = uInt(packed.size());
    const bool whole = deflate(stream, Z_FINISH) == Z_STREAM_END;
    packed.chop(int(stream->avail_out));
    return whole;
}

} // namespace

Deflater::Deflater()
    : m_isMade(deflateInit2(&m_stream, Z_DEFAULT_COMPRESSION, Z_DEFLATED, rawWindow,
                            MAX_MEM_LEVEL - 1, Z_DEFAULT_STRATEGY)
               == Z_OK)
{
}

Deflater::~Deflater()
{
    deflateEnd(&m_stream);
}

z_stream *Deflater::reset()
{
    m_stream.avail_in = 0;
    return m_isMade && deflateReset(&m_stream) == Z_OK ? &m_stream : nullptr;
}

PackedFiles::PackedFiles(const QString &path)
    : m_file(path + QStringLiteral(".XXXXXX"))
{
}

PackedFiles::~PackedFiles()
{
    {
        const Lock lock(m_mutex);
        m_quits = true;
    }
    m_added.notify_all();
    for (std::thread &thread : m_threads)
        thread.join();
}

bool PackedFiles::open()
{
    return m_file.open();
}

int PackedFiles::add(SpoolDevice &source)
{
    const bool streams = !source.isInMemory();
    Lock lock(m_mutex);
    const int number = int(m_files.size());
    m_files.emplace_back();
    if (!source.isWhole() || (streams && !packStream(source, m_files.back())))
        m_failed = true;
    if (streams || m_failed)
        return number;

    m_jobs.push_back({number, source.takeMemory()});
    m_bytes += m_jobs.back().bytes.size();
    ++m_unfinished;
    startThread();
    m_added.notify_one();
    while (m_bytes > memoryLimit && !m_jobs.empty())
        packNext(m_deflater, lock);
    m_packed.wait(lock, [this] { return m_bytes <= memoryLimit; });
    return number;
}

bool PackedFiles::finish()
{
    Lock lock(m_mutex);
    while (!m_jobs.empty())
        packNext(m_deflater, lock);
    m_packed.wait(lock, [this] { return m_unfinished == 0; });
    return !m_failed;
}

const PackedFiles::File &PackedFiles::at(int number) const
{
    return m_files.at(size_t(number));
}

// One for each processor besides the caller's, once there is something to do for it.
void PackedFiles::startThread()
{
    if (m_jobs.size() <= m_threads.size()
        || int(m_threads.size()) >= QThread::idealThreadCount() - 1)
        return;
    try {
        m_threads.emplace_back(&PackedFiles::work, this);
    } catch (const std::system_error &) {
        // The caller's thread packs what the others do not.
    }
}

void PackedFiles::work()
{
    Deflater deflater;
    Lock lock(m_mutex);
    while (true) {
        m_added.wait(lock, [this] { return m_quits || !m_jobs.empty(); });
        if (m_quits)
            return;
        packNext(deflater, lock);
    }
}

// Takes the oldest job, and frees the lock while it packs.
void PackedFiles::packNext(Deflater &deflater, Lock &lock)
{
    Job job = std::move(m_jobs.front());
    m_jobs.pop_front();
    lock.unlock();
    const qint64 size = job.bytes.size();
    const quint32 crc = checksum(job.bytes, job.bytes.size(), 0);
    QByteArray packed;
    const bool whole = packAtOnce(deflater.reset(), job.bytes, packed);
    job.bytes.clear();
    lock.lock();

    m_files[size_t(job.number)] = {m_end, packed.size(), size, crc};
    if (!whole || !m_file.seek(m_end) || m_file.write(packed) != packed.size())
        m_failed = true;
    m_end += packed.size();
    m_bytes -= size;
    --m_unfinished;
    m_packed.notify_one();
}

bool PackedFiles::packStream(SpoolDevice &source, File &file)
{
    z_stream *const stream = m_deflater.reset();
    file.offset = m_end;
    file.size = source.size();
    if (!stream || !m_file.seek(m_end))
        return false;
    source.close();
    source.open(QIODevice::ReadOnly | QIODevice::Unbuffered);

    QByteArray in(blockSize, Qt::Uninitialized);
    QByteArray out(blockSize, Qt::Uninitialized);
    qint64 left = file.size;
    int result = Z_OK;
    while (result != Z_STREAM_END) {
        if (stream->avail_in == 0 && left > 0) {
            const qint64 length = source.read(in.data(), in.size());
            if (length <= 0)
                return false;
            left -= length;
            file.crc = checksum(in, int(length), file.crc);
            stream->next_in = bytes(in);
            stream->avail_in = uInt(length);
        }
        stream->next_out = bytes(out);
        stream->avail_out = uInt(out.size());
        result = deflate(stream, left > 0 ? Z_NO_FLUSH : Z_FINISH);
        const qint64 length = out.size() - qint64(stream->avail_out);
        if (result == Z_STREAM_ERROR || m_file.write(out.constData(), length) != length)
            return false;
        file.packedSize += length;
    }
    m_end += file.packedSize;
    return true;
}

bool PackedFiles::unpack(int number, QIODevice &target)
{
    z_stream stream = {};
    if (!m_file.seek(at(number).offset) || inflateInit2(&stream, rawWindow) != Z_OK)
        return false;
    const std::unique_ptr<z_stream, decltype(&inflateEnd)> guard(&stream, &inflateEnd);
    QByteArray in(blockSize, Qt::Uninitialized);
    QByteArray out(blockSize, Qt::Uninitialized);
    qint64 left = at(number).packedSize;
    int result = Z_OK;
    while (result != Z_STREAM_END) {
        if (stream.avail_in == 0) {
            const qint64 length = m_file.read(in.data(), qMin(left, qint64(in.size())));
            if (length <= 0)
                return false;
            left -= length;
            stream.next_in = bytes(in);
            stream.avail_in = uInt(length);
        }
        stream.next_out = bytes(out);
        stream.avail_out = uInt(out.size());
        result = inflate(&stream, Z_NO_FLUSH);
        const qint64 length = out.size() - qint64(stream.avail_out);
        if ((result != Z_OK && result != Z_STREAM_END)
            || target.write(out.constData(), length) != length)
            return false;
    }
    return true;
}

bool PackedFiles::copyPacked(int number, QIODevice &target)
{
    qint64 left = at(number).packedSize;
    if (!m_file.seek(at(number).offset))
        return false;
    QByteArray block(int(qMin(left, qint64(blockSize))), Qt::Uninitialized);
    while (left > 0) {
        const qint64 length = m_file.read(block.data(), qMin(left, qint64(block.size())));
        if (length <= 0 || target.write(block.constData(), length) != length)
            return false;
        left -= length;
    }
    return true;
}

} // namespace Lantern
