// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <functional>
#include <vector>

/// A program with stepped_event.cpp among its sources has its own Os::Event::Set(), Reset() and
/// Wait(), which stand before the platform's. A wait with a time limit does not end by time but
/// when the test says so, or when the event is set.
namespace TestSupport
{

constexpr int Forever = -1;

/// Milliseconds of every wait that was begun, Forever for one without limit.
std::vector<int> GetWaits();
/// Waits until that many waits were begun, and the last of them has not ended.
void WaitForWaits(std::size_t count);
/// Waits until somebody waits. Returns the milliseconds, or Forever.
int AwaitWait();
/// Ends the wait under way as its time would, and returns once the next one was begun.
void TimeOut();
/// Ends the wait under way by setting the event, as the product's @p act does, and returns once
/// the next one was begun.
template <class Act> void Wake(Act act);
/// Called once, in the next Reset(), before it does anything.
void DoInNextReset(std::function<void()> action);
/// How often an event was set.
std::size_t CountSets();
/// From now on waits end as the platform's do.
void ReleaseEvents();

template <class Act> void Wake(Act act)
{
    AwaitWait();
    const std::size_t count = GetWaits().size();
    act();
    WaitForWaits(count + 1);
}

} // namespace TestSupport
