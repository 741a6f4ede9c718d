// SPDX-License-Identifier: MIT
#include "console/runner.h"

#include <algorithm>
#include <chrono>
#include <utility>

namespace Console
{

namespace
{

constexpr std::chrono::milliseconds TickInterval(50);

bool Mends(const std::string& line)
{
    try {
        return Session::Mends(line);
    } catch (const std::invalid_argument&) {
        return false; // the runner's thread tells what is wrong
    }
}

} // namespace

Runner::Runner(Session& session, Done done, Print print, AtFailure atFailure)
    : m_session(session), m_done(std::move(done)), m_print(std::move(print)),
      m_atFailure(atFailure), m_thread([this] { Work(); })
{
}

Runner::~Runner()
{
    {
        const std::lock_guard hold(m_mutex);
        m_isStopping = true;
    }
    m_changed.notify_all();
    // Again and again: a line may just be about to hold its device up.
    std::unique_lock hold(m_mutex);
    do {
        hold.unlock();
        m_session.Release();
        hold.lock();
    } while (!m_changed.wait_for(hold, TickInterval, [this] { return m_hasEnded; }));
    hold.unlock();
    m_thread.join();
}

void Runner::Do(std::string line)
{
    DoAll({std::move(line)});
}

void Runner::DoAll(const std::vector<std::string>& lines)
{
    {
        const std::lock_guard hold(m_mutex);
        ++m_batches;
        for (const std::string& line : lines)
            m_lines.push_back({line, m_batches});
    }
    m_changed.notify_all();
}

void Runner::DoSoon(std::string line)
{
    {
        const std::lock_guard hold(m_mutex);
        if (!m_current || !Mends(line)) {
            m_lines.push_back({std::move(line), ++m_batches});
            m_changed.notify_all();
            return;
        }
    }
    DoLine(line); // what is under way may be waiting for it
}

void Runner::Drop()
{
    {
        const std::lock_guard hold(m_mutex);
        m_lines.clear();
        m_isDropped = m_current.has_value();
    }
    m_changed.notify_all();
}

Runner::Progress Runner::GetProgress() const
{
    const std::lock_guard hold(m_mutex);
    return {m_current.value_or(""), m_current ? m_session.GetSeconds() - m_begun : 0,
            m_lines.size()};
}

bool Runner::IsIdle() const
{
    const std::lock_guard hold(m_mutex);
    return m_lines.empty() && !m_current;
}

/// Waits so long, ticking; false when it was told to stop.
bool Runner::Pause(double seconds)
{
    const auto end = std::chrono::steady_clock::now() +
                     std::chrono::duration_cast<std::chrono::steady_clock::duration>(
                         std::chrono::duration<double>(seconds));
    while (std::chrono::steady_clock::now() < end) {
        m_session.Tick();
        std::unique_lock hold(m_mutex);
        const auto next = std::min(end, std::chrono::steady_clock::now() + TickInterval);
        if (m_changed.wait_until(hold, next, [this] { return m_isStopping || m_isDropped; }))
            return false;
    }
    return true;
}

void Runner::Work()
{
    std::unique_lock hold(m_mutex);
    while (!m_isStopping) {
        if (!m_changed.wait_for(hold, TickInterval,
                                [this] { return m_isStopping || !m_lines.empty(); })) {
            hold.unlock();
            m_session.Tick();
            hold.lock();
            continue;
        }
        if (m_isStopping)
            break;
        const Line line = std::move(m_lines.front());
        m_lines.pop_front();
        m_current = line.text;
        m_begun = m_session.GetSeconds();
        hold.unlock();
        const bool isDone = DoLine(line.text);
        hold.lock();
        if (!isDone && m_atFailure == AtFailure::DropRest)
            std::erase_if(m_lines,
                          [&line](const Line& other) { return other.batch == line.batch; });
        m_isDropped = false;
        m_current.reset();
    }
    m_hasEnded = true;
    m_changed.notify_all();
}

bool Runner::DoLine(const std::string& line)
{
    std::string error;
    try {
        DoScriptLine(
            m_session, line, [this](double seconds) { return Pause(seconds); }, m_print);
        if (std::this_thread::get_id() == m_thread.get_id())
            m_session.Tick();
    } catch (const std::exception& problem) {
        error = *problem.what() != '\0' ? problem.what() : "it failed";
    }
    if (m_done)
        m_done(line, error);
    return error.empty();
}

} // namespace Console
