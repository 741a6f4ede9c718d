// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <string>
#include <type_traits>
#include <vector>

#include "hardware/midi/msc_com_format.h"
#include "standalone/memory_stream.h"
#include "xtti/enum_handlers.h"
#include "xtti/type_reg.h"

namespace
{

static_assert(std::is_same_v<std::underlying_type_t<Hardware::MscComFormat>, unsigned int>);

const std::vector<std::wstring> Names = {
    L"01: General Lighting", L"02: Moving Lights", L"03: Colour Changers", L"04: Strobes",
    L"05: Lasers",           L"06: Chasers",       L"MscComFormat_MAX"};
const std::vector<std::string> NarrowNames = {
    "01: General Lighting", "02: Moving Lights", "03: Colour Changers", "04: Strobes",
    "05: Lasers",           "06: Chasers",       "MscComFormat_MAX"};

class MscComFormatRegistration : public testing::Test
{
protected:
    void SetUp() override { ASSERT_NE(m_type, nullptr); }

    const xtti::type_reg* const m_type = xtti::find(975U);
};

} // namespace

TEST(MscComFormat, TypeCodeIs975)
{
    EXPECT_EQ(get_type_code<Hardware::MscComFormat>(), 975U);
}

TEST(MscComFormat, ValuesCountFromOne)
{
    EXPECT_EQ(Hardware::MscComFormat_GeneralLighting, 1U);
    EXPECT_EQ(Hardware::MscComFormat_MovingLights, 2U);
    EXPECT_EQ(Hardware::MscComFormat_ColourChangers, 3U);
    EXPECT_EQ(Hardware::MscComFormat_Strobes, 4U);
    EXPECT_EQ(Hardware::MscComFormat_Lasers, 5U);
    EXPECT_EQ(Hardware::MscComFormat_Chasers, 6U);
    EXPECT_EQ(Hardware::MscComFormat_MAX, 7U);
}

TEST_F(MscComFormatRegistration, IsFoundByItsQualifiedName)
{
    EXPECT_EQ(xtti::find("Hardware::MscComFormat"), m_type);
    EXPECT_STREQ(m_type->name, "Hardware::MscComFormat");
}

TEST_F(MscComFormatRegistration, HasItsCodeAndSize)
{
    EXPECT_EQ(m_type->code, 975U);
    EXPECT_EQ(m_type->size, 4U);
}

TEST_F(MscComFormatRegistration, DescribesTheValues)
{
    EXPECT_EQ(m_type->descriptor.lowest, 1);
    EXPECT_EQ(m_type->descriptor.highest, 127);
    EXPECT_EQ(m_type->descriptor.first_named, 1);
    EXPECT_EQ(m_type->descriptor.last_named, 7);
    EXPECT_EQ(m_type->descriptor.name_count, 7);
}

TEST_F(MscComFormatRegistration, ListsTheNamesInTheOrderOfTheValues)
{
    const auto* const names = m_type->descriptor.names;
    EXPECT_EQ(std::vector<std::wstring>(names, names + 7), Names);
}

TEST_F(MscComFormatRegistration, UsesTheStockOperations)
{
    EXPECT_EQ(m_type->save, &xtti::save_enum);
    EXPECT_EQ(m_type->load, &xtti::load_enum);
    EXPECT_EQ(m_type->save_text, &xtti::save_enum_text);
    EXPECT_EQ(m_type->load_text, &xtti::load_enum_text);
    EXPECT_EQ(m_type->pctor, &xtti::enum_pctor);
    EXPECT_EQ(m_type->pdtor, &xtti::POD_pdtor);
    EXPECT_EQ(m_type->ctor, &xtti::enum_ctor);
    EXPECT_EQ(m_type->dtor, &xtti::POD_dtor);
    EXPECT_EQ(m_type->cpyctor, &xtti::POD_cpyctor);
    EXPECT_EQ(m_type->ass, &xtti::POD_ass);
    EXPECT_EQ(m_type->pcpyctor, &xtti::POD_pcpyctor);
    EXPECT_EQ(m_type->compare, &xtti::compare_enum);
    EXPECT_EQ(m_type->to_text, &xtti::enum_to_text);
    EXPECT_EQ(m_type->from_text, &xtti::enum_from_text);
}

TEST_F(MscComFormatRegistration, TextFormsAreTheDisplayNames)
{
    for (unsigned value = 1; value <= 7; ++value) {
        EXPECT_EQ(m_type->to_text(*m_type, &value), Names[value - 1]);
        unsigned read = 0;
        EXPECT_TRUE(m_type->from_text(*m_type, &read, Names[value - 1]));
        EXPECT_EQ(read, value);
    }
}

TEST_F(MscComFormatRegistration, WrittenTextIsTheDisplayName)
{
    for (unsigned value = 1; value <= 7; ++value) {
        Standalone::MemoryOutput out;
        m_type->save_text(*m_type, &value, out);
        EXPECT_EQ(out.GetBytes(), NarrowNames[value - 1] + '\n');
    }
}

TEST_F(MscComFormatRegistration, ValuesAboveTheNamesHaveNoText)
{
    const unsigned value = 8;
    EXPECT_EQ(m_type->to_text(*m_type, &value), L"");
}
