// SPDX-License-Identifier: MIT
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <stdexcept>

#include "desk/widget_bus.h"

using Desk::ReadWidgetData;
using Desk::WidgetData;
using testing::ElementsAre;
using testing::IsEmpty;

namespace
{

/// The reason why a text is refused; empty when it is not.
std::string Refusal(const std::string& json)
{
    try {
        ReadWidgetData(json);
    } catch (const std::invalid_argument& refusal) {
        return refusal.what();
    }
    return {};
}

TEST(WidgetData, ReadsModelSerialNumberAndPath)
{
    EXPECT_THAT(ReadWidgetData(R"([{"model": "PlaybackWing", "serial": 7, "path": "left"}])"),
                ElementsAre(WidgetData{"PlaybackWing", 7, L"left"}));
}

TEST(WidgetData, ReadsWidgetsInTheirOrder)
{
    EXPECT_THAT(
        ReadWidgetData(R"([{"model": "B"}, {"model": "A"}, {"model": "B"}])"),
        ElementsAre(WidgetData{"B", {}, {}}, WidgetData{"A", {}, {}}, WidgetData{"B", {}, {}}));
}

TEST(WidgetData, ReadsAnEmptyList)
{
    EXPECT_THAT(ReadWidgetData("[]"), IsEmpty());
}

TEST(WidgetData, SerialNumbersHaveSixteenBits)
{
    EXPECT_EQ(ReadWidgetData(R"([{"model": "A", "serial": 0}])").front().serialNumber, 0);
    EXPECT_EQ(ReadWidgetData(R"([{"model": "A", "serial": 65535}])").front().serialNumber, 65535);
    EXPECT_EQ(ReadWidgetData(R"([{"model": "A", "serial": null}])").front().serialNumber,
              std::nullopt);
    for (const char* serial : {"-1", "65536", "1.5", "\"7\"", "true", "[]", "1e9"}) {
        EXPECT_THAT(Refusal(R"([{"model": "A", "serial": )" + std::string(serial) + "}]"),
                    testing::HasSubstr("\"serial\" is a whole number from 0 to 65535"))
            << serial;
    }
}

TEST(WidgetData, PathsAreTexts)
{
    EXPECT_EQ(ReadWidgetData(R"([{"model": "A", "path": "T\u00FCr \uD83D\uDE00"}])").front().path,
              L"Tür \U0001F600");
    for (const char* path : {"1", "null", "true", "[]"})
        EXPECT_THAT(Refusal(R"([{"model": "A", "path": )" + std::string(path) + "}]"),
                    testing::HasSubstr("\"path\" is a text"))
            << path;
}

TEST(WidgetData, EveryWidgetNeedsAModel)
{
    for (const char* json :
         {"[{}]", R"([{"serial": 1}])", R"([{"model": 1}])", R"([{"model": null}])", "[1]", "[[]]",
          R"(["PlaybackWing"])", R"([{"model": "A"}, {}])"})
        EXPECT_THAT(Refusal(json), testing::HasSubstr("every widget needs a \"model\"")) << json;
}

TEST(WidgetData, OtherThanAListIsRefused)
{
    for (const char* json : {"{}", R"({"model": "PlaybackWing"})"})
        EXPECT_THAT(Refusal(json), testing::HasSubstr("it is a list of widgets")) << json;
}

TEST(WidgetData, WhatIsNoJsonIsRefusedWithAReason)
{
    for (const char* json : {"", " ", "[", "[{]", "PlaybackWing", R"([{"model": "A"}] x)"}) {
        EXPECT_THAT(Refusal(json), testing::StartsWith("widget description: ")) << json;
        EXPECT_GT(Refusal(json).size(), std::string("widget description: ").size()) << json;
    }
}

} // namespace
