// SPDX-License-Identifier: MIT
#pragma once

#include "hardware/export.h"
#include "hardware/timecode/device.h"
#include "kel/ptr.h"

namespace Hardware::Timecode
{

class _DeviceCdImpl;

/// Timecode of an audio CD that plays in "/dev/cdrom": the absolute position on the disc at 25
/// frames a second, without drop frame. One source, number 0. Something else starts the disc, such
/// as CdPlayer.
///
/// All calls come from one application thread. frameRead() is raised every 40 ms while a disc
/// plays, on a thread of the device's own, deviceAdded() and deviceRemoved() on the caller's. A
/// slot connected directly to frameRead() must not disable or destroy the device: the thread would
/// wait for itself, which is fatal. That thread replaces the process's handler for SIGUSR1 by one
/// that does nothing, and asks a drive that does not play without any pause.
///
/// A drive that was unplugged is not opened again by itself, also when it is plugged in again:
/// disable and enable the device then.
class HARDWARE_EXPORT DeviceCd : public Device
{
    Q_OBJECT

public:
    /// Opens nothing and starts nothing.
    explicit DeviceCd(QObject* parent);
    /// Disables; an enabled device reports deviceRemoved().
    ~DeviceCd() override;

    /// Opens the drive, reports deviceAdded() and starts the thread. True when enabled already.
    /// False, with a log line at the level of errors, when the drive cannot be opened; a drive
    /// without a disc can.
    bool Enable() override;
    /// Closes the drive, waits for the thread, and reports deviceRemoved(). Always true. Takes up
    /// to 250 ms beyond a request that is under way and a slot that is running.
    bool Disable() override;
    bool IsEnabled() const override;
    /// True while the drive answers, also while its disc is paused or at rest; after Disable() what
    /// the last answer was.
    bool IsActive() const override;

private:
    kel::ptr<_DeviceCdImpl> m_impl;
};

} // namespace Hardware::Timecode
