// SPDX-License-Identifier: MIT
//
// Serial ports: settings as a real port keeps them, which a pseudo-terminal does not, and the
// buffer in which bytes wait for a line that is stalled.

#include <sys/ioctl.h>
#include <termios.h>
#include <unistd.h>

#include <algorithm>
#include <cstring>
#include <ctime>

#include "preload/device_table.h"
#include "preload/line_buffer.h"

namespace Preload
{

namespace
{

/// Stops a terminal's output, or lets it go on.
void SetOutput(int terminal, bool goesOn)
{
    static auto* const next = FindNext<int(int, int)>("tcflow");
    next(terminal, goesOn ? TCOON : TCOOFF);
}

/// Flags that a pseudo-terminal loses.
constexpr tcflag_t Lost = CSIZE | PARENB;

/// What a port's terminal can keep of settings. The C library fails where the terminal changed none
/// of them and lost some.
termios DropLost(int device, termios settings)
{
    const Hold hold;
    if (g_devices[device].isSerial)
        settings.c_cflag = (settings.c_cflag & ~Lost) | CS8;
    return settings;
}

struct Speed {
    speed_t parameter;
    long baud;
};
/// The speeds that not every port's clock can make.
constexpr Speed FastSpeeds[] = {{B115200, 115200},   {B230400, 230400},   {B460800, 460800},
                                {B500000, 500000},   {B576000, 576000},   {B921600, 921600},
                                {B1000000, 1000000}, {B1152000, 1152000}, {B1500000, 1500000},
                                {B2000000, 2000000}, {B2500000, 2500000}, {B3000000, 3000000},
                                {B3500000, 3500000}, {B4000000, 4000000}};

/// What a port makes of settings: it keeps its speed where its clock cannot make the new one.
termios LimitSpeed(int device, termios settings)
{
    const Hold hold;
    const Device& port = g_devices[device];
    if (!port.isSerial || port.fastest == 0)
        return settings;
    for (const Speed& speed : FastSpeeds)
        if (speed.parameter == cfgetospeed(&settings) && speed.baud > port.fastest) {
            const speed_t kept = cfgetospeed(&port.line);
            cfsetospeed(&settings, kept);
            cfsetispeed(&settings, kept);
            break;
        }
    return settings;
}

/// Waits until the line has taken what its buffer holds; false when a signal ends the wait.
bool Drain(int device)
{
    while (CountKept(device) > 0) {
        const timespec slice{0, 1'000'000};
        if (nanosleep(&slice, nullptr) != 0)
            return false;
    }
    return true;
}

} // namespace

std::size_t KeepBytes(int device, int descriptor, const void* bytes, std::size_t count)
{
    const Hold hold;
    Device& port = g_devices[device];
    if (port.bufferRoom <= 0)
        return 0;
    const std::size_t taken = std::min(count, static_cast<std::size_t>(port.bufferRoom));
    std::memcpy(port.buffered + port.bufferedCount, bytes, taken);
    port.bufferedCount += static_cast<long>(taken);
    port.bufferRoom -= static_cast<long>(taken);
    // A full buffer is a stopped terminal: not writable, and whoever writes waits.
    if (port.bufferRoom == 0)
        SetOutput(descriptor, false);
    return taken;
}

long CountKept(int device)
{
    if (device == -1)
        return -1;
    const Hold hold;
    return g_devices[device].isSerial ? g_devices[device].bufferedCount : -1;
}

void DropKept(int device, int descriptor)
{
    const Hold hold;
    Device& port = g_devices[device];
    if (port.bufferedCount == 0)
        return;
    port.bufferRoom += port.bufferedCount;
    port.bufferedCount = 0;
    SetOutput(descriptor, true);
}

} // namespace Preload

using namespace Preload;

extern "C" {

DESK_EXPORT void desk_set_line(int handle, const struct termios* settings)
{
    const Hold hold;
    g_devices[handle].isSerial = true;
    g_devices[handle].line = *settings;
}

DESK_EXPORT void desk_get_line(int handle, struct termios* settings)
{
    const Hold hold;
    *settings = g_devices[handle].line;
}

DESK_EXPORT void desk_limit_line(int handle, long fastest)
{
    const Hold hold;
    g_devices[handle].fastest = fastest;
}

DESK_EXPORT void desk_stall_line(int handle, int terminal, long room)
{
    const Hold hold;
    Device& port = g_devices[handle];
    port.bufferRoom = std::clamp(room, 0L, DeskLineBuffer - port.bufferedCount);
    SetOutput(terminal, port.bufferRoom > 0);
}

DESK_EXPORT long desk_resume_line(int handle, int terminal, char* buffer)
{
    const Hold hold;
    Device& port = g_devices[handle];
    const long count = port.bufferedCount;
    std::memcpy(buffer, port.buffered, static_cast<std::size_t>(count));
    port.bufferedCount = 0;
    port.bufferRoom = -1;
    SetOutput(terminal, true);
    return count;
}

DESK_EXPORT int tcsetattr(int descriptor, int action, const struct termios* settings)
{
    static auto* const next = FindNext<int(int, int, const struct termios*)>("tcsetattr");
    const int device = GetDevice(descriptor);
    if (device == -1)
        return next(descriptor, action, settings);
    if ((action == TCSADRAIN || action == TCSAFLUSH) && !Drain(device))
        return -1;
    const termios made = LimitSpeed(device, *settings);
    const termios kept = DropLost(device, made);
    const int result = next(descriptor, action, &kept);
    if (result == 0) {
        const Hold hold;
        g_devices[device].line = made;
    }
    return result;
}

DESK_EXPORT int tcgetattr(int descriptor, struct termios* settings)
{
    static auto* const next = FindNext<int(int, struct termios*)>("tcgetattr");
    const int result = next(descriptor, settings);
    const int device = GetDevice(descriptor);
    if (result == 0 && device != -1) {
        const Hold hold;
        if (g_devices[device].isSerial)
            settings->c_cflag =
                (settings->c_cflag & ~Lost) | (g_devices[device].line.c_cflag & Lost);
    }
    return result;
}

DESK_EXPORT int tcdrain(int descriptor)
{
    static auto* const next = FindNext<int(int)>("tcdrain");
    return Drain(GetDevice(descriptor)) ? next(descriptor) : -1;
}

DESK_EXPORT int tcflush(int descriptor, int queue)
{
    static auto* const next = FindNext<int(int, int)>("tcflush");
    const int device = GetDevice(descriptor);
    if (device != -1 && (queue == TCOFLUSH || queue == TCIOFLUSH))
        DropKept(device, descriptor);
    return next(descriptor, queue);
}
}
