// SPDX-License-Identifier: MIT
#include "support/stepped_event.h"

#include <chrono>
#include <utility>

#include "os/event.h"

namespace TestSupport
{

namespace
{

/// One for all events: the programs that have this have one.
struct Steps {
    std::mutex mutex;
    std::condition_variable changed;
    std::vector<int> waits;
    bool isWaiting = false; // not once the wait was ended, though its thread may not know yet
    std::size_t sets = 0;
    std::function<void()> onReset;
    bool isTimeUp = false;
    bool isReleased = false;
};

Steps& GetSteps()
{
    static auto* const steps = new Steps; // events may be waited for until the process ends
    return *steps;
}

} // namespace

std::vector<int> GetWaits()
{
    Steps& steps = GetSteps();
    const std::lock_guard hold(steps.mutex);
    return steps.waits;
}

void WaitForWaits(std::size_t count)
{
    Steps& steps = GetSteps();
    std::unique_lock hold(steps.mutex);
    steps.changed.wait(hold, [&] { return steps.waits.size() >= count && steps.isWaiting; });
}

int AwaitWait()
{
    Steps& steps = GetSteps();
    std::unique_lock hold(steps.mutex);
    steps.changed.wait(hold, [&] { return steps.isWaiting; });
    return steps.waits.back();
}

void TimeOut()
{
    Steps& steps = GetSteps();
    std::unique_lock hold(steps.mutex);
    steps.changed.wait(hold, [&] { return steps.isWaiting; });
    const std::size_t count = steps.waits.size();
    steps.isTimeUp = true;
    steps.isWaiting = false;
    steps.changed.notify_all();
    steps.changed.wait(hold, [&] { return steps.waits.size() > count && steps.isWaiting; });
}

void DoInNextReset(std::function<void()> action)
{
    const std::lock_guard hold(GetSteps().mutex);
    GetSteps().onReset = std::move(action);
}

std::size_t CountSets()
{
    const std::lock_guard hold(GetSteps().mutex);
    return GetSteps().sets;
}

void ReleaseEvents()
{
    Steps& steps = GetSteps();
    const std::lock_guard hold(steps.mutex);
    steps.isReleased = true;
    steps.changed.notify_all();
}

} // namespace TestSupport

namespace Os
{

using TestSupport::GetSteps;
using TestSupport::Steps;

void Event::Set()
{
    Steps& steps = GetSteps();
    const std::lock_guard hold(steps.mutex);
    m_signalled = true;
    steps.isWaiting = false;
    ++steps.sets;
    steps.changed.notify_all();
}

void Event::Reset()
{
    std::unique_lock hold(GetSteps().mutex);
    if (const auto action = std::exchange(GetSteps().onReset, nullptr)) {
        hold.unlock();
        action();
        hold.lock();
    }
    m_signalled = false;
}

bool Event::Wait(unsigned milliseconds)
{
    Steps& steps = GetSteps();
    std::unique_lock hold(steps.mutex);
    steps.waits.push_back(static_cast<int>(milliseconds));
    steps.isWaiting = true;
    steps.changed.notify_all();
    const auto isOver = [&] { return m_signalled || steps.isTimeUp; };
    while (!isOver())
        if (!steps.isReleased)
            steps.changed.wait(hold);
        else if (steps.changed.wait_for(hold, std::chrono::milliseconds(milliseconds)) ==
                 std::cv_status::timeout)
            break;
    steps.isTimeUp = false;
    steps.isWaiting = false;
    return m_signalled;
}

bool Event::Wait()
{
    Steps& steps = GetSteps();
    std::unique_lock hold(steps.mutex);
    steps.waits.push_back(TestSupport::Forever);
    steps.isWaiting = true;
    steps.changed.notify_all();
    steps.changed.wait(hold, [this] { return m_signalled; });
    steps.isWaiting = false;
    return true;
}

} // namespace Os
