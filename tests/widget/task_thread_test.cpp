// SPDX-License-Identifier: MIT
#include "widget/task_thread.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <memory>
#include <vector>

#include "os/event.h"
#include "platform/contender.h"
#include "support/process_facts.h"
#include "support/wait.h"

using Standalone::TaskThread;
using testing::ElementsAre;
using TestSupport::Contender;

namespace
{

TEST(TaskThread, CarriesOutTasksInTheirOrder)
{
    TaskThread thread("Tasks");
    std::vector<int> done;
    for (int i = 0; i < 100; ++i)
        EXPECT_TRUE(thread.Post([&done, i] { done.push_back(i); }));
    EXPECT_TRUE(thread.Run([&done] { done.push_back(100); }));
    ASSERT_EQ(done.size(), 101u);
    EXPECT_TRUE(std::is_sorted(done.begin(), done.end()));
}

TEST(TaskThread, IsAThreadOfThatName)
{
    TaskThread thread("Tasks");
    bool isCurrent = false;
    int tid = 0;
    thread.Run([&] {
        isCurrent = thread.IsCurrent();
        tid = gettid();
    });
    EXPECT_TRUE(isCurrent);
    EXPECT_FALSE(thread.IsCurrent());
    EXPECT_THAT(TestSupport::FindThreads("Tasks"), ElementsAre(tid));
}

TEST(TaskThread, KnowsItselfFromOthers)
{
    TaskThread first("First"), second("Second");
    first.Run([&] { EXPECT_FALSE(second.IsCurrent()); });
}

TEST(TaskThread, RunWaitsForItsTask)
{
    TaskThread thread("Tasks");
    Os::Event gate;
    const Contender runner([&] { EXPECT_TRUE(thread.Run([&] { gate.Wait(); })); });
    EXPECT_TRUE(runner.ComesToWait());
    gate.Set();
}

TEST(TaskThread, RunOnTheThreadItselfComesBeforeWhatWaits)
{
    TaskThread thread("Tasks");
    std::vector<int> done;
    thread.Run([&] {
        thread.Post([&] { done.push_back(2); });
        EXPECT_TRUE(thread.Run([&] { done.push_back(1); }));
    });
    thread.Run([] {});
    EXPECT_THAT(done, ElementsAre(1, 2));
}

TEST(TaskThread, RunOnAnotherTaskThreadWaits)
{
    TaskThread first("First"), second("Second");
    bool isDone = false;
    first.Run([&] {
        second.Run([&] { isDone = true; });
        EXPECT_TRUE(isDone);
    });
}

TEST(TaskThread, CountsTheTasksThatWait)
{
    TaskThread thread("Tasks");
    Os::Event begun, gate;
    EXPECT_EQ(thread.CountWaiting(), 0u);
    thread.Post([&] {
        begun.Set();
        gate.Wait();
    });
    begun.Wait();
    EXPECT_EQ(thread.CountWaiting(), 0u);
    thread.Post([] {});
    thread.Post([] {});
    EXPECT_EQ(thread.CountWaiting(), 2u);
    gate.Set();
    thread.Run([] {});
    EXPECT_EQ(thread.CountWaiting(), 0u);
}

TEST(TaskThread, EndsAfterTheTaskThatIsRunning)
{
    Os::Event begun, gate;
    std::atomic<bool> isFirstDone = false, isSecondDone = false;
    auto thread = std::make_unique<TaskThread>("Tasks");
    thread->Post([&] {
        begun.Set();
        gate.Wait();
        isFirstDone = true;
    });
    thread->Post([&] { isSecondDone = true; });
    begun.Wait();
    {
        const Contender ender([&] { thread.reset(); });
        EXPECT_TRUE(ender.ComesToWait());
        gate.Set();
    }
    EXPECT_TRUE(isFirstDone);
    EXPECT_FALSE(isSecondDone);
}

TEST(TaskThread, RefusesTasksWhileItEnds)
{
    Os::Event begun, gate;
    std::atomic<bool> isOver = false;
    std::vector<bool> accepted;
    auto* const thread = new TaskThread("Tasks");
    thread->Post([&] {
        begun.Set();
        gate.Wait();
        // Ending began before the gate opened.
        accepted.push_back(thread->Post([] {}));
        Os::Event asked;
        const Contender another([&] {
            accepted.push_back(thread->Run([] {}));
            asked.Set();
        });
        asked.Wait();
        accepted.push_back(thread->Run([&] { isOver = true; }));
    });
    begun.Wait();
    {
        const Contender ender([=] { delete thread; });
        EXPECT_TRUE(ender.ComesToWait());
        gate.Set();
    }
    EXPECT_THAT(accepted, ElementsAre(false, false, true));
    EXPECT_TRUE(isOver);
}

TEST(TaskThread, ACallThatWaitsReturnsWhenItEnds)
{
    for (int i = 0; i < 10; ++i) {
        Os::Event begun, gate;
        std::atomic<bool> isDone = false, result = true;
        auto* const thread = new TaskThread("Tasks");
        thread->Post([&] {
            begun.Set();
            gate.Wait();
        });
        begun.Wait();
        const Contender runner([&] { result = thread->Run([&] { isDone = true; }); });
        EXPECT_TRUE(TestSupport::WaitUntil([&] { return thread->CountWaiting() == 1; }));
        {
            const Contender ender([=] { delete thread; });
            EXPECT_TRUE(ender.ComesToWait());
            gate.Set();
        }
        EXPECT_TRUE(TestSupport::WaitUntil([&] { return runner.IsDone(); }));
        EXPECT_FALSE(isDone);
        EXPECT_FALSE(result);
    }
}

/// Posts a task as it goes.
struct PostsAtItsEnd {
    TaskThread& thread;
    std::atomic<int>& ends;
    ~PostsAtItsEnd()
    {
        thread.Post([] {});
        ++ends;
    }
};

TEST(TaskThread, WhatATaskHoldsGoesWithoutTheLock)
{
    std::atomic<int> ends = 0;
    {
        TaskThread thread("Tasks");
        Os::Event begun, gate;
        thread.Post([held = std::shared_ptr<PostsAtItsEnd>(new PostsAtItsEnd{thread, ends})] {});
        thread.Run([] {});
        EXPECT_EQ(ends, 1);
        thread.Post([&] {
            begun.Set();
            gate.Wait();
        });
        begun.Wait();
        thread.Post([held = std::shared_ptr<PostsAtItsEnd>(new PostsAtItsEnd{thread, ends})] {});
        gate.Set();
    }
    EXPECT_EQ(ends, 2);
}

} // namespace
