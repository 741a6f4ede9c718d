// SPDX-License-Identifier: MIT

// Files that light settings are kept in, and those that they are not kept in.

#include <fcntl.h>
#include <gmock/gmock.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <QTemporaryDir>
#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <future>
#include <sstream>

#include "gut/other_settings.h"
#include "message_mapper.h"
#include "standalone/light_settings.h"
#include "standalone/log_sink.h"
#include "support/log_capture.h"

namespace
{

using Standalone::LightSettings;
using testing::AllOf;
using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;
using TestSupport::LogCapture;
using TestSupport::MakeOtherSettings;

constexpr uires16 Percent(double percent)
{
    return static_cast<uires16>(percent * 0x10000);
}

class LightSettingsFile : public testing::Test
{
protected:
    void Write(const std::string& text) const { std::ofstream(m_file) << text; }
    std::string ReadFile() const
    {
        std::ostringstream text;
        text << std::ifstream(m_file).rdbuf();
        return text.str();
    }
    std::string GetProblem(const std::string& reason) const
    {
        return "cannot read the light settings in '" + m_file + "': " + reason;
    }
    /// The file is refused for that reason, and a change leaves it as it is.
    void ExpectRefused(const std::string& text, const std::string& reason)
    {
        Write(text);
        EXPECT_EQ(Standalone::UseLightSettingsFile(m_file), GetProblem(reason)) << text;
        EXPECT_TRUE(Standalone::SetLightSettings(MakeOtherSettings()));
        EXPECT_EQ(ReadFile(), text);
        EXPECT_TRUE(Standalone::SetLightSettings({}));
    }

    const QTemporaryDir m_folder;
    const std::string m_file = m_folder.filePath("lights.ini").toStdString();
};

/// What another process does while it changes the settings: it holds their folder.
class OtherProcess
{
public:
    explicit OtherProcess(const QTemporaryDir& folder)
        : m_descriptor(open(folder.path().toStdString().c_str(), O_RDONLY | O_DIRECTORY))
    {
        EXPECT_EQ(flock(m_descriptor, LOCK_EX), 0);
    }
    ~OtherProcess() { close(m_descriptor); }
    OtherProcess(const OtherProcess&) = delete;
    OtherProcess& operator=(const OtherProcess&) = delete;

private:
    const int m_descriptor;
};

} // namespace

TEST_F(LightSettingsFile, KeepsEverySetting)
{
    ASSERT_EQ(Standalone::UseLightSettingsFile(m_file), "");
    Standalone::SetLightSettings(MakeOtherSettings());
    ASSERT_EQ(Standalone::UseLightSettingsFile(""), "");
    Standalone::SetLightSettings({});
    ASSERT_EQ(Standalone::UseLightSettingsFile(m_file), "");
    EXPECT_EQ(Standalone::GetLightSettings(), MakeOtherSettings());
}

TEST_F(LightSettingsFile, HasLevelsInPercent)
{
    ASSERT_EQ(Standalone::UseLightSettingsFile(m_file), "");
    EXPECT_EQ(ReadFile(), ""); // nothing to keep yet
    MessageMapper::SetWorklightOn(false);
    EXPECT_EQ(ReadFile(), "[General]\nbacklightLeft=100\nbacklightRight=100\nbacklightCenter=100\n"
                          "desklight=100\nventlight=100\nworklight=100\nkeyboardDrawer=100\n"
                          "leds=50\nlcds=50\ndesklightBlue=false\nworklightOn=false\n"
                          "keyboardDrawerEnabled=true\n");
}

TEST_F(LightSettingsFile, WhatItDoesNotHaveStaysAsItIs)
{
    Write("[General]\nleds=12.5\n");
    ASSERT_EQ(Standalone::UseLightSettingsFile(m_file), "");
    LightSettings expected;
    expected.leds = Percent(12.5);
    EXPECT_EQ(Standalone::GetLightSettings(), expected);
}

