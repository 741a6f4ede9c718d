// SPDX-License-Identifier: MIT
#pragma once

#include <mutex>

#include "os/thread_annotations.h"
#include "platform_export.h"

namespace Os
{

/// Recursive lock: the thread that holds it may enter again and leaves as often as it entered.
class OS_CAPABILITY("critical section") PLATFORM_EXPORT CriticalSection
{
public:
    CriticalSection() = default;
    CriticalSection(const CriticalSection&) = delete;
    CriticalSection& operator=(const CriticalSection&) = delete;

    void Enter() OS_ACQUIRE();
    void Leave() OS_RELEASE();

private:
    std::recursive_mutex m_mutex;
};

/// Holds a CriticalSection for the length of a scope.
class OS_SCOPED_CAPABILITY Key
{
public:
    explicit Key(CriticalSection& section) OS_ACQUIRE(section) : m_section(section)
    {
        m_section.Enter();
    }
    ~Key() OS_RELEASE() { m_section.Leave(); }
    Key(const Key&) = delete;
    Key& operator=(const Key&) = delete;

private:
    CriticalSection& m_section;
};

} // namespace Os
