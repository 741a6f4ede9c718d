// SPDX-License-Identifier: MIT
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <pthread.h>
#include <sys/resource.h>
#include <unistd.h>

#include <csignal>
#include <cstddef>

#include "os/thread.h"

using Os::Thread;

namespace
{

unsigned GetStackSize(void* argument)
{
    pthread_attr_t attributes;
    pthread_getattr_np(pthread_self(), &attributes);
    pthread_attr_getstacksize(&attributes, static_cast<std::size_t*>(argument));
    pthread_attr_destroy(&attributes);
    return 0;
}

std::size_t RunWithStack(unsigned stack)
{
    std::size_t size = 0;
    const Thread* const thread =
        new Thread(&GetStackSize, &size, "Stack", 0, Thread::DefaultSlice, stack);
    delete thread;
    return size;
}

std::size_t GetDefaultStack()
{
    pthread_attr_t attributes;
    std::size_t size = 0;
    pthread_getattr_default_np(&attributes);
    pthread_attr_getstacksize(&attributes, &size);
    pthread_attr_destroy(&attributes);
    return size;
}

TEST(ThreadStack, HasAtLeastTheSizeAskedFor)
{
    // A little larger than the default, which the system's own could never be taken for.
    const auto asked = static_cast<unsigned>(GetDefaultStack()) + 0x100000;
    EXPECT_GE(RunWithStack(asked), asked);
}

TEST(ThreadStack, IsSmallWhereLittleIsAskedFor)
{
    for (const unsigned asked : {0x40000u, 0x40001u, 100001u}) {
        const std::size_t size = RunWithStack(asked);
        EXPECT_GE(size, asked);
        EXPECT_LT(size, GetDefaultStack() / 2) << asked;
    }
}

TEST(ThreadStack, IsNeverSmallerThanAThreadNeeds)
{
    EXPECT_GE(RunWithStack(1), static_cast<std::size_t>(sysconf(_SC_THREAD_STACK_MIN)));
}

TEST(ThreadStack, IsTheSystemsOwnByDefault)
{
    EXPECT_EQ(Thread::DefaultStack, 0u);
    EXPECT_EQ(Thread::DefaultSlice, 0u);
    EXPECT_GE(RunWithStack(Thread::DefaultStack), GetDefaultStack());
}

#if !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)

/// The sanitizers' own memory would not fit.
void StartWithoutRoomForTheStack()
{
    const rlimit gigabyte{1u << 30, 1u << 30};
    setrlimit(RLIMIT_AS, &gigabyte);
    RunWithStack(0xFFFFF000);
}

TEST(ThreadStackDeathTest, ThatCannotBeHadIsFatal)
{
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_EXIT(
        StartWithoutRoomForTheStack(), testing::KilledBySignal(SIGABRT),
        testing::ContainsRegex("Verify: 'pthread_create.* is FALSE, line [0-9]+, os/thread"));
}

#endif

} // namespace
