// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>

namespace Preload
{

// What a stalled serial line has not taken. Without one, and for a device that is not a serial
// port, these do nothing.

/// Keeps what is written to a stalled line, as far as its buffer has room. Returns how many bytes;
/// the terminal then knows what becomes of the rest.
std::size_t KeepBytes(int device, int descriptor, const void* bytes, std::size_t count);
/// Bytes in the buffer; -1 if it is not a serial port.
long CountKept(int device);
/// Forgets them, which makes room.
void DropKept(int device, int descriptor);

} // namespace Preload
