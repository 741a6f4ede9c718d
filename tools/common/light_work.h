// SPDX-License-Identifier: MIT
#pragma once

#include <functional>

#include "common/light_step.h"
#include "desk/widget_bus.h"

namespace Tools
{

/// Does what a console's application, and a hand at its keyboard drawer, do for a step.
///
/// Messages that it posts are for the caller to have delivered. After "end" the thread that fades
/// runs again, for what comes behind. Throws std::invalid_argument for the steps that wait, which
/// are the caller's. One thread at a time.
/// @param bus with the drawer, if it is virtual; otherwise, and for null, the drawer moves as if
/// its wing had told
void DoLightStep(const LightStep& step, Desk::WidgetBus* bus);

/// It goes as a message to the application: settings, and the work-light key.
bool PostsMessages(const LightStep& step);

/// It may begin a fade.
bool BeginsFades(const LightStep& step);

/// Wakes the thread that fades until it has stepped, a few times: a wake is lost on a thread that
/// is about to fall asleep, which a new one is. A step that began no fade costs all of them.
/// @param hasStepped also true for a caller that wants to wait no more
/// @param wait for so many milliseconds
void WakeUntilItSteps(const std::function<bool()>& hasStepped,
                      const std::function<void(unsigned)>& wait);

} // namespace Tools
