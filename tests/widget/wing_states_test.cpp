// SPDX-License-Identifier: MIT
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "desk/widget_bus.h"
#include "platform/contender.h"
#include "widget/signal_log.h"
#include "widget/widget_facts.h"
#include "widget/widget_signaller.h"
#include "widget/wings.h"

using Hardware::PlaybackWing;
using Hardware::Vex4DeskPlayback;
using testing::ElementsAre;
using TestSupport::Open;

namespace
{

class WingStates : public testing::Test
{
protected:
    Desk::WidgetBus bus;
    Desk::VirtualWidget& widget = bus.Add({"PlaybackWing", 1, L"a"});
    const std::unique_ptr<PlaybackWing> wing = Open<PlaybackWing>(widget);
};

TEST_F(WingStates, AreUnknownBeforeTheFirstReport)
{
    EXPECT_EQ(wing->GetButtonState(0), -1);
    EXPECT_EQ(wing->GetLedState(0), -1);
    EXPECT_EQ(wing->GetFaderState(0), -1);
    EXPECT_EQ(wing->GetStateOf(70, 1), -1);
}

TEST_F(WingStates, FollowTheReportsThoughNobodyReads)
{
    widget.Press(2);
    widget.MoveFader(3, 200);
    EXPECT_EQ(wing->GetButtonState(2), 1);
    EXPECT_EQ(wing->GetFaderState(3), 200);
    widget.Release(2);
    widget.MoveFader(3, 0);
    EXPECT_EQ(wing->GetButtonState(2), 0);
    EXPECT_EQ(wing->GetFaderState(3), 0);
}

TEST_F(WingStates, AreKeptApartByKindAndIndex)
{
    widget.Press(1);
    EXPECT_EQ(wing->GetButtonState(0), -1);
    EXPECT_EQ(wing->GetButtonState(2), -1);
    EXPECT_EQ(wing->GetFaderState(1), -1);
    EXPECT_EQ(wing->GetLedState(1), -1);
}

TEST_F(WingStates, AreSharedByAllObjectsOfTheWing)
{
    const auto another = Open<PlaybackWing>(widget);
    widget.Press(1);
    widget.MoveFader(1, 17);
    EXPECT_EQ(another->GetButtonState(1), 1);
    EXPECT_EQ(another->GetFaderState(1), 17);
    EXPECT_EQ(Open<PlaybackWing>(widget)->GetButtonState(1), 1);
}

TEST_F(WingStates, AreNotSharedByWings)
{
    const auto another = Open<PlaybackWing>(bus.Add({"PlaybackWing", 1, L"b"}));
    widget.Press(1);
    EXPECT_EQ(another->GetButtonState(1), -1);
}

TEST_F(WingStates, AreKnownInTheSlotOfTheReport)
{
    Hardware::WidgetSignaller signaller(&Hardware::UmWing::WingReader);
    signaller.SetAutoReadRegister(true);
    signaller.RegisterWidgetClass(&GUID_DEVINTERFACE_QRTUMPLAYBACKWING);
    int state = -2;
    QObject::connect(&signaller, &Hardware::WidgetSignaller::widgetRead,
                     [&] { state = wing->GetButtonState(1); });
    widget.Press(1);
    EXPECT_EQ(state, 1);
}

TEST_F(WingStates, OfAButtonAreFoundByPartAndMaster)
{
    widget.Press(12);
    EXPECT_EQ(wing->GetStateOf(71, 3), 1);
    widget.Release(12);
    EXPECT_EQ(wing->GetStateOf(71, 3), 0);
    EXPECT_EQ(wing->GetStateOf(99, 1), -1);
}

TEST_F(WingStates, OfMotorFadersFollowTheReports)
{
    auto& motorised = bus.Add({"Vex4ExternalPlayback", 1, L"b"});
    motorised.MoveFader(2, 99);
    EXPECT_EQ(Open<Hardware::Vex4ExternalPlayback>(motorised)->GetFaderState(2), 99);
}

TEST_F(WingStates, OfTheDrawerAreThoseOfItsSwitch)
{
    auto& desk = bus.Add({"Vex4DeskPlayback", 1, L"b"});
    const auto playback = Open<Vex4DeskPlayback>(desk);
    EXPECT_EQ(playback->GetStateOf(75, 0), -1);
    desk.OpenDrawer();
    EXPECT_EQ(playback->GetStateOf(75, 0), 0);
    desk.CloseDrawer();
    EXPECT_EQ(playback->GetStateOf(75, 0), 1);
    EXPECT_EQ(playback->GetButtonState(50), 1);
}

TEST_F(WingStates, AWingWithoutDrawerHasNoStateOfIt)
{
    widget.OpenDrawer();
    EXPECT_EQ(wing->GetStateOf(75, 0), -1);
}

TEST_F(WingStates, AreReportedAgainOnARefresh)
{
    Hardware::WidgetSignaller signaller(&Hardware::UmWing::WingReader);
    signaller.SetAutoReadRegister(true);
    signaller.RegisterWidgetClass(&GUID_DEVINTERFACE_QRTUMPLAYBACKWING);
    TestSupport::SignalLog log(signaller);
    widget.Press(1);
    widget.MoveFader(2, 9);
    widget.TurnEncoder(0, 3);
    log.Take();
    EXPECT_TRUE(wing->RefreshState());
    bus.Flush();
    EXPECT_THAT(log.Get(), ElementsAre("read a: button 1 1", "read a: fader 2 9"));
}

TEST_F(WingStates, OfControlsThatMovedWhileUnpluggedComeWithARefresh)
{
    widget.Unplug();
    widget.Press(1);
    widget.MoveFader(2, 9);
    widget.Plug();
    const auto again = Open<PlaybackWing>(widget);
    EXPECT_EQ(again->GetButtonState(1), -1);
    again->RefreshState();
    bus.Flush();
    EXPECT_EQ(again->GetButtonState(1), 1);
    EXPECT_EQ(again->GetFaderState(2), 9);
}

TEST_F(WingStates, OfMotorFadersThatWereDrivenComeWithARefresh)
{
    auto& motorised = bus.Add({"Vex4ExternalPlayback", 1, L"b"});
    const auto playback = Open<Hardware::Vex4ExternalPlayback>(motorised);
    playback->SetFader(3, 120);
    playback->RefreshState();
    bus.Flush();
    EXPECT_EQ(playback->GetFaderState(2), 120);
}

TEST_F(WingStates, NeverGoBackWhenRefreshesComeInBetween)
{
    Hardware::WidgetSignaller signaller(&Hardware::UmWing::WingReader);
    signaller.SetAutoReadRegister(true);
    signaller.RegisterWidgetClass(&GUID_DEVINTERFACE_QRTUMPLAYBACKWING);
    int last = -1, stepsBack = 0;
    QObject::connect(&signaller, &Hardware::WidgetSignaller::widgetRead, [&] {
        const int state = wing->GetFaderState(0);
        stepsBack += state < last ? 1 : 0;
        last = state;
    });
    // Buttons are reported first, so that the fader has time to move in between.
    for (unsigned short button = 0; button < 70; ++button)
        widget.Press(button);
    widget.MoveFader(0, 0);
    bus.SetWaiting(false);
    std::atomic<bool> isOver = false;
    {
        const TestSupport::Contender refresher([&] {
            while (!isOver) {
                wing->RefreshState();
                bus.Flush();
            }
        });
        for (int value = 1; value <= 2000; ++value) {
            widget.MoveFader(0, value);
            if (value % 10 == 0)
                bus.Flush();
        }
        isOver = true;
    }
    bus.Flush();
    EXPECT_EQ(stepsBack, 0);
    EXPECT_EQ(last, 2000);
}

} // namespace
