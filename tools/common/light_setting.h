// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <utility>
#include <vector>

#include "standalone/light_settings.h"

namespace Tools
{

/// Each setting as its name and its value: a level in percent such as "37.5", or "on" and "off".
/// In the order in which they are to be shown.
std::vector<std::pair<std::string, std::string>>
DescribeLightSettings(const Standalone::LightSettings& settings);

/// Changes one setting by "NAME=VALUE". Throws std::invalid_argument that says what is wrong.
void ChangeLightSetting(Standalone::LightSettings& settings, const std::string& text);

} // namespace Tools
