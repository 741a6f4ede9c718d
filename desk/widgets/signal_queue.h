// SPDX-License-Identifier: MIT
#pragma once

#include <deque>
#include <functional>
#include <mutex>
#include <utility>

namespace Desk
{

/// Raises an object's signals one after the other, in the order of the changes that they report.
/// Any thread.
class SignalQueue
{
public:
    typedef std::function<void()> Signal;

    /// Called while the change is made, under the lock that guards what has changed.
    void Put(Signal signal)
    {
        const std::lock_guard hold(m_mutex);
        m_signals.push_back(std::move(signal));
    }

    /// Called without any lock. Returns when all signals have been raised, or at once where another
    /// call, of this thread or of another one, is raising them: that call raises these too. It does
    /// not wait for that call, because a slot may be waiting for this thread.
    void Raise()
    {
        std::unique_lock hold(m_mutex);
        if (m_isRaising)
            return;
        m_isRaising = true;
        while (!m_signals.empty()) {
            const Signal signal = std::move(m_signals.front());
            m_signals.pop_front();
            hold.unlock();
            signal();
            hold.lock();
        }
        m_isRaising = false;
    }

private:
    std::mutex m_mutex; // guards all below
    std::deque<Signal> m_signals;
    bool m_isRaising = false;
};

} // namespace Desk
