// SPDX-License-Identifier: MIT
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "desk/widget_bus.h"
#include "widget/model_rows.h"
#include "widget/widget_factory.h"
#include "widget/widget_facts.h"

using Hardware::UmWing;
using testing::ElementsAre;
using testing::IsEmpty;
using TestSupport::GetModelRows;
using TestSupport::ModelRow;

namespace
{

class WingBeacon : public testing::Test
{
protected:
    /// Calls @p check with an object and its virtual widget, for each model that has an object.
    template <class Check> void ForEachWidget(Check check)
    {
        for (const ModelRow& row : GetModelRows()) {
            if (!row.type)
                continue;
            SCOPED_TRACE(row.name);
            auto& widget = bus.Add({row.name, 1, {}});
            unsigned long key = 0;
            const std::unique_ptr<Hardware::UmWidget> made(
                Hardware::WidgetFactory::Get().Create(TestSupport::GetMapData(widget), key));
            check(*made, widget);
        }
    }

    Desk::WidgetBus bus;
};

TEST_F(WingBeacon, EveryWidgetIdentifiesItselfAsAWhole)
{
    ForEachWidget([](Hardware::UmWidget& made, const Desk::VirtualWidget& widget) {
        EXPECT_TRUE(made.Beacon());
        EXPECT_THAT(widget.GetBeacons(), ElementsAre(0));
    });
}

TEST_F(WingBeacon, OnlyTwoModelsIdentifyTheirSections)
{
    ForEachWidget([](Hardware::UmWidget& made, const Desk::VirtualWidget& widget) {
        auto* const wing = dynamic_cast<UmWing*>(&made);
        if (!wing)
            return;
        wing->BeaconSection(UmWing::WingSections_All);
        wing->BeaconSection(UmWing::WingSections_Left);
        wing->BeaconSection(UmWing::WingSections_Right);
        wing->BeaconSection(UmWing::WingSections_Centre);
        const std::string& name = widget.GetModel().name;
        if (name == "ExpansionWing" || name == "Vex4Keystone")
            EXPECT_THAT(widget.GetBeacons(), ElementsAre(0, 1, 2, 3));
        else
            EXPECT_THAT(widget.GetLog(), IsEmpty());
    });
}

TEST_F(WingBeacon, ADetachedWidgetDoesNotIdentifyItself)
{
    ForEachWidget([](Hardware::UmWidget& made, Desk::VirtualWidget& widget) {
        widget.Unplug();
        EXPECT_FALSE(made.Beacon());
        if (auto* const wing = dynamic_cast<UmWing*>(&made))
            wing->BeaconSection(UmWing::WingSections_Left);
        EXPECT_THAT(widget.GetBeacons(), IsEmpty());
    });
}

} // namespace
