// SPDX-License-Identifier: MIT
#include <dlfcn.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <set>
#include <thread>
#include <vector>

#include "hardware/link_control.h"
#include "hardware/log_contexts.h"
#include "hardware/midi/device.h"
#include "os/log.h"

using Hardware::Midi::Device;

namespace
{

/// What the loaded library itself exports under that name, whoever else may have a copy.
const void* FindInLibrary(const char* name)
{
    void* const library = dlopen("libhardware.so.0", RTLD_LAZY | RTLD_NOLOAD);
    return library ? dlsym(library, name) : nullptr;
}

bool IsContextAlive()
{
    return Os::Log::Context::Find("Hardware/Midi") != nullptr;
}

} // namespace

TEST(MidiLibrary, ExportsTheTableOfChannelMessageLengths)
{
    EXPECT_NE(FindInLibrary("_ZN8Hardware4Midi6Device17noteMessageLengthE"), nullptr);
    EXPECT_EQ(Device::noteMessageLength[0x9], 3);
}

TEST(MidiLibrary, ExportsTheTableOfSystemMessageLengths)
{
    EXPECT_NE(FindInLibrary("_ZN8Hardware4Midi6Device19systemMessageLengthE"), nullptr);
    EXPECT_EQ(Device::systemMessageLength[0x2], 3U);
}

TEST(MidiLibrary, ExportsTheLinkAnchor)
{
    EXPECT_NE(FindInLibrary("_Z16Midi_LinkControlv"), nullptr);
}

TEST(MidiLibrary, KeepsThePrivateCompanionToItself)
{
    EXPECT_NE(FindInLibrary("_ZN8Hardware4Midi6DeviceC1Ev"), nullptr);
    EXPECT_EQ(FindInLibrary("_ZN8Hardware4Midi11_DeviceImplC1ERNS0_6DeviceE"), nullptr);
}

TEST(MidiLogContext, IsNamedMidiBelowHardware)
{
    const Os::Log::Context& context = Hardware::MidiLogContext();
    EXPECT_STREQ(context.GetName(), "Midi");
    EXPECT_EQ(context.GetParent(), &Hardware::HardwareLogContext());
    EXPECT_EQ(context.GetPath(), "Hardware/Midi");
}

TEST(MidiLogContext, AdmitsAllButTrace)
{
    const Os::Log::Context& context = Hardware::MidiLogContext();
    EXPECT_EQ(context.GetMask(), 0x1EU);
    EXPECT_FALSE(context.IsEnabled(1));
    for (const unsigned level : {2U, 4U, 8U, 16U})
        EXPECT_TRUE(context.IsEnabled(level)) << level;
}

// In processes of their own, where nothing has used the context yet.

TEST(MidiLogContextDeathTest, IsMadeOnFirstUse)
{
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_EXIT(
        {
            const bool before = IsContextAlive();
            Hardware::MidiLogContext();
            _exit(!before && IsContextAlive() ? 0 : 1);
        },
        testing::ExitedWithCode(0), "");
}

TEST(MidiLibraryDeathTest, LinkAnchorsDoNothing)
{
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_EXIT(
        {
            Midi_LinkControl();
            Hardware_LinkControl();
            _exit(IsContextAlive() ? 1 : 0);
        },
        testing::ExitedWithCode(0), "");
}

TEST(MidiLogContext, IsOneForAllThreads)
{
    constexpr std::size_t Count = 8;
    std::vector<const Os::Log::Context*> seen(Count);
    std::vector<std::thread> threads;
    for (std::size_t i = 0; i < Count; ++i)
        threads.emplace_back([&seen, i] { seen[i] = &Hardware::MidiLogContext(); });
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(std::set<const Os::Log::Context*>(seen.begin(), seen.end()).size(), 1U);
}
