// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <span>

namespace Desk
{

/// What one read of an audio source gave.
struct AudioBlock {
    std::size_t samples = 0;    ///< samples written, from the front of the span
    bool discontinuity = false; ///< the block does not follow the one before it
    bool end = false;           ///< nothing follows: the audio has ended or was stopped
};

/// One channel of audio, read from its beginning to its end.
///
/// One thread reads; Stop() may come from any other.
class AudioSource
{
public:
    AudioSource() = default;
    virtual ~AudioSource() = default;
    AudioSource(const AudioSource&) = delete;
    AudioSource& operator=(const AudioSource&) = delete;

    /// Samples per second, above 0; the same for as long as the source lives.
    virtual unsigned GetSampleRate() const = 0;

    /// Reads samples; full scale is from -1 to 1. Waits until there is at least one, unless the
    /// audio ends or is stopped. A discontinuity stands only before a block, never inside. After a
    /// block with its end set there are only empty ones with theirs set.
    virtual AudioBlock Read(std::span<float> samples) = 0;

    /// Ends a read that waits, and makes every later one report the end.
    virtual void Stop() = 0;
};

} // namespace Desk
