// SPDX-License-Identifier: MIT
#include "widget/widget_map_data.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "desk/widget_bus.h"
#include "widget/um_wing.h"
#include "widget/widget_facts.h"
#include "widget/widget_signaller.h"
#include "widget/wings.h"

using Hardware::PlaybackWing;
using Hardware::UmWidget;
using Hardware::WidgetMapData;
using TestSupport::GetMapData;

namespace
{

class MapData : public testing::Test
{
protected:
    Desk::WidgetBus bus;
    Desk::VirtualWidget& widget = bus.Add({"PlaybackWing", 7, L"a"});
    WidgetMapData mapData = GetMapData(widget);
};

TEST_F(MapData, ByItselfStandsForNothing)
{
    WidgetMapData nothing;
    EXPECT_EQ(nothing.GetClassId(), nullptr);
    EXPECT_EQ(nothing.GetDevicePath(), L"");
    EXPECT_FALSE(nothing.Open());
    EXPECT_FALSE(nothing.Close());
    EXPECT_FALSE(nothing.StopReader());
}

TEST_F(MapData, KnowsItsClassAndItsPlace)
{
    EXPECT_EQ(mapData.GetClassId(), &GUID_DEVINTERFACE_QRTUMPLAYBACKWING);
    EXPECT_EQ(mapData.GetDevicePath(), L"a");
}

TEST_F(MapData, ACopyReachesTheSameDevice)
{
    WidgetMapData copy = mapData;
    EXPECT_TRUE(copy.Open());
    EXPECT_EQ(widget.CountOpen(), 1);
    EXPECT_TRUE(mapData.Close());
    EXPECT_EQ(widget.CountOpen(), 0);
    EXPECT_FALSE(copy.Close());
}

TEST_F(MapData, RecordsOfOneDeviceAreEquivalent)
{
    const WidgetMapData again = GetMapData(widget);
    EXPECT_FALSE(again < mapData);
    EXPECT_FALSE(mapData < again);
    EXPECT_TRUE(UmWidget::IsMapDataEqual(mapData, again));
}

TEST_F(MapData, OpensOnce)
{
    EXPECT_EQ(widget.CountOpen(), 0);
    EXPECT_TRUE(mapData.Open());
    EXPECT_TRUE(mapData.Open());
    EXPECT_EQ(widget.CountOpen(), 1);
    EXPECT_EQ(widget.CountOpened(), 1);
}

TEST_F(MapData, ClosesOnce)
{
    EXPECT_FALSE(mapData.Close());
    mapData.Open();
    mapData.Open();
    EXPECT_TRUE(mapData.Close());
    EXPECT_FALSE(mapData.Close());
}

TEST_F(MapData, StaysOpenWhenTheLastObjectGoes)
{
    mapData.Open();
    TestSupport::Open<PlaybackWing>(widget).reset();
    EXPECT_EQ(widget.CountOpen(), 1);
    EXPECT_TRUE(mapData.Close());
}

TEST_F(MapData, ObjectsShareOneConnection)
{
    auto first = TestSupport::Open<PlaybackWing>(widget);
    auto second = TestSupport::Open<PlaybackWing>(widget);
    EXPECT_EQ(widget.CountOpen(), 1);
    first.reset();
    EXPECT_EQ(widget.CountOpen(), 1);
    second.reset();
    EXPECT_EQ(widget.CountOpen(), 0);
    EXPECT_EQ(widget.CountOpened(), 1);
}

TEST_F(MapData, AnObjectOpensADeviceAnewThatWasClosed)
{
    const auto wing = TestSupport::Open<PlaybackWing>(widget);
    EXPECT_TRUE(mapData.Close());
    EXPECT_EQ(widget.CountOpen(), 0);
    EXPECT_TRUE(wing->Beacon());
    EXPECT_EQ(widget.CountOpen(), 1);
    EXPECT_EQ(widget.CountOpened(), 2);
}

TEST_F(MapData, StoppingTheReaderTellsWhetherOneRan)
{
    Hardware::WidgetSignaller signaller(&Hardware::UmWing::WingReader);
    EXPECT_FALSE(mapData.StopReader());
    signaller.SetAutoReadRegister(true);
    signaller.RegisterWidgetClass(&GUID_DEVINTERFACE_QRTUMPLAYBACKWING);
    EXPECT_TRUE(mapData.StopReader());
    EXPECT_FALSE(mapData.StopReader());
    EXPECT_EQ(widget.CountOpen(), 0);
}

TEST_F(MapData, StoppingTheReaderClosesNothingThatIsInUse)
{
    Hardware::WidgetSignaller signaller(&Hardware::UmWing::WingReader);
    signaller.SetAutoReadRegister(true);
    signaller.RegisterWidgetClass(&GUID_DEVINTERFACE_QRTUMPLAYBACKWING);
    mapData.Open();
    mapData.StopReader();
    EXPECT_EQ(widget.CountOpen(), 1);
}

TEST_F(MapData, ClosingStopsTheReader)
{
    Hardware::WidgetSignaller signaller(&Hardware::UmWing::WingReader);
    signaller.SetAutoReadRegister(true);
    signaller.RegisterWidgetClass(&GUID_DEVINTERFACE_QRTUMPLAYBACKWING);
    EXPECT_TRUE(mapData.Close());
    EXPECT_FALSE(mapData.StopReader());
}

TEST_F(MapData, ADetachedDeviceIsClosedAndCannotBeOpened)
{
    mapData.Open();
    widget.Unplug();
    EXPECT_EQ(widget.CountOpen(), 0);
    EXPECT_FALSE(mapData.Open());
    EXPECT_FALSE(mapData.Close());
    EXPECT_EQ(mapData.GetDevicePath(), L"a");
    EXPECT_EQ(mapData.GetClassId(), &GUID_DEVINTERFACE_QRTUMPLAYBACKWING);
}

TEST_F(MapData, ADetachedDeviceStaysSoWhenAnotherTakesItsPlace)
{
    widget.Unplug();
    widget.Plug();
    EXPECT_FALSE(mapData.Open());
    EXPECT_TRUE(GetMapData(widget).Open());
}

TEST_F(MapData, AnObjectOnADetachedDeviceDoesNothing)
{
    const auto wing = TestSupport::Open<PlaybackWing>(widget);
    widget.Unplug();
    EXPECT_FALSE(wing->Beacon());
    EXPECT_FALSE(wing->SetSleep(true));
    EXPECT_FALSE(wing->RefreshState());
    EXPECT_FALSE(wing->SetAllLed(Hardware::UmWing::LedState_On));
    EXPECT_FALSE(wing->SetDimmer(Hardware::UmWing::DimmerIndex_Leds, 5));
    EXPECT_EQ(widget.CountOpen(), 0);
    EXPECT_THAT(widget.GetLog(), testing::IsEmpty());
}

TEST_F(MapData, AnObjectOnNoDeviceDoesNothing)
{
    PlaybackWing wing{WidgetMapData()};
    EXPECT_FALSE(wing.Beacon());
    EXPECT_FALSE(wing.SetLed(70, 1, Hardware::UmWing::LedState_On));
    EXPECT_EQ(wing.GetButtonState(0), -1);
    EXPECT_EQ(wing.SerialNumber(), 0u);
    EXPECT_EQ(wing.GetMapData().GetClassId(), nullptr);
    EXPECT_TRUE(wing.IsMapDataEqual(WidgetMapData()));
    EXPECT_FALSE(wing.IsMapDataEqual(mapData));
}

TEST_F(MapData, AnObjectMayOutliveTheBus)
{
    std::unique_ptr<PlaybackWing> wing;
    {
        Desk::WidgetBus another;
        wing = TestSupport::Open<PlaybackWing>(another.Add({"PlaybackWing", 9, L"b"}));
        EXPECT_TRUE(wing->Beacon());
    }
    EXPECT_FALSE(wing->Beacon());
    EXPECT_EQ(wing->SerialNumber(), 9u);
}

TEST_F(MapData, AnObjectKnowsItsRecordAndItsSerialNumber)
{
    const auto wing = TestSupport::Open<PlaybackWing>(widget);
    EXPECT_TRUE(wing->IsMapDataEqual(mapData));
    EXPECT_EQ(wing->SerialNumber(), 7u);
    EXPECT_EQ(TestSupport::Open<PlaybackWing>(bus.Add({"PlaybackWing", {}, L"b"}))->SerialNumber(),
              0u);
    EXPECT_EQ(
        TestSupport::Open<PlaybackWing>(bus.Add({"PlaybackWing", 65535, L"c"}))->SerialNumber(),
        65535u);
}

TEST(MapDataOrder, GoesByThePathAndThenByThePlaceOfTheClass)
{
    std::vector<WidgetMapData> sorted{WidgetMapData()};
    for (const wchar_t* const path : {L"a", L"ab", L"b"}) {
        for (const char* const model :
             {"PlaybackWing", "ExpansionWing", "Vex4Petite", "LtcWidget"}) {
            Desk::WidgetBus bus;
            sorted.push_back(GetMapData(bus.Add({model, 1, path})));
        }
    }
    for (std::size_t left = 0; left < sorted.size(); ++left)
        for (std::size_t right = 0; right < sorted.size(); ++right)
            EXPECT_EQ(sorted[left] < sorted[right], left < right) << left << " " << right;
}

TEST(MapDataOrder, EqualityNeedsThePathAndTheClass)
{
    std::vector<WidgetMapData> different;
    for (const wchar_t* const path : {L"a", L"b"}) {
        for (const char* const model : {"PlaybackWing", "ExpansionWing"}) {
            Desk::WidgetBus bus;
            different.push_back(GetMapData(bus.Add({model, 1, path})));
        }
    }
    for (std::size_t left = 0; left < different.size(); ++left)
        for (std::size_t right = 0; right < different.size(); ++right)
            EXPECT_EQ(UmWidget::IsMapDataEqual(different[left], different[right]), left == right);
}

} // namespace
