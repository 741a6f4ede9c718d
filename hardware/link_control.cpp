// SPDX-License-Identifier: MIT
#include "hardware/link_control.h"

void Hardware_LinkControl()
{
    Timecode_LinkControl();
    Midi_LinkControl();
}
