// SPDX-License-Identifier: MIT
#pragma once

#include <mutex>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "os/network_adapter_monitor.h"

namespace TestSupport
{

inline const char* GetStateText(int state)
{
    const char* const texts[] = {"unknown", "absent", "down", "up"};
    return state >= 0 && state <= 3 ? texts[state] : "?";
}

/// Takes down each call as a text such as "eth0 up->down 1": name, states before and now, events.
class NetworkRecorder : public Os::NetworkAdapterMonitor::Callback
{
public:
    NetworkRecorder() = default;
    ~NetworkRecorder() override { Os::NetworkAdapterMonitor::Get().Unregister(this); }

    void Changed(const Os::NetworkAdapter& adapter, const Os::NetworkAdapter::State& previous,
                 int events) override
    {
        const std::wstring& name = adapter.GetName();
        std::string text(name.begin(), name.end());
        text += std::string(" ") + GetStateText(previous) + "->" +
                GetStateText(adapter.GetState()) + " " + std::to_string(events);
        const std::lock_guard hold(m_mutex);
        m_calls.push_back(text);
        m_thread = std::this_thread::get_id();
        m_last = adapter;
    }

    std::vector<std::string> GetCalls() const
    {
        const std::lock_guard hold(m_mutex);
        return m_calls;
    }
    std::vector<std::string> Take()
    {
        const std::lock_guard hold(m_mutex);
        return std::exchange(m_calls, {});
    }
    std::thread::id GetThread() const
    {
        const std::lock_guard hold(m_mutex);
        return m_thread;
    }
    Os::NetworkAdapter GetLast() const
    {
        const std::lock_guard hold(m_mutex);
        return m_last;
    }

private:
    mutable std::mutex m_mutex;
    std::vector<std::string> m_calls;
    std::thread::id m_thread;
    Os::NetworkAdapter m_last;
};

} // namespace TestSupport
