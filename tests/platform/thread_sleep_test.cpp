// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>
#include <pthread.h>
#include <signal.h>
#include <time.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdint>
#include <thread>

#include "os/clock.h"
#include "os/thread.h"
#include "support/stepping_clock.h"

using Os::Thread;

namespace
{

std::int64_t GetNanoseconds()
{
    timespec now{};
    clock_gettime(CLOCK_MONOTONIC, &now);
    return std::int64_t{now.tv_sec} * 1000000000 + now.tv_nsec;
}

TEST(ThreadSleep, LastsAtLeastAsLongAsAsked)
{
    for (const unsigned milliseconds : {0u, 1u, 999u, 1001u}) {
        const std::int64_t start = GetNanoseconds();
        Thread::Sleep(milliseconds);
        EXPECT_GE(GetNanoseconds() - start, std::int64_t{milliseconds} * 1000000) << milliseconds;
    }
}

std::atomic<int> g_signals{0};

void CountSignal(int)
{
    ++g_signals;
}

struct Sleeper {
    static constexpr unsigned Milliseconds = 100;
    std::atomic<bool> done{false};
    std::atomic<pthread_t> handle{};
    int interrupted = 0;
    std::int64_t shortest = INT64_MAX;
};

/// Sleeps until signals arrived during three sleeps; gives up after far more.
unsigned SleepUnderSignals(void* argument)
{
    Sleeper& sleeper = *static_cast<Sleeper*>(argument);
    sleeper.handle = pthread_self();
    for (int i = 0; i < 50 && sleeper.interrupted < 3; ++i) {
        const int before = g_signals;
        const std::int64_t start = GetNanoseconds();
        Thread::Sleep(Sleeper::Milliseconds);
        sleeper.shortest = std::min(sleeper.shortest, GetNanoseconds() - start);
        sleeper.interrupted += g_signals != before;
    }
    sleeper.done = true;
    return 0;
}

TEST(ThreadSleep, IsNotShortenedBySignals)
{
    struct sigaction action {
    };
    action.sa_handler = &CountSignal;
    sigaction(SIGUSR2, &action, nullptr);
    Sleeper sleeper;
    {
        const Thread thread(&SleepUnderSignals, &sleeper, "Sleeper", 0, Thread::DefaultSlice,
                            Thread::DefaultStack);
        while (sleeper.handle == pthread_t{})
            std::this_thread::yield();
        while (!sleeper.done) {
            pthread_kill(sleeper.handle, SIGUSR2);
            std::this_thread::sleep_for(std::chrono::milliseconds(2));
        }
    }
    EXPECT_EQ(sleeper.interrupted, 3);
    EXPECT_GE(sleeper.shortest, std::int64_t{Sleeper::Milliseconds} * 1000000);
}

unsigned SleepOneMinute(void*)
{
    Thread::Sleep(60000);
    return 0;
}

TEST(ThreadSleep, FollowsTheClockInForce)
{
    TestSupport::SteppingClock clock;
    const Thread thread(&SleepOneMinute, nullptr, "Sleeper", 0, Thread::DefaultSlice,
                        Thread::DefaultStack);
    EXPECT_EQ(clock.FinishNextSleep(), 60000u);
}

} // namespace
