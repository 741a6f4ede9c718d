// SPDX-License-Identifier: MIT

// Signallers that go while they signal. Memory checkers see what touches them afterwards.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "desk/widget_bus.h"
#include "platform/contender.h"
#include "widget/signal_log.h"
#include "widget/um_wing.h"
#include "widget/widget_facts.h"
#include "widget/widget_signaller.h"

using Hardware::UmWing;
using Hardware::WidgetSignaller;
using testing::ElementsAre;
using TestSupport::Contender;
using TestSupport::SignalLog;

namespace
{

constexpr const GUID* Playback = &GUID_DEVINTERFACE_QRTUMPLAYBACKWING;

WidgetSignaller* MakeReading()
{
    auto* const signaller = new WidgetSignaller(&UmWing::WingReader);
    signaller->SetAutoReadRegister(true);
    return signaller;
}

TEST(SignallerLifetime, ItMayGoInTheSlotOfAnAddition)
{
    Desk::WidgetBus bus;
    auto* const mortal = MakeReading();
    const SignalLog log(*mortal);
    QObject::connect(mortal, &WidgetSignaller::widgetAdded, [=] { delete mortal; });
    mortal->RegisterWidgetClass(Playback);
    bus.Add({"PlaybackWing", 1, L"a"}).Press(1);
    EXPECT_THAT(log.Get(), ElementsAre("added a"));
}

TEST(SignallerLifetime, ItMayGoInTheSlotOfARemoval)
{
    Desk::WidgetBus bus;
    auto* const mortal = MakeReading();
    const SignalLog log(*mortal);
    QObject::connect(mortal, &WidgetSignaller::widgetRemoved, [=] { delete mortal; });
    mortal->RegisterWidgetClass(Playback);
    auto& widget = bus.Add({"PlaybackWing", 1, L"a"});
    widget.Unplug();
    widget.Plug();
    EXPECT_THAT(log.Get(), ElementsAre("added a", "removed a"));
}

TEST(SignallerLifetime, ItMayGoInTheSlotOfAReport)
{
    Desk::WidgetBus bus;
    auto* const mortal = MakeReading();
    const SignalLog log(*mortal);
    QObject::connect(mortal, &WidgetSignaller::widgetRead, [=] { delete mortal; });
    mortal->RegisterWidgetClass(Playback);
    auto& widget = bus.Add({"PlaybackWing", 1, L"a"});
    widget.Press(1);
    widget.Press(2);
    EXPECT_THAT(log.Get(), ElementsAre("added a", "read a: button 1 1"));
}

TEST(SignallerLifetime, ItMayGoWhileAttachedWidgetsAreReported)
{
    Desk::WidgetBus bus;
    bus.Add({"PlaybackWing", 1, L"a"});
    bus.Add({"PlaybackWing", 2, L"b"});
    auto* const mortal = MakeReading();
    const SignalLog log(*mortal);
    QObject::connect(mortal, &WidgetSignaller::widgetAdded, [=] { delete mortal; });
    EXPECT_TRUE(mortal->RegisterWidgetClass(Playback));
    EXPECT_THAT(log.Get(), ElementsAre("added a"));
}

TEST(SignallerLifetime, TheOthersAreToldWhenOneGoesInItsSlot)
{
    Desk::WidgetBus bus;
    WidgetSignaller before;
    auto* const mortal = MakeReading();
    WidgetSignaller behind;
    const SignalLog beforeLog(before), behindLog(behind);
    QObject::connect(mortal, &WidgetSignaller::widgetAdded, [=] { delete mortal; });
    for (WidgetSignaller* const signaller : {&before, mortal, &behind})
        signaller->RegisterWidgetClass(Playback);
    bus.Add({"PlaybackWing", 1, L"a"});
    EXPECT_THAT(beforeLog.Get(), ElementsAre("added a"));
    EXPECT_THAT(behindLog.Get(), ElementsAre("added a"));
}

TEST(SignallerLifetime, OneThatAnotherOnesSlotDestroyedIsNotTold)
{
    Desk::WidgetBus bus;
    WidgetSignaller killer;
    auto* const mortal = MakeReading();
    const SignalLog log(*mortal);
    QObject::connect(&killer, &WidgetSignaller::widgetAdded, [=] { delete mortal; });
    killer.RegisterWidgetClass(Playback);
    mortal->RegisterWidgetClass(Playback);
    bus.Add({"PlaybackWing", 1, L"a"});
    EXPECT_THAT(log.Get(), testing::IsEmpty());
}

TEST(SignallerLifetime, DestructionWaitsForASlotOnTheDriversThread)
{
    Desk::WidgetBus bus;
    bus.SetWaiting(false);
    auto* const mortal = MakeReading();
    Os::Event begun, gate;
    int index = -1;
    QObject::connect(mortal, &WidgetSignaller::widgetAdded, [&](const auto& mapData) {
        begun.Set();
        gate.Wait();
        index = mortal->GetWidgetIndex(mapData);
    });
    mortal->RegisterWidgetClass(Playback);
    bus.Add({"PlaybackWing", 1, L"a"});
    begun.Wait();
    {
        const Contender destroyer([=] { delete mortal; });
        EXPECT_TRUE(destroyer.ComesToWait());
        gate.Set();
    }
    EXPECT_EQ(index, 0);
}

TEST(SignallerLifetime, DestructionDoesNotWaitForAnotherOnesSlot)
{
    Desk::WidgetBus bus;
    bus.SetWaiting(false);
    auto* const mortal = MakeReading();
    WidgetSignaller another;
    Os::Event begun, gate;
    QObject::connect(&another, &WidgetSignaller::widgetAdded, [&] {
        begun.Set();
        gate.Wait();
    });
    another.RegisterWidgetClass(Playback);
    bus.Add({"PlaybackWing", 1, L"a"});
    begun.Wait();
    delete mortal;
    gate.Set();
    bus.Flush();
}

TEST(SignallerLifetime, ManyComeAndGoWhileWidgetsDo)
{
    Desk::WidgetBus bus;
    bus.SetWaiting(false);
    auto& widget = bus.Add({"PlaybackWing", 1, L"a"});
    std::atomic<bool> isOver = false;
    const auto makeAndDestroy = [&] {
        while (!isOver) {
            std::atomic<int> balance = 0;
            const std::unique_ptr<WidgetSignaller> signaller(MakeReading());
            QObject::connect(signaller.get(), &WidgetSignaller::widgetAdded, [&] { ++balance; });
            QObject::connect(signaller.get(), &WidgetSignaller::widgetRemoved, [&] { --balance; });
            signaller->RegisterWidgetClass(Playback);
            EXPECT_GE(balance, 0);
            EXPECT_LE(balance, 1);
        }
    };
    {
        const Contender first(makeAndDestroy), second(makeAndDestroy);
        for (int i = 0; i < 300; ++i) {
            widget.Unplug();
            widget.Plug();
            widget.Press(1);
            bus.Flush();
        }
        isOver = true;
    }
}

} // namespace
