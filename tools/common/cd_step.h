// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <vector>

namespace Tools
{

/// One thing to do with a CD drive, as somebody writes it on a command line.
struct CdStep {
    enum class Verb {
        Status,
        Contents,
        Play,      ///< from the start, or on from a pause
        PlayTrack, ///< number says which
        PlayTime,  ///< number says where, in frames
        Pause,
        Resume,
        Stop,
        Next,
        Previous,
        Jog,   ///< by number, in frames, which may be negative
        Follow ///< for so many seconds; 0 for without end
    };

    Verb verb = Verb::Status;
    int number = 0;
    double seconds = 0;
};

/// Reads a row of words: status, contents, play [TRACK | MM:SS[:FF]], pause, resume, stop, next,
/// previous, jog SECONDS, follow [SECONDS]. Throws std::invalid_argument that says what is wrong.
std::vector<CdStep> ParseCdSteps(const std::vector<std::string>& words);

} // namespace Tools
