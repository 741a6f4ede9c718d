// SPDX-License-Identifier: MIT
#pragma once

#include <gmock/gmock.h>

#include <string>

#include "desk/virtual_network.h"
#include "desk/virtual_widget.h"
#include "desk/widget_bus.h"
#include "hardware/linklights.h"
#include "standalone/messages.h"
#include "standalone/platform_settings.h"

namespace TestSupport
{

/// Makes the machine a console of that model with these adapters.
inline void SetLinkConsole(int productType, const std::vector<std::wstring>& console,
                           const std::vector<std::wstring>& fixture)
{
    Standalone::PlatformSettings settings;
    settings.productType = productType;
    settings.consoleNetwork = console;
    settings.fixtureNetwork = fixture;
    Standalone::ConfigurePlatform(settings);
}

/// The LEDs of a board as they were set last, such as "1000": console up, console gigabit, fixture
/// up, fixture gigabit.
inline std::string GetLights(const Desk::VirtualWidget& board)
{
    const Standalone::Report::SetLinkLights lights = board.GetLinkLights();
    std::string text;
    for (const unsigned flag :
         {lights.consoleActive, lights.consoleGigabit, lights.fixtureActive, lights.fixtureGigabit})
        text += std::to_string(flag);
    return text;
}

constexpr std::uint64_t Gigabit = 1000000000;

/// A console of model 8 with a virtual adapter for each network, both up at a gigabit, and no LTC
/// board.
class LinksBench : public testing::Test
{
protected:
    LinksBench()
    {
        SetLinkConsole(8, {L"vex0"}, {L"fix0"});
        m_network.Add({L"vex0"});
        m_network.Add({L"fix0"});
    }
    ~LinksBench() override { Hardware::LinkLights::Get().Stop(); }

    Desk::VirtualWidget& AddBoard() { return m_bus.Add({"LtcWidget", 1, {}}); }

    Desk::WidgetBus m_bus;
    Desk::VirtualNetwork m_network;
};

} // namespace TestSupport
