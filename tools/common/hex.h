// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace Tools
{

/// Bytes as two upper-case hexadecimal digits each, with blanks between.
std::string FormatHex(std::span<const std::uint8_t> bytes);
/// Reads hexadecimal digits in pairs; blanks may stand between pairs. Nothing for any other text.
std::optional<std::vector<std::uint8_t>> ParseHex(std::string_view text);

} // namespace Tools
