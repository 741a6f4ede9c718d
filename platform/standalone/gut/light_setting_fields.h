// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <string>
#include <string_view>
#include <variant>

#include "standalone/light_settings.h"

namespace Standalone
{

/// One light setting, by its name in a file.
struct LightSettingField {
    const char* name;
    std::variant<uires16 LightSettings::*, bool LightSettings::*> field;
};

/// All of them, in the order in which a file lists them.
inline constexpr std::array<LightSettingField, 12> LightSettingFields{
    {{"backlightLeft", &LightSettings::backlightLeft},
     {"backlightRight", &LightSettings::backlightRight},
     {"backlightCenter", &LightSettings::backlightCenter},
     {"desklight", &LightSettings::desklight},
     {"ventlight", &LightSettings::ventlight},
     {"worklight", &LightSettings::worklight},
     {"keyboardDrawer", &LightSettings::keyboardDrawer},
     {"leds", &LightSettings::leds},
     {"lcds", &LightSettings::lcds},
     {"desklightBlue", &LightSettings::desklightBlue},
     {"worklightOn", &LightSettings::worklightOn},
     {"keyboardDrawerEnabled", &LightSettings::keyboardDrawerEnabled}}};

/// Null for a name that no setting has.
const LightSettingField* FindLightSetting(std::string_view name);

/// Takes a value as a file has it: percent from 0 to 100, or true and false. Returns false, and
/// leaves the settings alone, if it is anything else.
bool ParseLightSetting(std::string_view value, const LightSettingField& field,
                       LightSettings& settings);
/// The value as a file has it, with a decimal point whatever the locale.
std::string FormatLightSetting(const LightSettingField& field, const LightSettings& settings);

bool IsSameLightSetting(const LightSettingField& field, const LightSettings& one,
                        const LightSettings& other);
void CopyLightSetting(const LightSettingField& field, const LightSettings& from, LightSettings& to);

/// The setting whose level is above 100.0, or null if there is none.
const LightSettingField* FindLevelAboveFull(const LightSettings& settings);

} // namespace Standalone
