// SPDX-License-Identifier: MIT
#pragma once

#include "platform_export.h"

namespace Os
{

/// Ends the program because it met a state that must not be: reports @p text, then aborts.
///
/// @param text        what happened, such as "Trap: '!args' is TRUE"
/// @param line        site number: stable where field reports refer to it, else the source line
/// @param fileAndDate source file and build date, as in "timecode/timecode_sim.cpp (Dec 10 2015)"
[[noreturn]] PLATFORM_EXPORT void Fatal(const char* text, unsigned line, const char* fileAndDate);

} // namespace Os

// The condition and the expression are stringised by these macros themselves, one level deep:
// through a second macro SIGNAL() and SLOT() would be expanded and spoil the text.

/// Fatal when @p condition holds; @p line is the site's stable number.
#define OS_TRAP_AT(condition, line, fileAndDate)                                                   \
    do {                                                                                           \
        if (condition)                                                                             \
            ::Os::Fatal("Trap: '" #condition "' is TRUE", line, fileAndDate);                      \
    } while (false)

/// Fatal when @p condition holds; the site is known by its source line.
#define OS_TRAP(condition, fileAndDate)                                                            \
    do {                                                                                           \
        if (condition)                                                                             \
            ::Os::Fatal("Trap: '" #condition "' is TRUE", __LINE__, fileAndDate);                  \
    } while (false)

/// Evaluates @p expression, always, and is fatal when the result is false.
#define OS_VERIFY_AT(expression, line, fileAndDate)                                                \
    do {                                                                                           \
        if (!(expression))                                                                         \
            ::Os::Fatal("Verify: '" #expression "' is FALSE", line, fileAndDate);                  \
    } while (false)

/// Evaluates @p expression, always, and is fatal when the result is false.
#define OS_VERIFY(expression, fileAndDate)                                                         \
    do {                                                                                           \
        if (!(expression))                                                                         \
            ::Os::Fatal("Verify: '" #expression "' is FALSE", __LINE__, fileAndDate);              \
    } while (false)
