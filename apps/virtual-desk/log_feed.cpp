// SPDX-License-Identifier: MIT
#include "virtual-desk/log_feed.h"

#include <utility>

namespace VirtualDesk
{

void LogFeed::Write(const Standalone::LogRecord& record)
{
    const std::chrono::duration<double> seconds = std::chrono::steady_clock::now() - m_start;
    LogLine line{seconds.count(),
                 record.level,
                 record.context,
                 record.file,
                 record.function,
                 record.line,
                 std::string(record.text),
                 std::vector<const void*>(record.stack, record.stack + record.stackSize)};
    {
        const std::lock_guard hold(m_mutex);
        if (m_batch.lines.size() == Limit) {
            m_batch.lines.pop_front();
            ++m_batch.dropped;
        }
        m_batch.lines.push_back(std::move(line));
    }
    if (m_next)
        m_next->Write(record);
}

LogFeed::Batch LogFeed::Take()
{
    const std::lock_guard hold(m_mutex);
    return std::exchange(m_batch, {});
}

std::size_t LogFeed::CountWaiting() const
{
    const std::lock_guard hold(m_mutex);
    return m_batch.lines.size();
}

LogConnection::LogConnection(std::chrono::steady_clock::time_point start)
    : m_feed(std::make_shared<LogFeed>(start))
{
    // A line that another thread writes in between goes nowhere rather than to a half-made feed.
    m_feed->SetNext(Standalone::SetLogSink(nullptr));
    Standalone::SetLogSink(m_feed);
}

LogConnection::~LogConnection()
{
    const std::shared_ptr<Standalone::LogSink> current = Standalone::SetLogSink(m_feed->GetNext());
    if (current != m_feed)
        Standalone::SetLogSink(current);
}

} // namespace VirtualDesk
