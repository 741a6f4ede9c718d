// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <string>

#include "os/network_adapter.h"
#include "os/platform.h"

namespace Tools
{

/// The console's networks, "console" and "fixture".
const char* GetNetworkName(Os::Platform::Protocol protocol);

/// Such as "2.5 Gbit/s"; "speed unknown" for 0.
std::string DescribeSpeed(std::uint64_t bitsPerSecond);

const char* GetStateName(Os::NetworkAdapter::State state);

/// Such as "eth0 up, 1 Gbit/s" or "eth0 down".
std::string DescribeAdapter(const Os::NetworkAdapter& adapter);

} // namespace Tools
