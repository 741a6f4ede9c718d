// SPDX-License-Identifier: MIT
#include "os/log_writer.h"

#include <pthread.h>

#include <csignal>
#include <system_error>
#include <utility>

#include "kel/text_base.h"
#include "os/log.h"

namespace Standalone
{

namespace
{

constexpr char SourceFile[] = "os/log_writer.cpp";

/// A child process gets another one: the lines that wait are its parent's, and it has no thread.
std::atomic<LogWriter*> g_writer{nullptr};

/// The last of the platform's objects to go, being made when it is loaded.
struct Ending {
    ~Ending() { LogWriter::Get().End(); }
} const g_ending;

} // namespace

LogWriter& LogWriter::Get()
{
    static const bool isMade = [] {
        g_writer = new LogWriter;
        return pthread_atfork(nullptr, nullptr, [] { g_writer = new LogWriter; }) == 0;
    }();
    static_cast<void>(isMade);
    return *g_writer;
}

void LogWriter::Write(std::unique_ptr<PendingLine> line)
{
    const std::lock_guard hold(m_mutex);
    if (m_lines.empty() && !m_isWriting && line->WriteNow())
        return;
    if (m_isStopping) {
        if (m_hasLeft) // what it was to write is written
            line->WriteWaiting(m_isStopping);
        return;
    }
    if (m_lostCount > 0 || m_lines.size() >= Limit) {
        if (m_lostCount == 0)
            m_lost = std::move(line);
        ++m_lostCount;
        return;
    }
    m_lines.push_back(std::move(line));
    StartThread();
    m_changed.notify_all();
}

/// The caller holds the lock.
void LogWriter::StartThread()
{
    if (m_thread)
        return;
    // Signals are for the threads of the application.
    sigset_t all;
    sigset_t before;
    sigfillset(&all);
    pthread_sigmask(SIG_SETMASK, &all, &before);
    try {
        m_thread = std::make_unique<std::thread>([this] { Work(); });
        pthread_setname_np(m_thread->native_handle(), "Log Writer");
    } catch (const std::system_error&) {
        // The lines wait; the next one tries again.
    }
    pthread_sigmask(SIG_SETMASK, &before, nullptr);
}

void LogWriter::Work()
{
    std::unique_lock hold(m_mutex);
    for (;;) {
        m_changed.wait(hold, [this] { return m_isStopping || !m_lines.empty(); });
        if (m_lines.empty())
            break;
        std::unique_ptr<PendingLine> line = std::move(m_lines.front());
        m_lines.pop_front();
        m_isWriting = true;
        hold.unlock();
        line->WriteWaiting(m_isStopping);
        line.reset();
        hold.lock();
        m_isWriting = false;
        ReportLosses();
        m_changed.notify_all();
    }
    m_hasLeft = true;
    m_changed.notify_all();
}

/// Where the lost lines would stand: those before them are written or waiting, those after them are
/// still to come. The caller holds the lock.
void LogWriter::ReportLosses()
{
    if (m_lostCount == 0 || m_lines.size() > Limit / 2)
        return;
    const std::string context = "Log";
    kel::text<char, Os::Log::LineCapacity> text;
    text << m_lostCount << " log lines were lost: " << Limit << " were waiting to be written";
    m_lines.push_back(m_lost->MakeAnother({context, Os::Log::Warning, SourceFile,
                                           static_cast<const char*>(__PRETTY_FUNCTION__), __LINE__,
                                           text.view(), nullptr, 0}));
    m_lost.reset();
    m_lostCount = 0;
}

bool LogWriter::Flush(std::chrono::milliseconds limit)
{
    std::unique_lock hold(m_mutex);
    return m_changed.wait_for(hold, limit, [this] { return m_lines.empty() && !m_isWriting; });
}

void LogWriter::End()
{
    Flush(FlushLimit);
    std::unique_lock hold(m_mutex);
    m_isStopping = true;
    m_changed.notify_all();
    if (!m_thread) {
        hold.unlock();
        Work(); // what waits for want of a thread
        return;
    }
    // One that hangs in the journal is left alone.
    const bool hasLeft = m_changed.wait_for(hold, FlushLimit, [this] { return m_hasLeft; });
    hold.unlock();
    if (hasLeft)
        m_thread->join();
}

} // namespace Standalone
