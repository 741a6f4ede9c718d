// SPDX-License-Identifier: MIT
// Lights and their settings on the command line.
#include <gmock/gmock.h>

#include <QTemporaryDir>
#include <fstream>
#include <nlohmann/json.hpp>
#include <sstream>

#include "tools/hwctl_process.h"

namespace
{

using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;
using TestSupport::RunHwctl;

/// A folder for settings, as the user's own.
class HwctlSettings : public testing::Test
{
protected:
    TestSupport::HwctlRun Run(std::vector<std::string> arguments) const
    {
        return RunHwctl(arguments, {"XDG_CONFIG_HOME=" + m_folder.path().toStdString()});
    }
    const QTemporaryDir m_folder;
    const std::string m_file = m_folder.path().toStdString() + "/libhardware/lights.ini";
};

class HwctlLights : public HwctlSettings
{
};

/// Levels that a light was told to have, in order, of a run that prints JSON.
std::vector<double> GetLevels(const TestSupport::HwctlRun& run, unsigned light)
{
    std::vector<double> levels;
    for (const std::string& line : run.GetLines()) {
        const auto object = nlohmann::json::parse(line);
        if (object.contains("signal") && object["signal"] == "level_change" &&
            object["light"] == light)
            levels.push_back(object["level"]);
    }
    return levels;
}

} // namespace

TEST_F(HwctlLights, AreListedWithTheirDevices)
{
    const auto run = Run({"--virtual", "lights"});
    EXPECT_EQ(run.exitCode, 0);
    EXPECT_THAT(run.out, StartsWith("Lights\n   0  LeftBacklight           100.0 %  preferred  "
                                    "100.0 %\n"));
    EXPECT_THAT(run.out, HasSubstr("   8  BlueDeskLight             0.0 %"));
    EXPECT_THAT(
        run.out,
        HasSubstr("  keyboard     LEDs 127, blue desk light 0, drawer light 255, white desk "
                  "light 255, dimmer 6 0, dimmer 7 0, dimmer 8 0, vent light 255\n"));
    EXPECT_THAT(run.out, HasSubstr("  left: register fe627afc holds 0000ff01"));
}

TEST_F(HwctlLights, ShowTheControllerOfTheModel)
{
    const auto eight = Run({"--virtual", "--console", "8", "lights", "left=75"});
    EXPECT_THAT(eight.out, HasSubstr("  left: panel at /dev/ttyS0 has level 191 of 255\n"));
    const auto nine = Run({"--virtual", "--console", "9", "lights", "right=0"});
    EXPECT_THAT(nine.out, HasSubstr("  right: chip holds '255' of 255"));
}

TEST_F(HwctlLights, AreSetAndFaded)
{
    const auto run = Run({"--virtual", "lights", "--json", "vent=40", "vent=80/0.1"});
    EXPECT_EQ(run.exitCode, 0);
    // The settings' first, then at once, then the fade's two steps.
    EXPECT_THAT(GetLevels(run, 6), ElementsAre(100, 40, 40, 60));
}

TEST_F(HwctlLights, PrintEachChange)
{
    const auto run = Run({"--virtual", "lights", "work=12.5"});
    EXPECT_THAT(run.out, HasSubstr("  light WorkLight       12.5 %\n"));
    EXPECT_THAT(run.out, HasSubstr("\n\nLights\n"));
    EXPECT_THAT(run.out, HasSubstr("  playback     LEDs 127, work light 31\n"));
}

TEST_F(HwctlLights, FollowTheirKeyTheScreenAndTheDrawer)
{
    const auto key = Run({"--virtual", "lights", "key"});
    EXPECT_THAT(key.out, HasSubstr("   7  WorkLight                 0.0 %"));
    const auto sleep = Run({"--virtual", "lights", "sleep"});
    EXPECT_THAT(sleep.out, HasSubstr("  lights                expansion wings sleep\n"));
    EXPECT_THAT(sleep.out, HasSubstr("work light 255, asleep\n"));
    EXPECT_THAT(sleep.out, HasSubstr("   9  WhiteDeskLight            1.7 %"));
    const auto woken = Run({"--virtual", "lights", "sleep", "wait=0.1", "wake"});
    EXPECT_THAT(woken.out, HasSubstr("   9  WhiteDeskLight          100.0 %"));
    EXPECT_THAT(woken.out, Not(HasSubstr("asleep")));
    const auto open = Run({"--virtual", "lights", "--json", "keyboard=0", "open"});
    EXPECT_EQ(GetLevels(open, 5).size(), 62U); // the settings', 0, and a fade of 3 s
}

TEST_F(HwctlLights, StartAndEndAsAConsoleDoes)
{
    const auto run = Run({"--virtual", "lights", "start", "wait=0.2", "end"});
    EXPECT_EQ(run.exitCode, 0);
    for (const char* const line :
         {"   5  KeyboardDrawerLight       0.0 %", "   7  WorkLight                 0.0 %",
          "   8  BlueDeskLight             0.0 %", "   9  WhiteDeskLight            0.0 %"})
        EXPECT_THAT(run.out, HasSubstr(line));
}

TEST_F(HwctlLights, AreShownAsBars)
{
    const auto run = Run({"--virtual", "lights", "--bars", "vent=50", "wait=0", "key"});
    EXPECT_THAT(run.out, StartsWith("\nafter vent=50 wait=0, "));
    EXPECT_THAT(run.out, HasSubstr("  VentLight              [####################"
                                   "                    ] 50.0 %\n"));
    EXPECT_THAT(run.out, HasSubstr("\nafter key, "));
    EXPECT_THAT(run.out, Not(HasSubstr("  light VentLight")));
}

