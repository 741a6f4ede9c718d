// SPDX-License-Identifier: MIT
// Rates that run backwards, stand still, creep or are no numbers.
#include <gmock/gmock.h>

#include <limits>

#include "timecode/sim_bench.h"

namespace
{

using namespace Hardware;
using Hardware::Timecode::Frame;
using testing::Each;
using testing::ElementsAre;
using TestSupport::WaitUntil;

constexpr double Infinity = std::numeric_limits<double>::infinity();
constexpr double NotANumber = std::numeric_limits<double>::quiet_NaN();

using SimReverse = TestSupport::SimBench;

TEST_F(SimReverse, CountsDown)
{
    device->SetRate(1, -25.0);
    device->Jump(1, Frame(0, 0, 10, 0, false));
    Start();
    Passes(3);
    EXPECT_THAT(log.GetFrames(),
                ElementsAre("00:00:10:00", "00:00:09:24", "00:00:09:23", "00:00:09:22"));
}

TEST_F(SimReverse, IsPacedAsForwardPlayIs)
{
    device->SetRate(1, -30.0);
    Start();
    Passes(5);
    EXPECT_THAT(clock.GetSleeps(), ElementsAre(33, 34, 33, 33, 34, 33));
}

TEST_F(SimReverse, GoesOnBelowMidnightWithNegativeFields)
{
    device->SetRate(1, -25.0);
    device->Jump(1, Frame(0, 0, 0, 1, false));
    Start();
    Passes(2);
    EXPECT_THAT(log.GetFrames(), ElementsAre("00:00:00:01", "00:00:00:00", "00:00:00:-1"));
}

TEST_F(SimReverse, TurnsRoundWhereItIs)
{
    device->SetRate(1, 25.0);
    device->Jump(1, Frame(0, 0, 1, 0, false));
    Start();
    device->SetRate(1, -25.0);
    EXPECT_THAT(FramesOf([this] { Passes(3); }),
                ElementsAre("00:00:01:01", "00:00:01:00", "00:00:00:24"));
}

TEST_F(SimReverse, SleepsAtLeastAMillisecond)
{
    device->SetRate(1, -25.0);
    Start();
    Pass(40);
    Pass();
    EXPECT_THAT(clock.GetSleeps(), ElementsAre(40, 1, 39));
}

using SimStandstill = TestSupport::SimBench;

TEST_F(SimStandstill, OfARunningInstanceIsARateOfZero)
{
    device->SetRate(1, 25.0);
    device->Jump(1, Frame(0, 0, 10, 7, false));
    Start();
    device->SetRate(1, 0.0);
    EXPECT_THAT(FramesOf([this] { Passes(3); }), Each("00:00:00:00"));
    EXPECT_THAT(clock.GetSleeps(), ElementsAre(40, 10, 10, 10));
}

TEST_F(SimStandstill, EndsWithARate)
{
    device->SetRate(1, 0.0);
    Start();
    device->SetRate(1, 25.0);
    EXPECT_THAT(FramesOf([this] { Passes(2); }), ElementsAre("00:00:00:00", "00:00:00:01"));
    EXPECT_THAT(clock.GetSleeps(), ElementsAre(10, 40, 40));
}

TEST_F(SimStandstill, IsARateThatIsNotFinite)
{
    for (const double rate : {NotANumber, Infinity, -Infinity}) {
        device->SetRate(1, rate);
        const std::size_t sleepsBefore = clock.GetSleeps().size();
        const std::vector<std::string> frames = FramesOf([this] {
            Start();
            Passes(3);
        });
        Stop();
        ASSERT_EQ(frames.size(), 4U) << rate;
        EXPECT_THAT(frames, Each(frames.front())) << rate;
        std::vector<unsigned> sleeps = clock.GetSleeps();
        sleeps.erase(sleeps.begin(), sleeps.begin() + static_cast<std::ptrdiff_t>(sleepsBefore));
        EXPECT_THAT(sleeps, Each(10)) << rate;
    }
}

TEST_F(SimStandstill, OfARateThatIsNotFiniteEndsWithAJump)
{
    device->SetRate(1, NotANumber);
    Start();
    device->SetRate(1, 25.0);
    device->Jump(1, Frame(0, 0, 1, 0, false));
    EXPECT_THAT(FramesOf([this] { Passes(2); }), ElementsAre("00:00:01:00", "00:00:01:01"));
}

using SimCreep = TestSupport::SimBench;

TEST_F(SimCreep, SleepsInSlices)
{
    device->SetRate(1, 4.0);
    Start();
    Passes(5);
    EXPECT_THAT(clock.GetSleeps(), ElementsAre(100, 100, 50, 100, 100, 50));
    EXPECT_THAT(log.GetFrames(), ElementsAre("00:00:00:00", "00:00:00:01"));
}

TEST_F(SimCreep, AddsItsSlicesUpToThePeriod)
{
    device->SetRate(1, 0.1);
    Start();
    Passes(99);
    EXPECT_EQ(log.CountFrames(), 1U);
    Pass();
    EXPECT_EQ(log.CountFrames(), 2U);
    EXPECT_THAT(clock.GetSleeps(), Each(100));
}

/// Rates whose period no sleep can hold.
TEST_F(SimCreep, NeverRacesHoweverLittleTheRate)
{
    for (const double rate : {1e-3, 1e-9, 1e-300, 1e-310, 5e-324, -1e-9, -5e-324}) {
        device->SetRate(1, rate);
        EXPECT_EQ(FramesOf([this] {
                      Start();
                      Passes(3);
                  }).size(),
                  1U)
            << rate;
        Stop();
    }
    EXPECT_THAT(clock.GetSleeps(), Each(100));
}

TEST_F(SimCreep, StopsWithinASlice)
{
    device->SetRate(1, 1e-6);
    Start();
    auto stopped = std::async(std::launch::async, [this] { return device->Stop(1); });
    ASSERT_TRUE(WaitUntil([this] { return !device->IsStarted(1); }));
    clock.Advance(100);
    EXPECT_EQ(stopped.wait_for(std::chrono::seconds(20)), std::future_status::ready);
    EXPECT_THAT(clock.GetSleeps(), ElementsAre(100));
    EXPECT_EQ(log.CountFrames(), 1U);
}

TEST_F(SimCreep, RunsOnAtAHighRate)
{
    device->SetRate(1, 1000.0);
    Start();
    Passes(3);
    EXPECT_THAT(clock.GetSleeps(), ElementsAre(1, 1, 1, 1));
}

} // namespace
