// SPDX-License-Identifier: MIT
#include <gmock/gmock.h>

#include <string>

#include "midi/parser_bench.h"

using testing::ElementsAre;
using testing::IsEmpty;
using TestSupport::MidiMessage;
using TestSupport::OpenSystemExclusive;
using TestSupport::ParserBench;
using TestSupport::ShortMessage;
using TestSupport::SystemExclusive;
using TestSupport::WholeSystemExclusive;

namespace
{

struct Stream {
    const char* name;
    std::vector<unsigned char> bytes;
    std::vector<MidiMessage> messages;
};

void PrintTo(const Stream& stream, std::ostream* out)
{
    *out << stream.name;
}

const Stream Streams[] = {
    {"RunningStatusMakesASecondNote",
     {0x90, 0x3C, 0x64, 0x3E, 0x00},
     {ShortMessage(0x00643C90), ShortMessage(0x00003E90)}},
    {"RunningStatusMakesASecondProgramChange",
     {0xC5, 0x07, 0x08},
     {ShortMessage(0x000007C5), ShortMessage(0x000008C5)}},
    {"ClockDropsTheNoteAroundIt", {0x90, 0x3C, 0xF8, 0x64}, {ShortMessage(0x000000F8)}},
    {"ClockAbandonsTheSystemExclusiveAroundIt",
     {0xF0, 0x7E, 0xF8, 0x01, 0xF7},
     {ShortMessage(0x000000F8)}},
    {"SystemExclusiveIsDeliveredWithItsEnds",
     {0xF0, 0x01, 0x02, 0xF7},
     {SystemExclusive({0xF0, 0x01, 0x02, 0xF7})}},
    {"EmptySystemExclusiveIsItsTwoEnds", {0xF0, 0xF7}, {SystemExclusive({0xF0, 0xF7})}},
    {"SongSelectLosesItsDataByte", {0xF3, 0x05}, {ShortMessage(0x000000F3)}},
    {"QuarterFrameHasRunningStatus",
     {0xF1, 0x21, 0x32},
     {ShortMessage(0x000021F1), ShortMessage(0x000032F1)}},
    {"SongPositionHasTwoDataBytes", {0xF2, 0x10, 0x20}, {ShortMessage(0x002010F2)}},
    {"SongPositionHasRunningStatus",
     {0xF2, 0x10, 0x20, 0x30, 0x40},
     {ShortMessage(0x002010F2), ShortMessage(0x004030F2)}},
    {"StrayEndYieldsNothing", {0xF7}, {}},
    {"DataBeforeAnyStatusIsDropped", {0x00, 0x3C, 0x7F}, {}},
    {"DataAfterAStrayEndIsDropped", {0xF7, 0x3C, 0x64}, {}},
    {"DataAfterASystemExclusiveIsDropped",
     {0xF0, 0x01, 0xF7, 0x3C, 0x64},
     {SystemExclusive({0xF0, 0x01, 0xF7})}},
    {"StrayEndEndsRunningStatus", {0x90, 0x3C, 0x64, 0xF7, 0x3E, 0x00}, {ShortMessage(0x643C90)}},
    {"StrayEndDropsAPartlyCollectedNote", {0x90, 0x3C, 0xF7, 0x64}, {}},
    {"ClockEndsRunningStatus",
     {0x90, 0x3C, 0x64, 0xF8, 0x3E, 0x00},
     {ShortMessage(0x643C90), ShortMessage(0xF8)}},
    {"NewStatusDropsAPartlyCollectedNote",
     {0x90, 0x3C, 0x80, 0x01, 0x02},
     {ShortMessage(0x020180)}},
    {"StartDropsAPartlyCollectedNote",
     {0x90, 0x3C, 0xF0, 0x64, 0xF7},
     {SystemExclusive({0xF0, 0x64, 0xF7})}},
    {"StartEndsRunningStatus",
     {0x90, 0x3C, 0x64, 0xF0, 0xF7, 0x3C, 0x64},
     {ShortMessage(0x643C90), SystemExclusive({0xF0, 0xF7})}},
    {"NoteAbandonsTheSystemExclusiveAroundIt",
     {0xF0, 0x01, 0x90, 0x3C, 0x64, 0xF7},
     {ShortMessage(0x643C90)}},
    {"TwoByteMessageAfterThreeByteOneHasNoThirdByte",
     {0x90, 0x3C, 0x64, 0xC0, 0x05},
     {ShortMessage(0x643C90), ShortMessage(0x05C0)}},
    {"HighestDataBytesStayInTheirPlaces", {0xEF, 0x7F, 0x7F}, {ShortMessage(0x7F7FEF)}},
};

class MidiParserStream : public testing::TestWithParam<Stream>
{
};

std::string GetName(const testing::TestParamInfo<Stream>& info)
{
    return info.param.name;
}

} // namespace

