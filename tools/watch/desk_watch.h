// SPDX-License-Identifier: MIT
#pragma once

#include <QObject>

#include "desk/virtual_widget.h"
#include "desk/widget_bus.h"
#include "watch/event.h"

namespace Tools
{

/// What the link LEDs of an LTC board show, such as "console up, gigabit; fixture off".
std::string DescribeLinkLights(const Desk::VirtualWidget& board);
nlohmann::json GetLinkLightFacts(const Desk::VirtualWidget& board);

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

} // namespace Tools
