// SPDX-License-Identifier: MIT
#include "gut/light_setting_fields.h"

#include <algorithm>
#include <charconv>
#include <cmath>

namespace Standalone
{

namespace
{

constexpr double FixedOne = 0x10000;
constexpr double FullPercent = 100;
constexpr uires16 Full = 0x00640000;

bool ParseLevel(std::string_view text, uires16& level)
{
    double percent = 0;
    const char* const end = text.data() + text.size();
    const auto [last, error] = std::from_chars(text.data(), end, percent);
    // The comparison is false for NaN, too.
    if (error != std::errc() || last != end || !(percent >= 0 && percent <= FullPercent))
        return false;
    level = static_cast<uires16>(std::lround(percent * FixedOne));
    return true;
}

bool ParseSwitch(std::string_view text, bool& isOn)
{
    if (text != "true" && text != "false")
        return false;
    isOn = text == "true";
    return true;
}

std::string FormatLevel(uires16 level)
{
    std::array<char, 32> text{};
    char* const end = std::to_chars(text.data(), text.data() + text.size(), level / FixedOne).ptr;
    return {text.data(), end};
}

} // namespace

const LightSettingField* FindLightSetting(std::string_view name)
{
    const auto* const found =
        std::find_if(LightSettingFields.begin(), LightSettingFields.end(),
                     [name](const LightSettingField& field) { return name == field.name; });
    return found == LightSettingFields.end() ? nullptr : found;
}

bool ParseLightSetting(std::string_view value, const LightSettingField& field,
                       LightSettings& settings)
{
    if (const auto* const level = std::get_if<uires16 LightSettings::*>(&field.field))
        return ParseLevel(value, settings.**level);
    return ParseSwitch(value, settings.*std::get<bool LightSettings::*>(field.field));
}

std::string FormatLightSetting(const LightSettingField& field, const LightSettings& settings)
{
    if (const auto* const level = std::get_if<uires16 LightSettings::*>(&field.field))
        return FormatLevel(settings.**level);
    return settings.*std::get<bool LightSettings::*>(field.field) ? "true" : "false";
}

bool IsSameLightSetting(const LightSettingField& field, const LightSettings& one,
                        const LightSettings& other)
{
    return std::visit([&](auto member) { return one.*member == other.*member; }, field.field);
}

void CopyLightSetting(const LightSettingField& field, const LightSettings& from, LightSettings& to)
{
    std::visit([&](auto member) { to.*member = from.*member; }, field.field);
}

const LightSettingField* FindLevelAboveFull(const LightSettings& settings)
{
    const auto* const found =
        std::find_if(LightSettingFields.begin(), LightSettingFields.end(),
                     [&settings](const LightSettingField& field) {
                         const auto* const level =
                             std::get_if<uires16 LightSettings::*>(&field.field);
                         return level && settings.**level > Full;
                     });
    return found == LightSettingFields.end() ? nullptr : found;
}

} // namespace Standalone
