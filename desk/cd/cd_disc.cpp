// SPDX-License-Identifier: MIT
#include "desk/cd_disc.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <stdexcept>

namespace Desk
{

std::string ToCdText(int frames)
{
    const int seconds = frames / CdFramesPerSecond;
    std::array<char, 48> text{};
    std::snprintf(text.data(), text.size(), "%02d:%02d:%02d", seconds / 60, seconds % 60,
                  frames % CdFramesPerSecond);
    return text.data();
}

const CdTrack* CdDisc::FindTrack(int number) const
{
    return number < firstNumber || number > GetLastNumber()
               ? nullptr
               : &tracks[static_cast<std::size_t>(number - firstNumber)];
}

bool CdDisc::HasAudio() const
{
    return std::any_of(tracks.begin(), tracks.end(),
                       [](const CdTrack& track) { return !track.isData; });
}

CdDisc::Place CdDisc::Locate(int frame) const
{
    std::size_t i = 0;
    while (i + 1 < tracks.size() && tracks[i + 1].pregap <= frame)
        ++i;
    const CdTrack& track = tracks[i];
    const auto index = std::upper_bound(track.indices.begin(), track.indices.end(), frame);
    return {firstNumber + static_cast<int>(i), static_cast<int>(index - track.indices.begin()),
            frame - track.GetStart(), track.isData};
}

CdDisc CdDisc::MakeAudio(const std::vector<int>& seconds)
{
    constexpr int Gap = 2 * CdFramesPerSecond;
    CdDisc disc;
    for (const int length : seconds) {
        if (length <= 0 || length > CdMaximumFrames / CdFramesPerSecond)
            throw std::invalid_argument("a track cannot be " + std::to_string(length) +
                                        " seconds long");
        const int pregap = disc.tracks.empty()
                               ? 0
                               : std::max(disc.leadOut - Gap, disc.tracks.back().GetStart() + 1);
        disc.tracks.push_back({"", false, pregap, {disc.leadOut}});
        disc.leadOut += length * CdFramesPerSecond;
        if (disc.leadOut >= CdMaximumFrames)
            break; // too long already, which the check says
    }
    disc.Check();
    return disc;
}

CdDisc CdDisc::MakeData(int seconds)
{
    CdDisc disc = MakeAudio({seconds});
    disc.tracks.front().isData = true;
    return disc;
}

void CdDisc::Check() const
{
    if (tracks.empty())
        throw std::invalid_argument("a disc has at least one track");
    if (firstNumber < 1 || GetLastNumber() > CdMaximumTracks)
        throw std::invalid_argument("a disc has tracks 1 to 99");
    int end = 0;
    for (const CdTrack& track : tracks) {
        if (track.indices.empty())
            throw std::invalid_argument("a track has at least one index");
        if (track.pregap < end || track.pregap > track.GetStart())
            throw std::invalid_argument("a track begins behind the one before, and its gap ahead");
        end = track.GetStart();
        for (const int index : track.indices) {
            if (index < end)
                throw std::invalid_argument("the indices of a track rise");
            end = index + 1;
        }
    }
    if (leadOut < end)
        throw std::invalid_argument("the lead-out is behind the last track");
    if (leadOut > CdMaximumFrames - 1)
        throw std::invalid_argument("a disc ends at 99:59:74 at the latest");
}

} // namespace Desk
