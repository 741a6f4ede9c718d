// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <vector>

namespace Desk
{

// Places and lengths on a disc are in its frames, and places count from the start of the disc, as
// the addresses do that a drive gives. Constants are those of the compact disc's standard, IEC
// 60908.

/// Frames a second.
inline constexpr int CdFramesPerSecond = 75;
/// Frames ahead of what the first file of a disc holds: the gap of two seconds.
inline constexpr int CdFirstFrame = 2 * CdFramesPerSecond;
/// Tracks that a disc has room for.
inline constexpr int CdMaximumTracks = 99;
/// One more than the highest place, 99:59:74.
inline constexpr int CdMaximumFrames = 100 * 60 * CdFramesPerSecond;

/// A place or length as minutes, seconds and frames, such as "61:05:74".
std::string ToCdText(int frames);

struct CdTrack {
    std::string title;
    bool isData = false;
    int pregap = 0;           ///< where index 0 begins; the track's start where it has none
    std::vector<int> indices; ///< where indices 1, 2 and so on begin; at least one

    int GetStart() const { return indices.front(); }
};

/// What is on a disc, as far as a drive tells without playing it.
struct CdDisc {
    std::string title;
    int firstNumber = 1;         ///< number of the first track
    std::vector<CdTrack> tracks; ///< in order, each behind the one before; at least one
    int leadOut = CdFirstFrame;  ///< behind the last track

    /// Where something is: the number of the track, the index in it, the distance from the track's
    /// start (below 0 ahead of it), and whether it is data.
    struct Place {
        int track;
        int index;
        int relative;
        bool isData;
    };

    int GetLastNumber() const { return firstNumber + static_cast<int>(tracks.size()) - 1; }
    /// The track of that number, or null.
    const CdTrack* FindTrack(int number) const;
    bool HasAudio() const;
    /// @param frame below the lead-out
    Place Locate(int frame) const;

    /// A disc of audio tracks of these lengths in seconds, each with a gap of two seconds inside
    /// the end of the one before. Throws std::invalid_argument for a disc that there cannot be.
    static CdDisc MakeAudio(const std::vector<int>& seconds);
    /// A disc with one track of data.
    static CdDisc MakeData(int seconds);

    /// Throws std::invalid_argument, and says why, unless there can be such a disc.
    void Check() const;
};

} // namespace Desk
