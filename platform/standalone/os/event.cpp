// SPDX-License-Identifier: MIT
#include "os/event.h"

#include <chrono>

namespace Os
{

Event::Event(bool signalled) : m_signalled(signalled) {}

void Event::Set()
{
    // Notified under the lock, so that a waiter may destroy the event as soon as it woke.
    const std::lock_guard hold(m_mutex);
    m_signalled = true;
    m_changed.notify_all();
}

void Event::Reset()
{
    const std::lock_guard hold(m_mutex);
    m_signalled = false;
}

bool Event::Wait(unsigned milliseconds)
{
    std::unique_lock hold(m_mutex);
    return m_changed.wait_for(hold, std::chrono::milliseconds(milliseconds),
                              [this] { return m_signalled; });
}

bool Event::Wait()
{
    std::unique_lock hold(m_mutex);
    m_changed.wait(hold, [this] { return m_signalled; });
    return true;
}

} // namespace Os
