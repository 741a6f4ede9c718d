// SPDX-License-Identifier: MIT
#pragma once

#include <gtest/gtest.h>

#include <future>
#include <memory>
#include <string>
#include <vector>

#include "hardware/timecode/device_sim.h"
#include "support/stepping_clock.h"
#include "support/wait.h"
#include "timecode/frame_log.h"
#include "timecode/watchdog.h"

namespace TestSupport
{

/// A simulator with instance 1, on a clock that the test moves.
///
/// While a pass of the loop sleeps, everything before that sleep has happened, so frames and
/// sleeps can be compared exactly. Moving the clock takes one started instance at a time.
class SimBench : public testing::Test
{
protected:
    SimBench() { device->Create(1); }
    /// Lets the threads of a test that failed half-way run out.
    ~SimBench() override
    {
        clock.Release();
        device.reset();
    }

    /// Starts instance 1 and waits until its first pass sleeps.
    void Start()
    {
        EXPECT_TRUE(device->Start(1));
        AwaitSleep();
    }

    /// Ends the sleep under way, @p late milliseconds too late, and waits for the next.
    void Pass(unsigned late = 0)
    {
        EndSleep(late);
        AwaitSleep();
    }

    void Passes(int count)
    {
        for (int i = 0; i < count; ++i)
            Pass();
    }

    /// Stops instance 1, in its sleep, by letting that sleep end.
    void Stop()
    {
        auto stopped = std::async(std::launch::async, [this] { return device->Stop(1); });
        ASSERT_TRUE(WaitUntil([this] { return !device->IsStarted(1); }));
        EndSleep(0);
        EXPECT_TRUE(stopped.get());
    }

    /// Frames reported by the passes that @p play makes.
    template <class Play> std::vector<std::string> FramesOf(Play play)
    {
        const std::size_t before = log.CountFrames();
        play();
        const std::vector<std::string> frames = log.GetFrames();
        return {frames.begin() + static_cast<std::ptrdiff_t>(before), frames.end()};
    }

    /// The frame that instance 1 stands at; moves it by one.
    std::string TakePosition()
    {
        const std::vector<std::string> frames = FramesOf([this] { Start(); });
        Stop();
        return frames.empty() ? "none" : frames.front();
    }

    const Watchdog watchdog;
    SteppingClock clock;
    std::unique_ptr<Hardware::Timecode::DeviceSim> device =
        std::make_unique<Hardware::Timecode::DeviceSim>(nullptr);
    FrameLog log{*device};

private:
    void EndSleep(unsigned late)
    {
        const std::vector<unsigned> sleeps = clock.GetSleeps();
        ASSERT_LT(m_ended, sleeps.size());
        clock.Advance(sleeps[m_ended++] + late);
    }

    void AwaitSleep()
    {
        ASSERT_TRUE(WaitUntil([this] { return clock.GetSleeps().size() > m_ended; }));
    }

    std::size_t m_ended = 0;
};

} // namespace TestSupport
