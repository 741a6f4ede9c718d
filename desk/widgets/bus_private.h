// SPDX-License-Identifier: MIT
#pragma once

#include <atomic>
#include <map>
#include <mutex>

#include "desk/virtual_widget.h"
#include "desk/widget_bus.h"
#include "standalone/widget_transport.h"

namespace Desk
{

/// The transport that stands for the bus. It outlives the bus while the driver still knows it.
struct WidgetBus::Private final : Standalone::WidgetTransport,
                                  std::enable_shared_from_this<Private> {
    void SetObserver(Standalone::WidgetObserver* itsObserver) override;
    std::vector<Standalone::WidgetDescription> Enumerate() override;
    std::unique_ptr<Standalone::WidgetConnection> Open(const std::wstring& path) override;

    // What widgets tell the driver. The order in which a widget calls is the order of acting.
    void TellAttached(const VirtualWidget& widget);
    void TellDetached(const VirtualWidget& widget);
    void TellReport(const VirtualWidget& widget, const Standalone::Report::Bytes& bytes);
    void WaitIfWaiting() const;

    std::atomic<bool> isWaiting = true;

    std::mutex mutex; // guards all below
    Standalone::WidgetObserver* observer = nullptr;
    std::map<std::wstring, std::shared_ptr<VirtualWidget>> byPath;
    std::vector<std::shared_ptr<VirtualWidget>> widgets;
};

Standalone::WidgetDescription Describe(const VirtualWidget& widget);

} // namespace Desk
