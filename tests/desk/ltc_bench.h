// SPDX-License-Identifier: MIT
#pragma once

#include <gmock/gmock.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <span>
#include <vector>

#include "desk/audio_source.h"
#include "desk/ltc_decoder.h"
#include "desk/ltc_generator.h"

namespace TestSupport
{

/// Everything that a source gave, in one piece.
struct Audio {
    std::vector<float> samples;
    std::vector<std::int64_t> discontinuities; ///< positions of the samples behind them
};

/// What a decoder made of audio.
struct Decoded {
    std::vector<Desk::LtcFrame> frames;
    std::vector<Desk::LtcLoss> losses;

    Desk::LtcTaker GetTaker()
    {
        return [this](const Desk::LtcResult& result) {
            if (const auto* const frame = std::get_if<Desk::LtcFrame>(&result))
                frames.push_back(*frame);
            else
                losses.push_back(std::get<Desk::LtcLoss>(result));
        };
    }

    std::vector<std::string> GetTexts() const
    {
        std::vector<std::string> texts;
        for (const Desk::LtcFrame& frame : frames)
            texts.push_back(Desk::ToText(frame.time));
        return texts;
    }

    /// Whether any loss holds all these samples but for a few.
    bool IsLost(std::int64_t first, std::int64_t last, std::int64_t tolerance) const
    {
        return std::any_of(losses.begin(), losses.end(), [&](const Desk::LtcLoss& loss) {
            return loss.firstSample <= first + tolerance && loss.lastSample >= last - tolerance;
        });
    }
};

inline Audio ReadAll(Desk::AudioSource& source, std::size_t blockLength = 1000)
{
    Audio audio;
    std::vector<float> samples(blockLength);
    for (Desk::AudioBlock block; !block.end;) {
        block = source.Read(samples);
        if (block.discontinuity)
            audio.discontinuities.push_back(static_cast<std::int64_t>(audio.samples.size()));
        audio.samples.insert(audio.samples.end(), samples.begin(),
                             samples.begin() + static_cast<std::ptrdiff_t>(block.samples));
    }
    return audio;
}

inline Audio Generate(const Desk::LtcSettings& settings)
{
    Desk::LtcGenerator generator(settings);
    return ReadAll(generator);
}

inline Decoded Decode(const Audio& audio, unsigned sampleRate, std::size_t blockLength = 1000)
{
    Decoded decoded;
    Desk::LtcDecoder decoder(sampleRate);
    const std::span<const float> all(audio.samples);
    auto cut = audio.discontinuities.begin();
    for (std::size_t at = 0; at < all.size();) {
        if (cut != audio.discontinuities.end() && static_cast<std::size_t>(*cut) == at) {
            decoder.Discontinuity();
            ++cut;
        }
        const std::size_t limit =
            cut == audio.discontinuities.end() ? all.size() : static_cast<std::size_t>(*cut);
        const std::size_t count = std::min(blockLength, limit - at);
        decoder.Feed(all.subspan(at, count), static_cast<std::int64_t>(at), decoded.GetTaker());
        at += count;
    }
    decoder.Finish(decoded.GetTaker());
    return decoded;
}

inline Decoded Decode(const Desk::LtcSettings& settings)
{
    return Decode(Generate(settings), settings.sampleRate);
}

/// Times that the generator's settings ask for, in order.
inline std::vector<Desk::LtcTime> ListTimes(const Desk::LtcSettings& settings)
{
    std::vector<Desk::LtcTime> times;
    Desk::LtcTime time = settings.start;
    const unsigned rate = Desk::GetFrameCount(settings.rate);
    for (unsigned i = 0; i < settings.frames; ++i) {
        times.push_back(time);
        time = settings.backwards ? Desk::GetPrevious(time, rate) : Desk::GetNext(time, rate);
    }
    return times;
}

inline std::vector<Desk::LtcTime> ListTimes(const Decoded& decoded)
{
    std::vector<Desk::LtcTime> times;
    for (const Desk::LtcFrame& frame : decoded.frames)
        times.push_back(frame.time);
    return times;
}

/// Samples of a frame at speed 1.
inline double GetFrameLength(const Desk::LtcSettings& settings)
{
    return settings.sampleRate / Desk::GetFramesPerSecond(settings.rate);
}

} // namespace TestSupport
