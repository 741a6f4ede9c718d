// SPDX-License-Identifier: MIT
#include "support/naive_midi_parser.h"

namespace TestSupport
{

namespace
{

bool IsData(unsigned char byte)
{
    return byte < 0x80;
}

/// Bytes of the message that a status byte other than 0xF0 and 0xF7 begins.
std::size_t LengthOf(unsigned char status)
{
    if (status >= 0x80 && status <= 0xBF) // note off, note on, key pressure, control change
        return 3;
    if (status >= 0xC0 && status <= 0xDF) // program change, channel pressure
        return 2;
    if (status >= 0xE0 && status <= 0xEF) // pitch bend
        return 3;
    if (status == 0xF1) // quarter frame
        return 2;
    if (status == 0xF2) // song position
        return 3;
    return 1; // song select, undefined, tune request, real time
}

MidiMessage Pack(const std::vector<unsigned char>& bytes)
{
    MidiMessage message;
    std::uint32_t weight = 1;
    for (const unsigned char byte : bytes) {
        message.packed += byte * weight;
        weight *= 0x100;
    }
    return message;
}

} // namespace

std::optional<MidiMessage> NaiveMidiParser::Receive(unsigned char byte)
{
    switch (m_collecting) {
    case Collecting::Nothing:
        return ReceiveWhenIdle(byte);
    case Collecting::SystemExclusive:
        return ReceiveInSystemExclusive(byte);
    case Collecting::ShortMessage:
        return ReceiveInShortMessage(byte);
    }
    return std::nullopt;
}

std::optional<MidiMessage> NaiveMidiParser::ReceiveWhenIdle(unsigned char byte)
{
    if (IsData(byte))
        return std::nullopt;
    return BeginAnyMessage(byte);
}

std::optional<MidiMessage> NaiveMidiParser::ReceiveInSystemExclusive(unsigned char byte)
{
    if (IsData(byte)) {
        m_bytes.push_back(byte);
        if (m_bytes.size() == 129)
            m_collecting = Collecting::Nothing;
        return std::nullopt;
    }
    if (byte == 0xF7) {
        m_collecting = Collecting::Nothing;
        MidiMessage message;
        message.systemExclusive = m_bytes;
        message.systemExclusive.push_back(0xF7);
        return message;
    }
    return BeginAnyMessage(byte);
}

std::optional<MidiMessage> NaiveMidiParser::ReceiveInShortMessage(unsigned char byte)
{
    if (!IsData(byte))
        return BeginAnyMessage(byte);
    const unsigned char status = m_bytes.front();
    m_bytes.push_back(byte);
    if (m_bytes.size() < LengthOf(status))
        return std::nullopt;
    const MidiMessage message = Pack(m_bytes);
    m_bytes = {status}; // running status
    return message;
}

std::optional<MidiMessage> NaiveMidiParser::BeginAnyMessage(unsigned char status)
{
    m_bytes = {status};
    if (status == 0xF0) {
        m_collecting = Collecting::SystemExclusive;
        return std::nullopt;
    }
    if (status == 0xF7) {
        m_collecting = Collecting::Nothing;
        return std::nullopt;
    }
    if (LengthOf(status) > 1) {
        m_collecting = Collecting::ShortMessage;
        return std::nullopt;
    }
    m_collecting = Collecting::Nothing;
    return Pack(m_bytes);
}

} // namespace TestSupport
