// SPDX-License-Identifier: MIT
// Conversions between rate, interval and format.
#include "hardware/timecode/rate.h"

#include <gtest/gtest.h>

#include <limits>

namespace
{

using namespace Hardware;
using namespace Hardware::Timecode;

constexpr double LargestDouble = 1.7976931348623157e308;
constexpr double NotANumber = std::numeric_limits<double>::quiet_NaN();
constexpr double Infinity = std::numeric_limits<double>::infinity();

TEST(Rate, EveryFormatHasItsRate)
{
    EXPECT_EQ(toRate(TimecodeFormat_Smpte30), 30.0);
    EXPECT_EQ(toRate(TimecodeFormat_Ebu25), 25.0);
    EXPECT_EQ(toRate(TimecodeFormat_Film24), 24.0);
    EXPECT_EQ(toRate(TimecodeFormat_Invalid), 0.0);
}

TEST(Rate, NtscThirtyIsExactlyThirty)
{
    EXPECT_EQ(toRate(TimecodeFormat_Ntsc30), 30.0);
}

TEST(Rate, ValuesAboveTheFormatsHaveNoRate)
{
    for (const unsigned value : {5U, 6U, 255U, 0x7FFFFFFFU, 0x80000000U, 0xFFFFFFFFU})
        EXPECT_EQ(toRate(static_cast<TimecodeFormat>(value)), 0.0) << value;
}

TEST(Rate, IsAThousandByTheInterval)
{
    EXPECT_EQ(toRate(Interval(40.0)), 25.0);
    EXPECT_EQ(toRate(Interval(1000.0)), 1.0);
    EXPECT_EQ(toRate(Interval(-40.0)), -25.0);
    EXPECT_EQ(toRate(Interval(1000.0 / 29.97)), 1000.0 / (1000.0 / 29.97));
}

TEST(Rate, OfNoIntervalIsTheLargestDouble)
{
    EXPECT_EQ(toRate(Interval(0.0)), LargestDouble);
    EXPECT_EQ(toRate(Interval(-0.0)), LargestDouble);
}

TEST(Rate, TheSmallestIntervalIsNotTakenForNone)
{
    EXPECT_EQ(toRate(Interval(std::numeric_limits<double>::denorm_min())), Infinity);
}

TEST(Interval, IsAThousandByTheRate)
{
    EXPECT_EQ(toInterval(25.0), 40.0);
    EXPECT_EQ(toInterval(30.0), 1000.0 / 30.0);
    EXPECT_EQ(toInterval(0.1), 10000.0);
    EXPECT_EQ(toInterval(-25.0), -40.0);
    EXPECT_EQ(toInterval(Infinity), 0.0);
}

TEST(Interval, OfNoRateIsTheLargestDouble)
{
    EXPECT_EQ(toInterval(0.0), LargestDouble);
    EXPECT_EQ(toInterval(-0.0), LargestDouble);
}

TEST(Interval, OfAFormatIsThatOfItsRate)
{
    EXPECT_EQ(toInterval(TimecodeFormat_Smpte30), 1000.0 / 30.0);
    EXPECT_EQ(toInterval(TimecodeFormat_Ntsc30), 1000.0 / 30.0);
    EXPECT_EQ(toInterval(TimecodeFormat_Ebu25), 40.0);
    EXPECT_EQ(toInterval(TimecodeFormat_Film24), 1000.0 / 24.0);
    EXPECT_EQ(toInterval(TimecodeFormat_Invalid), LargestDouble);
    EXPECT_EQ(toInterval(static_cast<TimecodeFormat>(77)), LargestDouble);
}

TEST(Format, IsThatOfTheNearestWholeRate)
{
    struct Case {
        double rate;
        TimecodeFormat format;
    };
    const Case cases[] = {
        {30.0, TimecodeFormat_Smpte30},  {25.0, TimecodeFormat_Ebu25},
        {24.0, TimecodeFormat_Film24},   {23.976, TimecodeFormat_Film24},
        {23.5, TimecodeFormat_Film24},   {23.49, TimecodeFormat_Invalid},
        {24.4, TimecodeFormat_Film24},   {24.5, TimecodeFormat_Ebu25},
        {25.49, TimecodeFormat_Ebu25},   {25.5, TimecodeFormat_Invalid},
        {29.49, TimecodeFormat_Invalid}, {29.5, TimecodeFormat_Smpte30},
        {30.49, TimecodeFormat_Smpte30}, {30.5, TimecodeFormat_Invalid},
        {0.0, TimecodeFormat_Invalid},   {1.0, TimecodeFormat_Invalid},
        {60.0, TimecodeFormat_Invalid},  {-25.0, TimecodeFormat_Invalid},
        {-30.0, TimecodeFormat_Invalid}, {LargestDouble, TimecodeFormat_Invalid},
    };
    for (const Case& each : cases)
        EXPECT_EQ(toFormat(each.rate), each.format) << each.rate;
}

TEST(Format, OfNtscVideoRateIsSmpteThirty)
{
    EXPECT_EQ(toFormat(29.97), TimecodeFormat_Smpte30);
}

TEST(Format, OfARateThatIsNotFiniteIsInvalid)
{
    EXPECT_EQ(toFormat(NotANumber), TimecodeFormat_Invalid);
    EXPECT_EQ(toFormat(Infinity), TimecodeFormat_Invalid);
    EXPECT_EQ(toFormat(-Infinity), TimecodeFormat_Invalid);
}

TEST(Format, OfAnIntervalIsThatOfItsRate)
{
    EXPECT_EQ(toFormat(Interval(40.0)), TimecodeFormat_Ebu25);
    EXPECT_EQ(toFormat(Interval(1000.0 / 24.0)), TimecodeFormat_Film24);
    EXPECT_EQ(toFormat(Interval(33.3)), TimecodeFormat_Smpte30);
    EXPECT_EQ(toFormat(Interval(0.0)), TimecodeFormat_Invalid);
    EXPECT_EQ(toFormat(Interval(25.0)), TimecodeFormat_Invalid);
}

} // namespace
