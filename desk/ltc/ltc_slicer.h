// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <cstddef>

namespace Desk
{

/// Finds the transitions of a two-level signal in audio of any level.
///
/// A running mean takes out noise, a slow one the offset, and the threshold follows the signal's
/// level, so that a transition counts only once it has left the noise of the level before. What
/// stays below -54 dB of full scale is silence.
class LtcSlicer
{
public:
    /// Longest running mean, in samples: half a half-bit at 192 kHz and a quarter of full speed.
    static constexpr std::size_t MaxFilter = 100;

    explicit LtcSlicer(double sampleRate);

    /// Sets the length that the running mean goes to, one sample a transition, as a jump would look
    /// like one. About a quarter of a bit takes out much noise and leaves every transition.
    void SetFilter(std::size_t length);
    /// Whatever level comes next begins with a transition.
    void Forget() { m_level = Level_Unknown; }
    /// There is no signal: what is there is the offset, and whatever comes next is a transition.
    void Rest();

    /// Takes one sample; true when the signal has changed its level.
    bool Feed(float sample);
    /// The level after the last transition.
    bool IsHigh() const { return m_level == Level_High; }
    /// How long before the last sample the transition was, in samples.
    double GetAge() const { return m_age; }

private:
    enum Level { Level_Unknown, Level_Low, Level_High };

    float Smooth(float sample);
    void AdaptFilter();

    const float m_offsetStep; ///< share of a sample in the offset
    const float m_levelStep;  ///< share of a sample in the level
    float m_offset = 0;
    float m_mean = 0; ///< mean deviation from the offset
    float m_before = 0;
    double m_age = 0;
    Level m_level = Level_Unknown;
    std::array<float, MaxFilter> m_samples{};
    std::size_t m_filter = 1;
    std::size_t m_wantedFilter = 1;
    std::size_t m_next = 0;
    double m_sum = 0;
};

} // namespace Desk
