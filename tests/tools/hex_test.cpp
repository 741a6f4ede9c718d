// SPDX-License-Identifier: MIT
#include "common/hex.h"

#include <gtest/gtest.h>

namespace
{

typedef std::vector<std::uint8_t> Bytes;

TEST(Hex, FormatsBytesInUpperCaseWithBlanksBetween)
{
    EXPECT_EQ(Tools::FormatHex(Bytes{0x00, 0x9a, 0xFF}), "00 9A FF");
    EXPECT_EQ(Tools::FormatHex(Bytes{}), "");
}

TEST(Hex, ReadsPairsWithAndWithoutBlanks)
{
    const Bytes expected{0x90, 0x3C, 0x64};
    for (const char* const text : {"90 3C 64", "903c64", " 90  3C64 "})
        EXPECT_EQ(Tools::ParseHex(text), expected) << text;
    EXPECT_EQ(Tools::ParseHex(""), Bytes{});
}

TEST(Hex, RefusesAnythingElse)
{
    for (const char* const text : {"9", "9 0", "0x90", "90,3C", "GG", "-1", "+1", "90 3"})
        EXPECT_FALSE(Tools::ParseHex(text)) << text;
}

} // namespace
