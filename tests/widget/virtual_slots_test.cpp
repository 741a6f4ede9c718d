// SPDX-License-Identifier: MIT

// The order of the virtual operations, which programs that were built before rely on.

#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>

#include "widget/um_vex_next_wing.h"

using Hardware::UmVexNextWing;
using Hardware::UmWing;

namespace
{

/// Place of a virtual operation in the table; -1 for one that is not virtual. As the common C++ ABI
/// has it, a pointer to a virtual member holds its offset in the table and one more; the
/// destructors take two places.
template <class Member> int GetSlot(Member member)
{
    std::uintptr_t words[2] = {};
    static_assert(sizeof(member) == sizeof(words));
    std::memcpy(words, &member, sizeof(words));
#if defined(__aarch64__) || defined(__arm__)
    const bool isVirtual = (words[1] & 1U) != 0;
    const std::uintptr_t offset = words[0];
#else
    const bool isVirtual = (words[0] & 1U) != 0;
    const std::uintptr_t offset = words[0] - 1;
#endif
    return isVirtual ? static_cast<int>(offset / sizeof(void*)) : -1;
}

TEST(VirtualSlots, OfWingsStandInTheirOrder)
{
    int slot = 2; // behind the two destructors
    EXPECT_EQ(GetSlot(&UmWing::GetVendorId), slot++);
    EXPECT_EQ(GetSlot(&UmWing::GetProductId), slot++);
    EXPECT_EQ(GetSlot(&UmWing::GetCallbackFunc), slot++);
    EXPECT_EQ(GetSlot(&UmWing::BeaconSection), slot++);
    EXPECT_EQ(GetSlot(&UmWing::IsFrontPanel), slot++);
    EXPECT_EQ(GetSlot(&UmWing::SetDimmer), slot++);
    EXPECT_EQ(GetSlot(&UmWing::GetButtonMapDef), slot++);
    EXPECT_EQ(GetSlot(&UmWing::GetLedMapDef), slot++);
    EXPECT_EQ(GetSlot(&UmWing::GetEncoderMapDef), slot++);
    EXPECT_EQ(GetSlot(&UmWing::GetWingMetric), slot++);
    EXPECT_EQ(GetSlot(&UmWing::SetLed), slot++);
    EXPECT_EQ(GetSlot(&UmWing::SetAllLed), slot++);
    EXPECT_EQ(GetSlot(&UmWing::GetButtonState), slot++);
    EXPECT_EQ(GetSlot(&UmWing::GetLedState), slot++);
    EXPECT_EQ(GetSlot(&UmWing::GetFaderState), slot++);
    EXPECT_EQ(GetSlot(&UmWing::GetButtonIndex), slot++);
    EXPECT_EQ(GetSlot(&UmWing::GetLedIndex), slot++);
    EXPECT_EQ(GetSlot(&UmWing::GetLcdMapDef), slot++);
    EXPECT_EQ(GetSlot(&UmWing::GetFaderMapDef), slot++);
    EXPECT_EQ(slot, 21);
}

TEST(VirtualSlots, OfNextGenerationWingsContinueThem)
{
    int slot = 21;
    EXPECT_EQ(GetSlot(&UmVexNextWing::GetLcdMetric), slot++);
    EXPECT_EQ(GetSlot(&UmVexNextWing::SetLcdColor), slot++);
    EXPECT_EQ(GetSlot(&UmVexNextWing::SetLcdBrightness), slot++);
    EXPECT_EQ(GetSlot(&UmVexNextWing::SetLcdDisplay), slot++);
    EXPECT_EQ(GetSlot(&UmVexNextWing::ClearLcdDisplay), slot++);
    EXPECT_EQ(GetSlot(&UmVexNextWing::SetLcdFlash), slot++);
    EXPECT_EQ(GetSlot(&UmVexNextWing::SetFader), slot++);
    EXPECT_EQ(GetSlot(&UmVexNextWing::SetHash), slot++);
    EXPECT_EQ(GetSlot(&UmVexNextWing::GetHash), slot++);
}

TEST(VirtualSlots, OtherOperationsHaveNone)
{
    EXPECT_EQ(GetSlot(&UmWing::RefreshState), -1);
    EXPECT_EQ(GetSlot(&UmWing::SetSleep), -1);
    EXPECT_EQ(GetSlot(&UmWing::GetStateOf), -1);
    EXPECT_EQ(GetSlot(&UmWing::Beacon), -1);
    EXPECT_EQ(GetSlot(&UmWing::SerialNumber), -1);
    EXPECT_EQ(GetSlot(&UmVexNextWing::SetAllLcdBrightness), -1);
}

} // namespace
