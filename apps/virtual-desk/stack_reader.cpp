// SPDX-License-Identifier: MIT
#include "virtual-desk/stack_reader.h"

#include <utility>

#include "standalone/log_sink.h"

namespace VirtualDesk
{

StackReader::StackReader() : m_thread([this] { Work(); }) {}

StackReader::~StackReader()
{
    {
        const std::lock_guard hold(m_mutex);
        m_isStopping = true;
    }
    m_changed.notify_all();
    m_thread.join();
}

void StackReader::Read(std::vector<const void*> stack)
{
    {
        const std::lock_guard hold(m_mutex);
        m_next = std::move(stack);
        m_text.reset();
    }
    m_changed.notify_all();
}

std::optional<std::string> StackReader::Take()
{
    const std::lock_guard hold(m_mutex);
    return std::exchange(m_text, std::nullopt);
}

void StackReader::Work()
{
    std::unique_lock hold(m_mutex);
    while (true) {
        m_changed.wait(hold, [this] { return m_isStopping || m_next; });
        if (m_isStopping)
            return;
        const Stack stack = *std::exchange(m_next, std::nullopt);
        hold.unlock();
        std::optional<std::string> text = Format(stack);
        hold.lock();
        if (!m_next)
            m_text = std::move(text);
    }
}

std::optional<std::string> StackReader::Format(const Stack& stack)
{
    std::string text;
    for (const void* const address : stack) {
        {
            const std::lock_guard hold(m_mutex);
            if (m_isStopping || m_next)
                return std::nullopt;
        }
        text += Standalone::FormatCallStack(&address, 1);
    }
    return text;
}

} // namespace VirtualDesk
