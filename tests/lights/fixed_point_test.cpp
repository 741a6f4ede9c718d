// SPDX-License-Identifier: MIT

// Fixed-point arithmetic of levels.

#include "kel/fixed_point.h"

#include <gtest/gtest.h>

#include <climits>

TEST(FixedPoint, QuotientsAreCutOff)
{
    EXPECT_EQ(UDivUIRes16(0x00640000, 0x00641000), 0xFFD7U);
    EXPECT_EQ(UDivUIRes16(0x00320000, 0x00641000), 0x7FEBU);
    EXPECT_EQ(UDivUIRes16(0, 7), 0U);
    EXPECT_EQ(UDivUIRes16(1, 3), 0x5555U);
    EXPECT_EQ(UDivUIRes16(2, 3), 0xAAAAU);
    EXPECT_EQ(UDivUIRes16(50, 3000), 1092U);
    EXPECT_EQ(UDivUIRes16(3, 3), 0x10000U);
}

TEST(FixedPoint, QuotientsKeepTheirLowBits)
{
    EXPECT_EQ(UDivUIRes16(0x10000, 1), 0U);
    EXPECT_EQ(UDivUIRes16(0x10001, 1), 0x10000U);
    EXPECT_EQ(UDivUIRes16(UINT_MAX, UINT_MAX), 0x10000U);
}

TEST(FixedPoint, DivisionByNothingIsAllBits)
{
    EXPECT_EQ(UDivUIRes16(0, 0), 0xFFFFFFFFU);
    EXPECT_EQ(UDivUIRes16(5, 0), 0xFFFFFFFFU);
}

TEST(FixedPoint, ProductsAreRoundedDown)
{
    EXPECT_EQ(SMulSIRes16(0x00020000, 0x00008000), 0x00010000);
    EXPECT_EQ(SMulSIRes16(3, 0x8000), 1);
    EXPECT_EQ(SMulSIRes16(-3, 0x8000), -2);
    EXPECT_EQ(SMulSIRes16(-1, 1), -1);
    EXPECT_EQ(SMulSIRes16(0, -5), 0);
    EXPECT_EQ(SMulSIRes16(-0x00640000, 64443), -0x0062550C);
}
