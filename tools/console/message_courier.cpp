// SPDX-License-Identifier: MIT
#include "console/message_courier.h"

#include "standalone/messages.h"

namespace Console
{

MessageCourier::MessageCourier() : m_thread([this] { Work(); })
{
    Standalone::SetMessageWaker([this] { Wake(); });
}

MessageCourier::~MessageCourier()
{
    Standalone::SetMessageWaker({});
    {
        const std::lock_guard hold(m_mutex);
        m_isStopping = true;
    }
    m_changed.notify_all();
    m_thread.join();
}

void MessageCourier::Await()
{
    std::unique_lock hold(m_mutex);
    const std::uint64_t round = ++m_asked;
    m_changed.notify_all();
    m_changed.wait(hold, [this, round] { return m_done >= round; });
}

void MessageCourier::Wake()
{
    {
        const std::lock_guard hold(m_mutex);
        ++m_asked;
    }
    m_changed.notify_all();
}

void MessageCourier::Work()
{
    std::unique_lock hold(m_mutex);
    while (true) {
        m_changed.wait(hold, [this] { return m_isStopping || m_done < m_asked; });
        if (m_done == m_asked)
            return;
        const std::uint64_t round = m_asked;
        hold.unlock();
        Standalone::DeliverMessages();
        hold.lock();
        m_done = round;
        m_changed.notify_all();
    }
}

} // namespace Console
