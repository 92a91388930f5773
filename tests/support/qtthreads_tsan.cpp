// SPDX-License-Identifier: MIT

// Qt is not built for the thread sanitizer, which does not see how its locks, its thread pool and
// its futures put the work of threads in order. These functions stand before Qt's own and tell it:
// what is done before an unlock comes before what is done behind the next lock, what is done before
// a start before the work, and the work before what is done behind a wait for it. Threads that wait
// for nothing stay as free of each other as they are.

#include <QFutureInterface>
#include <QMutex>
#include <QReadWriteLock>
#include <QThreadPool>
#include <dlfcn.h>
#include <functional>
#include <sanitizer/tsan_interface.h>
#include <utility>

namespace {

void handOver(const void *key)
{
    __tsan_release(const_cast<void *>(key));
}

void takeOver(const void *key)
{
    __tsan_acquire(const_cast<void *>(key));
}

/// Returns Qt's own function of that name, as the compiler writes it.
template <typename Function>
Function *next(const char *name)
{
    return reinterpret_cast<Function *>(dlsym(RTLD_NEXT, name));
}

/// What all copies of a future share.
const void *shared(const QFutureInterfaceBase &future)
{
    return &future.resultStoreBase();
}

} // namespace

void QMutex::lock() QT_MUTEX_LOCK_NOEXCEPT
{
    static auto *const lock = next<void(QMutex *)>("_ZN6QMutex4lockEv");
    lock(this);
    takeOver(this);
}

bool QMutex::tryLock(int timeout) QT_MUTEX_LOCK_NOEXCEPT
{
    static auto *const lock = next<bool(QMutex *, int)>("_ZN6QMutex7tryLockEi");
    const bool isLocked = lock(this, timeout);
    if (isLocked)
        takeOver(this);
    return isLocked;
}

void QMutex::unlock() noexcept
{
    static auto *const unlock = next<void(QMutex *)>("_ZN6QMutex6unlockEv");
    handOver(this);
    unlock(this);
}

void QReadWriteLock::lockForRead()
{
    static auto *const lock = next<void(QReadWriteLock *)>("_ZN14QReadWriteLock11lockForReadEv");
    lock(this);
    takeOver(this);
}

void QReadWriteLock::lockForWrite()
{
    static auto *const lock = next<void(QReadWriteLock *)>("_ZN14QReadWriteLock12lockForWriteEv");
    lock(this);
    takeOver(this);
}

void QReadWriteLock::unlock()
{
    static auto *const unlock = next<void(QReadWriteLock *)>("_ZN14QReadWriteLock6unlockEv");
    handOver(this);
    unlock(this);
}

void QThreadPool::start(std::function<void()> work, int priority)
{
    static auto *const start = next<void(QThreadPool *, std::function<void()>, int)>(
        "_ZN11QThreadPool5startESt8functionIFvvEEi");
    // What the thread gets is a copy of these two pointers, whatever Qt does with it.
    auto *const ordered = new std::function<void()>(std::move(work));
    handOver(this);
    start(
        this,
        [this, ordered] {
            takeOver(this);
            (*ordered)();
            delete ordered;
            handOver(this);
        },
        priority);
}

bool QThreadPool::waitForDone(int milliseconds)
{
    static auto *const wait = next<bool(QThreadPool *, int)>("_ZN11QThreadPool11waitForDoneEi");
    const bool isDone = wait(this, milliseconds);
    takeOver(this);
    return isDone;
}

void QFutureInterfaceBase::reportStarted()
{
    static auto *const report =
        next<void(QFutureInterfaceBase *)>("_ZN20QFutureInterfaceBase13reportStartedEv");
    handOver(shared(*this));
    report(this);
}

// The first that a task of QtConcurrent::run() asks on its thread.
bool QFutureInterfaceBase::isCanceled() const
{
    static auto *const ask =
        next<bool(const QFutureInterfaceBase *)>("_ZNK20QFutureInterfaceBase10isCanceledEv");
    takeOver(shared(*this));
    return ask(this);
}

void QFutureInterfaceBase::reportResultsReady(int begin, int end)
{
    static auto *const report = next<void(QFutureInterfaceBase *, int, int)>(
        "_ZN20QFutureInterfaceBase18reportResultsReadyEii");
    handOver(shared(*this));
    report(this, begin, end);
}

void QFutureInterfaceBase::reportFinished()
{
    static auto *const report =
        next<void(QFutureInterfaceBase *)>("_ZN20QFutureInterfaceBase14reportFinishedEv");
    handOver(shared(*this));
    report(this);
}

void QFutureInterfaceBase::waitForResult(int index)
{
    static auto *const wait =
        next<void(QFutureInterfaceBase *, int)>("_ZN20QFutureInterfaceBase13waitForResultEi");
    wait(this, index);
    takeOver(shared(*this));
}

void QFutureInterfaceBase::waitForFinished()
{
    static auto *const wait =
        next<void(QFutureInterfaceBase *)>("_ZN20QFutureInterfaceBase15waitForFinishedEv");
    wait(this);
    takeOver(shared(*this));
}

// Who gives the last copy of a future up deletes its results.
bool QFutureInterfaceBase::derefT() const
{
    static auto *const deref =
        next<bool(const QFutureInterfaceBase *)>("_ZNK20QFutureInterfaceBase6derefTEv");
    handOver(shared(*this));
    const bool isShared = deref(this);
    takeOver(shared(*this));
    return isShared;
}
