// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>

namespace Hardware
{

/// Names one attached wing for the life of the process: bits 16 to 23 carry the code of the wing's
/// kind, bits 0 to 15 its serial number.
typedef std::uint32_t WidgetKey;

/// No key: the serial number could not be read.
inline constexpr WidgetKey NoWidgetKey = 0xFFFFFFFF;

} // namespace Hardware
