// SPDX-License-Identifier: MIT
#include "message_mapper.h"

#include "standalone/light_settings.h"

namespace
{

using Standalone::LightSettings;

template <class Result> Result Ask(Result LightSettings::*field)
{
    return Standalone::GetLightSettings().*field;
}

} // namespace

bool MessageMapper::GetWorklightOn()
{
    return Ask(&LightSettings::worklightOn);
}

void MessageMapper::SetWorklightOn(bool on)
{
    Standalone::ChangeLightSettings([on](LightSettings& settings) { settings.worklightOn = on; });
}

uires16 MessageMapper::GetWorklightCurrentLevel()
{
    const LightSettings settings = Standalone::GetLightSettings();
    return settings.worklightOn ? settings.worklight : 0;
}

uires16 MessageMapper::GetKeyboardDrawerLevel()
{
    return Ask(&LightSettings::keyboardDrawer);
}

bool MessageMapper::IsKeyboardDrawerEnabled()
{
    return Ask(&LightSettings::keyboardDrawerEnabled);
}

uires16 MessageMapper::GetBacklightLeft()
{
    return Ask(&LightSettings::backlightLeft);
}

uires16 MessageMapper::GetBacklightRight()
{
    return Ask(&LightSettings::backlightRight);
}

uires16 MessageMapper::GetBacklightCenter()
{
    return Ask(&LightSettings::backlightCenter);
}

bool MessageMapper::IsDesklightBlue()
{
    return Ask(&LightSettings::desklightBlue);
}

uires16 MessageMapper::GetDesklightLevel()
{
    return Ask(&LightSettings::desklight);
}

uires16 MessageMapper::GetVentlightLevel()
{
    return Ask(&LightSettings::ventlight);
}

uires16 MessageMapper::GetLedLevel()
{
    return Ask(&LightSettings::leds);
}

uires16 MessageMapper::GetLcdLevel()
{
    return Ask(&LightSettings::lcds);
}
