// SPDX-License-Identifier: MIT
// Backlights, flat panels and serial ports on the command line.
#include <gmock/gmock.h>

#include "tools/hwctl_process.h"

namespace
{

using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;
using TestSupport::RunHwctl;

} // namespace

TEST(HwctlBacklight, WorksTheRegistersOfMostModels)
{
    const auto run = RunHwctl(
        {"backlight", "--virtual", "--left", "75", "--centre", "100", "--right-frequency", "44"});
    EXPECT_EQ(run.exitCode, 0);
    EXPECT_EQ(run.err, "");
    EXPECT_THAT(run.out, StartsWith("Console model 7\nVex4Backlight, "));
    EXPECT_THAT(run.out, HasSubstr("\nleft level 75: done, the register holds 191 of 255\n"));
    EXPECT_THAT(run.out, HasSubstr("\ncentre level 100: done, the register holds 127 of 255\n"));
    EXPECT_THAT(run.out, HasSubstr("\nright frequency 44: done\n"));
    EXPECT_THAT(run.out, HasSubstr("\nright frequency: 44\n"));
    EXPECT_THAT(run.out,
                HasSubstr("  left: register fe627afc holds 0000bf01, duty cycle 191 of "
                          "255, on; frequency register fe627ae8 holds 02b00000, field 43"));
    EXPECT_THAT(run.out, HasSubstr("  centre: register f7c27afc holds 00007f01, duty cycle 127"));
}

TEST(HwctlBacklight, WorksThePanelsOfModelEight)
{
    const auto run =
        RunHwctl({"--virtual", "--console", "8", "backlight", "--left", "100", "--right", "50"});
    EXPECT_EQ(run.exitCode, 0);
    EXPECT_EQ(run.err, "");
    EXPECT_THAT(run.out, HasSubstr("\nZr4Backlight, "));
    EXPECT_THAT(run.out, HasSubstr("left level 100: sent, the panel does not answer\n"));
    EXPECT_THAT(run.out, HasSubstr("  left: panel at /dev/ttyS0 has level 255 of 255\n"));
    EXPECT_THAT(run.out, HasSubstr("  right: panel at /dev/ttyS1 has level 127 of 255\n"));
}

TEST(HwctlBacklight, WorksTheChipOfModelNine)
{
    const auto run = RunHwctl({"backlight", "--virtual", "--console", "9", "--right", "0"});
    EXPECT_EQ(run.exitCode, 0);
    EXPECT_EQ(run.err, "");
    EXPECT_THAT(run.out, HasSubstr("\nTarnel4Backlight, "));
    EXPECT_THAT(run.out, HasSubstr("right level 0: done, the chip holds 255 of 255\n"));
    EXPECT_THAT(run.out, HasSubstr("  right: chip holds '255' of 255, 0 for brightest\n"));
}

TEST(HwctlBacklight, FailsWhereTheChipDidNotTakeTheLevel)
{
    // The library writes it with a blank in front, which the kernel reads no number from.
    const auto run = RunHwctl({"backlight", "--virtual", "--console", "9", "--right", "90"});
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_THAT(run.out, HasSubstr("right level 90: failed, the chip "));
}

TEST(HwctlBacklight, SaysWhichSidesThereAreNot)
{
    const auto run = RunHwctl({"backlight", "--virtual", "--console", "14", "--left", "20"});
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_THAT(run.out, HasSubstr("left level 20: this console has none, nothing done\n"));
    const auto frequency =
        RunHwctl({"backlight", "--virtual", "--console", "14", "--right-frequency", "44"});
    EXPECT_EQ(frequency.exitCode, 1);
    EXPECT_THAT(frequency.out,
                HasSubstr("right frequency 44: this console has none, nothing done\n"));
}

TEST(HwctlBacklight, LeavesAComputerThatIsNoConsoleAlone)
{
    const auto shown = RunHwctl({"backlight"});
    EXPECT_EQ(shown.exitCode, 0);
    EXPECT_THAT(shown.out, StartsWith("Console model 0, no console: registers are left alone\n"));
    EXPECT_THAT(shown.out, Not(HasSubstr("frequency:")));
    const auto set = RunHwctl({"backlight", "--left", "20"});
    EXPECT_EQ(set.exitCode, 1);
    EXPECT_THAT(set.out, HasSubstr("left level 20: failed\n"));
}

TEST(HwctlBacklight, RefusesLevelsThatAreNone)
{
    EXPECT_EQ(RunHwctl({"backlight", "--left", "100.5"}).exitCode, 2);
    EXPECT_EQ(RunHwctl({"backlight", "--left", "-1"}).exitCode, 2);
    EXPECT_EQ(RunHwctl({"backlight", "--left-frequency", "256"}).exitCode, 2);
}

TEST(HwctlPanel, PrintsThePacketAndWhatThePanelMakesOfIt)
{
    const std::pair<std::vector<std::string>, const char*> cases[] = {
        {{"level", "128"},
         "packet BB 00 0B 03 05 00 80 93 \npanel at /dev/ttyS0: unit 0: adjuster 5 set to 128\n"},
        {{"adjust", "1", "2", "3"},
         "packet BB 01 0B 03 02 00 03 14 \npanel at /dev/ttyS0: unit 1: adjuster 2 set to 3\n"},
        {{"ask", "1", "2"},
         "packet BB 01 0A 02 02 00 0F \npanel at /dev/ttyS0: unit 1: adjuster 2 asked for\n"},
        {{"action", "0", "2"},
         "packet BB 00 16 00 02 18 \npanel at /dev/ttyS0: unit 0: action 2\n"},
        {{"reset", "1"}, "packet BB 01 00 00 01 \npanel at /dev/ttyS0: unit 1: reset\n"}};
    for (const auto& [words, out] : cases) {
        std::vector<std::string> arguments{"--virtual", "panel"};
        arguments.insert(arguments.end(), words.begin(), words.end());
        const auto run = RunHwctl(arguments);
        EXPECT_EQ(run.exitCode, 0);
        EXPECT_EQ(run.err, "");
        EXPECT_EQ(run.out, out);
    }
}

