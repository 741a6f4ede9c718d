// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <string>

#include "platform/sample_type.h"
#include "standalone/memory_stream.h"

using TestSupport::Tint;

namespace
{

class EnumText : public testing::Test
{
protected:
    const TestSupport::TintType m_type;
};

struct NameCase {
    Tint value;
    const wchar_t* name;
    const char* bytes;
};

constexpr NameCase Named[] = {
    {Tint::Red, L"Red", "Red\n"},
    {Tint::Green, L"Sea Green", "Sea Green\n"},
    {Tint::Blue, L"Blu\u20AC", "Blu\xE2\x82\xAC\n"},
};

constexpr Tint Unnamed[] = {Tint::Lowest, Tint::Unnamed, Tint{4}, Tint::Highest, Tint{1000}};

TEST_F(EnumText, IsTheDisplayName)
{
    for (const NameCase& c : Named)
        EXPECT_EQ(m_type.to_text(m_type, &c.value), c.name);
}

TEST_F(EnumText, IsEmptyForAValueWithoutAName)
{
    for (const Tint value : Unnamed)
        EXPECT_EQ(m_type.to_text(m_type, &value), L"") << static_cast<int>(value);
}

TEST_F(EnumText, GivesTheValueOfADisplayName)
{
    for (const NameCase& c : Named) {
        auto value = Tint::Unnamed;
        EXPECT_TRUE(m_type.from_text(m_type, &value, c.name));
        EXPECT_EQ(value, c.value);
    }
}

TEST_F(EnumText, ThatIsNoDisplayNameLeavesTheValueAlone)
{
    for (const wchar_t* text : {L"", L"red", L"Red ", L"Sea", L"Yellow", L"1"}) {
        auto value = Tint::Highest;
        EXPECT_FALSE(m_type.from_text(m_type, &value, text));
        EXPECT_EQ(value, Tint::Highest);
    }
}

TEST_F(EnumText, IsSavedAsALine)
{
    for (const NameCase& c : Named) {
        Standalone::MemoryOutput output;
        m_type.save_text(m_type, &c.value, output);
        EXPECT_EQ(output.GetBytes(), c.bytes);
    }
}

TEST_F(EnumText, OfAValueWithoutANameIsSavedAsAnEmptyLine)
{
    for (const Tint value : Unnamed) {
        Standalone::MemoryOutput output;
        m_type.save_text(m_type, &value, output);
        EXPECT_EQ(output.GetBytes(), "\n");
    }
}

TEST_F(EnumText, IsLoadedFromItsLine)
{
    for (const NameCase& c : Named) {
        Standalone::MemoryInput input(c.bytes);
        auto value = Tint::Unnamed;
        EXPECT_TRUE(m_type.load_text(m_type, &value, input));
        EXPECT_EQ(value, c.value);
    }
}

TEST_F(EnumText, IsLoadedFromALastLineWithoutAnEnd)
{
    Standalone::MemoryInput input("Sea Green");
    auto value = Tint::Unnamed;
    EXPECT_TRUE(m_type.load_text(m_type, &value, input));
    EXPECT_EQ(value, Tint::Green);
}

TEST_F(EnumText, IsLoadedLineByLine)
{
    Standalone::MemoryInput input("Sea Green\nRed\n");
    auto value = Tint::Unnamed;
    EXPECT_TRUE(m_type.load_text(m_type, &value, input));
    EXPECT_EQ(value, Tint::Green);
    EXPECT_TRUE(m_type.load_text(m_type, &value, input));
    EXPECT_EQ(value, Tint::Red);
    EXPECT_FALSE(m_type.load_text(m_type, &value, input));
    EXPECT_EQ(value, Tint::Red);
}

TEST_F(EnumText, OfABadLineLeavesTheValueAlone)
{
    const std::string tooLong(100000, 'x');
    for (const std::string& bytes : {std::string(), std::string("\n"), std::string("red\n"),
                                     std::string("Red \n"), std::string("Red\0\n", 5), tooLong}) {
        Standalone::MemoryInput input(bytes);
        auto value = Tint::Highest;
        EXPECT_FALSE(m_type.load_text(m_type, &value, input));
        EXPECT_EQ(value, Tint::Highest);
    }
}

} // namespace
