// SPDX-License-Identifier: MIT
// The library's log contexts.
#include "hardware/log_contexts.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <cstdlib>
#include <set>
#include <thread>
#include <vector>

#include "os/log.h"
#include "standalone/log_masks.h"
#include "support/log_capture.h"

namespace
{

using Os::Log::Context;
using testing::ElementsAre;
using testing::ExitedWithCode;
using TestSupport::LogCapture;

constexpr char SourceFile[] = "timecode/log_contexts_test.cpp";

TEST(LogContexts, HardwareIsTheRootAndAdmitsAllLevels)
{
    const Context& context = Hardware::HardwareLogContext();
    EXPECT_STREQ(context.GetName(), "Hardware");
    EXPECT_EQ(context.GetParent(), nullptr);
    EXPECT_EQ(context.GetMask(), 31U);
}

TEST(LogContexts, TimecodeStandsBelowHardwareAndAdmitsAllLevels)
{
    const Context& context = Hardware::TimecodeLogContext();
    EXPECT_STREQ(context.GetName(), "Timecode");
    EXPECT_EQ(context.GetParent(), &Hardware::HardwareLogContext());
    EXPECT_EQ(context.GetMask(), 31U);
    EXPECT_EQ(Context::Find("Hardware/Timecode"), &context);
}

TEST(LogContexts, MidiStandsBelowHardwareAndDropsTraces)
{
    const Context& context = Hardware::MidiLogContext();
    EXPECT_STREQ(context.GetName(), "Midi");
    EXPECT_EQ(context.GetParent(), &Hardware::HardwareLogContext());
    EXPECT_EQ(context.GetMask(), 30U);
}

TEST(LogContexts, LevelsAreSingleBits)
{
    EXPECT_EQ(Os::Log::Trace, 1);
    EXPECT_EQ(Os::Log::Note, 2);
    EXPECT_EQ(Os::Log::Warning, 4);
    EXPECT_EQ(Os::Log::Error, 8);
    EXPECT_EQ(Os::Log::Critical, 16);
    EXPECT_EQ(Os::Log::AllLevels, 31U);
    EXPECT_EQ(Os::Log::AllButTrace, 30U);
}

void WriteAllLevels(Context& context)
{
    for (const unsigned level : {1U, 2U, 4U, 8U, 16U})
        OS_LOG(context, level, SourceFile, "level " << level);
}

TEST(LogContexts, TimecodeWritesAllLevels)
{
    const LogCapture capture;
    WriteAllLevels(Hardware::TimecodeLogContext());
    EXPECT_THAT(capture.GetTexts(),
                ElementsAre("level 1", "level 2", "level 4", "level 8", "level 16"));
}

TEST(LogContexts, ADescendantThatDropsTracesWritesTheRest)
{
    Context child("Child", &Hardware::TimecodeLogContext(), Os::Log::AllButTrace);
    const LogCapture capture;
    WriteAllLevels(child);
    EXPECT_THAT(capture.GetTexts(), ElementsAre("level 2", "level 4", "level 8", "level 16"));
}

TEST(LogContexts, TracesPassOnceTheMaskIsWidened)
{
    Context child("Child", &Hardware::TimecodeLogContext(), Os::Log::AllButTrace);
    const LogCapture capture("Hardware/Timecode/Child", Os::Log::AllLevels);
    WriteAllLevels(child);
    EXPECT_EQ(capture.Count("level 1"), 1U);
}

TEST(LogContexts, EveryAncestorMustAdmitALevel)
{
    Context child("Child", &Hardware::TimecodeLogContext(), Os::Log::AllLevels);
    const LogCapture root("Hardware", Os::Log::Error | Os::Log::Note);
    const LogCapture capture("Hardware/Timecode", Os::Log::Error | Os::Log::Trace);
    WriteAllLevels(child);
    EXPECT_THAT(capture.GetTexts(), ElementsAre("level 8"));
}

TEST(LogContexts, ALineCarriesItsOrigin)
{
    const LogCapture capture;
    OS_LOG(Hardware::TimecodeLogContext(), Os::Log::Error, SourceFile, "text");
    const unsigned line = __LINE__ - 1;
    const auto lines = capture.GetLines();
    ASSERT_EQ(lines.size(), 1U);
    EXPECT_EQ(lines[0].context, "Hardware/Timecode");
    EXPECT_EQ(lines[0].file, SourceFile);
    EXPECT_EQ(lines[0].line, line);
    EXPECT_THAT(lines[0].function, testing::HasSubstr("TestBody()"));
    EXPECT_FALSE(lines[0].stack.empty());
}

std::size_t CountContexts(const char* path)
{
    const auto contexts = Standalone::ListLogContexts();
    return static_cast<std::size_t>(
        std::count_if(contexts.begin(), contexts.end(),
                      [path](const auto& context) { return context.path == path; }));
}

// In processes of their own, since contexts live until the end.

TEST(LogContextsDeathTest, AreNotMadeBeforeTheirFirstUse)
{
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_EXIT(
        {
            const bool early = CountContexts("Hardware") + CountContexts("Hardware/Timecode") > 0;
            Hardware::TimecodeLogContext();
            const bool made =
                CountContexts("Hardware") == 1 && CountContexts("Hardware/Timecode") == 1;
            std::quick_exit(!early && made ? 0 : 1);
        },
        ExitedWithCode(0), "");
}

/// True when many threads that use the contexts first, at once, get the same one.
bool IsFirstUseSafe()
{
    std::vector<Context*> seen(8);
    std::vector<std::thread> threads;
    for (Context*& context : seen)
        threads.emplace_back([&context] { context = &Hardware::TimecodeLogContext(); });
    for (std::thread& thread : threads)
        thread.join();
    return std::set<Context*>(seen.begin(), seen.end()).size() == 1 &&
           CountContexts("Hardware") == 1 && CountContexts("Hardware/Timecode") == 1;
}

TEST(LogContextsDeathTest, AreMadeOnceThoughManyThreadsAreFirst)
{
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_EXIT(std::quick_exit(IsFirstUseSafe() ? 0 : 1), ExitedWithCode(0), "");
}

} // namespace
