// SPDX-License-Identifier: MIT
#pragma once

#include "standalone/light_settings.h"

namespace TestSupport
{

/// Settings that differ from the first ones in every field.
inline Standalone::LightSettings MakeOtherSettings()
{
    Standalone::LightSettings settings;
    unsigned percent = 1;
    for (uires16* const level :
         {&settings.backlightLeft, &settings.backlightRight, &settings.backlightCenter,
          &settings.desklight, &settings.ventlight, &settings.worklight, &settings.keyboardDrawer,
          &settings.leds, &settings.lcds})
        *level = percent++ << 16U | 0x8000U;
    settings.desklightBlue = true;
    settings.worklightOn = false;
    settings.keyboardDrawerEnabled = false;
    return settings;
}

} // namespace TestSupport
