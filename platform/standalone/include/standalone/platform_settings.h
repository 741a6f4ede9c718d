// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <vector>

#include "platform_export.h"

namespace Standalone
{

/// What Os::Platform answers. As it stands: a computer that is no console.
struct PlatformSettings {
    int productType = 0;
    bool isConsole = false;
    bool hasVentLight = false;
    bool hasBlueDesklights = false;
    bool hasWhiteDesklights = false;
    bool hasWorklights = false;
    bool hasIlluminatedKeyboardDrawer = false;
    /// Names of adapters for each network, in order of preference; those that exist go first.
    std::vector<std::wstring> consoleNetwork = {};
    std::vector<std::wstring> fixtureNetwork = {};

    bool operator==(const PlatformSettings&) const = default;
};

/// Replaces the settings. To be called before the library first asks, since it asks some of them
/// only once. Any thread.
PLATFORM_EXPORT void ConfigurePlatform(const PlatformSettings& settings);
PLATFORM_EXPORT PlatformSettings GetPlatformSettings();

/// What a console of that model has. The stand-alone platform's own choice: types 7 and 8 have all
/// lights, 9, 10 and 12 to 14 work lights only, others none.
PLATFORM_EXPORT PlatformSettings MakeConsoleSettings(int productType);

} // namespace Standalone
