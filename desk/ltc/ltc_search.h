// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>

namespace Desk
{

/// Guesses how long a frame is, until frames tell.
///
/// The guess sets the running mean and where the bit decoder begins to follow the speed. While
/// frames come, the last one holds. When none has come for some time of signal, other speeds are
/// tried in turn; silence does not count.
class LtcSearch
{
public:
    explicit LtcSearch(double sampleRate);

    /// Length of a frame, in samples.
    double GetFrameLength() const { return m_frameLength; }
    /// Length of the running mean that suits it, in samples.
    std::size_t GetFilter() const { return m_filter; }
    /// Longest bit of any guess, in samples.
    double GetLongestBit() const;

    /// A transition at this position. True when a new guess begins.
    bool OnTransition(double position);
    /// A frame of this length, in samples.
    void OnFrame(double length);

private:
    void SetFrameLength(double length, bool filter);

    const double m_sampleRate;
    double m_frameLength = 0;
    std::size_t m_filter = 1;
    double m_lastTransition = 0;
    double m_searched = 0; ///< samples of signal without a frame
    std::size_t m_guess = 0;
    bool m_locked = false;
};

} // namespace Desk
