// SPDX-License-Identifier: MIT
#include "widget/widget_driver.h"

#include <algorithm>
#include <utility>

#include "widget/device_record.h"
#include "widget/signaller_state.h"

namespace Hardware
{

namespace
{

constexpr char SourceFile[] = "widget/widget_driver.cpp";

/// Reports that may wait for the driver's thread. Far beyond what hands can do within a second,
/// and little memory. Attachments and detachments are never refused.
constexpr std::size_t WaitingLimit = 20000;

/// Only the identifiers themselves count, no copies and no others.
bool IsKnownClass(const GUID* classId)
{
    const auto& models = Standalone::GetWingModels();
    return classId && classId->position < models.size() &&
           models[classId->position].classId == classId;
}

} // namespace

WidgetDriver& WidgetDriver::Get()
{
    static WidgetDriver driver;
    return driver;
}

WidgetDriver::WidgetDriver()
    : m_log("WidgetDriver", nullptr, Os::Log::AllButTrace), m_thread("Widget Driver")
{
}

WidgetDriver::~WidgetDriver()
{
    const std::lock_guard holdOthers(m_replacing);
    std::shared_ptr<Standalone::WidgetTransport> transport;
    {
        const std::lock_guard hold(m_mutex);
        transport = std::exchange(m_transport, nullptr);
    }
    if (transport)
        transport->SetObserver(nullptr);
}

void WidgetDriver::SetTransport(std::shared_ptr<Standalone::WidgetTransport> transport)
{
    const std::lock_guard holdOthers(m_replacing);
    std::shared_ptr<Standalone::WidgetTransport> before;
    {
        const std::lock_guard hold(m_mutex);
        before = std::exchange(m_transport, nullptr);
    }
    if (before)
        before->SetObserver(nullptr);
    m_thread.Run([this] { DetachAll(); });
    if (!transport)
        return;
    {
        const std::lock_guard hold(m_mutex);
        m_transport = transport;
    }
    // First the observer, then the list: what is attached in between comes twice and counts once.
    // The list in one turn of the thread: what is detached in between is acted on after it.
    transport->SetObserver(this);
    m_thread.Run([&] {
        for (const Standalone::WidgetDescription& device : transport->Enumerate())
            Attach(device);
    });
}

void WidgetDriver::Flush()
{
    m_thread.Run([] {});
}

void WidgetDriver::Attached(const Standalone::WidgetDescription& device)
{
    m_thread.Post([this, device] { Attach(device); });
}

void WidgetDriver::Detached(const std::wstring& path)
{
    m_thread.Post([this, path] { Detach(path); });
}

void WidgetDriver::Received(const std::wstring& path, Standalone::Report::Bytes report)
{
    const std::size_t waiting = m_thread.CountWaiting();
    if (waiting < WaitingLimit)
        m_thread.Post([this, path, report = std::move(report)] { Receive(path, report); });
    bool isNews = false;
    {
        const std::lock_guard hold(m_mutex);
        // An overflow lasts until half of them are done: one line tells of it, not one for each
        // time that a report more finds room.
        m_isOverflowing = m_isOverflowing && waiting > WaitingLimit / 2;
        isNews = waiting >= WaitingLimit && !std::exchange(m_isOverflowing, true);
    }
    if (isNews)
        OS_LOG(m_log, Os::Log::Error, SourceFile,
               "Reports are lost: " << WaitingLimit << " are waiting");
}

std::set<WidgetMapData> WidgetDriver::GetClassMapData(const GUID& classId) const
{
    const std::lock_guard hold(m_mutex);
    std::set<WidgetMapData> found;
    for (const auto& [path, device] : m_devices)
        if (device.GetClassId() == &classId)
            found.insert(device);
    return found;
}

bool WidgetDriver::RegisterCallback(const GUID& classId, WidgetManager::ClassCallback callback,
                                    void* context)
{
    const Callback entry{&classId, callback, context};
    const std::lock_guard hold(m_mutex);
    if (std::find(m_callbacks.begin(), m_callbacks.end(), entry) != m_callbacks.end())
        return false;
    m_callbacks.push_back(entry);
    return true;
}

bool WidgetDriver::RemoveCallback(const GUID& classId, WidgetManager::ClassCallback callback,
                                  void* context)
{
    const Callback entry{&classId, callback, context};
    std::unique_lock hold(m_mutex);
    const bool wasRegistered = std::erase(m_callbacks, entry) != 0;
    if (!m_thread.IsCurrent())
        m_delivered.wait(hold, [&] {
            return std::find(m_calling.begin(), m_calling.end(), entry) == m_calling.end();
        });
    return wasRegistered;
}

void WidgetDriver::AddSignaller(WidgetSignaller& signaller)
{
    const std::lock_guard hold(m_mutex);
    m_signallers.push_back(&signaller);
}

void WidgetDriver::RemoveSignaller(WidgetSignaller& signaller)
{
    std::unique_lock hold(m_mutex);
    std::erase(m_signallers, &signaller);
    if (m_thread.IsCurrent())
        return;
    m_delivered.wait(hold, [&] {
        return std::find(m_delivering.begin(), m_delivering.end(), &signaller) ==
               m_delivering.end();
    });
}

bool WidgetDriver::Register(WidgetSignaller& signaller, const GUID* classId)
{
    // All on the thread that attaches and detaches, so that no device is reported twice or missed.
    // The state is shared: a slot may destroy the signaller while this waits for its turn.
    return m_thread.Run([this, &signaller, state = signaller.m_state, classId] {
        if (!state->Watch(classId))
            return;
        for (const WidgetMapData& device : GetClassMapData(*classId))
            DeliverTo(&signaller, [&](WidgetSignaller& target, WidgetSignaller::State& watched) {
                Add(target, watched, device);
            });
    });
}

void WidgetDriver::Attach(const Standalone::WidgetDescription& device)
{
    WidgetMapData mapData;
    {
        const std::lock_guard hold(m_mutex);
        if (!m_transport || !IsKnownClass(device.classId) || m_devices.contains(device.path))
            return;
        mapData = WidgetMapData(std::make_shared<DeviceRecord>(device, m_transport));
        m_devices.emplace(device.path, mapData);
    }
    OS_LOG(m_log, Os::Log::Trace, SourceFile,
           "Attached " << device.classId->name << " at " << device.path);
    Deliver([&](WidgetSignaller& signaller, WidgetSignaller::State& state) {
        // Known already: a slot before this one registered the class and was told.
        if (state.Find(mapData) == -1)
            Add(signaller, state, mapData);
    });
    CallBack(mapData, WidgetEvent_Added);
}

void WidgetDriver::Detach(const std::wstring& path)
{
    WidgetMapData mapData;
    {
        const std::lock_guard hold(m_mutex);
        const auto found = m_devices.find(path);
        if (found == m_devices.end())
            return;
        mapData = found->second;
        m_devices.erase(found);
    }
    OS_LOG(m_log, Os::Log::Trace, SourceFile,
           "Detached " << mapData.GetClassId()->name << " from " << path);
    m_unreadable.Detached(path);
    mapData.GetDevice()->Detach();
    Deliver([&](WidgetSignaller& signaller, WidgetSignaller::State& state) {
        Remove(signaller, state, mapData);
    });
    CallBack(mapData, WidgetEvent_Removed);
}

void WidgetDriver::DetachAll()
{
    std::vector<std::wstring> paths;
    {
        const std::lock_guard hold(m_mutex);
        for (const auto& [path, device] : m_devices)
            paths.push_back(path);
    }
    for (const std::wstring& path : paths)
        Detach(path);
}

void WidgetDriver::Receive(const std::wstring& path, const Standalone::Report::Bytes& report)
{
    const WidgetMapData mapData = FindDevice(path);
    if (!mapData.GetDevice())
        return;
    auto input = Standalone::Report::DecodeInput(report);
    if (!input) {
        m_unreadable.Add(path, report);
        return;
    }
    mapData.GetDevice()->Accept(std::move(*input));
    Deliver([&](WidgetSignaller& signaller, WidgetSignaller::State& state) {
        Read(signaller, state, mapData);
    });
}

WidgetMapData WidgetDriver::FindDevice(const std::wstring& path) const
{
    const std::lock_guard hold(m_mutex);
    const auto found = m_devices.find(path);
    return found == m_devices.end() ? WidgetMapData() : found->second;
}

void WidgetDriver::CallBack(const WidgetMapData& device, WidgetEvent event)
{
    std::vector<Callback> callbacks;
    {
        const std::lock_guard hold(m_mutex);
        callbacks = m_callbacks;
    }
    for (const Callback& callback : callbacks)
        if (callback.classId == device.GetClassId())
            CallOne(callback, device, event);
}

void WidgetDriver::CallOne(const Callback& callback, const WidgetMapData& device, WidgetEvent event)
{
    {
        // Asked each time: one that another has removed is not called any more.
        const std::lock_guard hold(m_mutex);
        if (std::find(m_callbacks.begin(), m_callbacks.end(), callback) == m_callbacks.end())
            return;
        m_calling.push_back(callback);
    }
    callback.function(device, event, callback.context);
    {
        const std::lock_guard hold(m_mutex);
        m_calling.pop_back();
    }
    m_delivered.notify_all();
}

void WidgetDriver::Deliver(const Delivery& delivery)
{
    std::vector<WidgetSignaller*> signallers;
    {
        const std::lock_guard hold(m_mutex);
        signallers = m_signallers;
    }
    for (WidgetSignaller* const signaller : signallers)
        DeliverTo(signaller, delivery);
}

void WidgetDriver::DeliverTo(WidgetSignaller* signaller, const Delivery& delivery)
{
    std::shared_ptr<WidgetSignaller::State> state;
    {
        const std::lock_guard hold(m_mutex);
        if (std::find(m_signallers.begin(), m_signallers.end(), signaller) == m_signallers.end())
            return;
        state = signaller->m_state;
        m_delivering.push_back(signaller);
    }
    delivery(*signaller, *state);
    {
        const std::lock_guard hold(m_mutex);
        m_delivering.pop_back();
    }
    m_delivered.notify_all();
}

void WidgetDriver::Add(WidgetSignaller& signaller, WidgetSignaller::State& state,
                       const WidgetMapData& device)
{
    if (!state.Counts(device.GetClassId()))
        return;
    state.Keep(device);
    if (!state.Watches(device.GetClassId()))
        return;
    if (state.autoRead.load(std::memory_order_relaxed))
        device.GetDevice()->StartReader();
    Q_EMIT signaller.widgetAdded(device);
}

void WidgetDriver::Remove(WidgetSignaller& signaller, WidgetSignaller::State& state,
                          const WidgetMapData& device)
{
    // The index is dropped behind the signal: its slots still ask for it.
    // Unknown: a slot before this one registered the class, too late to be told.
    if (state.Watches(device.GetClassId()) && state.Find(device) != -1)
        Q_EMIT signaller.widgetRemoved(device);
    state.Drop(device);
}

void WidgetDriver::Read(WidgetSignaller& signaller, WidgetSignaller::State& state,
                        const WidgetMapData& device)
{
    if (!state.reader || !state.autoRead.load(std::memory_order_relaxed) ||
        !state.Watches(device.GetClassId()) || !device.GetDevice()->IsReading())
        return;
    const std::unique_ptr<UmWidget::Event> event = state.reader(device, state.context);
    Q_EMIT signaller.widgetRead({device, event.get()});
}

} // namespace Hardware

namespace Standalone
{

WidgetConnection::~WidgetConnection() = default;
WidgetTransport::~WidgetTransport() = default;

void SetWidgetTransport(std::shared_ptr<WidgetTransport> transport)
{
    Hardware::WidgetDriver::Get().SetTransport(std::move(transport));
}

void FlushWidgetDriver()
{
    Hardware::WidgetDriver::Get().Flush();
}

} // namespace Standalone
