// SPDX-License-Identifier: MIT
#pragma once

#include <termios.h>

#include "desk/serial_port.h"

namespace Desk
{

LineSettings ReadLineSettings(const termios& settings);
/// Puts @p line into @p settings. Throws std::invalid_argument for a speed that there is not.
void WriteLineSettings(const LineSettings& line, termios& settings);

} // namespace Desk
