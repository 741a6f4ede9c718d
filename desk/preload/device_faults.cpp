// SPDX-License-Identifier: MIT
//
// Preloaded before the test bed's own library. That one redirects device paths into its tree and
// answers their requests; this one adds what it has no word for: opens, reads and writes that fail.

#include "preload/device_faults.h"

#include <fcntl.h>
#include <sys/ioctl.h>
#include <sys/select.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <climits>
#include <cstdarg>
#include <cstddef>
#include <cstdio>
#include <cstring>
#include <ctime>
#include <iterator>

#include "preload/device_table.h"
#include "preload/line_buffer.h"

using namespace Preload;

namespace
{

/// The device that @p path opens, or -1. The caller holds the lock.
int FindNamed(const char* path)
{
    for (int i = 0; i < DeviceCount; ++i)
        if (g_devices[i].named && std::strcmp(g_devices[i].path, path) == 0)
            return i;
    return -1;
}

/// The kinds of device that a console drives and that the machine might really have.
constexpr const char* HiddenPrefixes[] = {"/dev/cdrom",     "/dev/mem",    "/dev/midi",
                                          "/dev/sequencer", "/dev/ttyACM", "/dev/ttyS",
                                          "/dev/ttyUSB"};

/// Whether @p path is the machine's own device and not the test bed's. The caller holds the lock.
bool IsHidden(const char* path)
{
    if (g_root[0] == '\0')
        return false;
    const auto matches = [path](const char* prefix) {
        return std::strncmp(path, prefix, std::strlen(prefix)) == 0;
    };
    if (!std::any_of(std::begin(HiddenPrefixes), std::end(HiddenPrefixes), matches))
        return false;
    char standIn[2 * PathLength];
    std::snprintf(standIn, sizeof standIn, "%s%s", g_root, path);
    // The system call itself: the library function would be redirected. It asks for the link, not
    // for what that leads to.
    struct stat status {
    };
    return syscall(SYS_newfstatat, AT_FDCWD, standIn, &status, AT_SYMLINK_NOFOLLOW) != 0;
}

/// Takes as long as the device is told to; no lock is held. In slices, so that a shorter time told
/// meanwhile holds for what is under way.
void Dawdle(int device)
{
    constexpr long Slice = 10000; // microseconds
    for (long done = 0;;) {
        long slice = 0;
        {
            const Hold hold;
            slice = std::min(g_devices[device].faults.delay - done, Slice);
            if (slice <= 0)
                return;
            g_devices[device].use.delayed += slice;
        }
        const timespec time{0, slice * 1000};
        nanosleep(&time, nullptr);
        done += slice;
    }
}

/// Whether the kernel reads an unsigned number in what was written: a plus sign where there is one,
/// decimal digits and nothing else but one newline. A blank in front is no number.
bool IsNumber(const char* text, size_t length)
{
    if (length > 0 && text[length - 1] == '\n')
        --length;
    if (length > 0 && *text == '+')
        ++text, --length;
    return length > 0 &&
           std::all_of(text, text + length, [](char sign) { return sign >= '0' && sign <= '9'; });
}

/// Whether an open of @p path may go on: sets errno and says no where the device refuses.
bool MayOpen(const char* path, int& device)
{
    device = -1;
    if (!g_inUse.load(std::memory_order_acquire))
        return true;
    const Hold hold;
    device = FindNamed(path);
    if (device != -1 && g_devices[device].faults.openError != 0) {
        errno = g_devices[device].faults.openError;
        return false;
    }
    if (IsHidden(path)) {
        errno = ENOENT;
        return false;
    }
    return true;
}

int NoteOpen(int descriptor, int device, int flags)
{
    if (descriptor < 0 || descriptor >= DescriptorCount)
        return descriptor;
    const Hold hold;
    g_deviceOf[descriptor].store(static_cast<short>(device + 1), std::memory_order_release);
    if (device != -1) {
        DeskDeviceUse& use = g_devices[device].use;
        ++use.openNow;
        ++use.openedEver;
        use.lastFlags = flags;
    }
    return descriptor;
}

template <class Open> int OpenWith(const char* path, int flags, Open open)
{
    int device = -1;
    if (!MayOpen(path, device))
        return -1;
    if (device == -1) {
        const int descriptor = open();
        return g_inUse.load(std::memory_order_acquire) ? NoteOpen(descriptor, -1, flags)
                                                       : descriptor;
    }
    Dawdle(device);
    const Hold hold(g_openLock);
    return NoteOpen(open(), device, flags);
}

mode_t GetMode(int flags, va_list arguments)
{
    return (flags & (O_CREAT | O_TMPFILE)) != 0 ? static_cast<mode_t>(va_arg(arguments, int)) : 0;
}

} // namespace

