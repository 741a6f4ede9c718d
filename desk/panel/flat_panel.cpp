// SPDX-License-Identifier: MIT
#include "desk/flat_panel.h"

#include <atomic>
#include <condition_variable>
#include <map>
#include <mutex>
#include <thread>
#include <utility>

#include "kernel/terminal.h"

namespace Desk
{

namespace
{

/// Longest sleep of a panel to which nobody talks; it is woken for everything.
constexpr unsigned IdleMilliseconds = 1000;

bool IsUnderstood(const LineSettings& line)
{
    constexpr int BaudRate = 57600;
    return line.baud == BaudRate && line.dataBits == 8 && line.stopBits == 1 &&
           line.parity == LineSettings::Parity::None;
}

} // namespace

struct FlatPanel::Private {
    Private(SerialPort& itsPort, PacketTaker itsTake) : port(itsPort), take(std::move(itsTake)) {}

    SerialPort& port;
    const PacketTaker take;
    std::atomic<bool> isEnding{false};

    mutable std::mutex mutex;
    mutable std::condition_variable changed;
    PanelDecoder decoder; // guarded by mutex, as all below
    std::vector<PanelPacket> packets;
    std::map<std::pair<std::uint8_t, std::uint8_t>, int> adjusters;
    std::size_t noise = 0;

    std::thread thread;

    void Listen();
    std::vector<PanelPacket> Hear(const std::vector<std::uint8_t>& bytes);
};

void FlatPanel::Private::Listen()
{
    while (!isEnding) {
        const std::vector<std::uint8_t> bytes = port.Receive(IdleMilliseconds);
        for (const PanelPacket& packet : Hear(bytes))
            if (take)
                take(packet);
    }
}

std::vector<PanelPacket> FlatPanel::Private::Hear(const std::vector<std::uint8_t>& bytes)
{
    std::vector<PanelPacket> heard;
    if (bytes.empty())
        return heard;
    const bool isUnderstood = IsUnderstood(port.GetSettings());
    const std::lock_guard hold(mutex);
    if (!isUnderstood) {
        noise += bytes.size();
        return heard;
    }
    for (const std::uint8_t byte : bytes)
        for (const PanelPacket& packet : decoder.Take(byte)) {
            if (packet.command == PanelPacket::Command::SetAdjuster)
                adjusters[{packet.unit, packet.code}] = packet.value;
            heard.push_back(packet);
        }
    packets.insert(packets.end(), heard.begin(), heard.end());
    changed.notify_all();
    return heard;
}

FlatPanel::FlatPanel(SerialPort& port, PacketTaker take)
    : m_private(new Private(port, std::move(take)))
{
    m_private->thread = std::thread([this] { m_private->Listen(); });
}

FlatPanel::~FlatPanel()
{
    m_private->isEnding = true;
    m_private->port.Wake();
    m_private->thread.join();
}

int FlatPanel::GetAdjuster(std::uint8_t unit, std::uint8_t code) const
{
    const std::lock_guard hold(m_private->mutex);
    const auto adjuster = m_private->adjusters.find({unit, code});
    return adjuster == m_private->adjusters.end() ? -1 : adjuster->second;
}

std::vector<PanelPacket> FlatPanel::GetPackets() const
{
    const std::lock_guard hold(m_private->mutex);
    return m_private->packets;
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
    const std::lock_guard hold(m_private->mutex);
    return m_private->noise;
}

} // namespace Desk
