// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "console/timecode_meter.h"
#include "desk/virtual_desk.h"
#include "hardware/console_lights.h"
#include "watch/event.h"

namespace Console
{

/// A verb as a user is told of it.
struct VerbHelp {
    std::string usage; ///< such as "widget PATH press BUTTON"
    std::string text;  ///< what it does
};

/// How MIDI is set.
struct MidiState {
    std::string input;
    std::string output;
    bool isReceiving = false;
    bool isSending = false;
    bool isRunningStatusOn = true;
    std::uint64_t received = 0; ///< messages
    std::uint64_t sent = 0;     ///< bytes that arrived at the far ends of ports
};

/// How a simulated source of timecode is set.
struct SimulatorState {
    double rate = 0; ///< frames per second; negative while it runs backwards
    Hardware::TimecodeFormat format = Hardware::TimecodeFormat_Invalid;

    bool operator==(const SimulatorState&) const = default;
};

/// A virtual desk and a console's application that works it: the library is started as an
/// application starts it, with wings, lights, MIDI, timecode, link lights and CD, and everything
/// that a hand does to the desk, or that a user does to the application, is a verb.
///
/// One per process, made behind a QCoreApplication. Messages are delivered on a thread of its own.
/// Verbs may be called from any thread; they take turns.
class Session
{
public:
    /// Configures the platform, makes the devices and starts the application. Throws
    /// std::invalid_argument and std::runtime_error for a desk that there cannot be.
    /// @param take gets every event, on the thread that has the news; may be empty
    explicit Session(const Desk::DeskData& data, Tools::EventTaker take = {});
    /// Ends the application as its user would, and takes the devices away. On the thread that made
    /// it, with no verb under way.
    ~Session();
    Session(const Session&) = delete;
    Session& operator=(const Session&) = delete;

    /// Does one verb, such as "widget motor press 71" or "light work=20/2". Words with blanks stand
    /// in double quotes; the verb and names of devices count whatever their case. Throws
    /// std::invalid_argument for what is not a verb, and std::runtime_error for what cannot be done
    /// now.
    void Do(const std::string& command);
    /// Whether a verb lets a stuck device go, such as "serial /dev/ttyS0 resume". Such a verb takes
    /// no turn: it can be done while another one waits for the device.
    static bool Mends(const std::string& command);
    /// Ends what a verb may be waiting for, such as a serial line that is stalled. Any thread.
    void Release();
    /// Every verb, in groups of what they work on.
    static const std::vector<VerbHelp>& GetVerbs();
    /// The verb, or step of a script, that a word stands for, whatever its case. Throws
    /// std::invalid_argument with the nearest ones and all that there are for any other word.
    static std::string FindVerb(const std::string& word);

    /// A path of what GetState() tells, whatever the case of its letters. Something need not stand
    /// there yet. Throws std::invalid_argument with the nearest ones for a path that there cannot
    /// be. Any thread.
    std::string FindPath(const std::string& path, const nlohmann::json& state) const;

    /// Everything that can be seen, for tests and scripts; see docs/virtual-desk.md. Any thread.
    nlohmann::json GetState() const;
    /// Looks after what nobody signals: what arrived at the far ends of MIDI ports, and a disc that
    /// came to its end. To be called several times a second; does nothing while a verb is under
    /// way.
    void Tick();

    // For a window, any thread.

    Desk::VirtualDesk& GetDesk();
    const Desk::VirtualDesk& GetDesk() const;
    /// By name of the source, such as "ltc 0", "sim 1" and "cd".
    std::map<std::string, TimecodeReading> GetTimecode() const;
    /// Simulated sources by number, as the last verb left them; also those without a frame so far.
    std::map<unsigned, SimulatorState> GetSimulators() const;
    MidiState GetMidi() const;
    bool IsScreenSaverOn() const;
    /// Since the start.
    double GetSeconds() const;

    struct Parts;

private:
    const std::unique_ptr<Parts> m_parts;
};

} // namespace Console
