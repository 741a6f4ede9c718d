// SPDX-License-Identifier: MIT
#pragma once

/// Unsigned 16.16 fixed-point number: 0x00010000 is 1.0. Levels of lights are percentages in it,
/// from 0 to 100.0, which is 0x00640000.
// No class: some callers hand levels on as plain unsigned numbers.
typedef unsigned int uires16;
