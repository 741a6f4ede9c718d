// SPDX-License-Identifier: MIT
#include "desk/widget_bus.h"

#include <algorithm>
#include <stdexcept>
#include <utility>

#include "widgets/bus_private.h"

namespace Desk
{

namespace
{

class Connection final : public Standalone::WidgetConnection
{
public:
    explicit Connection(std::shared_ptr<VirtualWidget> widget) : m_widget(std::move(widget))
    {
        m_widget->CountConnection(1);
    }
    ~Connection() override { m_widget->CountConnection(-1); }
    Connection(const Connection&) = delete;
    Connection& operator=(const Connection&) = delete;

    bool Write(const Standalone::Report::Bytes& report) override
    {
        return m_widget->Accept(report);
    }

private:
    const std::shared_ptr<VirtualWidget> m_widget;
};

} // namespace

Standalone::WidgetDescription Describe(const VirtualWidget& widget)
{
    return {widget.GetModel().classId, widget.GetData().path, widget.GetData().serialNumber};
}

void WidgetBus::Private::SetObserver(Standalone::WidgetObserver* itsObserver)
{
    const std::lock_guard hold(mutex);
    observer = itsObserver;
}

std::vector<Standalone::WidgetDescription> WidgetBus::Private::Enumerate()
{
    const std::lock_guard hold(mutex);
    std::vector<Standalone::WidgetDescription> attached;
    for (const auto& widget : widgets)
        if (widget->IsPlugged())
            attached.push_back(Describe(*widget));
    return attached;
}

std::unique_ptr<Standalone::WidgetConnection> WidgetBus::Private::Open(const std::wstring& path)
{
    const std::lock_guard hold(mutex);
    // Also when it was pulled out meanwhile: what it reported before that is still to be read.
    const auto found = byPath.find(path);
    return found == byPath.end() ? nullptr : std::make_unique<Connection>(found->second);
}

void WidgetBus::Private::TellAttached(const VirtualWidget& widget)
{
    const std::lock_guard hold(mutex);
    if (observer)
        observer->Attached(Describe(widget));
}

void WidgetBus::Private::TellDetached(const VirtualWidget& widget)
{
    const std::lock_guard hold(mutex);
    if (observer)
        observer->Detached(widget.GetData().path);
}

void WidgetBus::Private::TellReport(const VirtualWidget& widget,
                                    const Standalone::Report::Bytes& bytes)
{
    const std::lock_guard hold(mutex);
    if (observer)
        observer->Received(widget.GetData().path, bytes);
}

void WidgetBus::Private::WaitIfWaiting() const
{
    if (isWaiting.load(std::memory_order_relaxed))
        Standalone::FlushWidgetDriver();
}

WidgetBus::WidgetBus() : m_private(std::make_shared<Private>())
{
    Standalone::SetWidgetTransport(m_private);
}

WidgetBus::~WidgetBus()
{
    Standalone::SetWidgetTransport(nullptr);
}

VirtualWidget& WidgetBus::Add(const WidgetData& data)
{
    WidgetData complete = data;
    if (!Standalone::FindWingModel(data.model))
        throw std::invalid_argument("there is no widget model '" + data.model + "'");
    std::shared_ptr<VirtualWidget> widget;
    {
        const std::lock_guard hold(m_private->mutex);
        auto& byPath = m_private->byPath;
        for (std::size_t port = byPath.size() + 1; complete.path.empty(); ++port)
            if (!byPath.contains(L"virtual-" + std::to_wstring(port)))
                complete.path = L"virtual-" + std::to_wstring(port);
        if (byPath.contains(complete.path))
            throw std::invalid_argument("two widgets stand at one path");
        widget = std::make_shared<VirtualWidget>(m_private->weak_from_this(), complete);
        byPath.emplace(complete.path, widget);
        m_private->widgets.push_back(widget);
    }
    widget->Plug();
    return *widget;
}

VirtualWidget* WidgetBus::Find(const std::wstring& path) const
{
    const std::lock_guard hold(m_private->mutex);
    const auto found = m_private->byPath.find(path);
    return found == m_private->byPath.end() ? nullptr : found->second.get();
}

std::vector<VirtualWidget*> WidgetBus::GetWidgets() const
{
    const std::lock_guard hold(m_private->mutex);
    std::vector<VirtualWidget*> widgets;
    for (const auto& widget : m_private->widgets)
        widgets.push_back(widget.get());
    return widgets;
}

void WidgetBus::SetWaiting(bool waiting)
{
    m_private->isWaiting.store(waiting, std::memory_order_relaxed);
}

void WidgetBus::Flush()
{
    Standalone::FlushWidgetDriver();
}

} // namespace Desk
