// SPDX-License-Identifier: MIT
#include "hwctl/midi_player.h"

#include <chrono>
#include <utility>

namespace Hwctl
{

MidiPlayer::MidiPlayer(Tools::MidiRecording recording, Desk::MidiPort& port, bool paced)
    : m_recording(std::move(recording)), m_port(port), m_paced(paced)
{
}

MidiPlayer::~MidiPlayer()
{
    Stop();
}

void MidiPlayer::Start()
{
    m_thread = std::thread([this] { Run(); });
}

void MidiPlayer::Stop()
{
    {
        const std::lock_guard hold(m_mutex);
        m_stop = true;
        m_changed.notify_all();
    }
    if (m_thread.joinable())
        m_thread.join();
}

MidiPlayer::Progress MidiPlayer::GetProgress() const
{
    const std::lock_guard hold(m_mutex);
    return m_progress;
}

void MidiPlayer::Run()
{
    const auto start = std::chrono::steady_clock::now();
    for (const Tools::MidiRecording::Event& event : m_recording.events) {
        const auto due = start + std::chrono::milliseconds(m_paced ? event.milliseconds : 0);
        {
            std::unique_lock hold(m_mutex);
            if (m_changed.wait_until(hold, due, [this] { return m_stop; }))
                break;
        }
        if (!m_port.Send(event.bytes))
            break;
        const std::lock_guard hold(m_mutex);
        m_progress.messages += event.messages;
        m_progress.bytes += event.bytes.size();
    }
    const std::lock_guard hold(m_mutex);
    m_progress.finished = true;
}

} // namespace Hwctl
