// SPDX-License-Identifier: MIT
#include "widget/widget_factory.h"

#include <gtest/gtest.h>

#include "desk/widget_bus.h"
#include "widget/model_rows.h"
#include "widget/widget_facts.h"

using Hardware::UmWidget;
using Hardware::UmWing;
using Hardware::WidgetFactory;
using Hardware::WidgetMapData;
using TestSupport::GetMapData;
using TestSupport::GetModelRows;
using TestSupport::ModelRow;

namespace
{

constexpr unsigned long Untouched = 0x123456789;

TEST(WidgetFactory, IsOne)
{
    EXPECT_EQ(&WidgetFactory::Get(), &WidgetFactory::Get());
}

TEST(WidgetFactory, MakesTheObjectOfTheClass)
{
    Desk::WidgetBus bus;
    for (const ModelRow& row : GetModelRows()) {
        if (!row.type)
            continue;
        unsigned long key = Untouched;
        const std::unique_ptr<UmWidget> widget(
            WidgetFactory::Get().Create(GetMapData(bus.Add({row.name, 1, {}})), key));
        ASSERT_NE(widget, nullptr) << row.name;
        const UmWidget& made = *widget;
        EXPECT_EQ(typeid(made), *row.type) << row.name;
    }
}

TEST(WidgetFactory, MakesAKeyOfKindAndSerialNumber)
{
    Desk::WidgetBus bus;
    for (const ModelRow& row : GetModelRows()) {
        if (!row.type)
            continue;
        for (const unsigned serial : {0u, 1u, 0x1234u, 65535u}) {
            const auto& widget = bus.Add({row.name, static_cast<std::uint16_t>(serial), {}});
            unsigned long key = Untouched;
            const std::unique_ptr<UmWidget> made(
                WidgetFactory::Get().Create(GetMapData(widget), key));
            EXPECT_EQ(key, row.kind.value() * 0x10000UL + serial) << row.name;
            EXPECT_EQ(widget.GetKey(), key) << row.name;
        }
    }
}

TEST(WidgetFactory, GivesNoKeyWithoutSerialNumber)
{
    Desk::WidgetBus bus;
    for (const ModelRow& row : GetModelRows()) {
        if (!row.type)
            continue;
        const auto& widget = bus.Add({row.name, {}, {}});
        unsigned long key = Untouched;
        const std::unique_ptr<UmWidget> made(WidgetFactory::Get().Create(GetMapData(widget), key));
        ASSERT_NE(made, nullptr) << row.name;
        EXPECT_EQ(key, 0xFFFFFFFFUL) << row.name;
        EXPECT_EQ(widget.GetKey(), 0xFFFFFFFFU) << row.name;
    }
}

TEST(WidgetFactory, MakesNothingOfTheTimecodeBoard)
{
    Desk::WidgetBus bus;
    const auto& widget = bus.Add({"LtcWidget", 1, {}});
    unsigned long key = Untouched;
    EXPECT_EQ(WidgetFactory::Get().Create(GetMapData(widget), key), nullptr);
    EXPECT_EQ(key, Untouched);
    EXPECT_EQ(widget.GetKey(), 0xFFFFFFFFU);
}

TEST(WidgetFactory, MakesNothingOfNoDevice)
{
    unsigned long key = Untouched;
    EXPECT_EQ(WidgetFactory::Get().Create(WidgetMapData(), key), nullptr);
    EXPECT_EQ(key, Untouched);
}

TEST(WidgetFactory, MakesNothingOfADetachedDevice)
{
    Desk::WidgetBus bus;
    auto& widget = bus.Add({"PlaybackWing", 1, {}});
    const WidgetMapData mapData = GetMapData(widget);
    widget.Unplug();
    unsigned long key = Untouched;
    EXPECT_EQ(WidgetFactory::Get().Create(mapData, key), nullptr);
    EXPECT_EQ(key, Untouched);
}

TEST(WidgetFactory, MadeObjectsKnowTheirDeviceAndHoldItOpen)
{
    Desk::WidgetBus bus;
    const auto& widget = bus.Add({"PlaybackWing", 5, {}});
    unsigned long key = 0;
    std::unique_ptr<UmWidget> made(WidgetFactory::Get().Create(GetMapData(widget), key));
    EXPECT_TRUE(made->IsMapDataEqual(GetMapData(widget)));
    EXPECT_EQ(widget.CountOpen(), 1);
    made.reset();
    EXPECT_EQ(widget.CountOpen(), 0);
}

TEST(WidgetFactory, MadeWingsTellTheirModel)
{
    Desk::WidgetBus bus;
    for (const ModelRow& row : GetModelRows()) {
        if (row.productId == 0)
            continue;
        unsigned long key = 0;
        const std::unique_ptr<UmWidget> made(
            WidgetFactory::Get().Create(GetMapData(bus.Add({row.name, 1, {}})), key));
        const auto* const wing = dynamic_cast<const UmWing*>(made.get());
        ASSERT_NE(wing, nullptr) << row.name;
        EXPECT_EQ(wing->GetProductId(), row.productId) << row.name;
        EXPECT_EQ(wing->GetVendorId(), 0) << row.name;
        EXPECT_EQ(wing->IsFrontPanel(), row.isFrontPanel) << row.name;
        EXPECT_EQ(wing->GetWingMetric(UmWing::WingMetric_MastersPerSection), row.mastersPerSection)
            << row.name;
        EXPECT_EQ(wing->GetCallbackFunc(), &UmWing::WingReader) << row.name;
    }
}

} // namespace
