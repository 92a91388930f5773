// SPDX-License-Identifier: MIT
#pragma once

#include <QMutex>
#include <QReadWriteLock>

#if defined(__SANITIZE_THREAD__)
#define VELA_THREAD_SANITIZER
#elif defined(__has_feature)
#if __has_feature(thread_sanitizer)
#define VELA_THREAD_SANITIZER
#endif
#endif

#ifdef VELA_THREAD_SANITIZER
#include <sanitizer/tsan_interface.h>
#endif

namespace Vela {

// The thread sanitizer does not see into Qt, so it is told here what Qt's locks and its thread pool
// put in order: all before handOver() comes before all behind takeOver() of the same object.
inline void handOver([[maybe_unused]] const void *object)
{
#ifdef VELA_THREAD_SANITIZER
    __tsan_release(const_cast<void *>(object));
#endif
}

inline void takeOver([[maybe_unused]] const void *object)
{
#ifdef VELA_THREAD_SANITIZER
    __tsan_acquire(const_cast<void *>(object));
#endif
}

/// Holds a lock as QMutexLocker, QReadLocker and QWriteLocker do.
template <typename Lock, void (Lock::*lockIt)()>
class Guard
{
public:
    explicit Guard(Lock &lock)
        : m_lock(lock)
    {
        (m_lock.*lockIt)();
        takeOver(&m_lock);
    }

    ~Guard()
    {
        handOver(&m_lock);
        m_lock.unlock();
    }

private:
    Q_DISABLE_COPY(Guard)

    Lock &m_lock;
};

using MutexGuard = Guard<QMutex, &QMutex::lock>;
using ReadGuard = Guard<QReadWriteLock, &QReadWriteLock::lockForRead>;
using WriteGuard = Guard<QReadWriteLock, &QReadWriteLock::lockForWrite>;

} // namespace Vela
