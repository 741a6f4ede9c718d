// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <string>

#include "widget/um_wing.h"

namespace Tools
{

// Each returns why a call cannot reach a wing, such as "PlaybackWing/291 has no motor faders", or
// an empty text when it can. The slots of the wing mapper and of the beacon ignore such calls
// silently. For a key of an unknown model the text is empty.

/// The LED of a part and a master.
std::string FindLedProblem(std::uint32_t key, unsigned pid, unsigned mid);
/// All LEDs at once.
std::string FindAllLedsProblem(std::uint32_t key);
/// The LEDs of a section, counted from 0.
std::string FindLedSectionProblem(std::uint32_t key, int section);
/// The motor fader of a master.
std::string FindFaderProblem(std::uint32_t key, unsigned mid);
/// That the wing identifies itself.
std::string FindBeaconProblem(std::uint32_t key);

} // namespace Tools
