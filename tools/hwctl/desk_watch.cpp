// SPDX-License-Identifier: MIT
#include "hwctl/desk_watch.h"

#include "desk/virtual_widget.h"

namespace Hwctl
{

namespace
{

using Desk::VirtualWidget;

std::string GetPath(const VirtualWidget& widget)
{
    const std::wstring& path = widget.GetData().path;
    return {path.begin(), path.end()};
}

} // namespace

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
        on(&VirtualWidget::cellsWritten, [report] { report("cellsWritten", "texts written"); });
    }
}

} // namespace Hwctl
