// SPDX-License-Identifier: MIT
#include "desk/panel_packet.h"

#include <algorithm>
#include <numeric>

namespace Desk
{

namespace
{

constexpr std::uint8_t StartByte = 0xBB;

// Places in a packet.
constexpr std::size_t UnitPlace = 1;
constexpr std::size_t CommandPlace = 2;
constexpr std::size_t LengthPlace = 3;
constexpr std::size_t PayloadPlace = 4;

struct Shape {
    PanelPacket::Command command;
    std::uint8_t length;   // as the packet says it
    std::size_t following; // bytes that follow, but for the checksum
};
constexpr Shape Shapes[] = {{PanelPacket::Command::Reset, 0, 0},
                            {PanelPacket::Command::ReadAdjuster, 2, 2},
                            {PanelPacket::Command::SetAdjuster, 3, 3},
                            // Its length leaves out the action's code.
                            {PanelPacket::Command::CallAction, 0, 1}};

/// The shape that a packet's first four bytes announce; null when they announce none.
const Shape* FindShape(const std::vector<std::uint8_t>& bytes)
{
    for (const Shape& shape : Shapes)
        if (static_cast<std::uint8_t>(shape.command) == bytes[CommandPlace] &&
            shape.length == bytes[LengthPlace])
            return &shape;
    return nullptr;
}

bool IsSumRight(const std::vector<std::uint8_t>& bytes)
{
    const unsigned sum = std::accumulate(bytes.begin() + 1, bytes.end() - 1, 0U);
    return (sum & 0xFFU) == bytes.back();
}

PanelPacket Decode(const std::vector<std::uint8_t>& bytes)
{
    PanelPacket packet;
    packet.unit = bytes[UnitPlace];
    packet.command = static_cast<PanelPacket::Command>(bytes[CommandPlace]);
    if (packet.command != PanelPacket::Command::Reset)
        packet.code = bytes[PayloadPlace];
    if (packet.command == PanelPacket::Command::SetAdjuster)
        packet.value =
            static_cast<std::uint16_t>(bytes[PayloadPlace + 1] << 8U | bytes[PayloadPlace + 2]);
    return packet;
}

} // namespace

std::string ToText(const PanelPacket& packet)
{
    const std::string unit = "unit " + std::to_string(packet.unit) + ": ";
    const std::string code = std::to_string(packet.code);
    switch (packet.command) {
    case PanelPacket::Command::ReadAdjuster:
        return unit + "adjuster " + code + " asked for";
    case PanelPacket::Command::SetAdjuster:
        return unit + "adjuster " + code + " set to " + std::to_string(packet.value);
    case PanelPacket::Command::CallAction:
        return unit + "action " + code;
    default:
        return unit + "reset";
    }
}

/// Drops the first start byte and what follows it up to the next one.
void PanelDecoder::Reject()
{
    ++m_rejected;
    const auto next = std::find(m_bytes.begin() + 1, m_bytes.end(), StartByte);
    m_bytes.erase(m_bytes.begin(), next);
}

std::vector<PanelPacket> PanelDecoder::Take(std::uint8_t byte)
{
    std::vector<PanelPacket> packets;
    if (m_bytes.empty() && byte != StartByte) {
        ++m_skipped;
        return packets;
    }
    m_bytes.push_back(byte);
    while (m_bytes.size() >= PayloadPlace) {
        const Shape* const shape = FindShape(m_bytes);
        const std::size_t length = shape ? PayloadPlace + shape->following + 1 : 0;
        if (shape && m_bytes.size() < length)
            break;
        const std::vector<std::uint8_t> whole(m_bytes.begin(),
                                              m_bytes.begin() + static_cast<long>(length));
        if (!shape || !IsSumRight(whole)) {
            Reject();
            continue;
        }
        packets.push_back(Decode(whole));
        m_bytes.erase(m_bytes.begin(), m_bytes.begin() + static_cast<long>(length));
        SkipToStart();
    }
    return packets;
}

/// Drops what stands before the next start byte.
void PanelDecoder::SkipToStart()
{
    const auto start = std::find(m_bytes.begin(), m_bytes.end(), StartByte);
    m_skipped += static_cast<std::size_t>(start - m_bytes.begin());
    m_bytes.erase(m_bytes.begin(), start);
}

} // namespace Desk
