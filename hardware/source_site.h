// SPDX-License-Identifier: MIT
#pragma once

#include "os/fatal.h"
#include "os/log.h"

/// The build date in fatal texts; reproducible builds set their own.
#ifndef HARDWARE_BUILD_DATE
#define HARDWARE_BUILD_DATE __DATE__
#endif

/// How a fatal text names a source file of this library: with the build date behind it.
#define HARDWARE_FATAL_SITE(file) file " (" HARDWARE_BUILD_DATE ")"

/// Writes a log line in the name of the source's own SourceFile constant. The text is built only
/// when the level is enabled.
#define HARDWARE_LOG(context, level, text) OS_LOG(context, level, SourceFile, text)

/// The same with a line number of its own, for lines that are known by it.
#define HARDWARE_LOG_AT(context, level, line, text)                                                \
    OS_LOG_AT(context, level, SourceFile, line, text)
