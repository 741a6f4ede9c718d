// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>

#include "hardware/cd_player.h"
#include "hwctl/event_printer.h"

namespace Hwctl
{

/// Prints the timecode of the disc in the drive, frame by frame, until it comes to its end or is
/// stopped, the time is over, or an interrupt.
/// @param seconds 0 for without end
/// @return how many frames there were. Throws CommandError without a drive.
std::size_t FollowCd(const CdPlayer& player, double seconds, EventPrinter& printer);

} // namespace Hwctl
