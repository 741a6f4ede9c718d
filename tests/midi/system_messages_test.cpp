// SPDX-License-Identifier: MIT
#include <gmock/gmock.h>

#include "midi/recording_device.h"

using namespace TestSupport::MidiMessages;
using testing::ElementsAre;
using testing::IsEmpty;

TEST(MidiSendingSystem, EverySystemStatusIsSentWithItsLength)
{
    for (unsigned status = 0xF1; status <= 0xFF; ++status) {
        SCOPED_TRACE(status);
        const std::size_t length = status == 0xF1 ? 2 : status == 0xF2 ? 3 : 1;
        RecordingDevice device;
        device.SendShortMessage(Pack(status));
        EXPECT_THAT(device.GetSent(), ElementsAre(Layout(status, length)));
    }
}

TEST(MidiSendingSystem, SongSelectGoesOutWithoutItsDataByte)
{
    RecordingDevice device;
    device.SendShortMessage(0x05F3);
    EXPECT_THAT(device.GetSent(), ElementsAre(Bytes{0xF3}));
}

TEST(MidiSendingSystem, SystemMessageIsReportedAsFalseEachTime)
{
    for (unsigned status = 0xF0; status <= 0xFF; ++status) {
        SCOPED_TRACE(status);
        RecordingDevice device;
        EXPECT_FALSE(device.SendShortMessage(Pack(status)));
        EXPECT_FALSE(device.SendShortMessage(Pack(status)));
    }
}

TEST(MidiSendingSystem, RepeatedSystemMessageIsSentWhole)
{
    for (unsigned status = 0xF1; status <= 0xFF; ++status) {
        SCOPED_TRACE(status);
        RecordingDevice device;
        device.SendShortMessage(Pack(status));
        device.SendShortMessage(Pack(status));
        ASSERT_EQ(device.GetSent().size(), 2U);
        EXPECT_EQ(device.GetSent()[0], device.GetSent()[1]);
    }
}

TEST(MidiSendingSystem, EverySystemMessageEndsRunningStatus)
{
    for (unsigned status = 0xF0; status <= 0xFF; ++status) {
        SCOPED_TRACE(status);
        RecordingDevice device;
        device.SendShortMessage(NoteOn);
        device.SendShortMessage(Pack(status));
        EXPECT_FALSE(device.SendShortMessage(NoteOn));
        EXPECT_EQ(device.GetLast(), NoteOnWhole);
    }
}

TEST(MidiSendingSystem, SystemExclusiveStatusSendsNothing)
{
    RecordingDevice device;
    EXPECT_FALSE(device.SendShortMessage(Pack(0xF0)));
    EXPECT_THAT(device.GetSent(), IsEmpty());
}
