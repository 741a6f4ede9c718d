// SPDX-License-Identifier: MIT
#include <gmock/gmock.h>

#include <nlohmann/json.hpp>

#include "tools/hwctl_process.h"

namespace
{

using TestSupport::RunHwctl;

TEST(HwctlList, ShowsPortsTimecodeDevicesAndEnumerations)
{
    const auto run = RunHwctl({"--virtual", "list"});
    EXPECT_EQ(run.exitCode, 0);
    EXPECT_EQ(run.err, "");
    EXPECT_THAT(run.out, testing::StartsWith("MIDI ports\n"
                                             "  Show Control\n"
                                             "  Stage Keyboard\n"
                                             "\n"
                                             "Wings\n"));
    EXPECT_THAT(run.out, testing::HasSubstr("\n\n"
                                            "Networks\n"
                                            "  console  eth0 up, 1 Gbit/s\n"
                                            "  fixture  eth1 up, 100 Mbit/s\n"
                                            "\n"
                                            "CD drive\n"
                                            "  /dev/cdrom  6 tracks, lead-out at 21:22:00\n"
                                            "\n"
                                            "Timecode devices\n"
                                            "  LTC\n"
                                            "  CD\n"
                                            "  Simulated\n"
                                            "\n"
                                            "Enumerations\n"
                                            "  849  Hardware::TimecodeFormat\n"
                                            "          0  SMPTE 30\n"));
    EXPECT_THAT(run.out, testing::HasSubstr("  975  Hardware::MscComFormat\n"
                                            "          1  01: General Lighting\n"));
}

TEST(HwctlList, HasTheSameAsJson)
{
    const auto run = RunHwctl({"--virtual", "list", "--json"});
    const auto json = nlohmann::json::parse(run.out);
    EXPECT_EQ(json["midiPorts"], nlohmann::json({"Show Control", "Stage Keyboard"}));
    EXPECT_EQ(json["timecodeDevices"], nlohmann::json({{{"type", 1}, {"name", "LTC"}},
                                                       {{"type", 4}, {"name", "CD"}},
                                                       {{"type", 5}, {"name", "Simulated"}}}));
    ASSERT_EQ(json["networks"].size(), 2U);
    EXPECT_EQ(json["networks"][1], nlohmann::json({{"network", "fixture"},
                                                   {"adapter", "eth1"},
                                                   {"state", "up"},
                                                   {"speed", 100000000},
                                                   {"text", "eth1 up, 100 Mbit/s"}}));
    ASSERT_EQ(json["enumerations"].size(), 4U);
    EXPECT_EQ(json["enumerations"][3]["code"], 975);
    EXPECT_EQ(json["enumerations"][3]["highest"], 127);
    EXPECT_EQ(json["enumerations"][3]["values"][6]["name"], "MscComFormat_MAX");
}

} // namespace
