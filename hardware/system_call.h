// SPDX-License-Identifier: MIT
#pragma once

#include <cerrno>

namespace Hardware
{

/// Makes a system call again for as long as a signal interrupts it.
template <class Call> auto Repeat(Call call)
{
    auto result = call();
    while (result == -1 && errno == EINTR)
        result = call();
    return result;
}

} // namespace Hardware
