// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <cstdint>

namespace Desk
{

/// Where the display controllers of the left, the right and the centre display have their
/// brightness register: at one of two physical addresses.
struct DisplaySide {
    const char* name;
    std::array<std::uint32_t, 2> brightness;

    static std::uint32_t GetFrequency(std::uint32_t brightness) { return brightness - 0x14; }
};
inline constexpr std::array<DisplaySide, 3> DisplaySides{{{"left", {0xFE627AFC, 0xF7E27AFC}},
                                                          {"right", {0xFE127AFC, 0xF7B27AFC}},
                                                          {"centre", {0xFE327AFC, 0xF7C27AFC}}}};

} // namespace Desk
