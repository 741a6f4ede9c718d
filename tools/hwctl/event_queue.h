// SPDX-License-Identifier: MIT
#pragma once

#include <QSocketNotifier>
#include <functional>
#include <memory>
#include <mutex>
#include <vector>

namespace Hwctl
{

/// Brings work from the devices' threads to the thread of the event loop, in order.
class EventQueue
{
public:
    /// On the thread whose event loop is to do the work.
    EventQueue();
    ~EventQueue();
    EventQueue(const EventQueue&) = delete;
    EventQueue& operator=(const EventQueue&) = delete;

    /// Adds work and wakes the loop. Any thread.
    void Post(std::function<void()> work);
    /// Does all work posted so far. On the thread of the loop.
    void Drain();

private:
    const int m_wakeup; // an eventfd: counts posts that the loop has not seen
    std::mutex m_mutex;
    std::vector<std::function<void()>> m_work; // guarded by m_mutex
    std::unique_ptr<QSocketNotifier> m_notifier;
};

} // namespace Hwctl
