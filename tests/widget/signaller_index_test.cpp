// SPDX-License-Identifier: MIT
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "desk/widget_bus.h"
#include "widget/signal_log.h"
#include "widget/widget_facts.h"
#include "widget/widget_signaller.h"

using Hardware::WidgetMapData;
using Hardware::WidgetSignaller;
using testing::ElementsAre;
using TestSupport::GetMapData;

namespace
{

constexpr const GUID* Playback = &GUID_DEVINTERFACE_QRTUMPLAYBACKWING;
constexpr const GUID* Programmer = &GUID_DEVINTERFACE_QRTUMPROGRAMMERWING;

std::vector<std::string> ListActive(const WidgetSignaller& signaller)
{
    std::vector<std::string> paths;
    for (const WidgetMapData& mapData : signaller.GetActiveWidgets())
        paths.push_back(TestSupport::GetPathText(mapData));
    return paths;
}

TEST(SignallerIndex, CountsInTheOrderOfAppearance)
{
    Desk::WidgetBus bus;
    WidgetSignaller signaller;
    signaller.RegisterWidgetClass(Playback);
    const auto& b = bus.Add({"PlaybackWing", 1, L"b"});
    const auto& a = bus.Add({"PlaybackWing", 2, L"a"});
    EXPECT_EQ(signaller.GetWidgetIndex(GetMapData(b)), 0);
    EXPECT_EQ(signaller.GetWidgetIndex(GetMapData(a)), 1);
}

TEST(SignallerIndex, IsTheLowestThatIsFree)
{
    Desk::WidgetBus bus;
    WidgetSignaller signaller;
    signaller.RegisterWidgetClass(Playback);
    auto& a = bus.Add({"PlaybackWing", 1, L"a"});
    auto& b = bus.Add({"PlaybackWing", 2, L"b"});
    auto& c = bus.Add({"PlaybackWing", 3, L"c"});
    b.Unplug();
    EXPECT_EQ(signaller.GetWidgetIndex(GetMapData(bus.Add({"PlaybackWing", 4, L"d"}))), 1);
    c.Unplug();
    a.Unplug();
    EXPECT_EQ(signaller.GetWidgetIndex(GetMapData(bus.Add({"PlaybackWing", 5, L"e"}))), 0);
    EXPECT_EQ(signaller.GetWidgetIndex(GetMapData(bus.Add({"PlaybackWing", 6, L"f"}))), 2);
    EXPECT_EQ(signaller.GetWidgetIndex(GetMapData(bus.Add({"PlaybackWing", 7, L"g"}))), 3);
    EXPECT_THAT(ListActive(signaller), ElementsAre("e", "d", "f", "g"));
}

TEST(SignallerIndex, IsCountedOverAllClasses)
{
    Desk::WidgetBus bus;
    const auto& playback = bus.Add({"PlaybackWing", 1, L"b"});
    const auto& programmer = bus.Add({"ProgrammerWing", 2, L"a"});
    WidgetSignaller signaller;
    signaller.RegisterWidgetClass(Playback);
    signaller.RegisterWidgetClass(Programmer);
    EXPECT_EQ(signaller.GetWidgetIndex(GetMapData(playback)), 0);
    EXPECT_EQ(signaller.GetWidgetIndex(GetMapData(programmer)), 1);
    EXPECT_THAT(ListActive(signaller), ElementsAre("b", "a"));
}

TEST(SignallerIndex, IsEverySignallersOwn)
{
    Desk::WidgetBus bus;
    const auto& playback = bus.Add({"PlaybackWing", 1, L"a"});
    const auto& programmer = bus.Add({"ProgrammerWing", 2, L"b"});
    WidgetSignaller both, one;
    both.RegisterWidgetClass(Playback);
    both.RegisterWidgetClass(Programmer);
    one.RegisterWidgetClass(Programmer);
    EXPECT_EQ(both.GetWidgetIndex(GetMapData(programmer)), 1);
    EXPECT_EQ(one.GetWidgetIndex(GetMapData(programmer)), 0);
    EXPECT_EQ(one.GetWidgetIndex(GetMapData(playback)), -1);
}

TEST(SignallerIndex, LeadsToTheWidget)
{
    Desk::WidgetBus bus;
    bus.Add({"PlaybackWing", 1, L"a"});
    bus.Add({"PlaybackWing", 2, L"b"});
    WidgetSignaller signaller;
    signaller.RegisterWidgetClass(Playback);
    EXPECT_EQ(signaller.GetWidget(0).GetDevicePath(), L"a");
    EXPECT_EQ(signaller.GetWidget(1).GetDevicePath(), L"b");
    EXPECT_EQ(signaller.GetWidget(1).GetClassId(), Playback);
}

TEST(SignallerIndex, LeadsNowhereWhenFree)
{
    Desk::WidgetBus bus;
    auto& a = bus.Add({"PlaybackWing", 1, L"a"});
    bus.Add({"PlaybackWing", 2, L"b"});
    WidgetSignaller signaller;
    signaller.RegisterWidgetClass(Playback);
    a.Unplug();
    for (const int index : {-1, 0, 2, 1000, std::numeric_limits<int>::min()})
        EXPECT_EQ(signaller.GetWidget(index).GetClassId(), nullptr) << index;
}

TEST(SignallerIndex, IsUnknownForNoDevice)
{
    Desk::WidgetBus bus;
    bus.Add({"PlaybackWing", 1, L"a"}).Unplug();
    WidgetSignaller signaller;
    signaller.RegisterWidgetClass(Playback);
    EXPECT_EQ(signaller.GetWidgetIndex(WidgetMapData()), -1);
}

TEST(SignallerIndex, IsKnownInTheSlotOfAnAddition)
{
    Desk::WidgetBus bus;
    WidgetSignaller signaller;
    int index = -1;
    QObject::connect(&signaller, &WidgetSignaller::widgetAdded,
                     [&](const auto& mapData) { index = signaller.GetWidgetIndex(mapData); });
    signaller.RegisterWidgetClass(Playback);
    bus.Add({"PlaybackWing", 1, L"a"});
    EXPECT_EQ(index, 0);
    bus.Add({"PlaybackWing", 2, L"b"});
    EXPECT_EQ(index, 1);
}

TEST(SignallerIndex, IsStillKnownInTheSlotOfARemoval)
{
    Desk::WidgetBus bus;
    bus.Add({"PlaybackWing", 1, L"a"});
    auto& b = bus.Add({"PlaybackWing", 2, L"b"});
    WidgetSignaller signaller;
    int index = -1, count = -1;
    std::wstring path;
    QObject::connect(&signaller, &WidgetSignaller::widgetRemoved, [&](const auto& mapData) {
        index = signaller.GetWidgetIndex(mapData);
        path = signaller.GetWidget(index).GetDevicePath();
        count = signaller.GetActiveWidgetCount();
    });
    signaller.RegisterWidgetClass(Playback);
    const WidgetMapData mapData = GetMapData(b);
    b.Unplug();
    EXPECT_EQ(index, 1);
    EXPECT_EQ(path, L"b");
    EXPECT_EQ(count, 2);
    EXPECT_EQ(signaller.GetWidgetIndex(mapData), -1);
    EXPECT_EQ(signaller.GetActiveWidgetCount(), 1);
}

TEST(SignallerIndex, IsFoundWithARecordOfTheSamePlaceAndClass)
{
    Desk::WidgetBus bus;
    auto& a = bus.Add({"PlaybackWing", 1, L"a"});
    WidgetSignaller signaller;
    signaller.RegisterWidgetClass(Playback);
    const WidgetMapData before = GetMapData(a);
    a.Unplug();
    a.Plug();
    EXPECT_EQ(signaller.GetWidgetIndex(before), 0);
}

} // namespace