TEST(HwctlPanel, ShowsAPanelThatHearsOnlyNoise)
{
    const auto run =
        RunHwctl({"--virtual", "panel", "--port", "/dev/ttyS1", "--baud", "9600", "level", "1"});
    EXPECT_EQ(run.exitCode, 0);
    EXPECT_THAT(run.out, HasSubstr("panel at /dev/ttyS1: 8 bytes of noise"));
}

TEST(HwctlPanel, FailsWithoutAPort)
{
    const auto run = RunHwctl({"--virtual", "panel", "--port", "/dev/ttyS9", "level", "1"});
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_THAT(run.err, HasSubstr("hwctl: Failed to open device /dev/ttyS9, baud 57600"));
    EXPECT_THAT(run.err, HasSubstr("hwctl: Failed to write to /dev/ttyS9 error Invalid argument"));
}

TEST(HwctlPanel, LogLinesThatWereAskedForAreWritten)
{
    const auto asked =
        RunHwctl({"--virtual", "--log", "Hardware/Kontron=31", "panel", "level", "1"});
    EXPECT_THAT(asked.err, HasSubstr("Packet BB 00 0B 03 05 00 01 14 "));
    EXPECT_THAT(asked.err, Not(HasSubstr("Parity set")));
}

TEST(HwctlSerial, SendsAndPrintsWhatComesBack)
{
    const auto run =
        RunHwctl({"serial", "/dev/ttyS2", "--virtual", "--send",
                  "41 42 00 ff 30 31 32 33 34 35 36 37 38 39 40 7e 7f 43", "--count", "18"});
    EXPECT_EQ(run.exitCode, 0);
    EXPECT_EQ(run.err, "");
    ASSERT_GE(run.GetLines().size(), 5U);
    EXPECT_EQ(run.GetLines()[0], "/dev/ttyS2 open: 9600 baud, parity none, flow control none");
    // The first bytes may be back before the last ones are sent.
    EXPECT_THAT(run.GetLines(), testing::Contains("18 bytes sent"));
    EXPECT_THAT(run.GetLines(), testing::Contains(StartsWith("00000000  41 42 00 FF 30")));
    EXPECT_EQ(run.GetLines().back(), "18 bytes received");
}

TEST(HwctlPanel, NeedsTheLinesThatTellOfPackets)
{
    const auto run = RunHwctl({"--virtual", "--log", "Hardware=30", "panel", "level", "1"});
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_THAT(run.err, HasSubstr("hwctl: the log masks hold back the trace lines of "
                                   "Hardware/Kontron, which this command needs"));
}

TEST(HwctlSerial, EndsAfterItsTimeAndAtASignal)
{
    EXPECT_EQ(RunHwctl({"--virtual", "serial", "/dev/ttyS0", "--for", "0.05"}).exitCode, 0);
    const auto run = RunHwctl({"--virtual", "serial", "/dev/ttyS0"}, {}, "open: 9600");
    EXPECT_EQ(run.exitCode, 0);
    EXPECT_EQ(run.GetLines().back(), "0 bytes received");
}

TEST(HwctlSerial, OpensWithItsSettings)
{
    // The plug at the far end is set otherwise, so nothing comes back.
    const auto run = RunHwctl({"--virtual", "serial", "/dev/ttyS2", "--parity", "odd", "--flow",
                               "xonxoff", "--send", "41", "--for", "0.1"});
    EXPECT_THAT(run.GetLines(),
                ElementsAre("/dev/ttyS2 open: 9600 baud, parity odd, flow control xonxoff",
                            "1 bytes sent", "0 bytes received"));
}

TEST(HwctlSerial, SaysWhatHoldsWhereThePortDoesNotTakeTheSpeed)
{
    const auto run = RunHwctl({"--virtual", "serial", "/dev/ttyS2", "--baud", "230400"});
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_EQ(run.out, "");
    EXPECT_EQ(run.err, "hwctl: /dev/ttyS2 does not take 230400 baud, parity none, flow control "
                       "none; it holds 9600 baud, parity none, flow control none\n");
}

TEST(HwctlSerial, FailsWithoutAPort)
{
    const auto run = RunHwctl({"--virtual", "serial", "/dev/ttyS9"});
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_EQ(run.out, "");
    EXPECT_EQ(run.err, "hwctl: cannot open /dev/ttyS9: No such file or directory\n");
}

TEST(HwctlSerial, RefusesWhatItDoesNotUnderstand)
{
    EXPECT_EQ(RunHwctl({"--virtual", "serial", "/dev/ttyS2", "--baud", "600"}).exitCode, 2);
    EXPECT_EQ(RunHwctl({"--virtual", "serial", "/dev/ttyS2", "--parity", "mark"}).exitCode, 2);
    EXPECT_EQ(RunHwctl({"--virtual", "serial", "/dev/ttyS2", "--send", "4"}).exitCode, 2);
    EXPECT_EQ(RunHwctl({"--virtual", "serial"}).exitCode, 2);
}
