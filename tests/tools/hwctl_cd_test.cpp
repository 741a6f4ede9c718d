// SPDX-License-Identifier: MIT
// The CD drive on the command line.
#include <gmock/gmock.h>

#include <nlohmann/json.hpp>
#include <set>

#include "tools/hwctl_process.h"

namespace
{

using testing::AllOf;
using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;
using testing::MatchesRegex;
using testing::StartsWith;
using TestSupport::RunHwctl;

constexpr char Sheet[] = DATA_FOLDER "/cd/soundtrack.cue";

/// Runs the cd command on a virtual drive with the sample disc.
TestSupport::HwctlRun RunCd(const std::vector<std::string>& steps)
{
    std::vector<std::string> arguments{"--virtual", "cd", "--disc", Sheet};
    arguments.insert(arguments.end(), steps.begin(), steps.end());
    return RunHwctl(arguments);
}

} // namespace

TEST(HwctlCd, ShowsWhatIsOnTheDisc)
{
    const auto run = RunCd({"contents"});
    EXPECT_EQ(run.exitCode, 0);
    EXPECT_EQ(run.err, "");
    EXPECT_EQ(run.out, "track  1  at 00:02:00  length 05:00:00\n"
                       "track  2  at 05:02:00  length 04:32:15\n"
                       "track  3  at 09:34:15  length 03:32:60\n"
                       "track  4  at 13:07:00  length 04:45:74\n"
                       "track  5  at 17:52:74  length 03:23:01\n"
                       "track  6  at 21:16:00  length 02:29:30\n"
                       "lead-out  at 23:45:30\n");
}

TEST(HwctlCd, ShowsTheStatusUnlessToldOtherwise)
{
    const auto run = RunHwctl({"--virtual", "cd"});
    EXPECT_EQ(run.exitCode, 0);
    EXPECT_EQ(run.out, "stopped\n");
    EXPECT_EQ(run.err, "");
}

TEST(HwctlCd, DoesStepsOneAfterAnother)
{
    const auto run = RunCd({"play", "2", "jog", "30", "pause", "pause", "resume", "previous",
                            "next", "play", "13:40:00", "stop", "status"});
    EXPECT_EQ(run.exitCode, 0);
    EXPECT_EQ(run.err, "");
    EXPECT_THAT(
        run.GetLines(),
        ElementsAre(MatchesRegex("playing, track 2, 05:0.:.. on the disc, 00:0.:.. in the track"),
                    MatchesRegex("playing, track 2, 05:3.:.. on the disc, 00:3.:.. in the track"),
                    "paused, track 2", "paused, track 2", StartsWith("playing, track 2, 05:3"),
                    StartsWith("playing, track 1, 00:0"), StartsWith("playing, track 2, 05:0"),
                    MatchesRegex("playing, track 4, 13:4.:.. on the disc, 00:3.:.. in the track"),
                    "stopped", "stopped"));
}

TEST(HwctlCd, FollowsTheTimecodeForAWhile)
{
    const auto run = RunCd({"play", "4", "follow", "3", "stop"});
    EXPECT_EQ(run.exitCode, 0);
    const auto lines = run.GetLines();
    ASSERT_GE(lines.size(), 4U);
    EXPECT_THAT(lines[1], AllOf(HasSubstr("timecode cd"), HasSubstr("00:13:0")));
    EXPECT_THAT(lines[lines.size() - 2], MatchesRegex("summary: [0-9]+ frames"));
    EXPECT_EQ(lines.back(), "stopped");
}

TEST(HwctlCd, FollowsTheTimecodeToTheEndOfTheDisc)
{
    const auto run = RunCd({"play", "23:42:00", "follow", "status"});
    EXPECT_EQ(run.exitCode, 0);
    EXPECT_EQ(run.GetLines().back(), "stopped");
    EXPECT_THAT(run.out, HasSubstr("00:23:4"));
}

TEST(HwctlCd, FollowsTheTimecodeUntilInterrupted)
{
    const auto run = RunHwctl({"--virtual", "cd", "play", "follow"}, {}, "timecode cd");
    EXPECT_EQ(run.exitCode, 0);
    EXPECT_THAT(run.GetLines().back(), MatchesRegex("summary: [0-9]+ frames"));
}

TEST(HwctlCd, PrintsJsonObjects)
{
    const auto run = RunCd({"--json", "contents", "play", "6", "follow", "3", "pause"});
    const auto lines = run.GetLines();
    ASSERT_GE(lines.size(), 5U);
    const auto contents = nlohmann::json::parse(lines[0]);
    EXPECT_EQ(contents["tracks"].size(), 6U);
    EXPECT_EQ(contents["tracks"][1]["number"], 2);
    EXPECT_EQ(contents["tracks"][1]["start"]["frames"], 22650);
    EXPECT_EQ(contents["tracks"][1]["length"]["text"], "04:32:15");
    EXPECT_EQ(contents["leadOut"]["text"], "23:45:30");
    const auto status = nlohmann::json::parse(lines[1]);
    EXPECT_EQ(status["status"], "playing");
    EXPECT_EQ(status["track"], 6);
    EXPECT_GE(status["discTime"]["frames"], 95700);
    EXPECT_LT(status["trackTime"]["frames"], 4500);
    const auto frame = nlohmann::json::parse(lines[2]);
    EXPECT_EQ(frame["source"], "timecode cd");
    EXPECT_EQ(frame["signal"], "frameRead");
    EXPECT_EQ(frame["minutes"], 21);
    EXPECT_EQ(frame["dropFrame"], false);
    const auto paused = nlohmann::json::parse(lines.back());
    EXPECT_EQ(paused, (nlohmann::json{{"status", "paused"}, {"track", 6}}));
}

