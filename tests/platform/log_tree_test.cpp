// SPDX-License-Identifier: MIT
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <optional>
#include <string>
#include <vector>

#include "os/log.h"
#include "standalone/log_masks.h"

using Os::Log::Context;

namespace
{

std::vector<std::string> ListPaths()
{
    std::vector<std::string> paths;
    for (const auto& context : Standalone::ListLogContexts())
        paths.push_back(context.path);
    return paths;
}

TEST(LogTree, APathNamesEveryContextFromTheRootDown)
{
    Context top("Top", nullptr, 31);
    Context middle("Middle", &top, 31);
    const Context bottom("Bottom", &middle, 31);
    EXPECT_EQ(top.GetPath(), "Top");
    EXPECT_EQ(middle.GetPath(), "Top/Middle");
    EXPECT_EQ(bottom.GetPath(), "Top/Middle/Bottom");
    EXPECT_STREQ(bottom.GetName(), "Bottom");
}

TEST(LogTree, AContextKnowsTheOneAbove)
{
    Context top("Top", nullptr, 31);
    const Context bottom("Bottom", &top, 31);
    EXPECT_EQ(bottom.GetParent(), &top);
    EXPECT_EQ(top.GetParent(), nullptr);
}

TEST(LogTree, AContextIsFoundByItsWholePath)
{
    Context top("Top", nullptr, 31);
    const Context bottom("Bottom", &top, 31);
    EXPECT_EQ(Context::Find("Top"), &top);
    EXPECT_EQ(Context::Find("Top/Bottom"), &bottom);
}

TEST(LogTree, APartOfAPathFindsNothing)
{
    Context top("Top", nullptr, 31);
    const Context bottom("Bottom", &top, 31);
    for (const char* path : {"", "Bottom", "Top/", "/Top", "Top/Bot", "Top/Bottom/", "top"})
        EXPECT_EQ(Context::Find(path), nullptr) << path;
}

TEST(LogTree, TwoContextsOfOneNameAreToldApartByWhatStandsAbove)
{
    Context left("LeftBacklight", nullptr, 31);
    Context right("RightBacklight", nullptr, 31);
    const Context leftSet("Set", &left, 30);
    const Context rightSet("Set", &right, 30);
    EXPECT_EQ(Context::Find("LeftBacklight/Set"), &leftSet);
    EXPECT_EQ(Context::Find("RightBacklight/Set"), &rightSet);

    Standalone::SetLogMask("RightBacklight/Set", 31);
    Standalone::ForgetLogMasks();
    EXPECT_FALSE(leftSet.IsEnabled(1));
    EXPECT_TRUE(rightSet.IsEnabled(1));
}

TEST(LogTree, ADestroyedContextIsNoLongerFound)
{
    std::optional<Context> context;
    context.emplace("Gone", nullptr, 31u);
    EXPECT_THAT(ListPaths(), testing::Contains("Gone"));
    context.reset();
    EXPECT_EQ(Context::Find("Gone"), nullptr);
    EXPECT_THAT(ListPaths(), testing::Not(testing::Contains("Gone")));
}

TEST(LogTree, AChangeAboveNoLongerReachesADestroyedContext)
{
    Context top("Top", nullptr, 31);
    {
        const Context bottom("Bottom", &top, 31);
    }
    top.SetMask(30); // must not touch what is gone; memory checkers would see it
    EXPECT_EQ(top.GetMask(), 30u);
}

TEST(LogTree, AContextThatOutlivesTheOneAboveGoesOnAsARoot)
{
    std::optional<Context> top;
    top.emplace("Top", nullptr, 0u);
    const Context bottom("Bottom", &*top, 31);
    EXPECT_FALSE(bottom.IsEnabled(1));
    top.reset();
    EXPECT_EQ(bottom.GetParent(), nullptr);
    EXPECT_TRUE(bottom.IsEnabled(1));
}

TEST(LogTree, TheListShowsParentsBeforeChildren)
{
    Context top("Top", nullptr, 31);
    Context middle("Middle", &top, 31);
    const Context bottom("Bottom", &middle, 31);
    const std::vector<std::string> paths = ListPaths();
    const auto place = [&](const char* path) {
        return std::find(paths.begin(), paths.end(), path) - paths.begin();
    };
    EXPECT_LT(place("Top"), place("Top/Middle"));
    EXPECT_LT(place("Top/Middle"), place("Top/Middle/Bottom"));
    EXPECT_THAT(paths, testing::Contains("Top/Middle/Bottom"));
}

TEST(LogTree, TheListTellsOwnMaskAndWhatPasses)
{
    Context top("Top", nullptr, 6);
    const Context bottom("Bottom", &top, 3);
    for (const auto& context : Standalone::ListLogContexts()) {
        if (context.path == "Top/Bottom") {
            EXPECT_EQ(context.mask, 3u);
            EXPECT_EQ(context.effectiveMask, 2u);
            return;
        }
    }
    FAIL() << "not listed";
}

} // namespace
