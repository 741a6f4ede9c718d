// SPDX-License-Identifier: MIT
#include "hwctl/virtual_displays.h"

#include <array>
#include <cstdint>
#include <cstdio>

#include "hwctl/display_registers.h"

namespace Hwctl
{

namespace
{

std::string DescribePanel(const char* side, const Desk::SerialPort& port,
                          const Desk::FlatPanel& panel)
{
    const int level = panel.GetBacklight();
    std::string text = std::string(side) + ": panel at " + port.GetPath() + " ";
    text += level == -1 ? "has not been set" : "has level " + std::to_string(level) + " of 255";
    if (panel.CountRejected() > 0)
        text += ", rejected " + std::to_string(panel.CountRejected()) + " packets";
    return text;
}

} // namespace

VirtualDisplays::VirtualDisplays(Desk::KernelTestbed& testbed)
    : m_memory(testbed), m_chip(testbed), m_leftPort(testbed, "/dev/ttyS0"),
      m_rightPort(testbed, "/dev/ttyS1"), m_loopPort(testbed, "/dev/ttyS2"),
      m_leftPanel(m_leftPort), m_rightPanel(m_rightPort),
      m_loop(m_loopPort, Desk::LineSettings(), Desk::SerialPeer::MakeEcho())
{
}

std::vector<std::string> VirtualDisplays::DescribeRegisters() const
{
    std::vector<std::string> lines;
    for (const DisplaySide& side : DisplaySides)
        for (const std::uint32_t address : side.brightness) {
            const std::uint32_t frequencyAddress = DisplaySide::GetFrequency(address);
            const std::uint32_t brightness = m_memory.Read(address);
            const std::uint32_t frequency = m_memory.Read(frequencyAddress);
            std::array<char, 160> text{};
            std::snprintf(text.data(), text.size(),
                          "%s: register %08x holds %08x, duty cycle %u of 255, %s; frequency "
                          "register %08x holds %08x, field %u",
                          side.name, address, brightness, GetDuty(brightness),
                          IsDutyEnabled(brightness) ? "on" : "off", frequencyAddress, frequency,
                          GetFrequencyField(frequency));
            lines.emplace_back(text.data());
        }
    return lines;
}

std::vector<std::string> VirtualDisplays::DescribePanels() const
{
    return {DescribePanel("left", m_leftPort, m_leftPanel),
            DescribePanel("right", m_rightPort, m_rightPanel)};
}

std::vector<std::string> VirtualDisplays::DescribeChip() const
{
    std::string text = m_chip.GetText();
    if (!text.empty() && text.back() == '\n')
        text.pop_back();
    return {"right: chip holds '" + text + "' of 255, 0 for brightest"};
}

std::vector<std::string> VirtualDisplays::Describe(int productType) const
{
    switch (GetBacklightKind(productType)) {
    case BacklightKind::Panels:
        return DescribePanels();
    case BacklightKind::Chip:
        return DescribeChip();
    default:
        return DescribeRegisters();
    }
}

Desk::FlatPanel* VirtualDisplays::FindPanel(const std::string& port)
{
    if (port == m_leftPort.GetPath())
        return &m_leftPanel;
    return port == m_rightPort.GetPath() ? &m_rightPanel : nullptr;
}

void VirtualDisplays::WaitForPanels(std::size_t left, std::size_t right) const
{
    m_leftPanel.WaitForBytes(left);
    m_rightPanel.WaitForBytes(right);
}

} // namespace Hwctl
