// SPDX-License-Identifier: MIT
#include "hwctl/display_registers.h"

#include <gmock/gmock.h>

#include "desk/physical_memory.h"
#include "hwctl/command_error.h"
#include "standalone/platform_settings.h"

namespace
{

using Hwctl::CheckDisplayRegisters;
using Hwctl::DisplayRegisters;
using Hwctl::DisplaySides;
using testing::HasSubstr;

constexpr std::uint32_t Nothing = 0xFFFFFFFF;
constexpr std::size_t Left = 0;
constexpr std::size_t Right = 1;

/// Physical memory where no device answers.
class HwctlDisplayRegisters : public testing::Test
{
protected:
    HwctlDisplayRegisters()
    {
        for (const auto& side : DisplaySides)
            for (const std::uint32_t address : side.brightness)
                Put(address, Nothing, Nothing);
    }

    void Put(std::uint32_t brightness, std::uint32_t level, std::uint32_t frequency)
    {
        m_memory.Write(brightness, level);
        m_memory.Write(Hwctl::DisplaySide::GetFrequency(brightness), frequency);
    }
    static std::string Check(bool isForced)
    {
        try {
            CheckDisplayRegisters(isForced);
            return "";
        } catch (const Hwctl::CommandError& error) {
            return error.what();
        }
    }

    Desk::KernelTestbed m_testbed;
    Desk::PhysicalMemory m_memory{m_testbed};
};

} // namespace

TEST_F(HwctlDisplayRegisters, AreAtOneOfTwoPlaces)
{
    Put(DisplaySides[0].brightness[0], 0xBF01, 0x02B00000);
    Put(DisplaySides[1].brightness[1], 0x1000, 0x02C00000);
    Put(DisplaySides[2].brightness[1], 0, 0);
    const DisplayRegisters registers;
    EXPECT_EQ(registers.FindProblem(), "");
    EXPECT_EQ(registers.ReadDuty(Left), 191U);
    EXPECT_EQ(registers.ReadDuty(Right), std::nullopt); // switched off
    EXPECT_EQ(registers.ReadFrequency(Right), 44U);
}

TEST_F(HwctlDisplayRegisters, AreNotReadWhereNoDeviceAnswers)
{
    const DisplayRegisters registers;
    EXPECT_EQ(registers.FindProblem(),
              "no register of the left display: fe627afc holds ffffffff, fe627ae8 holds ffffffff, "
              "f7e27afc holds ffffffff, f7e27ae8 holds ffffffff");
    EXPECT_EQ(registers.ReadDuty(Left), std::nullopt);
    EXPECT_EQ(registers.ReadFrequency(Left), std::nullopt);
}

TEST_F(HwctlDisplayRegisters, HaveNoOtherBitsThanTheirOwn)
{
    for (const auto& side : DisplaySides)
        Put(side.brightness[0], 0xBF01, 0x02B00000);
    EXPECT_EQ(DisplayRegisters().FindProblem(), "");
    Put(DisplaySides[1].brightness[0], 0x8000BF01, 0x02B00000);
    EXPECT_THAT(DisplayRegisters().FindProblem(), HasSubstr("no register of the right display"));
    Put(DisplaySides[1].brightness[0], 0xBF01, 0x12B00000);
    EXPECT_THAT(DisplayRegisters().FindProblem(), HasSubstr("no register of the right display"));
}

TEST_F(HwctlDisplayRegisters, CannotBeReadWhereMemoryCannotBeMapped)
{
    m_memory.RefuseMaps(EPERM);
    EXPECT_THAT(DisplayRegisters().FindProblem(), HasSubstr("fe627afc cannot be read"));
}

TEST_F(HwctlDisplayRegisters, AreNoMatterWithoutMemoryToWriteTo)
{
    m_memory.RefuseOpen(EACCES);
    EXPECT_EQ(DisplayRegisters().FindProblem(), "");
}

TEST_F(HwctlDisplayRegisters, AreCheckedOnConsolesThatHaveThem)
{
    Standalone::ConfigurePlatform(Standalone::MakeConsoleSettings(7));
    EXPECT_THAT(Check(false), HasSubstr("this computer has no register of the left display"));
    EXPECT_THAT(Check(false), HasSubstr("--force"));
    EXPECT_EQ(Check(true), "");
    Standalone::ConfigurePlatform(Standalone::MakeConsoleSettings(8)); // panels
    EXPECT_EQ(Check(false), "");
    Standalone::ConfigurePlatform(Standalone::PlatformSettings()); // a computer
    EXPECT_EQ(Check(false), "");
}
