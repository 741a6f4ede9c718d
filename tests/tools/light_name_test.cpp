// SPDX-License-Identifier: MIT
// Names of lights, levels as words and bars.
#include "common/light_name.h"

#include <gmock/gmock.h>

#include <stdexcept>

namespace
{

using namespace Tools;
using Hardware::ConsoleLightId;

std::string GetProblem(const std::string& light)
{
    try {
        ParseLight(light);
    } catch (const std::invalid_argument& error) {
        return error.what();
    }
    return "";
}

} // namespace

TEST(LightName, IsReadAsItIsWritten)
{
    for (unsigned id = 0; id < Hardware::ConsoleLightCount; ++id)
        EXPECT_EQ(ParseLight(GetLightName(static_cast<ConsoleLightId>(id))), id);
    EXPECT_STREQ(GetLightName(Hardware::WhiteDeskLight), "WhiteDeskLight");
}

TEST(LightName, MayBeCutAsLongAsItIsOne)
{
    EXPECT_EQ(ParseLight("white"), Hardware::WhiteDeskLight);
    EXPECT_EQ(ParseLight("WORK"), Hardware::WorkLight);
    EXPECT_EQ(ParseLight("wingleds"), Hardware::WingLeds);
    EXPECT_EQ(ParseLight("Centre"), Hardware::CenterBacklight);
    EXPECT_EQ(ParseLight("drawer"), Hardware::KeyboardDrawerLight);
    EXPECT_EQ(ParseLight("leds"), Hardware::WingLeds);
    EXPECT_THAT(GetProblem("w"), testing::StartsWith("'w' is not one light; the nearest are "));
    EXPECT_EQ(GetProblem("DeskProgrammerDimmer").substr(0, 22), "'DeskProgrammerDimmer'");
    EXPECT_THAT(GetProblem(""), testing::StartsWith("'' is not one light"));
    EXPECT_THAT(GetProblem("lamp"), testing::EndsWith(" DeskProgrammerDimmer8"));
    EXPECT_NE(GetProblem("WhiteDeskLight1"), "");
}

TEST(LightLevel, IsAPercentage)
{
    EXPECT_EQ(ParseLevel("0"), 0U);
    EXPECT_EQ(ParseLevel("37.5"), 0x00258000U);
    EXPECT_EQ(ParseLevel("100"), 0x00640000U);
    for (const char* const wrong : {"", "-1", "100.1", "nan", "inf", "5%", "5 ", "x", "1e9"})
        EXPECT_THROW(ParseLevel(wrong), std::invalid_argument) << wrong;
    EXPECT_EQ(FormatLevel(0x00258000), "37.5 %");
    EXPECT_EQ(FormatLevel(0x0001AAF4), "1.7 %");
}

TEST(LightLevel, IsAlsoABar)
{
    EXPECT_EQ(FormatBar(0, 4), "[    ]");
    EXPECT_EQ(FormatBar(0x00320000, 4), "[##  ]");
    EXPECT_EQ(FormatBar(0x00640000, 4), "[####]");
    EXPECT_EQ(FormatBar(0x01000000, 4), "[####]");
}
