// SPDX-License-Identifier: MIT
#pragma once

#include <termios.h>

#include <string>
#include <vector>

namespace Tools
{

/// Speeds in baud that the library gives a serial line.
const std::vector<int>& GetLineSpeeds();

/// How a serial line is set, such as "9600 baud, parity none, flow control xonxoff".
std::string DescribeLine(int baud, const std::string& parity, const std::string& flow);
/// The same of what a port says that it holds.
std::string DescribeLine(const termios& settings);

} // namespace Tools
