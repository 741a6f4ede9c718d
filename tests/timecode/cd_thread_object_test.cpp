// SPDX-License-Identifier: MIT
// How the CD device uses the platform's thread, seen by a thread that never runs by itself.
#include <fcntl.h>
#include <gmock/gmock.h>

#include <csignal>
#include <functional>
#include <string>
#include <vector>

#include "desk/cd_drive.h"
#include "hardware/timecode/device_cd.h"
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
std::function<void()> g_onCreation;
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
        g_onCreation();
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

using Hardware::Timecode::DeviceCd;

class CdThreadObject : public testing::Test
{
protected:
    ~CdThreadObject() override { g_onCreation = g_onDeletion = nullptr; }

    Desk::KernelTestbed m_testbed;
    Desk::CdDrive m_drive{m_testbed};
    DeviceCd m_device{nullptr};
};

TEST_F(CdThreadObject, IsMadeByEnableWithNameAndDefaults)
{
    EXPECT_TRUE(g_creations.empty());
    m_device.Enable();
    ASSERT_EQ(g_creations.size(), 1U);
    EXPECT_EQ(g_creations[0].name, "CD Timecode Input");
    EXPECT_EQ(g_creations[0].priority, 0);
    EXPECT_EQ(g_creations[0].slice, +Os::Thread::DefaultSlice);
    EXPECT_EQ(g_creations[0].stack, +Os::Thread::DefaultStack);
    EXPECT_NE(g_creations[0].argument, nullptr);
}

TEST_F(CdThreadObject, IsMadeOnceTheDriveIsOpen)
{
    bool isEnabled = false;
    g_onCreation = [&] { isEnabled = m_device.IsEnabled(); };
    m_device.Enable();
    EXPECT_TRUE(isEnabled) << "else the thread could end at once";
}

TEST_F(CdThreadObject, IsMadeBehindTheReportOfTheSource)
{
    std::size_t creationsAtReport = 99;
    QObject::connect(&m_device, &DeviceCd::deviceAdded,
                     [&] { creationsAtReport = g_creations.size(); });
    m_device.Enable();
    EXPECT_EQ(creationsAtReport, 0U);
}

TEST_F(CdThreadObject, IsMadeOnce)
{
    m_device.Enable();
    m_device.Enable();
    EXPECT_EQ(g_creations.size(), 1U);
}

TEST_F(CdThreadObject, IsNotMadeWithoutADrive)
{
    m_drive.Vanish();
    m_device.Enable();
    EXPECT_TRUE(g_creations.empty());
}

TEST_F(CdThreadObject, IsDeletedByDisableOnceTheDriveIsClosed)
{
    int open = 99;
    m_device.Enable();
    g_onDeletion = [&] { open = m_drive.CountOpen(); };
    m_device.Disable();
    EXPECT_EQ(g_deletions, 1);
    EXPECT_EQ(open, 0);
    EXPECT_EQ(m_drive.CountOpen(), 0);
    m_device.Disable();
    EXPECT_EQ(g_deletions, 1);
}

TEST_F(CdThreadObject, IsDeletedBeforeTheReport)
{
    int deletionsAtReport = 0;
    QObject::connect(&m_device, &DeviceCd::deviceRemoved, [&] { deletionsAtReport = g_deletions; });
    m_device.Enable();
    m_device.Disable();
    EXPECT_EQ(deletionsAtReport, 1);
}

TEST_F(CdThreadObject, IsMadeAnewWhenEnabledAgain)
{
    for (int round = 0; round < 3; ++round) {
        m_device.Enable();
        m_device.Disable();
    }
    EXPECT_EQ(g_creations.size(), 3U);
    EXPECT_EQ(g_deletions, 3);
}

TEST_F(CdThreadObject, IsDeletedWithTheDevice)
{
    {
        DeviceCd device(nullptr);
        device.Enable();
    }
    EXPECT_EQ(g_deletions, 1);
}

TEST_F(CdThreadObject, IsNotMadeWhereASlotDisabled)
{
    {
        DeviceCd device(nullptr);
        QObject::connect(&device, &DeviceCd::deviceAdded, [&device] { device.Disable(); });
        EXPECT_TRUE(device.Enable());
        EXPECT_TRUE(g_creations.empty());
    }
    EXPECT_EQ(g_deletions, 0);
}

TEST_F(CdThreadObject, RunsAnEntryThatReturnsZeroWhenDisabled)
{
    unsigned result = 99;
    m_device.Enable();
    g_onDeletion = [&] { result = g_creations[0].entry(g_creations[0].argument); };
    m_device.Disable();
    EXPECT_EQ(result, 0U);
}

TEST_F(CdThreadObject, HandlesItsSignalByNothingSoThatCallsEnd)
{
    m_device.Enable();
    g_onDeletion = [] { g_creations[0].entry(g_creations[0].argument); };
    struct sigaction before {
    };
    sigaction(SIGUSR1, nullptr, &before);
    EXPECT_EQ(before.sa_handler, SIG_DFL) << "until the thread runs";
    m_device.Disable();
    struct sigaction action {
    };
    sigaction(SIGUSR1, nullptr, &action);
    EXPECT_NE(action.sa_handler, SIG_DFL);
    EXPECT_NE(action.sa_handler, SIG_IGN);
    EXPECT_EQ(action.sa_flags & SA_RESTART, 0);
    EXPECT_EQ(raise(SIGUSR1), 0) << "and goes on";
}

} // namespace
