// SPDX-License-Identifier: MIT
// Wings and LTC boards on the command line.
#include <gmock/gmock.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <nlohmann/json.hpp>

#include "tools/hwctl_process.h"

namespace
{

using testing::Contains;
using testing::EndsWith;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using TestSupport::HwctlRun;
using TestSupport::RunHwctl;

/// A folder of its own, gone afterwards.
class HwctlWings : public testing::Test
{
protected:
    HwctlWings()
    {
        std::string name = (std::filesystem::temp_directory_path() / "hwctl-wings-XXXXXX").string();
        EXPECT_NE(mkdtemp(name.data()), nullptr);
        m_folder = name;
    }
    ~HwctlWings() override { std::filesystem::remove_all(m_folder); }

    std::string Write(const std::string& text) const
    {
        const std::filesystem::path file = m_folder / "file";
        std::ofstream(file) << text;
        return file.string();
    }

    std::filesystem::path m_folder;
};

constexpr char TwoWings[] = R"([{"model": "Vex4Pixi", "serial": 9, "path": "here"},
                               {"model": "Vex4Petite", "serial": 1}])";

} // namespace

TEST_F(HwctlWings, ListShowsEveryVirtualWingAndBoard)
{
    const auto run = RunHwctl({"--virtual", "list"});
    EXPECT_EQ(run.exitCode, 0);
    EXPECT_EQ(run.err, "");
    EXPECT_THAT(run.out, HasSubstr("\nWings\n  0x00010123  PlaybackWing/291"));
    EXPECT_THAT(run.out, HasSubstr("at trackball\n"));
    EXPECT_THAT(run.out, HasSubstr("\nLTC boards\n  serial number 8  at ltc\n"));
}

TEST_F(HwctlWings, ListWithoutADeskHasNone)
{
    const auto run = RunHwctl({"list"});
    EXPECT_EQ(run.exitCode, 0);
    EXPECT_THAT(run.out, HasSubstr("\nWings\n  none\n"));
    EXPECT_THAT(run.out, HasSubstr("\nLTC boards\n  none\n"));
}

TEST_F(HwctlWings, WidgetsComeFromAFile)
{
    const auto run = RunHwctl({"--virtual", "--widgets", Write(TwoWings), "list", "--json"});
    EXPECT_EQ(run.exitCode, 0);
    const auto inventory = nlohmann::json::parse(run.out);
    ASSERT_EQ(inventory["wings"].size(), 2U);
    EXPECT_EQ(inventory["wings"][0]["key"], 0x50009);
    EXPECT_EQ(inventory["wings"][0]["name"], "Vex4Pixi/9");
    EXPECT_EQ(inventory["wings"][0]["path"], "here");
    EXPECT_THAT(inventory["ltcBoards"], IsEmpty());
}

TEST_F(HwctlWings, AWidgetFileThatIsNotOneIsNamed)
{
    const std::string file = Write("[{}]");
    const auto run = RunHwctl({"--virtual", "--widgets", file, "list"});
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_EQ(run.err, "hwctl: " + file + ": widget description: every widget needs a \"model\"\n");
    EXPECT_EQ(RunHwctl({"--widgets", Write(TwoWings), "list"}).exitCode, 2);
}

TEST_F(HwctlWings, TheConsoleDecidesWhichSectionsAreThere)
{
    EXPECT_THAT(RunHwctl({"--virtual", "list"}).out, HasSubstr("Vex4DeskPlayback/4"));
    const auto run = RunHwctl({"--virtual", "--console", "9", "list"});
    EXPECT_THAT(run.out, Not(HasSubstr("Vex4DeskPlayback/4")));
    EXPECT_THAT(run.out, HasSubstr("TrackballWidget/6"));
}

