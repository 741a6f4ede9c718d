// SPDX-License-Identifier: MIT
#pragma once

#include "hardware/export.h"
#include "os/log.h"

namespace Hardware
{

// The library's named log contexts, made on first use. Any thread may call these.

/// Root "Hardware", mask 31: admits all levels.
HARDWARE_EXPORT Os::Log::Context& HardwareLogContext();
/// "Hardware/Timecode", mask 31: admits all levels.
HARDWARE_EXPORT Os::Log::Context& TimecodeLogContext();
/// "Hardware/Midi", mask 30: drops trace lines unless widened.
HARDWARE_EXPORT Os::Log::Context& MidiLogContext();

} // namespace Hardware
