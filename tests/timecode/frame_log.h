// SPDX-License-Identifier: MIT
#pragma once

#include <mutex>
#include <string>
#include <vector>

#include "hardware/timecode/device.h"
#include "timecode/proc_self.h"

namespace TestSupport
{

/// Takes down what a timecode device reports, on whichever thread. Outlives the device.
class FrameLog
{
public:
    explicit FrameLog(Hardware::Timecode::Device& device)
    {
        using Hardware::Timecode::Device;
        using Hardware::Timecode::Frame;
        QObject::connect(&device, &Device::deviceAdded,
                         [this](const Device::Id& id) { Note("added", id); });
        QObject::connect(&device, &Device::deviceRemoved,
                         [this](const Device::Id& id) { Note("removed", id); });
        QObject::connect(&device, &Device::frameRead, [this](const auto& id, const Frame& frame) {
            const std::lock_guard hold(m_mutex);
            m_frames.push_back(frame.toString());
            m_ids.push_back(id);
            m_threads.push_back(GetThreadId());
        });
    }

    /// Sources added and removed, such as "added 3", oldest first.
    std::vector<std::string> GetEvents() const { return Get(m_events); }
    /// Texts of all frames, oldest first.
    std::vector<std::string> GetFrames() const { return Get(m_frames); }
    /// Names of the sources of all frames, arrivals and removals.
    std::vector<Hardware::Timecode::Device::Id> GetIds() const { return Get(m_ids); }
    /// Threads that the frames came on.
    std::vector<int> GetThreads() const { return Get(m_threads); }
    std::size_t CountFrames() const
    {
        const std::lock_guard hold(m_mutex);
        return m_frames.size();
    }

private:
    void Note(const char* event, const Hardware::Timecode::Device::Id& id)
    {
        const std::lock_guard hold(m_mutex);
        m_events.push_back(std::string(event) + " " + std::to_string(id.number));
        m_ids.push_back(id);
    }

    template <class List> List Get(const List& list) const
    {
        const std::lock_guard hold(m_mutex);
        return list;
    }

    mutable std::mutex m_mutex;
    std::vector<std::string> m_events;
    std::vector<std::string> m_frames;
    std::vector<Hardware::Timecode::Device::Id> m_ids;
    std::vector<int> m_threads;
};

} // namespace TestSupport
