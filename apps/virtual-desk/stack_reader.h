// SPDX-License-Identifier: MIT
#pragma once

#include <condition_variable>
#include <mutex>
#include <optional>
#include <string>
#include <thread>
#include <vector>

namespace VirtualDesk
{

/// Looks up the functions of call stacks on a thread of its own, since that takes its time.
class StackReader
{
public:
    StackReader();
    /// Waits for no more than the entry that is looked up now.
    ~StackReader();
    StackReader(const StackReader&) = delete;
    StackReader& operator=(const StackReader&) = delete;

    /// Has a call stack looked up soon. What was asked for before is given up.
    /// @param stack return addresses, innermost first
    void Read(std::vector<const void*> stack);
    /// What came of the last one, once; nothing before.
    std::optional<std::string> Take();

private:
    typedef std::vector<const void*> Stack;

    void Work();
    /// Nothing when it was given up.
    std::optional<std::string> Format(const Stack& stack);

    std::mutex m_mutex;
    std::condition_variable m_changed;
    std::optional<Stack> m_next;       // guarded by m_mutex
    std::optional<std::string> m_text; // guarded by m_mutex
    bool m_isStopping = false;         // guarded by m_mutex
    std::thread m_thread;
};

} // namespace VirtualDesk
