// SPDX-License-Identifier: MIT
#include "hwctl/virtual_devices.h"

#include "hwctl/command.h"

namespace Hwctl
{

VirtualDevices::VirtualDevices() : m_sequencer(m_testbed)
{
    for (const char* const name : {"Stage Keyboard", "Show Control"})
        m_ports.push_back(std::make_unique<Desk::MidiPort>(m_testbed, m_sequencer, name));
}

Desk::MidiPort& VirtualDevices::GetPort(const std::string& name)
{
    for (const auto& port : m_ports)
        if (port->GetName() == name)
            return *port;
    throw CommandError("MIDI port '" + name + "' not found");
}

} // namespace Hwctl
