// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

#include "desk/audio_source.h"
#include "desk/ltc_time.h"

namespace Desk
{

/// Frames per second.
enum LtcRate : std::uint8_t {
    LtcRate_24,
    LtcRate_25,
    LtcRate_2997, ///< 30000 / 1001, counted as 30
    LtcRate_30
};

/// How many frames a second counts.
unsigned GetFrameCount(LtcRate rate);
/// Frames per second.
double GetFramesPerSecond(LtcRate rate);

/// A stretch of generated audio that is not heard.
struct LtcDropout {
    double from = 0;   ///< where it begins, in seconds from the beginning of the audio
    double length = 0; ///< seconds
    bool cut = false;  ///< its samples are missing, which is a discontinuity; else they are silent
};

/// How the level changes over the length of the frames.
enum LevelShape : std::uint8_t {
    LevelShape_Sine, ///< there and back in one period of a sine
    LevelShape_Step  ///< at once, in the middle
};

/// What a generator makes. The defaults are ten seconds from 10:00:00:00 at 25 frames a second.
struct LtcSettings {
    LtcRate rate = LtcRate_25;
    LtcTime start{10, 0, 0, 0, false}; ///< time of the first frame, and whether drop frame counts
    unsigned frames = 250;             ///< 1 to 10 million
    bool backwards = false;            ///< times fall and the bits of each are reversed
    double startSpeed = 1;             ///< speed of the first frame, 0.1 to 10
    double endSpeed = 1;         ///< speed of the last one; changes evenly from frame to frame
    unsigned sampleRate = 48000; ///< 8000 to 192000
    double level = -6;           ///< peak of the signal, in dB of full scale, -60 to 0
    double levelChange = 0;      ///< dB, added to the level in the middle or from there on
    LevelShape levelShape = LevelShape_Sine;
    std::optional<double> noise =
        std::nullopt;       ///< white noise: signal-to-noise ratio in dB, at every level
    std::uint32_t seed = 1; ///< of the noise; the same one gives the same noise
    std::vector<LtcDropout> dropouts = {};
    std::uint32_t userBits = 0; ///< four a group, the first group lowest
    bool parity = true;         ///< sets the polarity correction bit where it belongs
    double leadIn = 0;          ///< silence before the first frame, in seconds
    double leadOut = 0;         ///< silence after the last one, in seconds
};

/// Makes the audio of longitudinal timecode.
///
/// Behind the last frame there is as much of the next one as a decoder needs to tell that the last
/// one is whole: one bit, or, backwards, the sync word and one bit more.
class LtcGenerator : public AudioSource
{
public:
    /// Throws std::invalid_argument, with a text that says which, for a setting out of range, and
    /// for drop frame at another rate than 29.97 and 30.
    explicit LtcGenerator(const LtcSettings& settings);
    ~LtcGenerator() override;

    unsigned GetSampleRate() const override;
    AudioBlock Read(std::span<float> samples) override;
    void Stop() override;

private:
    struct Private;
    const std::unique_ptr<Private> m_private;
};

} // namespace Desk
