// SPDX-License-Identifier: MIT
#pragma once

#include <linux/cdrom.h>

#include <atomic>

#include "hardware/timecode/device_cd.h"
#include "os/critical_section.h"
#include "os/log.h"
#include "os/thread.h"

namespace Hardware::Timecode
{

/// The Linux side of a DeviceCd: the drive's descriptor and the thread that polls it.
class _DeviceCdImpl
{
public:
    explicit _DeviceCdImpl(DeviceCd& owner);
    /// Disables.
    ~_DeviceCdImpl();
    _DeviceCdImpl(const _DeviceCdImpl&) = delete;
    _DeviceCdImpl& operator=(const _DeviceCdImpl&) = delete;

    bool Enable();
    bool Disable();
    bool IsEnabled() const { return m_fd.load(std::memory_order_relaxed) != -1; }
    bool IsActive() const { return m_active.load(std::memory_order_relaxed); }

    /// Entry of the polling thread; the argument is the _DeviceCdImpl.
    static unsigned int Main(void* arg);

private:
    /// What came of asking the drive.
    enum class Answer { NotEnabled, Failed, Read };

    void CloseDrive();
    void Poll();
    Answer ReadSubchannel(cdrom_subchnl& subchannel, int& error);
    void Report(const cdrom_msf0& address);

    DeviceCd& m_owner;
    const Device::Id m_id;
    /// The drive's descriptor; -1 while not enabled, which ends the thread.
    std::atomic<int> m_fd{-1};
    std::atomic<bool> m_active{false}; // the last request succeeded
    /// Held while the drive is asked or closed: a number that was closed may belong to a file that
    /// somebody else opened since.
    Os::CriticalSection m_requestLock;
    kel::ptr<Os::Thread> m_thread;
    Os::Log::Context& m_log;
};

} // namespace Hardware::Timecode
