// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <vector>

#include "desk/panel_packet.h"
#include "desk/serial_port.h"

namespace Desk
{

/// A virtual flat-panel controller at the far end of a serial port. It understands a line of 57600
/// baud, eight data bits, one stop bit, no parity; at other settings it hears only noise. It does
/// not answer. Any thread may call any operation.
class FlatPanel
{
public:
    /// Called on the panel's own thread, with no lock held.
    typedef std::function<void(const PanelPacket&)> PacketTaker;

    /// Listens at once. @param port outlives the panel
    explicit FlatPanel(SerialPort& port, PacketTaker take = PacketTaker());
    /// Ends the listening, at once.
    ~FlatPanel();
    FlatPanel(const FlatPanel&) = delete;
    FlatPanel& operator=(const FlatPanel&) = delete;

    /// Value of an adjuster, -1 until set. Adjuster 5 of unit 0 is the backlight.
    int GetAdjuster(std::uint8_t unit, std::uint8_t code) const;
    int GetBacklight() const { return GetAdjuster(0, 5); }
    /// Every packet understood, oldest first, from the one of that number on, the first being 0.
    std::vector<PanelPacket> GetPackets(std::size_t from = 0) const;
    std::size_t CountPackets() const;
    /// Waits until so many were understood. @return false when they do not come within 20 s
    bool WaitForPackets(std::size_t count) const;
    /// The same for bytes, whatever became of them.
    bool WaitForBytes(std::size_t count) const;
    /// Packets that were rejected, and bytes that came at wrong settings of the line.
    std::size_t CountRejected() const;
    std::size_t CountNoise() const;

private:
    struct Private;

    const std::unique_ptr<Private> m_private;
};

} // namespace Desk
