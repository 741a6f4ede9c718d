// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <array>
#include <string>
#include <string_view>

#include "standalone/memory_stream.h"

using namespace std::string_view_literals;

namespace
{

std::string Read(kel::istream& stream, unsigned count)
{
    std::array<char, 16> bytes{};
    const unsigned arrived = stream.read(bytes.data(), count);
    return {bytes.data(), arrived};
}

TEST(KelStreams, OutputCollectsTheBytesOfAllWrites)
{
    Standalone::MemoryOutput output;
    kel::ostream& stream = output;
    stream.write("ab", 2);
    stream.write("\0c", 2);
    EXPECT_EQ(output.GetBytes(), "ab\0c"sv);
}

TEST(KelStreams, OutputOfNothingAddsNothing)
{
    Standalone::MemoryOutput output;
    output.write("ab", 0);
    EXPECT_EQ(output.GetBytes(), "");
}

TEST(KelStreams, InputHandsOutTheBytesInOrder)
{
    Standalone::MemoryInput input(std::string("ab\0cd"sv));
    EXPECT_EQ(Read(input, 3), "ab\0"sv);
    EXPECT_EQ(Read(input, 2), "cd"sv);
}

TEST(KelStreams, InputReadsShortAtItsEndAndThenNothing)
{
    Standalone::MemoryInput input("abc");
    EXPECT_EQ(Read(input, 2), "ab");
    EXPECT_EQ(Read(input, 2), "c");
    EXPECT_EQ(Read(input, 2), "");
}

TEST(KelStreams, InputLeavesTheRestOfTheBufferAlone)
{
    Standalone::MemoryInput input("a");
    std::array<char, 3> bytes{'x', 'y', 'z'};
    EXPECT_EQ(input.read(bytes.data(), 3), 1u);
    EXPECT_EQ(std::string_view(bytes.data(), 3), "ayz");
}

} // namespace
