// SPDX-License-Identifier: MIT
#include "common/light_setting.h"

#include <array>
#include <charconv>
#include <stdexcept>
#include <variant>

#include "common/light_name.h"
#include "common/near_names.h"

namespace Tools
{

namespace
{

using Standalone::LightSettings;

struct Setting {
    const char* name;
    std::variant<uires16 LightSettings::*, bool LightSettings::*> field;
};
constexpr std::array<Setting, 12> Settings{{{"left", &LightSettings::backlightLeft},
                                            {"right", &LightSettings::backlightRight},
                                            {"centre", &LightSettings::backlightCenter},
                                            {"blue", &LightSettings::desklightBlue},
                                            {"desk", &LightSettings::desklight},
                                            {"vent", &LightSettings::ventlight},
                                            {"work-on", &LightSettings::worklightOn},
                                            {"work", &LightSettings::worklight},
                                            {"drawer-on", &LightSettings::keyboardDrawerEnabled},
                                            {"drawer", &LightSettings::keyboardDrawer},
                                            {"leds", &LightSettings::leds},
                                            {"lcds", &LightSettings::lcds}}};

std::string FormatPercent(uires16 level)
{
    // With a point whatever the user's locale.
    constexpr int Digits = 6;
    std::array<char, 32> text{};
    char* const end = std::to_chars(text.data(), text.data() + text.size(), level / double(0x10000),
                                    std::chars_format::general, Digits)
                          .ptr;
    return {text.data(), end};
}

bool ParseSwitch(const std::string& text)
{
    if (text != "on" && text != "off")
        throw std::invalid_argument("'" + text + "' is neither on nor off");
    return text == "on";
}

} // namespace

std::vector<std::pair<std::string, std::string>>
DescribeLightSettings(const LightSettings& settings)
{
    std::vector<std::pair<std::string, std::string>> list;
    for (const Setting& setting : Settings) {
        if (const auto* const level = std::get_if<uires16 LightSettings::*>(&setting.field))
            list.emplace_back(setting.name, FormatPercent(settings.**level));
        else
            list.emplace_back(setting.name, settings.*std::get<bool LightSettings::*>(setting.field)
                                                ? "on"
                                                : "off");
    }
    return list;
}

void ChangeLightSetting(LightSettings& settings, const std::string& text)
{
    const std::size_t equals = text.find('=');
    const std::string name = text.substr(0, equals);
    if (equals == std::string::npos)
        throw std::invalid_argument("'" + text + "' is not NAME=VALUE");
    Names names;
    for (const Setting& setting : Settings)
        names.emplace_back(setting.name);
    const std::string chosen = ChooseName("setting", name, names);
    for (const Setting& setting : Settings) {
        if (chosen != setting.name)
            continue;
        const std::string value = text.substr(equals + 1);
        if (const auto* const level = std::get_if<uires16 LightSettings::*>(&setting.field))
            settings.** level = ParseLevel(value);
        else
            settings.*std::get<bool LightSettings::*>(setting.field) = ParseSwitch(value);
    }
}

} // namespace Tools
