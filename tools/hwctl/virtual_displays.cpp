// SPDX-License-Identifier: MIT
#include "hwctl/virtual_displays.h"

#include <array>
#include <cstdint>
#include <cstdio>

namespace Hwctl
{

namespace
{

/// Brightness registers; the frequency's stands a little before each.
struct Side {
    const char* name;
    std::uint32_t first;
    std::uint32_t second;
};
constexpr Side Sides[] = {{"left", 0xFE627AFC, 0xF7E27AFC},
                          {"right", 0xFE127AFC, 0xF7B27AFC},
                          {"centre", 0xFE327AFC, 0xF7C27AFC}};
constexpr std::uint32_t FrequencyDistance = 0x14;

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
    for (const Side& side : Sides)
        for (const std::uint32_t address : {side.first, side.second}) {
            const std::uint32_t brightness = m_memory.Read(address);
            const std::uint32_t frequency = m_memory.Read(address - FrequencyDistance);
            std::array<char, 160> text{};
            std::snprintf(text.data(), text.size(),
                          "%s: register %08x holds %08x, duty cycle %u of 255, %s; frequency "
                          "register %08x holds %08x, field %u",
                          side.name, address, brightness, brightness >> 8U & 0xFFU,
                          (brightness & 1U) != 0 ? "on" : "off", address - FrequencyDistance,
                          frequency, frequency >> 20U & 0xFFU);
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
    if (productType == 8)
        return DescribePanels();
    const bool hasChip = productType >= 9 && productType <= 14 && productType != 11;
    return hasChip ? DescribeChip() : DescribeRegisters();
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
