// SPDX-License-Identifier: MIT
// Frames as text.
#include <gtest/gtest.h>

#include <climits>

#include "hardware/timecode/frame.h"
#include "kel/text_base.h"

namespace
{

using namespace Hardware::Timecode;

TEST(FrameToString, PrintsTwoDigitsOrMore)
{
    EXPECT_EQ(Frame(1, 2, 3, 4, false).toString(), "01:02:03:04");
    EXPECT_EQ(Frame(10, 20, 30, 40, false).toString(), "10:20:30:40");
    EXPECT_EQ(Frame(100, 0, 0, 0, false).toString(), "100:00:00:00");
    EXPECT_EQ(Frame(-1, -22, 333, -4444, false).toString(), "-1:-22:333:-4444");
}

TEST(FrameToString, SeparatesBySemicolonThriceInDropFrameNotation)
{
    EXPECT_EQ(Frame(1, 2, 3, 4, true).toString(), "01;02;03;04");
}

TEST(FrameToString, HoldsTheLongestFields)
{
    EXPECT_EQ(Frame(INT_MIN, INT_MIN, INT_MIN, INT_MIN, true).toString(),
              "-2147483648;-2147483648;-2147483648;-2147483648");
}

struct Reading {
    const char* text;
    bool whole;
    int hours, minutes, seconds, frames; // -7 where the old value stays
    bool dropFrame;
};

void ExpectReading(const Reading& expected)
{
    SCOPED_TRACE(expected.text);
    // The flag starts as what it must not end as.
    Frame frame(-7, -7, -7, -7, !expected.dropFrame);
    EXPECT_EQ(frame.fromString(expected.text), expected.whole);
    EXPECT_EQ(frame.hours, expected.hours);
    EXPECT_EQ(frame.minutes, expected.minutes);
    EXPECT_EQ(frame.seconds, expected.seconds);
    EXPECT_EQ(frame.frames, expected.frames);
    EXPECT_EQ(frame.dropFrame, expected.dropFrame);
}

TEST(FrameFromString, ReadsFourNumbersWithAnySeparators)
{
    const Reading readings[] = {{"10:20:30:40", true, 10, 20, 30, 40, false},
                                {"01;02;03;04", true, 1, 2, 3, 4, true},
                                // any character separates
                                {"1.2 3x4", true, 1, 2, 3, 4, false},
                                {"1 2 3 4", true, 1, 2, 3, 4, false},
                                // only the last separator decides
                                {"01:02:03;04", true, 1, 2, 3, 4, true},
                                {"01;02;03:04", true, 1, 2, 3, 4, false},
                                // nothing is normalised, and what follows is ignored
                                {"99:99:99:99", true, 99, 99, 99, 99, false},
                                {"1:2:3:4:5", true, 1, 2, 3, 4, false},
                                {"1:2:3:4 o'clock", true, 1, 2, 3, 4, false},
                                // blanks before a number and signs belong to the number
                                {"  1: 2: 3:\n4", true, 1, 2, 3, 4, false},
                                {"-1:-2:+3:-4", true, -1, -2, 3, -4, false},
                                {"1-2-3-4", true, 1, 2, 3, 4, false}};
    for (const Reading& reading : readings)
        ExpectReading(reading);
}

TEST(FrameFromString, KeepsWhatItFoundBeforeAFailure)
{
    const Reading readings[] = {
        {"", false, -7, -7, -7, -7, false},         {"noon", false, -7, -7, -7, -7, false},
        {";", false, -7, -7, -7, -7, false},        {"10", false, 10, -7, -7, -7, false},
        {"10:", false, 10, -7, -7, -7, false},      {"10;", false, 10, -7, -7, -7, true},
        {"10:20", false, 10, 20, -7, -7, false},    {"10:20:30", false, 10, 20, 30, -7, false},
        {"10;20;30", false, 10, 20, 30, -7, true},  {"10:20:30:", false, 10, 20, 30, -7, false},
        {"10:20:30;", false, 10, 20, 30, -7, true}, {"10:20:x:40", false, 10, 20, -7, -7, false}};
    for (const Reading& reading : readings)
        ExpectReading(reading);
}

TEST(FrameOfText, IsWhatTheTextSays)
{
    EXPECT_EQ(Frame(std::string("01:02:03;04")).toString(), "01;02;03;04");
}

TEST(FrameOfText, IsZeroWhereTheTextSaysNothing)
{
    EXPECT_EQ(Frame(std::string("noon")).toString(), "00:00:00:00");
    EXPECT_EQ(Frame(std::string("10:20")).toString(), "10:20:00:00");
}

TEST(TextOutput, AppendsAFrameAsItsText)
{
    kel::text<char, 100> text;
    static_cast<kel::text_base<char>&>(text) << "at " << Frame(1, 2, 3, 4, true) << '.';
    EXPECT_EQ(text.view(), "at 01;02;03;04.");
}

TEST(TextOutput, AppendsIndexAndIntervalWithSixDecimals)
{
    kel::text<char, 100> text;
    text << Interval(40.0) << ' ' << Index(-24.6) << ' ' << Interval(1000.0 / 30.0);
    EXPECT_EQ(text.view(), "40.000000 -24.600000 33.333333");
}

TEST(TextOutput, CutsTheLargestDoubleAfterSixtyThreeCharacters)
{
    constexpr char Digits[] = "179769313486231570814527423731704356798070567525844996598917476";
    kel::text<char, 400> text;
    text << Interval(1.7976931348623157e308);
    EXPECT_EQ(text.view(), Digits);
    text.clear();
    text << Index(1.7976931348623157e308);
    EXPECT_EQ(text.view(), Digits);
}

} // namespace
