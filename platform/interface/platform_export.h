// SPDX-License-Identifier: MIT
#pragma once

/// Marks a class or function that the platform library exports. Everything else stays hidden.
#define PLATFORM_EXPORT __attribute__((visibility("default")))
