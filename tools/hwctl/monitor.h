// SPDX-License-Identifier: MIT
#pragma once

#include <QElapsedTimer>
#include <QEventLoop>
#include <QTimer>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "common/timecode_source.h"
#include "hardware/midi/device.h"
#include "hardware/timecode/device_sim.h"
#include "hwctl/event_printer.h"
#include "hwctl/event_queue.h"
#include "hwctl/midi_player.h"
#include "hwctl/network_player.h"
#include "hwctl/widget_player.h"
#include "watch/cd_watch.h"
#include "watch/desk_watch.h"
#include "watch/ltc_watch.h"
#include "watch/network_watch.h"
#include "watch/wing_watch.h"

namespace Hwctl
{

/// What a monitor run watches and when it ends.
struct MonitorOptions {
    /// MIDI ports to receive from, whether there or not; all that are there or come where empty.
    std::vector<std::string> ports;
    bool midi = false;                          ///< receive from MIDI ports
    std::vector<Tools::TimecodeSource> sources; ///< simulated timecode to run
    bool wings = false;                         ///< watch wings and LTC boards
    bool networks = false;                      ///< watch networks and work the link lights
    bool cd = false;                            ///< watch the CD drive
    bool echo = false;                          ///< a pressed button lights its LED
    std::optional<double> seconds;              ///< ends after so long
    std::optional<unsigned> frames;             ///< ends after so many frames of every source
    bool json = false;
    bool hideClock = false;  ///< count timing clock and active sensing, but do not print them
    bool hideFrames = false; ///< count timecode frames, but print only one a second
};

/// Receives MIDI and timecode and prints every signal until something ends it. Says what is
/// missing, and takes it when it comes.
///
/// Signals arrive on the devices' threads; there each becomes a Tools::MonitorEvent, which the
/// thread of the event loop prints, so that a slow screen never holds up a device.
class Monitor
{
public:
    Monitor(const MonitorOptions& options, std::FILE* out);
    ~Monitor();
    Monitor(const Monitor&) = delete;
    Monitor& operator=(const Monitor&) = delete;

    /// Plays into a virtual port while the monitor runs; its end is the run's unless another is
    /// set.
    void SetPlayer(MidiPlayer* player) { m_player = player; }

    /// Does things to virtual widgets while the monitor runs, and prints what is done to them.
    void SetWidgetPlayer(WidgetPlayer* player) { m_widgetPlayer = player; }
    void WatchDesk(const Desk::WidgetBus& bus);

    /// Does things to virtual network adapters while the monitor runs.
    void SetNetworkPlayer(NetworkPlayer* player) { m_networkPlayer = player; }

    /// Called on the loop's thread as soon as an LTC board is heard, so that none of what it plays
    /// is missed.
    void SetTape(std::function<void()> play) { m_tape = std::move(play); }

    /// Runs, prints the summary and returns an ExitCode: failure when anything was dropped.
    int Run();

private:
    struct Source {
        Tools::TimecodeSource description;
        Hardware::Timecode::Index next; ///< position of the frame expected next
        std::int32_t lastSecond = -1;
        std::size_t frames = 0;
        std::size_t dropped = 0;
    };

    Hardware::Midi::Device& AddPort(const std::string& name);
    void AddSource(unsigned number, const Tools::TimecodeSource& source);
    void AddWings();
    void AddCd();
    Tools::EventTaker MakeWidgetTaker(bool counts);
    void PostForeignFrame(const std::string& source, unsigned number,
                          const Hardware::Timecode::Frame& frame);
    void PrintFrame(const std::string& source, unsigned number,
                    const Hardware::Timecode::Frame& frame, double seconds);
    void Post(Tools::MonitorEvent event, std::size_t messages, std::size_t bytes);
    void PostFrame(unsigned number, const Hardware::Timecode::Frame& frame);
    void TakeFrame(unsigned number, const Hardware::Timecode::Frame& frame, double seconds);
    void StartDevices();
    void StartNetworks();
    void StartCd();
    void StopDevices();
    void LookForDevices();
    void LookForPorts(bool isStart);
    void ReportPresence(const std::string& source, bool isThere, const std::string& text);
    void ReportMissing();
    void CheckPlayer();
    bool IsEveryMessageIn() const;
    int Summarize();
    double GetSeconds() const;

    const MonitorOptions m_options;
    EventPrinter m_printer;
    QElapsedTimer m_clock;
    EventQueue m_queue; // what is posted to it runs on the loop's thread
    QEventLoop m_loop;
    QTimer m_endTimer;
    QTimer m_playerTimer;
    QTimer m_lookTimer;
    MidiPlayer* m_player = nullptr;
    WidgetPlayer* m_widgetPlayer = nullptr;
    NetworkPlayer* m_networkPlayer = nullptr;
    int m_idleChecks = 0;

    // On the loop's thread only.
    std::function<void()> m_tape; // empty once it plays
    std::map<unsigned, Source> m_sources;
    std::size_t m_messages = 0;
    std::size_t m_bytes = 0;
    std::size_t m_frames = 0;
    std::size_t m_wingSignals = 0;
    std::map<std::string, std::int32_t> m_foreignSeconds; // last second printed, by source

    std::map<std::string, bool> m_ports; // by name, whether they are there
    std::string m_cdProblem;             // why the drive is not watched yet
    bool m_isCdOn = false;

    // Last, so that their threads end before what they report to.
    std::vector<std::unique_ptr<Hardware::Midi::Device>> m_devices;
    std::unique_ptr<Hardware::Timecode::DeviceSim> m_simulator;
    std::unique_ptr<Tools::WingWatch> m_wings;
    std::unique_ptr<Tools::LtcWatch> m_ltc;
    std::unique_ptr<Tools::NetworkWatch> m_networks;
    std::unique_ptr<Tools::CdWatch> m_cd;
    std::unique_ptr<Tools::DeskWatch> m_desk;
};

} // namespace Hwctl
