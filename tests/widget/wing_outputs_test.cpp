// SPDX-License-Identifier: MIT
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "desk/widget_bus.h"
#include "widget/widget_facts.h"
#include "widget/wings.h"

using Hardware::UmWing;
using Hardware::Vex4ExternalPlayback;
using Hardware::Vex4Pixi;
using testing::ElementsAre;
using testing::IsEmpty;
using TestSupport::Open;

namespace Report = Standalone::Report;

namespace
{

class WingOutputs : public testing::Test
{
protected:
    Desk::WidgetBus bus;
    Desk::VirtualWidget& motorised = bus.Add({"Vex4ExternalPlayback", 1, L"a"});
    Desk::VirtualWidget& plain = bus.Add({"Vex4Pixi", 2, L"b"});
    const std::unique_ptr<Vex4ExternalPlayback> playback = Open<Vex4ExternalPlayback>(motorised);
    const std::unique_ptr<Vex4Pixi> pixi = Open<Vex4Pixi>(plain);
};

TEST_F(WingOutputs, DimmersTakeTheirLevel)
{
    for (unsigned channel = UmWing::DimmerIndex_Leds; channel <= UmWing::DimmerIndex_VentLight;
         ++channel) {
        const auto level = static_cast<unsigned char>(255 - channel);
        EXPECT_TRUE(pixi->SetDimmer(static_cast<UmWing::DimmerIndex>(channel), level));
        EXPECT_EQ(plain.GetDimmer(static_cast<std::uint8_t>(channel)), level);
    }
    EXPECT_EQ(plain.GetDimmer(0), -1);
    EXPECT_EQ(plain.GetLog().front(), Report::Output(Report::SetDimmer{1, 254}));
}

TEST_F(WingOutputs, DimmersOfADetachedWingAreRefused)
{
    plain.Unplug();
    EXPECT_FALSE(pixi->SetDimmer(UmWing::DimmerIndex_Leds, 1));
    EXPECT_EQ(plain.GetDimmer(1), -1);
}

TEST_F(WingOutputs, MotorFadersMoveByTheirMaster)
{
    playback->SetFader(1, 0);
    playback->SetFader(10, 255);
    EXPECT_EQ(motorised.GetFader(0), 0);
    EXPECT_EQ(motorised.GetFader(9), 255);
    EXPECT_EQ(motorised.GetFader(1), -1);
}

TEST_F(WingOutputs, MotorFadersOfUnknownMastersStay)
{
    playback->SetFader(0, 1);
    playback->SetFader(11, 1);
    EXPECT_THAT(motorised.GetLog(), IsEmpty());
}

TEST_F(WingOutputs, MotorFadersOfASecondSectionHaveMastersFromEleven)
{
    auto& widget = bus.Add({"Vex4Keystone", 1, L"c"});
    Open<Hardware::Vex4Keystone>(widget)->SetFader(11, 5);
    EXPECT_THAT(widget.GetLog(), ElementsAre(Report::Output(Report::SetFader{10, 5})));
}

TEST_F(WingOutputs, FadersWithoutMotorStay)
{
    pixi->SetFader(1, 5);
    EXPECT_THAT(plain.GetLog(), IsEmpty());
    EXPECT_EQ(plain.GetFader(0), -1);
}

TEST_F(WingOutputs, AHashIsLeftWithTheWing)
{
    EXPECT_EQ(pixi->GetHash(), 0u);
    pixi->SetHash(0xDEADBEEF);
    EXPECT_EQ(pixi->GetHash(), 0xDEADBEEF);
    EXPECT_EQ(Open<Vex4Pixi>(plain)->GetHash(), 0xDEADBEEF);
    EXPECT_EQ(playback->GetHash(), 0u);
    EXPECT_THAT(plain.GetLog(), ElementsAre(Report::Output(Report::SetHash{0xDEADBEEF})));
}

TEST_F(WingOutputs, AHashThatTheWingDidNotTakeIsNotLeft)
{
    pixi->SetHash(1);
    plain.SetFailing(true);
    pixi->SetHash(2);
    EXPECT_EQ(pixi->GetHash(), 1u);
    plain.Unplug();
    pixi->SetHash(3);
    EXPECT_EQ(pixi->GetHash(), 1u);
}

TEST_F(WingOutputs, SleepComesAndGoes)
{
    EXPECT_FALSE(plain.IsAsleep());
    EXPECT_TRUE(pixi->SetSleep(true));
    EXPECT_TRUE(plain.IsAsleep());
    EXPECT_TRUE(pixi->SetSleep(false));
    EXPECT_FALSE(plain.IsAsleep());
    EXPECT_THAT(plain.GetLog(), ElementsAre(Report::Output(Report::SetSleep{1}),
                                            Report::Output(Report::SetSleep{0})));
}

TEST_F(WingOutputs, OfAFailingWingAreRefused)
{
    plain.SetFailing(true);
    EXPECT_FALSE(pixi->SetSleep(true));
    EXPECT_FALSE(pixi->RefreshState());
    EXPECT_FALSE(pixi->Beacon());
    EXPECT_FALSE(pixi->SetAllLcdBrightness(1));
    EXPECT_FALSE(pixi->SetDimmer(UmWing::DimmerIndex_Leds, 1));
    EXPECT_FALSE(plain.IsAsleep());
    EXPECT_THAT(plain.GetLog(), IsEmpty());
}

} // namespace
