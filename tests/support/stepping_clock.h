// SPDX-License-Identifier: MIT
#pragma once

#include <condition_variable>
#include <mutex>
#include <vector>

#include "standalone/clock_source.h"

namespace TestSupport
{

/// A clock that stands still until the test moves it, and that knows who sleeps.
///
/// Installed for as long as it lives. At its end every sleeper is woken and later sleeps return at
/// once, so that threads can end; stop them before it goes.
class SteppingClock : public Standalone::ClockSource
{
public:
    explicit SteppingClock(Os::TimeMs start = 1000);
    ~SteppingClock() override;

    Os::TimeMs GetMillisecs() override;
    void Sleep(unsigned milliseconds) override;

    /// Waits until @p count sleeps were begun since the start (0 counts none).
    void WaitForSleeps(std::size_t count);
    /// Moves the clock and wakes whoever has slept enough.
    void Advance(unsigned milliseconds);
    /// Waits for the next sleep to begin, moves the clock to its end, and returns its length.
    unsigned FinishNextSleep();
    /// Lengths of all sleeps begun, oldest first.
    std::vector<unsigned> GetSleeps() const;
    /// From now on sleeps return at once, the ones under way included.
    void Release();

private:
    mutable std::mutex m_mutex;
    std::condition_variable m_changed;
    Os::TimeMs m_now;
    bool m_released = false;
    std::size_t m_finished = 0;
    std::vector<unsigned> m_sleeps;
    Standalone::ClockSource* const m_previous;
};

} // namespace TestSupport
