// SPDX-License-Identifier: MIT
#pragma once

#include <chrono>
#include <thread>

namespace TestSupport
{

/// Waits until @p condition holds; false when it does not within 20 s, which no healthy run needs.
template <class Condition> bool WaitUntil(Condition condition)
{
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(20);
    while (!condition()) {
        if (std::chrono::steady_clock::now() > end)
            return false;
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    return true;
}

} // namespace TestSupport
