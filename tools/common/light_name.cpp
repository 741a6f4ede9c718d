// SPDX-License-Identifier: MIT
#include "common/light_name.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <stdexcept>
#include <utility>

#include "common/near_names.h"
#include "common/number.h"

namespace Tools
{

namespace
{

using Hardware::ConsoleLightId;

constexpr std::array<const char*, Hardware::ConsoleLightCount> LightNames{"LeftBacklight",
                                                                          "RightBacklight",
                                                                          "CenterBacklight",
                                                                          "WingLeds",
                                                                          "Lcds",
                                                                          "KeyboardDrawerLight",
                                                                          "VentLight",
                                                                          "WorkLight",
                                                                          "BlueDeskLight",
                                                                          "WhiteDeskLight",
                                                                          "ProgrammerWingLeds",
                                                                          "DeskProgrammerDimmer6",
                                                                          "DeskProgrammerDimmer7",
                                                                          "DeskProgrammerDimmer8"};

/// What the light settings call some of them.
constexpr std::array<std::pair<const char*, ConsoleLightId>, 3> OtherNames{
    {{"centre", Hardware::CenterBacklight},
     {"drawer", Hardware::KeyboardDrawerLight},
     {"leds", Hardware::WingLeds}}};

constexpr double FixedOne = 0x10000;
constexpr double FullPercent = 100;

std::string ToLower(std::string text)
{
    std::transform(text.begin(), text.end(), text.begin(), [](char c) {
        return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
    });
    return text;
}

} // namespace

const char* GetLightName(ConsoleLightId id)
{
    return LightNames.at(id);
}

ConsoleLightId ParseLight(const std::string& text)
{
    const std::string wanted = ToLower(text);
    for (const auto& [name, id] : OtherNames)
        if (wanted == name)
            return id;
    Tools::Names all;
    std::size_t found = LightNames.size();
    int count = 0;
    for (std::size_t id = 0; id < LightNames.size(); ++id) {
        const std::string name = ToLower(LightNames[id]);
        if (name == wanted)
            return static_cast<ConsoleLightId>(id);
        if (!wanted.empty() && name.starts_with(wanted)) {
            found = id;
            ++count;
        }
        all.emplace_back(LightNames[id]);
    }
    if (count != 1)
        throw std::invalid_argument("'" + text + "' is not one light" + SuggestNames(text, all));
    return static_cast<ConsoleLightId>(found);
}

uires16 ParseLevel(const std::string& text)
{
    const auto percent = ParseNumber(text, 0.0, FullPercent);
    if (!percent)
        throw std::invalid_argument("'" + text + "' is not a level from 0 to 100");
    return static_cast<uires16>(std::lround(*percent * FixedOne));
}

std::string FormatLevel(uires16 level)
{
    // With a point whatever the user's locale.
    std::array<char, 32> text{};
    char* const end = std::to_chars(text.data(), text.data() + text.size(), level / FixedOne,
                                    std::chars_format::fixed, 1)
                          .ptr;
    return std::string(text.data(), end) + " %";
}

std::string FormatBar(uires16 level, unsigned width)
{
    const double share = std::min(level / FixedOne / FullPercent, 1.0);
    const auto filled = static_cast<unsigned>(std::lround(share * width));
    return "[" + std::string(filled, '#') + std::string(width - filled, ' ') + "]";
}

std::string FormatLight(ConsoleLightId id, uires16 level, unsigned barWidth)
{
    constexpr std::size_t NameWidth = 22;
    std::string name = GetLightName(id);
    name.resize(NameWidth, ' ');
    return name + ' ' + FormatBar(level, barWidth) + ' ' + FormatLevel(level);
}

} // namespace Tools
