// SPDX-License-Identifier: MIT
#pragma once

#include <condition_variable>
#include <deque>
#include <functional>
#include <memory>
#include <mutex>

#include "os/thread.h"

namespace Standalone
{

/// A thread that carries out tasks one after the other, in the order they came. Any thread may
/// call any operation.
class TaskThread
{
public:
    typedef std::function<void()> Task;

    explicit TaskThread(const char* name);
    /// Ends after the task that is running; the others are dropped. Calls that wait for one return
    /// first. On the thread itself, when a task ends the process, it does not wait.
    ~TaskThread();
    TaskThread(const TaskThread&) = delete;
    TaskThread& operator=(const TaskThread&) = delete;

    /// Puts a task last. False when the thread is ending.
    bool Post(Task task);
    /// Carries out a task in its turn and waits for it; at once on the thread itself. False when
    /// the thread is ending and the task was dropped.
    bool Run(const Task& task);
    /// Tasks waiting now.
    std::size_t CountWaiting() const;
    bool IsCurrent() const;

private:
    static unsigned int Main(void* self);
    void Work();

    mutable std::mutex m_mutex; // guards all below but the thread
    std::condition_variable m_changed;
    std::deque<Task> m_tasks;
    unsigned m_waitingCalls = 0;
    bool m_isEnding = false;
    bool m_hasEnded = false;
    std::unique_ptr<Os::Thread> m_thread; // last: it uses all the others
};

} // namespace Standalone
