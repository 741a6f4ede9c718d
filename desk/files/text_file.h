// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <string>

namespace Desk
{

/// Longest text file that the desk reads, in bytes.
inline constexpr std::size_t LongestTextFile = std::size_t{1} << 20U;

/// The whole of a text file. Throws std::runtime_error with WHAT and the reason: it cannot be read,
/// or is longer than LongestTextFile, as a device without an end is.
/// @param what is read, such as "CUE sheet 'show.cue'", for what is said
std::string ReadTextFile(const std::string& path, const std::string& what);

/// Whether @p path leads to a file that has an end, and not to a pipe or a device.
bool IsRegularFile(const std::string& path);

} // namespace Desk
