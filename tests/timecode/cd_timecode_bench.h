// SPDX-License-Identifier: MIT
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "cd/cd_bench.h"
#include "hardware/timecode/device_cd.h"
#include "support/wait.h"
#include "timecode/frame_log.h"
#include "timecode/watchdog.h"

namespace TestSupport
{

/// A timecode device on a virtual drive with a disc, by a clock that the test moves, with all its
/// log lines. The disc does not play.
class CdTimecodeBench : public CdBench
{
protected:
    CdTimecodeBench() { m_drive.Insert(MakeDisc()); }
    ~CdTimecodeBench() override { End(); }

    /// Destroys the device, which reports to what is here and in the test.
    void End()
    {
        m_clock.Release();
        m_device.reset();
    }

    /// Makes the disc play from a place on.
    void PlayFrom(int minutes, int seconds, int frames)
    {
        m_player.PlayTime(MakeCdTime(ToCdFrames(minutes, seconds, frames)));
        ASSERT_EQ(m_player.GetStatus(), CdPlayer::Status_Playing);
    }

    /// Lets the thread pass so many sleeps; what it slept.
    std::vector<unsigned> Passes(std::size_t count)
    {
        std::vector<unsigned> sleeps;
        for (std::size_t i = 0; i < count; ++i)
            sleeps.push_back(m_clock.FinishNextSleep());
        return sleeps;
    }

    /// Waits until the thread has asked the drive so many times more.
    bool AwaitPolls(std::size_t more) const
    {
        const std::size_t before = m_drive.CountRequests(Subchannel);
        return WaitUntil([&] { return m_drive.CountRequests(Subchannel) >= before + more; });
    }

    /// The request that polls.
    static constexpr unsigned long Subchannel = 0x530B;

    const Watchdog m_watchdog;
    LogCapture m_log{"Hardware/Timecode/Cd", Os::Log::AllLevels};
    CdPlayer m_player;
    std::unique_ptr<Hardware::Timecode::DeviceCd> m_device{
        std::make_unique<Hardware::Timecode::DeviceCd>(nullptr)};
    FrameLog m_frames{*m_device};
};

} // namespace TestSupport
