// SPDX-License-Identifier: MIT
#pragma once

#include "platform_export.h"

namespace Os
{

/// What the console is that the program runs on. Any thread may call any operation; instances hold
/// nothing.
class PLATFORM_EXPORT Platform
{
public:
    /// Number of the console's model.
    static int GetKelProductType();
    /// True on a console, false on a computer that only runs its software.
    static bool IsConsole();

    static bool IsVentLightSupported();
    static bool AreBlueDesklightsSupported();
    static bool AreWhiteDesklightsSupported();
    static bool AreWorklightsSupported();
    static bool IsIlluminatedKeyboardDrawerSupported();
};

} // namespace Os
