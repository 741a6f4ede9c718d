// SPDX-License-Identifier: MIT
#include "support/process_facts.h"

#include <sys/syscall.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <optional>
#include <sstream>

namespace TestSupport
{

namespace
{

std::size_t CountEntries(const char* folder)
{
    std::size_t count = 0;
    for ([[maybe_unused]] const auto& entry : std::filesystem::directory_iterator(folder))
        ++count;
    return count;
}

struct ThreadStat {
    std::string name;
    bool isExiting = false;
};

/// Reads /proc/self/task/ID/stat, see proc(5). Returns nothing if the thread is gone meanwhile.
std::optional<ThreadStat> ReadThreadStat(const std::filesystem::path& thread)
{
    constexpr unsigned long ExitingFlag = 0x4; // PF_EXITING of the kernel's sched.h
    constexpr int FieldsBeforeFlags = 6;       // state to tpgid
    std::ifstream file(thread / "stat");
    std::string text;
    std::getline(file, text);
    // The name stands in parentheses and may hold some itself.
    const std::size_t open = text.find('(');
    const std::size_t close = text.rfind(')');
    if (open == std::string::npos || close == std::string::npos)
        return std::nullopt;
    std::istringstream fields(text.substr(close + 1));
    std::string skipped;
    for (int i = 0; i < FieldsBeforeFlags; ++i)
        fields >> skipped;
    unsigned long flags = 0;
    if (!(fields >> flags))
        return std::nullopt;
    return ThreadStat{text.substr(open + 1, close - open - 1), (flags & ExitingFlag) != 0};
}

/// Calls @p act with the identifier and the name of every thread that is not exiting.
template <class Act> void ForEachThread(Act act)
{
    for (const auto& entry : std::filesystem::directory_iterator("/proc/self/task"))
        if (const auto stat = ReadThreadStat(entry.path()); stat && !stat->isExiting)
            act(std::stoi(entry.path().filename()), stat->name);
}

} // namespace

std::vector<int> FindThreads(const std::string& name)
{
    std::vector<int> threads;
    ForEachThread([&](int thread, const std::string& found) {
        if (found == name.substr(0, 15))
            threads.push_back(thread);
    });
    return threads;
}

std::size_t CountThreads()
{
    std::size_t count = 0;
    ForEachThread([&count](int, const std::string&) { ++count; });
    return count;
}

std::size_t CountDescriptors()
{
    return CountEntries("/proc/self/fd");
}

void SignalThread(int thread, int signal)
{
    syscall(SYS_tgkill, getpid(), thread, signal);
}

} // namespace TestSupport
