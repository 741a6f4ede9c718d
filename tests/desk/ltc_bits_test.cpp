// SPDX-License-Identifier: MIT
#include "ltc/ltc_bits.h"

#include <gmock/gmock.h>

#include <vector>

namespace
{

using namespace Desk;

constexpr LtcBits Empty{0, 0, 0, 0, 0, 0, 0, 0, 0xFC, 0xBF};

/// Positions of a frame's transitions, bits of @p length samples from 1000 on.
std::vector<double> GetPositions(const LtcBits& bits, bool reverse, double length)
{
    std::vector<double> positions{1000};
    for (std::size_t i = 0; i < LtcBitCount; ++i) {
        const std::size_t at = reverse ? LtcBitCount - 1 - i : i;
        const double begin = 1000 + length * static_cast<double>(i);
        if (bits[at / 8] >> at % 8 & 1)
            positions.push_back(begin + length / 2);
        positions.push_back(begin + length);
    }
    return positions;
}

TEST(LtcBits, CarryATime)
{
    LtcBits bits = Empty;
    SetTime(bits, {23, 59, 58, 29, false});
    EXPECT_EQ(bits, (LtcBits{9, 2, 8, 5, 9, 5, 3, 2, 0xFC, 0xBF}));
    EXPECT_EQ(GetTime(bits), (LtcTime{23, 59, 58, 29, false}));
    SetTime(bits, {1, 2, 3, 4, true});
    EXPECT_EQ(GetTime(bits), (LtcTime{1, 2, 3, 4, true}));
}

TEST(LtcBits, KeepUserBitsAndFlagsBesideTheTime)
{
    LtcBits bits;
    bits.fill(0xFF);
    SetTime(bits, {0, 0, 0, 0, false});
    EXPECT_EQ(bits, (LtcBits{0xF0, 0xF8, 0xF0, 0xF8, 0xF0, 0xF8, 0xF0, 0xFC, 0xFF, 0xFF}));
    EXPECT_EQ(GetTime(bits), LtcTime{});
}

TEST(LtcBits, ThatAreNoTimeGiveNone)
{
    const struct {
        std::size_t byte;
        std::uint8_t value;
    } table[] = {
        {0, 10}, {1, 3}, {2, 10}, {2, 15}, {3, 6}, {4, 10}, {5, 6}, {6, 10}, {7, 3},
    };
    for (const auto& [byte, value] : table) {
        LtcBits bits = Empty;
        bits[byte] = value;
        EXPECT_FALSE(GetTime(bits)) << byte << " " << unsigned(value);
    }
    LtcBits hour24 = Empty;
    hour24[6] = 4;
    hour24[7] = 2;
    EXPECT_FALSE(GetTime(hour24));
}

TEST(LtcBits, ThatDropFrameLeavesOutGiveNone)
{
    LtcBits bits = Empty;
    SetTime(bits, {10, 7, 0, 1, false});
    EXPECT_TRUE(GetTime(bits));
    bits[1] |= 0x04;
    EXPECT_FALSE(GetTime(bits));
    bits[0] = 2;
    EXPECT_TRUE(GetTime(bits));
}

TEST(LtcBits, FitTransitionsThatStandRight)
{
    LtcBits bits = Empty;
    SetTime(bits, {12, 34, 56, 7, false});
    for (const bool reverse : {false, true}) {
        const LtcFit fit = Fit(bits, reverse, GetPositions(bits, reverse, 24));
        EXPECT_NEAR(fit.bitLength, 24, 1e-6);
        EXPECT_NEAR(fit.worst, 0, 1e-6);
        EXPECT_NEAR(fit.typical, 0, 1e-6);
    }
}

TEST(LtcBits, FitTransitionsOfASpeedThatChanges)
{
    LtcBits bits = Empty;
    SetTime(bits, {12, 34, 56, 7, false});
    std::vector<double> positions = GetPositions(bits, false, 24);
    for (double& position : positions)
        position += (position - 1000) * (position - 1000) / 20000;
    EXPECT_NEAR(Fit(bits, false, positions).worst, 0, 1e-6);
}

TEST(LtcBits, FitTellsHowFarOneTransitionIsOff)
{
    LtcBits bits = Empty;
    SetTime(bits, {12, 34, 56, 7, false});
    std::vector<double> positions = GetPositions(bits, false, 24);
    positions[50] += 10;
    const LtcFit fit = Fit(bits, false, positions);
    EXPECT_NEAR(fit.worst, 10, 0.5);
    EXPECT_NEAR(fit.typical, 1, 0.1);
}

} // namespace
