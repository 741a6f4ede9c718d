// SPDX-License-Identifier: MIT
#include "widget/task_thread.h"

#include <memory>
#include <optional>
#include <utility>

namespace Standalone
{

namespace
{

thread_local const TaskThread* CurrentThread = nullptr;

} // namespace

TaskThread::TaskThread(const char* name)
{
    m_thread = std::make_unique<Os::Thread>(&TaskThread::Main, this, name, 0,
                                            Os::Thread::DefaultSlice, Os::Thread::DefaultStack);
}

TaskThread::~TaskThread()
{
    {
        const std::lock_guard hold(m_mutex);
        m_isEnding = true;
        m_hasEnded = IsCurrent();
    }
    m_changed.notify_all();
    if (IsCurrent())
        static_cast<void>(m_thread.release()); // it ends with the process, inside its task
    else
        m_thread.reset();
    std::unique_lock hold(m_mutex);
    m_changed.wait(hold, [this] { return m_waitingCalls == 0; });
}

bool TaskThread::Post(Task task)
{
    {
        const std::lock_guard hold(m_mutex);
        if (m_isEnding)
            return false;
        m_tasks.push_back(std::move(task));
    }
    m_changed.notify_all();
    return true;
}

bool TaskThread::Run(const Task& task)
{
    if (IsCurrent()) {
        task();
        return true;
    }
    std::unique_lock hold(m_mutex);
    if (m_isEnding)
        return false;
    bool isDone = false; // outlives the task: this call waits until it ran or was dropped
    m_tasks.emplace_back([this, &task, &isDone] {
        task();
        const std::lock_guard holdToTell(m_mutex);
        isDone = true;
    });
    ++m_waitingCalls;
    m_changed.notify_all();
    m_changed.wait(hold, [&] { return isDone || m_hasEnded; });
    --m_waitingCalls;
    m_changed.notify_all();
    return isDone;
}

std::size_t TaskThread::CountWaiting() const
{
    const std::lock_guard hold(m_mutex);
    return m_tasks.size();
}

bool TaskThread::IsCurrent() const
{
    return CurrentThread == this;
}

unsigned int TaskThread::Main(void* self)
{
    CurrentThread = static_cast<TaskThread*>(self);
    static_cast<TaskThread*>(self)->Work();
    return 0;
}

void TaskThread::Work()
{
    std::unique_lock hold(m_mutex);
    for (;;) {
        m_changed.wait(hold, [this] { return m_isEnding || !m_tasks.empty(); });
        if (m_isEnding)
            break;
        // Tasks go without the lock: what they hold may post another one as it goes.
        std::optional<Task> task(std::move(m_tasks.front()));
        m_tasks.pop_front();
        hold.unlock();
        (*task)();
        task.reset();
        hold.lock();
        m_changed.notify_all();
    }
    std::deque<Task> dropped;
    dropped.swap(m_tasks);
    hold.unlock();
    dropped.clear();
    hold.lock();
    m_hasEnded = true;
    m_changed.notify_all();
}

} // namespace Standalone
