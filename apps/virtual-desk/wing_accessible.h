// SPDX-License-Identifier: MIT
#pragma once

#include "virtual-desk/wing_view.h"

namespace VirtualDesk
{

// What a screen reader hears of a wing: each control is a child of its view, in the order of the
// layout, with a role, a name such as "Key 12", a value such as "LED on, up", and the actions of a
// hand. The value is the description too, since not every bridge hands on values that are text.

/// Has views be known to those who read screens. Called by every view; does it once.
void MakeWingsAccessible();

/// A control's face has changed.
void TellOfFace(WingView& view, std::size_t place, const ControlFace& before);
/// The keyboard went to a control.
void TellOfFocus(WingView& view, std::size_t place);

} // namespace VirtualDesk
