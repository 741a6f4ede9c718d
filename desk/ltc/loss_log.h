// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <optional>

#include "desk/ltc_decoder.h"

namespace Desk
{

/// Finds the stretches without a frame between those delivered.
class LossLog
{
public:
    /// @param frameLength in samples, until a frame tells
    explicit LossLog(double frameLength) : m_frameLength(frameLength) {}

    /// A transition, of a frame or not, at this sample.
    void OnTransition(std::int64_t position);
    /// The audio that follows does not continue what has been.
    void OnDiscontinuity() { m_cut = true; }
    /// A frame is delivered. Returns what was lost before it.
    std::optional<LtcLoss> OnFrame(std::int64_t first, std::int64_t last);
    /// The audio ends. Returns what was lost behind the last frame.
    std::optional<LtcLoss> OnEnd();

private:
    std::optional<LtcLoss> GetLoss(std::int64_t end, double limit) const;

    double m_frameLength;
    /// Where the next frame ought to begin: behind the last one, or at the first transition.
    std::optional<std::int64_t> m_begin;
    std::int64_t m_lastTransition = 0;
    bool m_cut = false; ///< since the last frame
};

} // namespace Desk
