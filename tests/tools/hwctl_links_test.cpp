// SPDX-License-Identifier: MIT
// Networks and link lights on the command line.
#include <gmock/gmock.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <nlohmann/json.hpp>

#include "tools/hwctl_process.h"

namespace
{

using testing::Contains;
using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;
using testing::Not;
using TestSupport::HwctlRun;
using TestSupport::RunHwctl;

/// A folder of its own, gone afterwards.
class HwctlLinks : public testing::Test
{
protected:
    HwctlLinks()
    {
        std::string name = (std::filesystem::temp_directory_path() / "hwctl-links-XXXXXX").string();
        EXPECT_NE(mkdtemp(name.data()), nullptr);
        m_folder = name;
    }
    ~HwctlLinks() override { std::filesystem::remove_all(m_folder); }

    std::string Write(const std::string& text) const
    {
        const std::filesystem::path file = m_folder / "file";
        std::ofstream(file) << text;
        return file.string();
    }

    std::filesystem::path m_folder;
};

/// Sources and texts of lines that belong to networks and boards, without their times. Two threads
/// report, so a board's line may stand before its network's.
std::vector<std::string> GetLinkLines(const HwctlRun& run, const std::string& source)
{
    std::vector<std::string> texts;
    for (const std::string& line : run.GetLines()) {
        const auto found = line.find("  " + source);
        if (found != std::string::npos)
            texts.push_back(line.substr(line.find_first_not_of(' ', found + 2 + source.size())));
    }
    return texts;
}

constexpr char Day[] = "0.1 eth0 down\n"
                       "0.3 eth0 up\n"
                       "0.5 eth1 speed 1000000000\n"
                       "0.7 eth1 remove\n";
/// Longer than a day by far, for machines that are busy.
constexpr char DaySeconds[] = "3";

} // namespace

TEST_F(HwctlLinks, ShowBothNetworksAndTheVirtualBoard)
{
    const auto run = RunHwctl({"--virtual", "links"});
    EXPECT_EQ(run.exitCode, 0);
    EXPECT_EQ(run.err, "");
    EXPECT_EQ(run.out, "Networks\n"
                       "  console  eth0 up, 1 Gbit/s\n"
                       "  fixture  eth1 up, 100 Mbit/s\n"
                       "\n"
                       "Link lights\n"
                       "  LTC board at ltc: console up, gigabit; fixture up\n");
}

TEST_F(HwctlLinks, HaveTheSameAsJson)
{
    const auto json = nlohmann::json::parse(RunHwctl({"links", "--virtual", "--json"}).out);
    EXPECT_EQ(json["model"], 8);
    EXPECT_EQ(json["hasLights"], true);
    EXPECT_EQ(json["networks"][0]["speed"], 1000000000);
    EXPECT_EQ(json["boards"][0]["fixtureActive"], true);
    EXPECT_EQ(json["boards"][0]["fixtureGigabit"], false);
}

TEST_F(HwctlLinks, TakeAdaptersByName)
{
    const auto run = RunHwctl({"--virtual", "links", "--console-network", "lan0",
                               "--console-network", "lan1", "--fixture-network", "lan0"});
    EXPECT_EQ(run.exitCode, 0);
    EXPECT_THAT(run.out, HasSubstr("  console  lan0 up, 1 Gbit/s\n  fixture  lan0 up, 1 Gbit/s\n"));
    EXPECT_THAT(run.out, HasSubstr("console up, gigabit; fixture up, gigabit\n"));
}

TEST_F(HwctlLinks, WithoutDeskShowTheMachinesOwnAdapters)
{
    const auto run =
        RunHwctl({"links", "--console-network", "lo", "--fixture-network", "no-such-0"});
    EXPECT_EQ(run.exitCode, 0);
    EXPECT_THAT(run.out, HasSubstr("Networks\n  console  lo "));
    EXPECT_THAT(run.out, HasSubstr("\n  fixture  no-such-0 absent\n"));
    EXPECT_THAT(run.out,
                HasSubstr("\nLink lights\n  none: a console of model 0 has no such LEDs\n"));
}

TEST_F(HwctlLinks, AConsoleWithoutBoardHasNoLights)
{
    const auto run = RunHwctl({"links", "--console", "11"});
    EXPECT_EQ(run.exitCode, 0);
    EXPECT_EQ(run.out, "Networks\n"
                       "  none: name adapters by --console-network and --fixture-network\n"
                       "\n"
                       "Link lights\n"
                       "  no LTC board\n");
}