TEST_F(HwctlLights, AnInterruptEndsAWait)
{
    const auto run = RunHwctl({"--virtual", "lights", "vent=50", "wait=3600", "vent=60"}, {},
                              "light VentLight       50.0");
    EXPECT_EQ(run.exitCode, 0);
    EXPECT_THAT(run.out, HasSubstr("   6  VentLight                50.0 %"));
}

TEST_F(HwctlLights, RefuseWhatTheyDoNotUnderstand)
{
    for (const char* const step : {"lamp=5", "vent=101", "dance", "wait=x"}) {
        const auto run = Run({"--virtual", "lights", step});
        EXPECT_EQ(run.exitCode, 2) << step;
        EXPECT_THAT(run.err, StartsWith("hwctl: '"));
    }
}

TEST_F(HwctlLights, TakeTheSettingsOfAFile)
{
    const std::string file = m_folder.filePath("mine.ini").toStdString();
    std::ofstream(file) << "[General]\nventlight=25\n";
    const auto run = Run({"--virtual", "lights", "--settings", file, "key"});
    EXPECT_THAT(run.out, HasSubstr("   6  VentLight                25.0 %"));
    std::ostringstream text;
    text << std::ifstream(file).rdbuf();
    EXPECT_THAT(text.str(), HasSubstr("worklightOn=false")); // the key is kept
    const auto none = Run({"--virtual", "lights", "--settings", m_folder.path().toStdString()});
    EXPECT_EQ(none.exitCode, 1);
    EXPECT_THAT(none.err, StartsWith("hwctl: cannot read the light settings in '"));
    const auto mistyped = Run({"--virtual", "lights", "--settings", file + "x"});
    EXPECT_EQ(mistyped.exitCode, 1);
    EXPECT_EQ(mistyped.err, "hwctl: there is no '" + file + "x'\n");
}

TEST_F(HwctlLights, VirtualOnesLeaveTheUsersSettingsAlone)
{
    Run({"--virtual", "lights", "key"});
    EXPECT_FALSE(std::ifstream(m_file).good());
}

TEST_F(HwctlSettings, AreShownWithTheirFile)
{
    const auto run = Run({"settings"});
    EXPECT_EQ(run.exitCode, 0);
    EXPECT_EQ(run.GetLines().size(), 13U);
    EXPECT_EQ(run.GetLines()[0], m_file);
    EXPECT_EQ(run.GetLines()[4], "  blue       off");
    EXPECT_FALSE(std::ifstream(m_file).good()); // nothing was changed
    const auto json = nlohmann::json::parse(Run({"settings", "--json"}).out);
    EXPECT_EQ(json["left"], 100);
    EXPECT_EQ(json["blue"], false);
}

TEST_F(HwctlSettings, AreKeptAndTold)
{
    const auto run = Run({"settings", "blue=on", "desk=37.5"});
    EXPECT_EQ(run.exitCode, 0);
    EXPECT_EQ(run.GetLines()[0], "posted to 3: 22 12 1");
    const auto again = Run({"settings", "leds=5", "--at-once"});
    EXPECT_EQ(again.GetLines()[0], "posted to 3: 22 11 1");
    const auto json = nlohmann::json::parse(Run({"settings", "--json"}).out);
    EXPECT_EQ(json["blue"], true);
    EXPECT_EQ(json["desk"], 37.5);
    EXPECT_EQ(json["leds"], 5);
}

TEST_F(HwctlSettings, LightsFollowWhereAsked)
{
    const auto run = Run({"--virtual", "settings", "vent=10", "--at-once", "--show"});
    EXPECT_EQ(run.exitCode, 0);
    EXPECT_THAT(run.out, HasSubstr("  light VentLight       100.0 %\n"));
    EXPECT_THAT(run.out, HasSubstr("  light VentLight       10.0 %\n"));
    EXPECT_THAT(run.out, HasSubstr("posted to 3: 22 11 1\n"));
}

TEST_F(HwctlSettings, VirtualOnesLeaveTheUsersAlone)
{
    const auto run = Run({"--virtual", "settings", "vent=10"});
    EXPECT_EQ(run.exitCode, 0);
    EXPECT_THAT(run.out, HasSubstr("\nkept nowhere\n"));
    EXPECT_FALSE(std::ifstream(m_file).good());
}

TEST_F(HwctlSettings, AreShownInWaysThatGoTogether)
{
    EXPECT_EQ(Run({"--virtual", "settings", "--show"}).exitCode, 2);
    EXPECT_EQ(Run({"--virtual", "settings", "vent=5", "--show", "--json"}).exitCode, 2);
}

TEST_F(HwctlSettings, ThatCannotBeKeptAreAFailure)
{
    std::ofstream(m_folder.filePath("file").toStdString()) << "";
    const auto run =
        Run({"settings", "--settings", m_folder.filePath("file/x.ini").toStdString(), "leds=5"});
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_THAT(run.err, HasSubstr("hwctl: cannot write the light settings to '"));
}

TEST_F(HwctlSettings, AreNotWrittenOverAnotherFile)
{
    const std::string letter = m_folder.filePath("letter").toStdString();
    std::ofstream(letter) << "Dear Ann,\n";
    const auto run = Run({"settings", "--settings", letter, "leds=5"});
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_THAT(run.err, HasSubstr("hwctl: cannot read the light settings in '" + letter +
                                   "': line 1 is neither a group, a setting nor a comment\n"));
    std::ostringstream text;
    text << std::ifstream(letter).rdbuf();
    EXPECT_EQ(text.str(), "Dear Ann,\n");
}

TEST_F(HwctlSettings, ThatAreNoneAreRefused)
{
    EXPECT_EQ(Run({"settings", "lamp=5"}).exitCode, 2);
    EXPECT_EQ(Run({"settings", "leds=500"}).exitCode, 2);
    EXPECT_FALSE(std::ifstream(m_file).good());
}
