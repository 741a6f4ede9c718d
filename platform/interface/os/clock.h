// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>

#include "platform_export.h"

namespace Os
{

/// Milliseconds in 32 bits; wraps after 49.7 days, so only differences mean anything.
typedef std::uint32_t TimeMs;

/// Reading of the monotonic clock. Any thread.
PLATFORM_EXPORT TimeMs GetMillisecs();

} // namespace Os
