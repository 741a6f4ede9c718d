// SPDX-License-Identifier: MIT
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "desk/widget_bus.h"
#include "standalone/wing_table.h"
#include "widget/model_rows.h"
#include "widget/widget_facts.h"
#include "widget/wings.h"

using Hardware::Vex4ExternalPlayback;
using testing::ElementsAre;
using testing::IsEmpty;
using TestSupport::Open;

namespace Report = Standalone::Report;

namespace
{

/// A next-generation wing that adds nothing to the base.
class BareWing final : public Hardware::UmVexNextWing
{
public:
    explicit BareWing(const Hardware::WidgetMapData& mapData)
        : UmVexNextWing(mapData, GUID_DEVINTERFACE_QRTUMVNEXT_EXTERNAL_PLAYBACKWING)
    {
    }
};

class WingDisplays : public testing::Test
{
protected:
    Desk::WidgetBus bus;
    Desk::VirtualWidget& widget = bus.Add({"Vex4ExternalPlayback", 1, L"a"});
    const std::unique_ptr<Vex4ExternalPlayback> wing = Open<Vex4ExternalPlayback>(widget);
};

TEST_F(WingDisplays, AreCounted)
{
    EXPECT_EQ(wing->GetLcdMetric(), 10);
    EXPECT_EQ(Open<Hardware::Vex4Keystone>(bus.Add({"Vex4Keystone", 1, {}}))->GetLcdMetric(), 20);
    EXPECT_EQ(Open<Hardware::Vex4Pixi>(bus.Add({"Vex4Pixi", 1, {}}))->GetLcdMetric(), -1);
    EXPECT_EQ(Open<Hardware::Vex4Petite>(bus.Add({"Vex4Petite", 1, {}}))->GetLcdMetric(), -1);
}

TEST_F(WingDisplays, TakeColours)
{
    wing->SetLcdColor(9, 0x00123456);
    EXPECT_THAT(widget.GetLog(), ElementsAre(Report::Output(Report::SetLcdColor{9, 0x00123456})));
}

TEST_F(WingDisplays, TakeBrightness)
{
    EXPECT_EQ(widget.GetLcdBrightness(9), -1);
    wing->SetLcdBrightness(9, 255);
    EXPECT_EQ(widget.GetLcdBrightness(9), 255);
    EXPECT_EQ(widget.GetLcdBrightness(8), -1);
    EXPECT_THAT(widget.GetLog(), ElementsAre(Report::Output(Report::SetLcdBrightness{9, 255})));
}

TEST_F(WingDisplays, TakeBrightnessAllAtOnce)
{
    wing->SetLcdBrightness(3, 10);
    EXPECT_TRUE(wing->SetAllLcdBrightness(77));
    EXPECT_EQ(widget.GetLcdBrightness(3), 77);
    EXPECT_EQ(widget.GetLcdBrightness(0), 77);
    wing->SetLcdBrightness(3, 11);
    EXPECT_EQ(widget.GetLcdBrightness(3), 11);
    EXPECT_EQ(widget.GetLcdBrightness(0), 77);
}

TEST_F(WingDisplays, TakeBrightnessAllAtOnceAlsoWhereThereAreNone)
{
    auto& plain = bus.Add({"Vex4Pixi", 1, L"b"});
    EXPECT_TRUE(Open<Hardware::Vex4Pixi>(plain)->SetAllLcdBrightness(77));
    EXPECT_THAT(plain.GetLog(), ElementsAre(Report::Output(Report::SetAllLcdBrightness{77})));
}

TEST_F(WingDisplays, TakeTexts)
{
    wing->SetLcdDisplay(0, L"Grün \U0001F600");
    EXPECT_EQ(widget.GetLcdText(0), U"Grün \U0001F600");
    wing->SetLcdDisplay(0, L"B");
    EXPECT_EQ(widget.GetLcdText(0), U"B");
    EXPECT_EQ(widget.GetLcdText(1), U"");
}

TEST_F(WingDisplays, IgnoreATextThatIsNone)
{
    wing->SetLcdDisplay(0, nullptr);
    EXPECT_THAT(widget.GetLog(), IsEmpty());
}

TEST_F(WingDisplays, AreCleared)
{
    wing->SetLcdDisplay(2, L"A");
    wing->ClearLcdDisplay(2);
    EXPECT_EQ(widget.GetLcdText(2), U"");
    EXPECT_EQ(widget.GetLog().back(), Report::Output(Report::SetLcdText{2, {}}));
}

TEST_F(WingDisplays, Flash)
{
    wing->SetLcdFlash(2, true);
    wing->SetLcdFlash(2, false);
    EXPECT_THAT(widget.GetLog(), ElementsAre(Report::Output(Report::SetLcdFlash{2, 1}),
                                             Report::Output(Report::SetLcdFlash{2, 0})));
}

void SetAll(Hardware::UmVexNextWing& wing, unsigned short lcd)
{
    wing.SetLcdColor(lcd, 1);
    wing.SetLcdBrightness(lcd, 1);
    wing.SetLcdDisplay(lcd, L"A");
    wing.ClearLcdDisplay(lcd);
    wing.SetLcdFlash(lcd, true);
}

TEST_F(WingDisplays, BeyondTheLastDoNothing)
{
    SetAll(*wing, 10);
    SetAll(*wing, 65535);
    EXPECT_THAT(widget.GetLog(), IsEmpty());
    SetAll(*wing, 9);
    EXPECT_EQ(widget.GetLog().size(), 5u);
}

TEST_F(WingDisplays, OfAModelWithoutAnyDoNothing)
{
    auto& plain = bus.Add({"Vex4Pixi", 1, L"b"});
    SetAll(*Open<Hardware::Vex4Pixi>(plain), 0);
    EXPECT_THAT(plain.GetLog(), IsEmpty());
}

TEST_F(WingDisplays, OfABareWingDoNothing)
{
    BareWing bare(TestSupport::GetMapData(widget));
    EXPECT_EQ(bare.GetLcdMetric(), -1);
    SetAll(bare, 0);
    EXPECT_THAT(widget.GetLog(), IsEmpty());
}

TEST_F(WingDisplays, ABareWingHasNoMotorsAndNoHash)
{
    BareWing bare(TestSupport::GetMapData(widget));
    bare.SetFader(1, 9);
    bare.SetHash(5);
    EXPECT_EQ(bare.GetHash(), 0u);
    EXPECT_THAT(widget.GetLog(), IsEmpty());
}

TEST_F(WingDisplays, ABareWingStillTakesBrightnessAllAtOnce)
{
    EXPECT_TRUE(BareWing(TestSupport::GetMapData(widget)).SetAllLcdBrightness(3));
    EXPECT_EQ(widget.GetLcdBrightness(0), 3);
}

} // namespace
