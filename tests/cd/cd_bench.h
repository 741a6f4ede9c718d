// SPDX-License-Identifier: MIT
#pragma once

#include <gtest/gtest.h>

#include <atomic>
#include <cstdint>
#include <string>

#include "desk/cd_drive.h"
#include "hardware/cd_player.h"
#include "os/log.h"
#include "support/log_capture.h"
#include "support/stepping_clock.h"

namespace TestSupport
{

/// A time of so many frames.
inline CdTime MakeCdTime(int frames)
{
    CdTime time;
    time.SetRawFrameCount(frames);
    return time;
}

/// The frames of a time on a disc.
inline int ToCdFrames(int minutes, int seconds, int frames)
{
    return (minutes * 60 + seconds) * Desk::CdFramesPerSecond + frames;
}

/// An empty drive that turns discs by a clock which the test moves.
class CdBench : public testing::Test
{
protected:
    /// Three tracks of 10, 20 and 30 seconds, from 00:02:00, 00:12:00 and 00:32:00 on, to 01:02:00.
    static Desk::CdDisc MakeDisc() { return Desk::CdDisc::MakeAudio({10, 20, 30}); }

    /// What the drive does, such as "playing 00:02:00" or "stopped 00:12:05".
    std::string GetState() const
    {
        const Desk::CdDrive::State state = m_drive.GetState();
        const char* const words[] = {"stopped ", "playing ", "paused "};
        return words[static_cast<int>(state.status)] + Desk::ToCdText(state.position);
    }

    Desk::KernelTestbed m_testbed;
    SteppingClock m_clock;
    std::atomic<std::uint32_t> m_frozen{0}; ///< the time that discs turn by instead, if not 0
    Desk::CdDrive m_drive{m_testbed, [this] {
                              const std::uint32_t frozen = m_frozen.load();
                              return frozen != 0 ? frozen : m_clock.GetMillisecs();
                          }};
};

/// The same with a disc in it, and a player with all its log lines.
class CdPlayerBench : public CdBench
{
protected:
    CdPlayerBench()
    {
        m_drive.Insert(MakeDisc());
        m_log.Clear();
    }

    LogCapture m_log{"CdPlayer", Os::Log::AllLevels};
    CdPlayer m_player;
};

} // namespace TestSupport
