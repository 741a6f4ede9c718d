// SPDX-License-Identifier: MIT
#include "os/rw_lock.h"

#include "os/fatal.h"
#include "os/fatal_site.h"

namespace Os
{

namespace
{

constexpr char FatalSite[] = PLATFORM_FATAL_SITE("os/rw_lock.cpp");

} // namespace

RwLock::RwLock(unsigned readers) : m_readers(readers)
{
    pthread_rwlockattr_t attributes;
    OS_VERIFY(pthread_rwlockattr_init(&attributes) == 0, FatalSite);
    // glibc's default lets readers pass a waiting writer for ever.
    OS_VERIFY(pthread_rwlockattr_setkind_np(&attributes,
                                            PTHREAD_RWLOCK_PREFER_WRITER_NONRECURSIVE_NP) == 0,
              FatalSite);
    OS_VERIFY(pthread_rwlock_init(&m_lock, &attributes) == 0, FatalSite);
    pthread_rwlockattr_destroy(&attributes);
}

RwLock::~RwLock()
{
    pthread_rwlock_destroy(&m_lock);
}

// A lock operation fails only when a thread takes the lock twice, which would corrupt what the lock
// guards if it went on.

void RwLock::EnterRead() OS_NO_THREAD_SAFETY_ANALYSIS
{
    OS_VERIFY(pthread_rwlock_rdlock(&m_lock) == 0, FatalSite);
}

void RwLock::LeaveRead() OS_NO_THREAD_SAFETY_ANALYSIS
{
    OS_VERIFY(pthread_rwlock_unlock(&m_lock) == 0, FatalSite);
}

void RwLock::EnterWrite() OS_NO_THREAD_SAFETY_ANALYSIS
{
    OS_VERIFY(pthread_rwlock_wrlock(&m_lock) == 0, FatalSite);
}

void RwLock::LeaveWrite() OS_NO_THREAD_SAFETY_ANALYSIS
{
    OS_VERIFY(pthread_rwlock_unlock(&m_lock) == 0, FatalSite);
}

} // namespace Os
