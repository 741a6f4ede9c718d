// SPDX-License-Identifier: MIT
#pragma once

#include <QObject>
#include <atomic>
#include <chrono>
#include <mutex>
#include <optional>

#include "common/midi_sender.h"
#include "console/desk_names.h"
#include "console/message_courier.h"
#include "console/session.h"
#include "hardware/cd_player.h"
#include "hardware/midi/device.h"
#include "hardware/timecode/device_sim.h"
#include "watch/cd_watch.h"
#include "watch/desk_watch.h"
#include "watch/ltc_watch.h"
#include "watch/network_watch.h"
#include "watch/wing_watch.h"

namespace Console
{

/// What a session is made of, for the sources of its verbs. Verbs and ticks take turns by
/// verbMutex, which guards the devices here; what is counted and measured has a lock of its own.
struct Session::Parts {
    Parts(const Desk::DeskData& data, Tools::EventTaker itsTake);
    ~Parts();
    Parts(const Parts&) = delete;
    Parts& operator=(const Parts&) = delete;

    double GetSeconds() const;
    /// Gives an event its time and hands it on. Any thread.
    void Report(Tools::MonitorEvent event);
    /// A source of timecode delivered a frame. Any thread.
    void TakeFrame(const std::string& source, const Hardware::Timecode::Frame& frame);
    /// Forgets a source.
    void ForgetTimecode(const std::string& source);
    /// Notes how the simulated sources are set, for who does not take a turn.
    void NoteSimulators();
    /// Returns once the application has acted on the messages that were posted before.
    void AwaitMessages();
    /// Has the settings shown, at once or by fades.
    void Announce(bool fade);
    /// Switches reception on and waits until the application has its input open. One that it cannot
    /// open now is an event: the application tries again and again.
    void StartReceiving(const std::string& port);
    /// Takes what arrived at a port's far end, waiting so long for the first byte. False for
    /// nothing.
    bool TakeSent(const std::string& port, unsigned milliseconds);
    /// Starts and stops listening to the CD's timecode: its device asks a drive that does not play
    /// without any pause.
    void FollowCd(bool follow);

    const std::chrono::steady_clock::time_point start = std::chrono::steady_clock::now();
    const Tools::EventTaker take;
    Desk::VirtualDesk desk;
    DeskNames names{desk.GetData()};

    std::mutex verbMutex;
    std::mutex serialMutex; // one at a time plugs and unplugs lines

    std::mutex mutex;
    std::map<std::string, TimecodeMeter> meters;    // guarded by mutex
    std::map<std::string, std::int32_t> lastSecond; // guarded by mutex
    std::map<unsigned, SimulatorState> simulators;  // guarded by mutex
    MidiState midiState;                            // guarded by mutex
    std::string lastMessage;                        // guarded by mutex

    std::atomic<bool> isScreenSaverOn{false};
    std::atomic<unsigned> fadeSteps{0};
    std::atomic<std::uint64_t> events{0};
    std::atomic<std::uint64_t> inputs{0}; // signals of wings

    // The application. Its devices end before what their threads report to.
    std::optional<MessageCourier> courier; // from the start to the end
    QObject context;
    Hardware::Midi::Device midi;
    Tools::MidiSender sender{midi};
    Hardware::Timecode::DeviceSim simulator{nullptr};
    CdPlayer player;
    std::optional<Tools::CdWatch> cd;
    Tools::DeskWatch deskWatch;
    Tools::WingWatch wings;
    Tools::LtcWatch ltc;
    Tools::NetworkWatch networks;

private:
    void Start();
    void Stop();
    void ConnectMidi();
    void ConnectLights();
    void StartMidi();
};

} // namespace Console
