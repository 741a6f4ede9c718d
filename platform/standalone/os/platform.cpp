// SPDX-License-Identifier: MIT
#include "os/platform.h"

#include <mutex>

#include "standalone/platform_settings.h"

namespace Standalone
{

namespace
{

std::mutex Mutex;
PlatformSettings Settings; // guarded by Mutex

} // namespace

void ConfigurePlatform(const PlatformSettings& settings)
{
    const std::lock_guard hold(Mutex);
    Settings = settings;
}

PlatformSettings GetPlatformSettings()
{
    const std::lock_guard hold(Mutex);
    return Settings;
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

} // namespace Os
