// SPDX-License-Identifier: MIT

// The parser against the naive one: they take the same bytes and must bring the same messages.

#include <gtest/gtest.h>

#include <optional>
#include <random>

#include "midi/parser_bench.h"

using Hardware::Midi::_DeviceImpl;
using TestSupport::MidiMessage;
using TestSupport::NaiveMidiParser;
using TestSupport::ParserBench;

namespace
{

typedef std::vector<unsigned char> Bytes;

/// Feeds both; false at the first byte where they differ.
testing::AssertionResult Agree(ParserBench& bench, NaiveMidiParser& naive, const Bytes& bytes)
{
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        bench.Feed(bytes[i]);
        const std::vector<MidiMessage> real = bench.Take();
        std::vector<MidiMessage> expected;
        if (const auto message = naive.Receive(bytes[i]))
            expected.push_back(*message);
        if (real != expected)
            return testing::AssertionFailure()
                   << "byte " << i << " of " << testing::PrintToString(bytes) << ": "
                   << testing::PrintToString(real) << " instead of "
                   << testing::PrintToString(expected);
    }
    return testing::AssertionSuccess();
}

/// Bytes of every kind: each data byte form, each length of status, both ends of system exclusive.
const Bytes Alphabet = {0x00, 0x7F, 0x80, 0x90, 0xC0, 0xE0, 0xF0, 0xF1, 0xF2, 0xF3, 0xF7, 0xF8};

/// Steps to the next string of the alphabet's indices; false after the last one.
bool StepOn(std::vector<std::size_t>& indices)
{
    for (std::size_t& index : indices) {
        if (++index < Alphabet.size())
            return true;
        index = 0;
    }
    return false;
}

/// An endless stream that is mostly status bytes, short messages and system exclusive around its
/// longest length.
class Traffic
{
public:
    explicit Traffic(unsigned seed) : m_random(seed) {}

    Bytes Next()
    {
        switch (Below(6)) {
        case 0:
            return {Byte(0x00, 0xFF)};
        case 1:
            return {Byte(0x80, 0xFF)};
        case 2:
            return {Byte(0x80, 0xF2), Byte(0x00, 0x7F), Byte(0x00, 0x7F)};
        case 3:
            return Below(2) ? Bytes{0xF0} : Bytes{0xF7};
        case 4:
            return MakeData(Below(6));
        default:
            return MakeSystemExclusive();
        }
    }

private:
    unsigned Below(unsigned end) { return static_cast<unsigned>(m_random() % end); }

    unsigned char Byte(unsigned first, unsigned last)
    {
        return static_cast<unsigned char>(first + Below(last - first + 1));
    }

    Bytes MakeData(unsigned count)
    {
        Bytes bytes;
        while (bytes.size() < count)
            bytes.push_back(Byte(0x00, 0x7F));
        return bytes;
    }

    /// Now and then interrupted.
    Bytes MakeSystemExclusive()
    {
        Bytes bytes = MakeData(Below(4) ? 122 + Below(10) : Below(300));
        if (!bytes.empty() && Below(5) == 0)
            bytes[Below(static_cast<unsigned>(bytes.size()))] = Byte(0x80, 0xFF);
        bytes.insert(bytes.begin(), 0xF0);
        bytes.push_back(0xF7);
        return bytes;
    }

    std::mt19937 m_random;
};

} // namespace

TEST(MidiParserModel, AgreesOnEveryByteAlone)
{
    for (unsigned value = 0; value <= 0xFF; ++value) {
        ParserBench bench;
        NaiveMidiParser naive;
        EXPECT_TRUE(Agree(bench, naive, {static_cast<unsigned char>(value), 0x01, 0x02, 0x03}));
    }
}

TEST(MidiParserModel, AgreesOnEveryShortSequence)
{
    ParserBench bench;
    for (std::size_t length = 1; length <= 5; ++length) {
        std::vector<std::size_t> indices(length, 0);
        do {
            Bytes bytes;
            for (const std::size_t index : indices)
                bytes.push_back(Alphabet[index]);
            bench.Restart();
            NaiveMidiParser naive;
            ASSERT_TRUE(Agree(bench, naive, bytes));
        } while (StepOn(indices));
    }
}

TEST(MidiParserModel, AgreesOnRandomTraffic)
{
    constexpr std::size_t BytesEach = 50000;
    for (unsigned seed = 1; seed <= 8; ++seed) {
        SCOPED_TRACE(seed);
        Traffic traffic(seed);
        ParserBench bench;
        NaiveMidiParser naive;
        for (std::size_t fed = 0; fed < BytesEach;) {
            const Bytes bytes = traffic.Next();
            ASSERT_TRUE(Agree(bench, naive, bytes));
            fed += bytes.size();
        }
    }
}
