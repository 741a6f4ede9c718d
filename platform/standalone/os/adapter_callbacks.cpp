// SPDX-License-Identifier: MIT
#include "os/adapter_callbacks.h"

#include <algorithm>

namespace Standalone
{

void AdapterCallbacks::Add(const std::wstring& name, unsigned mask, Callback& callback)
{
    const std::lock_guard hold(m_mutex);
    const auto found = std::find_if(
        m_registrations.begin(), m_registrations.end(), [&](const Registration& registration) {
            return registration.name == name && registration.callback == &callback;
        });
    if (found == m_registrations.end())
        m_registrations.push_back({name, mask, &callback});
    else
        found->mask |= mask;
}

bool AdapterCallbacks::Remove(const std::wstring& name, unsigned mask, const Callback& callback)
{
    const std::lock_guard hold(m_mutex);
    bool wasThere = false;
    for (Registration& registration : m_registrations)
        if (registration.name == name && registration.callback == &callback) {
            wasThere = (registration.mask & mask) != 0;
            registration.mask &= ~mask;
        }
    std::erase_if(m_registrations,
                  [](const Registration& registration) { return registration.mask == 0; });
    return wasThere;
}

void AdapterCallbacks::Remove(const Callback& callback)
{
    const std::lock_guard hold(m_mutex);
    std::erase_if(m_registrations, [&callback](const Registration& registration) {
        return registration.callback == &callback;
    });
}

void AdapterCallbacks::WaitForCalls(const Callback& callback)
{
    std::unique_lock hold(m_mutex);
    m_returned.wait(hold, [this, &callback] {
        return std::none_of(m_running.begin(), m_running.end(), [&callback](const Running& call) {
            return call.callback == &callback && call.thread != std::this_thread::get_id();
        });
    });
}

bool AdapterCallbacks::IsEmpty() const
{
    const std::lock_guard hold(m_mutex);
    return m_registrations.empty();
}

bool AdapterCallbacks::IsWatched(const std::wstring& name) const
{
    const std::lock_guard hold(m_mutex);
    return std::any_of(
        m_registrations.begin(), m_registrations.end(),
        [&name](const Registration& registration) { return registration.name == name; });
}

std::set<std::wstring> AdapterCallbacks::GetNames() const
{
    const std::lock_guard hold(m_mutex);
    std::set<std::wstring> names;
    for (const Registration& registration : m_registrations)
        names.insert(registration.name);
    return names;
}

bool AdapterCallbacks::IsCalling() const
{
    const std::lock_guard hold(m_mutex);
    return !m_running.empty();
}

void AdapterCallbacks::Call(const Os::NetworkAdapter& adapter, Os::NetworkAdapter::State previous,
                            unsigned events, const std::atomic<bool>& isStopping)
{
    std::vector<Callback*> callbacks;
    {
        const std::lock_guard hold(m_mutex);
        for (const Registration& registration : m_registrations)
            if (registration.name == adapter.GetName())
                callbacks.push_back(registration.callback);
    }
    for (Callback* const callback : callbacks)
        if (Begin(adapter.GetName(), *callback, events, isStopping)) {
            callback->Changed(adapter, previous, static_cast<int>(events));
            End(*callback);
        }
}

/// Begins a call of one that still wants it; from then on its removal waits.
bool AdapterCallbacks::Begin(const std::wstring& name, Callback& callback, unsigned events,
                             const std::atomic<bool>& isStopping)
{
    const std::lock_guard hold(m_mutex);
    // Looked at under the lock: who is registered after a stop is not for the thread that stops.
    if (isStopping.load(std::memory_order_relaxed))
        return false;
    const bool isWanted =
        std::any_of(m_registrations.begin(), m_registrations.end(), [&](const Registration& each) {
            return each.name == name && each.callback == &callback && (each.mask & events) != 0;
        });
    if (isWanted)
        m_running.push_back({&callback, std::this_thread::get_id()});
    return isWanted;
}

void AdapterCallbacks::End(const Callback& callback)
{
    const std::lock_guard hold(m_mutex);
    const auto call = std::find_if(m_running.begin(), m_running.end(), [&](const Running& each) {
        return each.callback == &callback && each.thread == std::this_thread::get_id();
    });
    m_running.erase(call);
    m_returned.notify_all();
}

} // namespace Standalone
