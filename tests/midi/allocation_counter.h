// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>

namespace TestSupport
{

/// Allocations of this program since it started, on whatever way: new, malloc and the like.
std::size_t CountAllocations();

} // namespace TestSupport
