// SPDX-License-Identifier: MIT
#include "hardware/cd_time.h"

#include <gtest/gtest.h>

#include <climits>
#include <cstdint>
#include <type_traits>

#include "timecode/offers.h"

namespace
{

using TestSupport::Offers;

static_assert(sizeof(CdTime) == sizeof(std::int32_t), "one count and nothing else");
static_assert(std::is_trivially_copyable_v<CdTime> && !std::is_polymorphic_v<CdTime>);
static_assert(Offers<static_cast<void (CdTime::*)(char, char, char, char)>(&CdTime::Set)>);
static_assert(Offers<static_cast<void (CdTime::*)(int)>(&CdTime::SetRawFrameCount)>);
static_assert(Offers<static_cast<int (CdTime::*)() const>(&CdTime::GetRawFrameCount)>);
static_assert(Offers<static_cast<void (CdTime::*)(CdTime)>(&CdTime::Add)>);
static_assert(Offers<static_cast<void (CdTime::*)(CdTime)>(&CdTime::Subtract)>);
static_assert(Offers<static_cast<bool (CdTime::*)() const>(&CdTime::IsNegative)>);

CdTime Make(int count)
{
    CdTime time;
    time.SetRawFrameCount(count);
    return time;
}

struct Fields {
    int hours, minutes, seconds, frames;
};

TEST(CdTimeValue, MakesACountOfTheFieldsAsTheyAre)
{
    const std::pair<Fields, int> table[] = {
        {{0, 0, 0, 0}, 0},
        {{0, 0, 0, 1}, 1},
        {{0, 0, 1, 0}, 75},
        {{0, 1, 0, 0}, 4500},
        {{0, 2, 0, 0}, 9000},
        {{1, 0, 0, 0}, 270000},
        {{1, 1, 5, 74}, 274949},
        {{127, 127, 127, 127}, 34871152},
        {{0, 0, 0, -1}, -1},
        {{-1, 0, 0, 0}, -270000},
        {{0, -128, -128, -128}, -585728},
        {{1, -1, 1, -1}, 265574},
    };
    for (const auto& [fields, count] : table) {
        CdTime time;
        time.Set(static_cast<char>(fields.hours), static_cast<char>(fields.minutes),
                 static_cast<char>(fields.seconds), static_cast<char>(fields.frames));
        EXPECT_EQ(time.GetRawFrameCount(), count);
    }
}

TEST(CdTimeValue, ReadsTheMagnitudeAndTellsTheSignApart)
{
    const struct {
        int count;
        Fields fields;
        bool isNegative;
    } table[] = {
        {0, {0, 0, 0, 0}, false},
        {74, {0, 0, 0, 74}, false},
        {75, {0, 0, 1, 0}, false},
        {4499, {0, 0, 59, 74}, false},
        {4500, {0, 1, 0, 0}, false},
        {269999, {0, 59, 59, 74}, false},
        {270000, {1, 0, 0, 0}, false},
        {-1, {0, 0, 0, 1}, true},
        {-76, {0, 0, 1, 1}, true},
        {-274949, {1, 1, 5, 74}, true},
        {INT_MAX, {7953, 38, 35, 22}, false},
        {INT_MIN, {7953, 38, 35, 23}, true},
    };
    for (const auto& [count, fields, isNegative] : table) {
        SCOPED_TRACE(count);
        const CdTime time = Make(count);
        EXPECT_EQ(time.GetHour(), fields.hours);
        EXPECT_EQ(time.GetMinute(), fields.minutes);
        EXPECT_EQ(time.GetSecond(), fields.seconds);
        EXPECT_EQ(time.GetFrame(), fields.frames);
        EXPECT_EQ(time.IsNegative(), isNegative);
        EXPECT_EQ(time.GetRawFrameCount(), count);
    }
}

TEST(CdTimeValue, IsZeroAtFirst)
{
    EXPECT_EQ(CdTime().GetRawFrameCount(), 0);
    EXPECT_FALSE(CdTime().IsNegative());
}

TEST(CdTimeValue, AddsAndSubtractsTheOtherCount)
{
    CdTime time = Make(100);
    time.Add(Make(50));
    EXPECT_EQ(time.GetRawFrameCount(), 150);
    time.Subtract(Make(400));
    EXPECT_EQ(time.GetRawFrameCount(), -250);
    time.Add(Make(-1));
    EXPECT_EQ(time.GetRawFrameCount(), -251);
    time.Subtract(Make(-251));
    EXPECT_EQ(time.GetRawFrameCount(), 0);
}

TEST(CdTimeValue, WrapsWhereASumLeaves32Bits)
{
    CdTime time = Make(INT_MAX);
    time.Add(Make(1));
    EXPECT_EQ(time.GetRawFrameCount(), INT_MIN);
    time.Subtract(Make(1));
    EXPECT_EQ(time.GetRawFrameCount(), INT_MAX);
}

} // namespace
