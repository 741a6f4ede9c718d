// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include "standalone/wing_table.h"
#include "widget/model_rows.h"
#include "widget/widget_factory.h"
#include "widget/widget_facts.h"

using Hardware::UmWing;
using Hardware::WingModel;
using TestSupport::GetModelRows;
using TestSupport::ModelRow;

namespace
{

typedef UmWing::MapDef MapDef;

constexpr unsigned short BeyondAll = 1000;

MapDef MakeDef(unsigned pid, unsigned mid)
{
    return {static_cast<unsigned short>(pid), static_cast<unsigned short>(mid)};
}

unsigned short Last(const WingModel::Map& map)
{
    return static_cast<unsigned short>(map.size());
}

class WingMaps : public testing::Test
{
protected:
    /// Calls @p check with each kind of wing and its model.
    template <class Check> void ForEachWing(Check check)
    {
        for (const ModelRow& row : GetModelRows()) {
            if (row.productId == 0)
                continue;
            SCOPED_TRACE(row.name);
            unsigned long key = 0;
            const std::unique_ptr<Hardware::UmWidget> made(Hardware::WidgetFactory::Get().Create(
                TestSupport::GetMapData(bus.Add({row.name, 1, {}})), key));
            check(dynamic_cast<const UmWing&>(*made), *Standalone::FindWingModel(row.name));
        }
    }

    Desk::WidgetBus bus;
};

TEST_F(WingMaps, TellWhatTheModelTells)
{
    ForEachWing([](const UmWing& wing, const WingModel& model) {
        for (unsigned short index = 0; index < model.buttons.size(); ++index) {
            EXPECT_EQ(wing.GetButtonMapDef(index), model.buttons[index]) << index;
            EXPECT_EQ(wing.GetLedMapDef(index), model.leds[index]) << index;
        }
        for (unsigned short index = 0; index < model.faders.size(); ++index)
            EXPECT_EQ(wing.GetFaderMapDef(index), model.faders[index]) << index;
        for (unsigned short index = 0; index < model.encoders.size(); ++index)
            EXPECT_EQ(wing.GetEncoderMapDef(index), model.encoders[index]) << index;
        for (unsigned short index = 0; index < model.lcds.size(); ++index)
            EXPECT_EQ(wing.GetLcdMapDef(index), model.lcds[index]) << index;
    });
}

TEST_F(WingMaps, NumberButtonsAndLedsBeyondTheLastFromOneHundred)
{
    ForEachWing([](const UmWing& wing, const WingModel& model) {
        for (const unsigned short index : {Last(model.buttons), BeyondAll}) {
            EXPECT_EQ(wing.GetButtonMapDef(index), MakeDef(100u + index, 65535));
            EXPECT_EQ(wing.GetLedMapDef(index), MakeDef(100u + index, 65535));
        }
    });
}

TEST_F(WingMaps, NumberEncodersBeyondTheLastFromTwoHundred)
{
    ForEachWing([](const UmWing& wing, const WingModel& model) {
        for (const unsigned short index : {Last(model.encoders), BeyondAll})
            EXPECT_EQ(wing.GetEncoderMapDef(index), MakeDef(200u + index, 0));
    });
}

TEST_F(WingMaps, KnowNoFadersAndDisplaysBeyondTheLast)
{
    ForEachWing([](const UmWing& wing, const WingModel& model) {
        for (const unsigned short index : {Last(model.faders), BeyondAll})
            EXPECT_EQ(wing.GetFaderMapDef(index), MakeDef(0, 0));
        for (const unsigned short index : {Last(model.lcds), BeyondAll})
            EXPECT_EQ(wing.GetLcdMapDef(index), MakeDef(0, 0));
    });
}

TEST_F(WingMaps, LeadBackToTheIndex)
{
    ForEachWing([](const UmWing& wing, const WingModel& model) {
        for (unsigned short index = 0; index < model.buttons.size(); ++index) {
            const MapDef def = wing.GetButtonMapDef(index);
            EXPECT_EQ(wing.GetButtonIndex(def.first, def.second), index);
            EXPECT_EQ(wing.GetLedIndex(def.first, def.second), index);
        }
    });
}

TEST_F(WingMaps, LeadNowhereFromAnUnknownPartOrMaster)
{
    ForEachWing([](const UmWing& wing, const WingModel& model) {
        for (const MapDef& def :
             {MakeDef(0, 0), MakeDef(70, 0), MakeDef(70, 21), MakeDef(65535, 65535),
              MakeDef(100, 0), MakeDef(100u + Last(model.buttons), 65535)}) {
            EXPECT_EQ(wing.GetButtonIndex(def.first, def.second), -1);
            EXPECT_EQ(wing.GetLedIndex(def.first, def.second), -1);
        }
    });
}

TEST_F(WingMaps, HaveMetricsOfTheirModelAndNoOthers)
{
    ForEachWing([](const UmWing& wing, const WingModel& model) {
        EXPECT_EQ(wing.GetWingMetric(UmWing::WingMetric_Sections), model.sections);
        EXPECT_EQ(wing.GetWingMetric(UmWing::WingMetric_MastersPerSection),
                  model.mastersPerSection);
        EXPECT_EQ(wing.GetWingMetric(static_cast<UmWing::WingMetric>(2)), 0);
        EXPECT_EQ(wing.GetWingMetric(static_cast<UmWing::WingMetric>(77)), 0);
    });
}

} // namespace
