// SPDX-License-Identifier: MIT
#include "common/near_names.h"

#include <gmock/gmock.h>

#include <stdexcept>

using testing::ElementsAre;
using testing::IsEmpty;
using Tools::Names;

namespace
{

const Names Lights{"VentLight", "WorkLight", "BlueDeskLight", "WhiteDeskLight"};

std::string GetRefusal(const std::string& word, const Names& names)
{
    try {
        return "found " + Tools::ChooseName("light", word, names);
    } catch (const std::invalid_argument& error) {
        return error.what();
    }
}

} // namespace

TEST(NearNames, AWordIsTheNameThatDiffersInCaseAlone)
{
    EXPECT_EQ(Tools::FindName("WorkLight", Lights), "WorkLight");
    EXPECT_EQ(Tools::FindName("worklight", Lights), "WorkLight");
    EXPECT_EQ(Tools::FindName("work", Lights), std::nullopt);
}

TEST(NearNames, TheSameCaseDecidesAndOtherwiseTwoNamesAreAmbiguous)
{
    const Names names{"Left", "LEFT"};
    EXPECT_EQ(Tools::FindName("LEFT", names), "LEFT");
    EXPECT_EQ(Tools::FindName("left", names), std::nullopt);
}

TEST(NearNames, FewLettersMakeANearOne)
{
    EXPECT_THAT(Tools::FindNearNames("WorkLigth", Lights), ElementsAre("WorkLight")) << "swapped";
    EXPECT_THAT(Tools::FindNearNames("VentLigt", Lights), ElementsAre("VentLight")) << "missing";
    EXPECT_THAT(Tools::FindNearNames("bluedesklights", Lights), ElementsAre("BlueDeskLight"));
    EXPECT_THAT(Tools::FindNearNames("WieDeskLight", Lights),
                ElementsAre("WhiteDeskLight", "BlueDeskLight"));
    EXPECT_THAT(Tools::FindNearNames("white", Lights), ElementsAre("WhiteDeskLight")) << "begins";
    EXPECT_THAT(Tools::FindNearNames("sofa", Lights), IsEmpty());
    EXPECT_THAT(Tools::FindNearNames("", Lights), IsEmpty());
}

TEST(NearNames, ARefusalHasTheNearestAndAllThatThereAre)
{
    EXPECT_EQ(GetRefusal("ventlight", Lights), "found VentLight");
    EXPECT_EQ(GetRefusal("WorkLigth", Lights),
              "there is no light 'WorkLigth'; the nearest is WorkLight; there are VentLight, "
              "WorkLight, BlueDeskLight, WhiteDeskLight");
    EXPECT_EQ(GetRefusal("sofa", {"lamp"}), "there is no light 'sofa'; there is lamp");
    EXPECT_EQ(GetRefusal("sofa", {}), "there is no light 'sofa'; there is none");
}

TEST(NearNames, OfALongListTheRestIsCounted)
{
    Names many;
    for (int number = 100; number < 130; ++number)
        many.push_back(std::to_string(number));
    EXPECT_THAT(GetRefusal("sofa", many), testing::EndsWith("122, 123 and 6 more"));
}