TEST_F(LightSettingsFile, AWrongValueCostsItsSettingOnly)
{
    for (const std::string wrong :
         {"lcds=101", "lcds=-1", "lcds=bright", "lcds=nan", "lcds=", "desklightBlue=yes",
          "worklightOn=1", "keyboardDrawerEnabled="}) {
        Standalone::SetLightSettings({});
        Write("[General]\n" + wrong + "\nbacklightLeft=7\n");
        const LogCapture log;
        EXPECT_EQ(Standalone::UseLightSettingsFile(m_file), "");
        LightSettings expected;
        expected.backlightLeft = Percent(7);
        EXPECT_EQ(Standalone::GetLightSettings(), expected) << wrong;
        const std::size_t equals = wrong.find('=');
        const std::string name = wrong.substr(0, equals);
        ASSERT_THAT(log.GetTexts(),
                    ElementsAre("'" + m_file + "', line 2: '" + wrong.substr(equals + 1) +
                                "' is not a value for " + name +
                                ", which stays as it is; the next change replaces it"));
        EXPECT_EQ(log.GetLines()[0].level, 4U);
        // The next change replaces it.
        EXPECT_TRUE(Standalone::SetLightSettings(MakeOtherSettings()));
        EXPECT_THAT(ReadFile(), Not(HasSubstr("\n" + wrong + "\n")));
        EXPECT_EQ(Standalone::UseLightSettingsFile(""), "");
        Standalone::SetLightSettings({});
        EXPECT_EQ(Standalone::UseLightSettingsFile(m_file), "");
        EXPECT_EQ(Standalone::GetLightSettings(), MakeOtherSettings());
        EXPECT_EQ(Standalone::UseLightSettingsFile(""), "");
    }
}

TEST_F(LightSettingsFile, AKeyThatIsNotASettingSurvivesAChange)
{
    Write("[General]\nled=5\n");
    const LogCapture log;
    ASSERT_EQ(Standalone::UseLightSettingsFile(m_file), "");
    EXPECT_THAT(log.GetTexts(), ElementsAre("'" + m_file +
                                            "', line 2: no light setting is called "
                                            "'led'; the line is kept"));
    EXPECT_EQ(log.GetLines()[0].level, 4U);
    EXPECT_TRUE(Standalone::SetLightSettings(MakeOtherSettings()));
    EXPECT_THAT(ReadFile(), StartsWith("[General]\nled=5\nbacklightLeft=1.5\n"));
    EXPECT_EQ(log.GetTexts().size(), 1U); // said once
}

TEST_F(LightSettingsFile, EverythingElseInItSurvivesAChange)
{
    Write("; mine\r\n\n# also = mine\n[ general ]\n  leds = 12.50  \nlcds=x\nlcds=7\n"
          "shape\\1=\"a=b\"\n\n[Lights]\nleds=3\n[General]\ncolour=\xC3\xA4\n\n[Last]\nkey=\n");
    ASSERT_EQ(Standalone::UseLightSettingsFile(m_file), "");
    EXPECT_EQ(MessageMapper::GetLedLevel(), Percent(12.5));
    EXPECT_EQ(MessageMapper::GetLcdLevel(), Percent(7));
    MessageMapper::SetWorklightOn(false);
    EXPECT_EQ(ReadFile(),
              "; mine\r\n\n# also = mine\n[ general ]\n  leds = 12.50  \nlcds=7\nlcds=7\n"
              "shape\\1=\"a=b\"\n\n[Lights]\nleds=3\n[General]\ncolour=\xC3\xA4\n"
              "backlightLeft=100\nbacklightRight=100\nbacklightCenter=100\ndesklight=100\n"
              "ventlight=100\nworklight=100\nkeyboardDrawer=100\ndesklightBlue=false\n"
              "worklightOn=false\nkeyboardDrawerEnabled=true\n\n[Last]\nkey=\n");
}

