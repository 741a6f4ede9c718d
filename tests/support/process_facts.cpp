// SPDX-License-Identifier: MIT
#include "support/process_facts.h"

#include <sys/syscall.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>

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

} // namespace

std::vector<int> FindThreads(const std::string& name)
{
    std::vector<int> threads;
    for (const auto& entry : std::filesystem::directory_iterator("/proc/self/task")) {
        std::ifstream file(entry.path() / "comm");
        std::string comm;
        std::getline(file, comm);
        if (comm == name.substr(0, 15))
            threads.push_back(std::stoi(entry.path().filename()));
    }
    return threads;
}

std::size_t CountThreads()
{
    return CountEntries("/proc/self/task");
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
