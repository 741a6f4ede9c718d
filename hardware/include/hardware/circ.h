// SPDX-License-Identifier: MIT
#pragma once

#include "hardware/export.h"

/// Arithmetic of circular 32-bit counters, offered to applications. Has no state.
class HARDWARE_EXPORT circ
{
public:
    /// Tells a counter that wrapped around from one that merely moved: true when one of the two
    /// values is among the topmost 65,536 of the 32-bit range and the other among the lowest
    /// 65,536, in either order. Only the low 32 bits of each count. Any thread.
    bool IsWrap(unsigned long a, unsigned long b) const;
};
