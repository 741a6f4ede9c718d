// SPDX-License-Identifier: MIT
// The commands that would write to physical addresses, on a computer that has other things there.
#include <gmock/gmock.h>

#include <QCoreApplication>
#include <array>

#include "desk/physical_memory.h"
#include "hwctl/command.h"
#include "hwctl/display_registers.h"
#include "hwctl/light_run.h"
#include "os/log.h"
#include "standalone/platform_settings.h"

namespace
{

using Hwctl::LogTap;
using testing::HasSubstr;

constexpr std::uint32_t Foreign = 0x12345678;

/// Memory of a computer that is not a console.
class HwctlForeignMemory : public testing::Test
{
protected:
    HwctlForeignMemory()
    {
        Standalone::ConfigurePlatform(Standalone::MakeConsoleSettings(7));
        ForEachAddress([this](std::uint32_t address) { m_memory.Write(address, Foreign); });
    }

    template <class Act> static void ForEachAddress(Act act)
    {
        for (const auto& side : Hwctl::DisplaySides)
            for (const std::uint32_t address : side.brightness) {
                act(address);
                act(Hwctl::DisplaySide::GetFrequency(address));
            }
    }
    /// What the command complains of.
    std::string Run(const std::string& line)
    {
        CLI::App app;
        Hwctl::CommonOptions options;
        Hwctl::Action action;
        Hwctl::AddBacklightCommand(app, options, action);
        Hwctl::AddLightsCommand(app, options, action);
        app.parse(line);
        try {
            action();
            return "";
        } catch (const Hwctl::CommandError& error) {
            return error.what();
        }
    }

    char m_name[5] = "test";
    std::array<char*, 2> m_words{m_name, nullptr};
    int m_wordCount = 1;
    QCoreApplication m_application{m_wordCount, m_words.data()};
    Desk::KernelTestbed m_testbed;
    Desk::PhysicalMemory m_memory{m_testbed};
};

} // namespace

TEST_F(HwctlForeignMemory, IsNotWritten)
{
    // Settings of the user's own stay out of it.
    qputenv("XDG_CONFIG_HOME", testing::TempDir().c_str());
    for (const char* const line : {"backlight", "backlight --left 20", "lights", "lights left=20"})
        EXPECT_THAT(Run(line),
                    HasSubstr("no register of the left display: fe627afc holds 12345678"))
            << line;
    ForEachAddress([this](std::uint32_t address) { EXPECT_EQ(m_memory.Read(address), Foreign); });
}

TEST(HwctlLightsCheck, FailsWithTheFirstErrorThatWasLogged)
{
    Os::Log::Context context("HwctlLightsCheck", nullptr, Os::Log::AllButTrace);
    LogTap tap(LogTap::Need::WhatThereIs);
    EXPECT_NO_THROW(Hwctl::CheckLights(tap));
    OS_LOG(context, Os::Log::Error, "light.cpp", "Open on /sys/pwm failed");
    OS_LOG(context, Os::Log::Error, "light.cpp", "Once more");
    try {
        Hwctl::CheckLights(tap);
        ADD_FAILURE() << "nothing was thrown";
    } catch (const Hwctl::CommandError& error) {
        EXPECT_STREQ(error.what(),
                     "not everything could be set, 2 failures, such as: Open on /sys/pwm failed");
    }
}
