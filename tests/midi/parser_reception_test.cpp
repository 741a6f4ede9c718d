// SPDX-License-Identifier: MIT
#include <gmock/gmock.h>
#include <type_traits>

#include <csignal>

#include "midi/parser_bench.h"

using Hardware::Midi::_DeviceImpl;
using testing::ElementsAre;
using TestSupport::ParserBench;
using TestSupport::ShortMessage;
using TestSupport::SystemExclusive;

namespace
{

/// Switches reception on and off, with an input that is not there.
void Reopen(ParserBench& bench)
{
    bench.GetParser().SetInput(L"no port has a name of more than thirty characters");
    bench.GetParser().EnableReceive(true);
    bench.GetParser().EnableReceive(false);
}

} // namespace

TEST(MidiParserReception, SwitchingKeepsRunningStatus)
{
    ParserBench bench;
    bench.Feed({0x90, 0x3C, 0x64});
    Reopen(bench);
    bench.Feed({0x3E, 0x00});
    EXPECT_THAT(bench.GetMessages(), ElementsAre(ShortMessage(0x643C90), ShortMessage(0x003E90)));
}

TEST(MidiParserReception, SwitchingKeepsAPartlyCollectedMessage)
{
    ParserBench bench;
    bench.Feed({0x90, 0x3C});
    Reopen(bench);
    bench.Feed(0x64);
    EXPECT_THAT(bench.GetMessages(), ElementsAre(ShortMessage(0x643C90)));
}

TEST(MidiParserReception, SwitchingKeepsAPartlyCollectedSystemExclusive)
{
    ParserBench bench;
    bench.Feed({0xF0, 0x01});
    Reopen(bench);
    bench.Feed({0x02, 0xF7});
    EXPECT_THAT(bench.GetMessages(), ElementsAre(SystemExclusive({0xF0, 0x01, 0x02, 0xF7})));
}

TEST(MidiReceiveEntryDeathTest, TrapsWithoutDevice)
{
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_EXIT(_DeviceImpl::MidiReceiveEntry(nullptr), testing::KilledBySignal(SIGABRT),
                "Trap: '!pDev' is TRUE, line [1-9][0-9]*, "
                "midi/linux/midi_device\\.cpp \\([A-Z][a-z][a-z] [ 0-9][0-9] [0-9]{4}\\)\n");
}

TEST(MidiReceiveEntry, ReturnsZeroWhenReceptionIsOff)
{
    ParserBench bench;
    EXPECT_EQ(_DeviceImpl::MidiReceiveEntry(&bench.GetParser()), 0U);
}

// What other parts of the device rely on.
static_assert(std::is_same_v<decltype(&Hardware::Midi::_DeviceImpl::OpenInput),
                             int (Hardware::Midi::_DeviceImpl::*)() const>);
static_assert(std::is_same_v<decltype(&Hardware::Midi::_DeviceImpl::OpenOutput),
                             int (Hardware::Midi::_DeviceImpl::*)() const>);
static_assert(std::is_same_v<decltype(&Hardware::Midi::_DeviceImpl::MidiReceiveThread),
                             void (Hardware::Midi::_DeviceImpl::*)()>);
