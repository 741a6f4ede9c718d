// SPDX-License-Identifier: MIT
#include "ltc/loss_log.h"

#include <algorithm>
#include <cmath>

namespace Desk
{

namespace
{

/// Part of a frame from which on a gap is one that a frame is missing in.
constexpr double LeastGap = 0.5;
/// The same across a discontinuity, where little may be left of a frame on either side: two bits.
constexpr double LeastGapAtCut = 0.025;

} // namespace

void LossLog::OnTransition(std::int64_t position)
{
    if (!m_begin)
        m_begin = position;
    m_lastTransition = position;
}

std::optional<LtcLoss> LossLog::GetLoss(std::int64_t end, double limit) const
{
    if (!m_begin)
        return std::nullopt;
    const double frames = static_cast<double>(end - *m_begin) / m_frameLength;
    if (frames < limit)
        return std::nullopt;
    return LtcLoss{*m_begin, end - 1, static_cast<unsigned>(std::max(1L, std::lround(frames)))};
}

std::optional<LtcLoss> LossLog::OnFrame(std::int64_t first, std::int64_t last)
{
    m_frameLength = static_cast<double>(last - first + 1);
    const auto loss = GetLoss(first, m_cut ? LeastGapAtCut : LeastGap);
    m_begin = last + 1;
    m_cut = false;
    return loss;
}

std::optional<LtcLoss> LossLog::OnEnd()
{
    const auto loss = GetLoss(m_lastTransition, LeastGap);
    m_begin.reset();
    m_cut = false;
    return loss;
}

} // namespace Desk
