// SPDX-License-Identifier: MIT
#pragma once

#include <functional>
#include <nlohmann/json.hpp>
#include <string>

namespace Tools
{

/// One signal on its way to the screen.
struct MonitorEvent {
    double seconds = 0;        ///< since the start
    std::string source;        ///< such as "midi Stage Keyboard" or "timecode sim 1"
    std::string signal;        ///< the signal's name
    std::string text;          ///< what it says
    nlohmann::json facts = {}; ///< fields of its own, for JSON only
};

/// Takes one event to where it is shown; called on the thread that has the news. Its time is left
/// open.
typedef std::function<void(MonitorEvent event)> EventTaker;

} // namespace Tools
