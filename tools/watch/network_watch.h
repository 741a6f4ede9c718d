// SPDX-License-Identifier: MIT
#pragma once

#include <nlohmann/json.hpp>
#include <optional>

#include "os/network_adapter_monitor.h"
#include "os/platform.h"
#include "watch/event.h"

namespace Tools
{

/// Watches the adapters of the console's networks, and works the link lights where the console has
/// some, as its application does.
class NetworkWatch
{
public:
    /// @param take called with the state of the moment, on the thread that starts, and with each
    ///             change, on the adapter monitor's thread
    explicit NetworkWatch(const EventTaker& take);
    ~NetworkWatch();
    NetworkWatch(const NetworkWatch&) = delete;
    NetworkWatch& operator=(const NetworkWatch&) = delete;

    void Start();
    void Stop();
    /// Whether the console has link lights. After the start.
    bool HasLights() const { return m_hasLights; }

private:
    class Network;

    std::vector<std::unique_ptr<Network>> m_networks;
    bool m_isStarted = false;
    bool m_hasLights = false;
};

/// The adapter of a network as JSON: network, adapter, state and speed.
nlohmann::json DescribeNetwork(Os::Platform::Protocol protocol, const Os::NetworkAdapter& adapter);

/// The adapter that serves a network; none when it was not given one.
std::optional<Os::NetworkAdapter> FindNetworkAdapter(Os::Platform::Protocol protocol);

} // namespace Tools
