// SPDX-License-Identifier: MIT

// How the fading uses the platform's thread, seen by a thread that never runs.

#include <gmock/gmock.h>

#include <string>
#include <vector>

#include "hardware/console_light_fading.h"
#include "os/thread.h"

namespace
{

std::vector<std::string> g_log;
void* g_argument = nullptr;
/// Made when the wings are asked for the drawer; does not count.
constexpr char Driver[] = "Widget Driver";

} // namespace

// This program's own thread stands before the platform's.

namespace Os
{

Thread::Thread(Entry entry, void* argument, const char* name, int priority, unsigned slice,
               unsigned stack)
    : m_entry(entry), m_argument(argument), m_name(name), m_slice(slice), m_handle()
{
    if (m_name == Driver)
        return;
    g_argument = argument;
    g_log.push_back("made " + m_name + " " + std::to_string(priority) + " " +
                    std::to_string(slice) + " " + std::to_string(stack));
}

Thread::~Thread()
{
    if (m_name != Driver)
        g_log.emplace_back("destroyed");
}

} // namespace Os

using Hardware::ConsoleLightFading;
using testing::ElementsAre;

TEST(FadingThread, IsMadeWithItsNameAndDefaults)
{
    ConsoleLightFading& fading = ConsoleLightFading::Get();
    EXPECT_THAT(g_log, testing::IsEmpty()); // not by Get()
    fading.init_thread();
    EXPECT_THAT(g_log, ElementsAre("made ConsoleLightFadingThread 0 " +
                                   std::to_string(Os::Thread::DefaultSlice) + " " +
                                   std::to_string(Os::Thread::DefaultStack)));
    EXPECT_EQ(g_argument, &fading);
    fading.end_thread();
}

TEST(FadingThread, TheOneBeforeIsDestroyedFirst)
{
    ConsoleLightFading& fading = ConsoleLightFading::Get();
    fading.init_thread();
    fading.init_thread();
    ASSERT_EQ(g_log.size(), 3U);
    EXPECT_EQ(g_log[1], "destroyed");
    fading.end_thread();
    EXPECT_EQ(g_log.size(), 4U);
}

TEST(FadingThread, IsDestroyedOnce)
{
    ConsoleLightFading& fading = ConsoleLightFading::Get();
    fading.end_thread();
    fading.init_thread();
    fading.end_thread();
    fading.end_thread();
    EXPECT_EQ(g_log.size(), 2U);
}
