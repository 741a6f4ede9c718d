// SPDX-License-Identifier: MIT
#include "common/wing_name.h"

#include <gmock/gmock.h>

#include <stdexcept>

using Tools::GetWingName;
using Tools::ParseWingKey;

TEST(WingName, IsModelAndSerialNumber)
{
    EXPECT_EQ(GetWingName(0x10123), "PlaybackWing/291");
    EXPECT_EQ(GetWingName(0x12FFFF), "Vex4Petite/65535");
}

TEST(WingName, OfAnUnknownKindIsTheKey)
{
    EXPECT_EQ(GetWingName(0x90001), "589825");
    EXPECT_EQ(GetWingName(0xFFFFFFFF), "4294967295");
    EXPECT_EQ(GetWingName(0x01010001), "16842753");
}

TEST(WingName, ReadsNamesAndNumbers)
{
    EXPECT_EQ(ParseWingKey("PlaybackWing/291"), 0x10123U);
    EXPECT_EQ(ParseWingKey("PlaybackWing/0x123"), 0x10123U);
    EXPECT_EQ(ParseWingKey("playbackwing/291"), 0x10123U);
    EXPECT_EQ(ParseWingKey("65827"), 0x10123U);
    EXPECT_EQ(ParseWingKey("0x10123"), 0x10123U);
    EXPECT_EQ(ParseWingKey("0xFFFFFFFF"), 0xFFFFFFFFU);
}

TEST(WingName, RefusesAnythingElse)
{
    for (const char* const text :
         {"", "x", "PlaybackWing", "PlaybackWing/", "PlaybackWing/65536", "PlaybackWing/-1",
          "PlaybackWing/1x", "NoWing/1", "LtcWidget/1", "-1", "+1", "4294967296", "1 "})
        EXPECT_THROW(ParseWingKey(text), std::invalid_argument) << text;
}
