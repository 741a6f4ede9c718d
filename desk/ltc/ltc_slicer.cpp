// SPDX-License-Identifier: MIT
#include "ltc/ltc_slicer.h"

#include <algorithm>
#include <cmath>

namespace Desk
{

namespace
{

/// The level is followed so fast that one tenth of it is found again within a third of a frame, and
/// so slowly that it lasts through the longest bit, 2 ms at a quarter of 24 frames a second.
constexpr double LevelSeconds = 0.005;
/// A signal of two levels has no offset over some bits.
constexpr double OffsetSeconds = 0.02;
/// Share of the level that a transition must pass on the other side.
constexpr float Threshold = 0.4F;
constexpr float LeastLevel = 0.005F;

float GetShare(double sampleRate, double seconds)
{
    return static_cast<float>(1.0 - std::exp(-1.0 / (sampleRate * seconds)));
}

} // namespace

LtcSlicer::LtcSlicer(double sampleRate)
    : m_offsetStep(GetShare(sampleRate, OffsetSeconds)),
      m_levelStep(GetShare(sampleRate, LevelSeconds))
{
}

void LtcSlicer::SetFilter(std::size_t length)
{
    m_wantedFilter = std::clamp<std::size_t>(length, 1, MaxFilter);
}

void LtcSlicer::AdaptFilter()
{
    if (m_filter == m_wantedFilter)
        return;
    m_filter = m_filter < m_wantedFilter ? m_filter + 1 : m_filter - 1;
    m_sum = 0;
    for (std::size_t i = 1; i <= m_filter; ++i)
        m_sum += m_samples[(m_next + MaxFilter - i) % MaxFilter];
}

float LtcSlicer::Smooth(float sample)
{
    m_sum += sample - m_samples[(m_next + MaxFilter - m_filter) % MaxFilter];
    m_samples[m_next] = sample;
    m_next = (m_next + 1) % MaxFilter;
    return static_cast<float>(m_sum / static_cast<double>(m_filter));
}

void LtcSlicer::Rest()
{
    m_offset += m_before;
    m_before = 0;
    Forget();
}

bool LtcSlicer::Feed(float sample)
{
    m_offset += (sample - m_offset) * m_offsetStep;
    const float value = Smooth(sample) - m_offset;
    m_mean += (std::abs(value) - m_mean) * m_levelStep;

    const float threshold = Threshold * std::max(m_mean, LeastLevel);
    const bool rises = m_level != Level_High && value > threshold;
    const bool falls = m_level != Level_Low && value < -threshold;
    if (rises || falls) {
        const float crossing = rises ? threshold : -threshold;
        const float step = value - m_before;
        const float passed = std::abs(step) > 0 ? (value - crossing) / step : 0.0F;
        m_age = static_cast<double>(std::clamp(passed, 0.0F, 1.0F)) +
                static_cast<double>(m_filter - 1) / 2.0;
        m_level = rises ? Level_High : Level_Low;
        AdaptFilter();
    }
    m_before = value;
    return rises || falls;
}

} // namespace Desk
