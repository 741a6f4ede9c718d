// SPDX-License-Identifier: MIT
#include "console/words.h"

#include <gmock/gmock.h>

#include <stdexcept>

namespace
{

using Console::Words;

/// What a call throws; nothing when it throws nothing.
template <class Call> std::string GetError(Call call)
{
    try {
        call();
    } catch (const std::invalid_argument& error) {
        return error.what();
    }
    return "";
}

} // namespace

TEST(Words, AreSplitAtBlanksOutsideOfQuotes)
{
    EXPECT_EQ(Console::SplitWords(""), Words{});
    EXPECT_EQ(Console::SplitWords("  light\tkey \r"), (Words{"light", "key"}));
    EXPECT_EQ(Console::SplitWords(R"(midi "Stage Keys" plug)"),
              (Words{"midi", "Stage Keys", "plug"}));
    EXPECT_EQ(Console::SplitWords(R"("" a"b "c\"\\d")"), (Words{"", "a\"b", "c\"\\d"}));
    EXPECT_EQ(GetError([] { Console::SplitWords("a \"b"); }), "a quote does not end");
    EXPECT_EQ(GetError([] { Console::SplitWords("a \"b\\"); }), "a quote does not end");
}

TEST(Words, ComeBackAsTheyWereQuoted)
{
    for (const std::string& word :
         {std::string("plain"), std::string(), std::string("with blank"), std::string("a\"b\\c"),
          std::string("#1"), std::string("tab\there"), std::string("\\")})
        EXPECT_EQ(Console::SplitWords(Console::Quote(word)), Words{word}) << word;
    EXPECT_EQ(Console::Quote("plain"), "plain");
}

TEST(Words, StandForSwitchesAndNumbers)
{
    EXPECT_TRUE(Console::ToSwitch("on"));
    EXPECT_FALSE(Console::ToSwitch("off"));
    EXPECT_EQ(GetError([] { Console::ToSwitch("On"); }), "'On' is neither on nor off");
    EXPECT_EQ(Console::ToInteger("-3", -3, 5), -3);
    EXPECT_EQ(GetError([] { Console::ToInteger("6", -3, 5); }), "'6' is not a number from -3 to 5");
    EXPECT_EQ(GetError([] { Console::ToInteger("5x", -3, 5); }),
              "'5x' is not a number from -3 to 5");
    EXPECT_EQ(Console::ToNumber("0.25", 0, 1), 0.25);
    EXPECT_EQ(GetError([] { Console::ToNumber("nan", 0, 1.5); }),
              "'nan' is not a number from 0 to 1.5");
    EXPECT_EQ(GetError([] { Console::ToNumber("", 0, 1000); }),
              "'' is not a number from 0 to 1000");
}

TEST(Words, AreCounted)
{
    EXPECT_EQ(GetError([] { Console::CheckCount({"a"}, 1, 2, "x"); }), "");
    EXPECT_EQ(GetError([] { Console::CheckCount({}, 1, 2, "x A [B]"); }), "it is: x A [B]");
    EXPECT_EQ(GetError([] { Console::CheckCount({"a", "b", "c"}, 1, 2, "x"); }), "it is: x");
}
