// SPDX-License-Identifier: MIT
#pragma once

#include <condition_variable>
#include <cstdint>
#include <mutex>
#include <thread>

namespace Console
{

/// Delivers the application's messages on a thread of its own, as long as it lives, so that neither
/// a window nor a verb waits for what they bring about.
class MessageCourier
{
public:
    MessageCourier();
    /// Hands delivery back to the application's event loop.
    ~MessageCourier();
    MessageCourier(const MessageCourier&) = delete;
    MessageCourier& operator=(const MessageCourier&) = delete;

    /// Returns once what was posted before is delivered. Any thread but the courier's own.
    void Await();

private:
    void Wake();
    void Work();

    std::mutex m_mutex;
    std::condition_variable m_changed;
    std::uint64_t m_asked = 0; // rounds, guarded by m_mutex
    std::uint64_t m_done = 0;  // of them, guarded by m_mutex
    bool m_isStopping = false; // guarded by m_mutex
    std::thread m_thread;
};

} // namespace Console
