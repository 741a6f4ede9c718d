// SPDX-License-Identifier: MIT
#include "widget/task_thread.h"

#include <memory>
#include <utility>

namespace Standalone
{

namespace
{

thread_local const TaskThread* CurrentThread = nullptr;

} // namespace

TaskThread::TaskThread(const char* name)
{
    m_thread.emplace(&TaskThread::Main, this, name, 0, Os::Thread::DefaultSlice,
                     Os::Thread::DefaultStack);
}

TaskThread::~TaskThread()
{
    {
        const std::lock_guard hold(m_mutex);
        m_isEnding = true;
    }
    m_changed.notify_all();
    m_thread.reset();
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
    // Shared with the thread, which may get to the task when this call has given up.
    const auto done = std::make_shared<bool>(false);
    const bool isPosted = Post([this, &task, done] {
        task();
        const std::lock_guard hold(m_mutex);
        *done = true;
    });
    std::unique_lock hold(m_mutex);
    m_changed.wait(hold, [&] { return *done || m_hasEnded || !isPosted; });
    return *done;
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
        const Task task = std::move(m_tasks.front());
        m_tasks.pop_front();
        hold.unlock();
        task();
        hold.lock();
        m_changed.notify_all();
    }
    m_tasks.clear();
    m_hasEnded = true;
    m_changed.notify_all();
}

} // namespace Standalone
