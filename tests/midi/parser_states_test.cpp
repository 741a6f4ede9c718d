// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <string>
#include <tuple>

#include "midi/parser_bench.h"

using TestSupport::MidiMessage;
using TestSupport::ParserBench;
using TestSupport::ShortMessage;
using TestSupport::SystemExclusive;

// Every state with every byte. What the parser is then collecting shows in what becomes of two more
// data bytes and an end of system exclusive.

namespace
{

typedef std::vector<unsigned char> Bytes;
typedef std::vector<MidiMessage> Messages;

enum State { Idle, InSystemExclusive, InShortMessage, StateCount };
enum Class { Start, End, OneByte, Longer, Data, ClassCount };

const char* const StateNames[StateCount] = {"Idle", "SystemExclusive", "ShortMessage"};
const char* const ClassNames[ClassCount] = {"Start", "End", "OneByteStatus", "LongerStatus",
                                            "DataByte"};

/// How the parser gets there.
const Bytes BytesBefore[StateCount] = {{}, {0xF0, 0x01}, {0x90, 0x3C}};
const Bytes BytesAfter = {0x11, 0x22, 0xF7};

Class GetClass(unsigned char byte)
{
    if (byte < 0x80)
        return Data;
    if (byte == 0xF0)
        return Start;
    if (byte == 0xF7)
        return End;
    return byte >= 0xF3 ? OneByte : Longer;
}

bool HasOneDataByte(unsigned char status)
{
    return (status >= 0xC0 && status <= 0xDF) || status == 0xF1;
}

/// A status byte with the two data bytes that follow it.
Messages ExpectFresh(unsigned char status)
{
    if (HasOneDataByte(status))
        return {ShortMessage(status | 0x1100U), ShortMessage(status | 0x2200U)};
    return {ShortMessage(status | 0x221100U)};
}

/// What a byte brings in a state, the bytes after it included.
typedef Messages (*Cell)(unsigned char byte);

Messages Nothing(unsigned char)
{
    return {};
}
Messages FreshSystemExclusive(unsigned char)
{
    return {SystemExclusive({0xF0, 0x11, 0x22, 0xF7})};
}
Messages EndedSystemExclusive(unsigned char)
{
    return {SystemExclusive({0xF0, 0x01, 0xF7})};
}
Messages LongerSystemExclusive(unsigned char byte)
{
    return {SystemExclusive({0xF0, 0x01, byte, 0x11, 0x22, 0xF7})};
}
Messages StatusAlone(unsigned char byte)
{
    return {ShortMessage(byte)};
}
Messages CompletedNoteAndAnother(unsigned char byte)
{
    return {ShortMessage(0x3C90U | static_cast<unsigned>(byte) << 16), ShortMessage(0x221190U)};
}

constexpr Cell Table[StateCount][ClassCount] = {
    {FreshSystemExclusive, Nothing, StatusAlone, ExpectFresh, Nothing},
    {FreshSystemExclusive, EndedSystemExclusive, StatusAlone, ExpectFresh, LongerSystemExclusive},
    {FreshSystemExclusive, Nothing, StatusAlone, ExpectFresh, CompletedNoteAndAnother},
};

class MidiParserState : public testing::TestWithParam<std::tuple<State, Class>>
{
};

std::string GetName(const testing::TestParamInfo<std::tuple<State, Class>>& info)
{
    const auto [state, byteClass] = info.param;
    return std::string(StateNames[state]) + "Meets" + ClassNames[byteClass];
}

} // namespace

TEST_P(MidiParserState, DoesWhatTheTableSays)
{
    const auto [state, byteClass] = GetParam();
    for (unsigned value = 0; value <= 0xFF; ++value) {
        const auto byte = static_cast<unsigned char>(value);
        if (GetClass(byte) != byteClass)
            continue;
        SCOPED_TRACE(value);
        ParserBench bench;
        bench.Feed(BytesBefore[state]);
        bench.Feed(byte);
        bench.Feed(BytesAfter);
        EXPECT_EQ(bench.GetMessages(), Table[state][byteClass](byte));
    }
}

INSTANTIATE_TEST_SUITE_P(Of, MidiParserState,
                         testing::Combine(testing::Values(Idle, InSystemExclusive, InShortMessage),
                                          testing::Values(Start, End, OneByte, Longer, Data)),
                         GetName);
