// SPDX-License-Identifier: MIT
#pragma once

#include <atomic>
#include <condition_variable>
#include <mutex>
#include <set>
#include <string>
#include <thread>
#include <vector>

#include "os/network_adapter_monitor.h"

namespace Standalone
{

/// Who is told of which adapter, and who is being told. Any thread may call any operation.
class AdapterCallbacks
{
public:
    typedef Os::NetworkAdapterMonitor::Callback Callback;

    void Add(const std::wstring& name, unsigned mask, Callback& callback);
    /// Waits for nothing. False when nothing of it was there.
    bool Remove(const std::wstring& name, unsigned mask, const Callback& callback);
    void Remove(const Callback& callback);
    /// Waits for calls of one that other threads make.
    void WaitForCalls(const Callback& callback);

    bool IsEmpty() const;
    bool IsWatched(const std::wstring& name) const;
    /// Names with a registration, sorted.
    std::set<std::wstring> GetNames() const;
    /// Whether a call is running.
    bool IsCalling() const;

    /// Calls everyone who wants to know, in the order of their registration, with no lock held. One
    /// that is removed meanwhile is not called; once @p isStopping nobody is.
    void Call(const Os::NetworkAdapter& adapter, Os::NetworkAdapter::State previous,
              unsigned events, const std::atomic<bool>& isStopping);

private:
    struct Registration {
        std::wstring name;
        unsigned mask;
        Callback* callback;
    };
    struct Running {
        const Callback* callback = nullptr;
        std::thread::id thread;
    };

    bool Begin(const std::wstring& name, Callback& callback, unsigned events,
               const std::atomic<bool>& isStopping);
    void End(const Callback& callback);

    mutable std::mutex m_mutex; // guards all below; never held over a call
    std::condition_variable m_returned;
    std::vector<Registration> m_registrations; // one for each name and callback
    std::vector<Running> m_running;
};

} // namespace Standalone
