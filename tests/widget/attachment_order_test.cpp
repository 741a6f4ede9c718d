// SPDX-License-Identifier: MIT
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "desk/widget_bus.h"
#include "widget/signal_log.h"
#include "widget/um_wing.h"
#include "widget/widget_facts.h"
#include "widget/widget_signaller.h"

using testing::ElementsAre;
using testing::IsEmpty;
using TestSupport::SignalLog;

namespace
{

class AttachmentOrder : public testing::Test
{
protected:
    AttachmentOrder()
    {
        signaller.SetAutoReadRegister(true);
        signaller.RegisterWidgetClass(&GUID_DEVINTERFACE_QRTUMPLAYBACKWING);
        log.Take();
    }

    Desk::WidgetBus bus;
    Desk::VirtualWidget& widget = bus.Add({"PlaybackWing", 1, L"a"});
    Hardware::WidgetSignaller signaller{&Hardware::UmWing::WingReader};
    SignalLog log{signaller};
};

TEST_F(AttachmentOrder, WhatIsDoneWithoutWaitingArrivesInItsOrder)
{
    widget.Unplug();
    log.Take();
    TestSupport::DriverHold hold(bus);
    widget.Plug();
    widget.Press(3);
    widget.Unplug();
    widget.Plug();
    widget.Release(3);
    widget.Unplug();
    EXPECT_THAT(log.Get(), IsEmpty());
    hold.End();
    EXPECT_THAT(log.Get(), ElementsAre("added a", "read a: button 3 1", "removed a", "added a",
                                       "read a: button 3 0", "removed a"));
}

TEST_F(AttachmentOrder, EveryVerbWaitsUnlessToldOtherwise)
{
    widget.Press(3);
    EXPECT_THAT(log.Take(), ElementsAre("read a: button 3 1"));
    widget.Unplug();
    EXPECT_THAT(log.Take(), ElementsAre("removed a"));
    widget.Plug();
    EXPECT_THAT(log.Take(), ElementsAre("added a"));
}

TEST_F(AttachmentOrder, PluggedTwiceItIsPluggedOnce)
{
    widget.Plug();
    EXPECT_THAT(log.Take(), IsEmpty());
    widget.Unplug();
    EXPECT_THAT(log.Take(), ElementsAre("removed a"));
    widget.Unplug();
    EXPECT_THAT(log.Take(), IsEmpty());
    widget.Plug();
    widget.Plug();
    EXPECT_THAT(log.Take(), ElementsAre("added a"));
}

TEST_F(AttachmentOrder, AnUnpluggedWidgetSaysNothing)
{
    widget.Unplug();
    log.Take();
    widget.Press(3);
    widget.MoveFader(1, 5);
    widget.Plug();
    EXPECT_THAT(log.Take(), ElementsAre("added a"));
}

TEST_F(AttachmentOrder, SeveralWidgetsAreToldInOneOrder)
{
    auto& b = bus.Add({"PlaybackWing", 2, L"b"});
    log.Take();
    TestSupport::DriverHold hold(bus);
    widget.Press(1);
    b.Press(2);
    widget.Unplug();
    b.Release(2);
    hold.End();
    EXPECT_THAT(log.Get(), ElementsAre("read a: button 1 1", "read b: button 2 1", "removed a",
                                       "read b: button 2 0"));
}

TEST_F(AttachmentOrder, AWidgetThatIsPluggedAgainIsRead)
{
    widget.Unplug();
    widget.Plug();
    log.Take();
    widget.Press(1);
    EXPECT_THAT(log.Take(), ElementsAre("read a: button 1 1"));
}

TEST_F(AttachmentOrder, VerbsInSlotsDoNotWait)
{
    QObject::connect(&signaller, &Hardware::WidgetSignaller::widgetRead, [this] {
        widget.Unplug();
        log.Add("unplugged");
    });
    widget.Press(1);
    bus.Flush();
    EXPECT_THAT(log.Get(), ElementsAre("read a: button 1 1", "unplugged", "removed a"));
}

} // namespace
