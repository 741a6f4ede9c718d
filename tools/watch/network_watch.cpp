// SPDX-License-Identifier: MIT
#include "watch/network_watch.h"

#include <mutex>
#include <stdexcept>
#include <utility>

#include "common/network_text.h"
#include "hardware/linklights.h"
#include "standalone/network_source.h"

namespace Tools
{

using Os::NetworkAdapter;
using Os::NetworkAdapterMonitor;
using Os::Platform;

namespace
{

bool IsSame(const NetworkAdapter& one, const NetworkAdapter& other)
{
    return one.GetName() == other.GetName() && one.GetState() == other.GetState() &&
           one.GetStatistics().speed == other.GetStatistics().speed &&
           one.GetHardwareAddress() == other.GetHardwareAddress();
}

} // namespace

/// One of the console's networks.
class NetworkWatch::Network final : public NetworkAdapterMonitor::Callback
{
public:
    Network(Platform::Protocol protocol, EventTaker take)
        : m_protocol(protocol), m_take(std::move(take))
    {
    }
    ~Network() override { Stop(); }
    Network(const Network&) = delete;
    Network& operator=(const Network&) = delete;

    void Start()
    {
        // As the link lights do: the first that can be watched.
        const std::vector<NetworkAdapter> adapters = Platform::GetAdapterList(m_protocol);
        for (const NetworkAdapter& adapter : adapters)
            if (NetworkAdapterMonitor::Get().Register(adapter.GetName(),
                                                      NetworkAdapterMonitor::Event_All, this)) {
                ReportFirst(adapter.GetName());
                return;
            }
        if (!adapters.empty())
            throw std::runtime_error(std::string("the adapters of the ") +
                                     GetNetworkName(m_protocol) + " network cannot be watched");
    }
    void Stop() { NetworkAdapterMonitor::Get().Unregister(this); }

    void Changed(const NetworkAdapter& adapter, const NetworkAdapter::State&, int) override
    {
        const std::lock_guard hold(m_mutex);
        const bool isKnown = m_first && IsSame(*m_first, adapter);
        m_first.reset();
        m_hasReported = true;
        // What the first reading has seen already is reported by a change once more.
        if (!isKnown)
            Report(adapter);
    }

private:
    /// Asks only now that changes are reported: what changed between a reading and the registration
    /// nobody would report.
    void ReportFirst(const kel::wstring& name)
    {
        const std::lock_guard hold(m_mutex);
        if (m_hasReported)
            return; // a change that came already
        NetworkAdapter adapter = NetworkAdapter::ReadSettings(name);
        // One that is not there has no name of its own.
        if (adapter.GetName().empty())
            adapter = NetworkAdapter(name, NetworkAdapter::State_Absent, {}, {});
        m_first = adapter;
        Report(adapter);
    }

    /// The caller holds the mutex, so that no older news comes after newer ones.
    void Report(const NetworkAdapter& adapter) const
    {
        m_take({0, std::string("network ") + GetNetworkName(m_protocol), "Changed",
                DescribeAdapter(adapter), DescribeNetwork(m_protocol, adapter)});
    }

    const Platform::Protocol m_protocol;
    const EventTaker m_take;
    std::mutex m_mutex;
    bool m_hasReported = false;            // a change, guarded by m_mutex
    std::optional<NetworkAdapter> m_first; // as read at the start, guarded by m_mutex
};

NetworkWatch::NetworkWatch(const EventTaker& take)
{
    for (const Platform::Protocol protocol :
         {Platform::Protocol_Console, Platform::Protocol_Fixture})
        m_networks.push_back(std::make_unique<Network>(protocol, take));
}

NetworkWatch::~NetworkWatch()
{
    Stop();
}

void NetworkWatch::Start()
{
    m_isStarted = true;
    for (const auto& network : m_networks)
        network->Start();
    m_hasLights = Hardware::LinkLights::Get().Start();
}

void NetworkWatch::Stop()
{
    if (!std::exchange(m_isStarted, false))
        return;
    if (m_hasLights)
        Hardware::LinkLights::Get().Stop();
    for (const auto& network : m_networks)
        network->Stop();
}

nlohmann::json DescribeNetwork(Platform::Protocol protocol, const NetworkAdapter& adapter)
{
    return {{"network", GetNetworkName(protocol)},
            {"adapter", Standalone::NarrowAdapterName(adapter.GetName())},
            {"state", GetStateName(adapter.GetState())},
            {"speed", adapter.GetStatistics().speed}};
}

std::optional<NetworkAdapter> FindNetworkAdapter(Platform::Protocol protocol)
{
    const std::vector<NetworkAdapter> adapters = Platform::GetAdapterList(protocol);
    if (adapters.empty())
        return std::nullopt;
    return adapters.front();
}

} // namespace Tools
