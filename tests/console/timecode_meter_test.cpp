// SPDX-License-Identifier: MIT
// What is measured of a timecode source, by times that are made up.
#include "console/timecode_meter.h"

#include <gmock/gmock.h>

namespace
{

using Console::TimecodeMeter;
using Console::TimecodeReading;
using Hardware::Timecode::Frame;
using testing::DoubleNear;

class Meter : public testing::Test
{
protected:
    /// A frame, one period after the one before.
    void Take(const std::string& text, double periods = 1)
    {
        m_seconds += periods / m_rate;
        m_meter.Take(Frame(text), m_seconds);
    }

    /// So many frames in a row, without drop frame.
    void Run(const std::string& from, int count, int framesOfSecond, int step = 1)
    {
        Frame frame(from);
        for (int i = 0; i < count; ++i) {
            m_seconds += 1 / m_rate;
            m_meter.Take(frame, m_seconds);
            frame.add(step, static_cast<double>(framesOfSecond));
        }
    }

    TimecodeReading Read(double later = 0) const { return m_meter.Read(m_seconds + later); }

    TimecodeMeter m_meter;
    double m_rate = 25;
    double m_seconds = 100;
};

TEST_F(Meter, KnowsNothingBeforeTheFirstFrame)
{
    const TimecodeReading reading = Read(5);
    EXPECT_EQ(reading.frames, 0U);
    EXPECT_EQ(reading.direction, 0);
    EXPECT_EQ(reading.rate, 0);
    EXPECT_EQ(reading.age, 0);
}

TEST_F(Meter, TellsTheLastFrameAndItsAge)
{
    Take("01:02:03:04");
    const TimecodeReading reading = Read(0.5);
    EXPECT_EQ(reading.frame.toString(), "01:02:03:04");
    EXPECT_EQ(reading.frames, 1U);
    EXPECT_EQ(reading.direction, 0);
    EXPECT_EQ(reading.rate, 0);
    EXPECT_DOUBLE_EQ(reading.age, 0.5);
}

TEST_F(Meter, MeasuresASteadySource)
{
    Run("10:00:00:00", 250, 25);
    const TimecodeReading reading = Read();
    EXPECT_EQ(reading.frame.toString(), "10:00:09:24");
    EXPECT_EQ(reading.direction, 1);
    EXPECT_THAT(reading.rate, DoubleNear(25, 1e-6));
    EXPECT_EQ(reading.frames, 250U);
    EXPECT_EQ(reading.lost, 0U);
    EXPECT_EQ(reading.repeated, 0U);
}

TEST_F(Meter, RateFollowsASourceThatChanges)
{
    Run("10:00:00:00", 100, 25);
    m_rate = 50;
    Run("10:00:04:00", 50, 25);
    // Half of the last two seconds were of each.
    EXPECT_THAT(Read().rate, DoubleNear(37.5, 0.5));
    Run("10:00:06:00", 60, 25);
    EXPECT_THAT(Read().rate, DoubleNear(50, 1e-6));
}

TEST_F(Meter, RateEndsWithTheSource)
{
    Run("10:00:00:00", 100, 25);
    EXPECT_THAT(Read(1.9).rate, DoubleNear(25, 1e-6));
    EXPECT_EQ(Read(2.1).rate, 0);
}

TEST_F(Meter, RateOfASlowSourceIsGivenTime)
{
    m_rate = 0.2;
    Run("10:00:00:00", 4, 25);
    EXPECT_THAT(Read(9).rate, DoubleNear(0.2, 1e-6));
    EXPECT_EQ(Read(11).rate, 0);
}

TEST_F(Meter, RateOfABurstIsNotToldAtAll)
{
    m_meter.Take(Frame("10:00:00:00"), 1);
    m_meter.Take(Frame("10:00:00:01"), 1);
    EXPECT_EQ(m_meter.Read(1).rate, 0);
}

TEST_F(Meter, GoesBackwards)
{
    Run("10:00:02:00", 60, 25, -1);
    EXPECT_EQ(Read().frame.toString(), "09:59:59:16");
    EXPECT_EQ(Read().direction, -1);
    EXPECT_EQ(Read().lost, 0U);
}

TEST_F(Meter, TurnsRoundWithoutLoss)
{
    Run("10:00:00:00", 11, 25);
    Run("10:00:00:07", 5, 25, -1);
    EXPECT_EQ(Read().direction, -1);
    EXPECT_EQ(Read().lost, 0U);
    Take("10:00:00:05");
    EXPECT_EQ(Read().direction, 1);
    EXPECT_EQ(Read().lost, 0U);
}

TEST_F(Meter, CountsFramesLeftOut)
{
    Run("10:00:00:00", 5, 25);
    Take("10:00:00:07", 3); // 05 and 06
    EXPECT_EQ(Read().lost, 2U);
    Take("10:00:00:08");
    EXPECT_EQ(Read().lost, 2U);
}

TEST_F(Meter, CountsFramesLeftOutBackwards)
{
    Run("10:00:00:20", 5, 25, -1);
    Take("10:00:00:12", 4); // 15, 14 and 13
    EXPECT_EQ(Read().lost, 3U);
}

TEST_F(Meter, CountsFramesLeftOutBetweenTheFirstTwo)
{
    Take("10:00:00:00");
    Take("10:00:00:05");
    EXPECT_EQ(Read().direction, 1);
    EXPECT_EQ(Read().lost, 4U);
}

TEST_F(Meter, CountsFramesLeftOutBetweenSeconds)
{
    Run("10:00:00:00", 48, 25);
    Take("10:00:02:02", 5); // 23, 24, 00 and 01
    EXPECT_EQ(Read().lost, 4U);
}

TEST_F(Meter, ASecondIsLostAndMoreIsAJump)
{
    Run("10:00:00:00", 50, 25);
    Take("10:00:02:24", 25);
    EXPECT_EQ(Read().lost, 24U);
    Take("10:00:04:00", 26);
    EXPECT_EQ(Read().lost, 24U);
    EXPECT_EQ(Read().direction, 1);
}

TEST_F(Meter, AJumpLeavesTheDirection)
{
    Run("10:00:00:00", 10, 25);
    Take("01:00:00:00");
    EXPECT_EQ(Read().direction, 1);
    EXPECT_EQ(Read().lost, 0U);
}

TEST_F(Meter, CountsRepeatedFrames)
{
    Run("10:00:00:00", 10, 25);
    Take("10:00:00:09");
    Take("10:00:00:09");
    Take("10:00:00:10");
    EXPECT_EQ(Read().repeated, 2U);
    EXPECT_EQ(Read().lost, 0U);
    EXPECT_EQ(Read().direction, 1);
}

TEST_F(Meter, DropFrameLeavesOutTwoNumbersOfAMinute)
{
    m_rate = 29.97;
    Take("10;00;59;28");
    Take("10;00;59;29");
    Take("10;01;00;02");
    Take("10;01;00;03");
    EXPECT_EQ(Read().lost, 0U);
    EXPECT_EQ(Read().direction, 1);
}

TEST_F(Meter, DropFrameLeavesThemOutBetweenTheFirstTwo)
{
    Take("10;00;59;29");
    Take("10;01;00;02");
    EXPECT_EQ(Read().lost, 0U);
}

TEST_F(Meter, DropFrameBackwards)
{
    Take("10;01;00;03");
    Take("10;01;00;02");
    Take("10;00;59;29");
    EXPECT_EQ(Read().lost, 0U);
    EXPECT_EQ(Read().direction, -1);
}

TEST_F(Meter, DropFrameKeepsTheTenthMinute)
{
    m_rate = 29.97;
    Take("10;09;59;27");
    Take("10;09;59;28");
    Take("10;09;59;29");
    Take("10;10;00;02", 3); // here 00 and 01 do exist
    EXPECT_EQ(Read().lost, 2U);
}

TEST_F(Meter, DropFrameLossAtTheMinute)
{
    m_rate = 29.97;
    Take("10;00;59;26");
    Take("10;00;59;27");
    Take("10;00;59;28");
    Take("10;01;00;03", 3); // 59;29 and 00;02
    EXPECT_EQ(Read().lost, 2U);
}

TEST_F(Meter, AChangeToDropFrameIsAJump)
{
    Take("01;02;03;04");
    Take("01;02;03;07");
    EXPECT_EQ(Read().lost, 2U);
    Take("01:02:03:04");
    Take("01;02;03;05");
    EXPECT_EQ(Read().lost, 2U);
    EXPECT_EQ(Read().direction, 1);
}

TEST_F(Meter, AFewFramesInABurstDoNotStretchTheSecond)
{
    m_rate = 1000;
    Run("10:00:00:00", 3, 25);
    Take("10:00:03:00");
    EXPECT_EQ(Read().lost, 0U);
}

TEST_F(Meter, TheDayBeginsAnew)
{
    Run("23:59:58:00", 50, 25);
    Take("00:00:00:00");
    EXPECT_EQ(Read().lost, 0U);
    EXPECT_EQ(Read().direction, 1);
    Take("23:59:59:24");
    EXPECT_EQ(Read().direction, -1);
}

TEST_F(Meter, HoursNeedNotWrap)
{
    Run("23:59:59:00", 50, 25);
    EXPECT_EQ(Read().frame.toString(), "24:00:00:24");
    EXPECT_EQ(Read().lost, 0U);
}

TEST_F(Meter, AFormatThatChangesLosesNothing)
{
    m_rate = 30;
    Run("10:00:00:00", 90, 30);
    m_rate = 24;
    Run("10:00:03:00", 240, 24);
    EXPECT_EQ(Read().lost, 0U);
    m_rate = 25;
    Run("10:00:13:00", 250, 25);
    EXPECT_EQ(Read().lost, 0U);
}

TEST_F(Meter, ARateThatIsNoWholeNumberLosesNothing)
{
    // As the simulator numbers: some seconds begin with frame 1, and some end with frame 30.
    m_rate = 29.97;
    Frame frame;
    for (int i = 0; i < 29970; ++i) {
        frame.fromIndex(static_cast<double>(i), 29.97);
        m_seconds += 1 / m_rate;
        m_meter.Take(frame, m_seconds);
    }
    EXPECT_EQ(Read().lost, 0U);
    EXPECT_EQ(Read().direction, 1);
}

TEST_F(Meter, ATapeAtOtherSpeedsLosesNothing)
{
    m_rate = 50; // at double speed
    Run("10:00:00:20", 250, 25);
    m_rate = 5;
    Run("10:00:10:20", 60, 25);
    EXPECT_EQ(Read().lost, 0U);
}

TEST_F(Meter, TakesAnyFields)
{
    Run("10:00:00:00", 5, 25);
    Take("99:99:99:99");
    Take("-2147483648:-2147483648:-2147483648:-2147483648");
    Take("2147483647:2147483647:2147483647:2147483647");
    EXPECT_EQ(Read().frames, 8U);
    EXPECT_EQ(Read().lost, 0U);
    EXPECT_EQ(Read().direction, 1);
}

} // namespace
