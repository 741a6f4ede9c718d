// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <cstddef>

namespace Os
{

/// Return addresses of the calling thread, captured without allocating or looking symbols up.
struct CallStack {
    static constexpr std::size_t Depth = 64;
    std::array<const void*, Depth> frames{};
    std::size_t size = 0;

    /// Captures the stack, leaving out this function and @p skip frames above it.
    static CallStack Capture(std::size_t skip);
};

} // namespace Os
