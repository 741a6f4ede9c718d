// SPDX-License-Identifier: MIT
#pragma once

/// How a fatal text names a source file of the platform: with the build date behind it.
#define PLATFORM_FATAL_SITE(file) file " (" __DATE__ ")"
