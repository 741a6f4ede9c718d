// SPDX-License-Identifier: MIT
#include "standalone/wing_table.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <set>

#include "widget/model_rows.h"

using Standalone::FindWingModel;
using Standalone::GetWingModel;
using Standalone::GetWingModels;
using TestSupport::GetModelRows;
using TestSupport::ModelRow;

namespace
{

TEST(WingTable, HasARowForEachOfFifteenClasses)
{
    ASSERT_EQ(GetModelRows().size(), 15u);
    ASSERT_EQ(GetWingModels().size(), 15u);
    for (std::size_t row = 0; row < 15; ++row)
        EXPECT_EQ(GetWingModels()[row].classId, GetModelRows()[row].classId) << row;
}

TEST(WingTable, FindsAClassByItsIdentifier)
{
    for (const ModelRow& row : GetModelRows())
        EXPECT_EQ(GetWingModel(*row.classId).classId, row.classId) << row.name;
}

TEST(WingTable, FindsAClassByItsName)
{
    for (const ModelRow& row : GetModelRows()) {
        const Hardware::WingModel* const model = FindWingModel(row.name);
        ASSERT_NE(model, nullptr) << row.name;
        EXPECT_EQ(model, &GetWingModel(*row.classId)) << row.name;
        EXPECT_EQ(model->name, row.name);
    }
}

TEST(WingTable, FindsNothingByAnUnknownName)
{
    for (const char* name : {"", "playbackwing", "PlaybackWing ", "Vex4Wing", "UmWing"})
        EXPECT_EQ(FindWingModel(name), nullptr) << name;
}

TEST(WingTable, TellsTheKindOfEveryClassWithAKey)
{
    for (const ModelRow& row : GetModelRows())
        EXPECT_EQ(GetWingModel(*row.classId).kind, row.kind) << row.name;
}

TEST(WingTable, TellsProductsApart)
{
    for (const ModelRow& row : GetModelRows())
        EXPECT_EQ(GetWingModel(*row.classId).productId, row.productId) << row.name;
}

TEST(WingTable, KnowsTheSectionsOfTheFrontPanel)
{
    for (const ModelRow& row : GetModelRows())
        EXPECT_EQ(GetWingModel(*row.classId).isFrontPanel, row.isFrontPanel) << row.name;
}

TEST(WingTable, KnowsTheMastersOfASection)
{
    for (const ModelRow& row : GetModelRows())
        EXPECT_EQ(GetWingModel(*row.classId).mastersPerSection, row.mastersPerSection) << row.name;
}

TEST(WingTable, HasSectionsWhereItHasMasters)
{
    for (const Hardware::WingModel& model : GetWingModels()) {
        EXPECT_EQ(model.sections > 0, model.mastersPerSection > 0) << model.name;
        EXPECT_EQ(model.faders.size(),
                  static_cast<std::size_t>(model.sections * model.mastersPerSection))
            << model.name;
    }
}

TEST(WingTable, OnlyTheKeystoneHasTwoSections)
{
    for (const Hardware::WingModel& model : GetWingModels())
        EXPECT_EQ(model.sections == 2, model.name == "Vex4Keystone") << model.name;
}

TEST(WingTable, GivesLedsTheNumbersOfTheirButtons)
{
    for (const Hardware::WingModel& model : GetWingModels())
        EXPECT_EQ(model.buttons, model.leds) << model.name;
}

TEST(WingTable, GivesNoNumberTwice)
{
    for (const Hardware::WingModel& model : GetWingModels())
        for (const auto* map : {&model.buttons, &model.faders, &model.encoders, &model.lcds})
            EXPECT_EQ(std::set(map->begin(), map->end()).size(), map->size()) << model.name;
}

TEST(WingTable, GivesLampsOfTheDeskToItsPanelsOnly)
{
    using testing::AnyOf;
    using testing::ElementsAre;
    for (const Hardware::WingModel& model : GetWingModels()) {
        const auto& lights = model.dimmers;
        if (model.isFrontPanel)
            EXPECT_THAT(lights,
                        AnyOf(ElementsAre(1, 3, 4, 5, 9), ElementsAre(1, 3, 4, 5, 6, 7, 8, 9)))
                << model.name;
        else
            EXPECT_THAT(lights, AnyOf(ElementsAre(), ElementsAre(1, 4), ElementsAre(1, 2, 4)))
                << model.name;
        EXPECT_EQ(testing::Value(lights, testing::Contains(2)), model.name == "ProgrammerWing");
        EXPECT_EQ(testing::Value(lights, testing::Contains(6)), model.name == "Vex4DeskProgrammer");
    }
}

TEST(WingTable, LeavesNoIndexAsItIs)
{
    for (const Hardware::WingModel& model : GetWingModels()) {
        for (const auto* map : {&model.buttons, &model.faders, &model.encoders, &model.lcds}) {
            for (std::size_t index = 0; index < map->size(); ++index) {
                const auto& [pid, mid] = (*map)[index];
                EXPECT_FALSE(pid == index && (mid == 0 || mid == index)) << model.name << index;
                EXPECT_FALSE(pid == 0 && mid == index) << model.name << index;
            }
        }
    }
}

TEST(WingTable, OnlyTheDeskPlaybackHasTheDrawerSwitch)
{
    for (const Hardware::WingModel& model : GetWingModels()) {
        const bool hasSwitch = testing::Value(
            model.buttons, testing::Contains(std::pair<unsigned short, unsigned short>(75, 0)));
        EXPECT_EQ(hasSwitch, model.name == "Vex4DeskPlayback") << model.name;
    }
}

TEST(WingTable, NumbersButtonsWithoutMasterFromOneHundred)
{
    const auto& buttons = FindWingModel("PlaybackWing")->buttons;
    ASSERT_EQ(buttons.size(), 70u);
    for (unsigned short index = 50; index < 70; ++index)
        EXPECT_EQ(buttons[index], std::make_pair(static_cast<unsigned short>(100 + index),
                                                 static_cast<unsigned short>(65535)));
}

} // namespace
