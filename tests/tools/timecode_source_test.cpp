// SPDX-License-Identifier: MIT
#include "common/timecode_source.h"

#include <gtest/gtest.h>

#include <stdexcept>

namespace
{

using Tools::TimecodeSource;

std::string GetProblem(const std::string& text)
{
    try {
        TimecodeSource::Parse(text);
    } catch (const std::invalid_argument& error) {
        return error.what();
    }
    return "nothing";
}

TEST(TimecodeSource, IsARateOrAFormat)
{
    EXPECT_DOUBLE_EQ(TimecodeSource::Parse("29.97").rate, 29.97);
    EXPECT_FALSE(TimecodeSource::Parse("29.97").named);
    const struct {
        const char* text;
        Hardware::TimecodeFormat format;
        double rate;
    } table[] = {{"film24", Hardware::TimecodeFormat_Film24, 24},
                 {"ebu25", Hardware::TimecodeFormat_Ebu25, 25},
                 {"ntsc30", Hardware::TimecodeFormat_Ntsc30, 30},
                 {"smpte30", Hardware::TimecodeFormat_Smpte30, 30}};
    for (const auto& [text, format, rate] : table) {
        const TimecodeSource source = TimecodeSource::Parse(text);
        EXPECT_TRUE(source.named);
        EXPECT_EQ(source.format, format);
        EXPECT_DOUBLE_EQ(source.rate, rate);
    }
}

TEST(TimecodeSource, HasAStartAndADirection)
{
    const TimecodeSource plain = TimecodeSource::Parse("25");
    EXPECT_EQ(plain.start.toString(), "00:00:00:00");
    EXPECT_FALSE(plain.backwards);
    const TimecodeSource source = TimecodeSource::Parse("25,start=10:20:30:12,backwards");
    EXPECT_EQ(source.start.toString(), "10:20:30:12");
    EXPECT_TRUE(source.backwards);
}

TEST(TimecodeSource, SaysWhatIsWrong)
{
    for (const char* const rate : {"", "abc", "0", "-25", "25x", "nan", "inf", "1001", "1e-9"})
        EXPECT_EQ(GetProblem(rate), std::string("'") + rate +
                                        "' is neither a rate in frames per second, up to 1000, nor "
                                        "film24, ebu25, ntsc30 or smpte30");
    EXPECT_EQ(GetProblem("25,forwards"), "'forwards' is neither start=HH:MM:SS:FF nor backwards");
    EXPECT_EQ(GetProblem("25,start=10:20"), "'10:20' is no timecode HH:MM:SS:FF");
}

TEST(TimecodeSource, StartsAnInstance)
{
    Hardware::Timecode::DeviceSim device(nullptr);
    TimecodeSource::Parse("ntsc30").StartOn(device, 1);
    TimecodeSource::Parse("24,backwards").StartOn(device, 2);
    EXPECT_TRUE(device.IsStarted(1));
    EXPECT_EQ(device.GetFormat(1), Hardware::TimecodeFormat_Ntsc30);
    EXPECT_DOUBLE_EQ(device.GetRate(2), -24.0);
}

} // namespace
