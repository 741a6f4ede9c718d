// SPDX-License-Identifier: MIT
#include "ltc/ltc_run.h"

#include <algorithm>
#include <array>

namespace Desk
{

namespace
{

constexpr std::array<unsigned, 3> Rates{24, 25, 30};
/// Longest gap, in frames, over which the time is counted on.
constexpr std::int64_t LongestGap = 250;
/// Frames by which the count over a gap may be wrong.
constexpr std::int64_t GapTolerance = 1;

std::int64_t GetLength(const LtcCandidate& frame)
{
    return frame.last - frame.first + 1;
}

/// Whether one frame's audio begins where the other's ends.
bool IsNextTo(const LtcCandidate& before, const LtcCandidate& frame)
{
    return std::abs(frame.first - before.last - 1) <= GetLength(before) / 4;
}

} // namespace

bool LtcRun::Follows(const LtcCandidate& before, const LtcCandidate& frame, unsigned steps) const
{
    if (before.reverse != frame.reverse)
        return false;
    return std::any_of(Rates.begin(), Rates.end(), [&](unsigned rate) {
        if ((m_framesPerSecond != 0 && rate != m_framesPerSecond) || !IsValid(before.time, rate) ||
            !IsValid(frame.time, rate))
            return false;
        LtcTime time = before.time;
        for (unsigned i = 0; i < steps; ++i)
            time = before.reverse ? GetPrevious(time, rate) : GetNext(time, rate);
        return time == frame.time;
    });
}

bool LtcRun::IsWhereExpected(const LtcCandidate& frame) const
{
    const std::int64_t length = GetLength(*m_last);
    const std::int64_t steps = (frame.first - m_last->first + length / 2) / length;
    if (steps > LongestGap)
        return false;
    for (std::int64_t i = std::max<std::int64_t>(1, steps - GapTolerance);
         i <= steps + GapTolerance; ++i)
        if (Follows(*m_last, frame, static_cast<unsigned>(i)))
            return true;
    return false;
}

void LtcRun::LearnRate(const LtcCandidate& before, const LtcCandidate& frame)
{
    // The first frame number of a second tells the rate, in whichever direction it is passed.
    if (frame.parity && frame.time.seconds != before.time.seconds)
        m_framesPerSecond = std::max(frame.time.frames, before.time.frames) + 1U;
}

void LtcRun::Adopt(const LtcCandidate& frame)
{
    m_last = frame;
    m_withheld.reset();
}

bool LtcRun::Accept(const LtcCandidate& frame)
{
    const bool adjacent = m_last && IsNextTo(*m_last, frame);
    if (adjacent && Follows(*m_last, frame, 1)) {
        LearnRate(*m_last, frame);
        Adopt(frame);
        return true;
    }
    if (!frame.parity)
        return false;
    const bool confirms =
        m_withheld && IsNextTo(*m_withheld, frame) && Follows(*m_withheld, frame, 1);
    const bool begins = !adjacent && frame.clean;
    const bool expected = m_last && !adjacent && IsWhereExpected(frame);
    if (confirms || begins || expected) {
        if (!expected)
            m_framesPerSecond = 0;
        Adopt(frame);
        return true;
    }
    m_withheld = frame;
    return false;
}

void LtcRun::Forget()
{
    m_last.reset();
    m_withheld.reset();
    m_framesPerSecond = 0;
}

} // namespace Desk