extern "C" {

DESK_EXPORT int desk_add_device(const char* path)
{
    const Hold hold;
    for (int i = 0; i < DeviceCount; ++i) {
        Device& device = g_devices[i];
        if (device.held || device.use.openNow > 0)
            continue;
        std::strncpy(device.path, path, PathLength - 1);
        device.held = true;
        device.named = true;
        device.use = {};
        device.faults = DeskNoFaults;
        device.isSerial = false;
        device.fastest = 0;
        device.bufferedCount = 0;
        device.bufferRoom = -1;
        device.pageCount = -1;
        std::fill(std::begin(device.refusedMaps), std::end(device.refusedMaps), RefusedMap{0, 0});
        g_inUse.store(true, std::memory_order_release);
        return i;
    }
    return -1;
}

DESK_EXPORT void desk_set_faults(int handle, const DeskDeviceFaults* faults)
{
    const Hold hold;
    g_devices[handle].faults = *faults;
}

DESK_EXPORT void desk_remove_device(int handle)
{
    const Hold hold;
    g_devices[handle].named = false;
}

DESK_EXPORT void desk_release_device(int handle)
{
    const Hold hold;
    g_devices[handle].named = false;
    g_devices[handle].held = false;
}

DESK_EXPORT void desk_get_use(int handle, DeskDeviceUse* use)
{
    const Hold hold;
    *use = g_devices[handle].use;
}

DESK_EXPORT void desk_hide_machine(const char* root)
{
    const Hold hold;
    std::strncpy(g_root, root ? root : "", PathLength - 1);
    g_inUse.store(true, std::memory_order_release);
}

#define DESK_WRAP_OPEN(name)                                                                       \
    DESK_EXPORT int name(const char* path, int flags, ...)                                         \
    {                                                                                              \
        static int (*const next)(const char*, int, ...) =                                          \
            FindNext<int(const char*, int, ...)>(#name);                                           \
        va_list arguments;                                                                         \
        va_start(arguments, flags);                                                                \
        const mode_t mode = GetMode(flags, arguments);                                             \
        va_end(arguments);                                                                         \
        return OpenWith(path, flags, [&] { return next(path, flags, mode); });                     \
    }

DESK_WRAP_OPEN(open)
DESK_WRAP_OPEN(open64)

// What fortified programs call instead.

DESK_EXPORT int __open_2(const char* path, int flags)
{
    static auto* const next = FindNext<int(const char*, int)>("__open_2");
    return OpenWith(path, flags, [&] { return next(path, flags); });
}

DESK_EXPORT int __open64_2(const char* path, int flags)
{
    static auto* const next = FindNext<int(const char*, int)>("__open64_2");
    return OpenWith(path, flags, [&] { return next(path, flags); });
}

DESK_EXPORT int close(int descriptor)
{
    static auto* const next = FindNext<int(int)>("close");
    const int device = GetDevice(descriptor);
    if (device == -1)
        return next(descriptor);
    const Hold whole(g_openLock);
    bool isLast = false;
    {
        const Hold hold;
        g_deviceOf[descriptor].store(0, std::memory_order_release);
        isLast = --g_devices[device].use.openNow == 0;
    }
    // The kernel's driver waits some time for a line that takes nothing before it gives up.
    if (isLast)
        DropKept(device, descriptor);
    return next(descriptor);
}

DESK_EXPORT ssize_t read(int descriptor, void* buffer, size_t count)
{
    static auto* const next = FindNext<ssize_t(int, void*, size_t)>("read");
    const int device = GetDevice(descriptor);
    if (device != -1) {
        Dawdle(device);
        const Hold hold;
        if (g_devices[device].faults.readError != 0) {
            errno = g_devices[device].faults.readError;
            return -1;
        }
        if (g_devices[device].faults.readEnds != 0)
            return 0;
    }
    return next(descriptor, buffer, count);
}

DESK_EXPORT int select(int count, fd_set* readable, fd_set* writable, fd_set* failed,
                       timeval* limit)
{
    static auto* const next = FindNext<int(int, fd_set*, fd_set*, fd_set*, timeval*)>("select");
    for (int i = 0; readable && limit && i < count; ++i) {
        const int device = FD_ISSET(i, readable) ? GetDevice(i) : -1;
        if (device == -1)
            continue;
        const Hold hold;
        g_devices[device].use.lastWait = limit->tv_sec * 1000000L + limit->tv_usec;
    }
    return next(count, readable, writable, failed, limit);
}

DESK_EXPORT ssize_t __read_chk(int descriptor, void* buffer, size_t count, size_t)
{
    return read(descriptor, buffer, count);
}

DESK_EXPORT ssize_t write(int descriptor, const void* buffer, size_t count)
{
    static auto* const next = FindNext<ssize_t(int, const void*, size_t)>("write");
    const int device = GetDevice(descriptor);
    if (device != -1) {
        Dawdle(device);
        const Hold hold;
        DeskDeviceFaults& faults = g_devices[device].faults;
        if (faults.writeError != 0 || (faults.writeRoom == 0 && count != 0)) {
            errno = faults.writeError != 0 ? faults.writeError : EAGAIN;
            return -1;
        }
        if (faults.takesNumber != 0 && !IsNumber(static_cast<const char*>(buffer), count)) {
            errno = EINVAL;
            return -1;
        }
        if (faults.writeRoom > 0) {
            count = std::min(count, static_cast<size_t>(faults.writeRoom));
            faults.writeRoom -= static_cast<long>(count);
        }
    }
    const size_t kept = device != -1 ? KeepBytes(device, descriptor, buffer, count) : 0;
    if (kept > 0 && (kept == count || (fcntl(descriptor, F_GETFL) & O_NONBLOCK) != 0))
        return static_cast<ssize_t>(kept);
    const ssize_t written = next(descriptor, static_cast<const char*>(buffer) + kept, count - kept);
    return kept > 0 ? static_cast<ssize_t>(kept) + std::max<ssize_t>(written, 0) : written;
}

DESK_EXPORT int ioctl(int descriptor, unsigned long request, ...)
{
    static auto* const next = FindNext<int(int, unsigned long, ...)>("ioctl");
    va_list arguments;
    va_start(arguments, request);
    void* const argument = va_arg(arguments, void*);
    va_end(arguments);
    const int device = GetDevice(descriptor);
    if (const long kept = CountKept(device); kept >= 0 && request == TIOCOUTQ) {
        *static_cast<int*>(argument) = static_cast<int>(kept);
        return 0;
    }
    if (device != -1)
        Dawdle(device);
    return next(descriptor, request, argument);
}
}
