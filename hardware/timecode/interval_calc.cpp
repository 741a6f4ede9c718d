// SPDX-License-Identifier: MIT
#include "hardware/timecode/interval_calc.h"

#include <cmath>
#include <limits>

namespace Hardware::Timecode
{

namespace
{

/// A fraction above this is a whole number that floating point missed.
constexpr double WholeFraction = 0.9999999;

/// The millisecond that the fractions handed out so far have come to: 0 or 1.
double GetExtraMillisecond(double accumulated)
{
    const double fraction = accumulated - std::floor(accumulated);
    // Not a number when the sum is beyond all doubles; then there is no fraction to speak of.
    if (std::isnan(fraction) || fraction > WholeFraction)
        return 0.0;
    return std::floor(fraction + 0.5);
}

/// Nearest 32-bit signed number; 0 for what is no number.
std::int32_t Saturate(double value)
{
    constexpr double Lowest = std::numeric_limits<std::int32_t>::min();
    constexpr double Highest = std::numeric_limits<std::int32_t>::max();
    if (std::isnan(value))
        return 0;
    if (value <= Lowest)
        return std::numeric_limits<std::int32_t>::min();
    if (value >= Highest)
        return std::numeric_limits<std::int32_t>::max();
    return static_cast<std::int32_t>(value);
}

} // namespace

IntervalCalc::IntervalCalc(Interval interval)
{
    SetInterval(interval);
}

void IntervalCalc::SetInterval(Interval interval)
{
    m_interval = interval;
    m_accumulated = 0.0;
    m_lastTime = 0;
    m_lastResult = 0;
}

std::uint32_t IntervalCalc::GetMillisecs()
{
    m_accumulated += m_interval;
    const double extra = GetExtraMillisecond(m_accumulated);

    const Os::TimeMs now = Os::GetMillisecs();
    std::int32_t lateness = 0;
    if (m_lastTime != 0) {
        lateness = static_cast<std::int32_t>(now - m_lastTime - m_lastResult);
        // After a stall of more than a period nothing is caught up.
        if (lateness > m_interval)
            lateness = 0;
    }
    m_lastTime = now;
    m_lastResult = static_cast<std::uint32_t>(Saturate(std::trunc(m_interval) + extra - lateness));
    return m_lastResult;
}

} // namespace Hardware::Timecode
