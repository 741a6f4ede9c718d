// SPDX-License-Identifier: MIT
#pragma once

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <deque>
#include <memory>
#include <mutex>
#include <thread>

#include "standalone/log_sink.h"

namespace Standalone
{

/// A line on its way to where it may have to wait, such as a pipe that nobody reads.
class PendingLine
{
public:
    virtual ~PendingLine() = default;
    /// Writes what is taken without waiting. False when something is left.
    virtual bool WriteNow() = 0;
    /// Writes what is left. Waits for as long as necessary, once @p isStopping not any more.
    virtual void WriteWaiting(const std::atomic<bool>& isStopping) = 0;
    /// Another line on its way to the same place.
    virtual std::unique_ptr<PendingLine> MakeAnother(const LogRecord& record) const = 0;
};

/// Writes lines in the order in which they come, without ever holding up the thread that logs:
/// what cannot be written at once is written by a thread of its own, made for the first such line.
/// Any thread may call any operation.
class LogWriter
{
public:
    /// Lines that may wait; further ones are lost until half of them are written, and counted. Far
    /// beyond what a reader that keeps up leaves waiting, and some ten megabytes.
    static constexpr std::size_t Limit = 10000;
    /// How long the end of the process and a fatal stop wait for a reader that does not keep up.
    static constexpr std::chrono::milliseconds FlushLimit{2000};

    /// Never destroyed: lines may be written until the process is gone.
    static LogWriter& Get();

    void Write(std::unique_ptr<PendingLine> line);
    /// Waits until all lines so far are written. False when that takes longer.
    bool Flush(std::chrono::milliseconds limit);
    /// Ends the thread when the process ends or the platform is unloaded, after a Flush(). From
    /// then on, what cannot be written at once is lost.
    void End();

private:
    LogWriter() = default;
    void Work();
    void StartThread();
    void ReportLosses();

    std::atomic<bool> m_isStopping{false};
    std::mutex m_mutex; // guards all below
    std::condition_variable m_changed;
    std::deque<std::unique_ptr<PendingLine>> m_lines;
    bool m_isWriting = false;            // one that is no longer among them
    std::unique_ptr<PendingLine> m_lost; // the first one of a row
    std::size_t m_lostCount = 0;
    std::unique_ptr<std::thread> m_thread;
    bool m_hasLeft = false; // the thread
};

} // namespace Standalone
