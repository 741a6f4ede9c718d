// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "desk/virtual_widget.h"
#include "widgets/signal_queue.h"

namespace Desk
{

/// What the driver set on a widget. The widget forgets it when it loses its power.
struct WidgetOutputs {
    std::map<std::uint16_t, int> leds;
    std::map<std::uint16_t, int> motorFaders;
    std::map<std::uint8_t, int> dimmers;
    std::map<std::uint16_t, int> lcdBrightness;
    int allLcds = -1;
    std::map<std::uint16_t, std::u32string> lcdTexts;
    Standalone::Report::WriteCells cells;
    bool isAsleep = false;
    Standalone::Report::SetLinkLights linkLights;
};

/// Does to @p outputs what @p report says. Returns the signal of @p widget that reports it; nothing
/// where the report changes no output.
SignalQueue::Signal Apply(const Standalone::Report::Output& report, WidgetOutputs& outputs,
                          VirtualWidget& widget);

} // namespace Desk
