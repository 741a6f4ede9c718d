// SPDX-License-Identifier: MIT
// Which frames are believed.
#include "ltc/ltc_run.h"

#include <gmock/gmock.h>

namespace
{

using namespace Desk;

constexpr std::int64_t Length = 1920;

/// Frames at places in the audio, all right in themselves unless said otherwise.
class LtcRunTest : public testing::Test
{
protected:
    bool Accept(const char* time, std::int64_t place, bool parity = true, bool clean = true)
    {
        return m_run.Accept({*ParseLtcTime(time, 30), m_reverse, parity, clean, place * Length,
                             place * Length + Length - 1});
    }

    LtcRun m_run;
    bool m_reverse = false;
};

TEST_F(LtcRunTest, BeginsWithACleanFrameOfRightParity)
{
    EXPECT_TRUE(Accept("10:00:00:00", 0));
}

TEST_F(LtcRunTest, DoesNotBeginWithWrongParity)
{
    EXPECT_FALSE(Accept("10:00:00:01", 0, false));
    EXPECT_FALSE(Accept("10:00:00:02", 1, false));
    EXPECT_TRUE(Accept("10:00:00:03", 2));
}

TEST_F(LtcRunTest, DoesNotBeginWithAFrameThatMayBeNoiseUntilAnotherConfirmsIt)
{
    EXPECT_FALSE(Accept("10:00:00:00", 0, true, false));
    EXPECT_FALSE(Accept("11:00:00:01", 1, true, false));
    EXPECT_TRUE(Accept("11:00:00:02", 2, true, false));
}

TEST_F(LtcRunTest, GoesOnWithWrongParity)
{
    EXPECT_TRUE(Accept("10:00:00:00", 0));
    EXPECT_TRUE(Accept("10:00:00:01", 1, false));
    EXPECT_TRUE(Accept("10:00:00:02", 2, false, false));
}

TEST_F(LtcRunTest, DoesNotGoOnWithWrongParityElsewhere)
{
    EXPECT_TRUE(Accept("10:00:00:10", 0));
    EXPECT_FALSE(Accept("10:00:00:12", 1, false));
    EXPECT_FALSE(Accept("10:00:00:10", 1, false));
    EXPECT_FALSE(Accept("10:00:00:09", 1, false));
    EXPECT_FALSE(Accept("11:00:00:11", 1, false));
    EXPECT_FALSE(Accept("10:00:00:11", 2, false)) << "not beside it";
}

TEST_F(LtcRunTest, GoesDownBackwards)
{
    m_reverse = true;
    EXPECT_TRUE(Accept("10:00:00:10", 0));
    EXPECT_TRUE(Accept("10:00:00:09", 1, false));
    EXPECT_FALSE(Accept("10:00:00:10", 2, false));
    m_reverse = false;
    EXPECT_FALSE(Accept("10:00:00:08", 2, false)) << "the other direction";
}

TEST_F(LtcRunTest, GoesOverTheEndOfASecondAtAnyRateUntilItKnowsWhich)
{
    EXPECT_TRUE(Accept("10:00:00:24", 0));
    EXPECT_TRUE(Accept("10:00:01:00", 1, false));
    EXPECT_TRUE(Accept("10:00:01:01", 2));
    m_run.Forget();
    EXPECT_TRUE(Accept("10:00:00:29", 0));
    EXPECT_TRUE(Accept("10:00:01:00", 1)) << "thirty frames";
    for (int i = 1; i < 25; ++i)
        EXPECT_TRUE(Accept(
            ("10:00:01:" + std::string(i < 10 ? "0" : "") + std::to_string(i)).c_str(), 1 + i));
    EXPECT_FALSE(Accept("10:00:02:00", 26, false)) << "not at thirty frames";
    EXPECT_TRUE(Accept("10:00:01:25", 26, false));
}

TEST_F(LtcRunTest, LearnsNoRateFromAGap)
{
    EXPECT_TRUE(Accept("10:00:00:23", 0));
    EXPECT_TRUE(Accept("10:00:01:13", 15));
    for (int i = 14; i < 25; ++i)
        EXPECT_TRUE(Accept(("10:00:01:" + std::to_string(i)).c_str(), 2 + i));
}

TEST_F(LtcRunTest, SkipsWhatDropFrameLeavesOut)
{
    EXPECT_TRUE(Accept("10;00;59;29", 0));
    EXPECT_TRUE(Accept("10;01;00;02", 1, false));
}

TEST_F(LtcRunTest, WithholdsAJumpWithoutAGapUntilTheNextFrameConfirmsIt)
{
    EXPECT_TRUE(Accept("10:00:00:00", 0));
    EXPECT_FALSE(Accept("12:00:00:01", 1));
    EXPECT_TRUE(Accept("12:00:00:02", 2));
    EXPECT_TRUE(Accept("12:00:00:03", 3, false));
}

TEST_F(LtcRunTest, GoesOnAfterAFrameThatItDidNotBelieve)
{
    EXPECT_TRUE(Accept("10:00:00:00", 0));
    EXPECT_FALSE(Accept("12:00:00:01", 1));
    EXPECT_TRUE(Accept("10:00:00:02", 2, true, false));
}

TEST_F(LtcRunTest, BelievesAnUncleanFrameAfterAGapOnlyWhereTimeHasGone)
{
    EXPECT_TRUE(Accept("10:00:00:00", 0));
    EXPECT_FALSE(Accept("10:00:00:14", 10, true, false));
    EXPECT_TRUE(Accept("10:00:00:11", 11, true, false));
    EXPECT_TRUE(Accept("10:00:01:01", 31, true, false));
    EXPECT_TRUE(Accept("13:00:00:00", 50)) << "clean";
}

TEST_F(LtcRunTest, NeitherFollowsNorConfirmsOverADiscontinuity)
{
    EXPECT_TRUE(Accept("10:00:00:00", 0));
    m_run.Forget();
    EXPECT_FALSE(Accept("10:00:00:01", 1, false));
    EXPECT_FALSE(Accept("10:00:00:01", 1, true, false));
    m_run.Forget();
    EXPECT_FALSE(Accept("10:00:00:02", 2, true, false));
}

} // namespace
