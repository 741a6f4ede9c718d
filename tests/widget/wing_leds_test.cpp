// SPDX-License-Identifier: MIT
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "desk/widget_bus.h"
#include "widget/widget_facts.h"
#include "widget/wings.h"

using Hardware::PlaybackWing;
using Hardware::UmWing;
using testing::ElementsAre;
using testing::IsEmpty;

namespace Report = Standalone::Report;

namespace
{

class WingLeds : public testing::Test
{
protected:
    Desk::WidgetBus bus;
    Desk::VirtualWidget& widget = bus.Add({"PlaybackWing", 1, L"a"});
    const std::unique_ptr<PlaybackWing> wing = TestSupport::Open<PlaybackWing>(widget);
};

TEST_F(WingLeds, AreSetByPartAndMaster)
{
    EXPECT_TRUE(wing->SetLed(71, 3, UmWing::LedState_Flash));
    EXPECT_THAT(widget.GetLog(), ElementsAre(Report::Output(Report::SetLed{12, 2})));
    EXPECT_EQ(widget.GetLed(12), UmWing::LedState_Flash);
    EXPECT_EQ(wing->GetLedState(12), UmWing::LedState_Flash);
}

TEST_F(WingLeds, TakeEveryState)
{
    for (const UmWing::LedState state : {UmWing::LedState_On, UmWing::LedState_Flash,
                                         UmWing::LedState_Dim, UmWing::LedState_Off}) {
        EXPECT_TRUE(wing->SetLed(70, 1, state));
        EXPECT_EQ(widget.GetLed(0), static_cast<int>(state));
        EXPECT_EQ(wing->GetLedState(0), static_cast<int>(state));
    }
}

TEST_F(WingLeds, OfAnUnknownPartOrMasterAreRefused)
{
    EXPECT_FALSE(wing->SetLed(99, 1, UmWing::LedState_On));
    EXPECT_FALSE(wing->SetLed(70, 11, UmWing::LedState_On));
    EXPECT_FALSE(wing->SetLed(70, 0, UmWing::LedState_On));
    EXPECT_FALSE(wing->SetLed(170, 65535, UmWing::LedState_On));
    EXPECT_THAT(widget.GetLog(), IsEmpty());
}

TEST_F(WingLeds, StayAsTheyAreWhenTheWingFails)
{
    wing->SetLed(70, 1, UmWing::LedState_On);
    widget.SetFailing(true);
    EXPECT_FALSE(wing->SetLed(70, 1, UmWing::LedState_Flash));
    EXPECT_FALSE(wing->SetAllLed(UmWing::LedState_Flash));
    EXPECT_EQ(wing->GetLedState(0), UmWing::LedState_On);
    EXPECT_EQ(wing->GetLedState(1), -1);
    widget.SetFailing(false);
    EXPECT_TRUE(wing->SetLed(70, 1, UmWing::LedState_Dim));
}

TEST_F(WingLeds, OfADetachedWingAreRefused)
{
    widget.Unplug();
    EXPECT_FALSE(wing->SetLed(70, 1, UmWing::LedState_On));
    EXPECT_EQ(wing->GetLedState(0), -1);
}

TEST_F(WingLeds, AreSetAllAtOnce)
{
    EXPECT_TRUE(wing->SetAllLed(UmWing::LedState_Dim));
    EXPECT_THAT(widget.GetLog(), ElementsAre(Report::Output(Report::SetAllLed{3})));
    for (unsigned short led = 0; led < 70; ++led) {
        EXPECT_EQ(wing->GetLedState(led), UmWing::LedState_Dim) << led;
        EXPECT_EQ(widget.GetLed(led), UmWing::LedState_Dim) << led;
    }
    EXPECT_EQ(wing->GetLedState(70), -1);
    EXPECT_EQ(widget.GetLed(70), -1);
}

TEST_F(WingLeds, AreSharedByAllObjectsOfTheWing)
{
    const auto another = TestSupport::Open<PlaybackWing>(widget);
    wing->SetLed(70, 2, UmWing::LedState_On);
    EXPECT_EQ(another->GetLedState(1), UmWing::LedState_On);
}

TEST_F(WingLeds, AreUnknownAtFirstAndKnownFromTheWingsOwnReports)
{
    EXPECT_EQ(wing->GetLedState(4), -1);
    widget.ChangeLed(4, 1);
    EXPECT_EQ(wing->GetLedState(4), 1);
    EXPECT_EQ(widget.GetLed(4), 1);
}

TEST_F(WingLeds, AreUnknownOnAWingThatWasPluggedAgain)
{
    wing->SetLed(70, 1, UmWing::LedState_On);
    widget.Unplug();
    widget.Plug();
    EXPECT_EQ(TestSupport::Open<PlaybackWing>(widget)->GetLedState(0), -1);
}

TEST_F(WingLeds, OfASecondSectionHaveMastersFromEleven)
{
    auto& keystone = bus.Add({"Vex4Keystone", 1, L"b"});
    EXPECT_TRUE(
        TestSupport::Open<Hardware::Vex4Keystone>(keystone)->SetLed(70, 11, UmWing::LedState_On));
    EXPECT_EQ(keystone.GetLed(50), UmWing::LedState_On);
}

} // namespace
