// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <optional>
#include <vector>

namespace Test
{

/// A received message: either the packed word or the bytes of a system-exclusive one.
struct NaiveMidiMessage {
    std::uint32_t packed = 0;
    std::vector<unsigned char> systemExclusive; ///< empty for any other message
    bool operator==(const NaiveMidiMessage&) const = default;
};

/// A second MIDI input parser to compare the real one with: slow, plain, one function for each
/// thing it may be collecting. It shares no code and no table with the real one.
class NaiveMidiParser
{
public:
    std::optional<NaiveMidiMessage> Receive(unsigned char byte);

private:
    enum class Collecting { Nothing, SystemExclusive, ShortMessage };

    std::optional<NaiveMidiMessage> ReceiveWhenIdle(unsigned char byte);
    std::optional<NaiveMidiMessage> ReceiveInSystemExclusive(unsigned char byte);
    std::optional<NaiveMidiMessage> ReceiveInShortMessage(unsigned char byte);
    std::optional<NaiveMidiMessage> BeginAnyMessage(unsigned char status);

    Collecting m_collecting = Collecting::Nothing;
    std::vector<unsigned char> m_bytes;
};

} // namespace Test
