// SPDX-License-Identifier: MIT
#include "hwctl/event_queue.h"

#include <sys/eventfd.h>
#include <unistd.h>

#include <cstdint>
#include <utility>

namespace Hwctl
{

EventQueue::EventQueue()
    : m_wakeup(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)),
      m_notifier(std::make_unique<QSocketNotifier>(m_wakeup, QSocketNotifier::Read))
{
    QObject::connect(m_notifier.get(), &QSocketNotifier::activated, m_notifier.get(),
                     [this] { Drain(); });
}

EventQueue::~EventQueue()
{
    m_notifier.reset();
    close(m_wakeup);
}

void EventQueue::Post(std::function<void()> work)
{
    {
        const std::lock_guard hold(m_mutex);
        m_work.push_back(std::move(work));
    }
    const std::uint64_t one = 1;
    [[maybe_unused]] const ssize_t written = write(m_wakeup, &one, sizeof one);
}

void EventQueue::Drain()
{
    std::uint64_t posts = 0;
    [[maybe_unused]] const ssize_t length = read(m_wakeup, &posts, sizeof posts);
    std::vector<std::function<void()>> work;
    {
        const std::lock_guard hold(m_mutex);
        work.swap(m_work);
    }
    for (const auto& item : work)
        item();
}

} // namespace Hwctl
