// SPDX-License-Identifier: MIT
#include <gmock/gmock.h>

#include <stdexcept>

#include "console/script.h"

namespace
{

using Console::Condition;
using nlohmann::json;

const json State{{"cd", {{"status", "playing"}, {"track", 2}, {"disc", true}, {"none", nullptr}}},
                 {"serial", {{"/dev/x", {{"level", 7.5}}}}}};

bool Holds(const std::string& line)
{
    return Condition::Parse(Console::SplitWords(line)).Holds(State);
}

std::string GetError(const std::string& line)
{
    try {
        Holds(line);
    } catch (const std::invalid_argument& error) {
        return error.what();
    }
    return "";
}

} // namespace

TEST(Condition, HoldsOrNot)
{
    for (const char* const line :
         {"cd/status = playing", "cd/status != stopped", "cd/track = 2", "cd/track = 2.0",
          "cd/track > 1", "cd/track >= 2", "cd/track < 3", "cd/track <= 2", "cd/disc = true",
          "cd/none = nothing", "cd/absent = nothing", "cd/absent != 3",
          "serial//dev/x/level = 7.5"})
        EXPECT_TRUE(Holds(line)) << line;
    for (const char* const line :
         {"cd/status = stopped", "cd/status != playing", "cd/track = 3", "cd/track > 2",
          "cd/track >= 3", "cd/track < 2", "cd/track <= 1", "cd/disc = false", "cd/absent > 0",
          "cd/none < 5", "cd/status/deeper = playing"})
        EXPECT_FALSE(Holds(line)) << line;
}

TEST(Condition, ThatMakesNoSenseIsRefused)
{
    EXPECT_EQ(GetError("cd/track"), "a condition is PATH OPERATOR VALUE");
    EXPECT_EQ(GetError("cd/track == 2"), "'==' is none of = != < > <= >=");
    EXPECT_EQ(GetError("cd/track < two"), "'two' is not a number");
    EXPECT_EQ(GetError("cd/status < 2"), "'cd/status' is not a number but playing");
}

TEST(Condition, TellsWhatItFound)
{
    const Condition condition = Condition::Parse({"cd/status", "=", "it is over"});
    EXPECT_EQ(condition.GetText(), "cd/status = \"it is over\"");
    EXPECT_EQ(condition.GetFound(State), "playing");
    EXPECT_EQ(Condition::Parse({"cd", "=", "x"}).GetFound(json::object()), "nothing");
}

TEST(DeskScript, HasItsLinesWithoutRemarks)
{
    const std::vector<Console::ScriptLine> lines = Console::ParseDeskScript(
        "# all\n\n  light key # press\nmidi \"Port #1\" plug\r\n   \nwait 1");
    ASSERT_EQ(lines.size(), 3U);
    EXPECT_EQ(lines[0].text, "light key");
    EXPECT_EQ(lines[0].number, 3U);
    EXPECT_EQ(lines[1].text, "midi \"Port #1\" plug");
    EXPECT_EQ(lines[1].number, 4U);
    EXPECT_EQ(lines[2].text, "wait 1");
    EXPECT_EQ(lines[2].number, 6U);
}
