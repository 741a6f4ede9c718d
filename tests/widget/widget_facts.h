// SPDX-License-Identifier: MIT
#pragma once

#include <unistd.h>

#include <memory>
#include <string>
#include <vector>

#include "desk/virtual_widget.h"
#include "desk/widget_bus.h"
#include "os/event.h"
#include "standalone/widget_transport.h"
#include "support/process_facts.h"
#include "widget/widget_manager.h"

namespace TestSupport
{

/// True on the thread of the widget driver.
inline bool IsDriverThread()
{
    return FindThreads("Widget Driver") == std::vector<int>{gettid()};
}

/// The driver's record of a widget that is plugged; one that stands for nothing otherwise.
inline Hardware::WidgetMapData GetMapData(const Desk::VirtualWidget& widget)
{
    for (const auto& mapData : Hardware::WidgetManager::GetClassMapData(*widget.GetModel().classId))
        if (mapData.GetDevicePath() == widget.GetData().path)
            return mapData;
    return {};
}

/// An object for a widget that is plugged.
template <class Widget> std::unique_ptr<Widget> Open(const Desk::VirtualWidget& widget)
{
    return std::make_unique<Widget>(GetMapData(widget));
}

/// Holds up the driver's thread; the bus waits for nothing from then on.
class DriverHold
{
public:
    explicit DriverHold(Desk::WidgetBus& bus)
    {
        Hardware::WidgetManager::RegisterClassCallback(GUID_DEVINTERFACE_QRTUMLTCD, &Wait, this);
        bus.SetWaiting(false);
        bus.Add({"LtcWidget", {}, L"holds up the driver"});
        m_begun.Wait();
    }
    ~DriverHold() { End(); }
    DriverHold(const DriverHold&) = delete;
    DriverHold& operator=(const DriverHold&) = delete;

    /// Lets the thread go on and waits until it has acted on everything.
    void End()
    {
        m_gate.Set(); // first: the removal waits for a call that is running
        Hardware::WidgetManager::RemoveClassCallback(GUID_DEVINTERFACE_QRTUMLTCD, &Wait, this);
        Standalone::FlushWidgetDriver();
    }

private:
    static void Wait(const Hardware::WidgetMapData&, Hardware::WidgetEvent, void* self)
    {
        static_cast<DriverHold*>(self)->m_begun.Set();
        static_cast<DriverHold*>(self)->m_gate.Wait();
    }

    Os::Event m_begun, m_gate;
};

} // namespace TestSupport
