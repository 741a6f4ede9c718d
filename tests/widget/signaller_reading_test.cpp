// SPDX-License-Identifier: MIT
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "desk/widget_bus.h"
#include "widget/signal_log.h"
#include "widget/um_wing.h"
#include "widget/widget_facts.h"
#include "widget/widget_signaller.h"

using Hardware::UmWidget;
using Hardware::UmWing;
using Hardware::WidgetMapData;
using Hardware::WidgetSignaller;
using testing::ElementsAre;
using testing::IsEmpty;
using TestSupport::GetMapData;
using TestSupport::SignalLog;

namespace
{

constexpr const GUID* Playback = &GUID_DEVINTERFACE_QRTUMPLAYBACKWING;

class SignallerReading : public testing::Test
{
protected:
    SignallerReading() { signaller.SetAutoReadRegister(true); }

    Desk::WidgetBus bus;
    Desk::VirtualWidget& widget = bus.Add({"PlaybackWing", 1, L"a"});
    WidgetSignaller signaller{&UmWing::WingReader};
    SignalLog log{signaller};
};

TEST_F(SignallerReading, SignalsWhatAWidgetReports)
{
    signaller.RegisterWidgetClass(Playback);
    widget.Press(3);
    widget.MoveFader(2, 200);
    EXPECT_THAT(log.Get(), ElementsAre("added a", "read a: button 3 1", "read a: fader 2 200"));
}

TEST_F(SignallerReading, ReadsWidgetsThatAppearLater)
{
    signaller.RegisterWidgetClass(Playback);
    bus.Add({"PlaybackWing", 2, L"b"}).Press(1);
    EXPECT_THAT(log.Get(), ElementsAre("added a", "added b", "read b: button 1 1"));
}

TEST_F(SignallerReading, SignalsOnTheDriversThread)
{
    bool isDriver = false;
    QObject::connect(&signaller, &WidgetSignaller::widgetRead,
                     [&] { isDriver = TestSupport::IsDriverThread(); });
    signaller.RegisterWidgetClass(Playback);
    widget.Press(3);
    EXPECT_TRUE(isDriver);
}

TEST_F(SignallerReading, OpensTheWidget)
{
    EXPECT_EQ(widget.CountOpen(), 0);
    signaller.RegisterWidgetClass(Playback);
    EXPECT_EQ(widget.CountOpen(), 1);
}

TEST_F(SignallerReading, IsOpenInTheSlotOfTheAddition)
{
    int open = 0;
    QObject::connect(&signaller, &WidgetSignaller::widgetAdded, [&] { open = widget.CountOpen(); });
    signaller.RegisterWidgetClass(Playback);
    EXPECT_EQ(open, 1);
}

TEST_F(SignallerReading, IsOffAtFirst)
{
    WidgetSignaller another(&UmWing::WingReader);
    const SignalLog itsLog(another);
    another.RegisterWidgetClass(Playback);
    widget.Press(3);
    EXPECT_THAT(itsLog.Get(), ElementsAre("added a"));
    EXPECT_EQ(widget.CountOpen(), 0);
}

TEST_F(SignallerReading, IsOffForASignallerWhileAnotherOneReads)
{
    WidgetSignaller another(&UmWing::WingReader);
    const SignalLog itsLog(another);
    another.RegisterWidgetClass(Playback);
    signaller.RegisterWidgetClass(Playback);
    widget.Press(3);
    EXPECT_THAT(itsLog.Get(), ElementsAre("added a"));
}

TEST_F(SignallerReading, SignalsNothingWithoutAReader)
{
    WidgetSignaller another(nullptr);
    another.SetAutoReadRegister(true);
    const SignalLog itsLog(another);
    another.RegisterWidgetClass(Playback);
    widget.Press(3);
    EXPECT_THAT(itsLog.Get(), ElementsAre("added a"));
}

TEST_F(SignallerReading, SignalsAReportThatIsForeignToTheReaderWithoutEvent)
{
    signaller.RegisterWidgetClass(Playback);
    widget.RollAxis(0, 5);
    EXPECT_THAT(log.Get(), ElementsAre("added a", "read a: nothing"));
}

TEST_F(SignallerReading, ReachesEverySignaller)
{
    WidgetSignaller another(&UmWing::WingReader);
    another.SetAutoReadRegister(true);
    const SignalLog itsLog(another);
    another.RegisterWidgetClass(Playback);
    signaller.RegisterWidgetClass(Playback);
    widget.Press(3);
    EXPECT_THAT(log.Get(), ElementsAre("added a", "read a: button 3 1"));
    EXPECT_THAT(itsLog.Get(), ElementsAre("added a", "read a: button 3 1"));
    EXPECT_EQ(widget.CountOpen(), 1);
}

TEST_F(SignallerReading, EndsWithTheReader)
{
    signaller.RegisterWidgetClass(Playback);
    EXPECT_TRUE(GetMapData(widget).StopReader());
    widget.Press(3);
    EXPECT_THAT(log.Get(), ElementsAre("added a"));
}

TEST_F(SignallerReading, EndsWhenTheWidgetIsClosed)
{
    signaller.RegisterWidgetClass(Playback);
    EXPECT_TRUE(GetMapData(widget).Close());
    widget.Press(3);
    EXPECT_THAT(log.Get(), ElementsAre("added a"));
}

TEST_F(SignallerReading, EndsWithTheRegistration)
{
    signaller.RegisterWidgetClass(Playback);
    signaller.UnregisterWidgetClass(Playback);
    widget.Press(3);
    EXPECT_THAT(log.Get(), ElementsAre("added a"));
}

TEST_F(SignallerReading, DoesNotBeginWhenTheWidgetIsOpened)
{
    signaller.RegisterWidgetClass(Playback);
    WidgetMapData mapData = GetMapData(widget);
    mapData.StopReader();
    mapData.Close();
    EXPECT_TRUE(mapData.Open());
    widget.Press(3);
    EXPECT_THAT(log.Get(), ElementsAre("added a"));
}

TEST_F(SignallerReading, BeginsAgainWhenTheClassIsRegisteredAgain)
{
    signaller.RegisterWidgetClass(Playback);
    WidgetMapData mapData = GetMapData(widget);
    EXPECT_TRUE(mapData.StopReader());
    mapData.Close();
    EXPECT_TRUE(mapData.Open());
    signaller.UnregisterWidgetClass(Playback);
    signaller.RegisterWidgetClass(Playback);
    widget.Press(3);
    EXPECT_THAT(log.Get(), ElementsAre("added a", "added a", "read a: button 3 1"));
}

TEST_F(SignallerReading, MaySignalFromASlotThatWorksTheWidget)
{
    QObject::connect(&signaller, &WidgetSignaller::widgetRead, [&] {
        if (log.Get().size() < 4)
            widget.Release(3);
    });
    signaller.RegisterWidgetClass(Playback);
    widget.Press(3);
    bus.Flush();
    bus.Flush();
    EXPECT_THAT(log.Get(), ElementsAre("added a", "read a: button 3 1", "read a: button 3 0",
                                       "read a: button 3 0"));
}

struct ReaderCalls {
    int count = 0;
    void* context = nullptr;
    std::wstring path;
    bool isDriver = false;
} g_calls;

std::unique_ptr<UmWidget::Event> RecordCall(const WidgetMapData& mapData, void* context)
{
    g_calls = {g_calls.count + 1, context, mapData.GetDevicePath(), TestSupport::IsDriverThread()};
    return nullptr;
}

TEST(SignallerReader, IsCalledOnceForAReportWithTheParentAsContext)
{
    Desk::WidgetBus bus;
    Desk::VirtualWidget& widget = bus.Add({"PlaybackWing", 1, L"a"});
    QObject parent;
    auto* const signaller = new WidgetSignaller(&RecordCall, &parent);
    signaller->SetAutoReadRegister(true);
    signaller->RegisterWidgetClass(Playback);
    widget.Press(3);
    EXPECT_EQ(signaller->parent(), &parent);
    EXPECT_EQ(g_calls.count, 1);
    EXPECT_EQ(g_calls.context, static_cast<void*>(&parent));
    EXPECT_EQ(g_calls.path, L"a");
    EXPECT_TRUE(g_calls.isDriver);
}

TEST(SignallerReader, HasNoContextWithoutAParent)
{
    Desk::WidgetBus bus;
    Desk::VirtualWidget& widget = bus.Add({"PlaybackWing", 1, L"a"});
    WidgetSignaller signaller(&RecordCall);
    signaller.SetAutoReadRegister(true);
    signaller.RegisterWidgetClass(Playback);
    g_calls.context = &bus;
    widget.Press(3);
    EXPECT_EQ(g_calls.context, nullptr);
}

} // namespace
