// SPDX-License-Identifier: MIT

// What the monitor looks for by itself, since nobody signals that it is missing or comes.

#include <unistd.h>

#include <set>
#include <utility>

#include "common/network_text.h"
#include "common/port_name.h"
#include "hardware/wing_mapper.h"
#include "hwctl/monitor.h"
#include "os/platform.h"
#include "watch/cd_facts.h"
#include "widget/widget_manager.h"

namespace Hwctl
{

namespace
{

namespace Midi = Hardware::Midi;

/// Lists the MIDI ports.
constexpr char SequencerPath[] = "/dev/sequencer";

} // namespace

/// Takes what nobody signals.
void Monitor::LookForDevices()
{
    if (m_options.midi)
        LookForPorts(false);
    if (m_isCdOn && access(Tools::CdDrivePath, F_OK) != 0) {
        // One that comes back is another, which has to be opened anew.
        m_isCdOn = false;
        m_cd->Stop();
        m_cdProblem.clear();
    }
    if (m_cd && !m_isCdOn)
        StartCd();
}

/// Receives from ports that have come, unless some were named, and reports those that come and go.
void Monitor::LookForPorts(bool isStart)
{
    std::set<std::string> present;
    for (const std::wstring& name : Midi::Device::GetInputs())
        present.insert(Tools::NarrowPortName(name));
    for (auto& [name, isThere] : m_ports)
        if (const bool wasThere = std::exchange(isThere, present.contains(name));
            wasThere != isThere && !isStart)
            ReportPresence("midi " + name, isThere, isThere ? "is there" : "is gone");
    if (!m_options.ports.empty())
        return;
    for (const std::string& name : present)
        if (m_ports.try_emplace(name, true).second)
            AddPort(name).EnableReceive(true);
}

/// Without them all else is watched nevertheless.
void Monitor::StartNetworks()
{
    try {
        m_networks->Start();
    } catch (const std::runtime_error& error) {
        ReportPresence("network", false, error.what());
    }
}

/// Where there is no drive now, it is tried again later.
void Monitor::StartCd()
{
    try {
        m_cd->Start();
        m_isCdOn = true;
    } catch (const std::runtime_error& error) {
        if (m_cdProblem != error.what())
            ReportPresence(Tools::CdSource, false, m_cdProblem = error.what());
    }
}

void Monitor::ReportPresence(const std::string& source, bool isThere, const std::string& text)
{
    Post({GetSeconds(), source, "presence", text, {{"present", isThere}}}, 0, 0);
}

/// What is watched and not there at the start.
void Monitor::ReportMissing()
{
    for (const auto& [name, isThere] : m_ports)
        if (!isThere)
            ReportPresence("midi " + name, false, "not there yet");
    if (m_options.midi && m_ports.empty())
        ReportPresence("midi", false,
                       access(SequencerPath, F_OK) == 0
                           ? "no port yet"
                           : std::string("no port yet: there is no ") + SequencerPath);
    if (m_wings && Hardware::WingMapper::Get().connected_wings().empty())
        ReportPresence("wings", false, "none is attached yet");
    if (m_ltc && Hardware::WidgetManager::GetClassMapData(GUID_DEVINTERFACE_QRTUMLTCD).empty())
        ReportPresence("timecode ltc", false, "no board is attached yet");
    if (!m_networks)
        return;
    using Os::Platform;
    for (const auto protocol : {Platform::Protocol_Console, Platform::Protocol_Fixture})
        if (Platform::GetAdapterList(protocol).empty()) {
            const std::string name = Tools::GetNetworkName(protocol);
            ReportPresence("network " + name, false,
                           "no adapter was named: see --" + name + "-network");
        }
}

} // namespace Hwctl
