// SPDX-License-Identifier: MIT
#include "desk/virtual_desk.h"

#include <algorithm>
#include <atomic>
#include <charconv>
#include <cmath>
#include <stdexcept>
#include <utility>

#include "desk/audio_file.h"
#include "desk/cue_sheet.h"
#include "desk/display_registers.h"
#include "desk/widget_controls.h"

namespace Desk
{

namespace
{

constexpr double HighestDuty = 255;
/// The console whose displays are flat panels at serial lines.
constexpr int PanelProductType = 8;

/// Of consoles whose right display alone is dimmed, by the hardware monitor's chip.
bool HasBacklightChip(int productType)
{
    return productType >= 9 && productType <= 14 && productType != 11;
}

/// Whether its displays are dimmed by the registers of display controllers.
bool HasDisplayControllers(const Standalone::PlatformSettings& platform)
{
    return platform.isConsole && platform.productType != PanelProductType &&
           !HasBacklightChip(platform.productType);
}

CdDisc MakeDisc(const CdData& data)
{
    if (!data.sheet.empty())
        return ReadCueSheet(data.sheet);
    return data.dataDisc ? CdDisc::MakeData(*data.dataDisc) : CdDisc::MakeAudio(data.tracks);
}

bool HasDisc(const CdData& data)
{
    return !data.sheet.empty() || data.dataDisc || !data.tracks.empty();
}

} // namespace

void SendTimecode(VirtualWidget& board, const LtcTime& time)
{
    board.SendTimecode({time.hours, time.minutes, time.seconds, time.frames, time.dropFrame});
}

/// A serial line with whoever is at its far end.
struct VirtualDesk::Line {
    Line(KernelTestbed& testbed, const SerialLineData& data) : port(testbed, data.device)
    {
        if (data.peer == SerialLineData::Peer::Panel)
            panel = std::make_unique<FlatPanel>(port);
        else if (data.peer == SerialLineData::Peer::Echo)
            echo = std::make_unique<SerialPeer>(port, LineSettings(), SerialPeer::MakeEcho());
    }

