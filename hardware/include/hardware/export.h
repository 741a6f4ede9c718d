// SPDX-License-Identifier: MIT
#pragma once

/// Marks what libhardware exports. Everything else in it stays hidden.
#define HARDWARE_EXPORT __attribute__((visibility("default")))