TEST_F(HwctlLinks, AnotherModelLeavesTheBoardAlone)
{
    const auto run = RunHwctl({"--virtual", "--console", "9", "links"});
    EXPECT_THAT(run.out, EndsWith("  none: a console of model 9 has no such LEDs\n"));
}

TEST_F(HwctlLinks, FollowEveryChange)
{
    const auto run = RunHwctl({"--virtual", "links", "--work", Write(Day), "--for", DaySeconds});
    EXPECT_EQ(run.exitCode, 0);
    EXPECT_EQ(run.err, "");
    EXPECT_THAT(GetLinkLines(run, "network console"),
                ElementsAre("eth0 up, 1 Gbit/s", "eth0 down", "eth0 up, 1 Gbit/s"));
    EXPECT_THAT(
        GetLinkLines(run, "network fixture"),
        ElementsAre("eth1 up, 100 Mbit/s", "eth1 up, 1 Gbit/s", "eth1 down", "eth1 absent"));
    EXPECT_THAT(GetLinkLines(run, "desk ltc"),
                ElementsAre("link lights: console up, gigabit; fixture up",
                            "link lights: console off; fixture up",
                            "link lights: console up, gigabit; fixture up",
                            "link lights: console up, gigabit; fixture up, gigabit",
                            // An adapter goes down before it is removed.
                            "link lights: console up, gigabit; fixture off",
                            "link lights: console up, gigabit; fixture off"));
}

TEST_F(HwctlLinks, FollowUntilInterrupted)
{
    const auto run =
        RunHwctl({"--virtual", "links", "--follow", "--json"}, {}, "linkLightsChanged");
    EXPECT_EQ(run.exitCode, 0);
    const auto first = nlohmann::json::parse(run.GetLines()[0]);
    EXPECT_EQ(first["source"], "network console");
    EXPECT_EQ(first["signal"], "Changed");
    EXPECT_EQ(first["adapter"], "eth0");
}

TEST_F(HwctlLinks, AStepThatCannotBeDoneFailsTheRun)
{
    const std::string script = Write("0 eth7 up\n0.01 eth0 down");
    const auto run = RunHwctl({"--virtual", "links", "--work", script, "--for", DaySeconds});
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_EQ(run.err, "hwctl: " + script + ":1: there is no network adapter 'eth7'\n");
    EXPECT_THAT(GetLinkLines(run, "network console"), Contains("eth0 down"));
}

TEST_F(HwctlLinks, MonitorPrintsNetworksAndLights)
{
    const auto run = RunHwctl({"--virtual", "--console", "8", "monitor", "--work-network",
                               Write(Day), "--for", DaySeconds});
    EXPECT_EQ(run.exitCode, 0);
    EXPECT_THAT(
        GetLinkLines(run, "network fixture"),
        ElementsAre("eth1 up, 100 Mbit/s", "eth1 up, 1 Gbit/s", "eth1 down", "eth1 absent"));
    EXPECT_THAT(GetLinkLines(run, "desk ltc"),
                Contains("link lights: console up, gigabit; fixture off"));
    const auto other =
        RunHwctl({"--virtual", "monitor", "--work-network", Write(Day), "--for", "0.1"});
    EXPECT_THAT(other.out, Not(HasSubstr("link lights"))); // model 7 has none
}

TEST_F(HwctlLinks, RefuseWhatTheyDoNotUnderstand)
{
    EXPECT_EQ(RunHwctl({"links", "--work", "file"}).exitCode, 2);
    EXPECT_EQ(RunHwctl({"links", "--for", "0"}).exitCode, 2);
    EXPECT_EQ(RunHwctl({"links", "--console-network", "a/b"}).exitCode, 2);
    EXPECT_EQ(RunHwctl({"links", "--fixture-network", "longer-than-fifteen"}).exitCode, 2);
    EXPECT_EQ(RunHwctl({"--virtual", "links", "--work", "/nowhere"}).exitCode, 1);
    const std::string script = Write("1 eth0 sing");
    const auto verb = RunHwctl({"--virtual", "links", "--work", script});
    EXPECT_EQ(verb.exitCode, 1);
    EXPECT_EQ(verb.err, "hwctl: " + script + ":1: there is no verb 'sing'\n");
    EXPECT_EQ(RunHwctl({"monitor", "--work-network", "file"}).exitCode, 2);
}
