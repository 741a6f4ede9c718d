// SPDX-License-Identifier: MIT
// Frames from positions and positions from frames.
#include <gtest/gtest.h>

#include <climits>
#include <limits>
#include <string>

#include "hardware/timecode/frame.h"

namespace
{

using namespace Hardware;
using namespace Hardware::Timecode;

constexpr double LargestDouble = std::numeric_limits<double>::max();

TEST(FrameFields, AreKeptAsGiven)
{
    const Frame frame(99, -98, 97, 1000, true);
    EXPECT_EQ(frame.hours, 99);
    EXPECT_EQ(frame.minutes, -98);
    EXPECT_EQ(frame.seconds, 97);
    EXPECT_EQ(frame.frames, 1000);
    EXPECT_TRUE(frame.dropFrame);
    EXPECT_EQ(Frame(99, 99, 99, 99, false).toString(), "99:99:99:99");
}

TEST(FrameFields, AreZeroAtFirst)
{
    EXPECT_EQ(Frame().toString(), "00:00:00:00");
}

TEST(FrameToIndex, CountsFramesSinceMidnight)
{
    struct Case {
        Frame frame;
        double rate;
        double index;
    };
    const Case cases[] = {
        {{1, 0, 0, 0, false}, 25.0, 90000.0},  {{0, 1, 0, 0, false}, 25.0, 1500.0},
        {{0, 0, 1, 0, false}, 25.0, 25.0},     {{0, 0, 0, 7, false}, 25.0, 7.0},
        {{1, 2, 3, 4, false}, 30.0, 111694.0}, {{0, 0, 10, 0, false}, 29.97, 10 * 29.97},
        {{0, 0, 0, 99, false}, 25.0, 99.0},    {{0, 0, -1, 3, false}, 25.0, -22.0},
        {{1, 2, 3, 4, false}, 0.0, 4.0},       {{0, 0, 10, 0, false}, -25.0, -250.0},
    };
    for (const Case& each : cases)
        EXPECT_EQ(each.frame.toIndex(each.rate), each.index)
            << each.frame.toString() << " at " << each.rate;
}

TEST(FrameToIndex, DoesNotSkipNumbersInDropFrameNotation)
{
    EXPECT_EQ(Frame(1, 0, 0, 2, true).toIndex(30.0), Frame(1, 0, 0, 2, false).toIndex(30.0));
}

TEST(FrameToIndex, DoesNotOverflowOnTheLargestFields)
{
    EXPECT_EQ(Frame(INT_MAX, INT_MAX, INT_MAX, INT_MAX, false).toIndex(30.0),
              ((2147483647.0 * 60 + 2147483647.0) * 60 + 2147483647.0) * 30.0 + 2147483647.0);
}

TEST(FrameToIndex, TakesIntervalsAndFormats)
{
    const Frame frame(0, 0, 2, 3, false);
    EXPECT_EQ(frame.toIndex(Interval(40.0)), 53.0);
    EXPECT_EQ(frame.toIndex(TimecodeFormat_Film24), 51.0);
    EXPECT_EQ(frame.toIndex(TimecodeFormat_Invalid), 3.0);
}

struct Conversion {
    double index;
    double rate;
    const char* text;
};

TEST(FrameFromIndex, CutsToSecondsAndRoundsFrames)
{
    const Conversion conversions[] = {{0.0, 25.0, "00:00:00:00"},
                                      {90000.0, 25.0, "01:00:00:00"},
                                      {89999.0, 25.0, "00:59:59:24"},
                                      {24.0, 25.0, "00:00:00:24"},
                                      {25.0, 25.0, "00:00:01:00"},
                                      {1499.0, 25.0, "00:00:59:24"},
                                      {1500.0, 25.0, "00:01:00:00"},
                                      {30.0 * 86400.0, 30.0, "24:00:00:00"},
                                      {30.0 * 360000.0, 30.0, "100:00:00:00"},
                                      // whole seconds are cut, frames rounded, ties upwards
                                      {24.6, 25.0, "00:00:00:25"},
                                      {24.4, 25.0, "00:00:00:24"},
                                      {24.5, 25.0, "00:00:00:25"},
                                      {0.5, 25.0, "00:00:00:01"},
                                      {0.49, 25.0, "00:00:00:00"},
                                      // negative positions give negative fields
                                      {-1.0, 25.0, "00:00:00:-1"},
                                      {-25.0, 25.0, "00:00:-1:00"},
                                      {-0.5, 25.0, "00:00:00:00"},
                                      {-0.6, 25.0, "00:00:00:-1"},
                                      {-92276.0, 25.0, "-1:-1:-31:-1"},
                                      {250.0, -25.0, "00:00:-10:00"},
                                      // fractional rates reach frame numbers equal to the format's
                                      {539.0, 29.97, "00:00:17:30"},
                                      {540.0, 29.97, "00:00:18:01"},
                                      {30.0, 29.97, "00:00:01:00"},
                                      // the terms are taken off one by one
                                      {40460.0, 29.97, "00:22:30:00"},
                                      {3.0, 2.5, "00:00:01:01"}};
    for (const auto& [index, rate, text] : conversions) {
        Frame frame;
        frame.fromIndex(index, rate);
        EXPECT_EQ(frame.toString(), text) << index << " at " << rate;
        EXPECT_EQ(Frame(index, rate).toString(), text) << index << " at " << rate;
    }
}

TEST(FrameFromIndex, KeepsDropFrameNotation)
{
    Frame frame(0, 0, 0, 0, true);
    frame.fromIndex(90000.0, 25.0);
    EXPECT_EQ(frame.toString(), "01;00;00;00");
}

TEST(FrameFromIndex, WithoutRateIsMidnightAndKeepsDropFrameNotation)
{
    Frame frame(1, 2, 3, 4, true);
    frame.fromIndex(12345.0, 0.0);
    EXPECT_EQ(frame.toString(), "00;00;00;00");
}

TEST(FrameFromIndex, TakesIntervalsAndFormats)
{
    EXPECT_EQ(Frame(53.0, Interval(40.0)).toString(), "00:00:02:03");
    EXPECT_EQ(Frame(53.0, TimecodeFormat_Film24).toString(), "00:00:02:05");
    EXPECT_EQ(Frame(53.0, TimecodeFormat_Invalid).toString(), "00:00:00:00");
    Frame frame;
    frame.fromIndex(53.0, Interval(40.0));
    EXPECT_EQ(frame.toString(), "00:00:02:03");
    frame.fromIndex(53.0, TimecodeFormat_Film24);
    EXPECT_EQ(frame.toString(), "00:00:02:05");
}

TEST(FrameFromIndex, OfANewFrameHasNoDropFrameNotation)
{
    EXPECT_FALSE(Frame(53.0, 25.0).dropFrame);
    EXPECT_FALSE(Frame(53.0, Interval(40.0)).dropFrame);
    EXPECT_FALSE(Frame(53.0, TimecodeFormat_Ebu25).dropFrame);
}

TEST(FrameFromIndex, FieldsThatNoIntHoldsAreTheLowestInt)
{
    EXPECT_EQ(Frame(LargestDouble, 25.0).hours, INT_MIN);
    EXPECT_EQ(Frame(1.0, 1e-300).hours, INT_MIN);
    EXPECT_EQ(Frame(-1.0, 1e-300).hours, INT_MIN);
    EXPECT_EQ(Frame(std::numeric_limits<double>::quiet_NaN(), 25.0).frames, INT_MIN);
    EXPECT_EQ(Frame(1.0, std::numeric_limits<double>::quiet_NaN()).seconds, INT_MIN);
}

TEST(FrameFromIndex, BringsEveryFrameOfADayBack)
{
    for (const double rate : {24.0, 25.0, 30.0}) {
        for (int index = 0; index < 86400 * static_cast<int>(rate); index += 7) {
            const Frame frame(index, rate);
            ASSERT_EQ(frame.toIndex(rate), index) << rate;
            ASSERT_LT(frame.frames, rate) << index;
        }
    }
}

TEST(FrameAdd, MovesByFrames)
{
    struct Case {
        Frame frame;
        double count;
        double rate;
        const char* text;
    };
    const Case cases[] = {
        {{0, 0, 1, 0, false}, -1, 25.0, "00:00:00:24"},
        {{0, 59, 59, 24, false}, 1, 25.0, "01:00:00:00"},
        {{23, 59, 59, 29, true}, 1, 30.0, "24;00;00;00"},
        {{0, 0, 0, 0, false}, -1, 25.0, "00:00:00:-1"},
        {{0, 0, 0, 1, false}, 0.4, 25.0, "00:00:00:01"},
        {{0, 0, 0, 1, false}, 0.6, 25.0, "00:00:00:02"},
        {{0, 0, 0, 99, false}, 0, 25.0, "00:00:03:24"},
        {{1, 2, 3, 4, true}, 5, 0.0, "00;00;00;00"},
    };
    for (const Case& each : cases) {
        Frame frame = each.frame;
        frame.add(each.count, each.rate);
        EXPECT_EQ(frame.toString(), each.text) << each.frame.toString() << " + " << each.count;
    }
}

TEST(FrameAdd, TakesIntervalsAndFormats)
{
    Frame frame(0, 0, 1, 0, false);
    frame.add(-1, Interval(40.0));
    EXPECT_EQ(frame.toString(), "00:00:00:24");
    frame.add(1, TimecodeFormat_Ebu25);
    EXPECT_EQ(frame.toString(), "00:00:01:00");
    frame.add(25, TimecodeFormat_Film24);
    EXPECT_EQ(frame.toString(), "00:00:02:01");
}

} // namespace
