// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace TestSupport
{

/// Threads of this process with that name; the system keeps 15 characters of it.
std::vector<int> FindThreads(const std::string& name);
/// Number of threads of this process.
std::size_t CountThreads();
/// Number of descriptors open in this process.
std::size_t CountDescriptors();
/// Sends a signal to one thread of this process.
void SignalThread(int thread, int signal);

} // namespace TestSupport
