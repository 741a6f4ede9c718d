// SPDX-License-Identifier: MIT
#pragma once

#include "hardware/abstract_backlight.h"
#include "hardware/flatpanel_controller/kontron.h"

namespace Hardware
{

/// Backlights of the console whose left and right display each have a flat-panel controller on a
/// serial port. Any thread may call: a level is one packet, sent by one write.
class HARDWARE_EXPORT Zr4Backlight final : public ::AbstractBacklight
{
public:
    /// Opens the left controller on /dev/ttyS0, then the right one on /dev/ttyS1, at 57600 baud.
    /// One that cannot be opened is written to in vain.
    Zr4Backlight();
    /// Closes the right one, then the left one.
    ~Zr4Backlight() override;
    Zr4Backlight(const Zr4Backlight&) = delete;
    Zr4Backlight& operator=(const Zr4Backlight&) = delete;

    // Levels are sent as 0 to 255 and return true, whatever became of the packet.

    bool SetLeftBacklight(uires16 level) override;
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

private:
    static bool SetBacklight(Kontron& controller, uires16 level);

    Kontron m_left;
    Kontron m_right;
};

} // namespace Hardware
