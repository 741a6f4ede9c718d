// SPDX-License-Identifier: MIT
#include "hardware/zr4_backlight.h"

#include "source_site.h"

namespace Hardware
{

namespace
{

constexpr char SourceFile[] = "zr4_backlight.cpp";

constexpr unsigned BaudRate = 57600;

Os::Log::Context& GetLogContext()
{
    static Os::Log::Context context("Zr4Backlight", nullptr, Os::Log::AllButTrace);
    return context;
}

} // namespace

Zr4Backlight::Zr4Backlight() : m_left("/dev/ttyS0", BaudRate), m_right("/dev/ttyS1", BaudRate)
{
    GetLogContext(); // made here, so that it outlives the object
}

Zr4Backlight::~Zr4Backlight() = default;

bool Zr4Backlight::SetLeftBacklight(uires16 level)
{
    return SetBacklight(m_left, level);
}

bool Zr4Backlight::SetRightBacklight(uires16 level)
{
    return SetBacklight(m_right, level);
}

bool Zr4Backlight::SetBacklight(Kontron& controller, uires16 level)
{
    static const uires16 full = 0x00640000;
    const unsigned value = level * 255 / full;
    HARDWARE_LOG(GetLogContext(), Os::Log::Trace, "Setting backlight to " << kel::hex(value));
    controller.SetBacklightLevel(value);
    return true;
}

bool Zr4Backlight::SetCenterBacklight(uires16 /*level*/)
{
    return true;
}

bool Zr4Backlight::SetLeftBacklightFrequency(unsigned int /*hz*/)
{
    return true;
}

unsigned int Zr4Backlight::GetLeftBacklightFrequency()
{
    return 0;
}

bool Zr4Backlight::SetRightBacklightFrequency(unsigned int /*hz*/)
{
    return true;
}

unsigned int Zr4Backlight::GetRightBacklightFrequency()
{
    return 0;
}

bool Zr4Backlight::SetCenterBacklightFrequency(unsigned int /*hz*/)
{
    return true;
}

unsigned int Zr4Backlight::GetCenterBacklightFrequency()
{
    return 0;
}

} // namespace Hardware
