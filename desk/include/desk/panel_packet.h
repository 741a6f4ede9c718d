// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace Desk
{

/// A command to a flat-panel controller, as its receiver understands it.
struct PanelPacket {
    enum class Command : std::uint8_t {
        Reset = 0x00,
        ReadAdjuster = 0x0A,
        SetAdjuster = 0x0B,
        CallAction = 0x16
    };

    std::uint8_t unit = 0;
    Command command = Command::Reset;
    std::uint8_t code = 0;   ///< of the adjuster or the action
    std::uint16_t value = 0; ///< for an adjuster that is set

    bool operator==(const PanelPacket&) const = default;
};

/// Such as "unit 0: adjuster 5 set to 128".
std::string ToText(const PanelPacket& packet);

/// Takes a controller's input byte by byte. Bytes between packets are skipped; a packet of a wrong
/// checksum or an unknown command or length is rejected. After a rejected one the search for a
/// start byte goes on behind the rejected packet's own.
class PanelDecoder
{
public:
    /// Every packet that the byte completes: more than one may follow a rejected start.
    std::vector<PanelPacket> Take(std::uint8_t byte);

    std::size_t CountRejected() const { return m_rejected; }
    std::size_t CountSkipped() const { return m_skipped; }

private:
    void Reject();
    void SkipToStart();

    std::vector<std::uint8_t> m_bytes; // from the start byte on
    std::size_t m_rejected = 0;
    std::size_t m_skipped = 0;
};

} // namespace Desk
