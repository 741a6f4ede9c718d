// SPDX-License-Identifier: MIT
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "desk/widget_bus.h"
#include "platform/contender.h"
#include "widget/signal_log.h"
#include "widget/um_wing.h"
#include "widget/widget_facts.h"
#include "widget/widget_signaller.h"

using Hardware::WidgetSignaller;
using testing::ElementsAre;
using testing::IsEmpty;
using TestSupport::Contender;
using TestSupport::DriverHold;
using TestSupport::SignalLog;

namespace
{

constexpr const GUID* Playback = &GUID_DEVINTERFACE_QRTUMPLAYBACKWING;
constexpr const GUID* Programmer = &GUID_DEVINTERFACE_QRTUMPROGRAMMERWING;

TEST(SignallerRegistration, ReportsAttachedWidgetsInTheOrderOfTheirPaths)
{
    Desk::WidgetBus bus;
    bus.Add({"PlaybackWing", 2, L"b"});
    bus.Add({"PlaybackWing", 1, L"a"});
    bus.Add({"ProgrammerWing", 3, L"c"});
    WidgetSignaller signaller;
    const SignalLog log(signaller);
    EXPECT_TRUE(signaller.RegisterWidgetClass(Playback));
    EXPECT_THAT(log.Get(), ElementsAre("added a", "added b"));
}

TEST(SignallerRegistration, ReportsOnTheDriversThread)
{
    Desk::WidgetBus bus;
    bus.Add({"PlaybackWing", 1, L"a"});
    WidgetSignaller signaller;
    bool isDriver = false;
    QObject::connect(&signaller, &WidgetSignaller::widgetAdded,
                     [&] { isDriver = TestSupport::IsDriverThread(); });
    signaller.RegisterWidgetClass(Playback);
    EXPECT_TRUE(isDriver);
    EXPECT_FALSE(TestSupport::IsDriverThread());
}

TEST(SignallerRegistration, ReturnsOnlyAfterTheSlotsRan)
{
    Desk::WidgetBus bus;
    bus.Add({"PlaybackWing", 1, L"a"});
    WidgetSignaller signaller;
    Os::Event gate;
    QObject::connect(&signaller, &WidgetSignaller::widgetAdded, [&] { gate.Wait(); });
    const Contender registrar([&] { EXPECT_TRUE(signaller.RegisterWidgetClass(Playback)); });
    EXPECT_TRUE(registrar.ComesToWait());
    gate.Set();
}

TEST(SignallerRegistration, ReportsAtOnceInsideASlot)
{
    Desk::WidgetBus bus;
    bus.Add({"ProgrammerWing", 2, L"b"});
    WidgetSignaller outer, inner;
    SignalLog log(inner);
    QObject::connect(&outer, &WidgetSignaller::widgetAdded, [&] {
        EXPECT_TRUE(inner.RegisterWidgetClass(Programmer));
        log.Add("registered");
    });
    outer.RegisterWidgetClass(Playback);
    bus.Add({"PlaybackWing", 1, L"a"});
    EXPECT_THAT(log.Get(), ElementsAre("added b", "registered"));
}

TEST(SignallerRegistration, IsTrueTwiceAndReportsOnce)
{
    Desk::WidgetBus bus;
    bus.Add({"PlaybackWing", 1, L"a"});
    WidgetSignaller signaller;
    const SignalLog log(signaller);
    EXPECT_TRUE(signaller.RegisterWidgetClass(Playback));
    EXPECT_TRUE(signaller.RegisterWidgetClass(Playback));
    EXPECT_THAT(log.Get(), ElementsAre("added a"));
}

TEST(SignallerRegistration, ReportsWhatIsAttachedAndDetachedLater)
{
    Desk::WidgetBus bus;
    WidgetSignaller signaller;
    const SignalLog log(signaller);
    signaller.RegisterWidgetClass(Playback);
    bus.Add({"PlaybackWing", 1, L"a"}).Unplug();
    EXPECT_THAT(log.Get(), ElementsAre("added a", "removed a"));
}

TEST(SignallerRegistration, LeavesOtherClassesAlone)
{
    Desk::WidgetBus bus;
    WidgetSignaller signaller;
    const SignalLog log(signaller);
    signaller.RegisterWidgetClass(Playback);
    bus.Add({"ProgrammerWing", 1, L"a"}).Unplug();
    EXPECT_THAT(log.Get(), IsEmpty());
}

TEST(SignallerRegistration, UnregisteringTellsWhetherTheClassWasRegistered)
{
    WidgetSignaller signaller;
    EXPECT_FALSE(signaller.UnregisterWidgetClass(Playback));
    signaller.RegisterWidgetClass(Playback);
    EXPECT_FALSE(signaller.UnregisterWidgetClass(Programmer));
    EXPECT_TRUE(signaller.UnregisterWidgetClass(Playback));
    EXPECT_FALSE(signaller.UnregisterWidgetClass(Playback));
}

TEST(SignallerRegistration, UnregisteringRaisesNothing)
{
    Desk::WidgetBus bus;
    Desk::VirtualWidget& widget = bus.Add({"PlaybackWing", 1, L"a"});
    WidgetSignaller signaller;
    SignalLog log(signaller);
    signaller.RegisterWidgetClass(Playback);
    log.Take();
    signaller.UnregisterWidgetClass(Playback);
    widget.Unplug();
    widget.Plug();
    EXPECT_THAT(log.Get(), IsEmpty());
}

TEST(SignallerRegistration, AClassThatWasRegisteredOnceIsCountedOn)
{
    Desk::WidgetBus bus;
    WidgetSignaller signaller;
    SignalLog log(signaller);
    signaller.SetAutoReadRegister(true);
    signaller.RegisterWidgetClass(Playback);
    signaller.UnregisterWidgetClass(Playback);
    Desk::VirtualWidget& widget = bus.Add({"PlaybackWing", 1, L"a"});
    bus.Add({"ProgrammerWing", 1, L"b"});
    EXPECT_EQ(signaller.GetActiveWidgetCount(), 1);
    EXPECT_EQ(signaller.GetWidgetIndex(TestSupport::GetMapData(widget)), 0);
    EXPECT_EQ(widget.CountOpen(), 0);
    widget.Unplug();
    EXPECT_EQ(signaller.GetActiveWidgetCount(), 0);
    EXPECT_THAT(log.Get(), IsEmpty());
}

TEST(SignallerRegistration, UnregisteringLeavesTheIndexUntilTheWidgetIsDetached)
{
    Desk::WidgetBus bus;
    Desk::VirtualWidget& widget = bus.Add({"PlaybackWing", 1, L"a"});
    WidgetSignaller signaller;
    signaller.RegisterWidgetClass(Playback);
    signaller.UnregisterWidgetClass(Playback);
    const auto mapData = TestSupport::GetMapData(widget);
    EXPECT_EQ(signaller.GetWidgetIndex(mapData), 0);
    EXPECT_EQ(signaller.GetActiveWidgetCount(), 1);
    widget.Unplug();
    EXPECT_EQ(signaller.GetWidgetIndex(mapData), -1);
    EXPECT_EQ(signaller.GetActiveWidgetCount(), 0);
}

TEST(SignallerRegistration, RegisteringAgainReportsAgainUnderTheSameIndex)
{
    Desk::WidgetBus bus;
    bus.Add({"ProgrammerWing", 1, L"a"});
    Desk::VirtualWidget& widget = bus.Add({"PlaybackWing", 1, L"b"});
    WidgetSignaller signaller;
    const SignalLog log(signaller);
    signaller.RegisterWidgetClass(Programmer);
    signaller.RegisterWidgetClass(Playback);
    signaller.UnregisterWidgetClass(Playback);
    EXPECT_TRUE(signaller.RegisterWidgetClass(Playback));
    EXPECT_THAT(log.Get(), ElementsAre("added a", "added b", "added b"));
    EXPECT_EQ(signaller.GetWidgetIndex(TestSupport::GetMapData(widget)), 1);
    EXPECT_EQ(signaller.GetActiveWidgetCount(), 2);
}

TEST(SignallerRegistration, AWidgetThatAppearsMeanwhileIsReportedOnce)
{
    Desk::WidgetBus bus;
    WidgetSignaller signaller;
    const SignalLog log(signaller);
    DriverHold hold(bus);
    bus.Add({"PlaybackWing", 1, L"a"});
    const Contender registrar([&] { EXPECT_TRUE(signaller.RegisterWidgetClass(Playback)); });
    EXPECT_TRUE(registrar.ComesToWait());
    bus.Add({"PlaybackWing", 2, L"b"});
    hold.End();
    EXPECT_THAT(log.Get(), ElementsAre("added a", "added b"));
}

TEST(SignallerRegistration, ReportsOnceToTwoThreadsThatRegisterAtOnce)
{
    Desk::WidgetBus bus;
    bus.Add({"PlaybackWing", 1, L"a"});
    WidgetSignaller signaller;
    const SignalLog log(signaller);
    DriverHold hold(bus);
    {
        const auto registerOnce = [&] { EXPECT_TRUE(signaller.RegisterWidgetClass(Playback)); };
        const Contender first(registerOnce), second(registerOnce);
        EXPECT_TRUE(first.ComesToWait());
        EXPECT_TRUE(second.ComesToWait());
        hold.End();
    }
    EXPECT_THAT(log.Get(), ElementsAre("added a"));
}

TEST(SignallerRegistration, AWidgetThatGoesMeanwhileIsNotReported)
{
    Desk::WidgetBus bus;
    Desk::VirtualWidget& widget = bus.Add({"PlaybackWing", 1, L"a"});
    WidgetSignaller signaller;
    const SignalLog log(signaller);
    DriverHold hold(bus);
    widget.Unplug();
    const Contender registrar([&] { EXPECT_TRUE(signaller.RegisterWidgetClass(Playback)); });
    EXPECT_TRUE(registrar.ComesToWait());
    hold.End();
    EXPECT_THAT(log.Get(), IsEmpty());
}

TEST(SignallerRegistration, AWidgetIsReportedOnceToASignallerThatItsArrivalRegisters)
{
    Desk::WidgetBus bus;
    WidgetSignaller first, second;
    const SignalLog log(second);
    QObject::connect(&first, &WidgetSignaller::widgetAdded,
                     [&] { second.RegisterWidgetClass(Playback); });
    first.RegisterWidgetClass(Playback);
    bus.Add({"PlaybackWing", 1, L"a"});
    EXPECT_THAT(log.Get(), ElementsAre("added a"));
}

TEST(SignallerRegistration, ARemovalIsNotReportedToASignallerThatItRegisters)
{
    Desk::WidgetBus bus;
    Desk::VirtualWidget& widget = bus.Add({"PlaybackWing", 1, L"a"});
    WidgetSignaller first, second;
    const SignalLog log(second);
    QObject::connect(&first, &WidgetSignaller::widgetRemoved,
                     [&] { second.RegisterWidgetClass(Playback); });
    first.RegisterWidgetClass(Playback);
    widget.Unplug();
    EXPECT_THAT(log.Get(), IsEmpty());
}

TEST(SignallerRegistration, UnregisteringInASlotEndsTheReport)
{
    Desk::WidgetBus bus;
    bus.Add({"PlaybackWing", 1, L"a"});
    bus.Add({"PlaybackWing", 2, L"b"});
    WidgetSignaller signaller;
    const SignalLog log(signaller);
    QObject::connect(&signaller, &WidgetSignaller::widgetAdded,
                     [&] { EXPECT_TRUE(signaller.UnregisterWidgetClass(Playback)); });
    EXPECT_TRUE(signaller.RegisterWidgetClass(Playback));
    EXPECT_THAT(log.Get(), ElementsAre("added a"));
}

TEST(SignallerRegistration, AnotherClassMayBeRegisteredInASlot)
{
    Desk::WidgetBus bus;
    bus.Add({"PlaybackWing", 1, L"a"});
    bus.Add({"ProgrammerWing", 2, L"b"});
    WidgetSignaller signaller;
    const SignalLog log(signaller);
    QObject::connect(&signaller, &WidgetSignaller::widgetAdded,
                     [&] { EXPECT_TRUE(signaller.RegisterWidgetClass(Programmer)); });
    EXPECT_TRUE(signaller.RegisterWidgetClass(Playback));
    EXPECT_THAT(log.Get(), ElementsAre("added a", "added b"));
}

} // namespace
