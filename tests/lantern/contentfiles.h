// SPDX-License-Identifier: MIT
#pragma once

#include "frame/filesystemarchive.h"
#include "project/projectfile.h"
#include "support/memoryarchive.h"

#include <QRunnable>
#include <QSemaphore>
#include <QThreadPool>

#include <memory>

struct ReleaseFile
{
    void operator()(Vela::ProjectFile *file) const
    {
        file->release();
    }
};

/// A file that the test holds.
template <class File>
using HeldFile = std::unique_ptr<File, ReleaseFile>;

/// Returns what a file would be saved as.
inline QByteArray bytesOf(Vela::ProjectFile &file)
{
    MemoryArchive archive;
    const QString name = QStringLiteral("/f");
    return file.toFile(archive, name, Vela::ProjectFile::Copy, nullptr)
        ? archive.content(name)
        : QByteArray("(not written)");
}

/// Returns a file with the content of those bytes.
template <class File>
HeldFile<File> fileOf(const QByteArray &bytes)
{
    MemoryArchive archive({{QStringLiteral("/f"), bytes}});
    HeldFile<File> file(new File);
    file->fromFile(archive, QStringLiteral("/f"), Vela::ProjectFile::Copy, nullptr);
    return file;
}

/// Keeps the threads that load in the background from their work.
class BusyThreads
{
public:
    BusyThreads()
        : m_pool(*QThreadPool::globalInstance())
        , m_threads(m_pool.maxThreadCount())
    {
        m_pool.setMaxThreadCount(1);
        m_pool.start(new Waiting(m_end));
    }
    ~BusyThreads()
    {
        m_end.release();
        m_pool.waitForDone();
        m_pool.setMaxThreadCount(m_threads);
    }

private:
    Q_DISABLE_COPY(BusyThreads)

    class Waiting : public QRunnable
    {
    public:
        explicit Waiting(QSemaphore &end)
            : m_end(end)
        {
        }
        void run() override
        {
            m_end.acquire();
        }

    private:
        QSemaphore &m_end;
    };

    QThreadPool &m_pool;
    const int m_threads;
    QSemaphore m_end;
};

/// Reads a file of the disk, removes an item, and saves it while nothing is loaded yet.
template <class File>
bool saveWhileLoading(File &file, const QString &name, unsigned int removed)
{
    Vela::FileSystemArchive &disk = Vela::FileSystemArchive::instance();
    const BusyThreads threads;
    if (!file.fromFile(disk, name, 0, nullptr))
        return false;
    file.remove(removed);
    return file.toFile(disk, name, 0, nullptr);
}
