// SPDX-License-Identifier: MIT
#include "os/fatal.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <csignal>
#include <cstdio>
#include <memory>

#include "standalone/fatal_handler.h"
#include "standalone/log_masks.h"
#include "standalone/log_sink.h"
#include "standalone/memory_sink.h"

using testing::HasSubstr;
using testing::KilledBySignal;

namespace
{

class FatalDeathTest : public testing::Test
{
protected:
    FatalDeathTest() { GTEST_FLAG_SET(death_test_style, "threadsafe"); }
};

[[noreturn]] void DieSilently()
{
    Standalone::SetLogSink(nullptr);
    Os::Fatal("Trap: '!args' is TRUE", 113, "timecode/sample.cpp (Jan  1 2024)");
}

TEST_F(FatalDeathTest, AbortsTheProcess)
{
    EXPECT_EXIT(DieSilently(), KilledBySignal(SIGABRT), "");
}

TEST_F(FatalDeathTest, ReportsTextLineAndFileOnStandardErrorEvenWithoutALog)
{
    EXPECT_EXIT(DieSilently(), KilledBySignal(SIGABRT),
                HasSubstr("Trap: '!args' is TRUE, line 113, timecode/sample.cpp (Jan  1 2024)\n"));
}

std::shared_ptr<Standalone::MemorySink> g_sink;

/// Tells on standard error what was logged, and what came in.
void TellLines(const char* text, unsigned line, const char* fileAndDate)
{
    std::fprintf(stderr, "handler(%s|%u|%s)\n", text, line, fileAndDate);
    for (const auto& entry : g_sink->GetLines())
        std::fprintf(stderr, "logged(%s|%u|%s|%u|%s|%d)\n", entry.context.c_str(), entry.level,
                     entry.file.c_str(), entry.line, entry.text.c_str(), !entry.stack.empty());
}

[[noreturn]] void DieTelling()
{
    g_sink = std::make_shared<Standalone::MemorySink>();
    Standalone::SetLogSink(g_sink);
    Standalone::SetFatalHandler(&TellLines);
    Os::Fatal("Boom", 42, "b.cpp (Jan  1 2024) ");
}

TEST_F(FatalDeathTest, HandsItsThreeArgumentsToTheHandler)
{
    EXPECT_EXIT(DieTelling(), KilledBySignal(SIGABRT),
                HasSubstr("handler(Boom|42|b.cpp (Jan  1 2024) )\n"));
}

TEST_F(FatalDeathTest, LogsOneCriticalLineWithItsPlaceAndStackBeforeTheHandlerRuns)
{
    EXPECT_EXIT(DieTelling(), KilledBySignal(SIGABRT),
                HasSubstr("logged(Fatal|16|b.cpp (Jan  1 2024) |42|"
                          "Boom, line 42, b.cpp (Jan  1 2024) |1)\n"));
}

void LeaveWithThree(const char*, unsigned, const char*)
{
    _exit(3);
}

[[noreturn]] void DieWithALeavingHandler()
{
    Standalone::SetFatalHandler(&LeaveWithThree);
    Os::Fatal("Boom", 1, "b.cpp");
}

TEST_F(FatalDeathTest, RunsTheHandlerBeforeItAborts)
{
    EXPECT_EXIT(DieWithALeavingHandler(), testing::ExitedWithCode(3), HasSubstr("Boom"));
}

[[noreturn]] void DieAfterTheHandlerWasTakenOut()
{
    Standalone::SetFatalHandler(&LeaveWithThree);
    Standalone::SetFatalHandler(nullptr);
    Os::Fatal("Boom", 1, "b.cpp");
}

TEST_F(FatalDeathTest, AbortsAtOnceWhereTheHandlerWasTakenOut)
{
    EXPECT_EXIT(DieAfterTheHandlerWasTakenOut(), KilledBySignal(SIGABRT), "");
}

TEST(FatalHandler, IsHandedBackWhenReplaced)
{
    EXPECT_EQ(Standalone::SetFatalHandler(&LeaveWithThree), nullptr);
    EXPECT_EQ(Standalone::SetFatalHandler(nullptr), &LeaveWithThree);
}

} // namespace
