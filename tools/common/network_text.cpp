// SPDX-License-Identifier: MIT
#include "common/network_text.h"

#include <array>
#include <cstdio>

#include "standalone/network_source.h"

namespace Tools
{

using Os::NetworkAdapter;

const char* GetNetworkName(Os::Platform::Protocol protocol)
{
    return protocol == Os::Platform::Protocol_Console ? "console" : "fixture";
}

std::string DescribeSpeed(std::uint64_t bitsPerSecond)
{
    struct Unit {
        std::uint64_t size;
        const char* name;
    };
    constexpr std::array<Unit, 3> units{
        {{1000000000, " Gbit/s"}, {1000000, " Mbit/s"}, {1000, " kbit/s"}}};
    if (bitsPerSecond == 0)
        return "speed unknown";
    for (const Unit& unit : units)
        // With one decimal at the most, so that nothing is rounded up to the next one.
        if (bitsPerSecond >= unit.size && bitsPerSecond % (unit.size / 10) == 0) {
            std::string text = std::to_string(bitsPerSecond / unit.size);
            if (const std::uint64_t tenth = bitsPerSecond % unit.size / (unit.size / 10))
                text += "." + std::to_string(tenth);
            return text + unit.name;
        }
    return std::to_string(bitsPerSecond) + " bit/s";
}

const char* GetStateName(NetworkAdapter::State state)
{
    switch (state) {
    case NetworkAdapter::State_Absent:
        return "absent";
    case NetworkAdapter::State_Down:
        return "down";
    case NetworkAdapter::State_Up:
        return "up";
    default:
        return "unknown";
    }
}

std::string DescribeAdapter(const NetworkAdapter& adapter)
{
    std::string text =
        Standalone::NarrowAdapterName(adapter.GetName()) + " " + GetStateName(adapter.GetState());
    if (adapter.GetState() == NetworkAdapter::State_Up)
        text += ", " + DescribeSpeed(adapter.GetStatistics().speed);
    return text;
}

} // namespace Tools
