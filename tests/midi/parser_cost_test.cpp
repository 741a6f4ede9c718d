// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <cstdlib>

#include "midi/allocation_counter.h"
#include "midi/parser_bench.h"

using Hardware::Midi::_DeviceImpl;
using Hardware::Midi::Device;

namespace
{

/// A bit of everything, twice over.
std::vector<unsigned char> MakeStream()
{
    std::vector<unsigned char> bytes = TestSupport::WholeSystemExclusive(127);
    for (unsigned value = 0; value <= 0xFF; ++value)
        bytes.insert(bytes.end(), {static_cast<unsigned char>(value), 0x3C, 0x64});
    const std::vector<unsigned char> tooLong = TestSupport::WholeSystemExclusive(130);
    bytes.insert(bytes.end(), tooLong.begin(), tooLong.end());
    return bytes;
}

/// Allocations while the parser takes the stream.
std::size_t CountWhileParsing(_DeviceImpl& parser)
{
    const std::vector<unsigned char> stream = MakeStream();
    const std::size_t before = TestSupport::CountAllocations();
    for (const unsigned char byte : stream)
        parser.ReceivedByte(byte);
    return TestSupport::CountAllocations() - before;
}

} // namespace

TEST(MidiParserCost, AllocationsAreCounted)
{
    const std::size_t before = TestSupport::CountAllocations();
    void* volatile block = std::malloc(1); // volatile, so that the compiler keeps them
    std::free(block);
    int* volatile number = new int;
    delete number;
    EXPECT_EQ(TestSupport::CountAllocations() - before, 2U);
}

TEST(MidiParserCost, ParsingAllocatesNothing)
{
    Device device;
    _DeviceImpl parser(device);
    EXPECT_EQ(CountWhileParsing(parser), 0U);
}

TEST(MidiParserCost, ParsingAllocatesNothingWithListeners)
{
    Device device;
    _DeviceImpl parser(device);
    std::uint32_t sum = 0;
    QObject::connect(
        &device, &Device::txShortMessage, &device,
        [&sum](const Device::ShortMessage& message) { sum += message.message; },
        Qt::DirectConnection);
    QObject::connect(
        &device, &Device::txSysExMessage, &device,
        [&sum](const Device::SysExMessage& message) { sum += message.length; },
        Qt::DirectConnection);
    EXPECT_EQ(CountWhileParsing(parser), 0U);
    EXPECT_NE(sum, 0U);
}
