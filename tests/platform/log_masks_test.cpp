// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <atomic>
#include <thread>

#include "os/log.h"
#include "standalone/log_masks.h"
#include "support/log_capture.h"

using Os::Log::Context;

namespace
{

/// Forgets what a test kept for paths, so that no test sees another's.
class LogMasks : public testing::Test
{
protected:
    ~LogMasks() override { Standalone::ForgetLogMasks(); }
};

TEST_F(LogMasks, EveryLevelIsABitOfItsOwn)
{
    EXPECT_EQ(Os::Log::Trace, 1u);
    EXPECT_EQ(Os::Log::Note, 2u);
    EXPECT_EQ(Os::Log::Warning, 4u);
    EXPECT_EQ(Os::Log::Error, 8u);
    EXPECT_EQ(Os::Log::Critical, 16u);
    EXPECT_EQ(Os::Log::AllLevels, 31u);
    EXPECT_EQ(Os::Log::AllButTrace, 30u);
}

TEST_F(LogMasks, ALevelIsEnabledExactlyWhereItsBitIsSet)
{
    for (unsigned mask = 0; mask <= Os::Log::AllLevels; ++mask) {
        const Context context("Masked", nullptr, mask);
        for (unsigned level = 1; level <= 16; level *= 2)
            EXPECT_EQ(context.IsEnabled(level), (mask & level) != 0) << mask << " " << level;
    }
}

TEST_F(LogMasks, ALevelMustPassEveryAncestor)
{
    Context top("Top", nullptr, 1 | 2 | 4);
    Context middle("Middle", &top, 2 | 4 | 8);
    const Context bottom("Bottom", &middle, 1 | 4 | 8);
    EXPECT_FALSE(bottom.IsEnabled(1));
    EXPECT_FALSE(bottom.IsEnabled(2));
    EXPECT_TRUE(bottom.IsEnabled(4));
    EXPECT_FALSE(bottom.IsEnabled(8));
}

TEST_F(LogMasks, AContextKeepsItsOwnMaskWhateverStandsAbove)
{
    Context top("Top", nullptr, 0);
    const Context bottom("Bottom", &top, 31);
    EXPECT_EQ(bottom.GetMask(), 31u);
    EXPECT_FALSE(bottom.IsEnabled(31));
}

TEST_F(LogMasks, AChangeHoldsAtOnceForAllBelow)
{
    Context top("Top", nullptr, 30);
    Context middle("Middle", &top, 31);
    const Context bottom("Bottom", &middle, 31);
    EXPECT_FALSE(bottom.IsEnabled(1));
    top.SetMask(31);
    EXPECT_TRUE(bottom.IsEnabled(1));
    top.SetMask(0);
    EXPECT_FALSE(bottom.IsEnabled(31));
}

TEST_F(LogMasks, AChangeBelowLeavesWhatStandsAboveAlone)
{
    Context top("Top", nullptr, 31);
    Context bottom("Bottom", &top, 31);
    bottom.SetMask(0);
    EXPECT_TRUE(top.IsEnabled(1));
    EXPECT_EQ(top.GetMask(), 31u);
}

TEST_F(LogMasks, AChangeByPathReachesTheLivingContext)
{
    Context top("Top", nullptr, 31);
    const Context bottom("Bottom", &top, 30);
    Standalone::SetLogMask("Top/Bottom", 31);
    EXPECT_EQ(bottom.GetMask(), 31u);
    EXPECT_TRUE(bottom.IsEnabled(1));
}

TEST_F(LogMasks, AContextMadeLaterTakesTheMaskKeptForItsPath)
{
    Standalone::SetLogMask("Top/Later", 31);
    Context top("Top", nullptr, 31);
    const Context later("Later", &top, 30);
    EXPECT_EQ(later.GetMask(), 31u);
    EXPECT_TRUE(later.IsEnabled(1));
}

TEST_F(LogMasks, AKeptMaskIsForItsWholePathOnly)
{
    Standalone::SetLogMask("Top/Later", 31);
    const Context sameName("Later", nullptr, 30);
    EXPECT_EQ(sameName.GetMask(), 30u);
}

TEST_F(LogMasks, AContextMadeAgainTakesTheMaskKeptForItsPathAgain)
{
    Standalone::SetLogMask("Top", 5);
    for (int i = 0; i < 2; ++i) {
        const Context top("Top", nullptr, 31);
        EXPECT_EQ(top.GetMask(), 5u);
    }
}

TEST_F(LogMasks, AForgottenMaskIsNotTaken)
{
    Standalone::SetLogMask("Later", 31);
    Standalone::ForgetLogMasks();
    const Context later("Later", nullptr, 30);
    EXPECT_EQ(later.GetMask(), 30u);
}

TEST_F(LogMasks, ForgettingLeavesLivingContextsAsTheyAre)
{
    const Context living("Living", nullptr, 30);
    Standalone::SetLogMask("Living", 31);
    Standalone::ForgetLogMasks();
    EXPECT_EQ(living.GetMask(), 31u);
}

TEST_F(LogMasks, MayChangeWhileLinesAreWritten)
{
    const TestSupport::LogCapture capture;
    Context top("Top", nullptr, 31);
    Context bottom("Bottom", &top, 31);
    std::atomic<bool> stop{false};
    std::thread changer([&] {
        while (!stop) {
            top.SetMask(30);
            Standalone::SetLogMask("Top/Bottom", 31);
            top.SetMask(31);
        }
    });
    for (int i = 0; i < 500; ++i)
        OS_LOG(bottom, Os::Log::Note, "a.cpp", "line " << i);
    stop = true;
    changer.join();
    EXPECT_EQ(capture.GetTexts().size(), 500u);
}

} // namespace