TEST_F(HwctlWings, LedSetsOneLedASectionOrAll)
{
    EXPECT_EQ(RunHwctl({"--virtual", "led", "Vex4ExternalPlayback/3", "flash", "--part", "71",
                        "--master", "2"})
                  .out,
              "desk motor: LED 11 set to 2\n");
    EXPECT_EQ(RunHwctl({"--virtual", "led", "0x40003", "on"}).out,
              "desk motor: all LEDs set to 1\n");
    EXPECT_EQ(RunHwctl({"--virtual", "led", "PlaybackWing/291", "on", "--section", "0"})
                  .GetLines()
                  .size(),
              50U);
}

TEST_F(HwctlWings, LedWorksAsInTheReadme)
{
    const auto run = RunHwctl({"--virtual", "led", "Vex4Pixi/291", "flash"});
    EXPECT_EQ(run.exitCode, 0);
    EXPECT_EQ(run.out, "desk pixi: all LEDs set to 2\n");
}

TEST_F(HwctlWings, WhatCannotReachAWingIsAFailureThatSaysWhy)
{
    const struct {
        std::vector<std::string> arguments;
        const char* message;
    } table[] = {
        {{"led", "PlaybackWing/291", "on"},
         "PlaybackWing/291 takes LEDs by whole sections only: use --section"},
        {{"led", "PlaybackWing/291", "on", "--section", "1"},
         "PlaybackWing/291 has no section 1; section 0 is the only one"},
        {{"led", "ExpansionWing/2", "on", "--section", "0"},
         "ExpansionWing/2 has no sections with masters"},
        {{"led", "Vex4Pixi/291", "on", "--part", "70", "--master", "11"},
         "Vex4Pixi/291 has no LED of part 70 and master 11; there are parts 54, 70 to 72, 74 with "
         "masters 1 to 10; parts 150 to 189 with master 65535"},
        {{"fader", "Vex4Pixi/291", "1", "9"}, "Vex4Pixi/291 has no motor faders"},
        {{"fader", "Vex4ExternalPlayback/3", "11", "9"},
         "Vex4ExternalPlayback/3 has no motor fader of master 11; there are masters 1 to 10"},
        {{"led", "TrackballWidget/6", "on"},
         "TrackballWidget/6 is not a wing: it has no LEDs, faders or beacon"},
    };
    for (const auto& [words, message] : table) {
        std::vector<std::string> arguments{"--virtual"};
        arguments.insert(arguments.end(), words.begin(), words.end());
        const auto run = RunHwctl(arguments);
        EXPECT_EQ(run.exitCode, 1) << message;
        EXPECT_EQ(run.out, "");
        EXPECT_EQ(run.err, std::string("hwctl: ") + message + "\n");
    }
}

TEST_F(HwctlWings, AWingWithoutABeaconIsAFailure)
{
    const std::string file = Write(R"([{"model": "ProgrammerWing", "serial": 9}])");
    const auto run = RunHwctl({"--virtual", "--widgets", file, "beacon", "ProgrammerWing/9"});
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_EQ(run.err, "hwctl: ProgrammerWing/9 cannot identify itself\n");
}

TEST_F(HwctlWings, LedWithoutAMasterIsNamedByItsPart)
{
    EXPECT_EQ(RunHwctl({"--virtual", "led", "Vex4Pixi/291", "on", "--part", "150"}).out,
              "desk pixi: LED 50 set to 1\n");
}

TEST_F(HwctlWings, FaderMovesAMotorFader)
{
    EXPECT_EQ(RunHwctl({"--virtual", "fader", "Vex4ExternalPlayback/3", "10", "255"}).out,
              "desk motor: motor fader 9 moved to 255\n");
}

TEST_F(HwctlWings, BeaconNamesTheSectionWhereAWingHasSome)
{
    EXPECT_EQ(RunHwctl({"--virtual", "beacon", "ExpansionWing/2", "--section", "right"}).out,
              "desk expansion: beacon, section 2\n");
    EXPECT_EQ(RunHwctl({"--virtual", "beacon", "PlaybackWing/291"}).out,
              "desk playback: beacon, section 0\n");
}

