// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <optional>

#include "desk/ltc_time.h"

namespace Desk
{

/// A frame whose bits are a time, before anybody believes it.
struct LtcCandidate {
    LtcTime time;
    bool reverse = false;
    bool parity = false;    ///< the polarity correction is right
    bool clean = false;     ///< its transitions stand too well for noise
    std::int64_t first = 0; ///< sample
    std::int64_t last = 0;  ///< sample
};

/// Decides which frames are believed, by those believed before. See LtcDecoder for the rules.
class LtcRun
{
public:
    /// True when the frame may be delivered.
    bool Accept(const LtcCandidate& frame);
    /// What comes next does not follow what has been.
    void Forget();

private:
    /// Whether @p frame is @p steps frames after @p before, in the direction of both.
    bool Follows(const LtcCandidate& before, const LtcCandidate& frame, unsigned steps) const;
    /// Whether it stands in time where it does in the audio, as far as a short gap can tell.
    bool IsWhereExpected(const LtcCandidate& frame) const;
    void LearnRate(const LtcCandidate& before, const LtcCandidate& frame);
    void Adopt(const LtcCandidate& frame);

    std::optional<LtcCandidate> m_last;     ///< delivered last
    std::optional<LtcCandidate> m_withheld; ///< right in itself, but its time needs another's word
    unsigned m_framesPerSecond = 0;         ///< seen at the end of a second; 0 before
};

} // namespace Desk
