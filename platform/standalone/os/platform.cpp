// SPDX-License-Identifier: MIT
#include "os/platform.h"

#include <algorithm>
#include <mutex>

#include "standalone/platform_settings.h"

namespace Standalone
{

namespace
{

std::mutex Mutex;

/// Never destroyed. The caller holds the lock.
PlatformSettings& GetSettings()
{
    static auto* const settings = new PlatformSettings;
    return *settings;
}

} // namespace

void ConfigurePlatform(const PlatformSettings& settings)
{
    const std::lock_guard hold(Mutex);
    GetSettings() = settings;
}

PlatformSettings GetPlatformSettings()
{
    const std::lock_guard hold(Mutex);
    return GetSettings();
}

PlatformSettings MakeConsoleSettings(int productType)
{
    PlatformSettings settings;
    settings.productType = productType;
    settings.isConsole = true;
    const bool hasAll = productType == 7 || productType == 8;
    const bool isLaterConsole = productType >= 9 && productType <= 14 && productType != 11;
    settings.hasVentLight = hasAll;
    settings.hasBlueDesklights = hasAll;
    settings.hasWhiteDesklights = hasAll;
    settings.hasWorklights = hasAll || isLaterConsole;
    settings.hasIlluminatedKeyboardDrawer = hasAll;
    return settings;
}

} // namespace Standalone

namespace Os
{

int Platform::GetKelProductType()
{
    return Standalone::GetPlatformSettings().productType;
}

bool Platform::IsConsole()
{
    return Standalone::GetPlatformSettings().isConsole;
}

bool Platform::IsVentLightSupported()
{
    return Standalone::GetPlatformSettings().hasVentLight;
}

bool Platform::AreBlueDesklightsSupported()
{
    return Standalone::GetPlatformSettings().hasBlueDesklights;
}

bool Platform::AreWhiteDesklightsSupported()
{
    return Standalone::GetPlatformSettings().hasWhiteDesklights;
}

bool Platform::AreWorklightsSupported()
{
    return Standalone::GetPlatformSettings().hasWorklights;
}

bool Platform::IsIlluminatedKeyboardDrawerSupported()
{
    return Standalone::GetPlatformSettings().hasIlluminatedKeyboardDrawer;
}

std::vector<NetworkAdapter> Platform::GetAdapterList(Protocol protocol)
{
    const Standalone::PlatformSettings settings = Standalone::GetPlatformSettings();
    std::vector<NetworkAdapter> adapters;
    const auto add = [&adapters](const std::vector<std::wstring>& names) {
        for (const std::wstring& name : names) {
            const NetworkAdapter found = NetworkAdapter::ReadSettings(name);
            adapters.push_back(
                found.GetName().empty()
                    ? NetworkAdapter(name, NetworkAdapter::State_Absent, {}, kel::wstring())
                    : found);
        }
    };
    if (protocol == Protocol_Console)
        add(settings.consoleNetwork);
    else if (protocol == Protocol_Fixture)
        add(settings.fixtureNetwork);
    // One that exists is of more use than one that was preferred. Without any, the preferred one
    // may come later.
    std::stable_partition(adapters.begin(), adapters.end(), [](const NetworkAdapter& adapter) {
        return adapter.GetState() != NetworkAdapter::State_Absent;
    });
    return adapters;
}

} // namespace Os
