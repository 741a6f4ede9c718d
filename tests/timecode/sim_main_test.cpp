// SPDX-License-Identifier: MIT
// The entry of an instance's thread, and the states that must not be.
#include <gtest/gtest.h>
#include <signal.h>

#include <cstdio>
#include <fstream>
#include <future>
#include <iterator>
#include <string>

#include "standalone/fatal_handler.h"
#include "support/stepping_clock.h"
#include "support/wait.h"
#include "timecode/frame_log.h"
#include "timecode/proc_self.h"
#include "timecode/timecode_sim_instance.h"
#include "timecode/watchdog.h"

namespace
{

using Hardware::TimecodeFormat_Invalid;
using Hardware::Timecode::DeviceSim;
using Sim = DeviceSim::Sim;

TEST(SimInstance, IsStoppedEnabledAndWithoutRateAtFirst)
{
    DeviceSim device(nullptr);
    const Sim sim({&device, 1});
    EXPECT_FALSE(sim.IsStarted());
    EXPECT_TRUE(sim.IsEnabled());
    EXPECT_EQ(sim.GetRate(), 0.0);
    EXPECT_EQ(sim.GetFormat(), TimecodeFormat_Invalid);
}

TEST(SimInstance, StopsItsThreadAtItsEnd)
{
    const TestSupport::Watchdog watchdog;
    TestSupport::SteppingClock clock;
    DeviceSim device(nullptr);
    {
        Sim sim({&device, 1});
        sim.Start();
        EXPECT_TRUE(TestSupport::WaitUntil([] { return TestSupport::CountSimThreads() == 1; }));
        clock.Release();
    }
    EXPECT_EQ(TestSupport::CountSimThreads(), 0U);
}

TEST(SimMain, ReturnsAtOnceWhenTheInstanceIsNotStarted)
{
    const TestSupport::Watchdog watchdog;
    DeviceSim device(nullptr);
    const TestSupport::FrameLog log(device);
    Sim sim({&device, 1});
    EXPECT_EQ(Sim::Main(&sim), 0U);
    EXPECT_EQ(log.CountFrames(), 0U);
}

TEST(SimMain, ReturnsZeroOnceTheInstanceIsStopped)
{
    const TestSupport::Watchdog watchdog;
    TestSupport::SteppingClock clock;
    DeviceSim device(nullptr);
    Sim sim({&device, 1});
    sim.Start();
    auto result = std::async(std::launch::async, [&] { return Sim::Main(&sim); });
    EXPECT_TRUE(TestSupport::WaitUntil([&] { return clock.GetSleeps().size() == 2; }));
    clock.Release();
    sim.Stop();
    EXPECT_EQ(result.get(), 0U);
}

/// Prints the three arguments of the fatal routine between brackets.
void PrintFatal(const char* text, unsigned line, const char* fileAndDate)
{
    std::fprintf(stderr, "[%s][%u][%s]\n", text, line, fileAndDate);
}

TEST(SimMainDeathTest, WithoutArgumentIsFatal)
{
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_EXIT(
        {
            Standalone::SetFatalHandler(&PrintFatal);
            Sim::Main(nullptr);
        },
        testing::KilledBySignal(SIGABRT),
        "\\[Trap: '!args' is TRUE\\]\\[428\\]\\[timecode/timecode_sim\\.cpp \\([^()]+\\)\\]");
}

TEST(SimSource, ReportsAFailedInsertAtItsSite)
{
    // No test can make the map refuse a number that it has just been asked for.
    std::ifstream file(HARDWARE_SOURCE_DIR "/hardware/timecode/timecode_sim.cpp");
    const std::string source{std::istreambuf_iterator<char>(file), {}};
    EXPECT_NE(source.find("OS_TRAP_AT(!pInsert.second, 113, FatalSite);"), std::string::npos);
}

} // namespace
