// SPDX-License-Identifier: MIT
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <cstdint>
#include <sstream>
#include <string>
#include <vector>

#include "os/thread.h"
#include "standalone/log_sink.h"

namespace
{

struct Probe {
    kel::text<char, 16384> text;
    const void* caller = nullptr;
};

[[gnu::noinline]] void TakeCallStack(Probe& probe)
{
    Os::Thread::GetCallStack(probe.text);
    probe.caller = __builtin_return_address(0);
}

[[gnu::noinline]] void Descend(int depth, Probe& probe)
{
    if (depth == 0)
        TakeCallStack(probe);
    else
        Descend(depth - 1, probe);
    asm volatile(""); // keeps the calls above from becoming jumps
}

std::vector<std::string> GetFrames(const Probe& probe)
{
    std::istringstream stream{std::string(probe.text.view())};
    std::vector<std::string> frames;
    for (std::string line; std::getline(stream, line);)
        frames.push_back(line);
    return frames;
}

std::string Hex(const void* address)
{
    kel::text<char, 32> text;
    text << "0x" << kel::hex(reinterpret_cast<std::uintptr_t>(address));
    return std::string(text.view());
}

TEST(CallStack, HoldsOneFrameALineWithItsAddress)
{
    Probe probe;
    TakeCallStack(probe);
    EXPECT_THAT(GetFrames(probe), testing::Each(testing::ContainsRegex("^0x[0-9a-f]+( .+)?$")));
    EXPECT_EQ(probe.text.view().back(), '\n');
}

TEST(CallStack, BeginsWithTheFunctionThatAskedThenItsCaller)
{
    Probe probe;
    TakeCallStack(probe);
    const std::vector<std::string> frames = GetFrames(probe);
    ASSERT_GE(frames.size(), 2u);
    EXPECT_THAT(frames[1], testing::StartsWith(Hex(probe.caller)));
}

TEST(CallStack, GrowsWithEveryCall)
{
    Probe shallow, deep;
    Descend(0, shallow);
    Descend(5, deep);
    EXPECT_EQ(GetFrames(deep).size(), GetFrames(shallow).size() + 5);
}

TEST(CallStack, OfAVeryDeepCallIsCutAtItsOuterEnd)
{
    Probe probe;
    Descend(200, probe);
    const std::vector<std::string> frames = GetFrames(probe);
    EXPECT_GE(frames.size(), 32u);
    EXPECT_LT(frames.size(), 200u);
    EXPECT_THAT(frames[1], testing::StartsWith(Hex(probe.caller)));
}

TEST(CallStack, IsAppendedAsFarAsThereIsRoom)
{
    kel::text<char, 10> text;
    text << "stack: ";
    Os::Thread::GetCallStack(text);
    EXPECT_EQ(text.length(), 10u);
    EXPECT_THAT(std::string(text.view()), testing::StartsWith("stack: 0x"));
    EXPECT_TRUE(text.truncated());
}

TEST(CallStack, NamesAnExportedFunction)
{
    const std::array<const void*, 1> stack{
        reinterpret_cast<const char*>(&Standalone::GetLevelName) + 1};
    EXPECT_EQ(Standalone::FormatCallStack(stack.data(), stack.size()),
              Hex(stack[0]) + " Standalone::GetLevelName(unsigned int)\n");
}

TEST(CallStack, WithoutFramesIsEmptyText)
{
    EXPECT_EQ(Standalone::FormatCallStack(nullptr, 0), "");
}

} // namespace
