// SPDX-License-Identifier: MIT
#include <gmock/gmock.h>

#include <nlohmann/json.hpp>

#include "tools/hwctl_process.h"

namespace
{

using testing::ElementsAre;
using TestSupport::RunHwctl;

/// Texts of the frames that one source printed, in order.
std::vector<std::string> GetFrames(const TestSupport::HwctlRun& run, int source)
{
    const std::string mark = "timecode sim " + std::to_string(source) + "        ";
    std::vector<std::string> frames;
    for (const std::string& line : run.GetLines()) {
        const auto at = line.find(mark);
        if (at != std::string::npos && line.find(':', at) != std::string::npos)
            frames.push_back(line.substr(at + mark.size()));
    }
    return frames;
}

TEST(HwctlSimulate, RunsSeveralSourcesForwardsAndBackwards)
{
    const auto run = RunHwctl({"simulate", "smpte30,start=09:59:59:28",
                               "25,start=00:00:01:01,backwards", "--frames", "4"});
    EXPECT_EQ(run.exitCode, 0);
    EXPECT_THAT(GetFrames(run, 1),
                ElementsAre("09:59:59:28", "09:59:59:29", "10:00:00:00", "10:00:00:01"));
    EXPECT_THAT(GetFrames(run, 2),
                ElementsAre("00:00:01:01", "00:00:01:00", "00:00:00:24", "00:00:00:23"));
    EXPECT_EQ(run.GetLines().back(), "summary: 0 messages, 0 bytes, 8 frames, dropped: none");
}

TEST(HwctlSimulate, RunsEbu25WhenNothingIsGiven)
{
    const auto run = RunHwctl({"simulate", "--frames", "2"});
    EXPECT_THAT(GetFrames(run, 1), ElementsAre("00:00:00:00", "00:00:00:01"));
}

TEST(HwctlSimulate, PrintsJsonObjects)
{
    const auto run = RunHwctl({"simulate", "24,start=01:02:03:04", "--frames", "1", "--json"});
    bool found = false;
    for (const std::string& line : run.GetLines()) {
        const auto json = nlohmann::json::parse(line);
        found = found || (json.value("signal", "") == "frameRead" && json["number"] == 1 &&
                          json["text"] == "01:02:03:04" && json["hours"] == 1 &&
                          json["frames"] == 4 && json["dropFrame"] == false);
    }
    EXPECT_TRUE(found);
}

TEST(HwctlSimulate, DropsNothingAtRatesThatAreNoWholeNumber)
{
    const auto run = RunHwctl({"simulate", "29.97,start=00:00:16:20", "59.94,start=00:00:16:20",
                               "23.976,start=00:00:30:00,backwards", "--frames", "60"});
    EXPECT_EQ(run.exitCode, 0) << run.out;
    EXPECT_EQ(run.GetLines().back(), "summary: 0 messages, 0 bytes, 180 frames, dropped: none");
}

TEST(HwctlSimulate, EndsAfterItsTime)
{
    const auto run = RunHwctl({"simulate", "--for", "0.1"});
    EXPECT_EQ(run.exitCode, 0);
    EXPECT_THAT(run.out, testing::HasSubstr("summary: "));
}

} // namespace
