// SPDX-License-Identifier: MIT
#include "os/network_monitor.h"

#include <utility>

#include "os/netlink_source.h"
#include "os/network_log.h"

namespace Standalone
{

AdapterNews::~AdapterNews() = default;
NetworkSource::~NetworkSource() = default;

Os::Log::Context& GetNetworkLogContext()
{
    static auto* const context =
        new Os::Log::Context("NetworkAdapters", nullptr, Os::Log::AllButTrace);
    return *context;
}

NetworkMonitor& NetworkMonitor::Get()
{
    static auto* const monitor = new NetworkMonitor;
    return *monitor;
}

NetworkMonitor::NetworkMonitor() : m_source(std::make_shared<NetlinkSource>()) {}

bool NetworkMonitor::Register(const std::wstring& name, unsigned mask, Callback& callback)
{
    if (!IsAdapterName(name) || (mask & Os::NetworkAdapterMonitor::Event_All) == 0)
        return false;
    const std::lock_guard hold(m_mutex);
    if (!m_thread && !StartThread())
        return false;
    const bool isFirst = !m_callbacks.IsWatched(name);
    if (isFirst)
        m_thread->Forget(name);
    // Before the adapter is read, so that a change during the registration is reported.
    m_callbacks.Add(name, mask & Os::NetworkAdapterMonitor::Event_All, callback);
    if (isFirst)
        m_thread->Watch(name);
    return true;
}

bool NetworkMonitor::Unregister(const std::wstring& name, unsigned mask, const Callback& callback)
{
    const std::lock_guard hold(m_mutex);
    const bool wasRegistered = m_callbacks.Remove(name, mask, callback);
    RetireThread();
    return wasRegistered;
}

void NetworkMonitor::Unregister(const Callback& callback)
{
    AdapterThread::Threads ending;
    {
        const std::lock_guard hold(m_mutex);
        m_callbacks.Remove(callback);
        RetireThread();
    }
    m_callbacks.WaitForCalls(callback);
    {
        const std::lock_guard hold(m_mutex);
        // Not while another callback is being called, for which nobody here may wait.
        if (!AdapterThread::IsCurrent() && !m_callbacks.IsCalling())
            ending = std::exchange(m_retired, {});
    }
}

/// Everything since then will be told.
bool NetworkMonitor::StartThread()
{
    AdapterThread::Subscription subscription{m_source, m_source->Subscribe()};
    if (!subscription.news)
        return false;
    const auto links = m_source->Enumerate();
    if (!links)
        return false;
    m_thread = std::make_shared<AdapterThread>(std::move(subscription), *links, m_callbacks,
                                               std::exchange(m_retired, {}));
    return true;
}

/// Ends the thread when there is nobody to call; waits for nothing.
void NetworkMonitor::RetireThread()
{
    if (!m_thread || !m_callbacks.IsEmpty())
        return;
    m_thread->RequestStop();
    m_retired.push_back(std::exchange(m_thread, nullptr));
}

std::shared_ptr<NetworkSource> NetworkMonitor::GetSource() const
{
    const std::lock_guard hold(m_mutex);
    return m_source;
}

void NetworkMonitor::SetSource(std::shared_ptr<NetworkSource> source)
{
    if (!source)
        source = std::make_shared<NetlinkSource>();
    const std::lock_guard hold(m_mutex);
    m_source = std::move(source);
    if (!m_thread)
        return;
    AdapterThread::Subscription subscription{m_source, m_source->Subscribe()};
    if (subscription.news)
        m_thread->Replace(std::move(subscription));
}

void NetworkMonitor::Flush() const
{
    std::shared_ptr<AdapterThread> thread;
    {
        const std::lock_guard hold(m_mutex);
        thread = m_thread;
    }
    if (thread && !AdapterThread::IsCurrent())
        thread->Flush();
}

void SetNetworkSource(std::shared_ptr<NetworkSource> source)
{
    NetworkMonitor::Get().SetSource(std::move(source));
}

void FlushNetworkMonitor()
{
    NetworkMonitor::Get().Flush();
}

} // namespace Standalone

namespace Os
{

using Standalone::NetworkMonitor;

NetworkAdapterMonitor& NetworkAdapterMonitor::Get()
{
    static auto* const monitor = new NetworkAdapterMonitor;
    return *monitor;
}

// NOLINTNEXTLINE(readability-convert-member-functions-to-static): an operation of the instance
bool NetworkAdapterMonitor::Register(const kel::wstring& name, unsigned mask, Callback* callback)
{
    return callback && NetworkMonitor::Get().Register(name, mask, *callback);
}

// NOLINTNEXTLINE(readability-convert-member-functions-to-static): an operation of the instance
bool NetworkAdapterMonitor::Unregister(const kel::wstring& name, unsigned mask, Callback* callback)
{
    return callback && NetworkMonitor::Get().Unregister(name, mask, *callback);
}

// NOLINTNEXTLINE(readability-convert-member-functions-to-static): an operation of the instance
void NetworkAdapterMonitor::Unregister(Callback* callback)
{
    if (callback)
        NetworkMonitor::Get().Unregister(*callback);
}

NetworkAdapterMonitor::Callback::Callback() = default;

NetworkAdapterMonitor::Callback::~Callback()
{
    NetworkAdapterMonitor::Get().Unregister(this);
}

} // namespace Os
