// SPDX-License-Identifier: MIT
#include "desk/ltc_generator.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <cmath>
#include <numbers>
#include <random>
#include <stdexcept>
#include <string>
#include <utility>

#include "ltc/ltc_encoder.h"

namespace Desk
{

namespace
{

void Demand(bool condition, const char* what)
{
    if (!condition)
        throw std::invalid_argument(std::string("timecode audio: ") + what);
}

bool IsBetween(double value, double low, double high)
{
    return value >= low && value <= high; // false for what is no number
}

double GetGain(double decibels)
{
    return std::pow(10.0, decibels / 20);
}

const LtcSettings& Checked(const LtcSettings& settings)
{
    constexpr double Day = 86400;
    Demand(settings.rate <= LtcRate_30, "unknown rate");
    Demand(!settings.start.dropFrame || GetFrameCount(settings.rate) == 30,
           "drop frame needs a rate of 29.97 or 30");
    Demand(IsValid(settings.start, GetFrameCount(settings.rate)), "no such time at this rate");
    Demand(settings.frames >= 1 && settings.frames <= 10'000'000, "1 to 10000000 frames");
    Demand(IsBetween(settings.startSpeed, 0.1, 10) && IsBetween(settings.endSpeed, 0.1, 10),
           "a speed of 0.1 to 10");
    Demand(IsBetween(settings.sampleRate, 8000, 192000), "a sample rate of 8000 to 192000");
    Demand(IsBetween(settings.level, -60, 0), "a level of -60 to 0 dB");
    Demand(IsBetween(settings.levelChange, -60, 60), "a level change of -60 to 60 dB");
    Demand(!settings.noise || IsBetween(*settings.noise, -20, 100), "noise of -20 to 100 dB");
    Demand(IsBetween(settings.leadIn, 0, Day) && IsBetween(settings.leadOut, 0, Day),
           "silence of 0 to 86400 seconds");
    for (const LtcDropout& dropout : settings.dropouts)
        Demand(IsBetween(dropout.from, 0, 10 * Day) && IsBetween(dropout.length, 0, 10 * Day),
               "dropouts of 0 to 864000 seconds");
    return settings;
}

} // namespace

unsigned GetFrameCount(LtcRate rate)
{
    constexpr std::array<unsigned, 4> Counts{24, 25, 30, 30};
    return Counts.at(rate);
}

double GetFramesPerSecond(LtcRate rate)
{
    return rate == LtcRate_2997 ? 30000.0 / 1001.0 : GetFrameCount(rate);
}

struct LtcGenerator::Private {
    explicit Private(const LtcSettings& itsSettings);

    bool Refill();
    float Spoil(float sample);
    double GetShare() const;
    const LtcDropout* FindDropout(double seconds) const;

    const LtcSettings settings;
    LtcFrameEncoder encoder;
    std::mt19937 random;
    std::normal_distribution<double> normal;
    const double noiseGain;
    const double length; ///< of all frames, in samples

    std::vector<float> pending; ///< encoded and not yet read
    std::size_t next = 0;       ///< in pending
    std::uint64_t position = 0; ///< of the next sample; those cut away count
    std::uint64_t silence = 0;  ///< samples of a silence that are still to come
    bool leadInDone = false;
    bool leadOutDone = false;
    bool isCut = false; ///< the sample before was cut away
    std::atomic<bool> stopped = false;
};

LtcGenerator::Private::Private(const LtcSettings& itsSettings)
    : settings(itsSettings), encoder(itsSettings), random(itsSettings.seed),
      noiseGain(itsSettings.noise ? GetGain(-*itsSettings.noise) : 0),
      // The harmonic mean of evenly changing speeds, near enough for the shape of a level.
      length(settings.frames * settings.sampleRate / GetFramesPerSecond(settings.rate) * 2 /
             (settings.startSpeed + settings.endSpeed))
{
}

/// False when there is nothing more.
bool LtcGenerator::Private::Refill()
{
    pending.clear();
    next = 0;
    const auto begin = [this](double seconds) {
        silence = static_cast<std::uint64_t>(seconds * settings.sampleRate);
    };
    if (silence == 0) {
        if (!std::exchange(leadInDone, true))
            begin(settings.leadIn);
        else if (!encoder.IsAtEnd())
            encoder.Append(pending);
        else if (!std::exchange(leadOutDone, true))
            begin(settings.leadOut);
        else
            return false;
    }
    // Not all of it at once: a day of silence would fill the memory.
    const auto piece = std::min<std::uint64_t>(silence, settings.sampleRate);
    pending.resize(pending.size() + piece);
    silence -= piece;
    return true;
}

/// How much of the frames is over, from 0 to 1.
double LtcGenerator::Private::GetShare() const
{
    const double begin = std::floor(settings.leadIn * settings.sampleRate);
    return std::clamp((static_cast<double>(position) - begin) / length, 0.0, 1.0);
}

const LtcDropout* LtcGenerator::Private::FindDropout(double seconds) const
{
    const auto found = std::find_if(
        settings.dropouts.begin(), settings.dropouts.end(), [seconds](const LtcDropout& dropout) {
            return seconds >= dropout.from && seconds < dropout.from + dropout.length;
        });
    return found == settings.dropouts.end() ? nullptr : &*found;
}

float LtcGenerator::Private::Spoil(float sample)
{
    const double share = GetShare();
    double change = share < 0.5 ? 0.0 : 1.0;
    if (settings.levelShape == LevelShape_Sine)
        change = (1 - std::cos(2 * std::numbers::pi * share)) / 2;
    const double noise = noiseGain > 0 ? normal(random) * noiseGain : 0;
    return static_cast<float>((sample + noise) *
                              GetGain(settings.level + settings.levelChange * change));
}

LtcGenerator::LtcGenerator(const LtcSettings& settings)
    : m_private(std::make_unique<Private>(Checked(settings)))
{
}

LtcGenerator::~LtcGenerator() = default;

unsigned LtcGenerator::GetSampleRate() const
{
    return m_private->settings.sampleRate;
}

AudioBlock LtcGenerator::Read(std::span<float> samples)
{
    Private& p = *m_private;
    AudioBlock block;
    while (block.samples < samples.size()) {
        if (p.next == p.pending.size()) {
            if (p.stopped || !p.Refill())
                return {block.samples, block.discontinuity, true};
            continue;
        }
        const double seconds = static_cast<double>(p.position) / p.settings.sampleRate;
        const LtcDropout* const dropout = p.FindDropout(seconds);
        const bool isCut = dropout && dropout->cut;
        if (p.isCut && !isCut) {
            if (block.samples > 0)
                return block; // what follows begins another block
            block.discontinuity = true;
        }
        p.isCut = isCut;
        const float sample = p.Spoil(p.pending[p.next++]);
        ++p.position;
        if (!isCut)
            samples[block.samples++] = dropout ? 0 : sample;
    }
    return block;
}

void LtcGenerator::Stop()
{
    m_private->stopped = true;
}

} // namespace Desk
