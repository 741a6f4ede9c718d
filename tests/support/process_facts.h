// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace TestSupport
{

/// Returns the threads of this process with that name, of which the system keeps 15 characters.
///
/// Leaves out threads that are exiting. The kernel wakes whoever joins a thread before it takes the
/// thread out of /proc, but marks it as exiting before both. So a joined thread is never found.
std::vector<int> FindThreads(const std::string& name);
/// Returns the number of threads of this process, without those that are exiting.
std::size_t CountThreads();
/// Number of descriptors open in this process.
std::size_t CountDescriptors();
/// Sends a signal to one thread of this process.
void SignalThread(int thread, int signal);

} // namespace TestSupport
