// SPDX-License-Identifier: MIT
#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>

#include "desk/audio_source.h"
#include "desk/ltc_decoder.h"

namespace Desk
{

/// How fast a player goes.
enum LtcPace : std::uint8_t {
    LtcPace_RealTime,        ///< as fast as the audio sounds
    LtcPace_AsFastAsPossible ///< as fast as it can be read and decoded
};

/// Plays audio to a decoder, on a thread of its own, and says what it hears.
///
/// In real time, a frame is said when its last sample has been played, counted from the beginning,
/// and what it takes the decoder to be sure comes on top where the source is a live one; a loss
/// with the frame that ends it. A source that is late is not caught up with by skipping.
class LtcPlayer
{
public:
    typedef std::function<void(const LtcFrame& frame)> FrameTaker;
    typedef std::function<void(const LtcLoss& loss)> LossTaker;

    /// Begins to play. Both takers are called on the player's thread, in the order of the audio,
    /// and must neither throw nor destroy the player; either may be empty. Throws
    /// std::invalid_argument for a sample rate that LtcDecoder does not take.
    LtcPlayer(std::unique_ptr<AudioSource> source, FrameTaker onFrame, LossTaker onLoss,
              LtcPace pace = LtcPace_RealTime);
    /// As Stop().
    ~LtcPlayer();
    LtcPlayer(const LtcPlayer&) = delete;
    LtcPlayer& operator=(const LtcPlayer&) = delete;

    /// Ends it, also while the source waits, and waits for the thread; nothing is said afterwards.
    /// Any thread; on the player's own, in a taker, it does not wait.
    void Stop();
    /// Waits until the audio has ended, or was stopped, and all has been said.
    /// @return false when that has not come in this time
    bool WaitEnd(std::chrono::milliseconds timeout);

private:
    struct Private;
    const std::unique_ptr<Private> m_private;
};

} // namespace Desk
