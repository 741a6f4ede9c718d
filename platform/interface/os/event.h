// SPDX-License-Identifier: MIT
#pragma once

#include <condition_variable>
#include <mutex>

#include "platform_export.h"

namespace Os
{

/// A flag to wait for. Manual reset: once set it lets every waiter through until Reset().
/// Any thread may call any operation.
class PLATFORM_EXPORT Event
{
public:
    explicit Event(bool signalled = false);
    Event(const Event&) = delete;
    Event& operator=(const Event&) = delete;

    void Set();
    void Reset();

    /// Waits at most @p milliseconds. True when the event was set, false on time-out.
    bool Wait(unsigned milliseconds);
    /// Waits without limit. Always true.
    bool Wait();

private:
    std::mutex m_mutex;
    std::condition_variable m_changed;
    bool m_signalled; // guarded by m_mutex
};

} // namespace Os
