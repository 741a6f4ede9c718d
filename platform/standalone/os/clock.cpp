// SPDX-License-Identifier: MIT
#include "os/clock.h"

#include <atomic>
#include <cerrno>
#include <ctime>

#include "os/clock_implementation.h"
#include "standalone/clock_source.h"

namespace Os
{

namespace
{

class SystemClock final : public Standalone::ClockSource
{
public:
    TimeMs GetMillisecs() override
    {
        timespec now{};
        clock_gettime(CLOCK_MONOTONIC, &now);
        const auto milliseconds = static_cast<std::uint64_t>(now.tv_sec) * 1000 +
                                  static_cast<std::uint64_t>(now.tv_nsec) / 1000000;
        return static_cast<TimeMs>(milliseconds);
    }

    void Sleep(unsigned milliseconds) override
    {
        timespec until{};
        clock_gettime(CLOCK_MONOTONIC, &until);
        until.tv_sec += milliseconds / 1000;
        until.tv_nsec += static_cast<long>(milliseconds % 1000) * 1000000;
        if (until.tv_nsec >= 1000000000) {
            until.tv_nsec -= 1000000000;
            ++until.tv_sec;
        }
        // An absolute end lets an interrupted sleep go on without drifting.
        while (clock_nanosleep(CLOCK_MONOTONIC, TIMER_ABSTIME, &until, nullptr) == EINTR) {
        }
    }
};

SystemClock& GetSystemClock()
{
    // Never destroyed: threads may still sleep while the process exits.
    static SystemClock& clock = *new SystemClock;
    return clock;
}

std::atomic<Standalone::ClockSource*> g_source{nullptr};

Standalone::ClockSource& GetSource()
{
    Standalone::ClockSource* const source = g_source.load(std::memory_order_acquire);
    return source ? *source : GetSystemClock();
}

} // namespace

TimeMs GetMillisecs()
{
    return GetSource().GetMillisecs();
}

void SleepOnClock(unsigned milliseconds)
{
    GetSource().Sleep(milliseconds);
}

} // namespace Os

namespace Standalone
{

ClockSource::~ClockSource() = default;

ClockSource* SetClockSource(ClockSource* source)
{
    return Os::g_source.exchange(source, std::memory_order_acq_rel);
}

} // namespace Standalone
