// SPDX-License-Identifier: MIT
#include "support/process_facts.h"

#include <sys/syscall.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <map>
#include <optional>
#include <sstream>
#include <utility>

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

std::map<int, std::string> ListThreadsOnce()
{
    std::map<int, std::string> threads;
    for (const auto& entry : std::filesystem::directory_iterator("/proc/self/task"))
        if (const auto stat = ReadThreadStat(entry.path()); stat && !stat->isExiting)
            threads.emplace(std::stoi(entry.path().filename()), stat->name);
    return threads;
}

/// Returns the names of all threads that are not exiting, by identifier.
std::map<int, std::string> ListThreads()
{
    // A listing may miss a thread when another one disappears meanwhile, so two must agree. They
    // need not where threads come and go all the time.
    constexpr int MostTries = 100;
    std::map<int, std::string> threads = ListThreadsOnce();
    for (int i = 0; i < MostTries; ++i) {
        std::map<int, std::string> again = ListThreadsOnce();
        if (again == threads)
            break;
        threads = std::move(again);
    }
    return threads;
}

} // namespace

std::vector<int> FindThreads(const std::string& name)
{
    std::vector<int> threads;
    for (const auto& [thread, found] : ListThreads())
        if (found == name.substr(0, 15))
            threads.push_back(thread);
    return threads;
}

std::size_t CountThreads()
{
    return ListThreads().size();
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
