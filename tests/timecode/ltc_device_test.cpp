// SPDX-License-Identifier: MIT
#include <gmock/gmock.h>

#include <QMetaMethod>
#include <optional>

#include "desk/virtual_widget.h"
#include "hardware/timecode/device_ltc.h"
#include "os/log.h"
#include "standalone/widget_transport.h"
#include "support/log_capture.h"
#include "timecode/frame_log.h"
#include "widget/ltc_widget.h"
#include "widget/um_wing.h"

using Hardware::Timecode::DeviceLtc;
using testing::Each;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Ne;
using TestSupport::FrameLog;

namespace
{

/// A device that is not enabled, and a bus without boards.
class TimecodeLtc : public testing::Test
{
protected:
    Desk::VirtualWidget& AddBoard(std::uint16_t serialNumber = 1, const std::wstring& path = {})
    {
        return m_bus.Add({"LtcWidget", serialNumber, path});
    }

    Desk::WidgetBus m_bus;
    DeviceLtc m_device{nullptr};
    FrameLog m_frames{m_device};
};

} // namespace

TEST_F(TimecodeLtc, IsOfTypeLtcAndDisabledAtFirst)
{
    EXPECT_EQ(m_device.GetType(), Hardware::TimecodeType_Ltc);
    EXPECT_EQ(static_cast<int>(m_device.GetType()), 1);
    EXPECT_FALSE(m_device.IsEnabled());
}

TEST_F(TimecodeLtc, HasThreePublicSlotsInTheirOrder)
{
    const QMetaObject& meta = DeviceLtc::staticMetaObject;
    EXPECT_STREQ(meta.className(), "Hardware::Timecode::DeviceLtc");
    ASSERT_EQ(meta.methodCount() - meta.methodOffset(), 3);
    const char* const signatures[] = {"processAdd(Hardware::WidgetMapData)",
                                      "processRemove(Hardware::WidgetMapData)",
                                      "processTimecode(Hardware::WidgetSignaller::Event)"};
    for (int slot = 0; slot < 3; ++slot) {
        const QMetaMethod method = meta.method(meta.methodOffset() + slot);
        EXPECT_EQ(method.methodSignature(), signatures[slot]);
        EXPECT_EQ(method.methodType(), QMetaMethod::Slot);
        EXPECT_EQ(method.access(), QMetaMethod::Public);
    }
}

TEST_F(TimecodeLtc, ReportsBoardsThatAreAttachedBeforeEnableReturns)
{
    AddBoard(1, L"a");
    AddBoard(2, L"b");
    EXPECT_TRUE(m_device.Enable());
    EXPECT_TRUE(m_device.IsEnabled());
    EXPECT_THAT(m_frames.GetEvents(), ElementsAre("added 0", "added 1"));
    EXPECT_EQ(m_frames.GetIds().front().device, &m_device);
}

TEST_F(TimecodeLtc, ReportsBoardsThatComeAndGo)
{
    m_device.Enable();
    Desk::VirtualWidget& first = AddBoard(1);
    AddBoard(2);
    first.Unplug();
    AddBoard(3);
    EXPECT_THAT(m_frames.GetEvents(), ElementsAre("added 0", "added 1", "removed 0", "added 0"));
}

TEST_F(TimecodeLtc, EveryBoardIsASourceOfItsOwn)
{
    Desk::VirtualWidget& first = AddBoard(1, L"a");
    Desk::VirtualWidget& second = AddBoard(2, L"b");
    m_device.Enable();
    second.SendTimecode({1, 2, 3, 4, 0});
    first.SendTimecode({5, 6, 7, 8, 0});
    EXPECT_THAT(m_frames.GetFrames(), ElementsAre("01:02:03:04", "05:06:07:08"));
    const auto ids = m_frames.GetIds();
    ASSERT_EQ(ids.size(), 4U);
    EXPECT_EQ(ids[2].number, 1U);
    EXPECT_EQ(ids[3].number, 0U);
    EXPECT_EQ(m_device.GetWidget(1).GetDevicePath(), L"b");
    EXPECT_EQ(m_device.GetWidget(2).GetDevicePath(), L"");
}

TEST_F(TimecodeLtc, ADropFrameIsOneOfAnyFlagButZero)
{
    Desk::VirtualWidget& board = AddBoard();
    m_device.Enable();
    board.SendTimecode({10, 20, 30, 12, 1});
    board.SendTimecode({10, 20, 30, 12, 0});
    board.SendTimecode({10, 20, 30, 12, 255});
    EXPECT_THAT(m_frames.GetFrames(), ElementsAre("10;20;30;12", "10:20:30:12", "10;20;30;12"));
}

