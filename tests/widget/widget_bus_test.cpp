// SPDX-License-Identifier: MIT
#include "desk/widget_bus.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <set>
#include <stdexcept>

#include "desk/virtual_widget.h"
#include "widget/widget_facts.h"

using Desk::VirtualWidget;
using Desk::WidgetBus;
using testing::ElementsAre;
using testing::IsEmpty;

namespace
{

TEST(WidgetBus, IsEmptyAtFirst)
{
    const WidgetBus bus;
    EXPECT_THAT(bus.GetWidgets(), IsEmpty());
    EXPECT_EQ(bus.Find(L""), nullptr);
}

TEST(WidgetBus, MakesWidgetsAndPlugsThem)
{
    WidgetBus bus;
    VirtualWidget& widget = bus.Add({"Vex4Petite", 5, L"a"});
    EXPECT_TRUE(widget.IsPlugged());
    EXPECT_EQ(widget.GetData(), (Desk::WidgetData{"Vex4Petite", 5, L"a"}));
    EXPECT_EQ(widget.GetModel().name, "Vex4Petite");
}

TEST(WidgetBus, KeepsWidgetsInTheirOrderPluggedOrNot)
{
    WidgetBus bus;
    VirtualWidget& b = bus.Add({"PlaybackWing", 1, L"b"});
    VirtualWidget& a = bus.Add({"PlaybackWing", 1, L"a"});
    b.Unplug();
    EXPECT_THAT(bus.GetWidgets(), ElementsAre(&b, &a));
    EXPECT_EQ(bus.Find(L"a"), &a);
    EXPECT_EQ(bus.Find(L"b"), &b);
    EXPECT_EQ(bus.Find(L"c"), nullptr);
}

TEST(WidgetBus, RefusesAnUnknownModel)
{
    WidgetBus bus;
    for (const char* model : {"", "playbackwing", "Wing"})
        EXPECT_THROW(bus.Add({model, 1, L"a"}), std::invalid_argument) << model;
    EXPECT_THAT(bus.GetWidgets(), IsEmpty());
}

TEST(WidgetBus, RefusesAPathThatIsTaken)
{
    WidgetBus bus;
    bus.Add({"PlaybackWing", 1, L"a"}).Unplug();
    EXPECT_THROW(bus.Add({"ProgrammerWing", 2, L"a"}), std::invalid_argument);
    EXPECT_EQ(bus.GetWidgets().size(), 1u);
    EXPECT_EQ(bus.Find(L"a")->GetModel().name, "PlaybackWing");
}

TEST(WidgetBus, ChoosesFreePlaces)
{
    WidgetBus bus;
    bus.Add({"PlaybackWing", 1, L"virtual-2"});
    std::set<std::wstring> paths;
    for (int i = 0; i < 5; ++i)
        paths.insert(bus.Add({"PlaybackWing", 1, {}}).GetData().path);
    EXPECT_EQ(paths.size(), 5u);
    EXPECT_FALSE(paths.contains(L"virtual-2"));
    EXPECT_FALSE(paths.contains(L""));
}

TEST(WidgetBus, TellsWhetherAWidgetIsPlugged)
{
    WidgetBus bus;
    VirtualWidget& widget = bus.Add({"PlaybackWing", 1, L"a"});
    std::vector<bool> told;
    QObject::connect(&widget, &VirtualWidget::plugged,
                     [&](bool isPlugged) { told.push_back(isPlugged); });
    widget.Plug();
    widget.Unplug();
    EXPECT_FALSE(widget.IsPlugged());
    widget.Unplug();
    widget.Plug();
    EXPECT_TRUE(widget.IsPlugged());
    EXPECT_THAT(told, ElementsAre(false, true));
}

TEST(WidgetBus, LetsTheWidgetsGoWithIt)
{
    bool isGone = false;
    {
        WidgetBus bus;
        QObject::connect(&bus.Add({"PlaybackWing", 1, L"a"}), &QObject::destroyed,
                         [&] { isGone = true; });
    }
    EXPECT_TRUE(isGone);
}

} // namespace
