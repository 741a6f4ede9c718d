// SPDX-License-Identifier: MIT
#include "kernel/line_settings.h"

#include <stdexcept>
#include <string>

namespace Desk
{

namespace
{

struct Speed {
    int baud;
    speed_t parameter;
};
constexpr Speed Speeds[] = {
    {0, B0},          {50, B50},       {75, B75},         {110, B110},       {134, B134},
    {150, B150},      {200, B200},     {300, B300},       {600, B600},       {1200, B1200},
    {1800, B1800},    {2400, B2400},   {4800, B4800},     {9600, B9600},     {19200, B19200},
    {38400, B38400},  {57600, B57600}, {115200, B115200}, {230400, B230400}, {460800, B460800},
    {921600, B921600}};

constexpr tcflag_t RawInput = IGNBRK | BRKINT | PARMRK | ISTRIP | INLCR | IGNCR | ICRNL;
constexpr tcflag_t RawLocal = ECHO | ECHONL | ICANON | ISIG | IEXTEN;
constexpr tcflag_t CookedInput = BRKINT | ICRNL;
constexpr tcflag_t CookedLocal = ECHO | ICANON | ISIG | IEXTEN;

/// -1 for a speed that is not in the table.
int GetBaud(speed_t parameter)
{
    for (const Speed& speed : Speeds)
        if (speed.parameter == parameter)
            return speed.baud;
    return -1;
}

speed_t GetParameter(int baud)
{
    for (const Speed& speed : Speeds)
        if (speed.baud == baud)
            return speed.parameter;
    throw std::invalid_argument("no serial line has " + std::to_string(baud) + " baud");
}

int GetDataBits(tcflag_t control)
{
    switch (control & CSIZE) {
    case CS5:
        return 5;
    case CS6:
        return 6;
    case CS7:
        return 7;
    default:
        return 8;
    }
}

tcflag_t GetSizeBits(int dataBits)
{
    switch (dataBits) {
    case 5:
        return CS5;
    case 6:
        return CS6;
    case 7:
        return CS7;
    default:
        return CS8;
    }
}

LineSettings::Parity GetParity(tcflag_t control)
{
    if ((control & PARENB) == 0)
        return LineSettings::Parity::None;
    return (control & PARODD) != 0 ? LineSettings::Parity::Odd : LineSettings::Parity::Even;
}

void Set(tcflag_t& flags, tcflag_t which, bool on)
{
    flags = on ? flags | which : flags & ~which;
}

} // namespace

LineSettings ReadLineSettings(const termios& settings)
{
    LineSettings line;
    // The fields themselves: cfgetispeed() tells the output's.
    line.baud = settings.c_ispeed == settings.c_ospeed ? GetBaud(settings.c_ospeed) : -1;
    line.parity = GetParity(settings.c_cflag);
    line.dataBits = GetDataBits(settings.c_cflag);
    line.stopBits = (settings.c_cflag & CSTOPB) != 0 ? 2 : 1;
    line.xonXoff = (settings.c_iflag & (IXON | IXOFF)) == (IXON | IXOFF);
    line.hardwareFlow = (settings.c_cflag & CRTSCTS) != 0;
    line.ignoresModem = (settings.c_cflag & CLOCAL) != 0;
    line.raw = (settings.c_iflag & RawInput) == 0 && (settings.c_oflag & OPOST) == 0 &&
               (settings.c_lflag & RawLocal) == 0;
    line.minimum = settings.c_cc[VMIN];
    line.time = settings.c_cc[VTIME];
    return line;
}

void WriteLineSettings(const LineSettings& line, termios& settings)
{
    const speed_t speed = GetParameter(line.baud);
    cfsetispeed(&settings, speed);
    cfsetospeed(&settings, speed);
    Set(settings.c_cflag, PARENB, line.parity != LineSettings::Parity::None);
    Set(settings.c_cflag, PARODD, line.parity == LineSettings::Parity::Odd);
    Set(settings.c_cflag, CSIZE, false);
    Set(settings.c_cflag, GetSizeBits(line.dataBits), true);
    Set(settings.c_cflag, CSTOPB, line.stopBits == 2);
    Set(settings.c_cflag, CRTSCTS, line.hardwareFlow);
    Set(settings.c_cflag, CLOCAL, line.ignoresModem);
    Set(settings.c_cflag, CREAD, true);
    Set(settings.c_iflag, IXON | IXOFF, line.xonXoff);
    Set(settings.c_iflag, RawInput, false);
    Set(settings.c_iflag, CookedInput, !line.raw);
    Set(settings.c_oflag, OPOST, !line.raw);
    Set(settings.c_lflag, RawLocal, false);
    Set(settings.c_lflag, CookedLocal, !line.raw);
    settings.c_cc[VMIN] = static_cast<cc_t>(line.minimum);
    settings.c_cc[VTIME] = static_cast<cc_t>(line.time);
}

} // namespace Desk
