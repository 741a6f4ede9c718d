// SPDX-License-Identifier: MIT
#include "desk/ltc_generator.h"

#include <sys/resource.h>

#include <limits>
#include <numeric>
#include <stdexcept>

#include "desk/ltc_bench.h"

namespace
{

using namespace Desk;
using namespace TestSupport;

double GetPower(std::span<const float> samples)
{
    return std::inner_product(samples.begin(), samples.end(), samples.begin(), 0.0) /
           static_cast<double>(samples.size());
}

double GetPeak(std::span<const float> samples)
{
    double peak = 0;
    for (const float sample : samples)
        peak = std::max<double>(peak, std::abs(sample));
    return peak;
}

TEST(LtcGenerator, MakesAudioOfTheLengthOfItsFramesAndOneBit)
{
    const std::size_t length = Generate({.frames = 100}).samples.size();
    EXPECT_NEAR(static_cast<double>(length), 100 * 1920 + 24, 3);
    EXPECT_NEAR(static_cast<double>(Generate({.frames = 100, .backwards = true}).samples.size()),
                100 * 1920 + 17 * 24, 3);
}

TEST(LtcGenerator, MakesSilenceAheadAndBehind)
{
    const Audio audio = Generate({.frames = 10, .leadIn = 0.5, .leadOut = 0.25});
    const std::span<const float> all(audio.samples);
    EXPECT_NEAR(static_cast<double>(all.size()), 24000 + 19200 + 24 + 12000, 3);
    EXPECT_EQ(GetPeak(all.first(24000)), 0);
    EXPECT_EQ(GetPeak(all.last(12000)), 0);
    EXPECT_GT(GetPeak(all.subspan(24000, 100)), 0.4);
}

TEST(LtcGenerator, HasItsLevel)
{
    EXPECT_NEAR(GetPeak(Generate({.level = 0}).samples), 1.0, 0.01);
    EXPECT_NEAR(GetPeak(Generate({.level = -20}).samples), 0.1, 0.001);
}

TEST(LtcGenerator, ChangesItsLevelInTheMiddleAndBackOrThereForGood)
{
    LtcSettings settings{.frames = 100, .level = 0, .levelChange = -20};
    const auto peaks = [&settings] {
        const Audio audio = Generate(settings);
        const std::span<const float> all(audio.samples);
        return std::vector<double>{GetPeak(all.first(1920)), GetPeak(all.subspan(96000, 1920)),
                                   GetPeak(all.last(1920))};
    };
    EXPECT_THAT(peaks(),
                testing::ElementsAre(testing::DoubleNear(1, 0.02), testing::DoubleNear(0.1, 0.01),
                                     testing::DoubleNear(1, 0.02)));
    settings.levelShape = LevelShape_Step;
    EXPECT_THAT(peaks(),
                testing::ElementsAre(testing::DoubleNear(1, 0.02), testing::DoubleNear(0.1, 0.01),
                                     testing::DoubleNear(0.1, 0.01)));
}

TEST(LtcGenerator, AddsNoiseOfThePowerAsked)
{
    const Audio clean = Generate({});
    for (const double noise : {0.0, 6.0, 20.0}) {
        const Audio noisy = Generate({.noise = noise});
        std::vector<float> difference(clean.samples.size());
        std::transform(noisy.samples.begin(), noisy.samples.end(), clean.samples.begin(),
                       difference.begin(), std::minus<>());
        const double signal = std::pow(10.0, -6.0 / 10); // a square wave of that peak
        EXPECT_NEAR(10 * std::log10(signal / GetPower(difference)), noise, 0.2);
    }
}

TEST(LtcGenerator, RepeatsItsNoiseByTheSeed)
{
    const LtcSettings settings{.frames = 3, .noise = 6.0, .seed = 7};
    LtcSettings other = settings;
    other.seed = 8;
    EXPECT_EQ(Generate(settings).samples, Generate(settings).samples);
    EXPECT_NE(Generate(settings).samples, Generate(other).samples);
}

TEST(LtcGenerator, IsSilentInADropout)
{
    const Audio audio = Generate({.frames = 50, .noise = 10.0, .dropouts = {{0.5, 0.1, false}}});
    const std::span<const float> all(audio.samples);
    EXPECT_EQ(GetPeak(all.subspan(24000, 4800)), 0);
    EXPECT_GT(GetPeak(all.subspan(23900, 100)), 0);
    EXPECT_GT(GetPeak(all.subspan(28800, 100)), 0);
    EXPECT_TRUE(audio.discontinuities.empty());
}

TEST(LtcGenerator, LeavesOutTheSamplesOfACut)
{
    const LtcSettings whole{.frames = 50};
    LtcSettings cut = whole;
    cut.dropouts = {{0.5, 0.1, true}};
    std::vector<float> expected = Generate(whole).samples;
    expected.erase(expected.begin() + 24000, expected.begin() + 28800);
    const Audio audio = Generate(cut);
    EXPECT_EQ(audio.samples, expected);
    EXPECT_THAT(audio.discontinuities, testing::ElementsAre(24000));
}

TEST(LtcGenerator, GivesTheSameInBlocksOfAnyLength)
{
    const LtcSettings settings{.frames = 5, .noise = 6.0, .dropouts = {{0.05, 0.01, true}}};
    const Audio expected = Generate(settings);
    for (const std::size_t length : {1U, 7U, 100000U}) {
        LtcGenerator generator(settings);
        const Audio audio = ReadAll(generator, length);
        EXPECT_EQ(audio.samples, expected.samples);
        EXPECT_EQ(audio.discontinuities, expected.discontinuities);
    }
}

/// The most memory that this process has had so far, in KiB.
long GetPeakMemory()
{
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    return usage.ru_maxrss;
}

TEST(LtcGenerator, HoldsNoMoreOfASilenceThanItIsAskedFor)
{
    LtcGenerator generator({.frames = 1, .sampleRate = 192000, .leadIn = 600});
    const long before = GetPeakMemory();
    std::vector<float> samples(1920, 1.0F);
    EXPECT_EQ(generator.Read(samples).samples, samples.size());
    EXPECT_EQ(GetPower(samples), 0);
    EXPECT_LT(GetPeakMemory() - before, 100'000); // all of it would be 460 MB
}

TEST(LtcGenerator, EndsWhenStopped)
{
    LtcGenerator generator({.frames = 10'000'000});
    generator.Stop();
    EXPECT_EQ(ReadAll(generator).samples.size(), 0U);
}

TEST(LtcGenerator, RefusesSettingsOutOfRange)
{
    constexpr double NoNumber = std::numeric_limits<double>::quiet_NaN();
    const LtcSettings table[] = {
        {.rate = static_cast<LtcRate>(4)},
        {.rate = LtcRate_25, .start = {10, 0, 0, 0, true}},
        {.rate = LtcRate_24, .start = {10, 0, 0, 24, false}},
        {.rate = LtcRate_2997, .start = {10, 1, 0, 1, true}},
        {.frames = 0},
        {.startSpeed = 0.09},
        {.endSpeed = 10.1},
        {.sampleRate = 7999},
        {.sampleRate = 192001},
        {.level = 1},
        {.level = NoNumber},
        {.levelChange = 61},
        {.noise = 101},
        {.dropouts = {{-1, 1, false}}},
        {.leadIn = -1},
        {.leadOut = NoNumber},
    };
    for (const LtcSettings& settings : table)
        EXPECT_THROW(LtcGenerator{settings}, std::invalid_argument) << &settings - table;
}

} // namespace
