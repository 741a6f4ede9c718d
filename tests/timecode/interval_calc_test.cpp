// SPDX-License-Identifier: MIT
// Whole sleeps from frame periods with a fraction.
#include "hardware/timecode/interval_calc.h"

#include <gmock/gmock.h>

#include <cstdint>
#include <limits>
#include <vector>

#include "support/stepping_clock.h"

namespace
{

using namespace Hardware::Timecode;
using testing::ElementsAre;
using TestSupport::SteppingClock;

constexpr double Infinity = std::numeric_limits<double>::infinity();
constexpr std::int32_t Highest = std::numeric_limits<std::int32_t>::max();
constexpr std::int32_t Lowest = std::numeric_limits<std::int32_t>::min();

std::int32_t Next(IntervalCalc& calc)
{
    return static_cast<std::int32_t>(calc.GetMillisecs());
}

/// Results when every sleep takes exactly what it was told to.
std::vector<std::int32_t> ListResults(double interval, int count)
{
    SteppingClock clock;
    IntervalCalc calc(interval);
    std::vector<std::int32_t> results;
    for (int i = 0; i < count; ++i) {
        results.push_back(Next(calc));
        clock.Advance(static_cast<unsigned>(results.back()));
    }
    return results;
}

TEST(IntervalCalc, TwentyFiveFramesAreFortyMillisecondsEach)
{
    EXPECT_THAT(ListResults(40.0, 1000), testing::Each(40));
}

TEST(IntervalCalc, ThreeFramesOfThirtyTakeAHundredMilliseconds)
{
    EXPECT_THAT(ListResults(1000.0 / 30.0, 12),
                ElementsAre(33, 34, 33, 33, 34, 33, 33, 34, 33, 33, 34, 33));
}

TEST(IntervalCalc, NtscVideoRateAddsUpItsFractions)
{
    EXPECT_THAT(ListResults(1000.0 / 29.97, 9), ElementsAre(33, 34, 33, 33, 34, 33, 34, 34, 33));
}

TEST(IntervalCalc, TwentyFourFramesRunAheadAtFirst)
{
    EXPECT_THAT(ListResults(1000.0 / 24.0, 6), ElementsAre(42, 41, 41, 42, 41, 41));
}

TEST(IntervalCalc, AFractionOfAHalfIsAMillisecond)
{
    EXPECT_THAT(ListResults(10.5, 4), ElementsAre(11, 10, 11, 10));
    EXPECT_THAT(ListResults(10.499, 1), ElementsAre(10));
    EXPECT_THAT(ListResults(10.999, 1), ElementsAre(11));
}

TEST(IntervalCalc, AFractionThatFloatingPointMissedIsNone)
{
    EXPECT_THAT(ListResults(10.9999998, 1), ElementsAre(11));
    EXPECT_THAT(ListResults(10.99999995, 1), ElementsAre(10));
}

struct Lateness {
    double interval;
    unsigned elapsed; ///< between the first call and the second
    int second;       ///< result of the second
};

TEST(IntervalCalc, TakesLatenessOffTheNextSleepUpToOneFrame)
{
    const Lateness cases[] = {{40.0, 40, 40},
                              {40.0, 41, 39},
                              {40.0, 79, 1},
                              {40.0, 80, 0},
                              {40.0, 81, 40},
                              {40.0, 100000, 40},
                              // an early wake-up lengthens the next sleep
                              {40.0, 30, 50},
                              {40.0, 0, 80},
                              // one frame is the exact period
                              {1000.0 / 30.0, 33 + 33, 1},
                              {1000.0 / 30.0, 33 + 34, 34},
                              // half the clock's range is early, not late
                              {40.0, 0x7FFFFFFFU + 40, 40},
                              {40.0, 0x80000000U + 40, Highest},
                              {40.0, 0x80000001U + 40, Highest}};
    for (const auto& [interval, elapsed, second] : cases) {
        SteppingClock clock;
        IntervalCalc calc(interval);
        Next(calc);
        clock.Advance(elapsed);
        EXPECT_EQ(Next(calc), second) << interval << " ms, " << elapsed << " later";
    }
}

TEST(IntervalCalc, LatenessIsAgainstTheResultBefore)
{
    SteppingClock clock;
    IntervalCalc calc(40.0);
    EXPECT_EQ(Next(calc), 40);
    clock.Advance(50);
    EXPECT_EQ(Next(calc), 30);
    clock.Advance(30);
    EXPECT_EQ(Next(calc), 40);
}

TEST(IntervalCalc, FollowsTheClockAcrossItsWrap)
{
    SteppingClock clock(0xFFFFFFF0);
    IntervalCalc calc(40.0);
    EXPECT_EQ(Next(calc), 40);
    clock.Advance(45);
    EXPECT_EQ(Next(calc), 35);
}

TEST(IntervalCalc, AReadingOfZeroCountsAsNone)
{
    SteppingClock clock(0U - 40U);
    IntervalCalc calc(40.0);
    EXPECT_EQ(Next(calc), 40);
    clock.Advance(40);
    EXPECT_EQ(Next(calc), 40);
    clock.Advance(50);
    EXPECT_EQ(Next(calc), 40);
    clock.Advance(50);
    EXPECT_EQ(Next(calc), 30);
}

TEST(IntervalCalc, GivesItsIntervalBack)
{
    IntervalCalc calc(40.0);
    EXPECT_EQ(calc.GetInterval(), 40.0);
    calc.SetInterval(33.5);
    EXPECT_EQ(calc.GetInterval(), 33.5);
}

TEST(IntervalCalc, ForgetsTheFractionsWithANewInterval)
{
    SteppingClock clock;
    IntervalCalc calc(10.3);
    EXPECT_EQ(Next(calc), 10);
    calc.SetInterval(10.3);
    EXPECT_EQ(Next(calc), 10);
}

TEST(IntervalCalc, ForgetsTheClockWithANewInterval)
{
    SteppingClock clock;
    IntervalCalc calc(40.0);
    Next(calc);
    clock.Advance(30);
    calc.SetInterval(40.0);
    EXPECT_EQ(Next(calc), 40);
}

TEST(IntervalCalc, ANegativeIntervalGivesNegativeSleeps)
{
    SteppingClock clock;
    IntervalCalc calc(-40.0);
    EXPECT_EQ(Next(calc), -40);
    // 40 late against -40, which is more than the interval
    EXPECT_EQ(Next(calc), -40);

    calc.SetInterval(-1000.0 / 30.0);
    EXPECT_EQ(Next(calc), -32) << "cut towards zero, and the fraction of -33.3 is two thirds";
}

TEST(IntervalCalc, NoIntervalGivesNoSleep)
{
    SteppingClock clock;
    IntervalCalc calc(0.0);
    EXPECT_EQ(Next(calc), 0);
    clock.Advance(5);
    EXPECT_EQ(Next(calc), 0);
}

TEST(IntervalCalc, ResultsBeyondTheRangeAreTheNearestBound)
{
    for (const double interval : {Infinity, std::numeric_limits<double>::max(), 3e9}) {
        SteppingClock clock;
        IntervalCalc calc(interval);
        for (int i = 0; i < 3; ++i)
            EXPECT_EQ(Next(calc), Highest) << interval;
    }
    for (const double interval : {-Infinity, std::numeric_limits<double>::lowest(), -3e9}) {
        IntervalCalc calc(interval);
        for (int i = 0; i < 3; ++i)
            EXPECT_EQ(Next(calc), Lowest) << interval;
    }
}

TEST(IntervalCalc, WhatIsNotANumberGivesNoSleep)
{
    SteppingClock clock;
    IntervalCalc calc(std::numeric_limits<double>::quiet_NaN());
    EXPECT_EQ(Next(calc), 0);
    EXPECT_EQ(Next(calc), 0);
}

} // namespace
