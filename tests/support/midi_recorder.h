// SPDX-License-Identifier: MIT
#pragma once

#include <QObject>
#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <mutex>
#include <thread>
#include <vector>

#include "hardware/midi/device.h"

namespace TestSupport
{

/// Records every signal of a MIDI device, on whichever thread it comes.
class MidiRecorder
{
public:
    struct Event {
        enum Kind { Added, Removed, Short, SysEx } kind;
        const Hardware::Midi::Device* device;
        std::uint32_t number;
        std::uint32_t message;
        std::vector<unsigned char> data;
        std::thread::id thread;
    };

    explicit MidiRecorder(const Hardware::Midi::Device& device)
    {
        using Hardware::Midi::Device;
        const auto connect = [&](auto signal, auto slot) {
            QObject::connect(&device, signal, &m_context, slot, Qt::DirectConnection);
        };
        connect(&Device::txMidiDeviceAdded,
                [this](const Device::Id& id) { Add(Event::Added, id, 0, {}); });
        connect(&Device::txMidiDeviceRemoved,
                [this](const Device::Id& id) { Add(Event::Removed, id, 0, {}); });
        connect(&Device::txShortMessage, [this](const Device::ShortMessage& message) {
            Add(Event::Short, *message.id, message.message, {});
        });
        connect(&Device::txSysExMessage, [this](const Device::SysExMessage& message) {
            Add(Event::SysEx, *message.id, 0, {message.data, message.data + message.length});
        });
    }

    std::vector<Event> GetEvents() const
    {
        const std::lock_guard hold(m_mutex);
        return m_events;
    }

    std::size_t Count(Event::Kind kind) const
    {
        std::size_t count = 0;
        for (const Event& event : GetEvents())
            count += event.kind == kind;
        return count;
    }

    /// The packed short messages so far, oldest first.
    std::vector<std::uint32_t> GetMessages() const
    {
        std::vector<std::uint32_t> messages;
        for (const Event& event : GetEvents())
            if (event.kind == Event::Short)
                messages.push_back(event.message);
        return messages;
    }

    /// Waits until @p count events of a kind came; false when they do not come within 20 s.
    bool WaitFor(Event::Kind kind, std::size_t count) const
    {
        std::unique_lock hold(m_mutex);
        return m_changed.wait_for(hold, std::chrono::seconds(20), [&] {
            std::size_t found = 0;
            for (const Event& event : m_events)
                found += event.kind == kind;
            return found >= count;
        });
    }

private:
    void Add(typename Event::Kind kind, const Hardware::Midi::Device::Id& id, std::uint32_t message,
             std::vector<unsigned char> data)
    {
        const std::lock_guard hold(m_mutex);
        m_events.push_back(
            {kind, id.device, id.number, message, std::move(data), std::this_thread::get_id()});
        m_changed.notify_all();
    }

    QObject m_context;
    mutable std::mutex m_mutex;
    mutable std::condition_variable m_changed;
    std::vector<Event> m_events; // guarded by m_mutex
};

} // namespace TestSupport
