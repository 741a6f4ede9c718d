// SPDX-License-Identifier: MIT
// Frames of a running instance, and the sleeps between them.
#include <gmock/gmock.h>

#include "timecode/sim_bench.h"

namespace
{

using namespace Hardware;
using Hardware::Timecode::Frame;
using testing::Each;
using testing::ElementsAre;

using SimFrames = TestSupport::SimBench;

TEST_F(SimFrames, RunFromTheTargetOfTheJumpOneByOne)
{
    device->SetFormat(1, TimecodeFormat_Ebu25);
    device->Jump(1, Frame(0, 0, 1, 0, false));
    Start();
    Passes(49);
    const std::vector<std::string> frames = log.GetFrames();
    ASSERT_EQ(frames.size(), 50U);
    for (int i = 0; i < 50; ++i)
        EXPECT_EQ(frames[static_cast<std::size_t>(i)], Frame(25 + i, 25.0).toString());
    EXPECT_EQ(frames[1], "00:00:01:01");
    EXPECT_EQ(frames[25], "00:00:02:00");
}

TEST_F(SimFrames, OfTwentyFiveASecondComeEveryFortyMilliseconds)
{
    device->SetFormat(1, TimecodeFormat_Ebu25);
    Start();
    Passes(49);
    EXPECT_THAT(clock.GetSleeps(), Each(40));
}

TEST_F(SimFrames, OfThirtyASecondComeThriceInAHundredMilliseconds)
{
    device->SetFormat(1, TimecodeFormat_Smpte30);
    Start();
    Passes(8);
    EXPECT_THAT(clock.GetSleeps(), ElementsAre(33, 34, 33, 33, 34, 33, 33, 34, 33));
}

TEST_F(SimFrames, OfTwentyFourASecondRunAheadAtFirst)
{
    device->SetFormat(1, TimecodeFormat_Film24);
    Start();
    Passes(3);
    EXPECT_THAT(clock.GetSleeps(), ElementsAre(42, 41, 41, 42));
}

TEST_F(SimFrames, RunAcrossMidnightWithoutWrapping)
{
    device->SetFormat(1, TimecodeFormat_Ebu25);
    device->Jump(1, Frame(23, 59, 59, 24, false));
    Start();
    Pass();
    EXPECT_THAT(log.GetFrames(), ElementsAre("23:59:59:24", "24:00:00:00"));
}

TEST_F(SimFrames, NeverCarryDropFrameNotation)
{
    device->SetRate(1, 29.97);
    device->Jump(1, Frame(0, 0, 1, 0, true));
    Start();
    Pass();
    EXPECT_THAT(log.GetFrames(), ElementsAre("00:00:01:00", "00:00:01:01"));
}

TEST_F(SimFrames, NameTheirDeviceAndInstance)
{
    Start();
    const auto ids = log.GetIds(); // the arrival's and the first frame's
    ASSERT_EQ(ids.size(), 2U);
    EXPECT_EQ(ids[1].device, device.get());
    EXPECT_EQ(ids[1].number, 1U);
}

TEST_F(SimFrames, BeforeAnyRateStandAtMidnightWithoutRacing)
{
    Start();
    Passes(3);
    EXPECT_EQ(log.CountFrames(), 4U);
    EXPECT_THAT(log.GetFrames(), Each("00:00:00:00"));
    EXPECT_THAT(clock.GetSleeps(), Each(10));
}

TEST_F(SimFrames, FollowAJumpWhileRunning)
{
    device->SetFormat(1, TimecodeFormat_Ebu25);
    Start();
    device->Jump(1, Frame(10, 0, 0, 0, false));
    EXPECT_THAT(FramesOf([this] { Passes(2); }), ElementsAre("10:00:00:00", "10:00:00:01"));
    EXPECT_THAT(clock.GetSleeps(), Each(40));
}

TEST_F(SimFrames, FollowARateChangeWhileRunning)
{
    device->SetRate(1, 25.0);
    device->Jump(1, Frame(0, 0, 1, 20, false));
    Start();
    device->SetRate(1, 30.0);
    EXPECT_THAT(FramesOf([this] { Passes(4); }),
                ElementsAre("00:00:01:21", "00:00:01:22", "00:00:01:23", "00:00:01:24"));
    EXPECT_THAT(clock.GetSleeps(), ElementsAre(40, 33, 34, 33, 33)) << "the pacing starts anew";
}

TEST_F(SimFrames, FollowAFormatChangeWhileRunning)
{
    device->SetFormat(1, TimecodeFormat_Smpte30);
    device->Jump(1, Frame(0, 0, 1, 22, false));
    Start();
    device->SetFormat(1, TimecodeFormat_Ebu25);
    EXPECT_THAT(FramesOf([this] { Passes(3); }),
                ElementsAre("00:00:01:23", "00:00:01:24", "00:00:02:00"));
    EXPECT_THAT(clock.GetSleeps(), ElementsAre(33, 40, 40, 40));
}

TEST_F(SimFrames, KeepTheirPaceWhenTheRateIsSetToWhatItIs)
{
    device->SetRate(1, 30.0);
    Start();
    device->SetRate(1, 30.0);
    Passes(2);
    EXPECT_THAT(clock.GetSleeps(), ElementsAre(33, 34, 33));
}

TEST_F(SimFrames, MakeUpForALateWakeUp)
{
    device->SetFormat(1, TimecodeFormat_Ebu25);
    Start();
    Pass(5);
    Pass();
    EXPECT_THAT(clock.GetSleeps(), ElementsAre(40, 35, 40));
}

TEST_F(SimFrames, AfterAWakeUpOneFrameLateComeAtOnce)
{
    device->SetFormat(1, TimecodeFormat_Ebu25);
    Start();
    Pass(40);
    Pass();
    EXPECT_THAT(clock.GetSleeps(), ElementsAre(40, 0, 40));
}

TEST_F(SimFrames, DoNotCatchUpAfterALongStall)
{
    device->SetFormat(1, TimecodeFormat_Ebu25);
    Start();
    EXPECT_EQ(FramesOf([this] { Pass(1000); }).size(), 1U);
    EXPECT_THAT(clock.GetSleeps(), ElementsAre(40, 40));
}

} // namespace
