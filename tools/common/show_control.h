// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <span>
#include <string>

namespace Tools
{

/// What a MIDI Show Control message says, such as "show control GO cue 3 [general lighting, all
/// devices]".
///
/// @param device the device identifier: 0 to 111 one device, 112 to 126 a group, 127 all
/// @param data   command format, command and the command's data; at least two bytes
std::string DescribeShowControl(std::uint8_t device, std::span<const std::uint8_t> data);

} // namespace Tools
