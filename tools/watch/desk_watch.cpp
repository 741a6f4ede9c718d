// SPDX-License-Identifier: MIT
#include "watch/desk_watch.h"

#include <utility>

namespace Tools
{

namespace
{

using Desk::VirtualWidget;

std::string GetPath(const VirtualWidget& widget)
{
    const std::wstring& path = widget.GetData().path;
    return {path.begin(), path.end()};
}

std::string DescribeLink(bool isActive, bool isGigabit)
{
    return std::string(isActive ? "up" : "off") + (isGigabit ? ", gigabit" : "");
}

} // namespace

std::string DescribeLinkLights(const VirtualWidget& board)
{
    const Standalone::Report::SetLinkLights lights = board.GetLinkLights();
    return "console " + DescribeLink(lights.consoleActive != 0, lights.consoleGigabit != 0) +
           "; fixture " + DescribeLink(lights.fixtureActive != 0, lights.fixtureGigabit != 0);
}

nlohmann::json GetLinkLightFacts(const VirtualWidget& board)
{
    const Standalone::Report::SetLinkLights lights = board.GetLinkLights();
    return {{"consoleActive", lights.consoleActive != 0},
            {"consoleGigabit", lights.consoleGigabit != 0},
            {"fixtureActive", lights.fixtureActive != 0},
            {"fixtureGigabit", lights.fixtureGigabit != 0}};
}

DeskWatch::DeskWatch(const Desk::WidgetBus& bus, const EventTaker& take)
{
    for (VirtualWidget* const widget : bus.GetWidgets()) {
        const auto report = [take, path = GetPath(*widget)](const char* signal,
                                                            const std::string& text) {
            take({0, "desk " + path, signal, text, {{"path", path}}});
        };
        const auto on = [&](auto signal, auto slot) {
            QObject::connect(widget, signal, &m_context, slot, Qt::DirectConnection);
        };
        on(&VirtualWidget::ledChanged, [report](unsigned short led, unsigned char state) {
            report("ledChanged", "LED " + std::to_string(led) + " set to " + std::to_string(state));
        });
        on(&VirtualWidget::allLedsChanged, [report](unsigned char state) {
            report("allLedsChanged", "all LEDs set to " + std::to_string(state));
        });
        on(&VirtualWidget::faderMoved, [report](unsigned short fader, unsigned char position) {
            report("faderMoved", "motor fader " + std::to_string(fader) + " moved to " +
                                     std::to_string(position));
        });
        on(&VirtualWidget::beaconed, [report](unsigned char section) {
            report("beaconed", "beacon, section " + std::to_string(section));
        });
        on(&VirtualWidget::linkLightsChanged, [take, widget, path = GetPath(*widget)] {
            nlohmann::json facts = GetLinkLightFacts(*widget);
            facts["path"] = path;
            take({0, "desk " + path, "linkLightsChanged",
                  "link lights: " + DescribeLinkLights(*widget), std::move(facts)});
        });
        on(&VirtualWidget::cellsWritten, [report] { report("cellsWritten", "texts written"); });
    }
}

} // namespace Tools
