// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <ostream>
#include <string>

#include "os/log.h"
#include "standalone/log_masks.h"

using Os::Log::Context;

namespace
{

constexpr unsigned Untouched = 30;

struct ListCase {
    const char* list;
    unsigned top;    ///< mask of "Top" afterwards
    unsigned bottom; ///< mask of "Top/Bottom" afterwards
    const char* problem;
};

void PrintTo(const ListCase& c, std::ostream* out)
{
    *out << '"' << c.list << '"';
}

class LogMaskLists : public testing::TestWithParam<ListCase>
{
protected:
    ~LogMaskLists() override { Standalone::ForgetLogMasks(); }

    Context m_top{"Top", nullptr, Untouched};
    Context m_bottom{"Bottom", &m_top, Untouched};
};

class GoodLogMaskLists : public LogMaskLists
{
};

TEST_P(GoodLogMaskLists, AreAppliedWithoutComplaint)
{
    EXPECT_EQ(Standalone::ApplyLogMasks(GetParam().list), "");
    EXPECT_EQ(m_top.GetMask(), GetParam().top);
    EXPECT_EQ(m_bottom.GetMask(), GetParam().bottom);
}

INSTANTIATE_TEST_SUITE_P(Lists, GoodLogMaskLists,
                         testing::Values(ListCase{"", Untouched, Untouched, ""},
                                         ListCase{"Top=31", 31, Untouched, ""},
                                         ListCase{"Top=0", 0, Untouched, ""},
                                         ListCase{"Top/Bottom=7", Untouched, 7, ""},
                                         ListCase{"Top=1,Top/Bottom=2", 1, 2, ""},
                                         ListCase{"Top=0x1f,Top/Bottom=0XA", 31, 10, ""},
                                         ListCase{"Top=1,Top=2", 2, Untouched, ""},
                                         ListCase{"Elsewhere=1", Untouched, Untouched, ""}));

class BadLogMaskLists : public LogMaskLists
{
};

TEST_P(BadLogMaskLists, ChangeNothingAndNameTheBadItem)
{
    EXPECT_EQ(Standalone::ApplyLogMasks(GetParam().list), GetParam().problem);
    EXPECT_EQ(m_top.GetMask(), Untouched);
    EXPECT_EQ(m_bottom.GetMask(), Untouched);
}

ListCase Bad(const char* list, const char* problem)
{
    return {list, Untouched, Untouched, problem};
}

INSTANTIATE_TEST_SUITE_P(
    Lists, BadLogMaskLists,
    testing::Values(Bad("Top", "'Top' is not of the form PATH=MASK"),
                    Bad("=5", "'=5' is not of the form PATH=MASK"),
                    Bad(",Top=1", "'' is not of the form PATH=MASK"),
                    Bad("Top=1,Bottom", "'Bottom' is not of the form PATH=MASK"),
                    Bad("Top=1,Top/Bottom=32", "'Top/Bottom=32' has no mask from 0 to 31"),
                    Bad("Top=", "'Top=' has no mask from 0 to 31"),
                    Bad("Top=-1", "'Top=-1' has no mask from 0 to 31"),
                    Bad("Top= 1", "'Top= 1' has no mask from 0 to 31"),
                    Bad("Top=1 ", "'Top=1 ' has no mask from 0 to 31"),
                    Bad("Top=1f", "'Top=1f' has no mask from 0 to 31"),
                    Bad("Top=0x", "'Top=0x' has no mask from 0 to 31"),
                    Bad("Top=0x20", "'Top=0x20' has no mask from 0 to 31"),
                    Bad("Top=4294967297", "'Top=4294967297' has no mask from 0 to 31"),
                    Bad("Top=Bottom=1", "'Top=Bottom=1' has no mask from 0 to 31")));

TEST_F(LogMaskLists, AreKeptForContextsMadeLater)
{
    EXPECT_EQ(Standalone::ApplyLogMasks("Top/Later=31"), "");
    const Context later("Later", &m_top, 0);
    EXPECT_EQ(later.GetMask(), 31u);
}

TEST_F(LogMaskLists, KeepNothingWhenOneItemIsBad)
{
    EXPECT_NE(Standalone::ApplyLogMasks("Top/Later=31,Top/Bottom"), "");
    const Context later("Later", &m_top, 0);
    EXPECT_EQ(later.GetMask(), 0u);
}

} // namespace
