// SPDX-License-Identifier: MIT
#include "common/wing_reach.h"

#include <gmock/gmock.h>

#include "common/wing_name.h"

namespace
{

using Tools::ParseWingKey;

const std::uint32_t Keystone = ParseWingKey("Vex4Keystone/1");

} // namespace

TEST(WingReach, HasNoProblemWithWhatAWingHas)
{
    EXPECT_EQ(Tools::FindLedProblem(Keystone, 70, 1), "");
    EXPECT_EQ(Tools::FindLedProblem(Keystone, 54, 20), "");
    EXPECT_EQ(Tools::FindLedProblem(Keystone, 200, 65535), "");
    EXPECT_EQ(Tools::FindAllLedsProblem(Keystone), "");
    EXPECT_EQ(Tools::FindLedSectionProblem(Keystone, 1), "");
    EXPECT_EQ(Tools::FindLedSectionProblem(ParseWingKey("PlaybackWing/1"), 0), "");
    EXPECT_EQ(Tools::FindFaderProblem(Keystone, 20), "");
    EXPECT_EQ(Tools::FindBeaconProblem(Keystone), "");
}

TEST(WingReach, NamesWhatAWingHasInstead)
{
    EXPECT_EQ(Tools::FindLedProblem(Keystone, 73, 1),
              "Vex4Keystone/1 has no LED of part 73 and master 1; there are parts 54, 70 to 72, "
              "74 with masters 1 to 20; parts 200 to 259 with master 65535");
    EXPECT_EQ(Tools::FindLedSectionProblem(Keystone, 2),
              "Vex4Keystone/1 has no section 2; the last one is 1");
    EXPECT_EQ(Tools::FindLedSectionProblem(Keystone, -1),
              "Vex4Keystone/1 has no section -1; the last one is 1");
    EXPECT_EQ(Tools::FindFaderProblem(Keystone, 0),
              "Vex4Keystone/1 has no motor fader of master 0; there are masters 1 to 20");
}

TEST(WingReach, LeavesUnknownModelsToTheWing)
{
    constexpr std::uint32_t Unknown = 0x990001;
    EXPECT_EQ(Tools::FindLedProblem(Unknown, 1, 1), "");
    EXPECT_EQ(Tools::FindLedSectionProblem(Unknown, 1), "");
    EXPECT_EQ(Tools::FindFaderProblem(Unknown, 1), "");
}
