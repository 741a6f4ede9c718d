// SPDX-License-Identifier: MIT
#include "hardware/circ.h"

#include <cstdint>

bool circ::IsWrap(unsigned long a, unsigned long b) const
{
    const auto isTop = [](std::uint32_t value) { return value > 0xFFFEFFFF; };
    const auto isBottom = [](std::uint32_t value) { return value <= 0xFFFF; };
    const auto first = static_cast<std::uint32_t>(a);
    const auto second = static_cast<std::uint32_t>(b);
    return (isTop(first) && isBottom(second)) || (isTop(second) && isBottom(first));
}
