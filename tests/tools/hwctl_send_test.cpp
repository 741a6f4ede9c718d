// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include "tools/hwctl_process.h"

namespace
{

using TestSupport::RunHwctl;

/// What the virtual port got from "send" with these arguments.
std::string Send(std::vector<std::string> more)
{
    std::vector<std::string> arguments{"--virtual", "send", "Show Control"};
    arguments.insert(arguments.end(), more.begin(), more.end());
    const auto run = RunHwctl(arguments);
    EXPECT_EQ(run.exitCode, 0) << run.err;
    return run.out;
}

TEST(HwctlSend, SendsShortMessagesWithRunningStatus)
{
    EXPECT_EQ(Send({"90 3C 64", "903E64", "F8", "90 3C 00"}),
              "Show Control received 90 3C 64 3E 64 F8 90 3C 00\n");
}

TEST(HwctlSend, SendsEveryStatusByteWhenToldSo)
{
    EXPECT_EQ(Send({"--no-running-status", "90 3C 64", "90 3E 64"}),
              "Show Control received 90 3C 64 90 3E 64\n");
}

TEST(HwctlSend, SendsSystemExclusiveWhole)
{
    EXPECT_EQ(Send({"F0 7F 7F 02 01 01 33 F7"}), "Show Control received F0 7F 7F 02 01 01 33 F7\n");
}

TEST(HwctlSend, SendsTheStatusAgainAfterASystemExclusive)
{
    // A receiver ends running status there.
    EXPECT_EQ(Send({"90 3C 64", "F0 7E F7", "90 3E 64", "90 40 64"}),
              "Show Control received 90 3C 64 F0 7E F7 90 3E 64 40 64\n");
}

TEST(HwctlSend, SendsBytesAsTheyAreWhenToldSo)
{
    EXPECT_EQ(Send({"--buffer", "90 3C", "64"}), "Show Control received 90 3C 64\n");
}

} // namespace