    SerialPort port;
    std::unique_ptr<FlatPanel> panel;
    std::unique_ptr<SerialPeer> echo;
};

/// Audio that plays into an LTC board.
struct VirtualDesk::Tape {
    double sampleRate = 0;
    std::atomic<std::int64_t> place{0};     // the end of the last frame, in samples
    std::atomic<std::int64_t> deafUntil{0}; // frames that begin before are not heard
    std::unique_ptr<LtcPlayer> player;      // last: ends before the rest
};

VirtualDesk::VirtualDesk(DeskData data)
    : m_data(std::move(data)), m_sequencer(m_testbed), m_memory(m_testbed), m_chip(m_testbed)
{
    if (!HasDisplayControllers(m_data.platform))
        for (const DisplaySide& side : DisplaySides)
            for (const std::uint32_t address : side.brightness)
                m_memory.SetPresent(address, false);
    for (const MidiPortData& port : m_data.midiPorts) {
        m_ports.push_back(std::make_unique<MidiPort>(m_testbed, m_sequencer, port.name));
        if (!port.isPlugged) {
            m_ports.back()->Unplug();
            SetCondition("midi/" + port.name + "/plugged", "off");
        }
    }
    for (const SerialLineData& line : m_data.serialLines)
        m_lines.push_back(std::make_unique<Line>(m_testbed, line));
    if (m_data.cd) {
        m_cd = std::make_unique<CdDrive>(m_testbed);
        if (HasDisc(*m_data.cd))
            m_cd->Insert(MakeDisc(*m_data.cd));
    }
    for (const WidgetData& widget : m_data.widgets)
        m_bus.Add(widget);
    for (const AdapterData& adapter : m_data.adapters)
        m_network.Add(adapter);
}

VirtualDesk::~VirtualDesk()
{
    std::map<std::string, std::shared_ptr<Tape>> tapes;
    {
        const std::lock_guard hold(m_mutex);
        tapes.swap(m_tapes);
    }
    for (const auto& [path, tape] : tapes)
        tape->player->Stop();
}

VirtualWidget& VirtualDesk::GetWidget(const std::string& path) const
{
    VirtualWidget* const widget = m_bus.Find(std::wstring(path.begin(), path.end()));
    if (!widget)
        throw std::invalid_argument("there is no widget at '" + path + "'");
    return *widget;
}

MidiPort& VirtualDesk::GetPort(const std::string& name) const
{
    for (const auto& port : m_ports)
        if (port->GetName() == name)
            return *port;
    throw std::invalid_argument("there is no MIDI port '" + name + "'");
}

SerialPort& VirtualDesk::GetLine(const std::string& device) const
{
    for (const auto& line : m_lines)
        if (line->port.GetPath() == device)
            return line->port;
    throw std::invalid_argument("there is no serial line '" + device + "'");
}

FlatPanel* VirtualDesk::FindPanel(const std::string& device) const
{
    for (const auto& line : m_lines)
        if (line->port.GetPath() == device)
            return line->panel.get();
    return nullptr;
}

std::array<bool, 3> VirtualDesk::GetDimmedDisplays() const
{
    if (!m_data.platform.isConsole)
        return {false, false, false};
    if (m_data.platform.productType == PanelProductType)
        return {true, true, false};
    if (HasBacklightChip(m_data.platform.productType))
        return {false, true, false};
    return {true, true, true};
}

std::array<double, 3> VirtualDesk::GetDisplays() const
{
    std::array<double, 3> levels{};
    levels.fill(1);
    if (!m_data.platform.isConsole)
        return levels;
    const int type = m_data.platform.productType;
    if (type == PanelProductType) {
        // The panels at the first two lines.
        constexpr std::array<const char*, 2> Devices{"/dev/ttyS0", "/dev/ttyS1"};
        for (std::size_t side = 0; side < Devices.size(); ++side) {
            const FlatPanel* const panel = FindPanel(Devices.at(side));
            levels.at(side) = panel ? std::max(panel->GetBacklight(), 0) / HighestDuty : 0;
        }
        return levels;
    }
    const std::lock_guard hold(m_displayMutex);
    if (HasBacklightChip(type)) {
        // 0 is brightest; the chip begins in the middle.
        const std::string text = m_chip.GetText();
        int value = 0;
        std::from_chars(text.data(), text.data() + text.size(), value);
        levels[1] = 1 - std::clamp(value, 0, 255) / HighestDuty;
        return levels;
    }
    for (std::size_t side = 0; side < levels.size(); ++side)
        levels.at(side) =
            (m_memory.Read(DisplaySides.at(side).brightness[0]) >> 8U & 0xFFU) / HighestDuty;
    // The centre one is darkest at 85 percent of the duty cycle and brightest at 50.
    constexpr double Darkest = 0.85;
    constexpr double Brightest = 0.5;
    levels[2] = std::clamp((Darkest - levels[2]) / (Darkest - Brightest), 0.0, 1.0);
    return levels;
}

VirtualWidget& VirtualDesk::GetBoard(const std::string& path) const
{
    VirtualWidget& board = GetWidget(path);
    if (!IsLtcBoard(board.GetModel()))
        throw std::invalid_argument("'" + path + "' is no LTC board");
    return board;
}

void VirtualDesk::PlayTimecode(const std::string& path, const std::string& file, bool loop)
{
    VirtualWidget& board = GetBoard(path);
    auto audio = std::make_unique<AudioFile>(file, 1, loop);
    StopTimecode(path);
    auto tape = std::make_shared<Tape>();
    tape->sampleRate = audio->GetSampleRate();
    Tape* const borrowed = tape.get(); // outlives its player's thread
    const auto send = [&board, borrowed](const LtcFrame& frame) {
        borrowed->place = frame.lastSample;
        if (frame.firstSample >= borrowed->deafUntil)
            SendTimecode(board, frame.time);
    };
    const std::lock_guard hold(m_mutex);
    tape->player = std::make_unique<LtcPlayer>(std::move(audio), send, LtcPlayer::LossTaker());
    m_tapes[path] = std::move(tape);
}

void VirtualDesk::StopTimecode(const std::string& path)
{
    std::shared_ptr<Tape> tape;
    {
        const std::lock_guard hold(m_mutex);
        if (const auto found = m_tapes.find(path); found != m_tapes.end()) {
            tape = found->second;
            m_tapes.erase(found);
        }
    }
    if (tape)
        tape->player->Stop();
}

bool VirtualDesk::IsTimecodePlaying(const std::string& path) const
{
    const std::lock_guard hold(m_mutex);
    const auto found = m_tapes.find(path);
    return found != m_tapes.end() && !found->second->player->WaitEnd(std::chrono::milliseconds(0));
}

void VirtualDesk::DropTimecode(const std::string& path, double seconds)
{
    const std::lock_guard hold(m_mutex);
    const auto found = m_tapes.find(path);
    if (found == m_tapes.end() || found->second->player->WaitEnd(std::chrono::milliseconds(0)))
        throw std::runtime_error("no timecode plays into '" + path + "'");
    Tape& tape = *found->second;
    tape.deafUntil = tape.place + std::llround(seconds * tape.sampleRate);
}

bool VirtualDesk::IsTimecodeDropped(const std::string& path) const
{
    if (!IsTimecodePlaying(path))
        return false;
    const std::lock_guard hold(m_mutex);
    const auto found = m_tapes.find(path);
    return found != m_tapes.end() && found->second->place < found->second->deafUntil;
}

std::string VirtualDesk::GetCondition(const std::string& name) const
{
    const std::lock_guard hold(m_mutex);
    const auto found = m_conditions.find(name);
    return found == m_conditions.end() ? std::string() : found->second;
}

std::map<std::string, std::string> VirtualDesk::GetConditions() const
{
    const std::lock_guard hold(m_mutex);
    return m_conditions;
}

void VirtualDesk::SetCondition(const std::string& name, const std::string& value)
{
    const std::lock_guard hold(m_mutex);
    if (value.empty())
        m_conditions.erase(name);
    else
        m_conditions[name] = value;
}

} // namespace Desk
