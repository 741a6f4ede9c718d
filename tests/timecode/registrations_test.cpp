// SPDX-License-Identifier: MIT
// What the timecode module registers when it is loaded.
#include <gmock/gmock.h>

#include <string>
#include <vector>

#include "hardware/midi/msc_com_format.h"
#include "hardware/timecode/enumerations.h"
#include "standalone/memory_stream.h"
#include "xtti/enum_handlers.h"
#include "xtti/type_reg.h"

namespace
{

using namespace Hardware;

struct Registration {
    unsigned code;
    const char* name;
    int lowest, highest, firstNamed, lastNamed;
    std::vector<std::wstring> names;
};

const std::vector<Registration>& GetRegistrations()
{
    static const std::vector<Registration> registrations = {
        {849,
         "Hardware::TimecodeFormat",
         0,
         4,
         0,
         4,
         {L"SMPTE 30", L"NTSC 30", L"EBU 25", L"Film 24", L"Invalid"}},
        {850,
         "Hardware::TimecodeType",
         0,
         6,
         0,
         6,
         {L"None", L"LTC", L"VITC", L"MIDI", L"CD", L"Simulated", L"Invalid"}},
        {851, "Hardware::VideoFormat", 0, 2, 0, 1, {L"PAL", L"NTSC"}},
    };
    return registrations;
}

TEST(Registrations, HaveTheirCodes)
{
    EXPECT_EQ(get_type_code<TimecodeFormat>(), 849U);
    EXPECT_EQ(get_type_code<TimecodeType>(), 850U);
    EXPECT_EQ(get_type_code<VideoFormat>(), 851U);
    const TimecodeType type = TimecodeType_Cd;
    EXPECT_EQ(get_type_code(&type), 850U);
}

TEST(Registrations, AreFourInTheWholeLibrary)
{
    std::vector<unsigned> codes;
    for (const xtti::type_reg* const type : xtti::registered_types())
        codes.push_back(type->code);
    EXPECT_THAT(codes, testing::ElementsAre(849, 850, 851, get_type_code<MscComFormat>()));
}

TEST(Registrations, AreFoundByCodeAndByName)
{
    for (const Registration& expected : GetRegistrations()) {
        const xtti::type_reg* const type = xtti::find(expected.code);
        ASSERT_NE(type, nullptr) << expected.name;
        EXPECT_STREQ(type->name, expected.name);
        EXPECT_EQ(type->code, expected.code);
        EXPECT_EQ(type->size, 4U);
        EXPECT_EQ(xtti::find(expected.name), type);
    }
}

TEST(Registrations, DescribeTheirRangesAndNames)
{
    for (const Registration& expected : GetRegistrations()) {
        SCOPED_TRACE(expected.name);
        const xtti::type_reg* const type = xtti::find(expected.code);
        ASSERT_NE(type, nullptr);
        const xtti::enum_desc& descriptor = type->descriptor;
        EXPECT_EQ(descriptor.lowest, expected.lowest);
        EXPECT_EQ(descriptor.highest, expected.highest);
        EXPECT_EQ(descriptor.first_named, expected.firstNamed);
        EXPECT_EQ(descriptor.last_named, expected.lastNamed);
        const std::vector<std::wstring> names(descriptor.names,
                                              descriptor.names + descriptor.name_count);
        EXPECT_EQ(names, expected.names);
    }
}

TEST(Registrations, HaveTheStockOperationsOfAnEnumeration)
{
    for (const Registration& expected : GetRegistrations()) {
        SCOPED_TRACE(expected.name);
        const xtti::type_reg* const type = xtti::find(expected.code);
        ASSERT_NE(type, nullptr);
        EXPECT_EQ(type->save, &xtti::save_enum);
        EXPECT_EQ(type->load, &xtti::load_enum);
        EXPECT_EQ(type->save_text, &xtti::save_enum_text);
        EXPECT_EQ(type->load_text, &xtti::load_enum_text);
        EXPECT_EQ(type->pctor, &xtti::enum_pctor);
        EXPECT_EQ(type->pdtor, &xtti::POD_pdtor);
        EXPECT_EQ(type->ctor, &xtti::enum_ctor);
        EXPECT_EQ(type->dtor, &xtti::POD_dtor);
        EXPECT_EQ(type->cpyctor, &xtti::POD_cpyctor);
        EXPECT_EQ(type->ass, &xtti::POD_ass);
        EXPECT_EQ(type->pcpyctor, &xtti::POD_pcpyctor);
        EXPECT_EQ(type->compare, &xtti::compare_enum);
        EXPECT_EQ(type->to_text, &xtti::enum_to_text);
        EXPECT_EQ(type->from_text, &xtti::enum_from_text);
    }
}

TEST(Registrations, TurnEveryNamedValueIntoTextAndBack)
{
    for (const Registration& expected : GetRegistrations()) {
        const xtti::type_reg& type = *xtti::find(expected.code);
        for (std::size_t i = 0; i < expected.names.size(); ++i) {
            const auto value = static_cast<unsigned>(i);
            EXPECT_EQ(type.to_text(type, &value), expected.names[i]);
            unsigned back = 99;
            EXPECT_TRUE(type.from_text(type, &back, expected.names[i]));
            EXPECT_EQ(back, value);
        }
    }
}

TEST(Registrations, TextsOfKnownValues)
{
    const auto textOf = [](const auto& value) {
        const xtti::type_reg& type = *xtti::find(get_type_code(&value));
        return type.to_text(type, &value);
    };
    EXPECT_EQ(textOf(TimecodeType_Cd), L"CD");
    EXPECT_EQ(textOf(TimecodeFormat_Invalid), L"Invalid");
    EXPECT_EQ(textOf(VideoFormat_Invalid), L"") << "it has no name";
}

TEST(Registrations, LoadWhatTheySavedWithinTheirRange)
{
    for (const Registration& expected : GetRegistrations()) {
        const xtti::type_reg& type = *xtti::find(expected.code);
        for (int value = expected.lowest; value <= expected.highest + 1; ++value) {
            Standalone::MemoryOutput out;
            type.save(type, &value, out);
            Standalone::MemoryInput in(out.GetBytes());
            int loaded = -1;
            EXPECT_EQ(type.load(type, &loaded, in), value <= expected.highest) << expected.name;
            EXPECT_EQ(loaded, value <= expected.highest ? value : -1) << expected.name;
        }
    }
}

} // namespace
