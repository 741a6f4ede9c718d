// SPDX-License-Identifier: MIT
#include "hardware/abstract_backlight.h"

AbstractBacklight::~AbstractBacklight() = default;
