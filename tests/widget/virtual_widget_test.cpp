// SPDX-License-Identifier: MIT
#include "desk/virtual_widget.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "desk/widget_bus.h"
#include "widget/signal_log.h"
#include "widget/widget_facts.h"
#include "widget/widget_signaller.h"
#include "widget/wings.h"

using Desk::VirtualWidget;
using testing::ElementsAre;
using testing::IsEmpty;

namespace Report = Standalone::Report;

namespace
{

/// What a widget reports while @p act works it.
template <class Act> std::vector<std::string> Reports(const char* model, Act act)
{
    Desk::WidgetBus bus;
    VirtualWidget& widget = bus.Add({model, 1, L"a"});
    Hardware::WidgetSignaller signaller(
        widget.GetModel().name == "Vex4TopBox"        ? &Hardware::Vex4TopBox::Vex4TopBoxReader
        : widget.GetModel().name == "TrackballWidget" ? &Hardware::TrackballWidget::TrackballReader
        : widget.GetModel().name == "LtcWidget"       ? &Hardware::LtcWidget::LtcReader
                                                      : &Hardware::UmWing::WingReader);
    signaller.SetAutoReadRegister(true);
    signaller.RegisterWidgetClass(widget.GetModel().classId);
    const TestSupport::SignalLog log(signaller);
    act(widget);
    return log.Get();
}

TEST(VirtualWidget, ReportsItsButtons)
{
    const auto act = [](VirtualWidget& widget) {
        widget.Press(7);
        widget.Release(7);
    };
    EXPECT_THAT(Reports("PlaybackWing", act),
                ElementsAre("read a: button 7 1", "read a: button 7 0"));
}

TEST(VirtualWidget, ReportsFadersAsWhatTheyAre)
{
    const auto act = [](VirtualWidget& widget) { widget.MoveFader(3, 44); };
    EXPECT_THAT(Reports("PlaybackWing", act), ElementsAre("read a: fader 3 44"));
    EXPECT_THAT(Reports("Vex4ExternalPlayback", act), ElementsAre("read a: motor fader 3 44"));
}

TEST(VirtualWidget, ReportsEncodersTrackballAndLeds)
{
    const auto act = [](VirtualWidget& widget) {
        widget.TurnEncoder(2, -3);
        widget.RollTrackball(4, -5);
        widget.ChangeLed(6, 1);
    };
    EXPECT_THAT(
        Reports("Vex4Pixi", act),
        ElementsAre("read a: encoder 2 -3", "read a: wing trackball 4 -5", "read a: led 6 1"));
}

TEST(VirtualWidget, ReportsTheDrawerAndItsSwitch)
{
    const auto act = [](VirtualWidget& widget) {
        widget.OpenDrawer();
        widget.CloseDrawer();
    };
    EXPECT_THAT(Reports("Vex4DeskPlayback", act),
                ElementsAre("read a: button 50 0", "read a: drawer 0 0", "read a: button 50 1",
                            "read a: drawer 0 1"));
    EXPECT_THAT(Reports("Vex4DeskProgrammer", act), IsEmpty());
}

TEST(VirtualWidget, ReportsWhatConsolesHaveBesidesWings)
{
    EXPECT_THAT(Reports("TrackballWidget", [](auto& widget) { widget.RollAxis(2, -9); }),
                ElementsAre("read a: trackball 2 -9"));
    const auto touch = [](VirtualWidget& widget) {
        widget.TouchBar(4, true);
        widget.TouchBar(4, false);
    };
    EXPECT_THAT(Reports("Vex4TopBox", touch), ElementsAre("read a: bar 4 1", "read a: bar 4 0"));
    EXPECT_THAT(Reports("LtcWidget",
                        [](auto& widget) {
                            widget.SendTimecode({1, 2, 3, 4, 1});
                        }),
                ElementsAre("read a: timecode 1 2 3 4 1"));
}

class VirtualWidgetOutput : public testing::Test
{
protected:
    Desk::WidgetBus bus;
    VirtualWidget& widget = bus.Add({"Vex4Pixi", 1, L"a"});

