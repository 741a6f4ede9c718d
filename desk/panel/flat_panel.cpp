// SPDX-License-Identifier: MIT
#include "desk/flat_panel.h"

#include <algorithm>
#include <condition_variable>
#include <map>
#include <mutex>
#include <optional>
#include <utility>

#include "desk/serial_peer.h"
#include "kernel/terminal.h"

namespace Desk
{

namespace
{

LineSettings GetPanelSettings()
{
    LineSettings settings;
    settings.baud = 57600;
    return settings;
}

} // namespace

struct FlatPanel::Private {
    explicit Private(PacketTaker itsTake) : take(std::move(itsTake)) {}

    const PacketTaker take;

    mutable std::mutex mutex;
    mutable std::condition_variable changed;
    PanelDecoder decoder; // guarded by mutex, as all below
    std::vector<PanelPacket> packets;
    std::map<std::pair<std::uint8_t, std::uint8_t>, int> adjusters;

    std::optional<SerialPeer> peer; // last, so that it ends first

    SerialPeer::Bytes Hear(const SerialPeer::Bytes& bytes);
};

/// It has no answers.
SerialPeer::Bytes FlatPanel::Private::Hear(const SerialPeer::Bytes& bytes)
{
    std::vector<PanelPacket> heard;
    {
        const std::lock_guard hold(mutex);
        for (const std::uint8_t byte : bytes)
            for (const PanelPacket& packet : decoder.Take(byte)) {
                if (packet.command == PanelPacket::Command::SetAdjuster)
                    adjusters[{packet.unit, packet.code}] = packet.value;
                heard.push_back(packet);
            }
    }
    if (take)
        for (const PanelPacket& packet : heard)
            take(packet);
    const std::lock_guard hold(mutex);
    packets.insert(packets.end(), heard.begin(), heard.end());
    changed.notify_all();
    return {};
}

FlatPanel::FlatPanel(SerialPort& port, PacketTaker take) : m_private(new Private(std::move(take)))
{
    m_private->peer.emplace(port, GetPanelSettings(), [this](const SerialPeer::Bytes& bytes) {
        return m_private->Hear(bytes);
    });
}

FlatPanel::~FlatPanel()
{
    m_private->peer.reset();
}

int FlatPanel::GetAdjuster(std::uint8_t unit, std::uint8_t code) const
{
    const std::lock_guard hold(m_private->mutex);
    const auto adjuster = m_private->adjusters.find({unit, code});
    return adjuster == m_private->adjusters.end() ? -1 : adjuster->second;
}

std::vector<PanelPacket> FlatPanel::GetPackets(std::size_t from) const
{
    const std::lock_guard hold(m_private->mutex);
    const std::vector<PanelPacket>& all = m_private->packets;
    const std::size_t begin = std::min(from, all.size());
    return {all.begin() + static_cast<std::ptrdiff_t>(begin), all.end()};
}

std::size_t FlatPanel::CountPackets() const
{
    const std::lock_guard hold(m_private->mutex);
    return m_private->packets.size();
}

bool FlatPanel::WaitForPackets(std::size_t count) const
{
    std::unique_lock hold(m_private->mutex);
    return m_private->changed.wait_for(
        hold, Patience, [this, count] { return m_private->packets.size() >= count; });
}

std::size_t FlatPanel::CountRejected() const
{
    const std::lock_guard hold(m_private->mutex);
    return m_private->decoder.CountRejected();
}

std::size_t FlatPanel::CountNoise() const
{
    return m_private->peer->CountNoise();
}

bool FlatPanel::WaitForBytes(std::size_t count) const
{
    return m_private->peer->WaitForBytes(count);
}

} // namespace Desk
