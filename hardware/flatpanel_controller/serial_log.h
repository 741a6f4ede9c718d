// SPDX-License-Identifier: MIT
#pragma once

#include "hardware/log_contexts.h"

namespace Hardware
{

/// "Hardware/Serial", mask 30: drops trace lines, which all of the serial port's are, unless
/// widened.
Os::Log::Context& SerialLogContext();

} // namespace Hardware