TEST_F(HwctlWings, AWingThatIsNotThereIsAFailure)
{
    for (const char* const command : {"beacon", "led", "fader"}) {
        std::vector<std::string> arguments{"--virtual", command, "PlaybackWing/1"};
        if (command == std::string("led"))
            arguments.emplace_back("on");
        if (command == std::string("fader"))
            arguments.insert(arguments.end(), {"1", "1"});
        const auto run = RunHwctl(arguments);
        EXPECT_EQ(run.exitCode, 1) << command;
        EXPECT_THAT(run.err, testing::StartsWith("hwctl: wing PlaybackWing/1 is not attached; the "
                                                 "nearest is PlaybackWing/291; there are "));
    }
}

TEST_F(HwctlWings, WhatIsNoWingIsAUsageError)
{
    const auto run = RunHwctl({"--virtual", "beacon", "Sofa/1"});
    EXPECT_EQ(run.exitCode, 2);
    EXPECT_THAT(run.err, HasSubstr("there is no model of wings 'Sofa'; there are PlaybackWing, "));
    EXPECT_EQ(RunHwctl({"--virtual", "fader", "PlaybackWing/1", "1", "256"}).exitCode, 2);
    EXPECT_EQ(RunHwctl({"--virtual", "led", "PlaybackWing/1", "pink"}).exitCode, 2);
}

TEST_F(HwctlWings, MonitorPrintsWhatHandsDoAndEchoesPresses)
{
    const std::string script = Write("0 motor press 11\n0 motor release 11\n0 trackball axis 2 1\n"
                                     "0 playback fader 1 9\n0 panel open\n0 expansion unplug\n");
    const auto run = RunHwctl({"--virtual", "monitor", "--work", script, "--echo", "--for", "4"});
    EXPECT_EQ(run.exitCode, 0);
    const auto lines = run.GetLines();
    for (const char* const text :
         {"button 71 of master 2 pressed", "LED 11 set to 1", "button 71 of master 2 released",
          "LED 11 set to 0", "trackball by 0, 0, ring by 1", "fader 1 at 9",
          "keyboard drawer opened"})
        EXPECT_THAT(lines, Contains(EndsWith(text)));
    EXPECT_THAT(run.out, HasSubstr("wing ExpansionWing/2"));
    EXPECT_THAT(lines, Contains(EndsWith("removed")));
}

TEST_F(HwctlWings, MonitorPrintsTheFramesOfAnLtcBoard)
{
    // From the first frame on.
    const char first[] = "\"source\":\"timecode ltc 0\",\"text\":\"10:00:00:00\"";
    const auto run = RunHwctl(
        {"--virtual", "monitor", "--ltc", DATA_FOLDER "/ltc/timecode_25fps.flac", "--json"}, {},
        first);
    EXPECT_EQ(run.exitCode, 0);
    EXPECT_THAT(run.out, HasSubstr(first));
}

TEST_F(HwctlWings, MonitorRefusesAScriptForWidgetsThatAreNotThere)
{
    const std::string script = Write("0 motor press 1\n0 sofa press 1\n");
    const auto run = RunHwctl({"--virtual", "monitor", "--work", script, "--for", "1"});
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_EQ(run.err, "hwctl: " + script + ":2: there is no widget at 'sofa'\n");
    // What a widget does not have is found before the run begins, too.
    const auto part =
        RunHwctl({"--virtual", "monitor", "--work", Write("0 motor press 10000"), "--for", "1"});
    EXPECT_EQ(part.exitCode, 1);
    EXPECT_THAT(part.err, HasSubstr(script + ":1: Vex4ExternalPlayback has no button 10000"));
    EXPECT_EQ(RunHwctl({"monitor", "--work", Write(""), "--for", "1"}).exitCode, 2);
}
