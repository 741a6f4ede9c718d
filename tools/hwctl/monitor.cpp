// SPDX-License-Identifier: MIT
#include "hwctl/monitor.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <utility>

#include "common/hex.h"
#include "common/midi_text.h"
#include "common/port_name.h"
#include "common/stop_signals.h"
#include "hwctl/exit_code.h"

namespace Hwctl
{

namespace
{

using Hardware::Timecode::DeviceSim;
using Hardware::Timecode::Frame;
namespace Midi = Hardware::Midi;

/// How often a player is looked at.
constexpr int PlayerCheckMilliseconds = 50;
/// Looks without a new message before what a finished player sent counts as lost: two seconds.
constexpr int PatientChecks = 40;
/// How often what nobody signals is looked for: MIDI ports and the CD drive.
constexpr int LookMilliseconds = 1000;

bool IsSame(const Frame& left, const Frame& right)
{
    return left <= right && left >= right;
}

std::vector<std::uint8_t> Unpack(std::uint32_t message)
{
    std::vector<std::uint8_t> bytes;
    for (unsigned i = 0; i < Tools::GetShortMessageLength(message); ++i)
        bytes.push_back(static_cast<std::uint8_t>(message >> 8 * i));
    return bytes;
}

bool IsClock(std::uint32_t message)
{
    return message == 0xF8 || message == 0xFE;
}

} // namespace

Monitor::Monitor(const MonitorOptions& options, std::FILE* out)
    : m_options(options), m_printer(options.json, out)
{
    for (const std::string& port : options.ports)
        if (m_ports.try_emplace(port, false).second)
            AddPort(port);
    unsigned number = 0;
    for (const Tools::TimecodeSource& source : options.sources)
        AddSource(++number, source);
    if (options.wings)
        AddWings();
    if (options.networks)
        m_networks = std::make_unique<Tools::NetworkWatch>(MakeWidgetTaker(false));
    if (options.cd)
        AddCd();
}

Monitor::~Monitor()
{
    StopDevices();
}

Midi::Device& Monitor::AddPort(const std::string& name)
{
    using Midi::Device;
    auto device = std::make_unique<Device>();
    const std::string source = "midi " + name;
    // Direct: system-exclusive bytes are borrowed, and times are taken when a signal comes.
    const auto connect = [&](auto signal, auto slot) {
        QObject::connect(device.get(), signal, device.get(), slot, Qt::DirectConnection);
    };
    const auto report = [this, source, name](const char* signal, const std::string& text,
                                             nlohmann::json facts, std::size_t messages,
                                             std::size_t bytes) {
        facts["port"] = name;
        Post({GetSeconds(), source, signal, text, std::move(facts)}, messages, bytes);
    };
    connect(&Device::txMidiDeviceAdded,
            [report](const Device::Id&) { report("txMidiDeviceAdded", "receiving", {}, 0, 0); });
    connect(&Device::txMidiDeviceRemoved, [report](const Device::Id&) {
        report("txMidiDeviceRemoved", "no longer receiving", {}, 0, 0);
    });
    connect(&Device::txShortMessage, [report](const Device::ShortMessage& message) {
        const std::vector<std::uint8_t> bytes = Unpack(message.message);
        report("txShortMessage", Tools::DescribeShortMessage(message.message),
               {{"message", message.message}, {"bytes", Tools::FormatHex(bytes)}}, 1, bytes.size());
    });
    connect(&Device::txSysExMessage, [report](const Device::SysExMessage& message) {
        const std::span<const std::uint8_t> bytes(message.data, message.length);
        report("txSysExMessage", Tools::DescribeSystemExclusive(bytes),
               {{"bytes", Tools::FormatHex(bytes)}}, 1, bytes.size());
    });
    device->SetInput(Tools::WidenPortName(name));
    m_devices.push_back(std::move(device));
    return *m_devices.back();
}

void Monitor::AddSource(unsigned number, const Tools::TimecodeSource& source)
{
    m_sources[number].description = source;
    m_sources[number].next = source.GetStartIndex();
    if (m_simulator)
        return;
    m_simulator = std::make_unique<DeviceSim>(nullptr);
    const auto report = [this](const char* signal, unsigned instance, const char* text) {
        Post({GetSeconds(),
              "timecode sim " + std::to_string(instance),
              signal,
              text,
              {{"number", instance}}},
             0, 0);
    };
    QObject::connect(
        m_simulator.get(), &DeviceSim::deviceAdded, m_simulator.get(),
        [report](const DeviceSim::Id& id) { report("deviceAdded", id.number, "added"); },
        Qt::DirectConnection);
    QObject::connect(
        m_simulator.get(), &DeviceSim::deviceRemoved, m_simulator.get(),
        [report](const DeviceSim::Id& id) { report("deviceRemoved", id.number, "removed"); },
        Qt::DirectConnection);
    QObject::connect(
        m_simulator.get(), &DeviceSim::frameRead, m_simulator.get(),
        [this](const DeviceSim::Id& id, const Frame& frame) { PostFrame(id.number, frame); },
        Qt::DirectConnection);
}

/// Takes events of widgets; those of wings count as signals, what the desk shows does not.
Tools::EventTaker Monitor::MakeWidgetTaker(bool counts)
{
    return [this, counts](Tools::MonitorEvent event) {
        event.seconds = GetSeconds();
        m_queue.Post([this, counts, event = std::move(event)] {
            m_wingSignals += counts ? 1 : 0;
            m_printer.Print(event);
        });
    };
}

void Monitor::AddWings()
{
    m_wings = std::make_unique<Tools::WingWatch>(MakeWidgetTaker(true), m_options.echo);
    const auto report = [this, take = MakeWidgetTaker(false)](Tools::MonitorEvent event) {
        const bool isNewBoard = event.signal == "deviceAdded";
        take(std::move(event));
        if (isNewBoard)
            m_queue.Post([this] {
                if (const auto tape = std::exchange(m_tape, nullptr))
                    tape();
            });
    };
    m_ltc = std::make_unique<Tools::LtcWatch>(report, [this](unsigned board, const Frame& frame) {
        PostForeignFrame("timecode ltc " + std::to_string(board), board, frame);
    });
}

void Monitor::AddCd()
{
    m_cd = std::make_unique<Tools::CdWatch>(MakeWidgetTaker(false), [this](const Frame& frame) {
        PostForeignFrame(Tools::CdSource, 0, frame);
    });
}

void Monitor::WatchDesk(const Desk::WidgetBus& bus)
{
    m_desk = std::make_unique<Tools::DeskWatch>(bus, MakeWidgetTaker(false));
}

/// A frame of a source that is not the monitor's own, and of which it so does not know what is due.
void Monitor::PostForeignFrame(const std::string& source, unsigned number, const Frame& frame)
{
    const double seconds = GetSeconds();
    m_queue.Post([this, source, number, frame, seconds] {
        ++m_frames;
        const auto last = m_foreignSeconds.find(source);
        const bool newSecond = last == m_foreignSeconds.end() || last->second != frame.seconds;
        m_foreignSeconds[source] = frame.seconds;
        if (!m_options.hideFrames || newSecond)
            PrintFrame(source, number, frame, seconds);
    });
}

void Monitor::PrintFrame(const std::string& source, unsigned number, const Frame& frame,
                         double seconds)
{
    m_printer.Print({seconds,
                     source,
                     "frameRead",
                     frame.toString(),
                     {{"number", number},
                      {"hours", frame.hours},
                      {"minutes", frame.minutes},
                      {"seconds", frame.seconds},
                      {"frames", frame.frames},
                      {"dropFrame", frame.dropFrame}}});
}

/// Hands an event, and what it counts for, to the loop's thread. Any thread.
void Monitor::Post(Tools::MonitorEvent event, std::size_t messages, std::size_t bytes)
{
    const auto take = [this, event = std::move(event), messages, bytes] {
        m_messages += messages;
        m_bytes += bytes;
        m_idleChecks = 0;
        const auto message = event.facts.find("message");
        if (!m_options.hideClock || message == event.facts.end() || !IsClock(*message))
            m_printer.Print(event);
    };
    m_queue.Post(take);
}

void Monitor::PostFrame(unsigned number, const Frame& frame)
{
    const double seconds = GetSeconds();
    m_queue.Post([this, number, frame, seconds] { TakeFrame(number, frame, seconds); });
}

void Monitor::TakeFrame(unsigned number, const Frame& frame, double seconds)
{
    Source& source = m_sources.at(number);
    if (m_options.frames && source.frames == *m_options.frames)
        return;
    const double rate = source.description.rate;
    const double step = source.description.backwards ? -1.0 : 1.0;
    // Positions are followed as the source counts them: a frame alone has lost the fraction that
    // rates such as 29.97 leave.
    if (!IsSame(frame, Frame(source.next, rate))) {
        const auto missing = std::llround((frame.toIndex(rate) - source.next) * step);
        source.dropped += static_cast<std::size_t>(std::max(missing, 1LL));
        source.next = frame.toIndex(rate);
    }
    source.next = source.next + step;
    const bool newSecond = source.lastSecond != frame.seconds;
    source.lastSecond = frame.seconds;
    ++source.frames;
    ++m_frames;
    if (!m_options.hideFrames || newSecond)
        PrintFrame("timecode sim " + std::to_string(number), number, frame, seconds);
    const bool enough = m_options.frames &&
                        std::all_of(m_sources.begin(), m_sources.end(), [this](const auto& entry) {
                            return entry.second.frames == *m_options.frames;
                        });
    if (enough)
        m_loop.quit();
}

void Monitor::StartDevices()
{
    // Named ones are tried from the start; the device looks for its port again and again.
    for (const auto& device : m_devices)
        device->EnableReceive(true);
    for (const auto& [number, source] : m_sources)
        source.description.StartOn(*m_simulator, number);
    if (m_wings) {
        m_wings->Start();
        m_ltc->Start();
    }
    if (m_networks)
        StartNetworks();
    if (m_networkPlayer)
        m_networkPlayer->Start();
    if (m_options.midi)
        LookForPorts(true);
    if (m_cd)
        StartCd();
    ReportMissing();
    if (m_player)
        m_player->Start();
    if (m_widgetPlayer)
        m_widgetPlayer->Start();
}

void Monitor::StopDevices()
{
    if (m_widgetPlayer)
        m_widgetPlayer->Stop();
    if (m_player)
        m_player->Stop();
    if (m_networks)
        m_networks->Stop();
    if (std::exchange(m_isCdOn, false))
        m_cd->Stop();
    if (m_wings) {
        m_ltc->Stop();
        m_wings->Stop();
    }
    for (const auto& device : m_devices)
        if (device->IsReceiveEnabled())
            device->EnableReceive(false);
    if (m_simulator)
        for (const unsigned number : m_simulator->GetInstances())
            m_simulator->Destroy(number);
}

int Monitor::Run()
{
    const Tools::StopSignals signals([this] { m_loop.quit(); });
    m_clock.start();
    QObject::connect(&m_lookTimer, &QTimer::timeout, &m_loop, [this] { LookForDevices(); });
    m_lookTimer.start(LookMilliseconds);
    m_endTimer.setSingleShot(true);
    QObject::connect(&m_endTimer, &QTimer::timeout, &m_loop, &QEventLoop::quit);
    if (m_options.seconds)
        m_endTimer.start(std::chrono::milliseconds(std::llround(*m_options.seconds * 1000)));
    else if (m_player && !m_options.frames) {
        QObject::connect(&m_playerTimer, &QTimer::timeout, &m_loop, [this] { CheckPlayer(); });
        m_playerTimer.start(PlayerCheckMilliseconds);
    }
    StartDevices();
    m_loop.exec();
    m_lookTimer.stop();

    if (m_player)
        m_player->Stop();
    // What was sent before the end may still be on its way.
    while (m_player && !IsEveryMessageIn() && ++m_idleChecks < PatientChecks) {
        m_endTimer.start(PlayerCheckMilliseconds);
        m_loop.exec();
    }
    StopDevices();
    m_queue.Drain();
    return Summarize();
}

/// Ends the run when all that a player sent is in, or nothing more comes.
void Monitor::CheckPlayer()
{
    if (m_player->GetProgress().finished && (IsEveryMessageIn() || ++m_idleChecks > PatientChecks))
        m_loop.quit();
}

bool Monitor::IsEveryMessageIn() const
{
    return m_messages >= m_player->GetProgress().messages;
}

int Monitor::Summarize()
{
    std::size_t droppedFrames = 0;
    for (const auto& [number, source] : m_sources)
        droppedFrames += source.dropped;
    std::size_t droppedMessages = 0;
    std::size_t bytes = m_bytes;
    if (m_player) {
        const MidiPlayer::Progress sent = m_player->GetProgress();
        droppedMessages = sent.messages - std::min(sent.messages, m_messages);
        bytes = sent.bytes;
    }
    std::string dropped;
    if (droppedMessages != 0)
        dropped = std::to_string(droppedMessages) + " messages";
    if (droppedFrames != 0)
        dropped += (dropped.empty() ? "" : ", ") + std::to_string(droppedFrames) + " frames";
    m_printer.PrintSummary(
        std::to_string(m_messages) + " messages, " + std::to_string(bytes) + " bytes, " +
            std::to_string(m_frames) + " frames, " +
            (m_options.wings ? std::to_string(m_wingSignals) + " wing signals, " : std::string()) +
            "dropped: " + (dropped.empty() ? "none" : dropped),
        {{"messages", m_messages},
         {"bytes", bytes},
         {"frames", m_frames},
         {"wingSignals", m_wingSignals},
         {"droppedMessages", droppedMessages},
         {"droppedFrames", droppedFrames}});
    const bool hasFailed = m_networkPlayer && m_networkPlayer->HasFailed();
    return dropped.empty() && !hasFailed ? ExitCode_Success : ExitCode_Failure;
}

double Monitor::GetSeconds() const
{
    return static_cast<double>(m_clock.nsecsElapsed()) / 1e9;
}

} // namespace Hwctl
