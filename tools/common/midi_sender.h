// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <span>
#include <string>

#include "hardware/midi/device.h"

namespace Tools
{

/// Sends on a MIDI device so that a standard receiver understands every message.
///
/// With running status the device leaves out a status byte that it sent before, whatever went out
/// in between and on whichever port. A receiver has forgotten it after a system exclusive, and one
/// at another port never had it: the next short message then carries its own. All sending and
/// switching of outputs goes through here. One thread at a time; the device outlives it.
class MidiSender
{
public:
    explicit MidiSender(Hardware::Midi::Device& device) : m_device(device) {}

    void EnableRunningStatus(bool enable);
    void SetOutput(const std::wstring& name);
    void EnableTransmit(bool enable);
    /// @param message packed as the device takes it
    void SendShortMessage(std::uint32_t message);
    /// Bytes as they are, such as a system exclusive. False when the port did not take them.
    bool SendBuffer(std::span<const std::uint8_t> bytes);

private:
    Hardware::Midi::Device& m_device;
    bool m_isRunningStatusOn = true;
    bool m_needsStatus = true; // the receiver may not know the last status
};

} // namespace Tools
