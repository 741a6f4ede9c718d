// SPDX-License-Identifier: MIT
#pragma once

#include <vector>

#include "os/network_adapter.h"
#include "platform_export.h"

namespace Os
{

/// What the console is that the program runs on. Any thread may call any operation; instances hold
/// nothing.
class PLATFORM_EXPORT Platform
{
public:
    /// The console's networks.
    enum Protocol : unsigned {
        Protocol_Console = 0, ///< consoles among themselves, "VexNet"
        Protocol_Fixture = 1  ///< lighting fixtures, "FixtureNet"
    };

    /// Number of the console's model.
    static int GetKelProductType();
    /// True on a console, false on a computer that only runs its software.
    static bool IsConsole();

    static bool IsVentLightSupported();
    static bool AreBlueDesklightsSupported();
    static bool AreWhiteDesklightsSupported();
    static bool AreWorklightsSupported();
    static bool IsIlluminatedKeyboardDrawerSupported();

    /// Adapters that may serve a network, the best one first, as they are now. One that does not
    /// exist has its name nevertheless.
    static std::vector<NetworkAdapter> GetAdapterList(Protocol protocol);
};

} // namespace Os
