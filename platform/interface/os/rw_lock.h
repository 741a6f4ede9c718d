// SPDX-License-Identifier: MIT
#pragma once

#include <pthread.h>

#include "os/thread_annotations.h"
#include "platform_export.h"

namespace Os
{

/// Reader-writer lock. A waiting writer goes before new readers, so a stream of readers cannot
/// starve it. Not recursive: a thread takes it once, for reading or for writing.
class OS_CAPABILITY("reader-writer lock") PLATFORM_EXPORT RwLock
{
public:
    /// @param readers the greatest number of readers expected at once; kept, not enforced.
    explicit RwLock(unsigned readers);
    ~RwLock();
    RwLock(const RwLock&) = delete;
    RwLock& operator=(const RwLock&) = delete;

    void EnterRead() OS_ACQUIRE_SHARED();
    void LeaveRead() OS_RELEASE_SHARED();
    void EnterWrite() OS_ACQUIRE();
    void LeaveWrite() OS_RELEASE();

    unsigned GetReaders() const noexcept { return m_readers; }

private:
    pthread_rwlock_t m_lock{};
    const unsigned m_readers;
};

/// Holds an RwLock for reading, for the length of a scope or until Unlock().
class OS_SCOPED_CAPABILITY ReadKey
{
public:
    explicit ReadKey(RwLock& lock) OS_ACQUIRE_SHARED(lock) : m_lock(&lock) { lock.EnterRead(); }
    ~ReadKey() OS_RELEASE_GENERIC() { Unlock(); }
    ReadKey(const ReadKey&) = delete;
    ReadKey& operator=(const ReadKey&) = delete;

    /// Releases the lock early; a second call does nothing.
    void Unlock() OS_RELEASE_GENERIC() OS_NO_THREAD_SAFETY_ANALYSIS
    {
        if (m_lock)
            m_lock->LeaveRead();
        m_lock = nullptr;
    }

private:
    RwLock* m_lock;
};

/// Holds an RwLock for writing, for the length of a scope or until Unlock().
class OS_SCOPED_CAPABILITY WriteKey
{
public:
    explicit WriteKey(RwLock& lock) OS_ACQUIRE(lock) : m_lock(&lock) { lock.EnterWrite(); }
    ~WriteKey() OS_RELEASE() { Unlock(); }
    WriteKey(const WriteKey&) = delete;
    WriteKey& operator=(const WriteKey&) = delete;

    /// Releases the lock early; a second call does nothing.
    void Unlock() OS_RELEASE() OS_NO_THREAD_SAFETY_ANALYSIS
    {
        if (m_lock)
            m_lock->LeaveWrite();
        m_lock = nullptr;
    }

private:
    RwLock* m_lock;
};

} // namespace Os
