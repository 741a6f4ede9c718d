// SPDX-License-Identifier: MIT
#pragma once

#include <mutex>
#include <stdexcept>
#include <string>
#include <utility>

#include "kernel/testbed_private.h"

namespace Desk
{

/// A device file that answers as told, and is counted. Its node is somebody else's. Any thread may
/// call any operation.
class FaultyDevice
{
public:
    explicit FaultyDevice(KernelTestbed& testbed) : m_testbed(testbed.GetPrivate()) {}
    ~FaultyDevice() { Release(); }
    FaultyDevice(const FaultyDevice&) = delete;
    FaultyDevice& operator=(const FaultyDevice&) = delete;

    /// Makes @p path a new device without faults; who has the old one open keeps its faults.
    void Name(const std::string& path)
    {
        const std::lock_guard hold(m_mutex);
        if (m_handle != -1)
            m_testbed.removeDevice(m_handle);
        const int handle = m_testbed.addDevice(path.c_str());
        if (handle == -1)
            throw std::runtime_error("too many virtual devices");
        Release();
        m_handle = handle;
        m_faults = DeskNoFaults;
    }
    /// Takes the name away.
    void Remove() const { m_testbed.removeDevice(GetHandle()); }

    /// Changes the faults, for open descriptors too.
    template <class Edit> void Change(Edit edit)
    {
        const std::lock_guard hold(m_mutex);
        edit(m_faults);
        m_testbed.setFaults(m_handle, &m_faults);
    }
    DeskDeviceUse GetUse() const { return m_testbed.GetUse(GetHandle()); }
    int GetHandle() const
    {
        const std::lock_guard hold(m_mutex);
        return m_handle;
    }

private:
    void Release()
    {
        if (m_handle != -1)
            m_testbed.releaseDevice(std::exchange(m_handle, -1));
    }

    KernelTestbed::Private& m_testbed;
    mutable std::mutex m_mutex;
    int m_handle = -1; // guarded by m_mutex, as the faults
    DeskDeviceFaults m_faults = DeskNoFaults;
};

} // namespace Desk
