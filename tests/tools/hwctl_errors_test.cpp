// SPDX-License-Identifier: MIT
#include <gmock/gmock.h>

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
        {{}, "hwctl: A subcommand is required\n"},
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
         "hwctl: '90 3C' is no whole short message; use --buffer to send bytes as they are\n"},
        {{"--virtual", "send", "Show Control", "hello"},
         "hwctl: 'hello' is no list of bytes in hexadecimal\n"},
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
        {{"--virtual", "send", "Nobody", "F8"}, "hwctl: MIDI port 'Nobody' not found\n"},
        {{"--virtual", "monitor", "--port", "Nobody"}, "hwctl: MIDI port 'Nobody' not found\n"},
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

TEST(HwctlLog, GoesNowhereWhenToldSo)
{
    const auto run =
        RunHwctl({"--virtual", "--log", "Hardware/Midi=31", "--log-to", "none", "list"});
    EXPECT_EQ(run.err, "");
    EXPECT_EQ(run.exitCode, 0);
}

} // namespace
