// SPDX-License-Identifier: MIT
#pragma once

#include <termios.h>

// What the preloaded library offers to the virtual desk that runs in the same process. The desk
// finds the functions by name, so nothing links against the library.

extern "C" {

/// How a device file answers, beside what its node in the test bed does.
struct DeskDeviceFaults {
    int openError;   ///< errno of every open; 0 for none
    int readError;   ///< errno of every read; 0 for none
    int writeError;  ///< errno of every write; 0 for none
    long writeRoom;  ///< bytes that still fit; then EAGAIN; -1 for no limit
    int readEnds;    ///< not 0: every read finds the end of the file
    long delay;      ///< microseconds that every open, read, write and request takes longer
    int takesNumber; ///< not 0: a write that is no number as the kernel reads one gets EINVAL
};
/// A device without faults.
inline constexpr DeskDeviceFaults DeskNoFaults{0, 0, 0, -1, 0, 0, 0};
/// Bytes that a serial port keeps until its line takes them, as the kernel's drivers have it.
inline constexpr long DeskLineBuffer = 4096;

/// Makes @p path a new device: what was opened under the name before keeps its own faults. Returns
/// the device's handle, or -1 when there are too many.
typedef int DeskAddDevice(const char* path);
/// Changes the faults of a device, for its open descriptors too.
typedef void DeskSetFaults(int handle, const DeskDeviceFaults* faults);
/// Takes the name away from a device; open descriptors keep their faults.
typedef void DeskRemoveDevice(int handle);
/// Gives a handle back, once nothing more is asked of it.
typedef void DeskReleaseDevice(int handle);
/// How a device was used since it was added.
struct DeskDeviceUse {
    int openNow;    ///< descriptors open now
    int openedEver; ///< opens that succeeded
    int lastFlags;  ///< flags of the last of them
    long lastWait;  ///< limit of the last select() on it, in microseconds
    long
        delayed; ///< microseconds that its opens, reads, writes and requests were delayed, together
};

/// Tells how a device was used.
typedef void DeskGetUse(int handle, DeskDeviceUse* use);

/// From now on the machine's own MIDI, serial, CD-ROM and memory devices do not exist for the
/// program, unless a file stands for them below @p root. Null ends it.
typedef void DeskHideMachine(const char* root);

/// Lets maps of a page of a device fail with an errno value; 0 ends that. The page is an offset in
/// the file, all bits set for every page.
typedef void DeskRefuseMap(int handle, unsigned long page, int error);
/// Line settings of a serial port, as a real one keeps them: a pseudo-terminal has no parity and
/// always eight data bits.
typedef void DeskSetLine(int handle, const struct termios* settings);
typedef void DeskGetLine(int handle, struct termios* settings);
/// The fastest speed of a serial port's clock, in bits per second; 0 for no limit. A faster one
/// leaves the port's speed as it is, and tcsetattr() succeeds, as the kernel's drivers do it.
typedef void DeskLimitLine(int handle, long fastest);
/// Stops a serial port's line: its buffer takes @p room bytes, at most DeskLineBuffer, and then
/// whoever writes waits.
/// @param terminal the near end of its terminal
typedef void DeskStallLine(int handle, int terminal, long room);
/// Lets the line go on, and empties its buffer into @p buffer, which has room for DeskLineBuffer
/// bytes. Returns how many there were.
typedef long DeskResumeLine(int handle, int terminal, char* buffer);

/// Pages of a device that can have memory.
inline constexpr int DeskPageLimit = 32;
/// Lets a device have memory at some pages only, by their offsets, DeskPageLimit at most. A map of
/// any other page finds all bits set there, and no other map sees what is written to it. Maps of
/// more than 1 MiB get EPERM.
typedef void DeskSetPages(int handle, const unsigned long* pages, int count);

DeskAddDevice desk_add_device;
DeskSetFaults desk_set_faults;
DeskRemoveDevice desk_remove_device;
DeskReleaseDevice desk_release_device;
DeskGetUse desk_get_use;
DeskHideMachine desk_hide_machine;
DeskRefuseMap desk_refuse_map;
DeskSetLine desk_set_line;
DeskGetLine desk_get_line;
DeskLimitLine desk_limit_line;
DeskStallLine desk_stall_line;
DeskResumeLine desk_resume_line;
DeskSetPages desk_set_pages;
}
