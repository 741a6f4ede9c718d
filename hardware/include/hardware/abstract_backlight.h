// SPDX-License-Identifier: MIT
#pragma once

#include "hardware/export.h"
#include "kel/fixed_point.h"

/// Controls the backlights of a console's built-in displays.
///
/// Levels are percentages, 0 to 100.0. A controller that lacks a side answers for it as if all were
/// well: setters do nothing and return true, frequency getters return 0. Calls are not serialised
/// here; any thread may call. Where two threads set the same side at once, one of the levels holds.
class HARDWARE_EXPORT AbstractBacklight
{
public:
    virtual ~AbstractBacklight();

    // Setters return true on success.

    virtual bool SetLeftBacklight(uires16 level) = 0;
    virtual bool SetRightBacklight(uires16 level) = 0;
    virtual bool SetCenterBacklight(uires16 level) = 0;

    // Frequencies of the pulse-width modulation. Despite the name, hz is a controller's own field
    // as it stands in the register, not a number of hertz: see Vex4Backlight.

    virtual bool SetLeftBacklightFrequency(unsigned int hz) = 0;
    virtual unsigned int GetLeftBacklightFrequency() = 0;
    virtual bool SetRightBacklightFrequency(unsigned int hz) = 0;
    virtual unsigned int GetRightBacklightFrequency() = 0;
    virtual bool SetCenterBacklightFrequency(unsigned int hz) = 0;
    virtual unsigned int GetCenterBacklightFrequency() = 0;

protected:
    AbstractBacklight() = default;
    AbstractBacklight(const AbstractBacklight&) = default;
    AbstractBacklight& operator=(const AbstractBacklight&) = default;
};
