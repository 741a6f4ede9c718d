// SPDX-License-Identifier: MIT

// Feeds arbitrary bytes to the MIDI input parser and to the naive one of the tests, and stops where
// they differ or where a message is not within its bounds.

#include <algorithm>
#include <optional>
#include <utility>

#include "midi/linux/midi_device_impl.h"
#include "require.h"
#include "support/naive_midi_parser.h"

using Fuzz::Require;
using Hardware::Midi::Device;
using TestSupport::MidiMessage;

namespace
{

constexpr std::size_t LongestSystemExclusive = 129;

bool IsData(unsigned char byte)
{
    return byte < 0x80;
}

void CheckShortMessage(std::uint32_t message)
{
    Require((message & 0x80) != 0, "a short message without status byte");
    Require((message & 0xFF80'8000) == 0, "a short message with more than data bytes after it");
}

void CheckSystemExclusive(const Device::SysExMessage& message)
{
    Require(message.length >= 2 && message.length <= LongestSystemExclusive,
            "a system-exclusive message of a length that cannot be");
    const unsigned char* const last = message.data + message.length - 1;
    Require(*message.data == 0xF0 && *last == 0xF7, "a system-exclusive message without its ends");
    Require(std::all_of(message.data + 1, last, IsData), "a status byte in system exclusive data");
}

/// The device whose signals the parser under test raises, and what they brought.
class Listener
{
public:
    Listener()
    {
        QObject::connect(
            &m_device, &Device::txShortMessage, &m_device,
            [this](const Device::ShortMessage& message) { TakeShort(message); },
            Qt::DirectConnection);
        QObject::connect(
            &m_device, &Device::txSysExMessage, &m_device,
            [this](const Device::SysExMessage& message) { TakeSystemExclusive(message); },
            Qt::DirectConnection);
    }

    Device& GetDevice() { return m_device; }

    /// What came since the last call.
    std::optional<MidiMessage> Take() { return std::exchange(m_message, std::nullopt); }

private:
    void TakeShort(const Device::ShortMessage& message)
    {
        Require(message.id->device == &m_device && message.id->number == 0, "a foreign id");
        CheckShortMessage(message.message);
        Keep({message.message, {}});
    }

    void TakeSystemExclusive(const Device::SysExMessage& message)
    {
        Require(message.id->device == &m_device && message.id->number == 0, "a foreign id");
        CheckSystemExclusive(message);
        Keep({0, {message.data, message.data + message.length}});
    }

    void Keep(MidiMessage message)
    {
        Require(!m_message, "two messages out of one byte");
        m_message = std::move(message);
    }

    Device m_device;
    std::optional<MidiMessage> m_message;
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size)
{
    static Listener listener;
    Hardware::Midi::_DeviceImpl parser(listener.GetDevice());
    TestSupport::NaiveMidiParser naive;
    for (std::size_t i = 0; i < size; ++i) {
        parser.ReceivedByte(data[i]);
        Require(listener.Take() == naive.Receive(data[i]), "the two parsers differ");
    }
    return 0;
}
