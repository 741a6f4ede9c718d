// SPDX-License-Identifier: MIT
#pragma once

#include "hardware/export.h"

// An application calls Hardware_LinkControl() once. The call does nothing by itself; it makes the
// linker keep the library and all its modules, and with them the types they register at load.

/// Anchors every module of the library.
HARDWARE_EXPORT void Hardware_LinkControl();
/// Anchors the timecode module.
HARDWARE_EXPORT void Timecode_LinkControl();
/// Anchors the MIDI module.
HARDWARE_EXPORT void Midi_LinkControl();
