// SPDX-License-Identifier: MIT
#pragma once

#include <chrono>
#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "desk/sequencer.h"

namespace Desk
{

/// A virtual MIDI port: a device file that is transparent to bytes and whose far end is held here.
///
/// Plugged by its construction. The sequencer gives it its index and so its device file, /dev/midi,
/// /dev/midi1 and so on. Verbs may be called from any one thread at a time, while the library uses
/// the port.
class MidiPort
{
public:
    MidiPort(KernelTestbed& testbed, Sequencer& sequencer, const std::string& name);
    ~MidiPort();
    MidiPort(const MidiPort&) = delete;
    MidiPort& operator=(const MidiPort&) = delete;

    const std::string& GetName() const;
    /// Index in the sequencer's list; the last one while unplugged.
    int GetIndex() const;
    /// The device file, such as "/dev/midi1".
    const std::string& GetPath() const;
    bool IsPlugged() const;

    /// Puts bytes on the library's input. Waits for a reader who makes room, 20 s unless told.
    /// @return false when the port is unplugged or nobody read for so long
    bool Send(std::span<const std::uint8_t> bytes,
              std::chrono::milliseconds patience = std::chrono::seconds(20));
    /// Takes the bytes that the library wrote, waiting up to @p milliseconds for the first one.
    std::vector<std::uint8_t> Receive(unsigned milliseconds);
    /// Takes exactly @p count bytes; fewer when they do not come within 20 s.
    std::vector<std::uint8_t> ReceiveCount(std::size_t count);

    /// Pulls the plug: the port leaves the list and its file goes. Who has it open finds it
    /// readable and gets ENODEV from reads and writes.
    void Unplug();
    /// Plugs it in again: a fresh device under the lowest free index.
    void Plug();
    /// As if another program held the port: further opens fail with EBUSY.
    void SetBusy(bool busy);
    /// Leaves room for @p bytes more: a longer write is cut there, and later ones get EAGAIN.
    void Fill(std::size_t bytes = 0);
    /// Ends Fill().
    void Drain();
    /// Lets every read find the end of the file, as after a hang-up.
    void SetAtEnd(bool atEnd);
    /// The program behind the port dies: it stays listed, but whoever uses it gets ENOTCONN.
    void KillServer();

    /// Descriptors that the library has open now.
    int CountOpen() const;
    /// Opens that succeeded, since the port was plugged.
    int CountOpened() const;
    /// Flags of the last of them, as passed to open().
    int GetLastOpenFlags() const;
    /// Limit of the last select() on the port, in microseconds; 0 before the first.
    long GetLastWait() const;

    struct Private;

private:
    const std::unique_ptr<Private> m_private;
};

} // namespace Desk
