// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>

#include "widget/um_wing.h"

namespace Tools
{

/// "PlaybackWing/291" of a wing's key; the key's number where the kind is unknown.
std::string GetWingName(std::uint32_t key);

/// The key that a name or a number stands for: as above, decimal, or hexadecimal with 0x.
/// Throws std::invalid_argument for anything else.
std::uint32_t ParseWingKey(const std::string& text);

/// What somebody writes for the states of a LED: off, on, flash, dim.
const std::map<std::string, Hardware::UmWing::LedState>& GetLedStates();
/// The name of a LED's state as GetLedStates() has it; nothing for a number that is not a state.
std::optional<std::string> FindLedStateName(int state);

/// What somebody writes for the sections of a wing that identifies itself: all, left, right,
/// centre.
const std::map<std::string, Hardware::UmWing::WingSections>& GetWingSections();

} // namespace Tools
