// SPDX-License-Identifier: MIT
#pragma once

#include "common/cd_step.h"
#include "hardware/cd_player.h"

namespace Tools
{

/// Has the player do a step of playing, from play to jog. It tells of no failure: what can be known
/// before is looked at before, and CheckCdStep() asks the drive afterwards. Throws
/// std::runtime_error with the reason, such as "nothing plays to jog from", and
/// std::invalid_argument for a step that only looks.
void DoCdStep(CdPlayer& player, const CdStep& step);

/// Throws std::runtime_error when the drive does not do what the step asked for.
void CheckCdStep(const CdPlayer& player, const CdStep& step);

} // namespace Tools
