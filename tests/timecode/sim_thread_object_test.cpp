// SPDX-License-Identifier: MIT
// How the simulator uses the platform's thread, seen by a thread that never runs.
#include <gmock/gmock.h>

#include <functional>
#include <string>
#include <vector>

#include "hardware/timecode/device_sim.h"
#include "os/thread.h"

namespace
{

struct Creation {
    Os::Thread::Entry entry;
    void* argument;
    std::string name;
    int priority;
    unsigned slice;
    unsigned stack;
};

std::vector<Creation> g_creations;
int g_deletions = 0;
std::function<void(const Creation&)> g_onCreation;
std::function<void()> g_onDeletion;

} // namespace

// This program's own thread stands before the platform's.

namespace Os
{

Thread::Thread(Entry entry, void* argument, const char* name, int priority, unsigned slice,
               unsigned stack)
    : m_entry(entry), m_argument(argument), m_name(name), m_slice(slice), m_handle()
{
    g_creations.push_back({entry, argument, name, priority, slice, stack});
    if (g_onCreation)
        g_onCreation(g_creations.back());
}

Thread::~Thread()
{
    ++g_deletions;
    if (g_onDeletion)
        g_onDeletion();
}

} // namespace Os

namespace
{

using Hardware::Timecode::Device;
using Hardware::Timecode::DeviceSim;

class SimThreadObject : public testing::Test
{
protected:
    SimThreadObject() { m_device.Create(1); }
    ~SimThreadObject() override
    {
        g_onCreation = nullptr;
        g_onDeletion = nullptr;
    }
    void SetUp() override
    {
        g_creations.clear();
        g_deletions = 0;
    }

    DeviceSim m_device{nullptr};
};

TEST_F(SimThreadObject, IsMadeByStartWithNameAndDefaults)
{
    m_device.Start(1);
    ASSERT_EQ(g_creations.size(), 1U);
    EXPECT_EQ(g_creations[0].name, "Timecode Simulator");
    EXPECT_EQ(g_creations[0].priority, 0);
    EXPECT_EQ(g_creations[0].slice, +Os::Thread::DefaultSlice);
    EXPECT_EQ(g_creations[0].stack, +Os::Thread::DefaultStack);
    EXPECT_NE(g_creations[0].argument, nullptr);
}

TEST_F(SimThreadObject, IsMadeOnceTheInstanceIsStarted)
{
    bool started = false;
    g_onCreation = [&](const Creation&) { started = m_device.IsStarted(1); };
    m_device.Start(1);
    EXPECT_TRUE(started) << "else the thread could end at once";
}

TEST_F(SimThreadObject, IsMadeForEachInstanceWithItsOwnArgument)
{
    m_device.Create(2);
    m_device.Start(1);
    m_device.Start(2);
    ASSERT_EQ(g_creations.size(), 2U);
    EXPECT_NE(g_creations[0].argument, g_creations[1].argument);
}

TEST_F(SimThreadObject, IsNotMadeWhenStartedAlready)
{
    m_device.Start(1);
    m_device.Start(1);
    EXPECT_EQ(g_creations.size(), 1U);
    EXPECT_EQ(g_deletions, 0);
}

TEST_F(SimThreadObject, IsDeletedByStopOnceTheInstanceIsStopped)
{
    bool started = true;
    m_device.Start(1);
    g_onDeletion = [&] { started = m_device.IsStarted(1); };
    m_device.Stop(1);
    EXPECT_EQ(g_deletions, 1);
    EXPECT_FALSE(started) << "else the thread would never end";
}

TEST_F(SimThreadObject, IsDeletedByStopOnce)
{
    m_device.Start(1);
    m_device.Stop(1);
    m_device.Stop(1);
    EXPECT_EQ(g_deletions, 1);
}

TEST_F(SimThreadObject, IsMadeAnewByARestart)
{
    m_device.Start(1);
    m_device.Stop(1);
    m_device.Start(1);
    EXPECT_EQ(g_creations.size(), 2U);
    EXPECT_EQ(g_deletions, 1);
}

TEST_F(SimThreadObject, IsDeletedByDestroyBeforeTheReport)
{
    int deletionsAtReport = 0;
    QObject::connect(&m_device, &Device::deviceRemoved, [&] { deletionsAtReport = g_deletions; });
    m_device.Start(1);
    m_device.Destroy(1);
    EXPECT_EQ(deletionsAtReport, 1);
}

TEST_F(SimThreadObject, IsDeletedWithTheDevice)
{
    {
        DeviceSim device(nullptr);
        device.Create(1);
        device.Create(2);
        device.Start(1);
        device.Start(2);
    }
    EXPECT_EQ(g_deletions, 2);
}

TEST_F(SimThreadObject, RunsAnEntryThatReturnsZeroWhenStopped)
{
    unsigned result = 99;
    m_device.Start(1);
    g_onDeletion = [&] { result = g_creations[0].entry(g_creations[0].argument); };
    m_device.Stop(1);
    EXPECT_EQ(result, 0U);
}

} // namespace
