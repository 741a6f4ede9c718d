// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>

namespace Tools
{

/// What a packed short message says, such as "note on ch 1 C4 vel 100". Channels count from 1;
/// note 60 is C4.
std::string DescribeShortMessage(std::uint32_t message);

/// What a system-exclusive message says, from its 0xF0 to its 0xF7: show control, machine control
/// and timecode in words, any other with its bytes.
std::string DescribeSystemExclusive(std::span<const std::uint8_t> message);

/// Number of bytes of a packed short message.
unsigned GetShortMessageLength(std::uint32_t message);

/// Bytes that are one whole short message, packed as the library takes it; nothing for others.
std::optional<std::uint32_t> PackShortMessage(std::span<const std::uint8_t> bytes);

} // namespace Tools
