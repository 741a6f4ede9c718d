// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <cstdint>
#include <ostream>
#include <string>

#include "kel/text_base.h"

namespace
{

struct HexCase {
    kel::hex number;
    const char* text;
};

void PrintTo(const HexCase& c, std::ostream* out)
{
    *out << c.text;
}

class KelHex : public testing::TestWithParam<HexCase>
{
};

TEST_P(KelHex, IsLowerCaseWithoutPrefixOrPadding)
{
    kel::text<char, 32> text;
    text << GetParam().number;
    EXPECT_EQ(text.view(), GetParam().text);
}

INSTANTIATE_TEST_SUITE_P(Numbers, KelHex,
                         testing::Values(HexCase{kel::hex(0), "0"}, HexCase{kel::hex(10), "a"},
                                         HexCase{kel::hex(0xABCDEFu), "abcdef"},
                                         HexCase{kel::hex(0x0Fu), "f"},
                                         HexCase{kel::hex(-1), "ffffffff"},
                                         HexCase{kel::hex(static_cast<signed char>(-1)), "ff"},
                                         HexCase{kel::hex(static_cast<unsigned char>(0x80)), "80"},
                                         HexCase{kel::hex(std::int16_t{-2}), "fffe"},
                                         HexCase{kel::hex(std::int64_t{-1}), "ffffffffffffffff"}));

} // namespace
