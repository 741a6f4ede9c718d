// SPDX-License-Identifier: MIT
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <thread>
#include <vector>

#include "os/log.h"
#include "platform/sample_type.h"
#include "support/log_capture.h"

using TestSupport::TintType;

namespace
{

constexpr unsigned Code = 60001;

TEST(TypeRegistry, FindsATypeByItsCode)
{
    const TintType type(Code, "Sample::Tint");
    EXPECT_EQ(xtti::find(Code), &type);
    EXPECT_EQ(xtti::find(Code + 1), nullptr);
}

TEST(TypeRegistry, FindsATypeByItsWholeName)
{
    const TintType type(Code, "Sample::Tint");
    EXPECT_EQ(xtti::find("Sample::Tint"), &type);
    for (const char* name : {"", "Tint", "Sample::", "Sample::Tint2", "sample::tint"})
        EXPECT_EQ(xtti::find(name), nullptr) << name;
}

TEST(TypeRegistry, KeepsWhatWasRegistered)
{
    const TintType type(Code, "Sample::Tint");
    EXPECT_EQ(type.code, Code);
    EXPECT_STREQ(type.name, "Sample::Tint");
    EXPECT_EQ(type.size, 4u);
    EXPECT_EQ(type.descriptor.lowest, -2);
    EXPECT_EQ(type.descriptor.highest, 260);
    EXPECT_EQ(type.descriptor.first_named, 1);
    EXPECT_EQ(type.descriptor.last_named, 3);
    EXPECT_EQ(type.descriptor.name_count, 3);
    EXPECT_EQ(type.descriptor.names, TestSupport::TintNames.data());
}

TEST(TypeRegistry, PutsEachHandlerInItsPlace)
{
    const TintType type;
    EXPECT_EQ(type.save, &xtti::save_enum);
    EXPECT_EQ(type.load, &xtti::load_enum);
    EXPECT_EQ(type.save_text, &xtti::save_enum_text);
    EXPECT_EQ(type.load_text, &xtti::load_enum_text);
    EXPECT_EQ(type.pctor, &xtti::enum_pctor);
    EXPECT_EQ(type.pdtor, &xtti::POD_pdtor);
    EXPECT_EQ(type.ctor, &xtti::enum_ctor);
    EXPECT_EQ(type.dtor, &xtti::POD_dtor);
    EXPECT_EQ(type.cpyctor, &xtti::POD_cpyctor);
    EXPECT_EQ(type.ass, &xtti::POD_ass);
    EXPECT_EQ(type.pcpyctor, &xtti::POD_pcpyctor);
    EXPECT_EQ(type.compare, &xtti::compare_enum);
    EXPECT_EQ(type.to_text, &xtti::enum_to_text);
    EXPECT_EQ(type.from_text, &xtti::enum_from_text);
}

TEST(TypeRegistry, ForgetsATypeWhenItsRegistrationGoes)
{
    std::optional<TintType> type;
    type.emplace(Code, "Sample::Tint");
    type.reset();
    EXPECT_EQ(xtti::find(Code), nullptr);
    EXPECT_EQ(xtti::find("Sample::Tint"), nullptr);
}

TEST(TypeRegistry, KeepsTheFirstOfTwoTypesWithOneCodeAndLogsTheSecond)
{
    const TintType first(Code, "Sample::First");
    const TestSupport::LogCapture capture;
    const TintType second(Code, "Sample::Second");
    EXPECT_EQ(xtti::find(Code), &first);
    EXPECT_EQ(xtti::find("Sample::Second"), nullptr);
    ASSERT_EQ(capture.GetLines().size(), 1u);
    EXPECT_EQ(capture.GetLines()[0].level, 8u);
    EXPECT_EQ(capture.GetLines()[0].text, "Type code 60001 of Sample::Second is taken");
}

TEST(TypeRegistry, LogsNothingForATypeThatFindsItsCodeFree)
{
    const TestSupport::LogCapture capture;
    const TintType type;
    EXPECT_TRUE(capture.GetLines().empty());
}

TEST(TypeRegistry, KeepsTheFirstWhenTheSecondOfTheSameCodeGoes)
{
    const TestSupport::LogCapture silence;
    const TintType first(Code, "Sample::First");
    {
        const TintType second(Code, "Sample::Second");
    }
    EXPECT_EQ(xtti::find(Code), &first);
}

TEST(TypeRegistry, GivesACodeAwayAgainOnceItIsFree)
{
    const TestSupport::LogCapture silence;
    std::optional<TintType> first;
    first.emplace(Code, "Sample::First");
    const TintType refused(Code, "Sample::Refused");
    first.reset();
    EXPECT_EQ(xtti::find(Code), nullptr);
    const TintType next(Code, "Sample::Next");
    EXPECT_EQ(xtti::find(Code), &next);
}

TEST(TypeRegistry, ListsAllTypesByAscendingCode)
{
    const TintType high(Code + 2, "Sample::High");
    const TintType low(Code, "Sample::Low");
    const TintType middle(Code + 1, "Sample::Middle");
    std::vector<const xtti::type_reg*> ours;
    for (const xtti::type_reg* const type : xtti::registered_types())
        if (type->code >= Code && type->code <= Code + 2)
            ours.push_back(type);
    EXPECT_THAT(ours, testing::ElementsAre(&low, &middle, &high));
}

TEST(TypeRegistry, IsUsedByManyThreadsAtOnce)
{
    const TintType lasting(Code, "Sample::Lasting");
    std::vector<std::thread> threads;
    for (unsigned i = 1; i <= 4; ++i) {
        threads.emplace_back([i] {
            const std::string name = "Sample::Brief" + std::to_string(i);
            for (int n = 0; n < 500; ++n) {
                const TintType brief(Code + i, name.c_str());
                EXPECT_EQ(xtti::find(Code + i), &brief);
                EXPECT_NE(xtti::find(Code), nullptr);
            }
        });
    }
    for (std::thread& thread : threads)
        thread.join();
}

} // namespace
