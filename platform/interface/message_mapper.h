// SPDX-License-Identifier: MIT
#pragma once

#include "kel/fixed_point.h"
#include "platform_export.h"

/// What the user set the console's lights to, as the application keeps it. Levels are percentages,
/// 0 to 100.0. Any thread may call.
class PLATFORM_EXPORT MessageMapper
{
public:
    MessageMapper() = delete;

    static bool GetWorklightOn();
    static void SetWorklightOn(bool on);
    /// The work light's level while it is on, 0 while it is off.
    static uires16 GetWorklightCurrentLevel();

    static uires16 GetKeyboardDrawerLevel();
    static bool IsKeyboardDrawerEnabled();

    static uires16 GetBacklightLeft();
    static uires16 GetBacklightRight();
    static uires16 GetBacklightCenter();

    /// Whether the desk is lit in blue instead of white.
    static bool IsDesklightBlue();
    static uires16 GetDesklightLevel();
    static uires16 GetVentlightLevel();

    static uires16 GetLedLevel();
    static uires16 GetLcdLevel();
};
