// SPDX-License-Identifier: MIT
// Texts in a process whose locale has a decimal comma.
#include <gtest/gtest.h>

#include <clocale>
#include <cstdio>
#include <cstdlib>

#include "hardware/timecode/frame.h"
#include "hardware/timecode/rate.h"

namespace
{

using Hardware::Timecode::Frame;
using Hardware::Timecode::Index;
using Hardware::Timecode::Interval;

template <class Value> std::string GetText(const Value& value)
{
    kel::text<char, 128> text;
    text << value;
    return std::string(text.view());
}

class GermanLocale : public testing::Test
{
protected:
    void SetUp() override
    {
        ASSERT_EQ(setenv("LOCPATH", LOCALE_FOLDER, 1), 0);
        ASSERT_NE(std::setlocale(LC_ALL, "de_DE.UTF-8"), nullptr);
        char text[16] = {};
        std::snprintf(text, sizeof text, "%.1f", 0.5);
        ASSERT_STREQ(text, "0,5");
    }
    void TearDown() override { std::setlocale(LC_ALL, "C"); }
};

TEST_F(GermanLocale, LeavesTheDecimalPointOfIndexAndInterval)
{
    EXPECT_EQ(GetText(Interval(40.0)), "40.000000");
    EXPECT_EQ(GetText(Interval(1000.0 / 30.0)), "33.333333");
    EXPECT_EQ(GetText(Index(-1234567.25)), "-1234567.250000");
}

TEST_F(GermanLocale, LeavesTheTextOfAFrame)
{
    EXPECT_EQ(GetText(Frame(10, 20, 30, 12, false)), "10:20:30:12");
}

} // namespace
