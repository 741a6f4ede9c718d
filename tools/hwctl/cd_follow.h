// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <string>

#include "hardware/cd_player.h"
#include "hwctl/event_printer.h"

namespace Hwctl
{

struct CdFollowResult {
    std::size_t frames = 0;
    std::string problem; ///< why the drive plays no more; empty when nothing went wrong
};

/// Prints the timecode of the disc in the drive, frame by frame, until it comes to its end or is
/// stopped, the time is over, or an interrupt. Throws std::runtime_error without a drive.
/// @param seconds 0 for without end
CdFollowResult FollowCd(const CdPlayer& player, double seconds, EventPrinter& printer);

} // namespace Hwctl
