// SPDX-License-Identifier: MIT
#pragma once

#include <condition_variable>
#include <cstdint>
#include <deque>
#include <functional>
#include <mutex>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include "console/script.h"
#include "console/session.h"

namespace Console
{

/// Does commands on a thread of its own, one after the other, so that whoever asks never waits for
/// a device; and ticks the session meanwhile.
class Runner
{
public:
    /// Called after each line, with its text and what went wrong, which is empty on success.
    ///
    /// Queued lines are reported on the runner's thread, in the order in which they were queued. A
    /// line that DoSoon() does at once is reported on the thread that calls DoSoon(), before that
    /// call returns; whether the line under way is reported before it or after it is not defined.
    /// Calls may therefore overlap.
    typedef std::function<void(const std::string& command, const std::string& error)> Done;

    /// Takes what a line prints, on the runner's thread.
    typedef std::function<void(const std::string& text)> Print;

    /// What becomes of the lines behind one that fails.
    enum class AtFailure { GoOn, DropRest };

    /// The session outlives the runner.
    explicit Runner(
        Session& session, Done done = {}, Print print = [](const std::string&) {},
        AtFailure atFailure = AtFailure::GoOn);
    /// Ends waits, drops what has not begun, lets stuck devices go, and waits for the line under
    /// way.
    ~Runner();
    Runner(const Runner&) = delete;
    Runner& operator=(const Runner&) = delete;

    /// Has a line done behind those before: a verb, or a step of scripts such as "expect" or
    /// "wait". Any thread.
    void Do(std::string line);
    /// Has lines done together: nothing else comes in between, and the rest that a failure drops is
    /// theirs.
    void DoAll(const std::vector<std::string>& lines);
    /// Queues a line as Do() does, except for a verb that lets a stuck device go: while another
    /// line is under way, which may be waiting for it, that verb is done at once, on the calling
    /// thread.
    void DoSoon(std::string line);
    /// Drops the lines that have not begun, and ends the pause that the one under way may be in.
    /// Any thread.
    void Drop();

    struct Progress {
        std::string line;        ///< under way; empty when none is
        double seconds = 0;      ///< since it began
        std::size_t waiting = 0; ///< lines that have not begun
    };
    /// Any thread.
    Progress GetProgress() const;
    /// Whether everything asked for so far is done. Any thread.
    bool IsIdle() const;

private:
    struct Line {
        std::string text;
        std::uint64_t batch = 0; ///< one for each call that asked for lines
    };

    void Work();
    bool Pause(double seconds);
    /// Returns whether it went well.
    bool DoLine(const std::string& line);

    Session& m_session;
    const Done m_done;
    const Print m_print;
    const AtFailure m_atFailure;
    mutable std::mutex m_mutex;
    std::condition_variable m_changed;
    std::deque<Line> m_lines;             // guarded by m_mutex
    std::uint64_t m_batches = 0;          // guarded by m_mutex
    std::optional<std::string> m_current; // the line under way, guarded by m_mutex
    double m_begun = 0;                   // by the session's clock, guarded by m_mutex
    bool m_isDropped = false;             // the line under way is to end, guarded by m_mutex
    bool m_isStopping = false;            // guarded by m_mutex
    bool m_hasEnded = false;              // guarded by m_mutex
    std::thread m_thread;
};

} // namespace Console
