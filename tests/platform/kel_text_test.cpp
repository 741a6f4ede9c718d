// SPDX-License-Identifier: MIT
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <string>
#include <string_view>
#include <type_traits>

#include "kel/text_base.h"

using namespace std::string_view_literals;

namespace
{

template <class T> std::string Print(const T& value)
{
    kel::text<char, 64> text;
    text << value;
    return std::string(text.view());
}

TEST(KelText, BeginsEmptyAndWhole)
{
    const kel::text<char, 8> text;
    EXPECT_EQ(text.length(), 0u);
    EXPECT_EQ(text.capacity(), 8u);
    EXPECT_FALSE(text.truncated());
    EXPECT_EQ(text.view(), ""sv);
}

TEST(KelText, AppendsInOrder)
{
    kel::text<char, 32> text;
    text << "found " << 3 << " of "sv << std::string("five") << '!';
    EXPECT_EQ(text.view(), "found 3 of five!"sv);
}

TEST(KelText, KeepsBytesOfValueZeroAndCountsThem)
{
    kel::text<char, 8> text;
    text << "a\0b"sv << '\0' << static_cast<unsigned char>(0);
    EXPECT_EQ(text.view(), "a\0b\0\0"sv);
    EXPECT_EQ(text.length(), 5u);
}

TEST(KelText, IsWholeWhenFilledExactly)
{
    kel::text<char, 4> text;
    text << "abcd";
    EXPECT_EQ(text.view(), "abcd"sv);
    EXPECT_FALSE(text.truncated());
}

TEST(KelText, CutsWhatDoesNotFitAndTells)
{
    kel::text<char, 4> text;
    text << "abc"
         << "def";
    EXPECT_EQ(text.view(), "abcd"sv);
    EXPECT_TRUE(text.truncated());
}

TEST(KelText, WritesNothingBehindItsEnd)
{
    struct {
        kel::text<char, 4> text;
        char behind = '#';
    } guarded;
    guarded.text << "0123456789"
                 << "0123456789";
    EXPECT_EQ(guarded.behind, '#');
    EXPECT_EQ(guarded.text.length(), 4u);
}

TEST(KelText, CutsANumberLikeAnyText)
{
    kel::text<char, 4> text;
    text << 123456;
    EXPECT_EQ(text.view(), "1234"sv);
    EXPECT_TRUE(text.truncated());
}

TEST(KelText, AppendsAllOrNothingWhereAskedTo)
{
    kel::text<char, 4> text;
    text.append_whole("abc", 3);
    text.append_whole("de", 2);
    EXPECT_EQ(text.view(), "abc"sv);
    EXPECT_TRUE(text.truncated());
}

TEST(KelText, TakesNothingMoreAfterACut)
{
    kel::text<char, 4> text;
    text.append_whole("abc", 3);
    text.append_whole("de", 2);
    text << 'f';
    text.append_whole("g", 1);
    EXPECT_EQ(text.view(), "abc"sv);
}

TEST(KelText, ForgetsTextAndCutWhenCleared)
{
    kel::text<char, 4> text;
    text << "abcdef";
    text.clear();
    EXPECT_EQ(text.length(), 0u);
    EXPECT_FALSE(text.truncated());
    text << "xy";
    EXPECT_EQ(text.view(), "xy"sv);
}

TEST(KelText, PrintsABoolAsAWord)
{
    EXPECT_EQ(Print(true), "true");
    EXPECT_EQ(Print(false), "false");
}

TEST(KelText, PutsEveryByteInAsItIs)
{
    for (int value = 0; value <= 255; ++value) {
        const auto byte = static_cast<unsigned char>(value);
        EXPECT_EQ(Print(byte), std::string(1, static_cast<char>(byte))) << value;
    }
}

TEST(KelText, PrintsIntegersInDecimal)
{
    EXPECT_EQ(Print(0), "0");
    EXPECT_EQ(Print(-1), "-1");
    EXPECT_EQ(Print(short{-32768}), "-32768");
    EXPECT_EQ(Print(static_cast<unsigned short>(65535)), "65535");
    EXPECT_EQ(Print(std::numeric_limits<int>::min()), "-2147483648");
    EXPECT_EQ(Print(std::numeric_limits<unsigned>::max()), "4294967295");
    EXPECT_EQ(Print(std::numeric_limits<std::int64_t>::min()), "-9223372036854775808");
    EXPECT_EQ(Print(std::numeric_limits<std::uint64_t>::max()), "18446744073709551615");
}

TEST(KelText, IsNeverCopied)
{
    EXPECT_FALSE((std::is_copy_constructible_v<kel::text<char, 4>>));
    EXPECT_FALSE((std::is_copy_assignable_v<kel::text<char, 4>>));
}

} // namespace
