// SPDX-License-Identifier: MIT
#pragma once

#include <unistd.h>

#include <atomic>
#include <chrono>
#include <fstream>
#include <functional>
#include <string>
#include <thread>
#include <utility>

namespace TestSupport
{

/// A thread that does one thing which may have to wait, and can tell whether it waits.
///
/// What it does must be given a way to end before the contender goes, which joins.
class Contender
{
public:
    explicit Contender(std::function<void()> act)
        : m_act(std::move(act)), m_thread([this] { Run(); })
    {
    }
    ~Contender() { m_thread.join(); }
    Contender(const Contender&) = delete;
    Contender& operator=(const Contender&) = delete;

    bool IsDone() const { return m_done.load(); }

    /// Watches until the thread is through (false) or has come to rest in the kernel (true).
    bool ComesToWait() const
    {
        int asleep = 0;
        while (asleep < EnoughSightings) {
            if (IsDone())
                return false;
            asleep = m_tid.load() != 0 && IsAsleep() ? asleep + 1 : 0;
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        }
        return !IsDone();
    }

private:
    /// Seen asleep that often in a row, it is no passing wait inside the run-time library.
    static constexpr int EnoughSightings = 20;

    void Run()
    {
        m_tid.store(gettid());
        m_act();
        m_done.store(true);
    }

    /// The state letter stands behind the name, which is in parentheses.
    bool IsAsleep() const
    {
        std::ifstream file("/proc/self/task/" + std::to_string(m_tid.load()) + "/stat");
        std::string line;
        std::getline(file, line);
        const std::size_t name = line.rfind(')');
        return name != std::string::npos && line.compare(name, 3, ") S") == 0;
    }

    const std::function<void()> m_act;
    std::atomic<pid_t> m_tid{0};
    std::atomic<bool> m_done{false};
    std::thread m_thread; // last: it uses the others
};

} // namespace TestSupport
