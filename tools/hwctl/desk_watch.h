// SPDX-License-Identifier: MIT
#pragma once

#include <QObject>

#include "desk/widget_bus.h"
#include "hwctl/wing_watch.h"

namespace Hwctl
{

/// Reports what is done to the virtual widgets of a bus: LEDs, faders, lights and the like.
class DeskWatch
{
public:
    DeskWatch(const Desk::WidgetBus& bus, const EventTaker& take);
    DeskWatch(const DeskWatch&) = delete;
    DeskWatch& operator=(const DeskWatch&) = delete;

private:
    QObject m_context;
};

} // namespace Hwctl
