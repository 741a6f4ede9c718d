// SPDX-License-Identifier: MIT
#pragma once

#include <string>

#include "hardware/console_lights.h"

namespace Tools
{

/// One thing to do with the lights, as somebody writes it in one word:
///
/// - "LIGHT=LEVEL": at once; "LIGHT=LEVEL/SECONDS": by a fade from where the light is,
///   unless that is too short for one
/// - "start", "end": the console's start and end; "reset": stops all fades
/// - "key": the work-light key
/// - "sleep", "wake": the screen saver; "open", "close": the keyboard drawer
/// - "apply", "change": the settings, at once or by fades
/// - "wait=SECONDS", "settle": wait so long, or until nothing fades
struct LightStep {
    enum class Kind {
        Set,
        Fade,
        Start,
        End,
        Reset,
        Key,
        Sleep,
        Wake,
        Open,
        Close,
        Apply,
        Change,
        Wait,
        Settle
    };
    Kind kind = Kind::Set;
    Hardware::ConsoleLightId light = Hardware::LeftBacklight; ///< of Set and Fade
    uires16 level = 0;                                        ///< of Set and Fade
    unsigned milliseconds = 0;                                ///< of Fade and Wait
    std::string text;                                         ///< as it was written

    /// Throws std::invalid_argument that says what is wrong.
    static LightStep Parse(const std::string& text);
};

} // namespace Tools
