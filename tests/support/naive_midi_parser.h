// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <optional>
#include <vector>

namespace TestSupport
{

/// A received message: either the packed word or the bytes of a system-exclusive one.
struct MidiMessage {
    std::uint32_t packed = 0;
    std::vector<unsigned char> systemExclusive; ///< empty for any other message
    bool operator==(const MidiMessage&) const = default;
};

/// A second MIDI input parser to compare the real one with: slow, plain, one function for each
/// thing it may be collecting. It shares no code and no table with the real one.
class NaiveMidiParser
{
public:
    std::optional<MidiMessage> Receive(unsigned char byte);

private:
    enum class Collecting { Nothing, SystemExclusive, ShortMessage };

    std::optional<MidiMessage> ReceiveWhenIdle(unsigned char byte);
    std::optional<MidiMessage> ReceiveInSystemExclusive(unsigned char byte);
    std::optional<MidiMessage> ReceiveInShortMessage(unsigned char byte);
    std::optional<MidiMessage> BeginAnyMessage(unsigned char status);

    Collecting m_collecting = Collecting::Nothing;
    std::vector<unsigned char> m_bytes;
};

} // namespace TestSupport
