// SPDX-License-Identifier: MIT
#pragma once

#include "standalone/wing_table.h"

namespace Desk
{

/// Highest position of a fader, with a motor or without.
constexpr int FaderEnd = 255;

// What a model has besides the parts of its table. Pure; any thread.

/// A trackball built into a wing.
bool HasBall(const Hardware::WingModel& model);
/// The keyboard drawer.
bool HasDrawer(const Hardware::WingModel& model);
/// Displays that a configuration sets up.
bool HasDisplays(const Hardware::WingModel& model);
/// It is the touch button bar, whose buttons are touched and not pressed.
bool IsTouchBar(const Hardware::WingModel& model);
/// It is a board that reads LTC and shows the networks' links; no wing.
bool IsLtcBoard(const Hardware::WingModel& model);
/// It is the console's own trackball, with its ring.
bool IsTrackball(const Hardware::WingModel& model);

} // namespace Desk
