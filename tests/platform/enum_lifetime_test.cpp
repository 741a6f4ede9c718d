// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <cstring>

#include "platform/sample_type.h"

using TestSupport::Tint;

namespace
{

class EnumLifetime : public testing::Test
{
protected:
    const TestSupport::TintType m_type;
};

TEST_F(EnumLifetime, BeginsInPlaceWithTheLowestValue)
{
    auto value = Tint::Blue;
    m_type.pctor(m_type, &value);
    EXPECT_EQ(value, Tint::Lowest);
}

TEST_F(EnumLifetime, EndsInPlaceWithoutATrace)
{
    auto value = Tint::Blue;
    m_type.pdtor(m_type, &value);
    EXPECT_EQ(value, Tint::Blue);
}

TEST_F(EnumLifetime, BeginsOnTheHeapWithTheLowestValue)
{
    void* const object = m_type.ctor(m_type);
    ASSERT_NE(object, nullptr);
    EXPECT_EQ(*static_cast<Tint*>(object), Tint::Lowest);
    m_type.dtor(m_type, object);
}

TEST_F(EnumLifetime, IsCopiedToTheHeapAsAnObjectOfItsOwn)
{
    auto value = Tint::Green;
    void* const copy = m_type.cpyctor(m_type, &value);
    value = Tint::Blue;
    EXPECT_NE(copy, &value);
    EXPECT_EQ(*static_cast<Tint*>(copy), Tint::Green);
    m_type.dtor(m_type, copy);
}

TEST_F(EnumLifetime, MayBeDestroyedWhereThereIsNothing)
{
    m_type.dtor(m_type, nullptr);
    SUCCEED();
}

struct Guarded {
    Tint before = Tint::Red;
    Tint value = Tint::Red;
    Tint after = Tint::Red;
};

TEST_F(EnumLifetime, IsAssignedFourBytesWide)
{
    Guarded guarded;
    const auto value = Tint::Highest;
    m_type.ass(m_type, &guarded.value, &value);
    EXPECT_EQ(guarded.value, Tint::Highest);
    EXPECT_EQ(guarded.before, Tint::Red);
    EXPECT_EQ(guarded.after, Tint::Red);
}

TEST_F(EnumLifetime, MayBeAssignedToItself)
{
    auto value = Tint::Green;
    m_type.ass(m_type, &value, &value);
    EXPECT_EQ(value, Tint::Green);
}

TEST_F(EnumLifetime, IsCopiedInPlaceFourBytesWide)
{
    Guarded guarded;
    const auto value = Tint::Highest;
    m_type.pcpyctor(m_type, &guarded.value, &value);
    EXPECT_EQ(guarded.value, Tint::Highest);
    EXPECT_EQ(guarded.before, Tint::Red);
    EXPECT_EQ(guarded.after, Tint::Red);
}

TEST_F(EnumLifetime, ComparesByNumber)
{
    const Tint ascending[] = {Tint::Lowest, Tint{-1}, Tint::Unnamed, Tint::Red, Tint::Highest};
    for (const Tint& left : ascending) {
        for (const Tint& right : ascending) {
            const int expected = left < right ? -1 : left > right ? 1 : 0;
            EXPECT_EQ(m_type.compare(m_type, &left, &right), expected)
                << static_cast<int>(left) << " " << static_cast<int>(right);
        }
    }
}

} // namespace
