// SPDX-License-Identifier: MIT
#include <gmock/gmock.h>

#include <nlohmann/json.hpp>

#include "tools/hwctl_process.h"

namespace
{

using testing::HasSubstr;
using testing::Not;
using TestSupport::HwctlRun;
using TestSupport::RunHwctl;

constexpr char Performance[] = DATA_FOLDER "/midi/performance.txt";

HwctlRun Play(std::vector<std::string> more = {})
{
    std::vector<std::string> arguments{"--virtual", "monitor", "--play", Performance, "--no-wait"};
    arguments.insert(arguments.end(), more.begin(), more.end());
    return RunHwctl(arguments);
}

TEST(HwctlMonitor, PrintsAWholePerformanceAndDropsNothing)
{
    const auto run = Play();
    EXPECT_EQ(run.exitCode, 0);
    EXPECT_EQ(run.err, "");
    const auto lines = run.GetLines();
    ASSERT_FALSE(lines.empty());
    EXPECT_EQ(lines.back(),
              "summary: 643 messages, 1083 bytes, 0 frames, 8 wing signals, dropped: none");
    // Two ports are switched on and off, eight wings, a board and two networks are there, the rest
    // are messages.
    EXPECT_EQ(lines.size(), 643U + 4U + 9U + 2U + 1U);
}

TEST(HwctlMonitor, SaysInWordsWhatComesIn)
{
    const auto run = Play();
    for (const char* const line :
         {"  midi Stage Keyboard   receiving\n", "  midi Show Control     receiving\n",
          "  midi Stage Keyboard   program ch 1 4\n",
          "  midi Stage Keyboard   show control GO cue 1 list 1 [general lighting, all devices]\n",
          "  midi Stage Keyboard   timecode full frame 01:00:00:00\n",
          "  midi Stage Keyboard   machine control PLAY\n",
          "  midi Stage Keyboard   note on ch 1 C4 vel 72\n", "  midi Stage Keyboard   clock\n",
          "  midi Stage Keyboard   no longer receiving\n"})
        EXPECT_THAT(run.out, HasSubstr(line));
}

TEST(HwctlMonitor, HidesTheClockButCountsIt)
{
    const auto run = Play({"--hide", "clock"});
    EXPECT_THAT(run.out, Not(HasSubstr("clock\n")));
    EXPECT_THAT(run.out, Not(HasSubstr("active sensing\n")));
    EXPECT_THAT(run.out, HasSubstr("summary: 643 messages"));
}

TEST(HwctlMonitor, PlaysOnThePortItIsTold)
{
    const auto run = Play({"--play-on", "Show Control"});
    EXPECT_EQ(run.exitCode, 0);
    EXPECT_THAT(run.out, HasSubstr("  midi Show Control     program ch 1 4\n"));
    EXPECT_THAT(run.out, Not(HasSubstr("Stage Keyboard   program")));
}

TEST(HwctlMonitor, ReportsWhatNobodyListenedToAsDropped)
{
    const auto run = Play({"--port", "Show Control"});
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_THAT(run.out,
                HasSubstr("summary: 0 messages, 1083 bytes, 0 frames, 8 wing signals, dropped: 643 "
                          "messages\n"));
}

TEST(HwctlMonitor, PrintsJsonObjects)
{
    const auto run = Play({"--json"});
    const auto lines = run.GetLines();
    ASSERT_EQ(lines.size(), 659U);
    bool found = false;
    for (const std::string& line : lines) {
        const auto json = nlohmann::json::parse(line);
        if (json.contains("summary"))
            continue;
        EXPECT_TRUE(json["time"].is_number());
        found = found || (json["signal"] == "txShortMessage" && json["port"] == "Stage Keyboard" &&
                          json["source"] == "midi Stage Keyboard" && json["message"] == 0x483C90 &&
                          json["bytes"] == "90 3C 48" && json["text"] == "note on ch 1 C4 vel 72");
    }
    EXPECT_TRUE(found);
    const auto summary = nlohmann::json::parse(lines.back())["summary"];
    EXPECT_EQ(summary["messages"], 643);
    EXPECT_EQ(summary["bytes"], 1083);
    EXPECT_EQ(summary["droppedMessages"], 0);
}

TEST(HwctlMonitor, RunsTimecodeBeside)
{
    const auto run = Play({"--simulate", "25,start=10:00:00:00"});
    EXPECT_EQ(run.exitCode, 0);
    EXPECT_THAT(run.out, HasSubstr("  timecode sim 1        added\n"));
    EXPECT_THAT(run.out, HasSubstr("  timecode sim 1        10:00:00:00\n"));
    EXPECT_THAT(run.out, HasSubstr("  timecode sim 1        removed\n"));
}

TEST(HwctlMonitor, EndsWithASummaryOnAnInterrupt)
{
    const auto run = RunHwctl({"--virtual", "monitor"}, {}, "receiving\n");
    EXPECT_EQ(run.exitCode, 0);
    EXPECT_EQ(run.GetLines().back(),
              "summary: 0 messages, 0 bytes, 0 frames, 8 wing signals, dropped: none");
}

} // namespace
