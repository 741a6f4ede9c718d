// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <string>
#include <string_view>

#include "kel/text_base.h"
#include "kel/wstring.h"

using namespace std::string_view_literals;

namespace
{

std::string Narrow(std::wstring_view wide)
{
    kel::text<char, 64> text;
    text << wide;
    return std::string(text.view());
}

struct WideCase {
    long value;
    std::string_view bytes;
};

TEST(KelWideText, BecomesBytesByOneRule)
{
    const WideCase cases[] = {
        {0, "\0"sv},
        {'A', "A"sv},
        {127, "\x7F"sv},
        {128, "\x80"sv},
        {255, "\xFF"sv},
        {-1, "\xFF"sv},
        {-61, "\xC3"sv},
        {-128, "\x80"sv},
        {0x100, "\xC4\x80"sv},
        {0x7FF, "\xDF\xBF"sv},
        {0x800, "\xE0\xA0\x80"sv},
        {0x20AC, "\xE2\x82\xAC"sv},
        {0xD7FF, "\xED\x9F\xBF"sv},
        {0xE000, "\xEE\x80\x80"sv},
        {0xFFFF, "\xEF\xBF\xBF"sv},
        {0x10000, "\xF0\x90\x80\x80"sv},
        {0x1F3B9, "\xF0\x9F\x8E\xB9"sv},
        {0x10FFFF, "\xF4\x8F\xBF\xBF"sv},
    };
    for (const WideCase& c : cases)
        EXPECT_EQ(Narrow(std::wstring(1, static_cast<wchar_t>(c.value))), c.bytes) << c.value;
}

TEST(KelWideText, ShowsAQuestionMarkForWhatIsNoCharacter)
{
    for (const long value : {-129L, -0x7FFFFFFFL, 0xD800L, 0xDFFFL, 0x110000L, 0x7FFFFFFFL})
        EXPECT_EQ(Narrow(std::wstring(1, static_cast<wchar_t>(value))), "?") << value;
}

TEST(KelWideText, GivesBackTheBytesOfANameThatWasWidenedAsSigned)
{
    const std::string name = "Kl\xC3\xA4nge";
    std::wstring wide;
    for (const char byte : name)
        wide.push_back(static_cast<wchar_t>(static_cast<signed char>(byte)));
    EXPECT_EQ(Narrow(wide), name);
}

TEST(KelWideText, TakesEveryFormOfWideText)
{
    kel::text<char, 32> text;
    text << L"a" << L'b' << std::wstring(L"c") << L"d"sv << kel::wstring(L"e");
    EXPECT_EQ(text.view(), "abcde"sv);
}

TEST(KelWideText, KeepsAZeroInside)
{
    EXPECT_EQ(Narrow(L"a\0b"sv), "a\0b"sv);
}

TEST(KelWideText, IsCutBetweenCharacters)
{
    const std::wstring_view wide = L"ab\u20ACcd";
    kel::text<char, 4> tooShort;
    tooShort << wide;
    EXPECT_EQ(tooShort.view(), "ab"sv);
    EXPECT_TRUE(tooShort.truncated());

    kel::text<char, 5> justEnough;
    justEnough << wide.substr(0, 3);
    EXPECT_EQ(justEnough.view(), "ab\xE2\x82\xAC"sv);
    EXPECT_FALSE(justEnough.truncated());
}

} // namespace
