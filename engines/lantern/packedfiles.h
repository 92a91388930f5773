// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QTemporaryFile>

#include <zlib.h>

#include <condition_variable>
#include <deque>
#include <mutex>
#include <thread>
#include <vector>

namespace Lantern {

class SpoolDevice;

/// The state of zlib's packing, kept for many files: making it anew costs small ones dear.
class Deflater
{
public:
    Deflater();
    ~Deflater();
    Q_DISABLE_COPY(Deflater)

    /// Returns the stream, ready for a new file without a header; null if that fails.
    z_stream *reset();

private:
    z_stream m_stream = {};
    const bool m_isMade;
};

/// The packed files of an archive that is being written, in a nameless temporary file. They are
/// packed by threads of its own, and by the caller's where it would have to wait for them.
class PackedFiles
{
public:
    /// The offset is in the temporary file.
    struct File
    {
        qint64 offset = 0;
        qint64 packedSize = 0;
        qint64 size = 0;
        quint32 crc = 0;
    };

    /// The temporary file is named after a path, beside which it is made.
    explicit PackedFiles(const QString &path);
    /// Drops what is not packed yet.
    ~PackedFiles();

    bool open();
    /// Takes the bytes over to pack them, some time before finish() returns. Returns the number of
    /// the file, counted from 0.
    int add(SpoolDevice &source);
    /// Waits for all files. False if one of them could not be packed; they are all lost then.
    bool finish();

    /// What finish() has waited for.
    const File &at(int number) const;
    bool unpack(int number, QIODevice &target);
    bool copyPacked(int number, QIODevice &target);

private:
    struct Job
    {
        int number;
        QByteArray bytes;
    };
    using Lock = std::unique_lock<std::mutex>;

    void work();
    void startThread();
    void packNext(Deflater &deflater, Lock &lock);
    bool packStream(SpoolDevice &source, File &file);

    Deflater m_deflater; // of the caller's thread
    std::vector<std::thread> m_threads;

    // What follows is shared with the threads, and used under the lock.
    std::mutex m_mutex;
    std::condition_variable m_added;
    std::condition_variable m_packed;
    QTemporaryFile m_file;
    qint64 m_end = 0;
    std::vector<File> m_files;
    std::deque<Job> m_jobs;
    int m_unfinished = 0;
    qint64 m_bytes = 0; // of all that is unfinished
    bool m_failed = false;
    bool m_quits = false;
};

} // namespace Lantern
