// SPDX-License-Identifier: MIT
#pragma once

#include <string>

#include "hardware/console_lights.h"

namespace Tools
{

/// "WhiteDeskLight" of a light.
const char* GetLightName(Hardware::ConsoleLightId id);

/// The light of a name, in whatever case, or of a beginning that no other light has, such as
/// "white"; also centre, drawer and leds, as the settings call them. Throws std::invalid_argument
/// with all names for anything else.
Hardware::ConsoleLightId ParseLight(const std::string& text);

/// Level in percent, 0 to 100. Throws std::invalid_argument for anything else.
uires16 ParseLevel(const std::string& text);

/// "37.5 %" of a level.
std::string FormatLevel(uires16 level);

/// A level from 0 to 100.0 as so many characters, "[####    ]".
std::string FormatBar(uires16 level, unsigned width);

/// A light's line in a list of bars, "WorkLight              [####    ] 50.0 %".
std::string FormatLight(Hardware::ConsoleLightId id, uires16 level, unsigned barWidth);

} // namespace Tools
