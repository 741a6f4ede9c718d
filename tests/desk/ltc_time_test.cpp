// SPDX-License-Identifier: MIT
#include "desk/ltc_time.h"

#include <gmock/gmock.h>

#include "hardware/timecode/frame.h"

namespace
{

using namespace Desk;

TEST(LtcTime, IsWrittenAsTheProductWritesFrames)
{
    for (const bool dropFrame : {false, true})
        EXPECT_EQ(ToText({10, 20, 30, 12, dropFrame}),
                  Hardware::Timecode::Frame(10, 20, 30, 12, dropFrame).toString());
}

TEST(LtcTime, IsReadAsItIsWritten)
{
    EXPECT_EQ(ParseLtcTime("01:02:03:04", 25), (LtcTime{1, 2, 3, 4, false}));
    EXPECT_EQ(ParseLtcTime("01;02;03;04", 30), (LtcTime{1, 2, 3, 4, true}));
    EXPECT_EQ(ParseLtcTime("01:02:03;04", 30), (LtcTime{1, 2, 3, 4, true}));
}

TEST(LtcTime, IsNotReadFromAnythingElse)
{
    for (const char* const text :
         {"", "1:02:03:04", "01:02:03:04 ", "01:02;03;04", "01;02:03:04", "01.02.03.04",
          "0a:02:03:04", "24:00:00:00", "00:60:00:00", "00:00:60:00", "00:00:00:25"})
        EXPECT_FALSE(ParseLtcTime(text, 25)) << text;
    EXPECT_FALSE(ParseLtcTime("00;01;00;01", 30)) << "left out by drop frame";
    EXPECT_FALSE(ParseLtcTime("00;01;00;02", 25)) << "no drop frame at 25";
}

TEST(LtcTime, CountsOverTheEndOfSecondsMinutesHoursAndDays)
{
    const struct {
        const char* before;
        const char* after;
        unsigned rate;
    } table[] = {
        {"00:00:00:23", "00:00:01:00", 24}, {"00:00:59:24", "00:01:00:00", 25},
        {"00:59:59:29", "01:00:00:00", 30}, {"23:59:59:24", "00:00:00:00", 25},
        {"00;00;59;29", "00;01;00;02", 30}, {"00;09;59;29", "00;10;00;00", 30},
        {"00;59;59;29", "01;00;00;00", 30}, {"23;59;59;29", "00;00;00;00", 30},
        {"00;01;58;29", "00;01;59;00", 30}, {"00;01;00;02", "00;01;00;03", 30},
    };
    for (const auto& [before, after, rate] : table) {
        EXPECT_EQ(ToText(GetNext(*ParseLtcTime(before, rate), rate)), after);
        EXPECT_EQ(ToText(GetPrevious(*ParseLtcTime(after, rate), rate)), before);
    }
}

TEST(LtcTime, LeavesOutHundredAndEightNumbersAnHourWithDropFrame)
{
    const LtcTime begin{5, 0, 0, 0, true};
    LtcTime time = begin;
    unsigned steps = 0;
    for (; time.hours == 5; time = GetNext(time, 30)) {
        ASSERT_TRUE(IsValid(time, 30)) << ToText(time);
        ++steps;
    }
    EXPECT_EQ(steps, 3600U * 30 - 108);
    for (; steps > 0; --steps)
        time = GetPrevious(time, 30);
    EXPECT_EQ(time, begin);
}

} // namespace
