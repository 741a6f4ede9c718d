// SPDX-License-Identifier: MIT
#pragma once

#include <sys/syscall.h>
#include <unistd.h>

#include <fstream>
#include <iterator>
#include <string>

#include "support/process_facts.h"

namespace TestSupport
{

inline int GetThreadId()
{
    return static_cast<int>(syscall(SYS_gettid));
}

/// Number of the simulator's threads.
inline std::size_t CountSimThreads()
{
    return FindThreads("Timecode Simulator").size();
}

/// Name of a thread as the system knows it.
inline std::string GetThreadName(int thread)
{
    std::ifstream file("/proc/self/task/" + std::to_string(thread) + "/comm");
    std::string name;
    std::getline(file, name);
    return name;
}

/// State of a thread as the system knows it: 'R' running, 'S' waiting.
inline char GetThreadState(int thread)
{
    std::ifstream file("/proc/self/task/" + std::to_string(thread) + "/stat");
    const std::string text{std::istreambuf_iterator<char>(file), {}};
    const std::size_t bracket = text.rfind(')');
    return bracket + 2 < text.size() ? text[bracket + 2] : '?';
}

} // namespace TestSupport
