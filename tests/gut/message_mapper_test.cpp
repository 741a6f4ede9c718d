// SPDX-License-Identifier: MIT

// What the application answers about the user's lights.

#include "message_mapper.h"

#include <gtest/gtest.h>

#include <thread>

#include "gut/other_settings.h"
#include "standalone/light_settings.h"

namespace
{

using Standalone::LightSettings;
using TestSupport::MakeOtherSettings;

constexpr uires16 Full = 0x00640000;
constexpr uires16 Half = 0x00320000;

} // namespace

TEST(MessageMapper, BeginsWithAllLightsOnAndAWhiteDesk)
{
    EXPECT_EQ(MessageMapper::GetBacklightLeft(), Full);
    EXPECT_EQ(MessageMapper::GetBacklightRight(), Full);
    EXPECT_EQ(MessageMapper::GetBacklightCenter(), Full);
    EXPECT_FALSE(MessageMapper::IsDesklightBlue());
    EXPECT_EQ(MessageMapper::GetDesklightLevel(), Full);
    EXPECT_EQ(MessageMapper::GetVentlightLevel(), Full);
    EXPECT_TRUE(MessageMapper::GetWorklightOn());
    EXPECT_EQ(MessageMapper::GetWorklightCurrentLevel(), Full);
    EXPECT_TRUE(MessageMapper::IsKeyboardDrawerEnabled());
    EXPECT_EQ(MessageMapper::GetKeyboardDrawerLevel(), Full);
    EXPECT_EQ(MessageMapper::GetLedLevel(), Half);
    EXPECT_EQ(MessageMapper::GetLcdLevel(), Half);
}

TEST(MessageMapper, AnswersEachSettingFromItsField)
{
    const LightSettings settings = MakeOtherSettings();
    Standalone::SetLightSettings(settings);
    EXPECT_EQ(MessageMapper::GetBacklightLeft(), 0x00018000U);
    EXPECT_EQ(MessageMapper::GetBacklightRight(), 0x00028000U);
    EXPECT_EQ(MessageMapper::GetBacklightCenter(), 0x00038000U);
    EXPECT_TRUE(MessageMapper::IsDesklightBlue());
    EXPECT_EQ(MessageMapper::GetDesklightLevel(), 0x00048000U);
    EXPECT_EQ(MessageMapper::GetVentlightLevel(), 0x00058000U);
    EXPECT_FALSE(MessageMapper::GetWorklightOn());
    EXPECT_FALSE(MessageMapper::IsKeyboardDrawerEnabled());
    EXPECT_EQ(MessageMapper::GetKeyboardDrawerLevel(), 0x00078000U);
    EXPECT_EQ(MessageMapper::GetLedLevel(), 0x00088000U);
    EXPECT_EQ(MessageMapper::GetLcdLevel(), 0x00098000U);
    EXPECT_EQ(Standalone::GetLightSettings(), settings);
}

TEST(MessageMapper, AWorkLightThatIsOffHasNoLevel)
{
    LightSettings settings;
    settings.worklight = Half;
    Standalone::SetLightSettings(settings);
    MessageMapper::SetWorklightOn(false);
    EXPECT_FALSE(MessageMapper::GetWorklightOn());
    EXPECT_EQ(MessageMapper::GetWorklightCurrentLevel(), 0U);
    MessageMapper::SetWorklightOn(true);
    EXPECT_EQ(MessageMapper::GetWorklightCurrentLevel(), Half);
}

TEST(MessageMapper, MayBeAskedWhileItIsChanged)
{
    std::thread other([] {
        for (int i = 0; i < 1000; ++i)
            MessageMapper::SetWorklightOn(i % 2 == 0);
    });
    for (int i = 0; i < 1000; ++i) {
        const uires16 level = MessageMapper::GetWorklightCurrentLevel();
        EXPECT_TRUE(level == 0 || level == Full);
    }
    other.join();
}
