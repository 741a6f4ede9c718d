// SPDX-License-Identifier: MIT
#include "desk/light_levels.h"

#include <array>
#include <cstdint>

namespace Desk
{

namespace
{

/// Dimmer channels; 4 is the drawer's on a desk programmer.
constexpr std::array<const char*, 9> ChannelNames{
    "LEDs",     "programmer LEDs", "blue desk light", "work light", "white desk light",
    "dimmer 6", "dimmer 7",        "dimmer 8",        "vent light"};
constexpr std::uint8_t WorkLightChannel = 4;

const char* GetName(std::uint8_t channel, const std::string& model)
{
    if (channel == WorkLightChannel && model == "Vex4DeskProgrammer")
        return "drawer light";
    return ChannelNames.at(channel - 1U);
}

constexpr char Displays[] = "displays";

} // namespace

std::vector<std::string> GetLightNames(const Hardware::WingModel& model)
{
    std::vector<std::string> names;
    for (const std::uint8_t channel : model.dimmers)
        names.emplace_back(GetName(channel, model.name));
    if (!model.lcds.empty())
        names.emplace_back(Displays);
    return names;
}

std::vector<LightLevel> GetLightLevels(const VirtualWidget& widget)
{
    const Hardware::WingModel& model = widget.GetModel();
    std::vector<LightLevel> levels;
    for (const std::uint8_t channel : model.dimmers)
        if (const int level = widget.GetDimmer(channel); level >= 0)
            levels.push_back({GetName(channel, model.name), level});
    if (const int level = widget.GetLcdBrightness(0); level >= 0 && !model.lcds.empty())
        levels.push_back({Displays, level});
    return levels;
}

} // namespace Desk