TEST_F(TimecodeLtc, BytesAreWidenedWithoutSignAndUnchecked)
{
    Desk::VirtualWidget& board = AddBoard();
    std::optional<Hardware::Timecode::Frame> frame;
    QObject::connect(
        &m_device, &DeviceLtc::frameRead, &m_device,
        [&](const auto&, const Hardware::Timecode::Frame& read) { frame = read; },
        Qt::DirectConnection);
    m_device.Enable();
    board.SendTimecode({255, 254, 253, 252, 0});
    ASSERT_TRUE(frame.has_value());
    EXPECT_EQ(frame->hours, 255);
    EXPECT_EQ(frame->minutes, 254);
    EXPECT_EQ(frame->seconds, 253);
    EXPECT_EQ(frame->frames, 252);
}

TEST_F(TimecodeLtc, EveryEventIsOneSignalAlsoARepeatedOne)
{
    Desk::VirtualWidget& board = AddBoard();
    m_device.Enable();
    for (int round = 0; round < 3; ++round)
        board.SendTimecode({1, 1, 1, 1, 0});
    EXPECT_THAT(m_frames.GetFrames(), ElementsAre("01:01:01:01", "01:01:01:01", "01:01:01:01"));
}

TEST_F(TimecodeLtc, SignalsComeOnTheDriversThread)
{
    Desk::VirtualWidget& board = AddBoard();
    m_device.Enable();
    board.SendTimecode({1, 1, 1, 1, 0});
    EXPECT_THAT(m_frames.GetThreads(), Each(Ne(TestSupport::GetThreadId())));
}

TEST_F(TimecodeLtc, EventsOfAnotherKindAreIgnored)
{
    Desk::VirtualWidget& board = AddBoard();
    m_device.Enable();
    board.Send(Standalone::Report::Button{1, 1}); // becomes a null event
    const Hardware::UmWing::ButtonEvent foreign(0, 1);
    m_device.processTimecode({m_device.GetWidget(0), &foreign});
    m_device.processTimecode({m_device.GetWidget(0), nullptr});
    m_device.processTimecode({});
    EXPECT_THAT(m_frames.GetFrames(), IsEmpty());
}

TEST_F(TimecodeLtc, IsActiveWhileABoardIsAttachedAlsoWhenDisabled)
{
    EXPECT_FALSE(m_device.IsActive());
    m_device.Enable();
    EXPECT_FALSE(m_device.IsActive());
    Desk::VirtualWidget& board = AddBoard();
    EXPECT_TRUE(m_device.IsActive());
    m_device.Disable();
    EXPECT_TRUE(m_device.IsActive());
    board.Unplug();
    EXPECT_FALSE(m_device.IsActive());
}

TEST_F(TimecodeLtc, IsActiveWhenABoardIsPluggedWhileDisabled)
{
    m_device.Enable();
    m_device.Disable();
    Desk::VirtualWidget& board = AddBoard(1, L"a");
    EXPECT_TRUE(m_device.IsActive());
    EXPECT_EQ(m_device.GetWidget(0).GetDevicePath(), L"a");
    EXPECT_THAT(m_frames.GetEvents(), IsEmpty());
    EXPECT_EQ(board.CountOpen(), 0);
    board.Unplug();
    EXPECT_FALSE(m_device.IsActive());
    board.Plug();
    m_device.Enable();
    EXPECT_THAT(m_frames.GetEvents(), ElementsAre("added 0"));
    board.Unplug();
    EXPECT_THAT(m_frames.GetEvents(), ElementsAre("added 0", "removed 0"));
    EXPECT_FALSE(m_device.IsActive());
}

TEST_F(TimecodeLtc, DoesNotCountBoardsBeforeItWasEnabledOnce)
{
    AddBoard();
    EXPECT_FALSE(m_device.IsActive());
}

TEST_F(TimecodeLtc, DisabledItReportsNothing)
{
    Desk::VirtualWidget& board = AddBoard();
    m_device.Enable();
    EXPECT_TRUE(m_device.Disable());
    EXPECT_FALSE(m_device.IsEnabled());
    board.SendTimecode({1, 1, 1, 1, 0});
    board.Unplug();
    board.Plug();
    EXPECT_THAT(m_frames.GetFrames(), IsEmpty());
    EXPECT_THAT(m_frames.GetEvents(), ElementsAre("added 0"));
}

