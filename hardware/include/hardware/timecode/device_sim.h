// SPDX-License-Identifier: MIT
#pragma once

#include <list>
#include <map>

#include "hardware/export.h"
#include "hardware/timecode/device.h"
#include "kel/ptr.h"

namespace Hardware::Timecode
{

/// Timecode with no hardware: any number of sources, called instances, each with a clock and a
/// thread of its own that emits one frame per frame period.
///
/// All calls come from one application thread. frameRead() is raised on the instance's thread,
/// deviceAdded() and deviceRemoved() on the caller's. A slot connected directly to frameRead() must
/// not stop or destroy that instance: the thread would wait for itself, which is fatal.
///
/// A change counts from the next frame on: one that is being emitted is the old one. Frames are
/// paced in whole milliseconds, so that some rates run a little fast, 24 at 24.19 and 29.97 at
/// 29.84 frames per second; use the frames and not the time between them. No frame carries the
/// drop-frame flag.
class HARDWARE_EXPORT DeviceSim : public Device
{
    Q_OBJECT

public:
    /// One simulated source.
    class Sim;

    explicit DeviceSim(QObject* parent);
    /// Disables and stops every instance, all at once; reports no removal.
    ~DeviceSim() override;

    /// Makes instance @p n: stopped, enabled, rate 0, format Invalid, at index 0. Reports it by
    /// deviceAdded(). An existing instance is left alone and nothing is reported.
    void Create(unsigned n);
    /// Stops and destroys instance @p n, then reports deviceRemoved(), also when there is none.
    void Destroy(unsigned n);

    // The operations on one instance return false when there is no such instance, else true.

    /// Starts the instance's thread. The first frame emitted is the current position. It is fatal
    /// when the system makes no more threads.
    bool Start(unsigned n);
    /// Stops the thread and waits for it; at most about 100 ms beyond a slot that is running.
    bool Stop(unsigned n);
    /// Lets the instance emit frames.
    bool Enable(unsigned n);
    /// Keeps it from emitting; its clock goes on.
    bool Disable(unsigned n);
    /// Moves to @p frame at the current rate, so set the rate first.
    bool Jump(unsigned n, const Frame& frame);
    /// Sets the rate in frames per second and the format that goes with it, keeping the position in
    /// hours, minutes, seconds and frames. A negative rate runs backwards; a rate that is 0 or not
    /// finite stands still and repeats its frame.
    bool SetRate(unsigned n, double rate);
    /// Sets format and rate. The position is kept as read at the rate of the format before, not at
    /// the rate before: after SetRate(29.97) it is read at 30.
    bool SetFormat(unsigned n, TimecodeFormat format);
    /// True between Start() and Stop().
    bool IsStarted(unsigned n) const;
    /// True while the instance may emit frames.
    bool IsEnabled(unsigned n) const;

    /// Frames per second; 0.0 when there is no such instance.
    double GetRate(unsigned n) const;
    /// Format; Invalid when there is no such instance.
    TimecodeFormat GetFormat(unsigned n) const;
    /// Numbers of all instances, ascending.
    std::list<unsigned> GetInstances() const;

    /// Enables every instance. Always true.
    bool Enable() override;
    /// Disables every instance. Always true.
    bool Disable() override;
    /// True if any instance is enabled.
    bool IsEnabled() const override;
    /// True if any instance is started.
    bool IsActive() const override;

private:
    Sim* Find(unsigned n) const;

    std::map<unsigned, kel::ptr<Sim>> m_instances;
};

} // namespace Hardware::Timecode
