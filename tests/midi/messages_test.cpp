// SPDX-License-Identifier: MIT
#include <gmock/gmock.h>

#include "midi/recording_device.h"

using namespace TestSupport::MidiMessages;
using testing::ElementsAre;
using testing::IsEmpty;

namespace
{

std::size_t ChannelLength(unsigned status)
{
    return status >= 0xC0 && status <= 0xDF ? 2 : 3;
}

} // namespace

TEST(MidiSending, FirstChannelMessageCarriesItsStatus)
{
    RecordingDevice device;
    device.SendShortMessage(NoteOn);
    EXPECT_THAT(device.GetSent(), ElementsAre(NoteOnWhole));
}

TEST(MidiSending, SendWithStatusIsReportedAsFalseAlthoughItSucceeds)
{
    RecordingDevice device;
    EXPECT_FALSE(device.SendShortMessage(NoteOn));
}

TEST(MidiSending, RepeatedStatusIsLeftOut)
{
    RecordingDevice device;
    device.SendShortMessage(NoteOn);
    device.SendShortMessage(NoteOn);
    EXPECT_THAT(device.GetSent(), ElementsAre(NoteOnWhole, NoteOnData));
}

TEST(MidiSending, SendWithoutStatusIsReportedAsTrue)
{
    RecordingDevice device;
    device.SendShortMessage(NoteOn);
    EXPECT_TRUE(device.SendShortMessage(NoteOn));
}

TEST(MidiSending, StatusIsLeftOutForAsLongAsItRepeats)
{
    RecordingDevice device;
    device.SendShortMessage(NoteOn);
    for (int i = 0; i < 100; ++i) {
        EXPECT_TRUE(device.SendShortMessage(NoteOn));
        EXPECT_EQ(device.GetLast(), NoteOnData);
    }
}

TEST(MidiSending, EveryChannelStatusIsSentWithItsLength)
{
    for (unsigned status = 0x80; status <= 0xEF; ++status) {
        SCOPED_TRACE(status);
        RecordingDevice device;
        EXPECT_FALSE(device.SendShortMessage(Pack(status)));
        EXPECT_THAT(device.GetSent(), ElementsAre(Layout(status, ChannelLength(status))));
    }
}

TEST(MidiSending, EveryChannelStatusRepeatsAsItsDataBytes)
{
    for (unsigned status = 0x80; status <= 0xEF; ++status) {
        SCOPED_TRACE(status);
        RecordingDevice device;
        device.SendShortMessage(Pack(status));
        EXPECT_TRUE(device.SendShortMessage(Pack(status)));
        Bytes data = Layout(status, ChannelLength(status));
        data.erase(data.begin());
        EXPECT_EQ(device.GetLast(), data);
    }
}

TEST(MidiSending, AnotherChannelCarriesItsStatus)
{
    RecordingDevice device;
    device.SendShortMessage(NoteOn);
    EXPECT_FALSE(device.SendShortMessage(NoteOn | 0x01));
    EXPECT_EQ(device.GetLast(), Bytes({0x91, 0x3C, 0x64}));
}

TEST(MidiSending, OnlyTheLastStatusIsRemembered)
{
    RecordingDevice device;
    device.SendShortMessage(NoteOn);
    device.SendShortMessage(NoteOn | 0x01);
    EXPECT_FALSE(device.SendShortMessage(NoteOn));
    EXPECT_EQ(device.GetLast(), NoteOnWhole);
}

TEST(MidiSending, TopByteOfTheWordIsIgnored)
{
    RecordingDevice device;
    device.SendShortMessage(0xFF000000 | NoteOn);
    EXPECT_THAT(device.GetSent(), ElementsAre(NoteOnWhole));
}

TEST(MidiSending, WithoutRunningStatusEveryMessageIsWhole)
{
    RecordingDevice device;
    device.EnableTxRunningStatus(false);
    for (int i = 0; i < 3; ++i)
        EXPECT_FALSE(device.SendShortMessage(NoteOn));
    EXPECT_THAT(device.GetSent(), ElementsAre(NoteOnWhole, NoteOnWhole, NoteOnWhole));
}

TEST(MidiSending, SwitchingRunningStatusKeepsTheRememberedStatus)
{
    RecordingDevice device;
    device.SendShortMessage(NoteOn);
    device.EnableTxRunningStatus(false);
    device.EnableTxRunningStatus(true);
    EXPECT_TRUE(device.SendShortMessage(NoteOn));
    EXPECT_EQ(device.GetLast(), NoteOnData);
}

TEST(MidiSending, StatusSentWithoutRunningStatusIsRememberedToo)
{
    RecordingDevice device;
    device.EnableTxRunningStatus(false);
    device.SendShortMessage(NoteOn);
    device.EnableTxRunningStatus(true);
    EXPECT_TRUE(device.SendShortMessage(NoteOn));
}

TEST(MidiSending, StatusIsLeftOutAfterABufferUnlessRunningStatusIsOffForOnce)
{
    constexpr unsigned char SystemExclusive[] = {0xF0, 0x7D, 0xF7};
    RecordingDevice device;
    device.SendShortMessage(NoteOn);
    device.SendBuffer(SystemExclusive, sizeof SystemExclusive);
    EXPECT_TRUE(device.SendShortMessage(NoteOn));
    EXPECT_EQ(device.GetLast(), NoteOnData);
    device.EnableTxRunningStatus(false);
    device.SendShortMessage(NoteOn);
    device.EnableTxRunningStatus(true);
    EXPECT_EQ(device.GetLast(), NoteOnWhole);
    EXPECT_TRUE(device.SendShortMessage(NoteOn));
    EXPECT_EQ(device.GetLast(), NoteOnData);
}

TEST(MidiSending, SwitchingRunningStatusSendsNothing)
{
    RecordingDevice device;
    device.EnableTxRunningStatus(false);
    device.EnableTxRunningStatus(true);
    EXPECT_THAT(device.GetSent(), IsEmpty());
}

TEST(MidiSending, DataByteInPlaceOfTheStatusSendsNoBytes)
{
    for (unsigned status = 0x00; status <= 0x7F; ++status) {
        SCOPED_TRACE(status);
        RecordingDevice device;
        EXPECT_FALSE(device.SendShortMessage(Pack(status)));
        EXPECT_FALSE(device.SendShortMessage(Pack(status)));
        EXPECT_THAT(device.GetSent(), ElementsAre(Bytes{}, Bytes{}));
    }
}

TEST(MidiSending, DataByteInPlaceOfTheStatusEndsRunningStatus)
{
    RecordingDevice device;
    device.SendShortMessage(NoteOn);
    device.SendShortMessage(Pack(0x40));
    EXPECT_FALSE(device.SendShortMessage(NoteOn));
    EXPECT_EQ(device.GetLast(), NoteOnWhole);
}

TEST(MidiSending, RunningStatusIsTheDevicesOwn)
{
    RecordingDevice first;
    RecordingDevice second;
    first.SendShortMessage(NoteOn);
    EXPECT_FALSE(second.SendShortMessage(NoteOn));
    EXPECT_EQ(second.GetLast(), NoteOnWhole);
}