TEST_F(TimecodeLtc, DisablingLeavesEveryBoardOpenWithoutAReader)
{
    Desk::VirtualWidget& first = AddBoard(1);
    Desk::VirtualWidget& second = AddBoard(2);
    m_device.Enable();
    m_device.Disable();
    for (Desk::VirtualWidget* const board : {&first, &second}) {
        EXPECT_EQ(board->CountOpen(), 1);
        EXPECT_EQ(board->CountOpened(), 2);
    }
    EXPECT_FALSE(m_device.GetWidget(0).StopReader());
    EXPECT_FALSE(m_device.GetWidget(1).StopReader());
}

TEST_F(TimecodeLtc, EnabledAgainItReadsAgain)
{
    Desk::VirtualWidget& board = AddBoard();
    for (int round = 0; round < 3; ++round) {
        EXPECT_TRUE(m_device.Enable());
        board.SendTimecode({1, 1, 1, 1, 0});
        EXPECT_TRUE(m_device.Disable());
    }
    EXPECT_EQ(m_frames.CountFrames(), 3U);
    EXPECT_THAT(m_frames.GetEvents(), ElementsAre("added 0", "added 0", "added 0"));
}

TEST_F(TimecodeLtc, EnablingTwiceConnectsAndLogsOnce)
{
    Desk::VirtualWidget& board = AddBoard();
    const TestSupport::LogCapture log("Hardware/Timecode/Ltc", Os::Log::AllLevels);
    EXPECT_TRUE(m_device.Enable());
    EXPECT_TRUE(m_device.Enable());
    board.SendTimecode({1, 1, 1, 1, 0});
    EXPECT_EQ(m_frames.CountFrames(), 1U);
    EXPECT_THAT(log.GetTexts(), ElementsAre("Enabling LTC timecode device"));
    EXPECT_EQ(log.GetLines().front().level, Os::Log::Trace);
    EXPECT_EQ(log.GetLines().front().file, "timecode/timecode_ltc.cpp");
}

TEST_F(TimecodeLtc, DisablingADisabledDeviceSucceedsWithoutALine)
{
    const TestSupport::LogCapture log("Hardware/Timecode/Ltc", Os::Log::AllLevels);
    EXPECT_TRUE(m_device.Disable());
    EXPECT_THAT(log.GetTexts(), IsEmpty());
}

TEST_F(TimecodeLtc, DisablingIsLoggedInWordsOfItsOwn)
{
    m_device.Enable();
    const TestSupport::LogCapture log("Hardware/Timecode/Ltc", Os::Log::AllLevels);
    m_device.Disable();
    EXPECT_THAT(log.GetTexts(), ElementsAre("Disabling LTC timecode input"));
    EXPECT_EQ(log.GetLines().front().level, Os::Log::Trace);
}

TEST_F(TimecodeLtc, NothingIsLoggedByDefault)
{
    const TestSupport::LogCapture log;
    m_device.Enable();
    m_device.Disable();
    EXPECT_THAT(log.GetTexts(), IsEmpty());
    ASSERT_NE(Os::Log::Context::Find("Hardware/Timecode/Ltc"), nullptr);
    EXPECT_EQ(Os::Log::Context::Find("Hardware/Timecode/Ltc")->GetMask(), 30U);
}

TEST_F(TimecodeLtc, DestructionDisables)
{
    Desk::VirtualWidget& board = AddBoard();
    const TestSupport::LogCapture log("Hardware/Timecode/Ltc", Os::Log::AllLevels);
    {
        DeviceLtc device(nullptr);
        device.Enable();
        log.GetTexts();
    }
    EXPECT_EQ(log.Count("Disabling LTC timecode input"), 1U);
    board.SendTimecode({1, 1, 1, 1, 0});
    EXPECT_EQ(board.CountOpen(), 1);
}

TEST_F(TimecodeLtc, SeveralDevicesHearTheSameBoards)
{
    Desk::VirtualWidget& board = AddBoard();
    DeviceLtc other(nullptr);
    const FrameLog otherFrames(other);
    m_device.Enable();
    other.Enable();
    board.SendTimecode({1, 2, 3, 4, 0});
    EXPECT_THAT(m_frames.GetFrames(), ElementsAre("01:02:03:04"));
    EXPECT_THAT(otherFrames.GetFrames(), ElementsAre("01:02:03:04"));
}