TEST_F(LightSettingsFile, ManyUnusualLinesAreCounted)
{
    std::string text = "[General]\n";
    for (int i = 0; i < 10'000; ++i)
        text += "key" + std::to_string(i) + "=1\n";
    Write(text);
    const LogCapture log;
    ASSERT_EQ(Standalone::UseLightSettingsFile(m_file), "");
    ASSERT_EQ(log.GetTexts().size(), 10U);
    EXPECT_EQ(log.GetTexts().back(), "'" + m_file + "', there are 9991 more such lines");
}

TEST_F(LightSettingsFile, MayBeMarkedAsUtf8AndHaveNoGroup)
{
    Write("\xEF\xBB\xBFleds=5\nled=6\n");
    ASSERT_EQ(Standalone::UseLightSettingsFile(m_file), "");
    EXPECT_EQ(MessageMapper::GetLedLevel(), Percent(5));
    MessageMapper::SetWorklightOn(false);
    EXPECT_THAT(ReadFile(), StartsWith("\xEF\xBB\xBFleds=5\nled=6\nbacklightLeft=100\n"));
}

TEST_F(LightSettingsFile, IsWrittenWhereItHasNoKeyYet)
{
    for (const std::string text : {"", "\n", "; later\n", "[General]\n", "[Other]\n"}) {
        Standalone::SetLightSettings({});
        Write(text);
        ASSERT_EQ(Standalone::UseLightSettingsFile(m_file), "") << text;
        MessageMapper::SetWorklightOn(false);
        EXPECT_THAT(ReadFile(), AllOf(StartsWith(text), HasSubstr("[General]\nbacklightLeft=")));
    }
}

TEST_F(LightSettingsFile, IsRefusedWhereItIsNotText)
{
    ExpectRefused(std::string(512, '\0'), "line 1 has no line break; the file is cut, or needs one "
                                          "there");
    ExpectRefused(std::string("[General]\nleds=5\n\0\n", 19),
                  "line 3 has a control character, so that it is not text");
    ExpectRefused("\x7F"
                  "ELF\x02\x01\x01\n",
                  "line 1 has a control character, so that it is not text");
    ExpectRefused("leds=5\n\x89PNG\xFF\n", "it is not text in UTF-8");
    // "leds=5" in UTF-16, with and without a mark.
    ExpectRefused(std::string("\xFF\xFEl\0e\0d\0s\0=\0"
                              "5\0\n\0",
                              16),
                  "it is not text in UTF-8");
    ExpectRefused(std::string("\0l\0e\0d\0s\0=\0"
                              "5\0\n",
                              14),
                  "line 1 has a control character, so that it is not text");
}

TEST_F(LightSettingsFile, IsRefusedWhereItIsCut)
{
    ExpectRefused("[General]\nleds=5\nlcds=1",
                  "line 3 has no line break; the file is cut, or needs one there");
    ExpectRefused("[General]\nleds=5\nlc\n", "line 3 is neither a group, a setting nor a comment");
    ExpectRefused("[General\n\nleds=5\n", "line 1 is neither a group, a setting nor a comment");
    ExpectRefused("leds=5\n=7\n", "line 2 is neither a group, a setting nor a comment");
}

TEST_F(LightSettingsFile, IsRefusedWhereItIsSomebodyElses)
{
    ExpectRefused("Dear Ann,\n\nthe leds=5 are too bright.\n",
                  "line 1 is neither a group, a setting nor a comment");
    const std::string reason = "it has keys, but no light setting, and so belongs to another "
                               "program";
    ExpectRefused("[Lights]\nleds=5\n", reason);
    ExpectRefused("[General]\nname=x\n[Window]\nwidth=7\n", reason);
    ExpectRefused("NAME=x\n", reason);
}

TEST_F(LightSettingsFile, IsRefusedWhereItIsTooLarge)
{
    std::string text = "[General]\nleds=5\n";
    while (text.size() <= 1U << 20U)
        text += "; " + std::string(1000, '-') + "\n";
    ExpectRefused(text, "it is larger than a megabyte");
}

TEST_F(LightSettingsFile, IsRefusedWhereItIsNotARegularFile)
{
    ASSERT_EQ(mkfifo(m_file.c_str(), 0600), 0);
    EXPECT_EQ(Standalone::UseLightSettingsFile(m_file), GetProblem("it is not a regular file"));
    EXPECT_TRUE(std::filesystem::is_fifo(m_file));
    ASSERT_EQ(unlink(m_file.c_str()), 0);
    ASSERT_EQ(mkdir(m_file.c_str(), 0700), 0);
    EXPECT_EQ(Standalone::UseLightSettingsFile(m_file), GetProblem("it is not a regular file"));
}

TEST_F(LightSettingsFile, IsNotWrittenOverWhatTakesItsPlaceLater)
{
    ASSERT_EQ(Standalone::UseLightSettingsFile(m_file), "");
    Write("Dear Ann,\n");
    const LogCapture log;
    EXPECT_FALSE(Standalone::SetLightSettings(MakeOtherSettings()));
    EXPECT_EQ(ReadFile(), "Dear Ann,\n");
    EXPECT_THAT(log.GetTexts(), ElementsAre("Cannot write the light settings to '" + m_file +
                                            "': line 1 is neither a group, a setting nor a "
                                            "comment"));
    ASSERT_EQ(unlink(m_file.c_str()), 0);
    ASSERT_EQ(mkfifo(m_file.c_str(), 0600), 0);
    EXPECT_FALSE(Standalone::SetLightSettings({}));
    EXPECT_TRUE(std::filesystem::is_fifo(m_file));
    EXPECT_EQ(Standalone::GetLightSettings(), LightSettings()); // holds all the same
}

TEST_F(LightSettingsFile, IsFoundThroughALinkWhichStays)
{
    const std::string link = m_folder.filePath("link.ini").toStdString();
    ASSERT_EQ(symlink(m_file.c_str(), link.c_str()), 0);
    ASSERT_EQ(Standalone::UseLightSettingsFile(link), "");
    MessageMapper::SetWorklightOn(false);
    EXPECT_TRUE(std::filesystem::is_symlink(link));
    EXPECT_THAT(ReadFile(), HasSubstr("\nworklightOn=false\n"));
}

TEST_F(LightSettingsFile, ARefusedOneLeavesTheOneBeforeInUse)
{
    ASSERT_EQ(Standalone::UseLightSettingsFile(m_file), "");
    EXPECT_NE(Standalone::UseLightSettingsFile(m_folder.path().toStdString()), "");
    MessageMapper::SetWorklightOn(false);
    EXPECT_THAT(ReadFile(), HasSubstr("\nworklightOn=false\n"));
}

TEST_F(LightSettingsFile, OneThatCannotBeWrittenIsLogged)
{
    Write("");
    const std::string impossible = m_file + "/below/a/file.ini";
    ASSERT_EQ(Standalone::UseLightSettingsFile(impossible), "");
    const LogCapture log;
    MessageMapper::SetWorklightOn(false);
    EXPECT_THAT(log.GetTexts(), ElementsAre("Cannot write the light settings to '" + impossible +
                                            "': Not a directory"));
    EXPECT_FALSE(MessageMapper::GetWorklightOn()); // holds all the same
    EXPECT_FALSE(Standalone::SetLightSettings(MakeOtherSettings()));
    EXPECT_EQ(Standalone::GetLightSettings(), MakeOtherSettings());
}

TEST_F(LightSettingsFile, ALogSinkMayAskForAndChangeSettingsThatCannotBeWritten)
{
    class AskingSink : public Standalone::LogSink
    {
    public:
        void Write(const Standalone::LogRecord& record) override
        {
            if (record.context != "LightSettings" || m_hasAsked)
                return;
            m_hasAsked = true;
            if (!Standalone::GetLightSettings().worklightOn &&
                !Standalone::SetLightSettings(MakeOtherSettings()))
                std::exit(0);
        }

    private:
        bool m_hasAsked = false;
    };
    Write("");
    ASSERT_EQ(Standalone::UseLightSettingsFile(m_file + "/below/a/file.ini"), "");
    EXPECT_EXIT(
        {
            alarm(20); // one that hangs is ended
            Standalone::SetLogSink(std::make_shared<AskingSink>());
            MessageMapper::SetWorklightOn(false);
            std::exit(1);
        },
        testing::ExitedWithCode(0), "");
}

TEST_F(LightSettingsFile, AChangeTakesOverWhatAnotherProcessHasChanged)
{
    ASSERT_EQ(Standalone::UseLightSettingsFile(m_file), "");
    MessageMapper::SetWorklightOn(false);
    std::string text = ReadFile();
    text.replace(text.find("leds=50"), 7, "leds=60"); // of the same length
    Write(text);
    MessageMapper::SetWorklightOn(true);
    EXPECT_THAT(ReadFile(), AllOf(HasSubstr("\nleds=60\n"), HasSubstr("\nworklightOn=true\n")));
    EXPECT_EQ(MessageMapper::GetLedLevel(), Percent(60));
}

TEST_F(LightSettingsFile, AChangeWaitsForThatOfAnotherProcess)
{
    ASSERT_EQ(Standalone::UseLightSettingsFile(m_file), "");
    std::future<void> change;
    {
        const OtherProcess other(m_folder);
        change = std::async(std::launch::async, [] { MessageMapper::SetWorklightOn(false); });
        change.wait_for(std::chrono::milliseconds(50)); // one that does not wait gets its turn
        EXPECT_FALSE(std::filesystem::exists(m_file));
        Write("[General]\nleds=5\n");
    }
    change.wait();
    EXPECT_THAT(ReadFile(), AllOf(HasSubstr("\nleds=5\n"), HasSubstr("\nworklightOn=false\n")));
    EXPECT_EQ(MessageMapper::GetLedLevel(), Percent(5));
}

TEST_F(LightSettingsFile, AChangeGivesUpOnAProcessThatKeepsItLocked)
{
    ASSERT_EQ(Standalone::UseLightSettingsFile(m_file), "");
    const LogCapture log;
    {
        const OtherProcess other(m_folder);
        EXPECT_FALSE(
            Standalone::ChangeLightSettings([](LightSettings& settings) { settings.leds = 0; }));
        EXPECT_THAT(log.GetTexts(), ElementsAre(EndsWith("another process keeps the folder "
                                                         "locked")));
        EXPECT_EQ(MessageMapper::GetLedLevel(), 0U); // holds all the same
    }
    // The next change writes it, too.
    MessageMapper::SetWorklightOn(false);
    EXPECT_THAT(ReadFile(), AllOf(HasSubstr("\nleds=0\n"), HasSubstr("\nworklightOn=false\n")));
}
