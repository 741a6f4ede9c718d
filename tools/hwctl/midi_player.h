// SPDX-License-Identifier: MIT
#pragma once

#include <atomic>
#include <condition_variable>
#include <mutex>
#include <thread>

#include "common/midi_recording.h"
#include "desk/midi_port.h"

namespace Hwctl
{

/// Plays a recording into a virtual port, on a thread of its own, at its own pace or at once.
class MidiPlayer
{
public:
    struct Progress {
        std::size_t messages = 0; ///< that a receiver completes with what was sent
        std::size_t bytes = 0;    ///< sent
        bool finished = false;    ///< nothing more will be sent
    };

    /// @param paced false to send everything without pauses
    MidiPlayer(Tools::MidiRecording recording, Desk::MidiPort& port, bool paced);
    /// Stops playing.
    ~MidiPlayer();
    MidiPlayer(const MidiPlayer&) = delete;
    MidiPlayer& operator=(const MidiPlayer&) = delete;

    void Start();
    /// Stops playing and waits for that; at most until the port takes what is being sent.
    void Stop();
    Progress GetProgress() const;

private:
    void Run();

    const Tools::MidiRecording m_recording;
    Desk::MidiPort& m_port;
    const bool m_paced;
    mutable std::mutex m_mutex;
    std::condition_variable m_changed;
    bool m_stop = false;  // guarded by m_mutex
    Progress m_progress;  // guarded by m_mutex
    std::thread m_thread; // the owner's
};

} // namespace Hwctl
