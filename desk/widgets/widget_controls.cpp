// SPDX-License-Identifier: MIT
#include "desk/widget_controls.h"

#include <algorithm>
#include <utility>

#include "widgets/drawer_switch.h"

namespace Desk
{

namespace
{

/// A wing of its own with so many encoders is made to programme with, and has a ball for that.
constexpr std::size_t ProgrammerEncoders = 3;

} // namespace

bool HasBall(const Hardware::WingModel& model)
{
    return !model.isFrontPanel && model.encoders.size() >= ProgrammerEncoders &&
           !HasDisplays(model);
}

bool HasDrawer(const Hardware::WingModel& model)
{
    return std::find(model.buttons.begin(), model.buttons.end(), DrawerSwitch) !=
           model.buttons.end();
}

bool HasDisplays(const Hardware::WingModel& model)
{
    return model.classId == &GUID_DEVINTERFACE_QRTUMEXPANSIONWING;
}

bool IsTouchBar(const Hardware::WingModel& model)
{
    return model.classId == &GUID_DEVINTERFACE_QRTUMVEX4TOUCHD;
}

bool IsLtcBoard(const Hardware::WingModel& model)
{
    return model.classId == &GUID_DEVINTERFACE_QRTUMLTCD;
}

bool IsTrackball(const Hardware::WingModel& model)
{
    return model.classId == &GUID_DEVINTERFACE_QRTUMTBALLD;
}

} // namespace Desk
