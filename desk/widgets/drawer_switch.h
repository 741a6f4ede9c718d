// SPDX-License-Identifier: MIT
#pragma once

#include <utility>

namespace Desk
{

/// The part id and master id of the switch that the keyboard drawer works.
constexpr std::pair<unsigned short, unsigned short> DrawerSwitch{75, 0};

} // namespace Desk
