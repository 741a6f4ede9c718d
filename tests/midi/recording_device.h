// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <vector>

#include "hardware/midi/device.h"

namespace TestSupport::MidiMessages
{

typedef std::vector<unsigned char> Bytes;

inline constexpr unsigned NoteOn = 0x00643C90;
inline constexpr unsigned TimingClock = 0xF8;
inline const Bytes NoteOnWhole{0x90, 0x3C, 0x64};
inline const Bytes NoteOnData{0x3C, 0x64};

/// Keeps what is sent instead of writing it to a port.
class RecordingDevice : public Hardware::Midi::Device
{
public:
    bool SendBuffer(const unsigned char* data, unsigned int length) override
    {
        m_sent.emplace_back(data, data + length);
        return m_working;
    }

    void SetWorking(bool working) { m_working = working; }
    const std::vector<Bytes>& GetSent() const { return m_sent; }
    const Bytes& GetLast() const { return m_sent.back(); }

private:
    bool m_working = true;
    std::vector<Bytes> m_sent;
};

/// A message of that status with two data bytes.
inline unsigned Pack(unsigned status)
{
    return status | 0x11U << 8 | 0x22U << 16;
}

/// The first bytes of what Pack() makes.
inline Bytes Layout(unsigned status, std::size_t length)
{
    Bytes bytes{static_cast<unsigned char>(status), 0x11, 0x22};
    bytes.resize(length);
    return bytes;
}

} // namespace TestSupport::MidiMessages
