// SPDX-License-Identifier: MIT
#include "os/network_adapter.h"

#include <utility>

#include "os/network_monitor.h"

namespace Os
{

NetworkAdapter::NetworkAdapter() = default;

NetworkAdapter::NetworkAdapter(kel::wstring name, State state, const Statistics& statistics,
                               kel::wstring hardwareAddress)
    : m_name(std::move(name)), m_hardwareAddress(std::move(hardwareAddress)), m_state(state),
      m_statistics(statistics)
{
}

NetworkAdapter NetworkAdapter::ReadSettings(const kel::wstring& name)
{
    const Standalone::AdapterFacts facts =
        Standalone::NetworkMonitor::Get().GetSource()->Read(name);
    const bool isThere = facts.link.index != 0;
    return {isThere ? facts.link.name : kel::wstring(), facts.link.state, facts.statistics,
            facts.link.hardwareAddress};
}

} // namespace Os
