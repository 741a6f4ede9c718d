// SPDX-License-Identifier: MIT
#include "os/thread.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <csignal>
#include <fstream>
#include <iterator>
#include <optional>
#include <string>

#include "os/event.h"
#include "platform/contender.h"
#include "support/process_facts.h"

using Os::Thread;

namespace
{

struct Job {
    Os::Event begun, gate;
    std::atomic<bool> finished{false};
    std::atomic<pid_t> tid{0};
};

unsigned Work(void* argument)
{
    Job& job = *static_cast<Job*>(argument);
    job.tid = gettid();
    job.begun.Set();
    job.gate.Wait();
    job.finished = true;
    return 0;
}

TEST(Thread, RunsItsEntryWithItsArgumentOnAThreadOfItsOwn)
{
    Job job;
    {
        const Thread thread(&Work, &job, "Worker", 0, Thread::DefaultSlice, Thread::DefaultStack);
        job.begun.Wait();
        EXPECT_NE(job.tid, gettid());
        job.gate.Set();
    }
    EXPECT_TRUE(job.finished);
}

TEST(Thread, StartsByItself)
{
    Job job;
    job.gate.Set();
    const Thread thread(&Work, &job, "Worker", 0, Thread::DefaultSlice, Thread::DefaultStack);
    EXPECT_TRUE(job.begun.Wait());
}

TEST(Thread, EndsOnlyAfterItsEntryReturned)
{
    Job job;
    std::optional<Thread> thread;
    thread.emplace(&Work, &job, "Worker", 0, Thread::DefaultSlice, Thread::DefaultStack);
    job.begun.Wait();
    {
        const TestSupport::Contender ender([&] { thread.reset(); });
        EXPECT_TRUE(ender.ComesToWait());
        EXPECT_FALSE(job.finished);
        job.gate.Set();
    }
    EXPECT_TRUE(job.finished);
}

TEST(Thread, KeepsTheSliceAsAWish)
{
    Job job;
    job.gate.Set();
    const Thread thread(&Work, &job, "Worker", 0, 20, Thread::DefaultStack);
    EXPECT_EQ(thread.GetSlice(), 20u);
}

struct PriorityCase {
    int asked;
    int realTime;
};

TEST(Thread, IsOrdinaryAtPriorityZero)
{
    Job job;
    const Thread thread(&Work, &job, "Worker", 0, Thread::DefaultSlice, Thread::DefaultStack);
    job.begun.Wait();
    EXPECT_EQ(sched_getscheduler(job.tid), sched_getscheduler(0));
    job.gate.Set();
}

TEST(Thread, TakesTurnsInRealTimeAtAPriorityAboveZero)
{
    for (const PriorityCase& c : {PriorityCase{1, 1}, {7, 7}, {99, 99}, {1000, 99}}) {
        Job job;
        const Thread thread(&Work, &job, "Worker", c.asked, Thread::DefaultSlice,
                            Thread::DefaultStack);
        job.begun.Wait();
        sched_param parameters{};
        const int policy = sched_getscheduler(job.tid);
        sched_getparam(job.tid, &parameters);
        job.gate.Set();
        if (policy == sched_getscheduler(0))
            GTEST_SKIP() << "real-time scheduling is not permitted here";
        EXPECT_EQ(policy, SCHED_RR) << c.asked;
        EXPECT_EQ(parameters.sched_priority, c.realTime) << c.asked;
    }
}

unsigned Nothing(void*)
{
    return 0;
}

std::size_t CountMappings()
{
    std::ifstream maps("/proc/self/maps");
    const std::istreambuf_iterator<char> begin(maps), end;
    return static_cast<std::size_t>(std::count(begin, end, '\n'));
}

void StartAndStop(int times)
{
    for (int i = 0; i < times; ++i)
        const Thread thread(&Nothing, nullptr, "Brief", 0, Thread::DefaultSlice,
                            Thread::DefaultStack);
}

TEST(Thread, LeavesNothingBehindAfterAThousandStarts)
{
    constexpr std::size_t Slack = 100; // stacks are cached for later use
    StartAndStop(20);
    const std::size_t descriptors = TestSupport::CountDescriptors();
    const std::size_t threads = TestSupport::CountThreads();
    const std::size_t mappings = CountMappings();
    StartAndStop(1000);
    EXPECT_EQ(TestSupport::CountDescriptors(), descriptors);
    EXPECT_EQ(TestSupport::CountThreads(), threads);
    EXPECT_LT(CountMappings(), mappings + Slack);
}

TEST(Thread, IsNoLongerFoundOnceItHasBeenJoined)
{
    for (int i = 0; i < 2000; ++i) {
        StartAndStop(1);
        ASSERT_TRUE(TestSupport::FindThreads("Brief").empty()) << i;
    }
}

std::atomic<Thread*> g_thread{nullptr};

unsigned DestroyItself(void*)
{
    while (!g_thread)
        Thread::Sleep(1);
    delete g_thread.load();
    return 0;
}

[[noreturn]] void LetAThreadDestroyItself()
{
    g_thread =
        new Thread(&DestroyItself, nullptr, "Self", 0, Thread::DefaultSlice, Thread::DefaultStack);
    for (;;)
        pause();
}

TEST(ThreadDeathTest, DestroyingItselfIsFatal)
{
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_EXIT(
        LetAThreadDestroyItself(), testing::KilledBySignal(SIGABRT),
        testing::ContainsRegex("Trap: 'pthread_equal.* is TRUE, line [0-9]+, os/thread.cpp"));
}

} // namespace
