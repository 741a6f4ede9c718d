// SPDX-License-Identifier: MIT
#pragma once

#include <QObject>
#include <array>
#include <cstdint>
#include <functional>
#include <list>
#include <string>

#include "hardware/export.h"
#include "kel/ptr.h"

namespace Hardware::Midi
{

class _DeviceImpl;

/// One MIDI input and one MIDI output, chosen by port name.
///
/// Reception runs on a thread of the device's own and raises the two message signals there.
/// Reception is switched by one thread at a time. Messages are sent, and running status is
/// switched, by one thread at a time. The rest may be called from any thread. A slot connected
/// directly must not switch reception and must not delete the device, because the receive thread
/// would wait for itself; deleteLater() works. A derived class switches reception and transmission
/// off in its own destructor, while its members and its SendBuffer() are still there.
///
/// The receive thread installs a handler of the library's for SIGUSR1, which stays installed. Sent
/// to that thread, the signal interrupts its wait, and the input is closed and opened again.
///
/// Input is simpler than the MIDI standard in three places. A real-time byte (0xF8 to 0xFF) is a
/// message of its own that ends running status and discards a message that is only partly there. A
/// system-exclusive message of more than 129 bytes, both ends included, is discarded without a
/// signal. Song select (0xF3) arrives without its data byte.
class HARDWARE_EXPORT Device : public QObject
{
    Q_OBJECT

public:
    /// Names the source of an event.
    struct Id {
        Device* device = nullptr; ///< borrowed
        std::uint32_t number = 0; ///< always 0: a device has one pair of ports

        bool operator==(const Id& other) const = default;
        /// Orders by device, in no order that means anything, then by number.
        bool operator<(const Id& other) const
        {
            return device == other.device ? number < other.number
                                          : std::less<>()(device, other.device);
        }
    };

    /// A received channel or system message other than system exclusive. May be queued: id is
    /// the device's own and lives as long as the device.
    struct ShortMessage {
        const Id* id = nullptr;
        /// Status in bits 0 to 7, first data byte in bits 8 to 15, second in bits 16 to 23; what
        /// the message does not have is 0.
        std::uint32_t message = 0;
    };

    /// A received system-exclusive message. Its bytes are borrowed for the length of the signal, so
    /// only a direct connection may read them.
    struct SysExMessage {
        const Id* id = nullptr;
        const unsigned char* data = nullptr; ///< 0xF0 ... 0xF7
        std::uint32_t length = 0;            ///< bytes, both ends included, at most 129
    };

    /// Bytes of a channel message by the high nibble of its status; 0 where there is none.
    static const unsigned char noteMessageLength[16];
    /// Bytes of a system message by the low nibble of its status. 0xF0 has the room for a system
    /// exclusive message, and song select (0xF3) counts as 1, without its data byte, on purpose.
    static const unsigned int systemMessageLength[16];

    /// Opens nothing and starts nothing. Running status is on.
    Device();
    /// Switches reception and transmission off; reports txMidiDeviceRemoved() in any case.
    ~Device() override;

    /// Names of all MIDI ports there are now, in ascending order, each once. Asks the system anew
    /// on every call. Each byte of a driver's name is one character with the sign of the byte:
    /// bytes above 0x7F become negative characters, which come before all others. Pass a name on as
    /// it is here, and decode it only to show it.
    static std::list<std::wstring> GetInputs();
    /// The same names: every port serves both directions.
    static std::list<std::wstring> GetOutputs();

    /// Sets the port for the next time that the input is opened: when reception is switched on, or
    /// when the port in use fails.
    void SetInput(const std::wstring& name);
    /// Sets the port for the next time that the output is opened: by the first message after
    /// transmission was switched on, or after one that failed.
    void SetOutput(const std::wstring& name);

    /// Switches reception. On: the thread runs when this returns, and txMidiDeviceAdded() was
    /// raised if it was off; a port that is missing or fails is tried again every 250 ms. Off:
    /// raises txMidiDeviceRemoved(), also when it was off, and waits for the thread, about 250 ms
    /// beyond a slot that is running. Until this has returned, messages may still arrive.
    void EnableReceive(bool enable);
    bool IsReceiveEnabled() const;
    /// Switches transmission. On opens nothing yet; off closes the output, which may wait until the
    /// driver has sent what it holds.
    void EnableTransmit(bool enable);
    bool IsTransmitEnabled() const;
    /// Lets SendShortMessage() leave out a status byte that repeats. The status remembered is kept.
    /// Called by the thread that sends.
    ///
    /// SendShortMessage() compares with the message that it sent before, whatever was sent in
    /// between: the status byte is also left out after bytes that SendBuffer() sent, such as a
    /// system-exclusive message, and on another output port. A receiver that follows the MIDI
    /// standard discards the message then. To send the status byte once, switch running status off,
    /// send the message and switch it on again.
    void EnableTxRunningStatus(bool enable);

    /// Sends a message packed as in ShortMessage.
    ///
    /// True only when the message was sent without its status byte; false after every send that
    /// included it, successful or not, so false is no sign of failure. A system message, real time
    /// included, makes the next channel message carry its status byte. System exclusive (0xF0) is
    /// not sent this way: nothing is written, use SendBuffer().
    bool SendShortMessage(unsigned int message);
    /// Sends @p length bytes as they are with one write. True when all were taken; otherwise the
    /// output is closed and the next send opens it again. Does not block: a full port is a failure.
    virtual bool SendBuffer(const unsigned char* data, unsigned int length);

Q_SIGNALS:
    // Spelled in full: Qt compares the arguments of signals and slots as text.

    /// Reception was switched on. On the thread that switched it.
    void txMidiDeviceAdded(const Hardware::Midi::Device::Id& id);
    /// Reception was switched off. On the thread that switched it, before it waits for the receive
    /// thread: a message may still follow until EnableReceive() or the destructor returns.
    void txMidiDeviceRemoved(const Hardware::Midi::Device::Id& id);
    /// A system-exclusive message came in. On the receive thread; connect directly.
    void txSysExMessage(const Hardware::Midi::Device::SysExMessage& message);
    /// Any other message came in. On the receive thread.
    void txShortMessage(const Hardware::Midi::Device::ShortMessage& message);

private:
    bool SendSystemMessage(const std::array<unsigned char, 3>& bytes);
    bool SendChannelMessage(const std::array<unsigned char, 3>& bytes);

    bool m_runningStatus = true;
    unsigned char m_lastStatus = 0; // 0 for none
    kel::ptr<_DeviceImpl> m_impl;
};

} // namespace Hardware::Midi

Q_DECLARE_METATYPE(Hardware::Midi::Device::Id)
Q_DECLARE_METATYPE(Hardware::Midi::Device::ShortMessage)
Q_DECLARE_METATYPE(Hardware::Midi::Device::SysExMessage)
