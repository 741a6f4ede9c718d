// SPDX-License-Identifier: MIT
#pragma once

#include <cstdio>
#include <cstdlib>

namespace Fuzz
{

/// Ends the run as a finding, with @p what, unless the condition holds.
inline void Require(bool condition, const char* what)
{
    if (condition)
        return;
    std::fprintf(stderr, "%s\n", what);
    std::abort();
}

} // namespace Fuzz
