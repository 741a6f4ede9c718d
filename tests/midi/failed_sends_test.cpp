// SPDX-License-Identifier: MIT
#include <gmock/gmock.h>

#include "midi/recording_device.h"

using namespace TestSupport::MidiMessages;

TEST(MidiSendingFails, FailedSystemMessageEndsRunningStatusToo)
{
    RecordingDevice device;
    device.SendShortMessage(NoteOn);
    device.SetWorking(false);
    EXPECT_FALSE(device.SendShortMessage(TimingClock));
    device.SetWorking(true);
    EXPECT_FALSE(device.SendShortMessage(NoteOn));
    EXPECT_EQ(device.GetLast(), NoteOnWhole);
}

TEST(MidiSendingFails, FailedSendIsReportedAsFalse)
{
    RecordingDevice device;
    device.SetWorking(false);
    EXPECT_FALSE(device.SendShortMessage(NoteOn));
}

TEST(MidiSendingFails, FailedSendForgetsTheStatus)
{
    RecordingDevice device;
    device.SetWorking(false);
    device.SendShortMessage(NoteOn);
    device.SetWorking(true);
    EXPECT_FALSE(device.SendShortMessage(NoteOn));
    EXPECT_EQ(device.GetLast(), NoteOnWhole);
}

TEST(MidiSendingFails, FailedSendOfAnotherStatusForgetsTheFirst)
{
    RecordingDevice device;
    device.SendShortMessage(NoteOn);
    device.SetWorking(false);
    device.SendShortMessage(NoteOn | 0x01);
    device.SetWorking(true);
    EXPECT_FALSE(device.SendShortMessage(NoteOn));
    EXPECT_EQ(device.GetLast(), NoteOnWhole);
}

TEST(MidiSendingFails, FailedSendWithoutStatusIsReportedAsFalse)
{
    RecordingDevice device;
    device.SendShortMessage(NoteOn);
    device.SetWorking(false);
    EXPECT_FALSE(device.SendShortMessage(NoteOn));
    EXPECT_EQ(device.GetLast(), NoteOnData);
}

TEST(MidiSendingFails, FailedSendWithoutStatusForgetsTheStatus)
{
    RecordingDevice device;
    device.SendShortMessage(NoteOn);
    device.SetWorking(false);
    device.SendShortMessage(NoteOn);
    device.SetWorking(true);
    EXPECT_FALSE(device.SendShortMessage(NoteOn));
    EXPECT_EQ(device.GetLast(), NoteOnWhole);
}
