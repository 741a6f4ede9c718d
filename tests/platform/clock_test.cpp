// SPDX-License-Identifier: MIT
#include "os/clock.h"

#include <gtest/gtest.h>
#include <time.h>

#include <cstdint>
#include <type_traits>
#include <vector>

#include "os/thread.h"
#include "standalone/clock_source.h"
#include "support/stepping_clock.h"

namespace
{

/// Tells a time that the test sets, and notes the sleeps without sleeping.
class FakeClock : public Standalone::ClockSource
{
public:
    Os::TimeMs GetMillisecs() override { return now; }
    void Sleep(unsigned milliseconds) override { sleeps.push_back(milliseconds); }

    Os::TimeMs now = 0;
    std::vector<unsigned> sleeps;
};

/// Puts the clock in for the length of a scope.
class Installed
{
public:
    explicit Installed(Standalone::ClockSource& clock)
        : m_previous(Standalone::SetClockSource(&clock))
    {
    }
    ~Installed() { Standalone::SetClockSource(m_previous); }
    Installed(const Installed&) = delete;
    Installed& operator=(const Installed&) = delete;

private:
    Standalone::ClockSource* const m_previous;
};

Os::TimeMs ReadMonotonic()
{
    timespec now{};
    clock_gettime(CLOCK_MONOTONIC, &now);
    return static_cast<Os::TimeMs>(std::int64_t{now.tv_sec} * 1000 + now.tv_nsec / 1000000);
}

/// True where the clock read lies between two readings of the system's.
bool ReadsTheSystemsClock()
{
    const Os::TimeMs before = ReadMonotonic();
    const Os::TimeMs read = Os::GetMillisecs();
    const Os::TimeMs after = ReadMonotonic();
    return read - before <= after - before;
}

TEST(Clock, ReadsTheSystemsMonotonicClock)
{
    EXPECT_TRUE(ReadsTheSystemsClock());
}

TEST(Clock, HasThirtyTwoBits)
{
    EXPECT_TRUE((std::is_same_v<Os::TimeMs, std::uint32_t>));
    EXPECT_TRUE((std::is_same_v<decltype(Os::GetMillisecs()), Os::TimeMs>));
}

TEST(Clock, CanBeReplaced)
{
    FakeClock clock;
    const Installed installed(clock);
    clock.now = 4711;
    EXPECT_EQ(Os::GetMillisecs(), 4711u);
    Os::Thread::Sleep(250);
    EXPECT_EQ(clock.sleeps, std::vector<unsigned>{250});
}

TEST(Clock, IsTheSystemsAgainOnceItIsPutBack)
{
    FakeClock clock;
    {
        const Installed installed(clock);
    }
    EXPECT_TRUE(ReadsTheSystemsClock());
    Os::Thread::Sleep(0);
    EXPECT_TRUE(clock.sleeps.empty());
}

TEST(Clock, IsHandedBackWhenReplaced)
{
    FakeClock first, second;
    EXPECT_EQ(Standalone::SetClockSource(&first), nullptr);
    EXPECT_EQ(Standalone::SetClockSource(&second), &first);
    EXPECT_EQ(Standalone::SetClockSource(nullptr), &second);
}

TEST(Clock, GivesRightDifferencesAcrossTheWrap)
{
    FakeClock clock;
    const Installed installed(clock);
    clock.now = 0xFFFFFFFE;
    const Os::TimeMs before = Os::GetMillisecs();
    clock.now += 5;
    const Os::TimeMs after = Os::GetMillisecs();
    EXPECT_EQ(after, 3u);
    EXPECT_EQ(Os::TimeMs{after - before}, 5u);
}

TEST(Clock, OfTheTestsStandsStillUntilMoved)
{
    TestSupport::SteppingClock clock(100);
    EXPECT_EQ(Os::GetMillisecs(), 100u);
    clock.Advance(40);
    EXPECT_EQ(Os::GetMillisecs(), 140u);
}

} // namespace
