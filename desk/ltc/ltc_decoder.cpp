// SPDX-License-Identifier: MIT
#include "desk/ltc_decoder.h"

#include <ltc.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <new>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

#include "ltc/loss_log.h"
#include "ltc/ltc_bits.h"
#include "ltc/ltc_run.h"
#include "ltc/ltc_search.h"
#include "ltc/ltc_slicer.h"

namespace Desk
{

namespace
{

struct Closer {
    void operator()(LTCDecoder* decoder) const { ltc_decoder_free(decoder); }
};
typedef std::unique_ptr<LTCDecoder, Closer> Bits;

constexpr unsigned LowestRate = 8000;
constexpr unsigned HighestRate = 192000;
/// A transition ends at most one frame, so the queue never holds more.
constexpr int QueueLength = 4;
/// Transitions that are remembered: of a frame of ones, and of the sync word behind it.
constexpr std::size_t Memory = 256;
/// No bit lasts so long, in seconds: without a transition for this time, the signal is away.
constexpr double LongestLevel = 0.01;

constexpr ltcsnd_sample_t Low = 1;
constexpr ltcsnd_sample_t High = 255;

/// Limits of what the transitions of a frame may do: part of a bit, and samples, which are coarse
/// at low rates and high speed.
constexpr double WorstOfBit = 0.2;
constexpr double WorstSamples = 0.4;
constexpr double CleanOfBit = 0.06;
constexpr double CleanSamples = 0.2;

/// Keeps the logarithm finite.
constexpr double LeastPower = 1e-12;

struct Transition {
    double position; ///< samples
    double energy;   ///< sum of all squares before
};

} // namespace

struct LtcDecoder::Private {
    explicit Private(unsigned sampleRate);

    void Take(float sample, const LtcTaker& taker);
    void OnTransition(const LtcTaker& taker);
    void Restart();
    void Write(bool high, std::size_t count);
    void Check(const LTCFrameExt& received, const LtcTaker& taker);

    const Transition& Get(std::uint64_t number) const { return transitions[number % Memory]; }

    LtcSlicer slicer;
    LtcSearch search;
    LtcRun run;
    LossLog losses;
    Bits bits;
    std::vector<ltcsnd_sample_t> levels; ///< what is written next
    const std::size_t longestLevel;      ///< samples

