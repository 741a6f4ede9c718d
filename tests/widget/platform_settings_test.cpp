// SPDX-License-Identifier: MIT
#include "standalone/platform_settings.h"

#include <gtest/gtest.h>

#include "os/platform.h"

using Os::Platform;
using Standalone::ConfigurePlatform;
using Standalone::MakeConsoleSettings;
using Standalone::PlatformSettings;

namespace
{

/// What the platform answers now, asked the way the product asks.
PlatformSettings Ask()
{
    const auto getNames = [](Platform::Protocol protocol) {
        std::vector<std::wstring> names;
        for (const Os::NetworkAdapter& adapter : Platform::GetAdapterList(protocol))
            names.push_back(adapter.GetName());
        return names;
    };
    return {Platform::GetKelProductType(),
            Platform::IsConsole(),
            Platform::IsVentLightSupported(),
            Platform::AreBlueDesklightsSupported(),
            Platform::AreWhiteDesklightsSupported(),
            Platform::AreWorklightsSupported(),
            Platform::IsIlluminatedKeyboardDrawerSupported(),
            getNames(Platform::Protocol_Console),
            getNames(Platform::Protocol_Fixture)};
}

TEST(Platform, IsNoConsoleByItself)
{
    EXPECT_EQ(Ask(), (PlatformSettings{0, false, false, false, false, false, false}));
}

TEST(Platform, AnswersAsConfigured)
{
    for (const PlatformSettings& settings :
         {PlatformSettings{12},
          {0, true},
          {0, false, true},
          {0, false, false, true},
          {0, false, false, false, true},
          {0, false, false, false, false, true},
          {0, false, false, false, false, false, true},
          {-1, true, true, true, true, true, true},
          {0, false, false, false, false, false, false, {L"none-0"}, {}},
          {0, false, false, false, false, false, false, {}, {L"none-1"}},
          {}}) {
        ConfigurePlatform(settings);
        EXPECT_EQ(Ask(), settings);
        EXPECT_EQ(Standalone::GetPlatformSettings(), settings);
    }
}

TEST(Platform, AConsoleHasTheLightsOfItsModel)
{
    enum class Lights { None, Work, All };
    constexpr Lights Models[] = {
        Lights::None, Lights::None, Lights::None, Lights::None, Lights::None, Lights::None,
        Lights::None, Lights::All,  Lights::All,  Lights::Work, Lights::Work, Lights::None,
        Lights::Work, Lights::Work, Lights::Work, Lights::None, Lights::None, Lights::None,
        Lights::None, Lights::None, Lights::None,
    };
    for (int type = 0; type <= 20; ++type) {
        const bool hasAll = Models[type] == Lights::All;
        const bool hasWork = Models[type] != Lights::None;
        EXPECT_EQ(MakeConsoleSettings(type),
                  (PlatformSettings{type, true, hasAll, hasAll, hasAll, hasWork, hasAll}))
            << type;
    }
}

TEST(Platform, MakingSettingsConfiguresNothing)
{
    MakeConsoleSettings(7);
    EXPECT_EQ(Ask(), PlatformSettings());
}

} // namespace
