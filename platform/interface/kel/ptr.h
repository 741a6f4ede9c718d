// SPDX-License-Identifier: MIT
#pragma once

#include <memory>

namespace kel
{

/// Owning pointer: deletes what it holds, moves, does not copy.
template <class T> using ptr = std::unique_ptr<T>;

} // namespace kel
