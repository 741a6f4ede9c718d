// SPDX-License-Identifier: MIT
// hwctl ltc: timecode as audio, out and in again.
#include <gmock/gmock.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <nlohmann/json.hpp>

#include "tools/hwctl_process.h"

namespace
{

using testing::HasSubstr;
using TestSupport::HwctlRun;
using TestSupport::RunHwctl;

/// A folder of its own, gone afterwards.
class HwctlLtc : public testing::Test
{
protected:
    HwctlLtc()
    {
        std::string name = (std::filesystem::temp_directory_path() / "hwctl-ltc-XXXXXX").string();
        EXPECT_NE(mkdtemp(name.data()), nullptr);
        m_folder = name;
    }
    ~HwctlLtc() override { std::filesystem::remove_all(m_folder); }

    std::string GetPath(const std::string& name) const { return m_folder / name; }

    /// Generates into a file and decodes it.
    HwctlRun GoRound(const std::string& name, std::vector<std::string> options)
    {
        options.insert(options.begin(), {"ltc", "generate", GetPath(name)});
        const HwctlRun generated = RunHwctl(options);
        EXPECT_EQ(generated.exitCode, 0) << generated.err;
        return RunHwctl({"ltc", "decode", GetPath(name)});
    }

    std::filesystem::path m_folder;
};

TEST_F(HwctlLtc, GoesRoundThroughFlacAndWav)
{
    for (const char* const name : {"a.flac", "a.wav"}) {
        const auto run = GoRound(name, {"--frames", "100", "--sample-rate", "16000"});
        EXPECT_EQ(run.exitCode, 0);
        const auto lines = run.GetLines();
        ASSERT_EQ(lines.size(), 101U);
        EXPECT_THAT(lines[0], HasSubstr("    0.000  audio                 10:00:00:00  forwards "));
        EXPECT_THAT(lines[99], HasSubstr("10:00:03:24"));
        EXPECT_EQ(lines[100], "summary: 100 frames, 0 losses of about 0 frames, 64008 samples");
    }
}

TEST_F(HwctlLtc, PrintsDropFrameAndDirection)
{
    const auto run = GoRound("a.flac", {"--rate", "29.97", "--drop-frame", "--start", "10:01:00:02",
                                        "--frames", "3", "--backwards"});
    ASSERT_EQ(run.GetLines().size(), 4U);
    EXPECT_THAT(run.GetLines()[0], HasSubstr("10;01;00;02  backwards"));
    EXPECT_THAT(run.GetLines()[1], HasSubstr("10;00;59;29  backwards"));
}

TEST_F(HwctlLtc, PrintsJsonObjects)
{
    GoRound("a.flac", {"--frames", "50", "--dropout", "1:0.5", "--level", "-12"});
    const auto run = RunHwctl({"ltc", "decode", GetPath("a.flac"), "--json"});
    EXPECT_EQ(run.exitCode, 1) << "something was lost";
    const auto lines = run.GetLines();
    const auto frame = nlohmann::json::parse(lines.at(1));
    EXPECT_EQ(frame["signal"], "frame");
    EXPECT_EQ(frame["timecode"], "10:00:00:01");
    EXPECT_EQ(frame["frames"], 1);
    EXPECT_EQ(frame["dropFrame"], false);
    EXPECT_EQ(frame["backwards"], false);
    EXPECT_NEAR(frame["level"], -12, 0.3);
    EXPECT_NEAR(frame["time"], 0.04, 0.001);
    EXPECT_NEAR(frame["firstSample"], 1920, 2);
    EXPECT_NEAR(frame["lastSample"], 3839, 2);
    const auto loss = nlohmann::json::parse(lines.at(24));
    EXPECT_EQ(loss["signal"], "loss");
    EXPECT_EQ(loss["lostFrames"], 14);
    const auto summary = nlohmann::json::parse(lines.back())["summary"];
    EXPECT_EQ(summary["frames"], 36);
    EXPECT_EQ(summary["losses"], 1);
    EXPECT_EQ(summary["lostFrames"], 14);
}

TEST_F(HwctlLtc, TakesEveryOptionOfTheGenerator)
{
    const auto run = GoRound(
        "a.wav",
        {"--rate",    "30",          "--start",        "01;02;03;04", "--frames",     "200",
         "--speed",   "1:1.5",       "--sample-rate",  "44100",       "--level",      "-10",
         "--noise",   "20",          "--seed",         "3",           "--cut",        "1:0.2",
         "--lead-in", "0.1",         "--level-change", "-6",          "--level-step", "--user-bits",
         "ABC",       "--no-parity", "--lead-out",     "0.1"});
    EXPECT_THAT(run.out, HasSubstr("01;02;"));
    EXPECT_THAT(run.out, HasSubstr("lost about"));
}

TEST_F(HwctlLtc, ReadsRawSamplesFromStandardInput)
{
    GoRound("a.wav", {"--frames", "20", "--sample-rate", "8000"});
    const std::string command = "tail -c +45 '" + GetPath("a.wav") +
                                "' | " HWCTL_PROGRAM " ltc decode - --raw s16le --rate 8000 > '" +
                                GetPath("out") + "'";
    EXPECT_EQ(std::system(command.c_str()), 0);
    std::ifstream out(GetPath("out"));
    const std::string text{std::istreambuf_iterator<char>(out), {}};
    EXPECT_THAT(text, HasSubstr("summary: 20 frames, 0 losses"));
}

TEST_F(HwctlLtc, FailsWithoutASingleFrame)
{
    RunHwctl({"ltc", "generate", GetPath("a.wav"), "--frames", "1", "--dropout", "0:1"});
    const auto run = RunHwctl({"ltc", "decode", GetPath("a.wav")});
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_EQ(run.err, "hwctl: no timecode in '" + GetPath("a.wav") + "'\n");
}

TEST_F(HwctlLtc, DecodesTheFileThatIsShipped)
{
    const auto run = RunHwctl({"ltc", "decode", DATA_FOLDER "/ltc/timecode_25fps.flac"});
    EXPECT_EQ(run.exitCode, 0);
    EXPECT_THAT(run.out, HasSubstr("summary: 250 frames, 0 losses"));
}

TEST_F(HwctlLtc, SaysWhatIsWrong)
{
    const struct {
        std::vector<std::string> arguments;
        int exitCode;
        const char* message;
    } table[] = {
        {{"ltc"}, 2, "hwctl: a command is missing after 'hwctl ltc'; there are decode, generate; "},
        {{"ltc", "decode", "-"}, 2, "hwctl: standard input needs --raw\n"},
        {{"ltc", "decode", "a.wav", "--raw", "s16le"},
         2,
         "hwctl: --raw reads standard input, which is the file '-'\n"},
        {{"ltc", "decode", "/nowhere/a.wav"}, 1, "hwctl: audio file '/nowhere/a.wav': "},
        {{"ltc", "generate", "a.mp3"}, 1, "hwctl: audio file 'a.mp3': the name ends neither"},
        {{"ltc", "generate", "a.wav", "--start", "10:00:00:25"},
         2,
         "hwctl: --start: '10:00:00:25' is no time at this rate\n"},
        {{"ltc", "generate", "a.wav", "--drop-frame"}, 2, "hwctl: --start: "},
        {{"ltc", "generate", "a.wav", "--speed", "11"}, 2, "hwctl: timecode audio: a speed of"},
        {{"ltc", "generate", "a.wav", "--speed", "1:"}, 2, "hwctl: --speed: '1:' is not a number"},
        {{"ltc", "generate", "a.wav", "--cut", "1"}, 2, "hwctl: --cut: '1' is not a pair"},
        {{"ltc", "generate", "a.wav", "--user-bits", "XY"}, 2, "hwctl: --user-bits: 'XY' is not"},
    };
    for (const auto& [arguments, exitCode, message] : table) {
        const auto run = RunHwctl(arguments);
        EXPECT_EQ(run.exitCode, exitCode) << message;
        EXPECT_THAT(run.err, testing::StartsWith(message));
        EXPECT_EQ(run.out, "");
    }
}

} // namespace