TEST_P(MidiParserStream, YieldsItsMessages)
{
    ParserBench bench;
    bench.Feed(GetParam().bytes);
    EXPECT_EQ(bench.GetMessages(), GetParam().messages);
}

INSTANTIATE_TEST_SUITE_P(Of, MidiParserStream, testing::ValuesIn(Streams), GetName);

TEST(MidiParser, EmitsWithinTheCallThatCompletesTheMessage)
{
    ParserBench bench;
    bench.Feed({0x90, 0x3C});
    EXPECT_THAT(bench.Take(), IsEmpty());
    bench.Feed(0x64);
    EXPECT_THAT(bench.Take(), ElementsAre(ShortMessage(0x643C90)));
    bench.Feed({0xF0, 0x01});
    EXPECT_THAT(bench.Take(), IsEmpty());
    bench.Feed(0xF7);
    EXPECT_THAT(bench.Take(), ElementsAre(SystemExclusive({0xF0, 0x01, 0xF7})));
}

TEST(MidiParser, DeliversSystemExclusiveOfUpTo127DataBytes)
{
    for (std::size_t dataBytes = 0; dataBytes <= 127; ++dataBytes) {
        SCOPED_TRACE(dataBytes);
        ParserBench bench;
        bench.Feed(WholeSystemExclusive(dataBytes));
        EXPECT_THAT(bench.GetMessages(),
                    ElementsAre(SystemExclusive(WholeSystemExclusive(dataBytes))));
    }
}

TEST(MidiParser, LongestSystemExclusiveHas129Bytes)
{
    ParserBench bench;
    bench.Feed(WholeSystemExclusive(127));
    ASSERT_EQ(bench.GetMessages().size(), 1U);
    EXPECT_EQ(bench.GetMessages().front().systemExclusive.size(), 129U);
}

TEST(MidiParser, AbandonsSystemExclusiveOf128DataBytesAndMore)
{
    for (const std::size_t dataBytes : {128U, 129U, 130U, 255U, 256U, 1000U}) {
        SCOPED_TRACE(dataBytes);
        ParserBench bench;
        bench.Feed(WholeSystemExclusive(dataBytes));
        EXPECT_THAT(bench.GetMessages(), IsEmpty());
    }
}

TEST(MidiParser, DropsTheRestOfAnAbandonedSystemExclusive)
{
    ParserBench bench;
    bench.Feed(OpenSystemExclusive(128));
    bench.Feed({0x01, 0x02, 0x03, 0xF7, 0x04});
    EXPECT_THAT(bench.GetMessages(), IsEmpty());
}

TEST(MidiParser, TakesTheNextMessageAfterAnAbandonedSystemExclusive)
{
    ParserBench bench;
    bench.Feed(OpenSystemExclusive(200));
    bench.Feed({0x90, 0x3C, 0x64});
    bench.Feed(WholeSystemExclusive(127));
    EXPECT_THAT(bench.GetMessages(),
                ElementsAre(ShortMessage(0x643C90), SystemExclusive(WholeSystemExclusive(127))));
}

TEST(MidiParser, RestartedSystemExclusiveHasItsWholeRoom)
{
    ParserBench bench;
    bench.Feed(OpenSystemExclusive(127));
    bench.Feed(WholeSystemExclusive(127));
    EXPECT_THAT(bench.GetMessages(), ElementsAre(SystemExclusive(WholeSystemExclusive(127))));
}

TEST(MidiParser, RunningStatusGoesOnForAnyNumberOfMessages)
{
    ParserBench bench;
    bench.Feed(0x90);
    for (int i = 0; i < 1000; ++i)
        bench.Feed({0x3C, 0x64});
    EXPECT_EQ(bench.GetMessages(), std::vector<MidiMessage>(1000, ShortMessage(0x643C90)));
}

TEST(MidiParser, MessagesCarryTheDevicesOwnId)
{
    ParserBench bench;
    bench.Feed({0x90, 0x3C, 0x64, 0xF8, 0xF0, 0xF7});
    ASSERT_EQ(bench.GetIds().size(), 3U);
    for (const Hardware::Midi::Device::Id* const id : bench.GetIds()) {
        EXPECT_EQ(id, bench.GetIds().front());
        EXPECT_EQ(id->device, &bench.GetDevice());
        EXPECT_EQ(id->number, 0U);
    }
}

TEST(MidiParser, OfOneDeviceKnowsNothingOfAnother)
{
    ParserBench first;
    ParserBench second;
    first.Feed({0x90, 0x3C});
    second.Feed(0x64);
    first.Feed(0x65);
    EXPECT_THAT(first.GetMessages(), ElementsAre(ShortMessage(0x653C90)));
    EXPECT_THAT(second.GetMessages(), IsEmpty());
}
