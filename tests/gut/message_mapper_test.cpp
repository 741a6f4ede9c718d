// SPDX-License-Identifier: MIT

// What the user set the lights to, and where it is kept.

#include "message_mapper.h"

#include <gmock/gmock.h>

#include <QTemporaryDir>
#include <array>
#include <chrono>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <thread>

#include "standalone/light_settings.h"
#include "standalone/messages.h"
#include "support/log_capture.h"

namespace
{

using Standalone::LightSettings;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

constexpr uires16 Full = 0x00640000;
constexpr uires16 Half = 0x00320000;

class LightSettingsFile : public testing::Test
{
protected:
    /// With a time of its own: Qt takes a file of the same size and time for the one that it has
    /// read, and the kernel's clock stands still for some milliseconds.
    void Write(const std::string& text)
    {
        std::ofstream(m_file) << text;
        std::filesystem::last_write_time(m_file, std::filesystem::file_time_type::clock::now() +
                                                     std::chrono::seconds(++m_writes));
    }
    std::string ReadFile() const
    {
        std::ostringstream text;
        text << std::ifstream(m_file).rdbuf();
        return text.str();
    }
    const QTemporaryDir m_folder;
    const std::string m_file = m_folder.filePath("lights.ini").toStdString();

private:
    int m_writes = 0;
};

/// Different from what it begins with, in every field.
LightSettings MakeOthers()
{
    LightSettings settings;
    unsigned percent = 1;
    for (uires16* const level :
         {&settings.backlightLeft, &settings.backlightRight, &settings.backlightCenter,
          &settings.desklight, &settings.ventlight, &settings.worklight, &settings.keyboardDrawer,
          &settings.leds, &settings.lcds})
        *level = percent++ << 16U | 0x8000U;
    settings.desklightBlue = true;
    settings.worklightOn = false;
    settings.keyboardDrawerEnabled = false;
    return settings;
}

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
    const LightSettings settings = MakeOthers();
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

TEST_F(LightSettingsFile, KeepsEverySetting)
{
    ASSERT_EQ(Standalone::UseLightSettingsFile(m_file), "");
    Standalone::SetLightSettings(MakeOthers());
    ASSERT_EQ(Standalone::UseLightSettingsFile(""), "");
    Standalone::SetLightSettings({});
    ASSERT_EQ(Standalone::UseLightSettingsFile(m_file), "");
    EXPECT_EQ(Standalone::GetLightSettings(), MakeOthers());
}

TEST_F(LightSettingsFile, HasLevelsInPercent)
{
    ASSERT_EQ(Standalone::UseLightSettingsFile(m_file), "");
    EXPECT_EQ(ReadFile(), ""); // nothing to keep yet
    MessageMapper::SetWorklightOn(false);
    EXPECT_THAT(ReadFile(), HasSubstr("\nbacklightLeft=100\n"));
    EXPECT_THAT(ReadFile(), HasSubstr("\nworklightOn=false\n"));
}

TEST_F(LightSettingsFile, WhatItDoesNotHaveStaysAsItIs)
{
    Write("[General]\nleds=12.5\n");
    ASSERT_EQ(Standalone::UseLightSettingsFile(m_file), "");
    LightSettings expected;
    expected.leds = 0x000C8000;
    EXPECT_EQ(Standalone::GetLightSettings(), expected);
}

TEST_F(LightSettingsFile, IsRefusedWholeWhereAnythingIsWrong)
{
    for (const char* const wrong :
         {"lcds=101", "lcds=-1", "lcds=bright", "lcds=nan", "lcds=", "desklightBlue=yes",
          "worklightOn=1", "keyboardDrawerEnabled="}) {
        Write(std::string("[General]\nbacklightLeft=7\n") + wrong + "\n");
        const std::string name(wrong, std::strchr(wrong, '='));
        EXPECT_EQ(Standalone::UseLightSettingsFile(m_file),
                  "'" + m_file + "': " + name + " is not what it should be");
        EXPECT_EQ(Standalone::GetLightSettings(), LightSettings()) << wrong;
    }
    // Nor is it kept there.
    const std::string before = ReadFile();
    MessageMapper::SetWorklightOn(false);
    EXPECT_EQ(ReadFile(), before);
}

TEST_F(LightSettingsFile, IsRefusedWithSettingsThatAreNone)
{
    Write("[General]\nled=5\n");
    EXPECT_EQ(Standalone::UseLightSettingsFile(m_file),
              "'" + m_file + "': no setting is called led");
    Write("[Lights]\nleds=5\n");
    EXPECT_EQ(Standalone::UseLightSettingsFile(m_file),
              "'" + m_file + "': no setting is called Lights/leds");
}

TEST_F(LightSettingsFile, IsRefusedWhereItIsNone)
{
    Write("[General\n\nno settings\n");
    EXPECT_EQ(Standalone::UseLightSettingsFile(m_file),
              "cannot read the light settings in '" + m_file + "'");
    const std::string folder = m_folder.path().toStdString();
    EXPECT_EQ(Standalone::UseLightSettingsFile(folder),
              "cannot read the light settings in '" + folder + "'");
}

TEST_F(LightSettingsFile, OneThatCannotBeWrittenIsLogged)
{
    Write("");
    const std::string impossible = m_file + "/below/a/file.ini";
    ASSERT_EQ(Standalone::UseLightSettingsFile(impossible), "");
    const TestSupport::LogCapture log;
    MessageMapper::SetWorklightOn(false);
    EXPECT_THAT(log.GetTexts(),
                ElementsAre("Cannot write the light settings to '" + impossible + "'"));
    EXPECT_FALSE(MessageMapper::GetWorklightOn()); // holds all the same
    EXPECT_FALSE(Standalone::SetLightSettings(MakeOthers()));
    EXPECT_EQ(Standalone::GetLightSettings(), MakeOthers());
}

TEST(LightSettingsMessage, TellsOfChangesToFadeToOrToShowAtOnce)
{
    std::vector<std::vector<std::uint32_t>> posted;
    Standalone::SetPostObserver([&posted](const Gut::Message& message, unsigned systemObject) {
        std::vector<std::uint32_t> words(message.Size() / 4);
        std::memcpy(words.data(), message.Data(), message.Size());
        words.push_back(systemObject);
        posted.push_back(words);
    });
    Standalone::AnnounceLightSettings(true);
    Standalone::AnnounceLightSettings(false);
    EXPECT_THAT(posted, ElementsAre(ElementsAre(22, 12, 1, 3), ElementsAre(22, 11, 1, 3)));
}

TEST(LightSettingsMessage, IsNotPostedByASettingAlone)
{
    bool isPosted = false;
    Standalone::SetPostObserver([&isPosted](const Gut::Message&, unsigned) { isPosted = true; });
    Standalone::SetLightSettings(MakeOthers());
    MessageMapper::SetWorklightOn(true);
    EXPECT_FALSE(isPosted);
}
