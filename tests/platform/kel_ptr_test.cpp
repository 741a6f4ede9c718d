// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <type_traits>
#include <utility>

#include "kel/ptr.h"

namespace
{

struct Counted {
    explicit Counted(int& living) : m_living(living) { ++m_living; }
    ~Counted() { --m_living; }
    Counted(const Counted&) = delete;
    Counted& operator=(const Counted&) = delete;
    int& m_living;
};

TEST(KelPtr, DeletesWhatItHolds)
{
    int living = 0;
    {
        const kel::ptr<Counted> owner(new Counted(living));
        EXPECT_EQ(living, 1);
    }
    EXPECT_EQ(living, 0);
}

TEST(KelPtr, PassesItsObjectOnWhenMoved)
{
    int living = 0;
    kel::ptr<Counted> from(new Counted(living));
    const kel::ptr<Counted> to = std::move(from);
    EXPECT_FALSE(from); // NOLINT(bugprone-use-after-move): what is left behind is the point
    EXPECT_TRUE(to);
    EXPECT_EQ(living, 1);
}

TEST(KelPtr, IsNeverCopied)
{
    EXPECT_FALSE(std::is_copy_constructible_v<kel::ptr<int>>);
    EXPECT_FALSE(std::is_copy_assignable_v<kel::ptr<int>>);
}

} // namespace
