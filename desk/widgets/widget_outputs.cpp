// SPDX-License-Identifier: MIT
#include "widgets/widget_outputs.h"

#include <cstddef>
#include <variant>

namespace Desk
{

namespace Report = Standalone::Report;

namespace
{

typedef SignalQueue::Signal Signal;

/// What each report does to the outputs.
struct Applier {
    WidgetOutputs& outputs;
    VirtualWidget& widget;

    Signal operator()(const Report::SetLed& report) const
    {
        outputs.leds[report.index] = report.state;
        return [&to = widget, report] { Q_EMIT to.ledChanged(report.index, report.state); };
    }
    Signal operator()(const Report::SetAllLed& report) const
    {
        for (std::size_t led = 0; led < widget.GetModel().leds.size(); ++led)
            outputs.leds[static_cast<std::uint16_t>(led)] = report.state;
        return [&to = widget, report] { Q_EMIT to.allLedsChanged(report.state); };
    }
    Signal operator()(const Report::SetDimmer& report) const
    {
        outputs.dimmers[report.channel] = report.level;
        return [&to = widget, report] { Q_EMIT to.dimmerChanged(report.channel, report.level); };
    }
    Signal operator()(const Report::SetFader& report) const
    {
        outputs.motorFaders[report.index] = report.position;
        return [&to = widget, report] { Q_EMIT to.faderMoved(report.index, report.position); };
    }
    Signal operator()(const Report::SetLcdColor& report) const { return TellLcd(report.lcd); }
    Signal operator()(const Report::SetLcdBrightness& report) const
    {
        outputs.lcdBrightness[report.lcd] = report.brightness;
        return TellLcd(report.lcd);
    }
    Signal operator()(const Report::SetAllLcdBrightness& report) const
    {
        outputs.allLcds = report.brightness;
        outputs.lcdBrightness.clear();
        return [&to = widget, report] { Q_EMIT to.allLcdsChanged(report.brightness); };
    }
    Signal operator()(const Report::SetLcdText& report) const
    {
        outputs.lcdTexts[report.lcd].assign(report.text.begin(), report.text.end());
        return TellLcd(report.lcd);
    }
    Signal operator()(const Report::SetLcdFlash& report) const { return TellLcd(report.lcd); }
    Signal operator()(const Report::SetHash&) const { return {}; }
    Signal operator()(const Report::SetSleep& report) const
    {
        outputs.isAsleep = report.sleep != 0;
        return [&to = widget, report] { Q_EMIT to.sleepChanged(report.sleep != 0); };
    }
    Signal operator()(const Report::Beacon& report) const
    {
        return [&to = widget, report] { Q_EMIT to.beaconed(report.section); };
    }
    Signal operator()(const Report::Refresh&) const { return {}; }
    Signal operator()(const Report::WriteCells& report) const
    {
        outputs.cells = report;
        return [&to = widget] { Q_EMIT to.cellsWritten(); };
    }
    Signal operator()(const Report::SetLinkLights& report) const
    {
        outputs.linkLights = report;
        return [&to = widget] { Q_EMIT to.linkLightsChanged(); };
    }

    Signal TellLcd(std::uint16_t lcd) const
    {
        return [&to = widget, lcd] { Q_EMIT to.lcdChanged(lcd); };
    }
};

} // namespace

SignalQueue::Signal Apply(const Report::Output& report, WidgetOutputs& outputs,
                          VirtualWidget& widget)
{
    return std::visit(Applier{outputs, widget}, report);
}

} // namespace Desk
