// SPDX-License-Identifier: MIT
#include "common/network_text.h"

#include <gtest/gtest.h>

using Os::NetworkAdapter;

TEST(NetworkText, SpeedsAreSaidInTheirUnit)
{
    const std::pair<std::uint64_t, const char*> cases[] = {
        {0, "speed unknown"},       {1, "1 bit/s"},
        {1000, "1 kbit/s"},         {10000000, "10 Mbit/s"},
        {100000000, "100 Mbit/s"},  {999999999, "999999999 bit/s"},
        {1000000000, "1 Gbit/s"},   {1001000000, "1001 Mbit/s"},
        {2500000000, "2.5 Gbit/s"}, {400000000000, "400 Gbit/s"}};
    for (const auto& [speed, text] : cases)
        EXPECT_EQ(Tools::DescribeSpeed(speed), text);
}

TEST(NetworkText, AdaptersAreSaidWithTheirState)
{
    NetworkAdapter::Statistics statistics;
    statistics.speed = 1000000000;
    const auto describe = [&statistics](NetworkAdapter::State state) {
        return Tools::DescribeAdapter(NetworkAdapter(L"netz-\u00FC", state, statistics, L""));
    };
    EXPECT_EQ(describe(NetworkAdapter::State_Up), "netz-\xC3\xBC up, 1 Gbit/s");
    EXPECT_EQ(describe(NetworkAdapter::State_Down), "netz-\xC3\xBC down");
    EXPECT_EQ(describe(NetworkAdapter::State_Absent), "netz-\xC3\xBC absent");
    EXPECT_EQ(describe(NetworkAdapter::State_Unknown), "netz-\xC3\xBC unknown");
}

TEST(NetworkText, NetworksHaveTheirNames)
{
    EXPECT_STREQ(Tools::GetNetworkName(Os::Platform::Protocol_Console), "console");
    EXPECT_STREQ(Tools::GetNetworkName(Os::Platform::Protocol_Fixture), "fixture");
}
