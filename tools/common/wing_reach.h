// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <string>

#include "widget/um_wing.h"

namespace Tools
{

// Why something that is to be done to a wing cannot reach it, such as "PlaybackWing/291 has no
// motor faders"; empty when it can. Slots of the wing mapper and of the beacon leave such calls out
// without a word. A key of an unknown model has no problem here.

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
