// SPDX-License-Identifier: MIT
#pragma once

/// The build date in fatal texts; reproducible builds set their own.
#ifndef HARDWARE_BUILD_DATE
#define HARDWARE_BUILD_DATE __DATE__
#endif

/// How a fatal text names a source file of the platform: with the build date behind it.
#define PLATFORM_FATAL_SITE(file) file " (" HARDWARE_BUILD_DATE ")"
