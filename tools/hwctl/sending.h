// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>

namespace Hwctl
{

/// Waits until so many bytes have left a serial port whose line does not stop them: closing it
/// drops what has not.
void AwaitSending(std::size_t bytes, unsigned baud);

} // namespace Hwctl
