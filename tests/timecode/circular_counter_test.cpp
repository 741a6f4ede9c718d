// SPDX-License-Identifier: MIT
// Counters that wrap around.
#include <gtest/gtest.h>

#include <type_traits>

#include "hardware/circ.h"
#include "timecode/offers.h"

namespace
{

static_assert(std::is_empty_v<circ>, "it has no state");
static_assert(TestSupport::Offers<
              static_cast<bool (circ::*)(unsigned long, unsigned long) const>(&circ::IsWrap)>);

TEST(CircularCounter, WrapsBetweenTheEndsOfTheRangeOnly)
{
    struct Case {
        unsigned long a;
        unsigned long b;
        bool wraps;
    };
    const Case cases[] = {
        {0xFFFFFFF0, 5, true},
        {0xFFFFFFFF, 0, true},
        {0xFFFF0000, 0xFFFF, true},
        {0xFFFEFFFF, 0, false},
        {0x10000, 0xFFFFFFFF, false},
        {0xFFFF0000, 0x10000, false},
        {0xFFFEFFFF, 0xFFFF, false},
        {0, 0, false},
        {5, 6, false},
        {0, 0xFFFF, false},
        {0xFFFFFFF0, 0xFFFFFFF1, false},
        {0xFFFFFFFF, 0xFFFFFFFF, false},
        {0x80000000, 0x7FFFFFFF, false},
        {0x80000000, 0, false},
    };
    for (const Case& each : cases) {
        EXPECT_EQ(circ().IsWrap(each.a, each.b), each.wraps) << each.a << ", " << each.b;
        EXPECT_EQ(circ().IsWrap(each.b, each.a), each.wraps) << each.b << ", " << each.a;
    }
}

TEST(CircularCounter, CountsTheLowerThirtyTwoBitsOnly)
{
    EXPECT_TRUE(circ().IsWrap(0x1FFFFFFF0, 0x500000005));
    EXPECT_FALSE(circ().IsWrap(0x100000000, 0));
}

} // namespace
