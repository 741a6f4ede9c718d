// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <vector>

#include "desk/flat_panel.h"
#include "desk/kernel_testbed.h"
#include "desk/physical_memory.h"
#include "desk/sensor_chip.h"
#include "desk/serial_peer.h"
#include "desk/serial_port.h"

namespace Hwctl
{

/// What --virtual has behind the displays: physical memory with the display controllers' registers,
/// the hardware-monitor chip, a flat-panel controller at each of the first two serial ports, and at
/// the third a plug that sends back what it gets, at 9600 baud.
class VirtualDisplays
{
public:
    explicit VirtualDisplays(Desk::KernelTestbed& testbed);

    /// What each side's devices hold, a line each, for the controller of a console's model.
    std::vector<std::string> DescribeRegisters() const;
    std::vector<std::string> DescribePanels() const;
    std::vector<std::string> DescribeChip() const;
    /// The same for the controller that a console of that model has.
    std::vector<std::string> Describe(int productType) const;

    /// The panel at a port; null for any other.
    Desk::FlatPanel* FindPanel(const std::string& port);
    /// Waits until the panels have heard what was sent to them.
    void WaitForPanels(std::size_t left, std::size_t right) const;

private:
    Desk::PhysicalMemory m_memory;
    Desk::SensorChip m_chip;
    Desk::SerialPort m_leftPort;
    Desk::SerialPort m_rightPort;
    Desk::SerialPort m_loopPort;
    Desk::FlatPanel m_leftPanel;
    Desk::FlatPanel m_rightPanel;
    Desk::SerialPeer m_loop;
};

} // namespace Hwctl