    bool Take(const Report::Output& output) { return widget.Accept(Report::Encode(output)); }
};

TEST_F(VirtualWidgetOutput, IsUnsetAtFirst)
{
    EXPECT_EQ(widget.GetLed(0), -1);
    EXPECT_EQ(widget.GetFader(0), -1);
    EXPECT_EQ(widget.GetDimmer(1), -1);
    EXPECT_EQ(widget.GetLcdBrightness(0), -1);
    EXPECT_EQ(widget.GetLcdText(0), U"");
    EXPECT_EQ(widget.GetCell(0, 0), 0u);
    EXPECT_EQ(widget.GetSurface(0), 0);
    EXPECT_FALSE(widget.IsAsleep());
    EXPECT_EQ(widget.CountOpened(), 0);
}

TEST_F(VirtualWidgetOutput, IsRefusedWhenItCannotBeRead)
{
    EXPECT_FALSE(widget.Accept({}));
    EXPECT_FALSE(widget.Accept({0x81, 0}));
    EXPECT_FALSE(widget.Accept({0x01, 0, 0, 1}));
    EXPECT_THAT(widget.GetLog(), IsEmpty());
}

TEST_F(VirtualWidgetOutput, IsRefusedWhileUnpluggedOrFailing)
{
    widget.Unplug();
    EXPECT_FALSE(Take(Report::SetSleep{1}));
    widget.Plug();
    widget.SetFailing(true);
    EXPECT_FALSE(Take(Report::SetSleep{1}));
    widget.SetFailing(false);
    EXPECT_THAT(widget.GetLog(), IsEmpty());
    EXPECT_TRUE(Take(Report::SetSleep{1}));
}

TEST_F(VirtualWidgetOutput, IsGoneWithThePower)
{
    Take(Report::SetAllLed{1});
    Take(Report::SetFader{2, 200});
    Take(Report::SetDimmer{1, 255});
    Take(Report::SetAllLcdBrightness{99});
    Take(Report::SetLcdBrightness{3, 98});
    Take(Report::SetLcdText{4, {'a'}});
    Take(Report::WriteCells{{5}, {6}});
    Take(Report::SetLinkLights{1, 1, 1, 1});
    Take(Report::SetSleep{1});
    for (const bool isPlugged : {false, true}) {
        if (isPlugged)
            widget.Plug();
        else
            widget.Unplug();
        EXPECT_EQ(widget.GetLed(0), -1);
        EXPECT_EQ(widget.GetFader(2), -1);
        EXPECT_EQ(widget.GetDimmer(1), -1);
        EXPECT_EQ(widget.GetLcdBrightness(0), -1);
        EXPECT_EQ(widget.GetLcdBrightness(3), -1);
        EXPECT_EQ(widget.GetLcdText(4), U"");
        EXPECT_EQ(widget.GetCell(0, 0), 0u);
        EXPECT_EQ(widget.GetSurface(0), 0);
        EXPECT_EQ(widget.GetLinkLights(), Report::SetLinkLights{});
        EXPECT_FALSE(widget.IsAsleep());
    }
}

TEST_F(VirtualWidgetOutput, IsNotMadeByAWidgetWithoutPower)
{
    widget.Unplug();
    widget.ChangeLed(1, 1);
    widget.Plug();
    EXPECT_EQ(widget.GetLed(1), -1);
}

TEST_F(VirtualWidgetOutput, IsForgottenWhenAsked)
{
    Take(Report::Beacon{2});
    EXPECT_THAT(widget.GetBeacons(), ElementsAre(2));
    widget.ClearLog();
    EXPECT_THAT(widget.GetLog(), IsEmpty());
    EXPECT_THAT(widget.GetBeacons(), IsEmpty());
}

TEST_F(VirtualWidgetOutput, OfVeryManyTheLastAreKept)
{
    constexpr std::size_t Limit = VirtualWidget::LogLimit;
    for (std::uint32_t hash = 0; hash < Limit + 3; ++hash)
        Take(Report::SetHash{hash});
    const auto log = widget.GetLog();
    ASSERT_EQ(log.size(), Limit);
    EXPECT_EQ(log.front(), Report::Output(Report::SetHash{3}));
    EXPECT_EQ(log.back(), Report::Output(Report::SetHash{Limit + 2}));
}

TEST_F(VirtualWidgetOutput, OfVeryManyBeaconsTheLastAreKept)
{
    for (std::size_t i = 0; i < VirtualWidget::LogLimit; ++i)
        Take(Report::Beacon{1});
    Take(Report::Beacon{2});
    ASSERT_EQ(widget.GetBeacons().size(), VirtualWidget::LogLimit);
    EXPECT_EQ(widget.GetBeacons().back(), 2);
}

} // namespace
