// SPDX-License-Identifier: MIT

// Adapters, their names, and which of them serve the console's networks.

#include <gmock/gmock.h>

#include "desk/virtual_network.h"
#include "os/platform.h"
#include "standalone/network_source.h"
#include "standalone/platform_settings.h"

namespace
{

using Os::NetworkAdapter;
using Os::Platform;
using testing::ElementsAre;
using testing::IsEmpty;

std::vector<std::wstring> GetNames(Platform::Protocol protocol)
{
    std::vector<std::wstring> names;
    for (const NetworkAdapter& adapter : Platform::GetAdapterList(protocol))
        names.push_back(adapter.GetName());
    return names;
}

} // namespace

TEST(NetworkAdapter, StatesHaveTheirNumbers)
{
    EXPECT_EQ(int{NetworkAdapter::State_Unknown}, 0);
    EXPECT_EQ(int{NetworkAdapter::State_Absent}, 1);
    EXPECT_EQ(int{NetworkAdapter::State_Down}, 2);
    EXPECT_EQ(int{NetworkAdapter::State_Up}, 3);
    EXPECT_EQ(int{Platform::Protocol_Console}, 0);
    EXPECT_EQ(int{Platform::Protocol_Fixture}, 1);
}

TEST(NetworkAdapter, TheSpeedStandsFirstAndHasSixtyFourBits)
{
    static_assert(offsetof(NetworkAdapter::Statistics, speed) == 0);
    static_assert(sizeof(NetworkAdapter::Statistics::speed) == 8);
    EXPECT_EQ(NetworkAdapter().GetName(), L"");
    EXPECT_EQ(NetworkAdapter().GetState(), NetworkAdapter::State_Unknown);
}

TEST(NetworkAdapter, IsReadByItsName)
{
    Desk::VirtualNetwork network;
    network.Add({L"eth0", true, 10000000000});
    network.Add({L"eth1", false, 7});
    const NetworkAdapter up = NetworkAdapter::ReadSettings(L"eth0");
    EXPECT_EQ(up.GetName(), L"eth0");
    EXPECT_EQ(up.GetState(), NetworkAdapter::State_Up);
    EXPECT_EQ(up.GetStatistics().speed, 10000000000U);
    EXPECT_EQ(up.GetHardwareAddress(), L"02:00:00:00:00:01");
    const NetworkAdapter down = NetworkAdapter::ReadSettings(L"eth1");
    EXPECT_EQ(down.GetState(), NetworkAdapter::State_Down);
    EXPECT_EQ(down.GetStatistics().speed, 7U);
    for (const wchar_t* const name : {L"", L"eth2"}) {
        EXPECT_EQ(NetworkAdapter::ReadSettings(name).GetName(), L"");
        EXPECT_EQ(NetworkAdapter::ReadSettings(name).GetState(), NetworkAdapter::State_Absent);
    }
}

TEST(NetworkAdapterList, IsEmptyByItself)
{
    EXPECT_THAT(GetNames(Platform::Protocol_Console), IsEmpty());
    EXPECT_THAT(GetNames(Platform::Protocol_Fixture), IsEmpty());
}

TEST(NetworkAdapterList, HasTheAdaptersOfItsNetworkInTheirOrder)
{
    Desk::VirtualNetwork network;
    for (const wchar_t* const name : {L"b", L"a", L"d", L"c"})
        network.Add({name});
    Standalone::PlatformSettings settings;
    settings.consoleNetwork = {L"b", L"a"};
    settings.fixtureNetwork = {L"d", L"c", L"d"};
    Standalone::ConfigurePlatform(settings);
    EXPECT_THAT(GetNames(Platform::Protocol_Console), ElementsAre(L"b", L"a"));
    EXPECT_THAT(GetNames(Platform::Protocol_Fixture), ElementsAre(L"d", L"c", L"d"));
    EXPECT_THAT(GetNames(static_cast<Platform::Protocol>(2)), IsEmpty());
}

TEST(NetworkAdapterList, HasThoseThatExistFirst)
{
    Desk::VirtualNetwork network;
    network.Add({L"b", false});
    Standalone::PlatformSettings settings;
    settings.consoleNetwork = {L"a", L"", L"b"};
    settings.fixtureNetwork = {L"x", L"y"};
    Standalone::ConfigurePlatform(settings);
    EXPECT_THAT(GetNames(Platform::Protocol_Console), ElementsAre(L"b", L"a", L""));
    EXPECT_THAT(GetNames(Platform::Protocol_Fixture), ElementsAre(L"x", L"y"));
    const auto list = Platform::GetAdapterList(Platform::Protocol_Console);
    EXPECT_EQ(list[0].GetState(), NetworkAdapter::State_Down);
    EXPECT_EQ(list[1].GetState(), NetworkAdapter::State_Absent);
}

TEST(NetworkAdapterName, ComesBackAsItWas)
{
    for (const std::string& name :
         {std::string("eth0"), std::string("netz-\xC3\xBC"), std::string("\xE2\x82\xAC"),
          std::string("\xFF\xC3(latin)\xFC"), std::string()})
        EXPECT_EQ(Standalone::NarrowAdapterName(Standalone::WidenAdapterName(name)), name);
    EXPECT_EQ(Standalone::WidenAdapterName("netz-\xC3\xBC"), L"netz-\u00FC");
    EXPECT_EQ(Standalone::WidenAdapterName("\xFC"), std::wstring(1, wchar_t{-4}));
}

TEST(VirtualNetwork, RefusesWhatCannotBe)
{
    Desk::VirtualNetwork network;
    network.Add({L"eth0"});
    network.Add({L"eth1"});
    EXPECT_THROW(network.Add({L"eth0"}), std::invalid_argument);
    EXPECT_THROW(network.Add({L"a b"}), std::invalid_argument);
    EXPECT_THROW(network.Rename(L"eth0", L"eth2"), std::invalid_argument); // it is up
    network.SetDown(L"eth0");
    EXPECT_THROW(network.Rename(L"eth0", L"eth1"), std::invalid_argument);
    EXPECT_THROW(network.Rename(L"eth0", L""), std::invalid_argument);
    EXPECT_THROW(network.SetUp(L"eth2"), std::invalid_argument);
    EXPECT_THROW(network.SetSpeed(L"eth2", 1), std::invalid_argument);
    EXPECT_THROW(network.Remove(L"eth2"), std::invalid_argument);
    EXPECT_TRUE(network.Has(L"eth0"));
    EXPECT_FALSE(network.Has(L"eth2"));
    EXPECT_EQ(network.GetAdapters().size(), 2U);
}
