// SPDX-License-Identifier: MIT
#pragma once

#include <atomic>

#include "hardware/timecode/device_sim.h"
#include "os/critical_section.h"
#include "os/thread.h"

namespace Hardware::Timecode
{

/// One simulated source: a position, a pace and the thread that emits it.
class DeviceSim::Sim
{
public:
    explicit Sim(const Device::Id& id);
    /// Stops the thread before anything that it uses goes.
    ~Sim();
    Sim(const Sim&) = delete;
    Sim& operator=(const Sim&) = delete;

    void Start();
    /// Has the thread end, without waiting for it.
    void RequestStop() { m_started.store(false, std::memory_order_relaxed); }
    void Stop();
    void Enable() { m_enabled.store(true, std::memory_order_relaxed); }
    void Disable() { m_enabled.store(false, std::memory_order_relaxed); }
    void Jump(const Frame& frame);
    void SetRate(double rate);
    void SetFormat(TimecodeFormat format);

    bool IsStarted() const { return m_started.load(std::memory_order_relaxed); }
    bool IsEnabled() const { return m_enabled.load(std::memory_order_relaxed); }
    double GetRate() const;
    TimecodeFormat GetFormat() const;

    /// Entry of the thread; the argument is the Sim.
    static unsigned int Main(void* args);

private:
    void Run();
    void SleepWhileStarted(unsigned milliseconds) const;

    const Device::Id m_id;
    // Plain flags between the application's thread and the instance's: neither orders other data.
    std::atomic<bool> m_started{false};
    std::atomic<bool> m_enabled{true};
    double m_rate OS_GUARDED_BY(m_lock) = 0.0;
    TimecodeFormat m_format OS_GUARDED_BY(m_lock) = TimecodeFormat_Invalid;
    Index m_index OS_GUARDED_BY(m_lock) = 0.0;
    kel::ptr<Os::Thread> m_thread; // the application's thread only
    mutable Os::CriticalSection m_lock;
};

} // namespace Hardware::Timecode
