// SPDX-License-Identifier: MIT
#include <gmock/gmock.h>

#include <fstream>
#include <iterator>

#include "tools/hwctl_process.h"

namespace
{

using TestSupport::RunHwctl;

TEST(HwctlErrors, OfTheCommandLineAreOneLineAndExitCodeTwo)
{
    const struct {
        std::vector<std::string> arguments;
        const char* message;
    } table[] = {
        {{"list", "--nonsense"}, "hwctl: The following argument was not expected: --nonsense\n"},
        {{"send"}, "hwctl: port is required\n"},
        {{"send", "Port"}, "hwctl: message is required\n"},
        {{"simulate", "abc"},
         "hwctl: 'abc' is neither a rate in frames per second, up to 1000, nor film24, ebu25, "
         "ntsc30 or smpte30\n"},
        {{"simulate", "--frames", "0"}, "hwctl: --frames: Value 0 not in range 1 to 1000000\n"},
        {{"monitor", "--play", "x"}, "hwctl: --play: needs --virtual before the command\n"},
        {{"monitor", "--hide", "notes"}, "hwctl: --hide: notes not in {clock,frames}\n"},
        {{"--log", "Hardware/Midi", "list"},
         "hwctl: --log: 'Hardware/Midi' is not of the form PATH=MASK\n"},
        {{"--log", "Hardware/Midi=32", "list"},
         "hwctl: --log: 'Hardware/Midi=32' has no mask from 0 to 31\n"},
        {{"--virtual", "send", "Show Control", "90 3C"},
         "hwctl: '90 3C' is not a whole short message; use --buffer to send bytes as they are\n"},
        {{"--virtual", "send", "Show Control", "hello"},
         "hwctl: 'hello' is not a list of bytes in hexadecimal\n"},
        {{"--virtual", "backlight", "--left", "nan"},
         "hwctl: --left: Value nan not in range 0 to 100\n"},
        {{"--virtual", "monitor", "--for", "nan"},
         "hwctl: --for: Value nan not in range 0 to 1000000\n"},
        {{"--virtual", "links", "--for", "nan"},
         "hwctl: --for: Value nan not in range 0.001 to 1000000\n"},
        {{"simulate", "nan"},
         "hwctl: 'nan' is neither a rate in frames per second, up to 1000, nor film24, ebu25, "
         "ntsc30 or smpte30\n"},
        {{"--virtual", "lights", "work=nan"}, "hwctl: 'nan' is not a level from 0 to 100\n"},
        {{"--virtual", "cd", "jog", "nan"},
         "hwctl: jog needs a number of seconds, such as 10 or -2.5\n"},
        {{"ltc", "generate", "/nowhere/a.wav", "--level", "nan"},
         "hwctl: --level: Value nan not in range -60 to 0\n"},
        {{"ltc", "generate", "/nowhere/a.wav", "--speed", "nan"},
         "hwctl: --speed: 'nan' is not a number or pair such as 2.5:0.1\n"},
    };
    for (const auto& [arguments, message] : table) {
        const auto run = RunHwctl(arguments);
        EXPECT_EQ(run.exitCode, 2) << message;
        EXPECT_EQ(run.err, message);
        EXPECT_EQ(run.out, "");
    }
}

TEST(HwctlErrors, OfWhatIsNotThereAreOneLineAndExitCodeOne)
{
    const struct {
        std::vector<std::string> arguments;
        const char* message;
    } table[] = {
        {{"--virtual", "send", "Nobody", "F8"},
         "hwctl: there is no MIDI port 'Nobody'; there are Show Control, Stage Keyboard\n"},
        {{"--virtual", "monitor", "--port", "Stage Keybaord"},
         "hwctl: there is no MIDI port 'Stage Keybaord'; the nearest is Stage Keyboard; there are "
         "Stage Keyboard, Show Control\n"},
        {{"--virtual", "monitor", "--play", "/nowhere/show.txt"},
         "hwctl: /nowhere/show.txt: cannot be read\n"},
    };
    for (const auto& [arguments, message] : table) {
        const auto run = RunHwctl(arguments);
        EXPECT_EQ(run.exitCode, 1) << message;
        EXPECT_EQ(run.err, message);
        EXPECT_EQ(run.out, "");
    }
}

TEST(HwctlErrors, OfTheCommandNameTheWordTheNearestOnesAndTheHelp)
{
    const struct {
        std::vector<std::string> arguments;
        const char* start;
        const char* end;
    } table[] = {
        {{},
         "hwctl: a command is missing after 'hwctl'; there are backlight, ",
         "; see hwctl --help\n"},
        {{"lst"},
         "hwctl: there is no command 'lst'; the nearest is list; ",
         "; see hwctl --help\n"},
        {{"--virtual", "moniter", "--for", "1"},
         "hwctl: there is no command 'moniter'; the nearest is monitor; ",
         "; see hwctl --help\n"},
        {{"ltc", "decod", "a.wav"},
         "hwctl: there is no command 'ltc decod'; the nearest is decode; there are decode, "
         "generate",
         "; see hwctl ltc --help\n"},
        {{"panel"},
         "hwctl: a command is missing after 'hwctl panel'; ",
         "; see hwctl panel --help\n"},
        {{"help", "lst"},
         "hwctl: there is no command 'lst'; the nearest is list; ",
         "; see hwctl --help\n"},
        {{"--vitrual"}, "hwctl: there is no option '--vitrual'", "; see hwctl --help\n"},
    };
    for (const auto& [arguments, start, end] : table) {
        const auto run = RunHwctl(arguments);
        EXPECT_EQ(run.exitCode, 2) << start;
        EXPECT_THAT(run.err, testing::StartsWith(start));
        EXPECT_THAT(run.err, testing::EndsWith(end));
        EXPECT_EQ(run.out, "");
    }
}

TEST(HwctlErrors, AreNoneForACommandInOtherLetters)
{
    const auto run = RunHwctl({"--virtual", "Send", "show control", "F8"});
    EXPECT_EQ(run.exitCode, 0) << run.err;
    EXPECT_EQ(RunHwctl({"--virtual", "beacon", "playbackwing/291"}).exitCode, 0);
}

TEST(HwctlErrors, SayThatTheOutputCouldNotBeWritten)
{
    for (const std::vector<std::string>& arguments :
         std::vector<std::vector<std::string>>{{"--help"},
                                               {"--version"},
                                               {"help", "list"},
                                               {"list", "--logs"},
                                               {"--virtual", "list"},
                                               {"--virtual", "links"},
                                               {"--virtual", "cd", "status"},
                                               {"--virtual", "lights"},
                                               {"simulate", "--frames", "2"},
                                               {"desk", "--verbs"}}) {
        const auto run = RunHwctl(arguments, {}, {}, {}, "/dev/full");
        EXPECT_EQ(run.exitCode, 1) << arguments.front();
        EXPECT_EQ(run.err, "hwctl: standard output could not be written\n") << arguments.front();
    }
}

TEST(HwctlErrors, OfTheEnvironmentAreNotOfTheCommandLine)
{
    const auto run = RunHwctl({"--virtual", "list"}, {"HWCTL_LOG=Hardware/Midi=32"});
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_EQ(run.err, "hwctl: HWCTL_LOG: 'Hardware/Midi=32' has no mask from 0 to 31\n");
    EXPECT_EQ(run.out, "");
}

TEST(HwctlErrors, AreNoneForHelpAndVersion)
{
    for (const char* const option : {"--help", "--version"}) {
        const auto run = RunHwctl({option});
        EXPECT_EQ(run.exitCode, 0);
        EXPECT_EQ(run.err, "");
        EXPECT_THAT(run.out, testing::HasSubstr("hwctl"));
    }
}

TEST(HwctlLog, TakesMasksFromTheOptionAndTheEnvironment)
{
    const std::string expected = "Hardware/Midi trace: Found midi device Show Control at index 1";
    EXPECT_THAT(RunHwctl({"--virtual", "list"}).err, testing::Not(testing::HasSubstr(expected)));
    EXPECT_THAT(RunHwctl({"--virtual", "--log", "Hardware/Midi=31", "list"}).err,
                testing::HasSubstr(expected));
    EXPECT_THAT(RunHwctl({"--virtual", "list"}, {"HWCTL_LOG=Hardware/Midi=0x1f"}).err,
                testing::HasSubstr(expected));
}

TEST(HwctlHelp, OfACommandIsTheSameEitherWay)
{
    for (const std::vector<std::string>& command :
         std::vector<std::vector<std::string>>{{"list"}, {"ltc", "decode"}, {}}) {
        std::vector<std::string> words{"help"};
        words.insert(words.end(), command.begin(), command.end());
        std::vector<std::string> option = command;
        option.emplace_back("--help");
        const auto run = RunHwctl(words);
        EXPECT_EQ(run.exitCode, 0);
        EXPECT_EQ(run.out, RunHwctl(option).out);
        EXPECT_THAT(run.out, testing::HasSubstr("Usage: "));
    }
}

TEST(HwctlLog, HasNoNotesUnlessTheyAreAskedFor)
{
    const std::vector<std::string> desk{"desk", DATA_FOLDER "/desk/home-desk.json", "--do",
                                        "light start"};
    EXPECT_EQ(RunHwctl(desk).err, "");
    EXPECT_THAT(RunHwctl(desk, {"HWCTL_LOG=Hardware=30"}).err, testing::HasSubstr(" note: "));
    EXPECT_EQ(RunHwctl(desk, {"HWCTL_LOG=Hardware/Kontron=30"}).err, "") << "of another context";
}

TEST(HwctlLog, HasErrorsUnlessItIsToBeQuiet)
{
    std::vector<std::string> desk{"desk", DATA_FOLDER "/desk/home-desk.json",
                                  "--do", "midi \"USB Keyboard\" busy on",
                                  "--do", "receive off",
                                  "--do", "receive on"};
    EXPECT_THAT(RunHwctl(desk).err, testing::HasSubstr(" error: "));
    desk.emplace_back("--quiet");
    EXPECT_EQ(RunHwctl(desk).err, "");
    desk.insert(desk.begin(), {"--log-to", "stderr"});
    EXPECT_THAT(RunHwctl(desk).err, testing::HasSubstr(" error: "));
}

TEST(HwctlLog, RefusesAContextThatThereIsNot)
{
    const auto run = RunHwctl({"--log", "Hardware/Mid=31", "list", "--logs"});
    EXPECT_EQ(run.exitCode, 2);
    EXPECT_THAT(run.err, testing::StartsWith("hwctl: --log: there is no log context 'Hardware/Mid';"
                                             " the nearest is Hardware/Midi; there are "));
    EXPECT_EQ(RunHwctl({"list", "--logs"}, {"HWCTL_LOG=Nowhere=3"}).exitCode, 1);
    EXPECT_EQ(RunHwctl({"--log", "hardware/midi=31", "list", "--logs"}).exitCode, 0);
}

TEST(HwctlLog, ContextsAreListedAndDocumented)
{
    const auto list = RunHwctl({"list", "--logs"});
    EXPECT_EQ(list.exitCode, 0);
    std::ifstream page(DATA_FOLDER "/../docs/logging.md");
    const std::string text{std::istreambuf_iterator<char>(page), {}};
    EXPECT_GT(list.GetLines().size(), 20U);
    for (const std::string& line : list.GetLines())
        EXPECT_THAT(text, testing::HasSubstr("`" + line.substr(0, line.find(' ')) + "`"));
}

TEST(HwctlLog, GoesNowhereWhenToldSo)
{
    const auto run =
        RunHwctl({"--virtual", "--log", "Hardware/Midi=31", "--log-to", "none", "list"});
    EXPECT_EQ(run.err, "");
    EXPECT_EQ(run.exitCode, 0);
}

} // namespace
