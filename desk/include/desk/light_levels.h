// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <vector>

#include "desk/virtual_widget.h"

namespace Desk
{

/// One light of a widget, as the driver set it last.
struct LightLevel {
    std::string name; ///< such as "work light"
    int level;        ///< 0 to 255
};

/// The lights that the widget's model has and that were set since it was plugged, channel by
/// channel, then its small displays. A widget that nobody lit has none.
std::vector<LightLevel> GetLightLevels(const VirtualWidget& widget);

/// Names of all lights that a widget of a model can show, in the same order.
std::vector<std::string> GetLightNames(const Hardware::WingModel& model);

} // namespace Desk
