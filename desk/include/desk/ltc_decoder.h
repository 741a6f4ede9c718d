// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <span>
#include <variant>

#include "desk/ltc_time.h"

namespace Desk
{

/// One frame, as received.
struct LtcFrame {
    LtcTime time;
    bool reverse = false;         ///< the audio runs backwards
    std::int64_t firstSample = 0; ///< position of its first sample
    std::int64_t lastSample = 0;  ///< position of its last sample
    double level = 0;             ///< root mean square, in dB; a full-scale square wave has 0
};

/// A stretch of audio in which no frame could be delivered.
struct LtcLoss {
    std::int64_t firstSample = 0; ///< position of its first sample
    std::int64_t lastSample = 0;  ///< position of its last sample
    unsigned frames = 0;          ///< for how many it has room, about; at least 1
};

/// What the decoder has to say.
typedef std::variant<LtcFrame, LtcLoss> LtcResult;
/// Takes results, in the order of the audio, on the thread that feeds.
typedef std::function<void(const LtcResult& result)> LtcTaker;

/// Reads longitudinal timecode from audio: 24 to 30 frames a second, with drop frame or without, in
/// both directions, at a quarter of its speed to eight times it as long as a bit has four samples.
///
/// A frame is known once the transition behind it is: the one that begins the frame after it, or
/// any last one. Backwards, where its sync word comes first, only the sync word of the frame after
/// it tells, 16 bits later. So audio of N frames gives all N if one more transition follows, or,
/// backwards, 16 more bits. Silence before the first frame does no harm. Far from the common speed,
/// the first frame or two go into finding it, up to two seconds of audio where there is noise as
/// well. A frame whose end falls on a discontinuity has no transition behind it and is lost.
///
/// A frame is delivered if its bits can be right:
/// - Its digits and numbers are a time, and one that drop frame, if set, does not leave out.
/// - All its transitions stand where these bits want them, with none missing and none more, and
///   since the last discontinuity.
/// - Its number of ones is even, which the polarity correction bit sees to. That bit is the 28th in
///   formats of 24 and 30 frames and the 60th in those of 25, but as every bit counts, there is no
///   need to know which. A frame with an odd number is delivered only where it stands beside the
///   one delivered before and its time is exactly the next in the direction of both. So a source
///   that never sets the bit is heard from its first even frame on, and a wrong bit does no harm.
/// - Its time is the next one; or it comes first, or after a gap, and is so clean or so exactly
///   where time has gone on in the gap that it can be no noise. If neither, or if the time jumps
///   with no gap, the frame is withheld, and the next one is delivered if it confirms the jump.
///
/// A loss is reported once, before the frame that ends it or by Finish(). It runs from the last
/// frame delivered to the next, whatever the audio holds in between. Ahead of the first frame and
/// behind the last one only audio with transitions counts; silence there is no loss.
///
/// A pure machine without threads or clock: what it says depends on what it is fed, never on how
/// that was cut into blocks. Its memory is bounded. Nothing throws but the construction, and what
/// takers throw.
class LtcDecoder
{
public:
    /// @param sampleRate samples a second, 8000 to 192000; std::invalid_argument for any other
    explicit LtcDecoder(unsigned sampleRate);
    ~LtcDecoder();
    LtcDecoder(const LtcDecoder&) = delete;
    LtcDecoder& operator=(const LtcDecoder&) = delete;

    /// Takes audio; full scale is from -1 to 1, and what is no finite number counts as 0.
    /// @param position of its first sample; a jump is a discontinuity
    void Feed(std::span<const float> samples, std::int64_t position, const LtcTaker& taker);
    /// The audio that is fed next does not follow what has been: a frame half received is
    /// forgotten.
    void Discontinuity();
    /// The audio has ended: reports what was lost behind the last frame. Feeding begins anew.
    void Finish(const LtcTaker& taker);

private:
    struct Private;
    std::unique_ptr<Private> m_private;
};

} // namespace Desk
