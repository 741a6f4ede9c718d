// SPDX-License-Identifier: MIT
// Which frames of sound audio arrive: all.
#include "desk/ltc_decoder.h"

#include <limits>
#include <stdexcept>

#include "desk/ltc_bench.h"

namespace
{

using namespace Desk;
using namespace TestSupport;

/// Every frame arrives, once, in order, and nothing is lost.
void ExpectAll(const LtcSettings& settings)
{
    const Decoded decoded = Decode(settings);
    EXPECT_EQ(ListTimes(decoded), ListTimes(settings)) << decoded.frames.size();
    EXPECT_TRUE(decoded.losses.empty());
    for (const LtcFrame& frame : decoded.frames)
        EXPECT_EQ(frame.reverse, settings.backwards);
}

/// Every frame of audio whose speed must first be found, but for the first ones.
void ExpectAllBut(unsigned first, const LtcSettings& settings)
{
    const Decoded decoded = Decode(settings);
    const std::vector<LtcTime> times = ListTimes(settings);
    ASSERT_GE(decoded.frames.size(), times.size() - first);
    EXPECT_EQ(ListTimes(decoded),
              std::vector<LtcTime>(times.end() - static_cast<std::ptrdiff_t>(decoded.frames.size()),
                                   times.end()));
    EXPECT_EQ(decoded.losses.size(), decoded.frames.size() < times.size() ? 1U : 0U);
}

TEST(LtcDecoder, ReceivesMinutesOf24FramesASecond)
{
    ExpectAll({.rate = LtcRate_24, .frames = 24 * 180, .sampleRate = 8000});
}

TEST(LtcDecoder, ReceivesMinutesOf25FramesASecond)
{
    ExpectAll({.rate = LtcRate_25, .frames = 25 * 180, .sampleRate = 8000});
}

TEST(LtcDecoder, ReceivesMinutesOf2997FramesASecondWithDropFrame)
{
    ExpectAll({.rate = LtcRate_2997,
               .start = {9, 58, 30, 0, true},
               .frames = 30 * 180,
               .sampleRate = 11025});
}

TEST(LtcDecoder, ReceivesMinutesOf2997FramesASecondWithoutDropFrame)
{
    ExpectAll({.rate = LtcRate_2997, .frames = 30 * 180, .sampleRate = 8000});
}

TEST(LtcDecoder, ReceivesMinutesOf30FramesASecond)
{
    ExpectAll({.rate = LtcRate_30, .frames = 30 * 180, .sampleRate = 8000});
}

TEST(LtcDecoder, ReceivesEveryRateAt48KilohertzInBothDirections)
{
    for (const LtcRate rate : {LtcRate_24, LtcRate_25, LtcRate_2997, LtcRate_30})
        for (const bool backwards : {false, true})
            ExpectAll({.rate = rate, .frames = 1000, .backwards = backwards});
}

TEST(LtcDecoder, ReceivesEverySampleRate)
{
    for (const unsigned sampleRate : {8000U, 16000U, 22050U, 44100U, 96000U, 192000U})
        ExpectAll({.rate = LtcRate_30, .frames = 100, .sampleRate = sampleRate});
}

TEST(LtcDecoder, ReceivesTheFirstFrameBehindSilenceAndTheLastOneAheadOfIt)
{
    for (const bool backwards : {false, true})
        ExpectAll({.frames = 20, .backwards = backwards, .leadIn = 0.5, .leadOut = 0.5});
}

TEST(LtcDecoder, ReceivesDropFrameOverMinutesTensAndHoursInBothDirections)
{
    for (const LtcTime start : {LtcTime{0, 0, 59, 20, true}, LtcTime{0, 9, 59, 20, true},
                                LtcTime{1, 59, 59, 20, true}, LtcTime{23, 59, 59, 20, true}})
        ExpectAll({.rate = LtcRate_2997, .start = start, .frames = 30});
    for (const LtcTime start : {LtcTime{0, 1, 0, 12, true}, LtcTime{0, 10, 0, 10, true},
                                LtcTime{2, 0, 0, 10, true}, LtcTime{0, 0, 0, 10, true}})
        ExpectAll({.rate = LtcRate_2997, .start = start, .frames = 30, .backwards = true});
}

TEST(LtcDecoder, ReceivesAQuarterOfTheSpeedToEightTimesIt)
{
    for (const double speed : {0.25, 0.5, 0.75, 1.5, 2.0, 4.0, 8.0})
        for (const bool backwards : {false, true})
            ExpectAllBut(2, {.frames = 200,
                             .backwards = backwards,
                             .startSpeed = speed,
                             .endSpeed = speed,
                             .sampleRate = 96000});
}

TEST(LtcDecoder, FollowsAChangingSpeed)
{
    ExpectAllBut(2, {.frames = 500, .startSpeed = 0.25, .endSpeed = 8, .sampleRate = 96000});
    ExpectAllBut(1, {.frames = 500, .startSpeed = 8, .endSpeed = 0.25, .sampleRate = 96000});
    ExpectAllBut(0, {.frames = 500, .backwards = true, .startSpeed = 1, .endSpeed = 0.5});
}

TEST(LtcDecoder, ReceivesAWeakSignalAndOneWithAnOffset)
{
    ExpectAll({.level = -45});
    Audio audio = Generate({.frames = 100, .level = -20});
    for (float& sample : audio.samples)
        sample += 0.05F;
    EXPECT_EQ(Decode(audio, 48000).frames.size(), 100U);
}

TEST(LtcDecoder, SaysWhereAFrameIs)
{
    const Decoded decoded = Decode(LtcSettings{.frames = 50, .leadIn = 0.1});
    ASSERT_EQ(decoded.frames.size(), 50U);
    for (std::size_t i = 0; i < decoded.frames.size(); ++i) {
        EXPECT_NEAR(static_cast<double>(decoded.frames[i].firstSample),
                    4800 + 1920 * static_cast<double>(i), 2);
        EXPECT_NEAR(static_cast<double>(decoded.frames[i].lastSample),
                    4800 + 1920 * static_cast<double>(i) + 1919, 2);
    }
}

TEST(LtcDecoder, CountsPositionsFromTheOneItIsFed)
{
    const Audio audio = Generate({.frames = 2});
    Decoded decoded;
    LtcDecoder decoder(48000);
    decoder.Feed(audio.samples, 1'000'000'000'000, decoded.GetTaker());
    ASSERT_EQ(decoded.frames.size(), 2U);
    EXPECT_NEAR(static_cast<double>(decoded.frames[1].firstSample - 1'000'000'000'000), 1920, 2);
}

TEST(LtcDecoder, SaysTheLevelOfEachFrame)
{
    const Decoded decoded = Decode(
        LtcSettings{.frames = 50, .level = -10, .levelChange = -20, .levelShape = LevelShape_Step});
    ASSERT_GE(decoded.frames.size(), 45U);
    EXPECT_NEAR(decoded.frames.front().level, -10, 0.3);
    EXPECT_NEAR(decoded.frames.back().level, -30, 0.3);
}

TEST(LtcDecoder, SaysTheSameInBlocksOfAnyLength)
{
    const Audio audio =
        Generate({.frames = 60, .noise = 8.0, .dropouts = {{0.7, 0.3, true}, {1.5, 0.1, false}}});
    const Decoded expected = Decode(audio, 48000);
    for (const std::size_t length : {1U, 13U, 200000U}) {
        const Decoded decoded = Decode(audio, 48000, length);
        EXPECT_EQ(decoded.GetTexts(), expected.GetTexts());
        EXPECT_EQ(decoded.losses.size(), expected.losses.size());
    }
}

TEST(LtcDecoder, TakesSamplesThatAreNoNumbersAsSilence)
{
    Audio audio = Generate({.frames = 100});
    std::fill_n(audio.samples.begin() + 50000, 3000, std::numeric_limits<float>::quiet_NaN());
    std::fill_n(audio.samples.begin() + 90000, 3000, std::numeric_limits<float>::infinity());
    const Decoded decoded = Decode(audio, 48000);
    EXPECT_GE(decoded.frames.size(), 92U);
    EXPECT_EQ(decoded.losses.size(), 2U);
}

TEST(LtcDecoder, RefusesSampleRatesOutOfRange)
{
    EXPECT_THROW(LtcDecoder(7999), std::invalid_argument);
    EXPECT_THROW(LtcDecoder(192001), std::invalid_argument);
}

} // namespace
