// SPDX-License-Identifier: MIT
#pragma once

#include "hardware/abstract_backlight.h"

/// Backlight of consoles whose only display that can be dimmed is on the right, by an output of
/// the w83627ehf hardware-monitor chip. Holds nothing open; any thread may call.
class HARDWARE_EXPORT Tarnel4Backlight final : public AbstractBacklight
{
public:
    /// No left backlight: does nothing and returns true.
    bool SetLeftBacklight(uires16 level) override;
    /// Writes the duty cycle to the chip's attribute in /sys. What becomes of the text is not
    /// looked at: only an attribute that cannot be opened is a failure.
    /// @param level at most 100.0; above, the duty cycle wraps
    bool SetRightBacklight(uires16 level) override;
    /// No centre backlight: does nothing and returns true.
    bool SetCenterBacklight(uires16 level) override;

    // No frequencies: setters do nothing and return true, getters return 0.

    bool SetLeftBacklightFrequency(unsigned int hz) override;
    unsigned int GetLeftBacklightFrequency() override;
    bool SetRightBacklightFrequency(unsigned int hz) override;
    unsigned int GetRightBacklightFrequency() override;
    bool SetCenterBacklightFrequency(unsigned int hz) override;
    unsigned int GetCenterBacklightFrequency() override;
};
