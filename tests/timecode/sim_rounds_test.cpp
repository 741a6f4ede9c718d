// SPDX-License-Identifier: MIT
// The simulator after many rounds, and under many changes at once.
#include <gtest/gtest.h>

#include <atomic>
#include <thread>

#include "hardware/timecode/device_sim.h"
#include "support/process_facts.h"
#include "support/stepping_clock.h"
#include "support/wait.h"
#include "timecode/watchdog.h"

namespace
{

using Hardware::Timecode::Device;
using Hardware::Timecode::DeviceSim;
using Hardware::Timecode::Frame;
using TestSupport::CountDescriptors;
using TestSupport::CountThreads;
using TestSupport::WaitUntil;

/// Starts and stops an instance many times, on a clock whose sleeps return at once.
void ExpectNothingLeftBehind(bool traffic)
{
    const TestSupport::Watchdog watchdog(240);
    // A sanitizer starts a thread of its own with the first one.
    std::thread([] {}).join();
    const std::size_t threads = CountThreads();
    const std::size_t descriptors = CountDescriptors();
    TestSupport::SteppingClock clock;
    clock.Release();
    DeviceSim device(nullptr);
    std::atomic<bool> heard{false};
    QObject::connect(&device, &Device::frameRead, [&] { heard = true; });
    device.Create(1);
    device.SetRate(1, 25.0);
    if (!traffic)
        device.Disable(1);
    for (int round = 0; round < 1000; ++round) {
        heard = false;
        ASSERT_TRUE(device.Start(1));
        if (traffic) {
            ASSERT_TRUE(WaitUntil([&] { return heard.load(); }));
        }
        ASSERT_TRUE(device.Stop(1));
    }
    EXPECT_EQ(heard, traffic);
    EXPECT_EQ(CountThreads(), threads);
    EXPECT_EQ(CountDescriptors(), descriptors);
}

TEST(SimRounds, AThousandWithFramesLeaveNothingBehind)
{
    ExpectNothingLeftBehind(true);
}

TEST(SimRounds, AThousandWithoutFramesLeaveNothingBehind)
{
    ExpectNothingLeftBehind(false);
}

TEST(SimChanges, OfTheRateNeverLetARunningPositionFallBack)
{
    const TestSupport::Watchdog watchdog(240);
    TestSupport::SteppingClock clock;
    clock.Release();
    DeviceSim device(nullptr);
    device.Create(1);
    device.SetRate(1, 25.0);
    device.Jump(1, Frame(1, 0, 0, 0, false));
    Frame last;
    std::atomic<int> frames{0};
    std::atomic<int> fallen{0};
    QObject::connect(&device, &Device::frameRead, [&](const Device::Id&, const Frame& frame) {
        fallen += frame < last;
        last = frame;
        ++frames;
    });
    device.Start(1);
    for (int i = 0; i < 100000; ++i) {
        device.SetRate(1, i % 2 ? 25.0 : 50.0);
        device.Disable(1);
        device.Enable(1);
    }
    EXPECT_TRUE(WaitUntil([&] { return frames > 10; }));
    device.Stop(1);
    EXPECT_EQ(fallen, 0);
}

} // namespace
