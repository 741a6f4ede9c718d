// SPDX-License-Identifier: MIT
#include "console/parts.h"

#include <span>
#include <utility>

#include "common/hex.h"
#include "common/midi_text.h"
#include "common/port_name.h"
#include "common/timecode_source.h"
#include "hardware/console_light_fading.h"
#include "hardware/console_light_things.h"
#include "hardware/wing_mapper.h"
#include "os/thread.h"
#include "standalone/messages.h"

namespace Console
{

namespace
{

using Hardware::ConsoleLightFading;
using Hardware::Midi::Device;
using Hardware::Timecode::DeviceSim;
using Hardware::Timecode::Frame;

/// Before the desk is made, and so before the library first asks.
const Desk::DeskData& ConfigurePlatform(const Desk::DeskData& data)
{
    for (const std::string& source : data.simulate)
        Tools::TimecodeSource::Parse(source); // throws for one that there cannot be
    Standalone::ConfigurePlatform(data.platform);
    Standalone::SetLightSettings(data.settings);
    return data;
}

std::string GetSimName(unsigned number)
{
    return "sim " + std::to_string(number);
}

} // namespace

Session::Parts::Parts(const Desk::DeskData& data, Tools::EventTaker itsTake)
    : take(std::move(itsTake)), desk(ConfigurePlatform(data)),
      deskWatch(desk.GetBus(), [this](Tools::MonitorEvent event) { Report(std::move(event)); }),
      wings(
          [this](Tools::MonitorEvent event) {
              ++inputs;
              Report(std::move(event));
          },
          false),
      ltc([this](Tools::MonitorEvent event) { Report(std::move(event)); },
          [this](unsigned board, const Frame& frame) {
              TakeFrame("ltc " + std::to_string(board), frame);
          }),
      networks([this](Tools::MonitorEvent event) { Report(std::move(event)); })
{
    try {
        Start();
    } catch (...) {
        Stop();
        throw;
    }
}

void Session::Parts::Start()
{
    courier.emplace();
    ConnectMidi();
    ConnectLights();
    ConsoleLightFading::Get();
    Announce(false); // before wings get levels
    wings.Start();   // before the lights begin, which ask a wing for the drawer
    ConsoleLightFading::Begin();
    Announce(false); // to the displays, and what wings do not get when they are attached
    ltc.Start();
    networks.Start();
    QObject::connect(
        &simulator, &DeviceSim::frameRead, &context,
        [this](const DeviceSim::Id& id, const Frame& frame) {
            TakeFrame(GetSimName(id.number), frame);
        },
        Qt::DirectConnection);
    unsigned number = 0;
    for (const std::string& source : desk.GetData().simulate)
        Tools::TimecodeSource::Parse(source).StartOn(simulator, ++number);
    NoteSimulators();
    StartMidi();
}

Session::Parts::~Parts()
{
    Stop();
}

/// Ends what was started, also when not everything was.
void Session::Parts::Stop()
{
    FollowCd(false);
    for (const unsigned number : simulator.GetInstances())
        simulator.Destroy(number);
    midi.EnableReceive(false);
    midi.EnableTransmit(false);
    QObject::disconnect(&midi, nullptr, &context, nullptr); // its end would tell it once more
    ltc.Stop();
    networks.Stop();
    ConsoleLightFading::End();
    wings.Stop();
    courier.reset();
}

void Session::Parts::NoteSimulators()
{
    std::map<unsigned, SimulatorState> noted;
    for (const unsigned number : simulator.GetInstances())
        noted[number] = {simulator.GetRate(number), simulator.GetFormat(number)};
    const std::lock_guard hold(mutex);
    simulators = std::move(noted);
}

double Session::Parts::GetSeconds() const
{
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

void Session::Parts::Report(Tools::MonitorEvent event)
{
    ++events;
    if (!take)
        return;
    event.seconds = GetSeconds();
    take(std::move(event));
}

void Session::Parts::TakeFrame(const std::string& source, const Frame& frame)
{
    {
        const std::lock_guard hold(mutex);
        meters[source].Take(frame, GetSeconds());
        // Of all frames the first and one a second are told.
        const auto [last, isFirst] = lastSecond.try_emplace(source, frame.seconds);
        if (!isFirst && std::exchange(last->second, frame.seconds) == frame.seconds)
            return;
    }
    Report({0, "timecode " + source, "frameRead", frame.toString()});
}

void Session::Parts::ForgetTimecode(const std::string& source)
{
    const std::lock_guard hold(mutex);
    meters.erase(source);
    lastSecond.erase(source);
}

void Session::Parts::AwaitMessages()
{
    courier->Await();
}

void Session::Parts::Announce(bool fade)
{
    Standalone::AnnounceLightSettings(fade);
    AwaitMessages();
}

void Session::Parts::FollowCd(bool follow)
{
    if (follow == cd.has_value())
        return;
    if (!follow) {
        cd.reset();
        return;
    }
    cd.emplace([this](Tools::MonitorEvent event) { Report(std::move(event)); },
               [this](const Frame& frame) { TakeFrame("cd", frame); });
    try {
        cd->Start();
    } catch (...) {
        cd.reset();
        throw;
    }
}

void Session::Parts::ConnectMidi()
{
    const auto report = [this](const char* signal, const std::string& text, bool isMessage) {
        std::string source;
        {
            const std::lock_guard hold(mutex);
            source = "midi " + midiState.input;
        }
        // Before it is counted: what a script waits for has been reported by then.
        Report({0, source, signal, text});
        if (isMessage) {
            const std::lock_guard hold(mutex);
            ++midiState.received;
            lastMessage = text;
        }
    };
    // Direct: system-exclusive bytes are borrowed.
    const auto connect = [this](auto signal, auto slot) {
        QObject::connect(&midi, signal, &context, slot, Qt::DirectConnection);
    };
    connect(&Device::txMidiDeviceAdded,
            [report](const Device::Id&) { report("txMidiDeviceAdded", "receiving", false); });
    connect(&Device::txMidiDeviceRemoved, [report](const Device::Id&) {
        report("txMidiDeviceRemoved", "no longer receiving", false);
    });
    connect(&Device::txShortMessage, [report](const Device::ShortMessage& message) {
        report("txShortMessage", Tools::DescribeShortMessage(message.message), true);
    });
    connect(&Device::txSysExMessage, [report](const Device::SysExMessage& message) {
        report("txSysExMessage",
               Tools::DescribeSystemExclusive(std::span(message.data, message.length)), true);
    });
}

void Session::Parts::ConnectLights()
{
    QObject::connect(
        &Hardware::WingMapper::Get(), &Hardware::WingMapper::keyboard_change, &context,
        [](Hardware::WidgetKey key, int drawer, int state) {
            ConsoleLightFading::Get().keyboard_changed(key, drawer, state);
        },
        Qt::DirectConnection);
    QObject::connect(
        &ConsoleLightFading::Get(), &ConsoleLightFading::fade_light, &context,
        [this] { ++fadeSteps; }, Qt::DirectConnection);
}

/// The first port, both ways, as a console that was set up so.
void Session::Parts::StartMidi()
{
    if (desk.GetData().midiPorts.empty())
        return;
    const std::string& name = desk.GetData().midiPorts.front().name;
    midi.SetInput(Tools::WidenPortName(name));
    sender.SetOutput(Tools::WidenPortName(name));
    {
        const std::lock_guard hold(mutex);
        midiState.input = midiState.output = name;
        midiState.isReceiving = midiState.isSending = true;
    }
    sender.EnableTransmit(true);
    StartReceiving(name);
}

void Session::Parts::StartReceiving(const std::string& port)
{
    constexpr unsigned LookMilliseconds = 5;
    constexpr int MostLooks = 2000;
    const Desk::MidiPort& device = desk.GetPort(port);
    const int before = device.CountOpened();
    midi.EnableReceive(true);
    const bool canOpen = device.IsPlugged() &&
                         desk.GetCondition("midi/" + port + "/busy").empty() &&
                         desk.GetCondition("midi/" + port + "/dead").empty();
    int looks = 0;
    for (; canOpen && looks < MostLooks && device.CountOpened() == before; ++looks)
        Os::Thread::Sleep(LookMilliseconds);
    if (!canOpen || looks == MostLooks)
        Report({0, "midi " + port, "waiting", "cannot be opened; it is tried again and again"});
}

bool Session::Parts::TakeSent(const std::string& port, unsigned milliseconds)
{
    Desk::MidiPort& device = desk.GetPort(port);
    if (!device.IsPlugged())
        return false;
    const std::vector<std::uint8_t> bytes = device.Receive(milliseconds);
    if (bytes.empty())
        return false;
    {
        const std::lock_guard hold(mutex);
        midiState.sent += bytes.size();
    }
    std::string text = Tools::FormatHex(bytes);
    if (const auto message = Tools::PackShortMessage(bytes))
        text += ", " + Tools::DescribeShortMessage(*message);
    Report({0, "midi " + port + " out", "received", text});
    return true;
}

} // namespace Console
