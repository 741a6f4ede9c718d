// SPDX-License-Identifier: MIT
// Starting, stopping, enabling and disabling, of one instance and of all.
#include <gmock/gmock.h>

#include "timecode/proc_self.h"
#include "timecode/sim_bench.h"

namespace
{

using namespace Hardware;
using Hardware::Timecode::Device;
using Hardware::Timecode::DeviceSim;
using Hardware::Timecode::Frame;
using testing::ElementsAre;
using testing::IsEmpty;

TEST(SimSwitches, OneInstanceIsEnabledAndDisabledAlone)
{
    DeviceSim device(nullptr);
    device.Create(1);
    device.Create(2);
    EXPECT_TRUE(device.Disable(1));
    EXPECT_FALSE(device.IsEnabled(1));
    EXPECT_TRUE(device.IsEnabled(2));
    EXPECT_TRUE(device.Enable(1));
    EXPECT_TRUE(device.IsEnabled(1));
}

TEST(SimSwitches, TheDeviceEnablesAndDisablesEveryInstance)
{
    DeviceSim sim(nullptr);
    sim.Create(1);
    sim.Create(2);
    Device& device = sim;
    EXPECT_TRUE(device.Disable());
    EXPECT_FALSE(sim.IsEnabled(1));
    EXPECT_FALSE(sim.IsEnabled(2));
    EXPECT_TRUE(device.Enable());
    EXPECT_TRUE(sim.IsEnabled(1));
    EXPECT_TRUE(sim.IsEnabled(2));
}

TEST(SimSwitches, TheDeviceAnswersYesWithoutAnyInstance)
{
    DeviceSim device(nullptr);
    EXPECT_TRUE(device.Enable());
    EXPECT_TRUE(device.Disable());
    EXPECT_FALSE(device.IsEnabled());
}

TEST(SimSwitches, TheDeviceIsEnabledWhileAnyInstanceIs)
{
    DeviceSim device(nullptr);
    device.Create(1);
    device.Create(2);
    EXPECT_TRUE(device.IsEnabled());
    device.Disable(1);
    EXPECT_TRUE(device.IsEnabled());
    device.Disable(2);
    EXPECT_FALSE(device.IsEnabled());
}

TEST(SimSwitches, AnInstanceMadeLaterIsEnabledAllTheSame)
{
    DeviceSim device(nullptr);
    device.Disable();
    device.Create(1);
    EXPECT_TRUE(device.IsEnabled(1));
}

using SimRunning = TestSupport::SimBench;

TEST_F(SimRunning, StartAndStopAnswerYesEvenWhenThereIsNothingToDo)
{
    EXPECT_TRUE(device->Stop(1));
    Start();
    EXPECT_TRUE(device->Start(1));
    Stop();
    EXPECT_TRUE(device->Stop(1));
}

TEST_F(SimRunning, EveryOperationOnAKnownInstanceAnswersYes)
{
    EXPECT_TRUE(device->SetRate(1, 25.0));
    EXPECT_TRUE(device->SetFormat(1, TimecodeFormat_Ebu25));
    EXPECT_TRUE(device->Jump(1, Frame(1, 2, 3, 4, false)));
    EXPECT_TRUE(device->Enable(1));
    EXPECT_TRUE(device->Disable(1));
}

TEST_F(SimRunning, IsStartedBetweenStartAndStop)
{
    EXPECT_FALSE(device->IsStarted(1));
    Start();
    EXPECT_TRUE(device->IsStarted(1));
    Stop();
    EXPECT_FALSE(device->IsStarted(1));
}

TEST_F(SimRunning, TheDeviceIsActiveWhileAnyInstanceIsStarted)
{
    device->Create(2);
    EXPECT_FALSE(device->IsActive());
    Start();
    EXPECT_TRUE(device->IsActive());
    Stop();
    EXPECT_FALSE(device->IsActive());
}

TEST_F(SimRunning, ADisabledInstanceIsActiveAllTheSame)
{
    device->Disable(1);
    Start();
    EXPECT_TRUE(device->IsActive());
    EXPECT_FALSE(device->IsEnabled());
}

TEST_F(SimRunning, StartingAgainChangesNothing)
{
    device->SetFormat(1, TimecodeFormat_Ebu25);
    Start();
    EXPECT_TRUE(device->Start(1));
    EXPECT_EQ(TestSupport::CountSimThreads(), 1U);
    EXPECT_THAT(FramesOf([this] { Passes(2); }), ElementsAre("00:00:00:01", "00:00:00:02"));
}

TEST_F(SimRunning, ARestartGoesOnWhereTheStopWas)
{
    device->SetFormat(1, TimecodeFormat_Ebu25);
    device->Jump(1, Frame(0, 0, 1, 0, false));
    Start();
    Pass();
    Stop();
    EXPECT_THAT(FramesOf([this] { Start(); }), ElementsAre("00:00:01:02"));
}

TEST_F(SimRunning, NoFrameComesAfterStop)
{
    device->SetFormat(1, TimecodeFormat_Ebu25);
    Start();
    Stop();
    const std::size_t frames = log.CountFrames();
    clock.Release();
    clock.Advance(1000);
    EXPECT_EQ(log.CountFrames(), frames);
}

TEST_F(SimRunning, NoFrameComesWhileStopped)
{
    device->SetFormat(1, TimecodeFormat_Ebu25);
    clock.Release();
    EXPECT_THAT(log.GetFrames(), IsEmpty());
}

TEST_F(SimRunning, ADisabledInstanceIsSilentButMovesOn)
{
    device->SetFormat(1, TimecodeFormat_Ebu25);
    device->Disable(1);
    EXPECT_THAT(FramesOf([this] {
                    Start();
                    Passes(4);
                }),
                IsEmpty());
    device->Enable(1);
    EXPECT_THAT(FramesOf([this] { Pass(); }), ElementsAre("00:00:00:05"));
    device->Disable(1);
    EXPECT_THAT(FramesOf([this] { Passes(2); }), IsEmpty());
    device->Enable(1);
    EXPECT_THAT(FramesOf([this] { Pass(); }), ElementsAre("00:00:00:08"));
}

TEST_F(SimRunning, ADisabledInstanceKeepsItsPace)
{
    device->SetFormat(1, TimecodeFormat_Ebu25);
    device->Disable(1);
    Start();
    Passes(3);
    EXPECT_THAT(clock.GetSleeps(), ElementsAre(40, 40, 40, 40));
}

} // namespace
