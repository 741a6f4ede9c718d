// SPDX-License-Identifier: MIT
#pragma once

#include <chrono>
#include <cstdint>
#include <deque>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "standalone/log_sink.h"

namespace VirtualDesk
{

/// A line of the log with copies of all that its record borrowed.
struct LogLine {
    double seconds = 0; ///< since the desk's start
    unsigned level = 0;
    std::string context;
    std::string file;
    std::string function; ///< full signature
    unsigned line = 0;
    std::string text;
    std::vector<const void*> stack; ///< return addresses, innermost first
};

/// Keeps the newest lines of the log until somebody takes them, and passes each on to the sink that
/// was there before.
class LogFeed : public Standalone::LogSink
{
public:
    /// Lines that are kept at most; the oldest make room.
    static constexpr std::size_t Limit = 5000;

    /// @param start what lines' seconds are counted from
    explicit LogFeed(std::chrono::steady_clock::time_point start) : m_start(start) {}

    /// Who gets every line too; null for nobody. Before the feed becomes the log's sink.
    void SetNext(std::shared_ptr<LogSink> next) { m_next = std::move(next); }
    const std::shared_ptr<LogSink>& GetNext() const { return m_next; }

    void Write(const Standalone::LogRecord& record) override;

    struct Batch {
        std::deque<LogLine> lines; ///< oldest first
        std::uint64_t dropped = 0; ///< lines that had to make room since the last batch
    };
    /// What came since the last batch.
    Batch Take();
    /// Lines that wait to be taken.
    std::size_t CountWaiting() const;

private:
    const std::chrono::steady_clock::time_point m_start;
    std::shared_ptr<LogSink> m_next;
    mutable std::mutex m_mutex;
    Batch m_batch; // guarded by m_mutex
};

/// Has a feed get all lines as long as it lives.
class LogConnection
{
public:
    explicit LogConnection(std::chrono::steady_clock::time_point start);
    /// Gives the log back to the sink that was there before, unless another one was put there.
    ~LogConnection();
    LogConnection(const LogConnection&) = delete;
    LogConnection& operator=(const LogConnection&) = delete;

    LogFeed& GetFeed() { return *m_feed; }

private:
    const std::shared_ptr<LogFeed> m_feed;
};

} // namespace VirtualDesk