    std::array<Transition, Memory> transitions{};
    std::uint64_t count = 0;   ///< transitions so far
    std::uint64_t barrier = 0; ///< the first of them that counts
    double energy = 0;
    std::int64_t position = 0; ///< of the next sample
    std::size_t unwritten = 0; ///< samples since the last transition
    bool away = true;          ///< the next transition is a new beginning
};

LtcDecoder::Private::Private(unsigned sampleRate)
    : slicer(sampleRate), search(sampleRate), losses(search.GetFrameLength()),
      longestLevel(static_cast<std::size_t>(sampleRate * LongestLevel))
{
    levels.resize(std::max(longestLevel, static_cast<std::size_t>(search.GetLongestBit())) + 1);
    bits.reset(ltc_decoder_create(static_cast<int>(search.GetFrameLength()), QueueLength));
    if (!bits)
        throw std::bad_alloc();
}

void LtcDecoder::Private::Write(bool high, std::size_t size)
{
    size = std::min(size, levels.size());
    std::fill_n(levels.begin(), size, high ? High : Low);
    ltc_decoder_write(bits.get(), levels.data(), size, 0);
}

/// A fresh decoder knows nothing of any half frame. It is primed with two zeros, so that the frame
/// that begins with the next transition is whole for it.
void LtcDecoder::Private::Restart()
{
    if (Bits fresh{ltc_decoder_create(static_cast<int>(search.GetFrameLength()), QueueLength)})
        bits = std::move(fresh);
    const auto bit = static_cast<std::size_t>(search.GetFrameLength() / LtcBitCount);
    Write(slicer.IsHigh(), bit);
    Write(!slicer.IsHigh(), bit);
    barrier = count;
    unwritten = 0;
    away = false;
}

void LtcDecoder::Private::Take(float sample, const LtcTaker& taker)
{
    const double value = std::isfinite(sample) ? std::clamp(sample, -4.0F, 4.0F) : 0.0F;
    const bool changed = slicer.Feed(static_cast<float>(value));
    if (changed)
        OnTransition(taker);
    else if (++unwritten > longestLevel && !away) {
        slicer.Rest();
        away = true;
    }
    energy += value * value;
    ++position;
}

void LtcDecoder::Private::OnTransition(const LtcTaker& taker)
{
    const double at = static_cast<double>(position) - slicer.GetAge();
    losses.OnTransition(static_cast<std::int64_t>(std::ceil(at)));
    if (search.OnTransition(at)) {
        slicer.SetFilter(search.GetFilter());
        away = true;
    }
    if (away)
        Restart();
    else
        Write(!slicer.IsHigh(), unwritten);
    transitions[count++ % Memory] = {at, energy};
    Write(slicer.IsHigh(), 1);
    unwritten = 0;
    for (LTCFrameExt received; ltc_decoder_read(bits.get(), &received) != 0;)
        Check(received, taker);
}

void LtcDecoder::Private::Check(const LTCFrameExt& received, const LtcTaker& taker)
{
    LtcBits data{};
    static_assert(sizeof received.ltc >= sizeof data);
    std::memcpy(data.data(), &received.ltc, sizeof data);
    const bool reverse = received.reverse != 0;
    if (reverse) // its sync word stays in the order of its arrival
        std::swap(data[8], data[9]);
    const std::optional<LtcTime> time = GetTime(data);
    const std::size_t ones = CountOnes(data);
    const std::size_t size = LtcBitCount + ones + 1;
    const std::size_t behind = reverse ? LtcSyncTransitionCount : 0;
    if (!time || count < barrier + size + behind)
        return;
    const std::uint64_t end = count - behind;
    std::array<double, 2 * LtcBitCount + 1> positions{};
    for (std::size_t i = 0; i < size; ++i)
        positions[i] = Get(end - size + i).position;
    const LtcFit fit = Fit(data, reverse, std::span(positions).first(size));
    if (fit.worst > WorstOfBit * fit.bitLength + WorstSamples)
        return;

    const Transition& from = Get(end - size);
    const Transition& to = Get(end - 1);
    const LtcCandidate candidate{*time,
                                 reverse,
                                 ones % 2 == 0,
                                 fit.typical <= CleanOfBit * fit.bitLength + CleanSamples,
                                 static_cast<std::int64_t>(std::ceil(from.position)),
                                 static_cast<std::int64_t>(std::ceil(to.position)) - 1};
    const double power = (to.energy - from.energy) / (to.position - from.position);
    search.OnFrame(to.position - from.position);
    slicer.SetFilter(search.GetFilter());
    if (!run.Accept(candidate))
        return;
    if (const auto loss = losses.OnFrame(candidate.first, candidate.last))
        taker(*loss);
    taker(LtcFrame{candidate.time, reverse, candidate.first, candidate.last,
                   10 * std::log10(std::max(power, LeastPower))});
}

LtcDecoder::LtcDecoder(unsigned sampleRate)
{
    if (sampleRate < LowestRate || sampleRate > HighestRate)
        throw std::invalid_argument("timecode audio needs a sample rate of 8000 to 192000, not " +
                                    std::to_string(sampleRate));
    m_private = std::make_unique<Private>(sampleRate);
}

LtcDecoder::~LtcDecoder() = default;

void LtcDecoder::Feed(std::span<const float> samples, std::int64_t position, const LtcTaker& taker)
{
    if (position != m_private->position)
        Discontinuity();
    m_private->position = position;
    for (const float sample : samples)
        m_private->Take(sample, taker);
}

void LtcDecoder::Discontinuity()
{
    m_private->slicer.Forget();
    m_private->away = true;
    m_private->run.Forget();
    m_private->losses.OnDiscontinuity();
}

void LtcDecoder::Finish(const LtcTaker& taker)
{
    const auto loss = m_private->losses.OnEnd();
    Discontinuity();
    if (loss)
        taker(*loss);
}

} // namespace Desk
