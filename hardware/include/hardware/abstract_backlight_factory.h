// SPDX-License-Identifier: MIT
#pragma once

#include "hardware/abstract_backlight.h"

/// Picks the backlight controller that fits the console.
class HARDWARE_EXPORT AbstractBacklightFactory
{
public:
    /// The process's only controller: Tarnel4Backlight on console models 9, 10 and 12 to 14,
    /// Hardware::Zr4Backlight on 8, Vex4Backlight on every other. Made, and its devices opened, by
    /// the first call; the model is asked only then. Destroyed when the process ends. Any thread.
    static AbstractBacklight* GetBacklightController();
};
