// SPDX-License-Identifier: MIT

// Reads arbitrary texts as CUE sheets, and checks what is said of those that are none and that the
// others make a disc. The files that a sheet names are as long as their names say.

#include <algorithm>
#include <cstddef>
#include <cstdlib>
#include <optional>
#include <stdexcept>
#include <string>

#include "desk/cd_disc.h"
#include "desk/cue_sheet.h"
#include "require.h"

using Fuzz::Require;

namespace
{

/// The number that a name begins with, in frames; unknown where it begins with none.
std::optional<int> GetLength(const std::string& name, int sectorBytes)
{
    Require(sectorBytes == 0 || (sectorBytes >= 2048 && sectorBytes <= 2352), "no such sectors");
    char* end = nullptr;
    const long length = std::strtol(name.c_str(), &end, 10);
    if (end == name.c_str())
        return std::nullopt;
    return static_cast<int>(std::clamp(length, 0L, 2L * Desk::CdMaximumFrames));
}

/// "line NUMBER: REASON", with a line that the text has.
void CheckReason(const std::string& reason, const std::string& text)
{
    const std::string begin = "line ";
    Require(reason.starts_with(begin), "a reason without a line");
    char* end = nullptr;
    const long line = std::strtol(reason.c_str() + begin.size(), &end, 10);
    Require(line >= 1 && line <= 1 + std::count(text.begin(), text.end(), '\n'),
            "a line that the text does not have");
    Require(std::string(end).starts_with(": "), "no reason");
}

void CheckDisc(const Desk::CdDisc& disc)
{
    disc.Check();
    Require(disc.tracks.size() <= Desk::CdMaximumTracks, "more tracks than a disc has");
    for (int frame = 0; frame < disc.leadOut; frame += 997) {
        const auto place = disc.Locate(frame);
        const Desk::CdTrack* const track = disc.FindTrack(place.track);
        Require(track, "a place outside all tracks");
        Require(track->GetStart() + place.relative == frame, "a place that is another's");
        Require(place.index >= 0 && place.index <= static_cast<int>(track->indices.size()),
                "a place in no index");
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size)
{
    const std::string text(data, data + size);
    try {
        CheckDisc(Desk::ParseCueSheet(text, GetLength));
    } catch (const std::invalid_argument& error) {
        Require(false, error.what());
    } catch (const std::runtime_error& error) {
        CheckReason(error.what(), text);
    }
    return 0;
}
