// SPDX-License-Identifier: MIT
#pragma once

// What the preloaded library offers to the virtual desk that runs in the same process. The desk
// finds the functions by name, so nothing links against the library.

extern "C" {

/// How a device file answers, beside what its node in the test bed does.
struct DeskDeviceFaults {
    int openError;  ///< errno of every open; 0 for none
    int readError;  ///< errno of every read; 0 for none
    int writeError; ///< errno of every write; 0 for none
    long writeRoom; ///< bytes that still fit; then EAGAIN; -1 for no limit
    int readEnds;   ///< not 0: every read finds the end of the file
};

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
};

/// Tells how a device was used.
typedef void DeskGetUse(int handle, DeskDeviceUse* use);

/// From now on the machine's own MIDI, serial, CD-ROM and memory devices do not exist for the
/// program, unless a file stands for them below @p root. Null ends it.
typedef void DeskHideMachine(const char* root);

DeskAddDevice desk_add_device;
DeskSetFaults desk_set_faults;
DeskRemoveDevice desk_remove_device;
DeskReleaseDevice desk_release_device;
DeskGetUse desk_get_use;
DeskHideMachine desk_hide_machine;
}
