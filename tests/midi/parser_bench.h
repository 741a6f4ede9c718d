// SPDX-License-Identifier: MIT
#pragma once

#include <optional>
#include <ostream>
#include <utility>
#include <vector>

#include "midi/linux/midi_device_impl.h"
#include "support/naive_midi_parser.h"

namespace TestSupport
{

/// How a failing test shows a message.
inline void PrintTo(const MidiMessage& message, std::ostream* out)
{
    *out << std::hex << std::showbase;
    if (message.systemExclusive.empty())
        *out << message.packed;
    for (const unsigned char byte : message.systemExclusive)
        *out << unsigned{byte} << ' ';
    *out << std::dec;
}

/// A short message as the parser packs it.
inline MidiMessage ShortMessage(std::uint32_t packed)
{
    return {packed, {}};
}

inline MidiMessage SystemExclusive(std::vector<unsigned char> bytes)
{
    return {0, std::move(bytes)};
}

/// 0xF0 and so many data bytes, without an end.
inline std::vector<unsigned char> OpenSystemExclusive(std::size_t dataBytes)
{
    std::vector<unsigned char> bytes{0xF0};
    for (std::size_t i = 0; i < dataBytes; ++i)
        bytes.push_back(i % 128);
    return bytes;
}

/// The same with its end.
inline std::vector<unsigned char> WholeSystemExclusive(std::size_t dataBytes)
{
    std::vector<unsigned char> bytes = OpenSystemExclusive(dataBytes);
    bytes.push_back(0xF7);
    return bytes;
}

/// A parser on a device whose messages are kept.
class ParserBench
{
public:
    ParserBench()
    {
        Restart();
        using Hardware::Midi::Device;
        QObject::connect(
            &m_device, &Device::txShortMessage, &m_device,
            [this](const Device::ShortMessage& message) {
                m_ids.push_back(message.id);
                m_messages.push_back(ShortMessage(message.message));
            },
            Qt::DirectConnection);
        QObject::connect(
            &m_device, &Device::txSysExMessage, &m_device,
            [this](const Device::SysExMessage& message) {
                m_ids.push_back(message.id);
                m_messages.push_back(
                    SystemExclusive({message.data, message.data + message.length}));
            },
            Qt::DirectConnection);
    }

    /// Starts over with a new parser.
    void Restart() { m_parser.emplace(m_device); }

    void Feed(unsigned char byte) { m_parser->ReceivedByte(byte); }
    void Feed(const std::vector<unsigned char>& bytes)
    {
        for (const unsigned char byte : bytes)
            Feed(byte);
    }

    Hardware::Midi::Device& GetDevice() { return m_device; }
    Hardware::Midi::_DeviceImpl& GetParser() { return *m_parser; }
    const std::vector<MidiMessage>& GetMessages() const { return m_messages; }
    /// The ids that the messages carried.
    const std::vector<const Hardware::Midi::Device::Id*>& GetIds() const { return m_ids; }
    /// The messages since the last call.
    std::vector<MidiMessage> Take() { return std::exchange(m_messages, {}); }

private:
    Hardware::Midi::Device m_device;
    std::optional<Hardware::Midi::_DeviceImpl> m_parser;
    std::vector<MidiMessage> m_messages;
    std::vector<const Hardware::Midi::Device::Id*> m_ids;
};

} // namespace TestSupport
