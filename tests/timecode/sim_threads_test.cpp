// SPDX-License-Identifier: MIT
// The simulator's threads: how many, what they are called, what they may meet and when they end.
#include <gmock/gmock.h>
#include <pthread.h>
#include <sched.h>

#include <atomic>
#include <thread>

#include "timecode/proc_self.h"
#include "timecode/sim_bench.h"

namespace
{

using namespace Hardware;
using Hardware::Timecode::Device;
using Hardware::Timecode::DeviceSim;
using Hardware::Timecode::Frame;
using testing::AllOf;
using testing::Each;
using testing::Ne;
using TestSupport::CountSimThreads;
using TestSupport::WaitUntil;

using SimThreads = TestSupport::SimBench;

TEST_F(SimThreads, AreOneForEachStartedInstance)
{
    device->Create(2);
    device->Create(3);
    EXPECT_EQ(CountSimThreads(), 0U);
    device->Start(1);
    device->Start(2);
    EXPECT_TRUE(WaitUntil([] { return CountSimThreads() == 2; }));
    clock.Release();
    device->Stop(1);
    EXPECT_EQ(CountSimThreads(), 1U);
    device->Destroy(2);
    EXPECT_EQ(CountSimThreads(), 0U);
}

TEST_F(SimThreads, CarryAllFramesOfARun)
{
    device->SetRate(1, 25.0);
    Start();
    Passes(3);
    const std::vector<int> threads = log.GetThreads();
    EXPECT_THAT(threads, AllOf(Each(threads.front()), Each(Ne(TestSupport::GetThreadId()))));
}

TEST_F(SimThreads, HaveTheirNameAsFarAsTheSystemKeepsIt)
{
    Start();
    EXPECT_EQ(TestSupport::GetThreadName(log.GetThreads().front()), "Timecode Simula");
}

std::size_t GetStackSize()
{
    pthread_attr_t attributes;
    std::size_t size = 0;
    pthread_getattr_np(pthread_self(), &attributes);
    pthread_attr_getstacksize(&attributes, &size);
    pthread_attr_destroy(&attributes);
    return size;
}

TEST_F(SimThreads, HaveTheSystemsStackAndScheduling)
{
    std::size_t expected = 0;
    std::thread([&] { expected = GetStackSize(); }).join();
    std::size_t stack = 0;
    int policy = -1;
    QObject::connect(device.get(), &Device::frameRead, [&] {
        stack = GetStackSize();
        policy = sched_getscheduler(0);
    });
    Start();
    Stop();
    EXPECT_EQ(stack, expected);
    EXPECT_EQ(policy, sched_getscheduler(0));
}

TEST_F(SimThreads, MeetNoLockWhenTheyReport)
{
    std::atomic<bool> inSlot{false};
    std::atomic<bool> answered{false};
    std::atomic<bool> met{false};
    QObject::connect(device.get(), &Device::frameRead, [&] {
        inSlot = true;
        met = WaitUntil([&] { return answered.load(); });
    });
    device->Start(1);
    ASSERT_TRUE(WaitUntil([&] { return inSlot.load(); }));
    device->SetRate(1, 25.0);
    device->Jump(1, Frame(0, 0, 1, 0, false));
    EXPECT_EQ(device->GetRate(1), 25.0);
    answered = true;
    clock.Release();
    device->Stop(1);
    EXPECT_TRUE(met);
}

TEST_F(SimThreads, MayUseTheInstanceWhileItStops)
{
    std::atomic<bool> inSlot{false};
    double rate = 0.0;
    device->SetRate(1, 25.0);
    QObject::connect(device.get(), &Device::frameRead, [&] {
        inSlot = true;
        WaitUntil([this] { return !device->IsStarted(1); });
        rate = device->GetRate(1); // takes the lock that Stop() must not hold
    });
    device->Start(1);
    ASSERT_TRUE(WaitUntil([&] { return inSlot.load(); }));
    clock.Release();
    device->Stop(1);
    EXPECT_EQ(rate, 25.0);
}

TEST_F(SimThreads, EndBeforeTheRemovalOfTheirInstanceIsReported)
{
    device->SetRate(1, 25.0);
    Start();
    bool gone = false;
    QObject::connect(device.get(), &Device::deviceRemoved, [&] { gone = CountSimThreads() == 0; });
    clock.Release();
    device->Destroy(1);
    EXPECT_TRUE(gone);
}

TEST_F(SimThreads, EndWithTheDevice)
{
    device->Create(2);
    device->Start(1);
    device->Start(2);
    clock.Release();
    device.reset();
    EXPECT_EQ(CountSimThreads(), 0U);
    EXPECT_EQ(log.GetEvents().size(), 2U) << "two arrivals and no removal";
}

TEST_F(SimThreads, OfOtherInstancesAreSilentWhileTheDeviceWaitsForOne)
{
    device->Create(2);
    for (const unsigned n : {1U, 2U}) {
        device->SetRate(n, 25.0);
        device->Start(n);
    }
    ASSERT_TRUE(WaitUntil([this] { return clock.GetSleeps().size() == 2; }));
    const std::size_t frames = log.CountFrames();

    std::atomic<int> ending{0};
    auto ended = std::async(std::launch::async, [&] {
        ending = TestSupport::GetThreadId();
        device.reset();
    });
    // The end waits for the first thread, as the clock stands still.
    ASSERT_TRUE(WaitUntil([&, waiting = 0]() mutable {
        waiting = TestSupport::GetThreadState(ending) == 'S' ? waiting + 1 : 0;
        return waiting == 10;
    }));
    while (ended.wait_for(std::chrono::milliseconds(1)) != std::future_status::ready)
        clock.Advance(40);
    EXPECT_EQ(log.CountFrames(), frames);
}

/// The thread of one instance, in its slot, waits until that of the other has ended.
void EndTogether(unsigned waiting)
{
    std::atomic<bool> inSlot{false};
    std::atomic<bool> hasOtherEnded{false};
    {
        DeviceSim device(nullptr);
        device.Create(1);
        device.Create(2);
        QObject::connect(&device, &Device::frameRead, [&](const Device::Id& id) {
            if (id.number == waiting && !inSlot.exchange(true))
                hasOtherEnded = WaitUntil([] { return CountSimThreads() == 1; });
        });
        device.Start(3 - waiting);
        ASSERT_TRUE(WaitUntil([] { return CountSimThreads() == 1; }));
        device.Start(waiting);
        ASSERT_TRUE(WaitUntil([&] { return inSlot && CountSimThreads() == 2; }));
    }
    EXPECT_TRUE(hasOtherEnded) << waiting;
}

TEST(SimThreadsOfADevice, EndSideBySide)
{
    for (const unsigned waiting : {1U, 2U})
        EndTogether(waiting);
}

void StopFromItsOwnThread()
{
    DeviceSim device(nullptr);
    device.Create(1);
    std::atomic<bool> armed{false};
    QObject::connect(&device, &Device::frameRead, [&] {
        if (armed)
            device.Stop(1);
    });
    device.Start(1);
    armed = true;
    WaitUntil([] { return false; });
}

TEST(SimThreadsDeathTest, AnInstanceThatStopsItselfIsFatal)
{
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_EXIT(StopFromItsOwnThread(), testing::KilledBySignal(SIGABRT), "Trap: '.*' is TRUE");
}

} // namespace
