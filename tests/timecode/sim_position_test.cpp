// SPDX-License-Identifier: MIT
// Position, rate and format of an instance, and what each change does to the others.
#include <gmock/gmock.h>

#include <limits>

#include "timecode/sim_bench.h"

namespace
{

using namespace Hardware;
using Hardware::Timecode::DeviceSim;
using Hardware::Timecode::Frame;
using testing::ElementsAre;

constexpr double NotANumber = std::numeric_limits<double>::quiet_NaN();

TEST(SimRate, BringsItsFormat)
{
    struct Case {
        double rate;
        TimecodeFormat format;
    };
    const Case cases[] = {{30.0, TimecodeFormat_Smpte30},  {29.97, TimecodeFormat_Smpte30},
                          {25.0, TimecodeFormat_Ebu25},    {24.0, TimecodeFormat_Film24},
                          {23.976, TimecodeFormat_Film24}, {60.0, TimecodeFormat_Invalid},
                          {-25.0, TimecodeFormat_Invalid}, {0.0, TimecodeFormat_Invalid}};
    DeviceSim device(nullptr);
    device.Create(1);
    for (const auto& [rate, format] : cases) {
        device.SetRate(1, rate);
        EXPECT_EQ(device.GetRate(1), rate);
        EXPECT_EQ(device.GetFormat(1), format) << rate;
    }
}

TEST(SimRate, MayBeNoNumber)
{
    DeviceSim device(nullptr);
    device.Create(1);
    device.SetRate(1, NotANumber);
    EXPECT_NE(device.GetRate(1), device.GetRate(1));
    EXPECT_EQ(device.GetFormat(1), TimecodeFormat_Invalid);
}

TEST(SimFormat, BringsItsRate)
{
    struct Case {
        unsigned format;
        double rate;
    };
    const Case cases[] = {{TimecodeFormat_Smpte30, 30.0}, {TimecodeFormat_Ntsc30, 30.0},
                          {TimecodeFormat_Ebu25, 25.0},   {TimecodeFormat_Film24, 24.0},
                          {TimecodeFormat_Invalid, 0.0},  {77, 0.0}};
    DeviceSim device(nullptr);
    device.Create(1);
    for (const auto& [format, rate] : cases) {
        device.SetFormat(1, static_cast<TimecodeFormat>(format));
        EXPECT_EQ(device.GetFormat(1), format);
        EXPECT_EQ(device.GetRate(1), rate) << format;
    }
}

using SimPosition = TestSupport::SimBench;

TEST_F(SimPosition, IsMidnightAtFirst)
{
    device->SetFormat(1, TimecodeFormat_Ebu25);
    EXPECT_EQ(TakePosition(), "00:00:00:00");
}

TEST_F(SimPosition, IsTheTargetOfAJump)
{
    device->SetRate(1, 30.0);
    device->Jump(1, Frame(1, 2, 3, 4, false));
    EXPECT_EQ(TakePosition(), "01:02:03:04");
}

TEST_F(SimPosition, OfAJumpIsNormalised)
{
    device->SetRate(1, 25.0);
    device->Jump(1, Frame(0, 0, 0, 99, false));
    EXPECT_EQ(TakePosition(), "00:00:03:24");
}

TEST_F(SimPosition, OfAJumpBeforeAnyRateIsLost)
{
    device->Jump(1, Frame(1, 2, 3, 4, false));
    EXPECT_EQ(TakePosition(), "00:00:00:00");
    device->SetRate(1, 25.0);
    EXPECT_EQ(TakePosition(), "00:00:00:00");
}

TEST_F(SimPosition, StaysTheSameTimeAtTheSameRate)
{
    device->SetRate(1, 25.0);
    device->Jump(1, Frame(0, 0, 10, 0, false));
    device->SetRate(1, 25.0);
    EXPECT_EQ(TakePosition(), "00:00:10:00");
}

TEST_F(SimPosition, StaysTheSameTimeAtANewRate)
{
    device->SetRate(1, 25.0);
    device->Jump(1, Frame(0, 0, 10, 7, false));
    device->SetRate(1, 30.0);
    EXPECT_EQ(TakePosition(), "00:00:10:07");
}

TEST_F(SimPosition, StaysTheSameTimeInANewFormat)
{
    device->SetFormat(1, TimecodeFormat_Ebu25);
    device->Jump(1, Frame(0, 0, 10, 7, false));
    device->SetFormat(1, TimecodeFormat_Smpte30);
    EXPECT_EQ(TakePosition(), "00:00:10:07");
}

TEST_F(SimPosition, LosesFractionsOfAFrameWithANewRate)
{
    device->SetRate(1, 2.5);
    Start(); // index 0; a sleep of 400 milliseconds is four slices of 100
    Passes(8);
    // index 3 is 1.2 seconds, so second 1, frame 1, which is index 3.5
    device->SetRate(1, 2.5);
    EXPECT_THAT(FramesOf([this] { Passes(12); }),
                ElementsAre("00:00:01:01", "00:00:01:02", "00:00:02:01"));
}

TEST_F(SimPosition, IsReadThroughTheOldFormatNotTheOldRate)
{
    device->SetRate(1, 29.97);
    device->Jump(1, Frame(0, 0, 17, 0, false)); // index 509.49, at 30 second 16 and frame 29
    device->SetFormat(1, TimecodeFormat_Ebu25);
    EXPECT_EQ(TakePosition(), "00:00:17:04");
}

TEST_F(SimPosition, IsReadThroughTheOldRateByANewRate)
{
    device->SetRate(1, 29.97);
    device->Jump(1, Frame(0, 0, 17, 1, false));
    device->SetRate(1, 25.0);
    EXPECT_EQ(TakePosition(), "00:00:17:01");
}

TEST_F(SimPosition, IsLostThroughAFormatWithoutRate)
{
    device->SetRate(1, 12.0); // format Invalid
    device->Jump(1, Frame(0, 0, 10, 0, false));
    device->SetFormat(1, TimecodeFormat_Ebu25);
    EXPECT_EQ(TakePosition(), "00:00:00:00");
}

TEST_F(SimPosition, IsLostThroughARateOfZero)
{
    device->SetRate(1, 25.0);
    device->Jump(1, Frame(0, 0, 10, 7, false));
    device->SetRate(1, 0.0);
    device->SetRate(1, 25.0);
    EXPECT_EQ(TakePosition(), "00:00:00:00");
}

TEST_F(SimPosition, StaysTheSameTimeWhenTheDirectionTurns)
{
    device->SetRate(1, 25.0);
    device->Jump(1, Frame(0, 0, 10, 7, false));
    device->SetRate(1, -30.0);
    EXPECT_EQ(device->GetRate(1), -30.0);
    EXPECT_EQ(TakePosition(), "00:00:10:07");
}

} // namespace
