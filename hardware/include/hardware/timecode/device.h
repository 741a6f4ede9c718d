// SPDX-License-Identifier: MIT
#pragma once

#include <QObject>
#include <cstdint>
#include <functional>

#include "hardware/export.h"
#include "hardware/timecode/enumerations.h"
#include "hardware/timecode/frame.h"

namespace Hardware::Timecode
{

/// A device with one or more sources of timecode: what LTC boards, CD drives and simulated sources
/// have in common. Connect once per device, whatever the time comes from.
///
/// Signals are raised on whichever thread has the news: the device's own threads, the widget
/// driver's, or the caller's. A queued connection carries them to a thread of yours. A slot
/// connected directly must not stop or destroy the source whose thread it runs on. The device adds
/// no lock and no queue. Owned by its Qt parent or by whoever made it.
class HARDWARE_EXPORT Device : public QObject
{
    Q_OBJECT

public:
    /// Names one source of one device. A value; the device is borrowed.
    struct Id {
        Device* device = nullptr;
        std::uint32_t number = 0; ///< the source's number within the device

        bool operator==(const Id& other) const = default;
        /// Orders by device, in no order that means anything, then by number.
        bool operator<(const Id& other) const
        {
            return device == other.device ? number < other.number
                                          : std::less<>()(device, other.device);
        }
    };

    Device(TimecodeType type, QObject* parent);
    ~Device() override;

    /// Starts listening to the hardware, or lets the sources report. True on success.
    virtual bool Enable() = 0;
    /// Stops it. True on success.
    virtual bool Disable() = 0;
    /// True while Enable() is in force.
    virtual bool IsEnabled() const = 0;
    /// True while a source is producing time.
    virtual bool IsActive() const = 0;

    /// The type given at construction. Any thread.
    TimecodeType GetType() const { return m_type; }

    // Raise the signal of the same name on the calling thread. They are public for the helpers of a
    // device that are not the device itself.
    void emitDeviceAdded(const Id& id);
    void emitDeviceRemoved(const Id& id);
    void emitFrameRead(const Id& id, const Frame& frame);

Q_SIGNALS:
    // Spelled in full: Qt compares the arguments of signals and slots as text.
    void deviceAdded(const Hardware::Timecode::Device::Id& id);
    void deviceRemoved(const Hardware::Timecode::Device::Id& id);
    void frameRead(const Hardware::Timecode::Device::Id& id,
                   const Hardware::Timecode::Frame& frame);

private:
    const TimecodeType m_type;
};

} // namespace Hardware::Timecode

Q_DECLARE_METATYPE(Hardware::Timecode::Device::Id)
