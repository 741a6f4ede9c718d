// SPDX-License-Identifier: MIT
// Which frame comes first.
#include <gtest/gtest.h>

#include "hardware/timecode/frame.h"

namespace
{

using Hardware::Timecode::Frame;

struct Pair {
    Frame earlier;
    Frame later;
};

TEST(FrameOrder, DecidesAtTheFirstFieldThatDiffers)
{
    const Pair pairs[] = {{{1, 9, 9, 9, false}, {2, 0, 0, 0, false}},
                          {{1, 1, 9, 9, false}, {1, 2, 0, 0, false}},
                          {{1, 1, 1, 9, false}, {1, 1, 2, 0, false}},
                          {{1, 1, 1, 1, false}, {1, 1, 1, 2, false}},
                          // as signed numbers, and unnormalised
                          {{-1, 0, 0, 0, false}, {0, 0, 0, 0, false}},
                          {{0, 0, 0, -1, false}, {0, 0, 0, 0, false}},
                          {{0, 0, 0, 99, false}, {0, 0, 1, 0, false}},
                          // dropFrame does not count
                          {{1, 1, 1, 1, true}, {1, 1, 1, 2, false}},
                          {{1, 1, 1, 1, false}, {1, 1, 1, 2, true}}};
    for (const auto& [earlier, later] : pairs) {
        SCOPED_TRACE(earlier.toString() + " before " + later.toString());
        EXPECT_TRUE(earlier < later);
        EXPECT_TRUE(earlier <= later);
        EXPECT_FALSE(earlier > later);
        EXPECT_FALSE(earlier >= later);
        EXPECT_FALSE(later < earlier);
        EXPECT_FALSE(later <= earlier);
        EXPECT_TRUE(later > earlier);
        EXPECT_TRUE(later >= earlier);
    }
}

TEST(FrameOrder, FramesThatDifferInTheFlagAreNeitherBeforeNorAfter)
{
    const Frame plain(1, 2, 3, 4, false);
    const Frame dropped(1, 2, 3, 4, true);
    EXPECT_FALSE(plain < dropped);
    EXPECT_FALSE(plain > dropped);
    EXPECT_FALSE(dropped < plain);
    EXPECT_FALSE(dropped > plain);
    EXPECT_TRUE(plain <= dropped);
    EXPECT_TRUE(plain >= dropped);
    EXPECT_TRUE(dropped <= plain);
    EXPECT_TRUE(dropped >= plain);
}

} // namespace
