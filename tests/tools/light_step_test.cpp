// SPDX-License-Identifier: MIT
// Steps with lights, and light settings, as words.
#include "common/light_step.h"

#include <gmock/gmock.h>

#include <stdexcept>

#include "common/light_setting.h"

namespace
{

using Standalone::LightSettings;
using testing::ElementsAre;
using testing::Pair;
using Tools::LightStep;

std::string GetProblem(const std::string& text)
{
    try {
        LightStep::Parse(text);
    } catch (const std::invalid_argument& error) {
        return error.what();
    }
    return "";
}

std::string GetSettingProblem(const std::string& text)
{
    LightSettings settings;
    try {
        Tools::ChangeLightSetting(settings, text);
    } catch (const std::invalid_argument& error) {
        EXPECT_EQ(settings, LightSettings());
        return error.what();
    }
    return "";
}

} // namespace

TEST(LightStep, SetsALevel)
{
    const LightStep step = LightStep::Parse("vent=12.5");
    EXPECT_EQ(step.kind, LightStep::Kind::Set);
    EXPECT_EQ(step.light, Hardware::VentLight);
    EXPECT_EQ(step.level, 0x000C8000U);
    EXPECT_EQ(step.text, "vent=12.5");
}

TEST(LightStep, FadesToALevel)
{
    const LightStep step = LightStep::Parse("BlueDeskLight=100/2.5");
    EXPECT_EQ(step.kind, LightStep::Kind::Fade);
    EXPECT_EQ(step.light, Hardware::BlueDeskLight);
    EXPECT_EQ(step.level, 0x00640000U);
    EXPECT_EQ(step.milliseconds, 2500U);
}

TEST(LightStep, SetsALevelThatIsToFadeTooFast)
{
    EXPECT_EQ(LightStep::Parse("vent=5/0").kind, LightStep::Kind::Set);
    EXPECT_EQ(LightStep::Parse("vent=5/0.05").kind, LightStep::Kind::Set);
    EXPECT_EQ(LightStep::Parse("vent=5/0.051").kind, LightStep::Kind::Fade);
}

TEST(LightStep, Waits)
{
    const LightStep step = LightStep::Parse("wait=0.05");
    EXPECT_EQ(step.kind, LightStep::Kind::Wait);
    EXPECT_EQ(step.milliseconds, 50U);
}

TEST(LightStep, MayBeAWord)
{
    typedef LightStep::Kind Kind;
    for (const auto& [text, kind] : {std::pair{"start", Kind::Start},
                                     {"end", Kind::End},
                                     {"reset", Kind::Reset},
                                     {"key", Kind::Key},
                                     {"sleep", Kind::Sleep},
                                     {"wake", Kind::Wake},
                                     {"open", Kind::Open},
                                     {"close", Kind::Close},
                                     {"apply", Kind::Apply},
                                     {"change", Kind::Change},
                                     {"settle", Kind::Settle}})
        EXPECT_EQ(LightStep::Parse(text).kind, kind) << text;
}

TEST(LightStep, SaysWhatIsWrong)
{
    EXPECT_THAT(GetProblem("dance"), testing::StartsWith("'dance' is not a step: LIGHT=LEVEL, "));
    EXPECT_THAT(GetProblem("lamp=5"), testing::StartsWith("'lamp' is not one light"));
    EXPECT_EQ(GetProblem("vent=5x"), "'5x' is not a level from 0 to 100");
    EXPECT_EQ(GetProblem("vent=/2"), "'' is not a level from 0 to 100");
    EXPECT_EQ(GetProblem("vent=5/"), "'' is not a time from 0 to 3600 seconds");
    EXPECT_EQ(GetProblem("vent=5/-1"), "'-1' is not a time from 0 to 3600 seconds");
    EXPECT_EQ(GetProblem("wait=nan"), "'nan' is not a time from 0 to 3600 seconds");
    EXPECT_NE(GetProblem("wait"), "");
}

TEST(LightSetting, IsShownByNameAndValue)
{
    LightSettings settings;
    settings.worklight = 0x00258000;
    settings.desklightBlue = true;
    EXPECT_THAT(Tools::DescribeLightSettings(settings),
                ElementsAre(Pair("left", "100"), Pair("right", "100"), Pair("centre", "100"),
                            Pair("blue", "on"), Pair("desk", "100"), Pair("vent", "100"),
                            Pair("work-on", "on"), Pair("work", "37.5"), Pair("drawer-on", "on"),
                            Pair("drawer", "100"), Pair("leds", "50"), Pair("lcds", "50")));
}

TEST(LightSetting, IsReadBackAsItIsShown)
{
    LightSettings other{1 << 16, 2 << 16, 3 << 16, true,    4 << 16, 5 << 16,
                        false,   6 << 16, false,   7 << 16, 8 << 16, 9 << 16};
    LightSettings settings;
    for (const auto& [name, value] : Tools::DescribeLightSettings(other))
        Tools::ChangeLightSetting(settings, name + "=" + value);
    EXPECT_EQ(settings, other);
}

TEST(LightSetting, SaysWhatIsWrong)
{
    EXPECT_THAT(GetSettingProblem("lamp=5"), testing::StartsWith("there is no setting 'lamp'; "));
    EXPECT_THAT(GetSettingProblem("worx=5"), testing::HasSubstr("; the nearest is work; "));
    EXPECT_EQ(GetSettingProblem("LEDS=5"), "");
    EXPECT_EQ(GetSettingProblem("leds"), "'leds' is not NAME=VALUE");
    EXPECT_EQ(GetSettingProblem("leds=on"), "'on' is not a level from 0 to 100");
    EXPECT_EQ(GetSettingProblem("blue=5"), "'5' is neither on nor off");
}
