// SPDX-License-Identifier: MIT
// Audio that is damaged: nothing wrong arrives, and what is missing is reported.
#include <random>

#include "desk/ltc_bench.h"

namespace
{

using namespace Desk;
using namespace TestSupport;

/// Each frame delivered is the one that was generated at its place, and comes once; each other one
/// lies in a loss. Returns how many were delivered.
std::size_t ExpectRightOrLost(const LtcSettings& settings)
{
    const std::vector<LtcTime> times = ListTimes(settings);
    const Decoded decoded = Decode(settings);
    const double length = GetFrameLength(settings);
    std::vector<bool> seen(times.size());
    for (const LtcFrame& frame : decoded.frames) {
        const double place = static_cast<double>(frame.firstSample) / length;
        const auto number = static_cast<std::size_t>(std::max(0L, std::lround(place)));
        EXPECT_LT(number, times.size());
        if (number >= times.size())
            continue;
        EXPECT_EQ(ToText(frame.time), ToText(times[number])) << "at " << frame.firstSample;
        EXPECT_FALSE(seen[number]) << "twice: " << ToText(frame.time);
        seen[number] = true;
    }
    for (std::size_t i = 0; i < times.size(); ++i) {
        const auto first = static_cast<std::int64_t>(static_cast<double>(i) * length);
        const auto last = static_cast<std::int64_t>(static_cast<double>(i + 1) * length) - 1;
        EXPECT_TRUE(seen[i] || decoded.IsLost(first, last, static_cast<std::int64_t>(length / 4)))
            << ToText(times[i]) << " is missing";
    }
    return decoded.frames.size();
}

TEST(LtcLoss, OfFramesInNoiseAndAChangingLevelIsReportedAndNoFrameIsWrong)
{
    for (const std::uint32_t seed : {1U, 2U, 3U})
        for (const LevelShape shape : {LevelShape_Sine, LevelShape_Step})
            for (const bool backwards : {false, true})
                EXPECT_GT(ExpectRightOrLost({.rate = seed == 2 ? LtcRate_30 : LtcRate_25,
                                             .frames = 500,
                                             .backwards = backwards,
                                             .levelChange = -20,
                                             .levelShape = shape,
                                             .noise = 6.0,
                                             .seed = seed}),
                          480U);
}

TEST(LtcLoss, OfFramesInTooMuchNoiseIsReportedAndNoFrameIsWrong)
{
    for (const std::uint32_t seed : {1U, 2U}) {
        ExpectRightOrLost({.frames = 1000, .levelChange = -20, .noise = 2.0, .seed = seed});
        ExpectRightOrLost({.frames = 3000, .sampleRate = 8000, .noise = 12.0, .seed = seed});
        ExpectRightOrLost({.frames = 3000, .sampleRate = 8000, .noise = 10.0, .seed = seed});
        ExpectRightOrLost({.frames = 3000, .sampleRate = 16000, .noise = 8.0, .seed = seed});
    }
}

TEST(LtcLoss, OfASilenceHasItsExtent)
{
    const Decoded decoded = Decode(LtcSettings{.frames = 100, .dropouts = {{1.01, 0.5, false}}});
    ASSERT_EQ(decoded.losses.size(), 1U);
    EXPECT_NEAR(static_cast<double>(decoded.losses[0].firstSample), 48000, 2);
    EXPECT_NEAR(static_cast<double>(decoded.losses[0].lastSample), 48000 + 13 * 1920 - 1, 2);
    EXPECT_EQ(decoded.losses[0].frames, 13U);
    EXPECT_EQ(decoded.frames.size(), 87U);
}

TEST(LtcLoss, OfAShortDropoutIsReportedWhereverItFalls)
{
    for (const double length : {0.0005, 0.002, 0.007, 0.015, 0.05})
        for (int i = 0; i < 20; ++i)
            ExpectRightOrLost({.frames = 60, .dropouts = {{1 + i * 0.002, length, false}}});
}

TEST(LtcLoss, OfACutIsReportedOnce)
{
    const Decoded decoded = Decode(LtcSettings{.frames = 100, .dropouts = {{1.01, 0.5, true}}});
    ASSERT_EQ(decoded.losses.size(), 1U);
    EXPECT_NEAR(static_cast<double>(decoded.losses[0].firstSample), 48000, 2);
    EXPECT_NEAR(static_cast<double>(decoded.losses[0].lastSample), 48000 + 959, 2);
    EXPECT_EQ(decoded.losses[0].frames, 1U);
    EXPECT_EQ(decoded.frames.size(), 87U);
}

TEST(LtcLoss, OfACutFrameIsReportedHoweverLittleIsLeftOfIt)
{
    // Three bits of one frame and then the next second's: a fresh frame after a stub.
    const Decoded decoded =
        Decode(LtcSettings{.frames = 100, .dropouts = {{1.0015, 0.9985, true}}});
    ASSERT_EQ(decoded.losses.size(), 1U);
    EXPECT_EQ(decoded.losses[0].frames, 1U);
    EXPECT_EQ(decoded.frames.size(), 75U);
}

TEST(LtcLoss, OfAFrameWhoseLastTransitionIsCutAwayIsReported)
{
    const Decoded decoded = Decode(LtcSettings{.frames = 100, .dropouts = {{1, 1, true}}});
    EXPECT_EQ(decoded.losses.size(), 1U);
    EXPECT_EQ(decoded.frames.size(), 74U);
}

TEST(LtcDiscontinuity, AnywhereInAFrameNeverMakesAWrongOne)
{
    // Whole frames and whole seconds are missing, so that bits on both sides fit each other.
    constexpr double Rate = 16000;
    for (const double missing : {1.0, 0.04 * 7, 0.04 * 7.5})
        for (const bool backwards : {false, true})
            for (int offset = 0; offset < 640; offset += 9) {
                const double from = 0.88 + offset / Rate;
                const LtcSettings settings{.start = {9, 59, 58, 0, false},
                                           .frames = 60,
                                           .backwards = backwards,
                                           .sampleRate = 16000,
                                           .dropouts = {{from, missing, true}}};
                const std::vector<LtcTime> times = ListTimes(settings);
                const Decoded decoded = Decode(settings);
                const double cut = from * Rate;
                for (const LtcFrame& frame : decoded.frames) {
                    const auto first = static_cast<double>(frame.firstSample);
                    const double source = first < cut - 2 ? first : first + missing * Rate;
                    const auto number = static_cast<std::size_t>(std::lround(source / 640));
                    ASSERT_LT(number, times.size());
                    ASSERT_EQ(ToText(frame.time), ToText(times[number]))
                        << offset << " " << missing << " " << backwards;
                }
                ASSERT_GE(static_cast<double>(decoded.frames.size()),
                          60 - std::ceil(missing * 25) - 2);
                ASSERT_LE(decoded.losses.size(), 1U);
            }
}

TEST(LtcDiscontinuity, InThePositionsIsOne)
{
    // A stub of five bits, and then the frame after the next one, one sample later than it came.
    const Audio audio = Generate({.frames = 10});
    const std::span<const float> all(audio.samples);
    constexpr std::size_t Stub = 1920 * 3 + 120;
    Decoded decoded;
    LtcDecoder decoder(48000);
    decoder.Feed(all.first(Stub), 0, decoded.GetTaker());
    decoder.Feed(all.subspan(1920 * 4), Stub + 1, decoded.GetTaker());
    decoder.Finish(decoded.GetTaker());
    EXPECT_EQ(decoded.frames.size(), 9U);
    ASSERT_EQ(decoded.losses.size(), 1U);
    EXPECT_EQ(decoded.losses[0].frames, 1U);
}

TEST(LtcLoss, BehindTheLastFrameIsReportedAtTheEndIfThereIsSignal)
{
    Audio audio = Generate({.frames = 20});
    const std::vector<float> tail(audio.samples.begin() + 960, audio.samples.begin() + 2500);
    audio.samples.insert(audio.samples.end(), tail.begin(), tail.end());
    audio.discontinuities.push_back(static_cast<std::int64_t>(audio.samples.size() - tail.size()));
    const Decoded decoded = Decode(audio, 48000);
    EXPECT_EQ(decoded.frames.size(), 20U);
    ASSERT_EQ(decoded.losses.size(), 1U);
    EXPECT_NEAR(static_cast<double>(decoded.losses[0].firstSample), 20 * 1920, 2);
}

TEST(LtcLoss, IsNoneInSilenceAheadAndBehind)
{
    const Decoded decoded = Decode(LtcSettings{.frames = 10, .leadIn = 2, .leadOut = 2});
    EXPECT_TRUE(decoded.losses.empty());
}

TEST(LtcLoss, IsOneForAllOfANoiseWithoutAFrame)
{
    std::mt19937 random(5);
    std::uniform_real_distribution<float> uniform(-1, 1);
    Audio audio;
    audio.samples.resize(48000 * 60);
    std::generate(audio.samples.begin(), audio.samples.end(), [&] { return uniform(random); });
    const Decoded decoded = Decode(audio, 48000);
    EXPECT_THAT(decoded.GetTexts(), testing::IsEmpty());
    ASSERT_EQ(decoded.losses.size(), 1U);
    EXPECT_NEAR(static_cast<double>(decoded.losses[0].lastSample), 48000 * 60, 100);
}

TEST(LtcLoss, IsNoneInSilenceAlone)
{
    Audio audio;
    audio.samples.resize(48000);
    EXPECT_TRUE(Decode(audio, 48000).losses.empty());
}

TEST(LtcLoss, OfEverythingAfterTheEndIsForgotten)
{
    const Audio audio = Generate({.frames = 5});
    Decoded decoded;
    LtcDecoder decoder(48000);
    for (const std::int64_t position : {0, 100000}) {
        decoder.Feed(audio.samples, position, decoded.GetTaker());
        decoder.Finish(decoded.GetTaker());
    }
    EXPECT_EQ(decoded.frames.size(), 10U);
    EXPECT_TRUE(decoded.losses.empty());
}

TEST(LtcParity, IsNotNeededOnceAFrameHappensToHaveIt)
{
    // The ones of the first two frames are odd in number, those of the third are even.
    for (const LtcRate rate : {LtcRate_24, LtcRate_25, LtcRate_30}) {
        const Decoded decoded = Decode(LtcSettings{
            .rate = rate, .start = {10, 0, 0, 1, false}, .frames = 100, .parity = false});
        EXPECT_EQ(decoded.frames.size(), 98U);
        ASSERT_EQ(decoded.losses.size(), 1U);
        EXPECT_EQ(decoded.losses[0].frames, 2U);
    }
}

TEST(LtcParity, LetsTheSameFramesBeginWhereItIsSet)
{
    for (const LtcRate rate : {LtcRate_24, LtcRate_25, LtcRate_30})
        for (const std::uint32_t userBits : {0U, 1U, 0xFFFFFFFEU})
            EXPECT_EQ(Decode(LtcSettings{.rate = rate,
                                         .start = {10, 0, 0, 1, false},
                                         .frames = 100,
                                         .userBits = userBits})
                          .frames.size(),
                      100U);
}

} // namespace
