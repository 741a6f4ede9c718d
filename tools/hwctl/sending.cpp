// SPDX-License-Identifier: MIT
#include "hwctl/sending.h"

#include <algorithm>
#include <chrono>
#include <thread>

namespace Hwctl
{

void AwaitSending(std::size_t bytes, unsigned baud)
{
    constexpr unsigned BitsPerByte = 12; // at most: start, eight, parity, two to stop
    constexpr std::chrono::milliseconds Margin(50);
    std::this_thread::sleep_for(
        Margin + std::chrono::milliseconds(bytes * BitsPerByte * 1000 / std::max(baud, 1U)));
}

} // namespace Hwctl