TEST(HwctlCd, SaysWhyItFails)
{
    const std::pair<std::vector<std::string>, const char*> table[] = {
        {{"play", "7"}, "hwctl: there is no track 7, the last one is 6\n"},
        {{"play", "0"}, "hwctl: there is no track 0, the last one is 6\n"},
        {{"play", "23:45:30"}, "hwctl: the disc goes from 00:00:00 to 23:45:30\n"},
        {{"jog", "5"}, "hwctl: nothing plays to jog from\n"},
        {{"play", "jog", "-100"}, "hwctl: the disc goes from 00:00:00 to 23:45:30\n"},
        {{"play", "jog", "5000"}, "hwctl: the disc goes from 00:00:00 to 23:45:30\n"},
        {{"play", "pause", "jog", "5"}, "hwctl: nothing plays to jog from\n"},
        {{"pause"}, "hwctl: nothing plays\n"},
        {{"resume"}, "hwctl: nothing is paused\n"},
    };
    for (const auto& [steps, message] : table) {
        const auto run = RunCd(steps);
        EXPECT_EQ(run.exitCode, 1) << message;
        EXPECT_EQ(run.err, message);
    }
}

TEST(HwctlCd, FailsWithoutADiscAndWithASheetThatIsWrong)
{
    const auto empty = RunHwctl({"--virtual", "cd", "--disc", "none", "play"});
    EXPECT_EQ(empty.exitCode, 1);
    EXPECT_EQ(empty.err, "hwctl: no disc: No medium found\n");
    const auto missing = RunHwctl({"--virtual", "cd", "--disc", "/nowhere.cue"});
    EXPECT_EQ(missing.exitCode, 1);
    EXPECT_EQ(missing.err, "hwctl: CUE sheet '/nowhere.cue' cannot be read\n");
    const auto wrong = RunHwctl({"--virtual", "cd", "--disc", DATA_FOLDER "/midi/performance.txt"});
    EXPECT_EQ(wrong.exitCode, 1);
    EXPECT_THAT(wrong.err, AllOf(StartsWith("hwctl: CUE sheet '"), HasSubstr("', line ")));
}

TEST(HwctlCd, RefusesWhatItDoesNotUnderstand)
{
    EXPECT_EQ(RunHwctl({"--virtual", "cd", "eject"}).exitCode, 2);
    EXPECT_EQ(RunHwctl({"cd", "--disc", Sheet}).err,
              "hwctl: --disc: needs --virtual before the command\n");
}

TEST(HwctlCd, IsASourceOfTheMonitor)
{
    const auto run =
        RunHwctl({"--virtual", "monitor", "--cd", "--disc", Sheet, "--for", "4", "--json"});
    EXPECT_EQ(run.exitCode, 0);
    EXPECT_EQ(run.err, "");
    int added = 0;
    int removed = 0;
    int frames = 0;
    for (const std::string& line : run.GetLines()) {
        const auto event = nlohmann::json::parse(line);
        if (event.value("source", "") != "timecode cd")
            continue;
        added += event["signal"] == "deviceAdded" ? 1 : 0;
        removed += event["signal"] == "deviceRemoved" ? 1 : 0;
        frames += event["signal"] == "frameRead" ? 1 : 0;
    }
    EXPECT_EQ(added, 1);
    EXPECT_EQ(removed, 1);
    EXPECT_GT(frames, 0);
    EXPECT_EQ(nlohmann::json::parse(run.GetLines().back())["summary"]["frames"], frames);
}

TEST(HwctlCd, PrintsOneFrameASecondWhenTheMonitorHidesThem)
{
    const auto run =
        RunHwctl({"--virtual", "monitor", "--cd", "--for", "4", "--hide", "frames", "--json"});
    int frames = 0;
    std::set<int> seconds;
    for (const std::string& line : run.GetLines()) {
        const auto event = nlohmann::json::parse(line);
        if (event.value("signal", "") != "frameRead")
            continue;
        ++frames;
        seconds.insert(event["seconds"].get<int>());
    }
    EXPECT_GE(frames, 1);
    EXPECT_EQ(seconds.size(), frames);
    EXPECT_GT(nlohmann::json::parse(run.GetLines().back())["summary"]["frames"], frames);
}

TEST(HwctlCd, IsNotWatchedByTheMonitorUnlessAskedFor)
{
    const auto run = RunHwctl({"--virtual", "monitor", "--for", "0.1"});
    EXPECT_THAT(run.out, testing::Not(HasSubstr("timecode cd")));
}

TEST(HwctlCd, DriveIsInTheList)
{
    EXPECT_THAT(RunHwctl({"--virtual", "list"}).out,
                HasSubstr("\nCD drive\n  /dev/cdrom  6 tracks, lead-out at 21:22:00\n"));
    const auto json = nlohmann::json::parse(RunHwctl({"--virtual", "list", "--json"}).out);
    EXPECT_EQ(json["cdDrive"]["path"], "/dev/cdrom");
    EXPECT_EQ(json["cdDrive"]["tracks"].size(), 6U);
}
