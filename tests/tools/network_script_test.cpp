// SPDX-License-Identifier: MIT
#include "common/network_script.h"

#include <gtest/gtest.h>

using Desk::VirtualNetwork;
using Tools::NetworkScript;

namespace
{

/// The network's adapters after a script, such as "eth0 up 1000000000; ".
std::string Play(const std::string& text)
{
    VirtualNetwork network;
    network.Add({L"eth0"});
    const NetworkScript script = NetworkScript::Parse(text, "work.txt");
    for (const NetworkScript::Step& step : script.GetSteps())
        NetworkScript::Do(step, network);
    std::string result;
    for (const Desk::AdapterData& adapter : network.GetAdapters())
        result += std::string(adapter.name.begin(), adapter.name.end()) +
                  (adapter.isUp ? " up " : " down ") + std::to_string(adapter.speed) + "; ";
    return result;
}

std::string Refuse(const std::string& text)
{
    try {
        NetworkScript::Parse(text, "work.txt");
    } catch (const std::invalid_argument& error) {
        return error.what();
    }
    return "nothing";
}

} // namespace

TEST(NetworkScript, DoesEveryVerb)
{
    EXPECT_EQ(Play(""), "eth0 up 1000000000; ");
    EXPECT_EQ(Play("0 eth0 down"), "eth0 down 1000000000; ");
    EXPECT_EQ(Play("0 eth0 down\n0.5 eth0 up"), "eth0 up 1000000000; ");
    EXPECT_EQ(Play("0 eth0 speed 10000000000"), "eth0 up 10000000000; ");
    EXPECT_EQ(Play("0 eth0 down\n0 eth0 rename lan0"), "lan0 down 1000000000; ");
    EXPECT_EQ(Play("0 eth0 remove # gone\n\n0 eth1 add"), "eth1 up 1000000000; ");
    EXPECT_EQ(Play("0 eth0 flap 3"), "eth0 up 1000000000; ");
    EXPECT_EQ(Play("0 eth0 overrun"), "eth0 down 1000000000; ");
    EXPECT_EQ(Play("0 eth0 overrun\n0 eth0 overrun"), "eth0 up 1000000000; ");
}

TEST(NetworkScript, RefusesWhatIsNone)
{
    const std::pair<const char*, const char*> cases[] = {
        {"x eth0 up", "work.txt:1: it begins with seconds, 0 to 1000000"},
        {"-1 eth0 up", "work.txt:1: it begins with seconds, 0 to 1000000"},
        {"nan eth0 up", "work.txt:1: it begins with seconds, 0 to 1000000"},
        {"\n1 eth0", "work.txt:2: an adapter and a verb follow the seconds"},
        {"1 eth0/1 up", "work.txt:1: no adapter can have the name 'eth0/1'"},
        {"1 eth0 sing", "work.txt:1: there is no verb 'sing'"},
        {"1 eth0 up 1", "work.txt:1: what follows 'up' is not what it takes"},
        {"1 eth0 speed", "work.txt:1: what follows 'speed' is not what it takes"},
        {"1 eth0 speed 1x", "work.txt:1: what follows 'speed' is not what it takes"},
        {"1 eth0 speed 1 2", "work.txt:1: what follows 'speed' is not what it takes"},
        {"1 eth0 flap 1000001", "work.txt:1: what follows 'flap' is not what it takes"},
        {"1 eth0 rename a/b", "work.txt:1: what follows 'rename' is not what it takes"},
        {"1 eth0 up\n0.9 eth0 up", "work.txt:2: it is earlier than the line before"}};
    for (const auto& [text, reason] : cases)
        EXPECT_EQ(Refuse(text), reason);
    EXPECT_THROW(NetworkScript::Read("/nowhere"), std::runtime_error);
}

TEST(NetworkScript, ThrowsForAnAdapterThatIsNotThere)
{
    EXPECT_THROW(Play("0 eth1 up"), std::invalid_argument);
}
