// SPDX-License-Identifier: MIT
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <thread>

#include "desk/virtual_widget.h"
#include "desk/widget_bus.h"
#include "widget/um_widget.h"
#include "widget/widget_facts.h"

using Desk::VirtualWidget;
using testing::ElementsAre;

namespace Report = Standalone::Report;

namespace
{

/// Every slot looks at the widget, works it and plugs it: none may find a lock held.
class VirtualWidgetSignals : public testing::Test
{
protected:
    VirtualWidgetSignals()
    {
        Listen(&VirtualWidget::ledChanged, "led");
        Listen(&VirtualWidget::allLedsChanged, "all leds");
        Listen(&VirtualWidget::faderMoved, "fader");
        Listen(&VirtualWidget::dimmerChanged, "dimmer");
        Listen(&VirtualWidget::lcdChanged, "lcd");
        Listen(&VirtualWidget::allLcdsChanged, "all lcds");
        Listen(&VirtualWidget::cellsWritten, "cells");
        Listen(&VirtualWidget::sleepChanged, "sleep");
        Listen(&VirtualWidget::beaconed, "beacon");
        Listen(&VirtualWidget::linkLightsChanged, "link lights");
    }

    template <class... Arguments>
    void Listen(void (VirtualWidget::*signal)(Arguments...), const char* name)
    {
        QObject::connect(&widget, signal, [this, name](Arguments... arguments) {
            told.push_back((name + ... + (" " + std::to_string(arguments))));
            logged.push_back(widget.GetLog().size());
            widget.Press(1);
            widget.Plug();
            bus.Flush();
        });
    }

    void Take(const Report::Output& output) { EXPECT_TRUE(widget.Accept(Report::Encode(output))); }

    Desk::WidgetBus bus;
    VirtualWidget& widget = bus.Add({"Vex4ExternalPlayback", 1, L"a"});
    std::vector<std::string> told;
    std::vector<std::size_t> logged;
};

TEST_F(VirtualWidgetSignals, TellOfLeds)
{
    Take(Report::SetLed{3, 2});
    Take(Report::SetAllLed{1});
    EXPECT_THAT(told, ElementsAre("led 3 2", "all leds 1"));
}

TEST_F(VirtualWidgetSignals, TellOfFadersAndDimmers)
{
    Take(Report::SetFader{3, 200});
    Take(Report::SetDimmer{9, 255});
    EXPECT_THAT(told, ElementsAre("fader 3 200", "dimmer 9 255"));
}

TEST_F(VirtualWidgetSignals, TellOfDisplays)
{
    Take(Report::SetLcdColor{1, 0});
    Take(Report::SetLcdBrightness{2, 0});
    Take(Report::SetLcdText{3, {}});
    Take(Report::SetLcdFlash{4, 1});
    Take(Report::SetAllLcdBrightness{99});
    EXPECT_THAT(told, ElementsAre("lcd 1", "lcd 2", "lcd 3", "lcd 4", "all lcds 99"));
}

TEST_F(VirtualWidgetSignals, TellOfTheRest)
{
    Take(Report::WriteCells{{1}, {2}});
    Take(Report::SetSleep{7});
    Take(Report::SetSleep{0});
    Take(Report::Beacon{2});
    Take(Report::SetLinkLights{});
    EXPECT_THAT(told, ElementsAre("cells", "sleep 1", "sleep 0", "beacon 2", "link lights"));
}

TEST_F(VirtualWidgetSignals, ComeAfterTheChange)
{
    Take(Report::SetLed{3, 2});
    Take(Report::SetSleep{1});
    EXPECT_THAT(logged, ElementsAre(1u, 2u));
}

TEST_F(VirtualWidgetSignals, ComeInTheOrderOfTheChanges)
{
    std::vector<int> states;
    QObject::connect(&widget, &VirtualWidget::ledChanged, [&](unsigned short, unsigned char state) {
        if (state == 1) // another thread sets the LED while this signal is on its way
            std::thread([&] { Take(Report::SetLed{3, 2}); }).join();
        states.push_back(state);
    });
    Take(Report::SetLed{3, 1});
    EXPECT_THAT(states, ElementsAre(1, 2));
    EXPECT_EQ(widget.GetLed(3), 2);
}

TEST_F(VirtualWidgetSignals, OfThePlugNeverEndOnWhatDoesNotHold)
{
    std::vector<bool> plugs;
    QObject::connect(&widget, &VirtualWidget::plugged, [&](bool isPlugged) {
        if (!isPlugged)
            std::thread([&] { widget.Plug(); }).join();
        plugs.push_back(isPlugged);
    });
    widget.Unplug();
    EXPECT_THAT(plugs, ElementsAre(false, true));
    EXPECT_TRUE(widget.IsPlugged());
}

TEST_F(VirtualWidgetSignals, SayNothingOfAHashOrARefresh)
{
    Take(Report::SetHash{1});
    Take(Report::Refresh{});
    EXPECT_THAT(told, testing::IsEmpty());
}

TEST_F(VirtualWidgetSignals, AreRaisedOnTheThreadThatMadeTheOutput)
{
    pid_t raisedOn = 0;
    QObject::connect(&widget, &VirtualWidget::beaconed, [&] { raisedOn = gettid(); });
    Hardware::UmWidget(TestSupport::GetMapData(widget)).Beacon();
    EXPECT_EQ(raisedOn, gettid());
}

} // namespace
