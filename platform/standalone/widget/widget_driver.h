// SPDX-License-Identifier: MIT
#pragma once

#include <condition_variable>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <set>
#include <string>
#include <vector>

#include "os/log.h"
#include "standalone/widget_transport.h"
#include "widget/task_thread.h"
#include "widget/unreadable_reports.h"
#include "widget/widget_manager.h"
#include "widget/widget_signaller.h"

namespace Hardware
{

/// Keeps the attached devices and tells signallers and callbacks of them, all on one thread of its
/// own and in the order in which the transport told it. One for the process. Any thread may call
/// any operation.
class WidgetDriver final : public Standalone::WidgetObserver
{
public:
    /// Made on first use; whatever uses it from its constructor on is destroyed before it.
    static WidgetDriver& Get();

    WidgetDriver();
    virtual ~WidgetDriver();
    WidgetDriver(const WidgetDriver&) = delete;
    WidgetDriver& operator=(const WidgetDriver&) = delete;

    void SetTransport(std::shared_ptr<Standalone::WidgetTransport> transport);
    void Flush();

    void Attached(const Standalone::WidgetDescription& device) override;
    void Detached(const std::wstring& path) override;
    void Received(const std::wstring& path, Standalone::Report::Bytes report) override;

    std::set<WidgetMapData> GetClassMapData(const GUID& classId) const;
    bool RegisterCallback(const GUID& classId, WidgetManager::ClassCallback callback,
                          void* context);
    /// Waits for a call that is running, unless on the driver's thread.
    bool RemoveCallback(const GUID& classId, WidgetManager::ClassCallback callback, void* context);

    void AddSignaller(WidgetSignaller& signaller);
    /// Waits for a signal that it is raising, unless on the driver's thread.
    void RemoveSignaller(WidgetSignaller& signaller);
    /// Has a signaller watch a class, and reports the attached widgets of it; nothing when it
    /// watches the class already. False when the driver is ending.
    bool Register(WidgetSignaller& signaller, const GUID* classId);

private:
    struct Callback {
        const GUID* classId;
        WidgetManager::ClassCallback function;
        void* context;
        bool operator==(const Callback&) const = default;
    };
    typedef std::function<void(WidgetSignaller&, WidgetSignaller::State&)> Delivery;

    // On the driver's thread.
    void Attach(const Standalone::WidgetDescription& device);
    void Detach(const std::wstring& path);
    void DetachAll();
    void Receive(const std::wstring& path, const Standalone::Report::Bytes& report);
    WidgetMapData FindDevice(const std::wstring& path) const;
    void CallBack(const WidgetMapData& device, WidgetEvent event);
    /// Calls one if it is still registered; its removal waits for that.
    void CallOne(const Callback& callback, const WidgetMapData& device, WidgetEvent event);
    /// Does something with every signaller there is, or with one, that is not destroyed by then.
    void Deliver(const Delivery& delivery);
    void DeliverTo(WidgetSignaller* signaller, const Delivery& delivery);
    static void Add(WidgetSignaller& signaller, WidgetSignaller::State& state,
                    const WidgetMapData& device);
    static void Remove(WidgetSignaller& signaller, WidgetSignaller::State& state,
                       const WidgetMapData& device);
    static void Read(WidgetSignaller& signaller, WidgetSignaller::State& state,
                     const WidgetMapData& device);

    Os::Log::Context m_log;
    Standalone::UnreadableReports m_unreadable{m_log}; // the driver's thread only

    std::mutex m_replacing;     // one transport at a time; never taken on the driver's thread
    mutable std::mutex m_mutex; // guards all below but the thread; never held over a slot
    std::condition_variable m_delivered;
    std::shared_ptr<Standalone::WidgetTransport> m_transport;
    std::map<std::wstring, WidgetMapData> m_devices; // by path
    std::vector<WidgetSignaller*> m_signallers;      // in the order they were made
    std::vector<WidgetSignaller*> m_delivering;      // raising a signal now, innermost last
    std::vector<Callback> m_callbacks;
    std::vector<Callback> m_calling; // running now, innermost last
    bool m_isOverflowing = false;

    Standalone::TaskThread m_thread; // last: its tasks use all the others
};

} // namespace Hardware
